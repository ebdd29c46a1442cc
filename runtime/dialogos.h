// The headless side of the dialogues: a run without a screen writes each
// dialogue as a JSON line and takes the next scripted answer as the user's.
#pragma once

#include <string>

#include "core/interpretador.h"

namespace zv {

class HostConsole;

// The console host of a run without a screen; null on the desktop.
HostConsole* Console(Interpretador& zv);

// The dialogue's line, then the answer. False when the answer is Cancel or
// none is left (then `resposta` is empty).
bool Responde(HostConsole& h, const char* tipo, const Texto& titulo, const Texto& texto, const Texto& padrao,
              std::string& resposta);

}  // namespace zv
