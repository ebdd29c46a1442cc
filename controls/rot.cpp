#include "controls/rot.h"

#include <QApplication>

namespace zv {

Rot::Rot(QWidget* pai) : QLabel(pai) {
  // Labels start with the font of the original platform's label, or the
  // nearest one the machine has.
  QFont f(QStringLiteral("MS Sans Serif"), 8);
  f.setStyleHint(QFont::SansSerif);
  f.setBold(false);
  setFont(f);
  setAlignment(Qt::AlignLeft | Qt::AlignTop);
  // The defaults: the caption "Rotulo", the button face behind black text.
  setText(QStringLiteral("Rotulo"));
  QPalette p = palette();
  p.setColor(QPalette::Window, QApplication::palette().color(QPalette::Button));
  p.setColor(QPalette::WindowText, Qt::black);
  setPalette(p);
  setAutoFillBackground(true);
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
