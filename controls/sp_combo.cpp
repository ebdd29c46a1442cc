#include "controls/sp_combo.h"

namespace zv {

SpCombo::SpCombo(QWidget* pai) : QComboBox(pai) {
  setEditable(true);
  setInsertPolicy(QComboBox::NoInsert);
  connect(this, &QComboBox::activated, this, [this] {
    if (relata) relata({EventoControle::Clique});
  });
  connect(this, &QComboBox::currentTextChanged, this, [this] {
    if (relata) relata({EventoControle::Mudou});
  });
}

void SpCombo::focusInEvent(QFocusEvent* e) {
  QComboBox::focusInEvent(e);
  if (relata) relata({EventoControle::GanhouFoco});
}

void SpCombo::focusOutEvent(QFocusEvent* e) {
  QComboBox::focusOutEvent(e);
  if (relata) relata({EventoControle::PerdeuFoco});
}

}  // namespace zv
