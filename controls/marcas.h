// The check box (`Chk`) and the option button (`Opc`): the platform's, with
// the clicks and focus the events need. Option buttons on one window
// exclude each other, as on the original platform.
#pragma once

#include <QCheckBox>
#include <QRadioButton>

#include "controls/evento_controle.h"

namespace zv {

class CaixaMarca : public QCheckBox {
 public:
  explicit CaixaMarca(QWidget* pai);
  RelatorControle relata;

 protected:
  void focusInEvent(QFocusEvent* e) override;
  void focusOutEvent(QFocusEvent* e) override;
};

class BotaoOpcao : public QRadioButton {
 public:
  explicit BotaoOpcao(QWidget* pai);
  RelatorControle relata;

 protected:
  void focusInEvent(QFocusEvent* e) override;
  void focusOutEvent(QFocusEvent* e) override;
};

}  // namespace zv
