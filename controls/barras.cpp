#include "controls/barras.h"

namespace zv {

BarraRolagem::BarraRolagem(Qt::Orientation o, QWidget* pai) : QScrollBar(o, pai) {
  setFocusPolicy(Qt::StrongFocus);
  connect(this, &QScrollBar::valueChanged, this, [this] {
    if (relata) relata({EventoControle::Mudou});
  });
}

void BarraRolagem::focusInEvent(QFocusEvent* e) {
  QScrollBar::focusInEvent(e);
  if (relata) relata({EventoControle::GanhouFoco});
}

void BarraRolagem::focusOutEvent(QFocusEvent* e) {
  QScrollBar::focusOutEvent(e);
  if (relata) relata({EventoControle::PerdeuFoco});
}

SpecialFrame::SpecialFrame(QWidget* pai) : QGroupBox(pai) {}

void SpecialFrame::mousePressEvent(QMouseEvent* e) {
  QGroupBox::mousePressEvent(e);
  if (relata) relata({EventoControle::Clique});
}

void SpecialFrame::mouseDoubleClickEvent(QMouseEvent* e) {
  QGroupBox::mouseDoubleClickEvent(e);
  if (relata) relata({EventoControle::DuploClique});
}

}  // namespace zv
