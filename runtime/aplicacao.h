// The process's one QApplication, made at the first window command and not
// before: a program that opens no window starts no GUI machinery.
#pragma once

namespace zv {

// Makes the application when there is none yet. `semTela`: on the offscreen
// platform, whatever the environment says (the headless runner and tests).
void GaranteAplicacao(bool semTela);
bool AplicacaoCriada();

}  // namespace zv
