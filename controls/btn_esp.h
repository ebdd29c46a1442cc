// BtnEsp: the command button. For now the plain platform push button with
// the behaviour the control commands need; the skinned button replaces its
// painting later without touching runtime/.
#pragma once

#include <QPushButton>

#include "controls/evento_controle.h"

namespace zv {

class BtnEsp : public QPushButton {
 public:
  explicit BtnEsp(QWidget* pai);
  RelatorControle relata;

 protected:
  void focusInEvent(QFocusEvent* e) override;
  void focusOutEvent(QFocusEvent* e) override;
  void keyPressEvent(QKeyEvent* e) override;
  void keyReleaseEvent(QKeyEvent* e) override;
};

}  // namespace zv
