// The environment's additions to the original, each one the user can turn
// off in the settings form: the error mark in the margin, the Variables
// panel, breakpoints, and the recovery copy of unsaved texts. Their switches
// live in the settings store beside the preferences record.
#pragma once

#include <filesystem>
#include <string>

#include "core/interpretador.h"

namespace zv {

struct Extras {
  bool marcaErro = true;     // a run-time error marks its line
  bool variaveis = true;     // the Variables panel can be opened
  bool pontosParada = true;  // a click in the margin sets a breakpoint
  bool recuperacao = true;   // unsaved texts are copied every 30 seconds
};

Extras LeExtras(const std::filesystem::path& dirConfig);
void GravaExtras(const std::filesystem::path& dirConfig, const Extras& e);

// The recovery copy: "#ZVR#", the document's path, CR LF, then the document
// as a .Zvc file holds it, in Windows-1252 like every source.
std::filesystem::path ArquivoRecuperacao(const std::filesystem::path& dirConfig);
bool GravaRecuperacao(const std::filesystem::path& arquivo, const Texto& caminhoDoc, const FontePrograma& fonte,
                      std::string& erro);
enum class Recuperacao { Nenhuma, Lida, Danificada };
Recuperacao LeRecuperacao(const std::filesystem::path& arquivo, Texto& caminhoDoc, FontePrograma& fonte);

}  // namespace zv
