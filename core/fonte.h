// The source file format: "#ZV7#", the main code, "#%", then for each code
// tab that isn't empty its name, "#&", its code and "#%".
#pragma once

#include "core/interpretador.h"

namespace zv {

inline const Texto kAssinaturaFonte = u"#ZV7#";

Texto JuntaCodigos(const FontePrograma& fonte);
// Fills the program from a file text; false when the text isn't a source
// document (no "#%"), with the slots read so far kept.
bool SeparaCodigos(TextoV texto, FontePrograma& fonte);

}  // namespace zv
