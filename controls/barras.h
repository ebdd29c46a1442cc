// The scroll bars (`BarraVertical`, `BarraHorizontal`) and the frame
// (`SpecialFrame`): for now the platform's, reporting what the events need.
#pragma once

#include <QGroupBox>
#include <QScrollBar>

#include "controls/evento_controle.h"

namespace zv {

class BarraRolagem : public QScrollBar {
 public:
  BarraRolagem(Qt::Orientation o, QWidget* pai);
  RelatorControle relata;

 protected:
  void focusInEvent(QFocusEvent* e) override;
  void focusOutEvent(QFocusEvent* e) override;
};

class SpecialFrame : public QGroupBox {
 public:
  explicit SpecialFrame(QWidget* pai);
  RelatorControle relata;

 protected:
  void mousePressEvent(QMouseEvent* e) override;
  void mouseDoubleClickEvent(QMouseEvent* e) override;
};

}  // namespace zv
