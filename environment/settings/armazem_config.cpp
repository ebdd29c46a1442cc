#include "environment/settings/armazem_config.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <iterator>
#include <system_error>
#include <vector>

#include "data/embaralhamento.h"
#include "environment/settings/mensagens.h"

namespace zv {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kInicioEntrada = "#!";
constexpr std::string_view kMarcaValor = "#@";
constexpr std::string_view kFimEntrada = "#$";

// The whole ZV.File of one folder, as last read or written.
struct ArmazemConfig {
  fs::path pasta;
  std::string texto;
};

ArmazemConfig& Armazem() {
  static ArmazemConfig armazem;
  return armazem;
}

// Why ZV.File can't be used, in the words of a run-time error.
Texto FalhaArquivoConfig(const fs::path& caminho, int erro) {
  const Texto nome = U(caminho.string());
  switch (erro) {
    case EISDIR: return msg::Formata(msg::ambiente::kConfigEPasta, nome);
    case ENOENT:
    case ENOTDIR: return msg::Formata(msg::ambiente::kConfigSemPasta, U(caminho.parent_path().string()));
    case EACCES:
    case EPERM:
    case EROFS: return msg::Formata(msg::ambiente::kConfigNegado, nome);
    default: return msg::Formata(msg::ambiente::kConfigIlegivel, nome);
  }
}

// Reads the whole file, creating it empty when there is none (the store's
// files are made on first use). False, with the reason, when it can't be
// read: a folder or anything else that isn't a plain file in its place (a
// pipe would block the run for ever, so nothing waits on opening).
bool LeArquivoInteiro(const fs::path& caminho, std::string& texto, Texto* falha) {
  texto.clear();
  int fd = ::open(caminho.c_str(), O_RDONLY | O_CREAT | O_NONBLOCK | O_CLOEXEC, 0666);
  if (fd < 0) {
    if (falha) *falha = FalhaArquivoConfig(caminho, errno);
    return false;
  }
  struct stat st {};
  bool ok = ::fstat(fd, &st) == 0 && S_ISREG(st.st_mode);
  if (!ok && falha) *falha = FalhaArquivoConfig(caminho, S_ISDIR(st.st_mode) ? EISDIR : EINVAL);
  char bloco[8192];
  while (ok) {
    ssize_t n = ::read(fd, bloco, sizeof bloco);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) {
      ok = false;
      if (falha) *falha = FalhaArquivoConfig(caminho, errno);
    }
    if (n <= 0) break;
    texto.append(bloco, size_t(n));
  }
  ::close(fd);
  if (!ok) texto.clear();
  return ok;
}

std::string Complementa(TextoV texto) { return ComplementaTexto(ParaCp1252(texto)); }

bool TemMarcador(std::string_view complementado) {
  for (auto marca : {kInicioEntrada, kMarcaValor, kFimEntrada})
    if (complementado.find(marca) != std::string_view::npos) return true;
  return false;
}

// Where the entry of a complemented key stands: its "#!", the start of its
// value and the place of its "#$" (npos when the entry was cut short).
struct Entrada {
  size_t inicio = std::string::npos;
  size_t valor = 0;
  size_t fim = 0;
  bool Achada() const { return inicio != std::string::npos; }
};

Entrada AchaEntrada(std::string_view texto, std::string_view chave) {
  Entrada e;
  std::string procura;
  procura.reserve(chave.size() + 4);
  procura.append(kInicioEntrada).append(chave).append(kMarcaValor);
  e.inicio = texto.find(procura);
  if (!e.Achada()) return e;
  e.valor = e.inicio + procura.size();
  e.fim = texto.find(kFimEntrada, e.valor);
  return e;
}

// The value's bytes; an entry with no end runs to the end of the text.
std::string_view ValorDaEntrada(std::string_view texto, const Entrada& e) {
  size_t fim = e.fim == std::string::npos ? texto.size() : e.fim;
  return texto.substr(e.valor, fim - e.valor);
}

std::string MontaEntrada(std::string_view chave, std::string_view valor) {
  std::string r;
  r.reserve(chave.size() + valor.size() + 6);
  r.append(kInicioEntrada).append(chave).append(kMarcaValor).append(valor).append(kFimEntrada);
  return r;
}

// The text with the entry of `chave` set to `valor`: in its place when there
// is one (what stood behind it stays), else at the end.
std::string ComEntrada(std::string_view texto, std::string_view chave, std::string_view valor) {
  Entrada e = AchaEntrada(texto, chave);
  if (!e.Achada()) return std::string(texto) + MontaEntrada(chave, valor);
  std::string r(texto.substr(0, e.inicio));
  r += MontaEntrada(chave, valor);
  if (e.fim != std::string::npos) r.append(texto.substr(e.fim + kFimEntrada.size()));
  return r;
}

// Only the entries a lookup can find, each key once with the value a lookup
// gives, in the order they first stand; every other byte goes.
std::string Compacta(std::string_view texto) {
  std::string r;
  std::vector<std::string_view> vistas;
  for (size_t p = texto.find(kInicioEntrada); p != std::string_view::npos;
       p = texto.find(kInicioEntrada, p + 1)) {
    size_t marca = texto.find(kMarcaValor, p + kInicioEntrada.size());
    if (marca == std::string_view::npos) break;
    std::string_view chave = texto.substr(p + kInicioEntrada.size(), marca - p - kInicioEntrada.size());
    bool repetida = false;
    for (auto v : vistas) repetida = repetida || v == chave;
    if (repetida) continue;
    vistas.push_back(chave);
    Entrada e = AchaEntrada(texto, chave);
    if (e.Achada()) r += MontaEntrada(chave, ValorDaEntrada(texto, e));
  }
  return r;
}

// Writes from the first byte; the file keeps any longer tail unless `cortar`.
bool EscreveArquivo(const fs::path& caminho, std::string_view texto, bool cortar) {
  std::ios::openmode modo = std::ios::binary | std::ios::out | (cortar ? std::ios::trunc : std::ios::in);
  std::fstream saida(caminho, modo);
  if (!saida) return false;
  saida.write(texto.data(), static_cast<std::streamsize>(texto.size()));
  saida.close();
  return !saida.fail();
}

}  // namespace

Texto LeConfig(const fs::path& pasta, TextoV chave, Texto* falha) {
  ArmazemConfig& armazem = Armazem();
  if (armazem.texto.empty() || armazem.pasta != pasta) {
    armazem.pasta = pasta;
    if (!LeArquivoInteiro(pasta / kArquivoConfig, armazem.texto, falha)) return {};
  }
  Entrada e = AchaEntrada(armazem.texto, Complementa(chave));
  if (!e.Achada()) return {};
  return DeCp1252(ComplementaTexto(ValorDaEntrada(armazem.texto, e)));
}

ResultadoConfig GravaConfig(const fs::path& pasta, TextoV chave, TextoV valor, Texto* falha) {
  std::string c = Complementa(chave), v = Complementa(valor);
  if (TemMarcador(c) || TemMarcador(v)) return ResultadoConfig::TemMarcador;

  ArmazemConfig& armazem = Armazem();
  const fs::path caminho = pasta / kArquivoConfig;
  armazem.pasta = pasta;
  armazem.texto.clear();
  if (!LeArquivoInteiro(caminho, armazem.texto, falha)) return ResultadoConfig::ErroArquivo;

  std::string novo = ComEntrada(armazem.texto, c, v);
  // The file keeps its old length when the new text is shorter.
  bool cortar = false;
  if (std::max(novo.size(), armazem.texto.size()) > kLimiteConfig) {
    novo = ComEntrada(Compacta(armazem.texto), c, v);
    if (novo.size() > kLimiteConfig) return ResultadoConfig::ArmazemCheio;
    cortar = true;
  }
  if (!EscreveArquivo(caminho, novo, cortar)) {
    if (falha) *falha = FalhaArquivoConfig(caminho, errno);
    return ResultadoConfig::ErroArquivo;
  }
  armazem.texto = std::move(novo);
  return ResultadoConfig::Gravado;
}

Texto DescreveResultadoConfig(ResultadoConfig resultado) {
  switch (resultado) {
    case ResultadoConfig::Gravado:
      return {};
    case ResultadoConfig::ArmazemCheio:
      return msg::ambiente::kConfigCheio;
    case ResultadoConfig::TemMarcador:
      return msg::ambiente::kConfigComMarcador;
    case ResultadoConfig::ErroArquivo:
      return falha::AcessoArquivo;
  }
  return {};
}

void DescartaConfig() {
  Armazem() = ArmazemConfig{};
}

// ---- Zarvolt8.inf ----------------------------------------------------------

namespace {

// Offsets and widths of the record.
constexpr size_t kLarguraDir = 100, kLarguraNome = 30, kLarguraFonte = 30;
constexpr size_t kPosNome = 100, kPosFonte = 130, kPosTamanho = 160, kPosCores = 162, kPosReservado = 206,
                 kPosNumeracao = 208;

// The colour fields in record order.
constexpr int32_t Preferencias::*kCores[] = {
    &Preferencias::corFundo,     &Preferencias::corLetra,  &Preferencias::corComando,
    &Preferencias::corComentario, &Preferencias::corPC1,   &Preferencias::corPC2,
    &Preferencias::corOperador,  &Preferencias::corAspas,  &Preferencias::corLinha,
    &Preferencias::corMargem,    &Preferencias::corNumeracao,
};
static_assert(kPosCores + 4 * std::size(kCores) == kPosReservado);

void PoeTexto(std::string& registro, size_t pos, size_t largura, TextoV texto) {
  std::string bytes = ParaCp1252(texto.substr(0, largura));
  bytes.resize(largura, ' ');
  registro.replace(pos, largura, bytes);
}

void PoeInteiro(std::string& registro, size_t pos, size_t bytes, uint32_t valor) {
  for (size_t i = 0; i < bytes; ++i) registro[pos + i] = static_cast<char>((valor >> (8 * i)) & 0xFF);
}

Texto TiraTexto(std::string_view registro, size_t pos, size_t largura) {
  return AparaDireita(DeCp1252(registro.substr(pos, largura)));
}

uint32_t TiraInteiro(std::string_view registro, size_t pos, size_t bytes) {
  uint32_t v = 0;
  for (size_t i = 0; i < bytes; ++i) v |= uint32_t(static_cast<unsigned char>(registro[pos + i])) << (8 * i);
  return v;
}

}  // namespace

Preferencias& PreferenciasAtivas() {
  static Preferencias preferencias;
  return preferencias;
}

std::string RegistroPreferencias(const Preferencias& p) {
  std::string r(kTamanhoPreferencias, '\0');
  PoeTexto(r, 0, kLarguraDir, p.dirPrograma);
  PoeTexto(r, kPosNome, kLarguraNome, p.nomePrograma);
  PoeTexto(r, kPosFonte, kLarguraFonte, p.fonteNome);
  PoeInteiro(r, kPosTamanho, 2, static_cast<uint16_t>(p.fonteTamanho));
  for (size_t i = 0; i < std::size(kCores); ++i) PoeInteiro(r, kPosCores + 4 * i, 4, static_cast<uint32_t>(p.*kCores[i]));
  PoeInteiro(r, kPosReservado, 2, 0);
  PoeInteiro(r, kPosNumeracao, 2, static_cast<uint16_t>(p.ativaNumeracao));
  return r;
}

bool LeRegistroPreferencias(std::string_view r, Preferencias& p) {
  if (r.size() != kTamanhoPreferencias) return false;
  p.dirPrograma = TiraTexto(r, 0, kLarguraDir);
  p.nomePrograma = TiraTexto(r, kPosNome, kLarguraNome);
  p.fonteNome = TiraTexto(r, kPosFonte, kLarguraFonte);
  p.fonteTamanho = static_cast<int16_t>(TiraInteiro(r, kPosTamanho, 2));
  for (size_t i = 0; i < std::size(kCores); ++i) p.*kCores[i] = static_cast<int32_t>(TiraInteiro(r, kPosCores + 4 * i, 4));
  p.ativaNumeracao = static_cast<int16_t>(TiraInteiro(r, kPosNumeracao, 2));
  return true;
}

EstadoPreferencias CarregaPreferencias(const fs::path& pasta) {
  Preferencias& p = PreferenciasAtivas();
  p = Preferencias{};
  const fs::path caminho = pasta / kArquivoPreferencias;
  std::error_code erro;
  if (!fs::exists(caminho, erro)) return erro ? EstadoPreferencias::Ilegiveis : EstadoPreferencias::Ausentes;
  auto tamanho = fs::file_size(caminho, erro);
  if (erro) return EstadoPreferencias::Ilegiveis;
  if (tamanho != kTamanhoPreferencias) return EstadoPreferencias::TamanhoErrado;
  std::ifstream entrada(caminho, std::ios::binary);
  std::string registro(kTamanhoPreferencias, '\0');
  if (!entrada.read(registro.data(), static_cast<std::streamsize>(registro.size())))
    return EstadoPreferencias::Ilegiveis;
  LeRegistroPreferencias(registro, p);
  return EstadoPreferencias::Lidas;
}

bool GravaPreferencias(const fs::path& pasta) {
  // Written whole, so that a file of a wrong length is mended by the next save.
  return EscreveArquivo(pasta / kArquivoPreferencias, RegistroPreferencias(PreferenciasAtivas()), true);
}

}  // namespace zv
