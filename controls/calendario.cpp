#include "controls/calendario.h"

namespace zv {

Calendario::Calendario(QWidget* pai) : QDateEdit(QDate::currentDate(), pai) {
  setCalendarPopup(true);
  connect(this, &QDateEdit::dateChanged, this, [this] {
    if (relata) relata({EventoControle::Mudou});
  });
}

void Calendario::mousePressEvent(QMouseEvent* e) {
  QDateEdit::mousePressEvent(e);
  if (relata) relata({EventoControle::Clique});
}

void Calendario::focusInEvent(QFocusEvent* e) {
  QDateEdit::focusInEvent(e);
  if (relata) relata({EventoControle::GanhouFoco});
}

void Calendario::focusOutEvent(QFocusEvent* e) {
  QDateEdit::focusOutEvent(e);
  if (relata) relata({EventoControle::PerdeuFoco});
}

}  // namespace zv
