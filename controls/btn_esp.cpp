#include "controls/btn_esp.h"

#include "controls/teclas.h"

namespace zv {

BtnEsp::BtnEsp(QWidget* pai) : QPushButton(pai) {
  setAutoDefault(false);
  connect(this, &QPushButton::clicked, this, [this] {
    if (relata) relata({EventoControle::Clique});
  });
}

void BtnEsp::focusInEvent(QFocusEvent* e) {
  QPushButton::focusInEvent(e);
  if (relata) relata({EventoControle::GanhouFoco});
}

void BtnEsp::focusOutEvent(QFocusEvent* e) {
  QPushButton::focusOutEvent(e);
  if (relata) relata({EventoControle::PerdeuFoco});
}

void BtnEsp::keyPressEvent(QKeyEvent* e) {
  if (relata) relata({EventoControle::TeclaDesce, CodigoTecla(e), EstadoShift(e)});
  QPushButton::keyPressEvent(e);
}

void BtnEsp::keyReleaseEvent(QKeyEvent* e) {
  if (relata) relata({EventoControle::TeclaSobe, CodigoTecla(e), EstadoShift(e)});
  QPushButton::keyReleaseEvent(e);
}

}  // namespace zv
