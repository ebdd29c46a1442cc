// Calendario: the date control. For now the platform's date editor with its
// calendar pop-up, in the locale's short date form.
#pragma once

#include <QDateEdit>

#include "controls/evento_controle.h"

namespace zv {

class Calendario : public QDateEdit {
 public:
  explicit Calendario(QWidget* pai);
  RelatorControle relata;

 protected:
  void mousePressEvent(QMouseEvent* e) override;
  void focusInEvent(QFocusEvent* e) override;
  void focusOutEvent(QFocusEvent* e) override;
};

}  // namespace zv
