// Rot: the label. For now the platform label with the clicks the events
// need; its own drawing comes later without touching runtime/.
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
