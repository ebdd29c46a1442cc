// What a control reports to the run window's logic. The widgets only draw
// and report; tables, mirror variables and event variables are runtime/'s.
#pragma once

#include <functional>

namespace zv {

enum class EventoControle {
  Clique,
  DuploClique,
  GanhouFoco,
  PerdeuFoco,
  Mudou,      // the value or text changed by the user
  TeclaDesce, // key down; the key code in `tecla`, the modifiers in `shift`
  TeclaSobe,
};

struct DadosEvento {
  EventoControle tipo;
  int tecla = 0;
  int shift = 0;  // 1 shift, 2 ctrl, 4 alt, as the key table reads them
};

using RelatorControle = std::function<void(const DadosEvento&)>;

}  // namespace zv
