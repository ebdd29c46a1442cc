#include "controls/marcas.h"

namespace zv {

CaixaMarca::CaixaMarca(QWidget* pai) : QCheckBox(pai) {
  connect(this, &QCheckBox::clicked, this, [this] {
    if (relata) relata({EventoControle::Clique});
  });
}

void CaixaMarca::focusInEvent(QFocusEvent* e) {
  QCheckBox::focusInEvent(e);
  if (relata) relata({EventoControle::GanhouFoco});
}

void CaixaMarca::focusOutEvent(QFocusEvent* e) {
  QCheckBox::focusOutEvent(e);
  if (relata) relata({EventoControle::PerdeuFoco});
}

BotaoOpcao::BotaoOpcao(QWidget* pai) : QRadioButton(pai) {
  connect(this, &QRadioButton::clicked, this, [this] {
    if (relata) relata({EventoControle::Clique});
  });
}

void BotaoOpcao::focusInEvent(QFocusEvent* e) {
  QRadioButton::focusInEvent(e);
  if (relata) relata({EventoControle::GanhouFoco});
}

void BotaoOpcao::focusOutEvent(QFocusEvent* e) {
  QRadioButton::focusOutEvent(e);
  if (relata) relata({EventoControle::PerdeuFoco});
}

}  // namespace zv
