// Files for programs: a program's file names on this platform, the platform's
// failures in the language's words, safe replacement of a file, and the
// container format of InsertFile and ExtractFile (also Commands.pack).
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "core/texto.h"
#include "core/valor.h"

namespace zv {

class Interpretador;

// ---- File names ---------------------------------------------------------

// A program writes paths with "\" or "/"; both are the separator here. A
// drive ("C:") names the one file system and is dropped: "C:\dados\a.txt"
// is "/dados/a.txt".
Texto CaminhoPlataforma(TextoV caminho);
std::filesystem::path CaminhoSistema(TextoV caminho);

// A program's file name to the path of an existing file, or the empty text:
// a bare name lies in the program's folder, a path with a separator is used
// as it stands (a relative one from the working folder).
Texto ResolveArquivo(TextoV nome, TextoV dirPrograma);
Texto ResolveArquivo(Interpretador& zv, TextoV nome);
// The same path, whether or not the file is there yet (for a file to make).
Texto CaminhoNoPrograma(TextoV nome, TextoV dirPrograma);

// ---- Failures -----------------------------------------------------------

// A platform failure as the language numbers and words it (53 "File not
// found", 76 "Path not found", 70 "Permission denied"...). A missing file
// whose folder is missing too is 76.
struct ErroArquivo {
  int numero = 0;
  Texto descricao;
};
ErroArquivo TraduzErro(int erro, const std::filesystem::path& caminho = {});
// A platform failure on a file: the description is the failure's words and
// the path.
struct FalhaDeArquivo : FalhaHost {
  int erro;
  std::filesystem::path caminho;
  FalhaDeArquivo(int e, std::filesystem::path c);
};
[[noreturn]] void FalhaArquivo(int erro, const std::filesystem::path& caminho);

// ---- Writing whole files safely ------------------------------------------

// A new version of a file is built in a temporary file beside it and takes
// its place only when complete, so a failure leaves the old file as it was.
class ArquivoTemporario {
 public:
  // Throws FalhaHost when the folder can't take the temporary file.
  explicit ArquivoTemporario(const std::filesystem::path& destino);
  ~ArquivoTemporario();
  ArquivoTemporario(const ArquivoTemporario&) = delete;
  ArquivoTemporario& operator=(const ArquivoTemporario&) = delete;

  int fd() const { return fd_; }
  void Grava(std::string_view bytes, int64_t posicao);
  // Copies the whole content of an open file to the start.
  void CopiaDe(int origem);
  // Syncs, closes and renames over the destination.
  void Confirma();

 private:
  std::filesystem::path destino_, temporario_;
  int fd_ = -1;
};

// Replaces (or creates) a file with the given bytes.
void GravaArquivoSeguro(const std::filesystem::path& destino, std::string_view bytes);
// The whole content of a file; throws FalhaHost.
std::string LeArquivoInteiro(const std::filesystem::path& caminho);

// ---- Containers -----------------------------------------------------------

// A directory of 300 slots of 50 bytes at the start, the entries' data
// behind it. All numbers are decimal text, left-justified, blank-filled.
inline constexpr int64_t kTamanhoDiretorio = 15000;
inline constexpr int kSlotsDiretorio = 300;
inline constexpr size_t kTamanhoSlot = 50;
inline constexpr size_t kTamanhoNomeEntrada = 25;
inline constexpr size_t kTamanhoCampoTamanho = 10;
inline constexpr size_t kTamanhoCampoPosicao = 15;
// 1-based position of the first entry's first byte.
inline constexpr int64_t kPrimeiraPosicao = kTamanhoDiretorio + 1;

struct EntradaContainer {
  Texto nome;           // trimmed
  int64_t tamanho = 0;  // bytes
  int64_t posicao = 0;  // 1-based
};

// One slot's 50 bytes.
std::string MontaSlot(TextoV nome, int64_t tamanho, int64_t posicao);
// The used slots up to the first free one. The container is damaged
// (FalhaHost "The container is damaged: …") when a slot's numbers can't be
// read, its data lies outside a file of `tamanhoArquivo` bytes or doesn't
// start one byte behind the entry before, its name holds a control
// character, or a slot behind the first free one is used.
std::vector<EntradaContainer> LeDiretorio(std::string_view diretorio, int64_t tamanhoArquivo,
                                          const std::filesystem::path& container);

// Adds an entry (the name cut to 25 characters) behind the last one. The
// container is replaced as a whole, so a failure leaves it as it was; a
// missing or empty container file starts a new one.
void InsereNoContainer(const std::filesystem::path& container, TextoV nome, std::string_view dados);
// Copies the first entry called `nome` (case-insensitive) to `alvo`, which is
// replaced. Without such an entry `alvo` is left as an empty file and the
// answer is false.
bool ExtraiDoContainer(const std::filesystem::path& container, TextoV nome, const std::filesystem::path& alvo);

}  // namespace zv
