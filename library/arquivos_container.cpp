// The container format: named files packed into one file behind a fixed
// directory, with InsertFile and ExtractFile.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>

#include "core/interpretador.h"
#include "core/valor.h"
#include "library/arquivos.h"
#include "library/arquivos_interno.h"
#include "library/textos.h"

namespace zv {

namespace fs = std::filesystem;

namespace {

Texto Danificado(const fs::path& container) { return msg::Formata(msg::biblioteca::kContainerDanificado, U(container.string())); }

// Left-justified, blank-filled; a value too wide for its field can't be
// stored without breaking the neighbouring field.
void AnexaCampo(std::string& slot, std::string texto, size_t largura) {
  if (texto.size() > largura) throw FalhaHost(msg::biblioteca::kEntradaGrandeDemais);
  texto.resize(largura, ' ');
  slot += texto;
}

// A field of digits with blanks behind; -1 when it isn't one.
int64_t LeCampo(std::string_view campo) {
  size_t fim = campo.find_last_not_of(' ');
  if (fim == std::string_view::npos) return -1;
  int64_t v = 0;
  for (size_t i = 0; i <= fim; ++i) {
    char c = campo[i];
    if (c < '0' || c > '9' || v > (int64_t{1} << 50)) return -1;
    v = v * 10 + (c - '0');
  }
  return v;
}

Texto NomeDoSlot(std::string_view slot) { return Apara(DeCp1252(slot.substr(0, kTamanhoNomeEntrada))); }

// Names are texts a program gave: a control character in one is damage.
bool NomeLegivel(std::string_view nome) {
  return std::none_of(nome.begin(), nome.end(), [](char c) {
    auto u = static_cast<unsigned char>(c);
    return u < 0x20 || u == 0x7F;
  });
}

// The entry of a used slot; false when its numbers are unreadable or its data
// lies beyond the file's end.
bool LeEntrada(std::string_view slot, int64_t tamanhoArquivo, EntradaContainer& e) {
  e.nome = NomeDoSlot(slot);
  e.tamanho = LeCampo(slot.substr(kTamanhoNomeEntrada, kTamanhoCampoTamanho));
  e.posicao = LeCampo(slot.substr(kTamanhoNomeEntrada + kTamanhoCampoTamanho, kTamanhoCampoPosicao));
  if (e.tamanho < 0 || e.posicao < kPrimeiraPosicao) return false;
  // Empty entries at the end may stand behind the last byte written, one
  // byte further each.
  if (e.tamanho == 0) return e.posicao - 1 <= tamanhoArquivo + kSlotsDiretorio;
  return e.posicao - 1 + e.tamanho <= tamanhoArquivo;
}

int64_t Tamanho(int fd, const fs::path& caminho) {
  struct stat st;
  if (::fstat(fd, &st) != 0) FalhaArquivo(errno, caminho);
  return st.st_size;
}

// Exactly the bytes asked for: a file that ends before them is damaged.
std::string LeTrechoInteiro(int fd, int64_t posicao, int64_t tamanho, const fs::path& caminho) {
  std::string dados = LeTrecho(fd, posicao, tamanho, caminho);
  if (static_cast<int64_t>(dados.size()) < tamanho) throw FalhaHost(Danificado(caminho));
  return dados;
}

}  // namespace

std::string MontaSlot(TextoV nome, int64_t tamanho, int64_t posicao) {
  std::string slot = ParaCp1252(nome.substr(0, kTamanhoNomeEntrada));
  slot.resize(kTamanhoNomeEntrada, ' ');
  AnexaCampo(slot, std::to_string(tamanho), kTamanhoCampoTamanho);
  AnexaCampo(slot, std::to_string(posicao), kTamanhoCampoPosicao);
  return slot;
}

std::vector<EntradaContainer> LeDiretorio(std::string_view diretorio, int64_t tamanhoArquivo,
                                          const fs::path& container) {
  if (static_cast<int64_t>(diretorio.size()) < kTamanhoDiretorio) throw FalhaHost(Danificado(container));
  std::vector<EntradaContainer> entradas;
  // Entries are only ever appended, each one byte behind the one before:
  // a directory that doesn't read that way can't be trusted anywhere.
  int64_t esperada = kPrimeiraPosicao;
  int i = 0;
  for (; i < kSlotsDiretorio; ++i) {
    std::string_view slot = diretorio.substr(static_cast<size_t>(i) * kTamanhoSlot, kTamanhoSlot);
    if (slot[0] == ' ') break;
    EntradaContainer e;
    if (!NomeLegivel(slot.substr(0, kTamanhoNomeEntrada)) || !LeEntrada(slot, tamanhoArquivo, e) ||
        e.posicao != esperada)
      throw FalhaHost(Danificado(container));
    esperada = e.posicao + e.tamanho + 1;
    entradas.push_back(std::move(e));
  }
  // Behind the first free slot every slot is free.
  std::string_view resto = diretorio.substr(static_cast<size_t>(i) * kTamanhoSlot,
                                            static_cast<size_t>(kTamanhoDiretorio) - static_cast<size_t>(i) * kTamanhoSlot);
  if (resto.find_first_not_of(' ') != std::string_view::npos) throw FalhaHost(Danificado(container));
  return entradas;
}

void InsereNoContainer(const fs::path& container, TextoV nome, std::string_view dados) {
  // A name that is empty or starts with a blank would read as a free slot
  // and the next entry would be written over this one.
  if (nome.empty() || nome[0] == u' ') throw FalhaHost(msg::biblioteca::kNomeDeEntradaInvalido);
  // The directory holds names as text; a control character would read as
  // damage.
  if (!NomeLegivel(ParaCp1252(nome.substr(0, kTamanhoNomeEntrada))))
    throw FalhaHost(msg::biblioteca::kNomeComControle);

  Descritor antigo(::open(container.c_str(), O_RDONLY | O_CLOEXEC));
  if (antigo.fd < 0 && errno != ENOENT) FalhaArquivo(errno, container);
  int64_t tamanhoAntigo = antigo.fd >= 0 ? Tamanho(antigo.fd, container) : 0;

  std::string diretorio;
  int64_t posicao = kPrimeiraPosicao;
  int livre = 0;
  if (tamanhoAntigo > 0) {
    diretorio = LeTrechoInteiro(antigo.fd, 0, std::min(tamanhoAntigo, kTamanhoDiretorio), container);
    std::vector<EntradaContainer> entradas = LeDiretorio(diretorio, tamanhoAntigo, container);
    if (entradas.size() >= static_cast<size_t>(kSlotsDiretorio))
      throw FalhaHost(msg::Formata(msg::biblioteca::kContainerCheio, InteiroParaTexto(kSlotsDiretorio)));
    livre = static_cast<int>(entradas.size());
    if (!entradas.empty()) posicao = entradas.back().posicao + entradas.back().tamanho + 1;
  } else {
    diretorio.assign(static_cast<size_t>(kTamanhoDiretorio), ' ');
  }
  diretorio.replace(static_cast<size_t>(livre) * kTamanhoSlot, kTamanhoSlot,
                    MontaSlot(nome, static_cast<int64_t>(dados.size()), posicao));

  ArquivoTemporario novo(container);
  if (tamanhoAntigo > 0) novo.CopiaDe(antigo.fd);
  novo.Grava(diretorio, 0);
  // The byte between two entries is written as a zero, so the file always
  // reaches the end of its last entry, an empty one too.
  int64_t fimAnterior = std::max(tamanhoAntigo, kTamanhoDiretorio);
  if (fimAnterior < posicao - 1)
    novo.Grava(std::string(static_cast<size_t>(posicao - 1 - fimAnterior), '\0'), fimAnterior);
  novo.Grava(dados, posicao - 1);
  novo.Confirma();
}

bool ExtraiDoContainer(const fs::path& container, TextoV nome, const fs::path& alvo) {
  Descritor arquivo(::open(container.c_str(), O_RDONLY | O_CLOEXEC));
  if (arquivo.fd < 0) FalhaArquivo(errno, container);
  int64_t tamanho = Tamanho(arquivo.fd, container);
  if (tamanho < kTamanhoDiretorio) throw FalhaHost(Danificado(container));
  std::string diretorio = LeTrechoInteiro(arquivo.fd, 0, kTamanhoDiretorio, container);

  // The whole directory is read first: a damaged one says so, rather than
  // that the entry isn't there. The first hit counts.
  Texto procurado = Maiusculas(nome);
  std::string dados;
  bool achou = false;
  for (const EntradaContainer& e : LeDiretorio(diretorio, tamanho, container)) {
    if (Maiusculas(e.nome) != procurado) continue;
    dados = LeTrechoInteiro(arquivo.fd, e.posicao - 1, e.tamanho, container);
    achou = true;
    break;
  }
  // Without the entry the target is still replaced, by an empty file.
  GravaArquivoSeguro(alvo, dados);
  return achou;
}

namespace {

// Name, a file and a container: three texts, all required.
std::array<Texto, 3> TresTextos(Interpretador& zv, const Texto& argumentos) {
  auto a = zv.SeparaArgumentos(argumentos, kArgumentosArquivo);
  return {ArgTexto(zv, a, 0), ArgTexto(zv, a, 1), ArgTexto(zv, a, 2)};
}

Valor InsertFile(Interpretador& zv, const Texto& argumentos) {
  auto [nome, origem, container] = TresTextos(zv, argumentos);
  Texto caminho = ResolveArquivo(zv, origem);
  if (caminho.empty()) throw FalhaHost(msg::Formata(msg::biblioteca::kArquivoNaoEncontradoEm, origem));
  InsereNoContainer(CaminhoSistema(container), nome, LeArquivoInteiro(CaminhoSistema(caminho)));
  return Valor::TextoComAspas(u"");
}

Valor ExtractFile(Interpretador& zv, const Texto& argumentos) {
  auto [nome, alvo, container] = TresTextos(zv, argumentos);
  Texto caminho = ResolveArquivo(zv, container);
  if (caminho.empty()) throw FalhaHost(msg::Formata(msg::biblioteca::kArquivoNaoEncontradoEm, container));
  if (!ExtraiDoContainer(CaminhoSistema(caminho), nome, CaminhoSistema(alvo)))
    zv.CaixaCritica(msg::biblioteca::kEntradaNaoEncontrada);
  return Valor::TextoComAspas(u"");
}

}  // namespace

void RegistraContainers() {
  Comandos().Define(u"InsertFile", InsertFile);
  Comandos().Define(u"ExtractFile", ExtractFile);
}

}  // namespace zv
