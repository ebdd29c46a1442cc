#include "controls/caixa_texto.h"

#include <QKeyEvent>

#include "controls/teclas.h"

namespace zv {

CaixaTexto::CaixaTexto(QWidget* pai) : QLineEdit(pai) {}

void CaixaTexto::mousePressEvent(QMouseEvent* e) {
  QLineEdit::mousePressEvent(e);
  if (relata) relata({EventoControle::Clique});
}

void CaixaTexto::mouseDoubleClickEvent(QMouseEvent* e) {
  QLineEdit::mouseDoubleClickEvent(e);
  if (relata) relata({EventoControle::DuploClique});
}

void CaixaTexto::focusInEvent(QFocusEvent* e) {
  QLineEdit::focusInEvent(e);
  if (relata) relata({EventoControle::GanhouFoco});
}

void CaixaTexto::focusOutEvent(QFocusEvent* e) {
  QLineEdit::focusOutEvent(e);
  if (relata) relata({EventoControle::PerdeuFoco});
}

void CaixaTexto::keyPressEvent(QKeyEvent* e) {
  if (relata && !e->isAutoRepeat()) relata({EventoControle::TeclaDesce, CodigoTecla(e), EstadoShift(e)});
  if (numerico) {
    // Keys that type a character: only the digits pass. Keys that type
    // nothing (arrows, Tab) aren't key presses of the text and pass too.
    const QString t = e->text();
    bool apaga = e->key() == Qt::Key_Backspace;
    if (!apaga && !t.isEmpty() && t.at(0).isPrint() && !(t.at(0) >= u'0' && t.at(0) <= u'9')) {
      e->accept();
      return;
    }
  }
  QLineEdit::keyPressEvent(e);
}

void CaixaTexto::keyReleaseEvent(QKeyEvent* e) {
  QLineEdit::keyReleaseEvent(e);
  if (relata && !e->isAutoRepeat()) relata({EventoControle::TeclaSobe, CodigoTecla(e), EstadoShift(e)});
}

TextoMultiLinha::TextoMultiLinha(QWidget* pai) : QTextEdit(pai) { setAcceptRichText(true); }

void TextoMultiLinha::mousePressEvent(QMouseEvent* e) {
  QTextEdit::mousePressEvent(e);
  if (relata) relata({EventoControle::Clique});
}

void TextoMultiLinha::mouseDoubleClickEvent(QMouseEvent* e) {
  QTextEdit::mouseDoubleClickEvent(e);
  if (relata) relata({EventoControle::DuploClique});
}

void TextoMultiLinha::focusInEvent(QFocusEvent* e) {
  QTextEdit::focusInEvent(e);
  if (relata) relata({EventoControle::GanhouFoco});
}

void TextoMultiLinha::focusOutEvent(QFocusEvent* e) {
  QTextEdit::focusOutEvent(e);
  if (relata) relata({EventoControle::PerdeuFoco});
}

}  // namespace zv
