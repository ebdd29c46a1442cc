// Compile: a copy of the run-time image with the user's icon and version
// strings written into it, and the saved source program behind it.
#pragma once

#include <array>
#include <string>

#include "builder/embutido.h"

namespace zv {

struct PedidoCompilacao {
  std::string imagem;      // the run-time image (zv-runtime beside the environment)
  std::string fonte;       // the saved source file
  std::string executavel;  // the file to make
  std::string icone;       // empty: the image's own icon
  std::array<std::string, kVersoes> versoes;  // by Versao
};

// A failure of a step, as the Compile button reports it: its number and
// its words.
struct FalhaCompilacao {
  int numero = 0;
  std::string descricao;
};

// The steps of the Compile button, from deleting an older target to
// appending the program. Throws FalhaCompilacao at the first step that
// fails; what was written by then stays.
void Compila(const PedidoCompilacao& pedido);

// ChangeIcon: the icon of an executable the builder made (or of the image
// itself), in place. False when the file or the icon can't be read, the
// executable has no icon area, or the icon doesn't fit.
bool TrocaIconeDoArquivo(const std::string& icone, const std::string& executavel);

// ChangeIcon into the keyword table.
void RegistraBuilder();

}  // namespace zv
