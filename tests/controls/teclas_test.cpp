// Key codes as programs see them, one row per key: Qt's key, the code, and
// whether the code leads back to the same key.
#include <gtest/gtest.h>

#include "controls/teclas.h"

namespace zv {
namespace {

struct Linha {
  const char* nome;
  int qt;
  int codigo;
  bool volta;  // TeclaDeCodigo gives the same Qt key back
};

const Linha kLinhas[] = {
    {"A", Qt::Key_A, 65, true},           {"Z", Qt::Key_Z, 90, true},
    {"0", Qt::Key_0, 48, true},           {"Enter (keypad)", Qt::Key_Enter, 13, false},
    {"Return", Qt::Key_Return, 13, true}, {"Tab", Qt::Key_Tab, 9, true},
    {"Backspace", Qt::Key_Backspace, 8, true}, {"Shift", Qt::Key_Shift, 16, true},
    {"Control", Qt::Key_Control, 17, true}, {"Pause", Qt::Key_Pause, 19, true},
    {"Space", Qt::Key_Space, 32, true},   {"Left", Qt::Key_Left, 37, true},
    {"Up", Qt::Key_Up, 38, true},         {"Right", Qt::Key_Right, 39, true},
    {"Down", Qt::Key_Down, 40, true},     {"F1", Qt::Key_F1, 112, true},
    {"F6", Qt::Key_F6, 117, true},        {"F12", Qt::Key_F12, 123, true},
    {"Delete", Qt::Key_Delete, 46, true}, {"unknown", Qt::Key_VolumeUp, 0, false},
};

TEST(Teclas, CodesAsProgramsSeeThem) {
  for (const Linha& l : kLinhas) {
    SCOPED_TRACE(l.nome);
    EXPECT_EQ(CodigoDeTecla(l.qt), l.codigo);
    if (l.volta) EXPECT_EQ(TeclaDeCodigo(l.codigo), l.qt);
  }
  EXPECT_EQ(TeclaDeCodigo(7), Qt::Key_unknown);
}

TEST(Teclas, ShiftStateAddsUp) {
  QKeyEvent nada(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier);
  QKeyEvent shift(QEvent::KeyPress, Qt::Key_A, Qt::ShiftModifier);
  QKeyEvent ambos(QEvent::KeyPress, Qt::Key_A, Qt::ShiftModifier | Qt::ControlModifier);
  EXPECT_EQ(EstadoShift(&nada), 0);
  EXPECT_EQ(EstadoShift(&shift), 1);
  EXPECT_EQ(EstadoShift(&ambos), 3);
}

}  // namespace
}  // namespace zv
