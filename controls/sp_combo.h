// SpCombo: the combo box, for now the platform's editable combo with the
// reports the events need.
#pragma once

#include <QComboBox>

#include "controls/evento_controle.h"

namespace zv {

class SpCombo : public QComboBox {
 public:
  explicit SpCombo(QWidget* pai);
  RelatorControle relata;

 protected:
  void focusInEvent(QFocusEvent* e) override;
  void focusOutEvent(QFocusEvent* e) override;
};

}  // namespace zv
