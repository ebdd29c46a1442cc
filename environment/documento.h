// The program being edited: the seven code texts and six names, the file it
// came from, and the .Zvc document format they are read from and written to.
#pragma once

#include <filesystem>
#include <string>

#include "core/interpretador.h"

namespace zv {

class Documento {
 public:
  static constexpr const char16_t* kNomeNovo = u"New.Zvc";

  FontePrograma fonte;         // TextosFonte and NomeCodigo
  int codigoAtivo = 0;         // CodigoAtivo: the code shown in the editor
  Texto nomeAtual = kNomeNovo; // NomeAtual: the file's name without its folder
  bool temArquivo = false;     // TemArquivo: it came from or went to a file

  bool ENovo() const;  // named New.Zvc, in any case
  void Limpa();        // New: every text and name empty

  Texto JuntaCodigos() const;

  // LeArquivo and SeparaCodigos. What a file gave, and why it didn't.
  enum class Leitura {
    Lida,
    NaoEFonte,  // no "#%", or a "#&" with no "#%" behind it; the texts before it are kept
    Ilegivel,   // not there, a folder, or unreadable
    Binaria,    // holds NUL bytes: not a text at all; nothing taken
    Grande,     // larger than any source file; nothing taken
  };
  Leitura Le(const std::filesystem::path& caminho);
  // Files above this size are refused before they are read.
  static constexpr uintmax_t kMaiorFonte = 16u << 20;

  // GravaArquivo: nothing is written when the text shown in the editor or
  // the path is empty. The file is replaced whole. False, with `erro`
  // saying why, when the system refused; true also when nothing was to be
  // written (`escrito` tells).
  static bool GravaArquivo(const std::filesystem::path& caminho, const Texto& texto, bool textoMostradoVazio,
                           bool* escrito, std::string& erro);
};

// The file's parts: the folder with its separator, and the name.
void SeparaCaminho(const std::filesystem::path& caminho, Texto& pasta, Texto& nome);

}  // namespace zv
