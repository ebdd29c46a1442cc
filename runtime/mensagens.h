// Every text the run's hosts and its launcher show a user or a tool. The
// launcher's are the runner's words on the terminal, not boxes: narrow texts.
#pragma once

#include "core/mensagens.h"

namespace zv::msg::execucao {

// ---- Reading a program file ------------------------------------------------

inline constexpr char kEPasta[] = " is a folder, not a program file";
inline constexpr char kNaoLe[] = "can't read ";
inline constexpr char kFonteDanificada[] = " is a damaged source file: a code has no end marker #%";

}  // namespace zv::msg::execucao
