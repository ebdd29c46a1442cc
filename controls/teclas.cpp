#include "controls/teclas.h"

#include <array>
#include <utility>

namespace zv {

namespace {

// Keys whose codes aren't their characters'.
constexpr std::array<std::pair<int, int>, 40> kTabela = {{
    {Qt::Key_Backspace, 8},  {Qt::Key_Tab, 9},        {Qt::Key_Backtab, 9},     {Qt::Key_Return, 13},
    {Qt::Key_Enter, 13},     {Qt::Key_Shift, 16},     {Qt::Key_Control, 17},    {Qt::Key_Alt, 18},
    {Qt::Key_Pause, 19},     {Qt::Key_CapsLock, 20},  {Qt::Key_Escape, 27},     {Qt::Key_Space, 32},
    {Qt::Key_PageUp, 33},    {Qt::Key_PageDown, 34},  {Qt::Key_End, 35},        {Qt::Key_Home, 36},
    {Qt::Key_Left, 37},      {Qt::Key_Up, 38},        {Qt::Key_Right, 39},      {Qt::Key_Down, 40},
    {Qt::Key_Print, 44},     {Qt::Key_Insert, 45},    {Qt::Key_Delete, 46},     {Qt::Key_Meta, 91},
    {Qt::Key_Menu, 93},      {Qt::Key_NumLock, 144},  {Qt::Key_ScrollLock, 145}, {Qt::Key_Semicolon, 186},
    {Qt::Key_Equal, 187},    {Qt::Key_Comma, 188},    {Qt::Key_Minus, 189},     {Qt::Key_Period, 190},
    {Qt::Key_Slash, 191},    {Qt::Key_QuoteLeft, 192}, {Qt::Key_BracketLeft, 219}, {Qt::Key_Backslash, 220},
    {Qt::Key_BracketRight, 221}, {Qt::Key_Apostrophe, 222}, {Qt::Key_Plus, 187}, {Qt::Key_Colon, 186},
}};

}  // namespace

int CodigoDeTecla(int k) {
  if ((k >= Qt::Key_0 && k <= Qt::Key_9) || (k >= Qt::Key_A && k <= Qt::Key_Z)) return k;
  if (k >= Qt::Key_F1 && k <= Qt::Key_F24) return 112 + (k - Qt::Key_F1);
  for (auto [qt, codigo] : kTabela)
    if (qt == k) return codigo;
  return 0;
}

int CodigoTecla(const QKeyEvent* e) { return CodigoDeTecla(e->key()); }

int EstadoShift(const QKeyEvent* e) {
  int s = 0;
  Qt::KeyboardModifiers m = e->modifiers();
  if (m & Qt::ShiftModifier) s |= 1;
  if (m & Qt::ControlModifier) s |= 2;
  if (m & Qt::AltModifier) s |= 4;
  return s;
}

int TeclaDeCodigo(int codigo) {
  if ((codigo >= '0' && codigo <= '9') || (codigo >= 'A' && codigo <= 'Z')) return codigo;
  if (codigo >= 112 && codigo <= 135) return Qt::Key_F1 + (codigo - 112);
  for (auto [qt, c] : kTabela)
    if (c == codigo) return qt;
  return Qt::Key_unknown;
}

}  // namespace zv
