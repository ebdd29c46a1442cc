// The process's one QApplication, made at the first window command and not
// before: a program that opens no window starts no GUI machinery.
#pragma once

#include <string>

namespace zv {

// Makes the application when there is none yet. `semTela`: on the offscreen
// platform, whatever the environment says (the headless runner and tests).
void GaranteAplicacao(bool semTela);
// The icon every window of the process gets (a built program's own), as a
// file's bytes; set before the application is made.
extern std::string iconeAplicacao;
bool AplicacaoCriada();

}  // namespace zv
