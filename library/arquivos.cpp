// The table of open files that programs reach by alias: OpenFile, SizeFile,
// ReadFile, WriteFile and CloseFile.
#include "library/arquivos.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>

#include "core/interpretador.h"
#include "core/valor.h"
#include "library/arquivos_interno.h"
#include "library/biblioteca.h"
#include "library/textos.h"

namespace zv {

namespace {

namespace fs = std::filesystem;

inline const Texto kBinario = u"BINARY";
inline const Texto kEntrada = u"INPUT";
inline const Texto kAcrescimo = u"APPEND";

// Per run: closed at the tear-down.
struct TabelaArquivos {
  static constexpr int kSlots = 20;
  std::array<Texto, kSlots> aliasArquivo;  // upper case; empty: a free slot
  std::array<Texto, kSlots> modoArquivo;   // upper case, as given
  std::array<std::FILE*, kSlots> handleArquivo{};
  std::array<fs::path, kSlots> caminhoArquivo;  // for messages

  ~TabelaArquivos() {
    for (std::FILE* f : handleArquivo)
      if (f) std::fclose(f);
  }
  // The first slot with the alias, or -1. An empty alias finds a free slot.
  int Procura(const Texto& alias) const {
    for (int i = 0; i < kSlots; ++i)
      if (aliasArquivo[i] == alias) return i;
    return -1;
  }
  void Libera(int i) {
    aliasArquivo[i].clear();
    modoArquivo[i].clear();
    handleArquivo[i] = nullptr;
    caminhoArquivo[i].clear();
  }
};

std::FILE* Abre(const fs::path& caminho, const Texto& modo) {
  int fd;
  const char* modoC;
  if (modo == kBinario) {
    fd = ::open(caminho.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
    modoC = "r+b";
    // A read-only file can still be read.
    if (fd < 0 && (errno == EACCES || errno == EROFS)) {
      fd = ::open(caminho.c_str(), O_RDONLY | O_CLOEXEC);
      modoC = "rb";
    }
  } else if (modo == kEntrada) {
    fd = ::open(caminho.c_str(), O_RDONLY | O_CLOEXEC);
    modoC = "rb";
  } else {
    fd = ::open(caminho.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
    modoC = "ab";
  }
  if (fd < 0) FalhaArquivo(errno, caminho);
  struct stat st;
  if (::fstat(fd, &st) == 0 && S_ISDIR(st.st_mode)) {
    ::close(fd);
    FalhaArquivo(EISDIR, caminho);
  }
  std::FILE* f = ::fdopen(fd, modoC);
  if (!f) {
    int e = errno;
    ::close(fd);
    FalhaArquivo(e, caminho);
  }
  return f;
}

Valor OpenFile(Interpretador& zv, const Texto& argumentos) {
  auto a = zv.SeparaArgumentos(argumentos, kArgumentosArquivo);
  Texto alias = Maiusculas(ArgTexto(zv, a, 0));
  Texto caminho = ArgTexto(zv, a, 1);
  Texto modo = Presente(a, 2) ? Maiusculas(zv.ValorTexto(a[2]).ComoTexto()) : Texto();
  if (alias.empty()) throw FalhaHost(falha::ChamadaInvalida);
  auto& t = zv.Estado<TabelaArquivos>();
  int i = t.Procura(Texto());
  if (i < 0) return Valor();  // a full table: nothing happens
  t.aliasArquivo[i] = alias;
  t.modoArquivo[i] = modo;
  // An unknown mode keeps the slot and opens nothing.
  if (modo != kBinario && modo != kEntrada && modo != kAcrescimo) return Valor();
  fs::path p = CaminhoSistema(caminho);
  try {
    t.handleArquivo[i] = Abre(p, modo);
  } catch (...) {
    // A file that didn't open gives its slot back.
    t.Libera(i);
    throw;
  }
  t.caminhoArquivo[i] = p;
  return Valor();
}

// The slot of the alias in slot 0 of the arguments; -1 after the message.
int SlotDoAlias(Interpretador& zv, const std::vector<Texto>& a, const char16_t* comando) {
  Texto alias = Maiusculas(ArgTexto(zv, a, 0));
  int i = zv.Estado<TabelaArquivos>().Procura(alias);
  if (i < 0) zv.ErroExecucao(msg::Formata(msg::biblioteca::kAliasNaoEncontrado, comando, alias));
  return i;
}

std::FILE* Aberto(TabelaArquivos& t, int i) {
  if (!t.handleArquivo[i]) throw FalhaHost(falha::NomeOuNumeroInvalido);
  return t.handleArquivo[i];
}

int64_t TamanhoAberto(TabelaArquivos& t, int i) {
  std::FILE* f = Aberto(t, i);
  std::fflush(f);
  struct stat st;
  if (::fstat(::fileno(f), &st) != 0) FalhaArquivo(errno, t.caminhoArquivo[i]);
  return st.st_size;
}

// The 1-based position of a binary read or write.
int64_t Posicao(Interpretador& zv, const std::vector<Texto>& a) {
  double p = ArgDouble(zv, a, 1);
  if (!(p >= 1 && p <= 9.0e15)) throw FalhaHost(falha::RegistroInvalido);
  return static_cast<int64_t>(ArredondaPar(p));
}

// One line without its line end (CR LF, CR or LF), or "EOF" at the end.
Texto LeLinha(std::FILE* f, const fs::path& caminho) {
  int c = std::getc(f);
  if (c == EOF) {
    if (std::ferror(f)) FalhaArquivo(errno, caminho);
    return u"EOF";
  }
  std::string linha;
  for (; c != EOF; c = std::getc(f)) {
    if (c == '\n') break;
    if (c == '\r') {
      int d = std::getc(f);
      if (d != '\n' && d != EOF) std::ungetc(d, f);
      break;
    }
    linha += static_cast<char>(c);
  }
  if (std::ferror(f)) FalhaArquivo(errno, caminho);
  return DeCp1252(linha);
}

Valor SizeFile(Interpretador& zv, const Texto& argumentos) {
  auto a = zv.SeparaArgumentos(argumentos, kArgumentosArquivo);
  int i = SlotDoAlias(zv, a, u"SizeFile");
  if (i < 0) return Valor::DeInt32(0);
  int64_t n = TamanhoAberto(zv.Estado<TabelaArquivos>(), i);
  if (n > INT32_MAX) throw FalhaHost(falha::Estouro);
  return Valor::DeInt32(static_cast<int32_t>(n));
}

Valor ReadFile(Interpretador& zv, const Texto& argumentos) {
  auto a = zv.SeparaArgumentos(argumentos, kArgumentosArquivo);
  int i = SlotDoAlias(zv, a, u"ReadFile");
  if (i < 0) return Valor::TextoComAspas(u"");
  auto& t = zv.Estado<TabelaArquivos>();
  const Texto& modo = t.modoArquivo[i];
  if (modo == kEntrada) return Valor::TextoComAspas(LeLinha(Aberto(t, i), t.caminhoArquivo[i]));
  if (modo != kBinario) return Valor::TextoComAspas(u"");
  int64_t posicao = Posicao(zv, a);
  double pedido = ArgDouble(zv, a, 2);
  if (!(pedido >= 0)) throw FalhaHost(falha::ChamadaInvalida);
  // Only what the file holds is read: no buffer larger than the file.
  int64_t tamanho = TamanhoAberto(t, i);
  int64_t n = std::clamp<int64_t>(tamanho - (posicao - 1), 0, static_cast<int64_t>(std::min(pedido, 9.0e15)));
  std::string dados = LeTrecho(::fileno(t.handleArquivo[i]), posicao - 1, n, t.caminhoArquivo[i]);
  return Valor::TextoComAspas(DeCp1252(dados));
}

Valor WriteFile(Interpretador& zv, const Texto& argumentos) {
  auto a = zv.SeparaArgumentos(argumentos, kArgumentosArquivo);
  int i = SlotDoAlias(zv, a, u"WriteFile");
  if (i < 0) return Valor::TextoComAspas(u"");
  auto& t = zv.Estado<TabelaArquivos>();
  const Texto& modo = t.modoArquivo[i];
  if (modo == kBinario) {
    int64_t posicao = Posicao(zv, a);
    std::string dados = ParaCp1252(ArgTexto(zv, a, 2));
    GravaTrecho(::fileno(Aberto(t, i)), dados, posicao - 1, t.caminhoArquivo[i]);
  } else if (modo == kAcrescimo) {
    std::string linha = ParaCp1252(ArgTexto(zv, a, 1)) + "\r\n";
    std::FILE* f = Aberto(t, i);
    if (std::fwrite(linha.data(), 1, linha.size(), f) != linha.size() || std::fflush(f) != 0)
      FalhaArquivo(errno, t.caminhoArquivo[i]);
  }
  return Valor::TextoComAspas(u"");
}

Valor CloseFile(Interpretador& zv, const Texto& argumentos) {
  auto a = zv.SeparaArgumentos(argumentos, kArgumentosArquivo);
  int i = SlotDoAlias(zv, a, u"CloseFile");
  if (i < 0) return Valor::DeInt32(0);
  auto& t = zv.Estado<TabelaArquivos>();
  std::FILE* f = t.handleArquivo[i];
  fs::path caminho = t.caminhoArquivo[i];
  t.Libera(i);
  if (f && std::fclose(f) != 0) FalhaArquivo(errno, caminho);
  return Valor::DeInt32(0);
}

}  // namespace

void RegistraArquivos() {
  Comandos().Define(u"OpenFile", OpenFile);
  Comandos().Define(u"SizeFile", SizeFile);
  Comandos().Define(u"ReadFile", ReadFile);
  Comandos().Define(u"WriteFile", WriteFile);
  Comandos().Define(u"CloseFile", CloseFile);
  RegistraPastas();
  RegistraContainers();
}

}  // namespace zv
