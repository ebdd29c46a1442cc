// EntraNum: the currency field. For now a right-aligned line edit that takes
// digits, a sign and one decimal point, and shows its value with the set
// number of decimals when it loses the focus; the numeric entry's own
// behaviour comes later without touching runtime/. A key press is reported
// before the key is applied, as the mirror variable wants the value that
// stood before it.
#pragma once

#include <QLineEdit>

#include "controls/evento_controle.h"

namespace zv {

class EntraNum : public QLineEdit {
 public:
  explicit EntraNum(QWidget* pai);
  RelatorControle relata;

  double Valor() const;
  void DefineValor(double v);
  int Casas() const { return casas_; }
  void DefineCasas(int c);
  QString TextoValor() const;  // the value with its decimals: "12.50"

 protected:
  void keyPressEvent(QKeyEvent* e) override;
  void mousePressEvent(QMouseEvent* e) override;
  void focusInEvent(QFocusEvent* e) override;
  void focusOutEvent(QFocusEvent* e) override;

 private:
  int casas_ = 2;
};

}  // namespace zv
