// Rot: the label. The caption fills the control, on the system's button
// face, in black, left-aligned; clicks and double clicks are reported.
#pragma once

#include <QLabel>

#include "controls/evento_controle.h"

namespace zv {

class Rot : public QLabel {
 public:
  explicit Rot(QWidget* pai);
  RelatorControle relata;

 protected:
  void mousePressEvent(QMouseEvent* e) override;
  void mouseDoubleClickEvent(QMouseEvent* e) override;
};

}  // namespace zv
