// Key codes as programs see them: the codes of the original platform's
// virtual keys (13 Enter, 37 left arrow, 65 A, 117 F6), whatever Qt calls
// the key.
#pragma once

#include <QKeyEvent>

namespace zv {

// The program's code of a Qt key; 0 for a key it has no code for.
int CodigoDeTecla(int teclaQt);
int CodigoTecla(const QKeyEvent* e);
// 1 shift, 2 ctrl, 4 alt, added up.
int EstadoShift(const QKeyEvent* e);
// The Qt key for a program's code; Qt::Key_unknown when none.
int TeclaDeCodigo(int codigo);

}  // namespace zv
