#include "controls/rot.h"

namespace zv {

Rot::Rot(QWidget* pai) : QLabel(pai) {
  // Labels start with the font of the original platform's label, or the
  // nearest one the machine has.
  QFont f(QStringLiteral("MS Sans Serif"), 8);
  f.setStyleHint(QFont::SansSerif);
  f.setBold(false);
  setFont(f);
  setAlignment(Qt::AlignLeft | Qt::AlignTop);
}

void Rot::mousePressEvent(QMouseEvent* e) {
  QLabel::mousePressEvent(e);
  if (relata) relata({EventoControle::Clique});
}

void Rot::mouseDoubleClickEvent(QMouseEvent* e) {
  QLabel::mouseDoubleClickEvent(e);
  if (relata) relata({EventoControle::DuploClique});
}

}  // namespace zv
