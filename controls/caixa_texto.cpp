#include "controls/caixa_texto.h"

#include <algorithm>

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
  // Into a masked box by the keyboard: the caret at the first place still
  // to fill, or at the start.
  if (!mascara.isEmpty() && e->reason() != Qt::MouseFocusReason) {
    const qsizetype p = text().indexOf(QLatin1Char('_'));
    deselect();
    setCursorPosition(p >= 0 && p < mascara.size() && mascara[p] == QLatin1Char('#') ? static_cast<int>(p) : 0);
  }
  if (relata) relata({EventoControle::GanhouFoco});
}

void CaixaTexto::focusOutEvent(QFocusEvent* e) {
  QLineEdit::focusOutEvent(e);
  if (relata) relata({EventoControle::PerdeuFoco});
}

namespace {

bool Vaga(const QString& mascara, qsizetype p) { return p >= 0 && p < mascara.size() && mascara[p] == QLatin1Char('#'); }

}  // namespace

bool CaixaTexto::TeclaNaMascara(QKeyEvent* e) {
  QString t = text();
  const qsizetype n = std::min(t.size(), mascara.size());
  qsizetype p = cursorPosition();
  auto muda = [&](qsizetype cursor) {
    setText(t);
    setCursorPosition(static_cast<int>(cursor));
    emit textEdited(t);
  };
  switch (e->key()) {
    case Qt::Key_Backspace:
      do --p;
      while (p >= 0 && !Vaga(mascara, p));
      if (p >= 0 && p < n) {
        t[p] = QLatin1Char('_');
        muda(p);
      }
      return true;
    case Qt::Key_Delete:
      while (p < n && !Vaga(mascara, p)) ++p;
      if (p < n) {
        t[p] = QLatin1Char('_');
        muda(cursorPosition());
      }
      return true;
    default:
      break;
  }
  const QString c = e->text();
  if (c.isEmpty() || !c.at(0).isPrint() || (e->modifiers() & (Qt::ControlModifier | Qt::AltModifier)))
    return false;  // the caret's keys, Tab, short cuts
  while (p < n && !Vaga(mascara, p)) ++p;
  // A key that can't stand at the next place is refused.
  if (p >= n || !c.at(0).isDigit()) return true;
  t[p] = c.at(0);
  ++p;
  while (p < n && !Vaga(mascara, p)) ++p;
  muda(p);
  return true;
}

void CaixaTexto::keyPressEvent(QKeyEvent* e) {
  if (relata && !e->isAutoRepeat()) relata({EventoControle::TeclaDesce, CodigoTecla(e), EstadoShift(e)});
  if (!mascara.isEmpty() && TeclaNaMascara(e)) {
    e->accept();
    return;
  }
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
