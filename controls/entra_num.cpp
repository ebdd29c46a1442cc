#include "controls/entra_num.h"

#include <QKeyEvent>
#include <QRegularExpressionValidator>

#include "controls/teclas.h"

namespace zv {

EntraNum::EntraNum(QWidget* pai) : QLineEdit(pai) {
  setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  setValidator(new QRegularExpressionValidator(QRegularExpression(QStringLiteral("-?[0-9]*\\.?[0-9]*")), this));
  DefineValor(0);
}

double EntraNum::Valor() const { return text().toDouble(); }

QString EntraNum::TextoValor() const { return QString::number(Valor(), 'f', casas_); }

void EntraNum::DefineValor(double v) { setText(QString::number(v, 'f', casas_)); }

void EntraNum::DefineCasas(int c) {
  double v = Valor();
  casas_ = c < 0 ? 0 : c > 10 ? 10 : c;
  DefineValor(v);
}

void EntraNum::keyPressEvent(QKeyEvent* e) {
  if (relata) relata({EventoControle::TeclaDesce, CodigoTecla(e), EstadoShift(e)});
  QLineEdit::keyPressEvent(e);
}

void EntraNum::mousePressEvent(QMouseEvent* e) {
  QLineEdit::mousePressEvent(e);
  if (relata) relata({EventoControle::Clique});
}

void EntraNum::focusInEvent(QFocusEvent* e) {
  QLineEdit::focusInEvent(e);
  if (relata) relata({EventoControle::GanhouFoco});
}

void EntraNum::focusOutEvent(QFocusEvent* e) {
  QLineEdit::focusOutEvent(e);
  DefineValor(Valor());
  if (relata) relata({EventoControle::PerdeuFoco});
}

}  // namespace zv
