// Program preparation: source texts to the prepared text, one statement a
// line behind fixed-width markers.
#pragma once

#include "core/texto.h"

namespace zv {

// A prepared line: "&#" statement(5) "§#" line(5) "$#" editor(2) " " statement.
inline constexpr size_t kColunaComando = 19;  // 0-based column of the statement

Texto MarcaLinhas(TextoV texto, int editor);
Texto LimpaTexto(TextoV texto);
Texto NumeraComandos(TextoV texto);
Texto NumeraIf(TextoV texto);
Texto NumeraWhile(TextoV texto);
// Empty when the blocks balance, else the message.
Texto VerificaBlocos(TextoV texto);

}  // namespace zv
