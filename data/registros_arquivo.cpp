#include "data/registros_arquivo.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <bit>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <thread>
#include <utility>

#include "data/embaralhamento.h"

namespace zv {

namespace fs = std::filesystem;

namespace {

// Header slots: offset and width.
struct Fatia {
  size_t inicio, largura;
};
constexpr Fatia kContagem{1, 11};
constexpr Fatia kDescritor{12, 25};
constexpr Fatia kTamanho{37, 12};
constexpr Fatia kCriacao{49, 30};
constexpr Fatia kDeclaracao{79, 30};
constexpr Fatia kSenha{109, 25};
constexpr size_t kPrimeiroCampo = 999;
constexpr size_t kPassoCampo = 48;
constexpr size_t kNomeCampo = 25, kComprimentoCampo = 11, kTipoCampo = 12;

constexpr size_t kBloco = 1024;  // entries per block of the order list

bool SoDigitos(std::string_view s, size_t maxDigitos) {
  if (s.empty() || s.size() > maxDigitos) return false;
  return std::all_of(s.begin(), s.end(), [](char c) { return c >= '0' && c <= '9'; });
}

bool EmBranco(std::string_view s) {
  return std::all_of(s.begin(), s.end(), [](char c) { return c == ' '; });
}

// Writes the stored form of a text into a slot; the caller has checked that
// it fits.
void PoeEmFatia(std::string& bytes, Fatia f, std::string_view texto) {
  std::string a = Embaralha(texto);
  if (a.size() > f.largura) throw FalhaRegistros(msg::Formata(msg::dados::kValorNaoCabe, DeCp1252(texto)));
  bytes.replace(f.inicio, f.largura, a + std::string(f.largura - a.size(), ' '));
}

bool LeFatia(std::string_view bytes, Fatia f, std::string& texto) {
  return DesembaralhaSeguro(bytes.substr(f.inicio, f.largura), texto);
}

// Numbers are stored as their little-endian bytes, as they lie in memory here.
static_assert(std::endian::native == std::endian::little, "the record format wants a little-endian host");

std::string QuatroBytes(int32_t n) {
  std::string b(4, '\0');
  std::memcpy(b.data(), &n, 4);
  return b;
}

std::string OitoBytes(double d) {
  std::string b(8, '\0');
  std::memcpy(b.data(), &d, 8);
  return b;
}

std::string NomeArquivo(const fs::path& p) { return p.string(); }

// A short text for a stamp slot: at most 25 characters.
Texto Corta(const Texto& t, size_t n) { return t.size() > n ? t.substr(0, n) : t; }

}  // namespace

// ---- Structure --------------------------------------------------------------

bool LeTipoCampo(TextoV palavra, TipoCampo& tipo) {
  if (palavra == u"String") tipo = TipoCampo::String;
  else if (palavra == u"AutoInc") tipo = TipoCampo::AutoInc;
  else if (palavra == u"Integer") tipo = TipoCampo::Integer;
  else if (palavra == u"Decimal") tipo = TipoCampo::Decimal;
  else return false;
  return true;
}

const char16_t* PalavraTipo(TipoCampo tipo) {
  switch (tipo) {
    case TipoCampo::String: return u"String";
    case TipoCampo::AutoInc: return u"AutoInc";
    case TipoCampo::Integer: return u"Integer";
    case TipoCampo::Decimal: return u"Decimal";
  }
  return u"";
}

void Estrutura::Acrescenta(Texto nome, TipoCampo tipo, int32_t comprimento) {
  Campo c;
  c.nome = std::move(nome);
  c.tipo = tipo;
  switch (tipo) {
    case TipoCampo::String: c.comprimento = comprimento; break;
    case TipoCampo::AutoInc:
    case TipoCampo::Integer: c.comprimento = 4; break;
    case TipoCampo::Decimal: c.comprimento = 8; break;
  }
  // Each stored form is five bytes longer than its data.
  c.largura = c.comprimento + 5;
  c.posicao = tamanhoRegistro + 1;
  tamanhoRegistro += c.largura;
  campos.push_back(std::move(c));
}

int Estrutura::IndiceCampo(TextoV nome) const {
  Texto m = Maiusculas(nome);
  for (size_t i = 0; i < campos.size(); ++i)
    if (Maiusculas(campos[i].nome) == m) return static_cast<int>(i);
  return -1;
}

Texto Estrutura::Problema() const {
  const Texto limite = InteiroParaTexto(kMaxNome);
  if (descritor.empty()) return msg::dados::kSemNome;
  if (descritor.size() > size_t(kMaxNome))
    return msg::Formata(msg::dados::kNomeLongo, limite);
  if (campos.empty()) return msg::dados::kSemCampos;
  if (campos.size() > size_t(kMaxCampos))
    return msg::Formata(msg::dados::kCamposDemais, InteiroParaTexto(kMaxCampos));
  for (const Campo& c : campos) {
    if (c.nome.empty()) return msg::dados::kCampoSemNome;
    if (c.nome.size() > size_t(kMaxNome))
      return msg::Formata(msg::dados::kNomeDeCampoLongo, c.nome, limite);
    if (c.comprimento < 0) return msg::Formata(msg::dados::kComprimentoNegativo, c.nome);
  }
  if (tamanhoRegistro > kMaxTamanhoRegistro)
    return msg::Formata(msg::dados::kRegistroLongo, InteiroParaTexto(kMaxTamanhoRegistro), InteiroParaTexto(tamanhoRegistro));
  return {};
}

// ---- Header -----------------------------------------------------------------

std::string MontaCabecalho(const Cabecalho& c) {
  std::string b(kTamanhoCabecalho, ' ');
  b[0] = c.trava;
  const Estrutura& e = c.estrutura;
  PoeEmFatia(b, kContagem, std::to_string(c.total));
  PoeEmFatia(b, kDescritor, ParaCp1252(e.descritor));
  PoeEmFatia(b, kTamanho, std::to_string(e.tamanhoRegistro));
  PoeEmFatia(b, kCriacao, ParaCp1252(Corta(c.criacao, kCriacao.largura - 5)));
  PoeEmFatia(b, kDeclaracao, ParaCp1252(Corta(c.declaracao, kDeclaracao.largura - 5)));
  size_t p = kPrimeiroCampo;
  for (const Campo& f : e.campos) {
    PoeEmFatia(b, {p, kNomeCampo}, ParaCp1252(f.nome));
    PoeEmFatia(b, {p + kNomeCampo, kComprimentoCampo}, std::to_string(f.comprimento));
    PoeEmFatia(b, {p + kNomeCampo + kComprimentoCampo, kTipoCampo}, ParaCp1252(PalavraTipo(f.tipo)));
    p += kPassoCampo;
  }
  PoeEmFatia(b, {p, kNomeCampo}, kMarcaFim);
  PoeEmFatia(b, kSenha, ParaCp1252(c.senha));
  return b;
}

bool LeContagem(std::string_view trava, int32_t& total) {
  std::string t;
  if (trava.size() < kContagem.inicio + kContagem.largura || !LeFatia(trava, kContagem, t) || !SoDigitos(t, 6))
    return false;
  total = std::stoi(t);
  return true;
}

void PoeContagem(std::string& trava, int32_t total) { PoeEmFatia(trava, kContagem, std::to_string(total)); }

void LeCabecalhoParcial(std::string_view bytes, CabecalhoParcial& h) {
  h = CabecalhoParcial{};
  Cabecalho& c = h.c;
  auto falha = [&h](Texto p) { h.problemas.push_back(std::move(p)); };
  if (bytes.size() < size_t(kTamanhoCabecalho)) {
    falha(msg::Formata(msg::dados::kCurtoDemaisBytes, InteiroParaTexto(int64_t(bytes.size())),
                       InteiroParaTexto(kTamanhoCabecalho)));
    return;
  }
  c.trava = bytes[0];
  if (c.trava != kLivre && c.trava != kOcupado) falha(msg::dados::kTravaInvalida);
  std::string t;
  h.total = LeContagem(bytes, c.total);
  if (!h.total) falha(msg::dados::kContagemIlegivel);
  h.descritor = LeFatia(bytes, kDescritor, t);
  if (h.descritor) c.estrutura.descritor = DeCp1252(t);
  else falha(msg::dados::kNomeIlegivel);
  h.tamanho = LeFatia(bytes, kTamanho, t) && SoDigitos(t, 5) && std::stoi(t) != 0 && std::stoi(t) <= kMaxTamanhoRegistro;
  if (h.tamanho) h.tamanhoDeclarado = std::stoi(t);
  else falha(msg::dados::kTamanhoIlegivel);
  h.criacao = LeFatia(bytes, kCriacao, t);
  if (h.criacao) c.criacao = DeCp1252(t);
  else falha(msg::dados::kCriacaoIlegivel);
  h.declaracao = LeFatia(bytes, kDeclaracao, t);
  if (h.declaracao) c.declaracao = DeCp1252(t);
  else falha(msg::dados::kDeclaracaoIlegivel);
  h.senha = LeFatia(bytes, kSenha, t);
  if (h.senha) c.senha = DeCp1252(t);
  else falha(msg::dados::kSenhaIlegivel);
  // The field table is taken whole or not at all.
  Estrutura e;
  e.descritor = c.estrutura.descritor;
  size_t p = kPrimeiroCampo;
  Texto erroCampos;
  for (int i = 0;; ++i, p += kPassoCampo) {
    const Texto n = InteiroParaTexto(i + 1);
    if (!LeFatia(bytes, {p, kNomeCampo}, t)) {
      erroCampos = msg::Formata(msg::dados::kNomeDeCampoIlegivel, n);
      break;
    }
    if (t == kMarcaFim) break;
    if (i == kMaxCampos) {
      erroCampos = msg::dados::kSemMarcaFim;
      break;
    }
    Texto nome = DeCp1252(t);
    std::string comp, tipo;
    if (!LeFatia(bytes, {p + kNomeCampo, kComprimentoCampo}, comp) || !SoDigitos(comp, 5)) {
      erroCampos = msg::Formata(msg::dados::kComprimentoIlegivel, nome);
      break;
    }
    TipoCampo tc;
    if (!LeFatia(bytes, {p + kNomeCampo + kComprimentoCampo, kTipoCampo}, tipo) || !LeTipoCampo(DeCp1252(tipo), tc)) {
      erroCampos = msg::Formata(msg::dados::kTipoIlegivel, nome);
      break;
    }
    e.Acrescenta(nome, tc, std::stoi(comp));
    if (e.campos.back().comprimento != std::stoi(comp)) {
      erroCampos = msg::Formata(msg::dados::kComprimentoErrado, nome);
      break;
    }
  }
  if (erroCampos.empty() && e.campos.empty()) erroCampos = msg::dados::kNenhumCampo;
  h.campos = erroCampos.empty();
  if (h.campos) {
    c.estrutura = std::move(e);
    if (h.tamanho && c.estrutura.tamanhoRegistro != h.tamanhoDeclarado)
      falha(msg::Formata(msg::dados::kSomaDiferente, InteiroParaTexto(c.estrutura.tamanhoRegistro),
                         InteiroParaTexto(h.tamanhoDeclarado)));
  } else {
    falha(erroCampos);
  }
}

bool LeCabecalho(std::string_view bytes, Cabecalho& c, Texto& problema) {
  CabecalhoParcial h;
  LeCabecalhoParcial(bytes, h);
  c = std::move(h.c);
  if (h.problemas.empty()) return true;
  problema = h.problemas.front();
  return false;
}

// ---- Values -----------------------------------------------------------------

Texto TextoValor(const Campo& campo, const ValorCampo& v) {
  switch (campo.tipo) {
    case TipoCampo::String: return v.texto;
    case TipoCampo::AutoInc:
    case TipoCampo::Integer: return InteiroParaTexto(v.inteiro);
    case TipoCampo::Decimal: return NumeroParaTexto(v.decimal);
  }
  return {};
}

Texto ColunaCampo(const Campo& campo, const ValorCampo& v) {
  Texto t = TextoValor(campo, v);
  t.resize(size_t(campo.largura), u' ');
  return t;
}

Texto LinhaRegistro(const Estrutura& e, const Registro& r) {
  Texto t;
  t.reserve(size_t(e.tamanhoRegistro) + 2);
  t += u'"';
  for (size_t i = 0; i < e.campos.size(); ++i) t += ColunaCampo(e.campos[i], r[i]);
  t += u'"';
  return t;
}

// ---- Damage -----------------------------------------------------------------

Texto MensagemDano(const Texto& arquivo, const Texto& problema) {
  return msg::Formata(msg::dados::kArquivoDanificado, arquivo, problema);
}

Texto MensagemEscritaRecusada(const Texto& arquivo, const Texto& problema) {
  return msg::Formata(msg::dados::kEscritaRecusada, arquivo, problema);
}

FalhaRegistros FalhaDano(const Texto& arquivo, const Texto& problema, bool escrita) {
  FalhaRegistros f(escrita ? MensagemEscritaRecusada(arquivo, problema) : MensagemDano(arquivo, problema));
  f.dano = true;
  f.arquivo = arquivo;
  f.problema = problema;
  return f;
}

Texto ProblemaComprimento(int64_t comprimento, int32_t total, int32_t tamanho) {
  if (comprimento < kTamanhoCabecalho)
    return msg::Formata(msg::dados::kCurtoDemaisBytes, InteiroParaTexto(comprimento),
                        InteiroParaTexto(kTamanhoCabecalho));
  if (tamanho <= 0) return {};
  const int64_t depois = comprimento - kInicioRegistros;  // from record 0's first byte on
  const int64_t inteiros = depois / tamanho;
  if (inteiros < total)
    return msg::Formata(msg::dados::kContagemAlemDoFim, InteiroParaTexto(total), InteiroParaTexto(inteiros));
  const int64_t sobra = depois - int64_t(total) * tamanho;
  // A file with no record ends with the header's last byte.
  if (total == 0 && sobra == 1) return {};
  if (sobra % tamanho == 0) return {};
  const int64_t fim = total == 0 ? kTamanhoCabecalho : kInicioRegistros + int64_t(total) * tamanho;
  return msg::Formata(msg::dados::kSobraNoFim, InteiroParaTexto(comprimento - fim), InteiroParaTexto(tamanho));
}

namespace {

// Whether a field's slot holds a stored form that reads back, of a length
// its type can use, or only blanks. The same test as reading the field,
// without reading it.
bool CampoLegivel(std::string_view fatia, TipoCampo tipo) {
  uint32_t n;
  std::memcpy(&n, fatia.data(), 4);  // every slot is at least 5 bytes wide
  if (n == 0x20202020u) return EmBranco(fatia);
  if (n == 0 || n > fatia.size() - 4) return false;
  if (static_cast<unsigned char>(fatia[4]) < 255 - 9) return false;  // the key number, complemented
  switch (tipo) {
    case TipoCampo::String: return true;
    case TipoCampo::AutoInc:
    case TipoCampo::Integer: return n >= 5;
    case TipoCampo::Decimal: return n >= 9;
  }
  return false;
}

}  // namespace

// ---- The file ---------------------------------------------------------------

namespace {

// Programs waiting for the lock hold a shared lock on this byte, far behind
// any data, so that a holder can see that somebody waits.
constexpr off_t kInteresse = off_t(1) << 62;
// How long after giving the lock back a new burst looks for waiters.
constexpr auto kCede = std::chrono::milliseconds(5);

struct Ao {
  std::function<void()> fim;
  ~Ao() { fim(); }
};

bool TravaFaixa(int fd, short tipo, off_t inicio, off_t tamanho) {
  struct flock fl {};
  fl.l_type = tipo;
  fl.l_whence = SEEK_SET;
  fl.l_start = inicio;
  fl.l_len = tamanho;
  return ::fcntl(fd, F_OFD_SETLK, &fl) == 0;
}

}  // namespace

ArquivoRegistros::~ArquivoRegistros() { Fecha(); }

void ArquivoRegistros::ParaSoltador() {
  if (!soltador_.joinable()) return;
  {
    Trinco l(m_);
    parar_ = true;
  }
  cv_.notify_all();
  soltador_.join();
  parar_ = false;
}

void ArquivoRegistros::Fecha() {
  ParaSoltador();
  Trinco l(m_);
  retida_ = false;
  Desmapeia();
  if (fd_ >= 0) ::close(fd_);  // lets the lock go
  fd_ = -1;
}

void ArquivoRegistros::Mapeia() {
  if (mapa_ || somenteLeitura_ || TamanhoArquivo() < kTamanhoCabecalho) return;
  void* p = ::mmap(nullptr, size_t(kTamanhoTrava), PROT_READ | PROT_WRITE, MAP_SHARED, fd_, 0);
  if (p != MAP_FAILED) mapa_ = static_cast<char*>(p);  // else the lock is written the slow way
}

void ArquivoRegistros::Desmapeia() {
  if (mapa_) ::munmap(mapa_, size_t(kTamanhoTrava));
  mapa_ = nullptr;
}

void ArquivoRegistros::EscreveTrava(std::string_view bytes) {
  if (mapa_)
    std::memcpy(mapa_, bytes.data(), bytes.size());
  else
    EscreveEm(0, bytes);
}

void ArquivoRegistros::SoltaRetida() {
  Trinco l(m_);
  Libera(l);
}

void ArquivoRegistros::Danificado(const Texto& problema) const {
  if (dano_.empty()) dano_ = problema;
  throw FalhaDano(U(NomeArquivo(caminho_)), problema);
}

void ArquivoRegistros::RecusaSeDanificado() const {
  if (!dano_.empty()) throw FalhaDano(U(NomeArquivo(caminho_)), dano_, true);
}

void ArquivoRegistros::Falha(const char* acao) const {
  int e = errno;
  throw FalhaRegistros(U(std::string(acao) + " " + NomeArquivo(caminho_) + ": " + std::strerror(e)));
}

void ArquivoRegistros::EscreveEm(int64_t posicao, std::string_view bytes) {
  size_t feito = 0;
  while (feito < bytes.size()) {
    ssize_t n = ::pwrite(fd_, bytes.data() + feito, bytes.size() - feito, off_t(posicao + int64_t(feito)));
    if (n < 0) {
      if (errno == EINTR) continue;
      Falha(msg::dados::kNaoEscreve);
    }
    feito += size_t(n);
  }
}

size_t ArquivoRegistros::LeEm(int64_t posicao, char* destino, size_t tamanho) {
  size_t feito = 0;
  while (feito < tamanho) {
    ssize_t n = ::pread(fd_, destino + feito, tamanho - feito, off_t(posicao + int64_t(feito)));
    if (n < 0) {
      if (errno == EINTR) continue;
      Falha(msg::dados::kNaoLeArquivo);
    }
    if (n == 0) break;
    feito += size_t(n);
  }
  return feito;
}

bool ArquivoRegistros::Reabre() {
  struct stat st;
  if (::fstat(fd_, &st) != 0) Falha(msg::dados::kNaoExamina);
  if (st.st_nlink > 0) return false;
  // Compaction by another program put a new file in this one's place.
  int novo = ::open(caminho_.c_str(), (somenteLeitura_ ? O_RDONLY : O_RDWR) | O_CLOEXEC);
  if (novo < 0) Falha(msg::dados::kNaoReabre);
  Desmapeia();
  ::close(fd_);
  fd_ = novo;
  return true;
}

void ArquivoRegistros::MarcaInteresse(bool sim) {
  TravaFaixa(fd_, sim ? F_RDLCK : F_UNLCK, kInteresse, 1);
}

bool ArquivoRegistros::InteresseDeOutro() {
  struct flock fl {};
  fl.l_type = F_WRLCK;
  fl.l_whence = SEEK_SET;
  fl.l_start = kInteresse;
  fl.l_len = 1;
  return ::fcntl(fd_, F_OFD_GETLK, &fl) == 0 && fl.l_type != F_UNLCK;
}

void ArquivoRegistros::Prende(Trinco& l, bool paraAdicionar) {
  if (fd_ < 0) throw FalhaRegistros(msg::dados::kArquivoFechado);
  auto pausa = std::chrono::microseconds(50);
  bool interessado = false;
  Ao desmarca{[&] {
    if (interessado && fd_ >= 0) MarcaInteresse(false);
  }};
  for (;;) {
    if (retida_) {
      // An add made while this one waited (by a timer's routine) keeps it.
      if (paraAdicionar) return;
      Descarrega();
    }
    if (TravaFaixa(fd_, somenteLeitura_ ? F_RDLCK : F_WRLCK, 0, kTamanhoTrava)) {
      if (!Reabre()) return;
      continue;  // closing the old file let its lock go
    }
    if (errno != EAGAIN && errno != EACCES && errno != EINTR) Falha(msg::dados::kNaoTrava);
    if (!interessado) {
      MarcaInteresse(true);
      interessado = true;
    }
    // The wait lets events through, which may use this object: not locked.
    l.unlock();
    bool segue = !aoEsperar || aoEsperar();
    if (segue) std::this_thread::sleep_for(pausa);
    l.lock();
    if (!segue) throw EsperaInterrompida();
    if (fd_ < 0) throw FalhaRegistros(msg::dados::kFechadoNaEspera);
    pausa = std::min(pausa * 2, std::chrono::microseconds(2000));
  }
}

void ArquivoRegistros::SoltaTrava() {
  if (fd_ >= 0) TravaFaixa(fd_, F_UNLCK, 0, kTamanhoTrava);
}

void ArquivoRegistros::CedeAVez(Trinco& l) {
  const auto limite = soltaEm_ + kCede;
  while (Relogio::now() < limite && InteresseDeOutro()) {
    l.unlock();
    std::this_thread::sleep_for(std::chrono::microseconds(50));
    l.lock();
    if (fd_ < 0) throw FalhaRegistros(msg::dados::kArquivoFechado);
  }
}

void ArquivoRegistros::Descarrega() {
  retida_ = false;
  soltaEm_ = Relogio::now();
  SoltaTrava();
}

void ArquivoRegistros::Libera(Trinco& l) {
  if (retida_) Descarrega();
}

void ArquivoRegistros::LacoSoltador() {
  Trinco l(m_);
  while (!parar_) {
    if (!retida_) {
      cv_.wait(l);
      continue;
    }
    auto prazo = tomadaEm_ + kRetencao;
    if (Relogio::now() < prazo) {
      cv_.wait_until(l, prazo);
      continue;
    }
    Descarrega();
  }
}

std::string ArquivoRegistros::LeTrava() {
  std::string t(kTamanhoTrava, ' ');
  if (LeEm(0, t.data(), t.size()) != t.size()) Danificado(msg::dados::kCurtoDemais);
  if (t[0] != kLivre && t[0] != kOcupado) Danificado(msg::dados::kTravaInvalida);
  return t;
}

int32_t ArquivoRegistros::Contagem(std::string_view trava) const {
  int32_t n = 0;
  if (!LeContagem(trava, n)) Danificado(msg::dados::kContagemIlegivel);
  return n;
}

int32_t ArquivoRegistros::Total() {
  Trinco l(m_);
  Libera(l);
  Prende(l, false);
  Ao g{[this] { SoltaTrava(); }};
  std::string t = LeTrava();
  int32_t n = Contagem(t);
  // Holding the lock, a busy byte can only be a dead program's. A damaged
  // file keeps even that byte.
  if (t[0] != kLivre && !somenteLeitura_ && dano_.empty()) EscreveEm(0, std::string(1, kLivre));
  return n;
}

int32_t ArquivoRegistros::Adiciona(std::string registro) {
  if (somenteLeitura_) throw FalhaRegistros(msg::dados::kSomenteLeitura);
  RecusaSeDanificado();
  Trinco l(m_);
  if (!retida_) {
    CedeAVez(l);
    Prende(l, true);
    if (!retida_) {
      try {
        trava_ = LeTrava();
        contagem_ = Contagem(trava_);
        // Once per burst: the file must end where its count says, or the
        // record would go where it doesn't belong. Within the burst nobody
        // who keeps to the lock can change the length, and a look at it for
        // every add would cost a fifth of the add.
        Texto p = ProblemaComprimento(TamanhoArquivo(), contagem_, estrutura_.tamanhoRegistro);
        if (!p.empty()) {
          dano_ = p;
          RecusaSeDanificado();
        }
        // Each add writes the count; through a mapping of the header's start
        // that costs no call into the system. It is made only on a file
        // whose header is whole.
        Mapeia();
        EscreveTrava(std::string(1, kOcupado));
      } catch (...) {
        SoltaTrava();
        throw;
      }
      retida_ = true;
      tomadaEm_ = Relogio::now();
      if (!soltador_.joinable()) soltador_ = std::thread(&ArquivoRegistros::LacoSoltador, this);
      cv_.notify_one();
    }
  }
  if (contagem_ >= kMaxRegistros)
    throw FalhaRegistros(msg::Formata(msg::dados::kArquivoCheio, U(NomeArquivo(caminho_)), InteiroParaTexto(kMaxRegistros)));
  const int32_t n = contagem_;
  for (const Campo& c : estrutura_.campos)
    if (c.tipo == TipoCampo::AutoInc) registro.replace(size_t(c.posicao - 1), 9, Embaralha(QuatroBytes(n)));
  // The record goes in before the count that shows it: a program that dies
  // in between leaves an unseen record, never a counted hole.
  EscreveEm(kInicioRegistros + int64_t(n) * estrutura_.tamanhoRegistro, registro);
  trava_[0] = kLivre;
  PoeContagem(trava_, n + 1);
  EscreveTrava(trava_);
  contagem_ = n + 1;
  if (Relogio::now() - tomadaEm_ >= kRetencao) Descarrega();
  return n;
}

void ArquivoRegistros::Grava(int32_t numero, std::string_view registro) {
  Trinco l(m_);
  Libera(l);
  if (fd_ < 0) throw FalhaRegistros(msg::dados::kArquivoFechado);
  if (somenteLeitura_) throw FalhaRegistros(msg::dados::kSomenteLeitura);
  RecusaSeDanificado();
  // What the write touches: the header's count, the file's length and the
  // record it replaces.
  const int32_t total = Contagem(LeTrava());
  Texto p = ProblemaComprimento(TamanhoArquivo(), total, estrutura_.tamanhoRegistro);
  if (p.empty() && numero >= 0 && numero < total) p = ProblemaRegistro(LeRegistros(numero, 1), numero);
  if (!p.empty()) {
    dano_ = p;
    RecusaSeDanificado();
  }
  EscreveEm(kInicioRegistros + int64_t(numero) * estrutura_.tamanhoRegistro, registro);
}

std::string ArquivoRegistros::LeBruto(int32_t numero, int32_t quantos) {
  Trinco l(m_);
  Libera(l);
  return LeRegistros(numero, quantos);
}

std::string ArquivoRegistros::LeRegistros(int32_t numero, int32_t quantos) {
  if (fd_ < 0) throw FalhaRegistros(msg::dados::kArquivoFechado);
  std::string r(size_t(quantos) * size_t(estrutura_.tamanhoRegistro), ' ');
  size_t n = LeEm(kInicioRegistros + int64_t(numero) * estrutura_.tamanhoRegistro, r.data(), r.size());
  if (n != r.size()) {
    int32_t falta = numero + int32_t(n / size_t(estrutura_.tamanhoRegistro));
    Danificado(msg::Formata(msg::dados::kRegistroAlemDoFim, InteiroParaTexto(falta)));
  }
  return r;
}

int64_t ArquivoRegistros::TamanhoArquivo() {
  struct stat st;
  if (::fstat(fd_, &st) != 0) Falha(msg::dados::kNaoExamina);
  return int64_t(st.st_size);
}

int64_t ArquivoRegistros::Comprimento() {
  Trinco l(m_);
  Libera(l);
  return TamanhoArquivo();
}

int32_t ArquivoRegistros::RegistrosNoComprimento() {
  int64_t n = Comprimento();
  if (n <= kInicioRegistros) return 0;
  return int32_t(std::min<int64_t>((n - kInicioRegistros) / estrutura_.tamanhoRegistro, INT32_MAX));
}

bool ArquivoRegistros::TravaComOutro() {
  Trinco l(m_);
  Libera(l);
  struct flock fl {};
  fl.l_type = F_WRLCK;
  fl.l_whence = SEEK_SET;
  fl.l_start = 0;
  fl.l_len = kTamanhoTrava;
  if (::fcntl(fd_, F_OFD_GETLK, &fl) != 0) Falha(msg::dados::kNaoExaminaTrava);
  return fl.l_type != F_UNLCK;
}

std::string ArquivoRegistros::Monta(const Registro& valores, int32_t autoInc, std::vector<size_t>* longos) const {
  std::string r(size_t(estrutura_.tamanhoRegistro), ' ');
  for (size_t i = 0; i < estrutura_.campos.size(); ++i) {
    const Campo& c = estrutura_.campos[i];
    const ValorCampo& v = valores[i];
    std::string a;
    switch (c.tipo) {
      case TipoCampo::String: {
        std::string t = ParaCp1252(v.texto);
        if (t.size() > size_t(c.comprimento)) {
          if (longos) longos->push_back(i);
          continue;
        }
        a = Embaralha(t);
        break;
      }
      case TipoCampo::AutoInc:
        if (autoInc < 0) continue;
        a = Embaralha(QuatroBytes(autoInc));
        break;
      case TipoCampo::Integer: a = Embaralha(QuatroBytes(v.inteiro)); break;
      case TipoCampo::Decimal: a = Embaralha(OitoBytes(v.decimal)); break;
    }
    r.replace(size_t(c.posicao - 1), a.size(), a);
  }
  return r;
}

std::string ArquivoRegistros::RegistroApagado() const {
  std::string marca = Embaralha(kMarcaApagado);
  if (size_t(estrutura_.tamanhoRegistro) < marca.size())
    throw FalhaRegistros(msg::Formata(msg::dados::kMarcaNaoCabe, InteiroParaTexto(estrutura_.tamanhoRegistro)));
  std::string r(size_t(estrutura_.tamanhoRegistro), ' ');
  r.replace(0, marca.size(), marca);
  return r;
}

bool ArquivoRegistros::EApagado(std::string_view bruto) {
  // The mark's stored form has the length 2: most records are told apart
  // without reading it.
  if (bruto.size() < 6 || bruto[0] != 2 || bruto[1] != 0 || bruto[2] != 0 || bruto[3] != 0) return false;
  // The mark is read from the record's start: a first field narrower than
  // the mark's six bytes lends it the room behind.
  std::string t;
  return DesembaralhaSeguro(bruto, t) && t == kMarcaApagado;
}

void ArquivoRegistros::DecodificaCampo(std::string_view bruto, int32_t numero, size_t i, ValorCampo& v) const {
  const Campo& c = estrutura_.campos[i];
  std::string_view fatia = bruto.substr(size_t(c.posicao - 1), size_t(c.largura));
  v = ValorCampo{};
  // A blank slot (a text that was too long for it) reads as empty.
  if (EmBranco(fatia)) return;
  std::string t;
  bool ok = DesembaralhaSeguro(fatia, t);
  if (ok && c.tipo == TipoCampo::String) {
    v.texto = DeCp1252(t);
  } else if (ok && (c.tipo == TipoCampo::AutoInc || c.tipo == TipoCampo::Integer) && t.size() >= 4) {
    std::memcpy(&v.inteiro, t.data(), 4);
  } else if (ok && c.tipo == TipoCampo::Decimal && t.size() >= 8) {
    std::memcpy(&v.decimal, t.data(), 8);
  } else {
    Danificado(msg::Formata(msg::dados::kCampoIlegivel, c.nome, InteiroParaTexto(numero)));
  }
}

Texto ProblemaRegistro(const Estrutura& e, std::string_view bruto, int32_t numero) {
  if (ArquivoRegistros::EApagado(bruto)) return {};
  for (const Campo& c : e.campos)
    if (!CampoLegivel(bruto.substr(size_t(c.posicao - 1), size_t(c.largura)), c.tipo))
      return msg::Formata(msg::dados::kCampoIlegivel, c.nome, InteiroParaTexto(numero));
  return {};
}

Texto ArquivoRegistros::ProblemaRegistro(std::string_view bruto, int32_t numero) const {
  return zv::ProblemaRegistro(estrutura_, bruto, numero);
}

Texto ArquivoRegistros::ProcuraDano(int32_t total) {
  const size_t tam = size_t(estrutura_.tamanhoRegistro);
  const int32_t porVez = int32_t(std::max<size_t>(1, (1 <<20) / tam));
  for (int32_t r = 0; r < total; r += porVez) {
    int32_t n = std::min(porVez, total - r);
    std::string bloco = LeRegistros(r, n);
    for (int32_t k = 0; k < n; ++k) {
      Texto p = ProblemaRegistro(std::string_view(bloco.data() + size_t(k) * tam, tam), r + k);
      if (!p.empty()) return p;
    }
  }
  return {};
}

bool ArquivoRegistros::Decodifica(std::string_view bruto, int32_t numero, Registro& valores) const {
  valores.assign(estrutura_.campos.size(), ValorCampo{});
  if (EApagado(bruto)) return false;
  for (size_t i = 0; i < estrutura_.campos.size(); ++i) DecodificaCampo(bruto, numero, i, valores[i]);
  return true;
}

fs::path ArquivoRegistros::CaminhoTrabalho(const fs::path& arquivo) {
  return arquivo.parent_path() / std::string(kArquivoTrabalho);
}

ArquivoRegistros::Declaracao ArquivoRegistros::Declara(const fs::path& arquivo, const Estrutura& e,
                                                        const Texto& senha, const Texto& carimbo, Texto& problema) {
  ArquivoRegistros a;
  a.caminho_ = arquivo;
  // Not waiting on opening: a pipe in the file's place would stop the run.
  a.fd_ = ::open(arquivo.c_str(), O_RDWR | O_CREAT | O_NONBLOCK | O_CLOEXEC, 0666);
  if (a.fd_ < 0 && errno == EISDIR) throw FalhaRegistros(msg::Formata(msg::dados::kPastaNoLugar, U(NomeArquivo(arquivo))));
  if (a.fd_ < 0) a.Falha(msg::dados::kNaoAbreNemCria);
  struct stat st;
  if (::fstat(a.fd_, &st) != 0) a.Falha(msg::dados::kNaoExamina);
  if (!S_ISREG(st.st_mode)) throw FalhaRegistros(msg::Formata(msg::dados::kNaoEArquivoComum, U(NomeArquivo(arquivo))));
  Trinco l(a.m_);
  a.Prende(l, false);
  Ao g{[&a] { a.SoltaTrava(); }};
  if (a.TamanhoArquivo() == 0) {
    // New (or left empty by a creation that never finished).
    Cabecalho c;
    c.estrutura = e;
    c.criacao = c.declaracao = carimbo;
    c.senha = senha;
    a.EscreveEm(0, MontaCabecalho(c));
    return Declaracao::Pronta;
  }
  std::string b(kTamanhoCabecalho, ' ');
  b.resize(a.LeEm(0, b.data(), b.size()));
  Cabecalho c;
  if (!LeCabecalho(b, c, problema)) return Declaracao::Danificada;
  if (c.estrutura.tamanhoRegistro != e.tamanhoRegistro) return Declaracao::TamanhoDiferente;
  // Nothing is written to a file before it is found sound: its length must
  // fit its count and every record must read, by the file's own fields.
  problema = ProblemaComprimento(a.TamanhoArquivo(), c.total, c.estrutura.tamanhoRegistro);
  if (problema.empty()) {
    a.estrutura_ = c.estrutura;
    problema = a.ProcuraDano(c.total);
  }
  if (!problema.empty()) return Declaracao::Danificada;
  b[0] = kLivre;  // we hold the lock: a busy byte is a dead program's
  PoeEmFatia(b, kDeclaracao, ParaCp1252(Corta(carimbo, kDeclaracao.largura - 5)));
  // The header's last byte is record 0's first: it is left as it stands.
  a.EscreveEm(0, std::string_view(b).substr(0, kInicioRegistros));
  return Declaracao::Pronta;
}

ArquivoRegistros::Abertura ArquivoRegistros::Abre(const fs::path& arquivo, const Estrutura* estrutura,
                                                   const Texto* senha, bool somenteLeitura, Texto& problema,
                                                   bool aindaQueCurto) {
  Fecha();
  dano_.clear();
  std::error_code ec;
  if (!fs::is_regular_file(arquivo, ec)) return Abertura::NaoEncontrada;
  Trinco l(m_);
  caminho_ = arquivo;
  somenteLeitura_ = somenteLeitura;
  fd_ = ::open(arquivo.c_str(), (somenteLeitura ? O_RDONLY : O_RDWR) | O_CLOEXEC);
  if (fd_ < 0) Falha(msg::dados::kNaoAbre);
  Abertura r = Abertura::Aberta;
  {
    Prende(l, false);
    Ao g{[this] { SoltaTrava(); }};
    std::string b(kTamanhoCabecalho, ' ');
    b.resize(LeEm(0, b.data(), b.size()));
    estrutura_ = Estrutura{};
    if (!LeCabecalho(b, cabecalho_, problema)) {
      r = Abertura::Danificada;
    } else if (estrutura && estrutura->tamanhoRegistro != cabecalho_.estrutura.tamanhoRegistro) {
      r = Abertura::TamanhoDiferente;
    } else if (senha && *senha != cabecalho_.senha) {
      r = Abertura::SenhaInvalida;
    } else {
      estrutura_ = estrutura ? *estrutura : cabecalho_.estrutura;
      problema = ProblemaComprimento(TamanhoArquivo(), cabecalho_.total, estrutura_.tamanhoRegistro);
      if (!problema.empty() && aindaQueCurto && somenteLeitura) dano_ = problema;
      else if (!problema.empty()) r = Abertura::Danificada;
    }
  }
  if (r != Abertura::Aberta) {
    ::close(fd_);
    fd_ = -1;
  }
  return r;
}

ArquivoRegistros::Compactacao ArquivoRegistros::Compacta(fs::path& trabalho, int32_t& novoTotal) {
  if (somenteLeitura_) throw FalhaRegistros(msg::dados::kSomenteLeitura);
  RecusaSeDanificado();
  Trinco l(m_);
  Libera(l);
  trabalho = CaminhoTrabalho(caminho_);
  Prende(l, false);
  Ao g{[this] { SoltaTrava(); }};
  struct stat st;
  if (::fstat(fd_, &st) != 0) Falha(msg::dados::kNaoExamina);
  // Creating it exclusively makes the presence test and the claim one step.
  int w = ::open(trabalho.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, st.st_mode & 07777);
  if (w < 0) {
    if (errno == EEXIST) return Compactacao::TrabalhoExiste;
    int e = errno;
    throw FalhaRegistros(U(std::string(msg::dados::kNaoCria) + " " + trabalho.string() + ": " + std::strerror(e)));
  }
  ArquivoRegistros saida;
  saida.fd_ = w;
  saida.caminho_ = trabalho;
  bool pronto = false;
  Ao limpa{[&] {
    if (!pronto) {
      ::close(std::exchange(saida.fd_, -1));
      ::unlink(trabalho.c_str());
    }
  }};

  std::string cab(kTamanhoCabecalho, ' ');
  cab.resize(LeEm(0, cab.data(), cab.size()));
  Cabecalho c;
  Texto problema;
  if (!LeCabecalho(cab, c, problema)) Danificado(problema);
  const int32_t total = c.total;
  const size_t tam = size_t(c.estrutura.tamanhoRegistro);
  problema = ProblemaComprimento(TamanhoArquivo(), total, int32_t(tam));
  if (!problema.empty()) {
    dano_ = problema;
    RecusaSeDanificado();
  }
  saida.EscreveEm(0, cab);
  const bool renumera = Maiusculas(PalavraTipo(c.estrutura.campos[0].tipo)) == u"AUTOINC";

  int32_t escritos = 0;
  const int32_t porVez = int32_t(std::max<size_t>(1, (1 << 20) / tam));
  std::string lote;
  for (int32_t r = 0; r < total; r += porVez) {
    int32_t n = std::min(porVez, total - r);
    std::string bloco = LeRegistros(r, n);
    lote.clear();
    for (int32_t k = 0; k < n; ++k) {
      std::string_view reg(bloco.data() + size_t(k) * tam, tam);
      if (EApagado(reg)) continue;
      // A record that can't be read stops the copy: the file stays whole.
      problema = ProblemaRegistro(reg, r + k);
      if (!problema.empty()) {
        dano_ = problema;
        RecusaSeDanificado();
      }
      size_t ini = lote.size();
      lote.append(reg);
      // A first AutoInc field becomes the record's new number.
      if (renumera) lote.replace(ini, 9, Embaralha(QuatroBytes(escritos + int32_t(ini / tam))));
    }
    saida.EscreveEm(kInicioRegistros + int64_t(escritos) * int64_t(tam), lote);
    escritos += int32_t(lote.size() / tam);
  }

  // The header again, with the new count; its last byte is the copy's first
  // record's and stays.
  cab.resize(kTamanhoCabecalho, ' ');
  LeEm(0, cab.data(), cab.size());
  cab[0] = kLivre;
  PoeContagem(cab, escritos);
  saida.EscreveEm(0, std::string_view(cab).substr(0, kInicioRegistros));
  if (::fsync(w) != 0) saida.Falha(msg::dados::kNaoEscreve);
  if (::rename(trabalho.c_str(), caminho_.c_str()) != 0) saida.Falha(msg::dados::kNaoSubstitui);
  pronto = true;
  ::close(std::exchange(saida.fd_, -1));
  // Closing the old file lets its lock go; programs waiting on it find it
  // replaced and open the new one.
  int novo = ::open(caminho_.c_str(), O_RDWR | O_CLOEXEC);
  if (novo < 0) Falha(msg::dados::kNaoReabre);
  Desmapeia();
  ::close(fd_);
  fd_ = novo;
  novoTotal = escritos;
  return Compactacao::Feita;
}

// ---- Order list -------------------------------------------------------------

namespace {

char16_t SemAcento(char16_t c) {
  switch (c) {
    case u'Á': case u'À': case u'Ã': return u'A';
    case u'á': case u'à': case u'ã': return u'a';
    case u'É': case u'Ê': return u'E';
    case u'é': case u'ê': return u'e';
    case u'Í': return u'I';
    case u'í': return u'i';
    case u'Ó': case u'Õ': case u'Ô': return u'O';
    case u'ó': case u'õ': case u'ô': return u'o';
    case u'Ú': return u'U';
    case u'ú': return u'u';
    case u'Ç': return u'C';
    case u'ç': return u'c';
    default: return c;
  }
}

}  // namespace

Texto TiraAcentos(TextoV texto) {
  Texto t(texto.substr(0, std::min<size_t>(texto.size(), 131)));
  for (char16_t& c : t) c = SemAcento(c);
  return t;
}

namespace {

// Capitals and no accents, control characters as blanks (so that a blank is
// the lowest character and trimming keeps the order), for a whole text.
void Normaliza(Texto& t) {
  for (char16_t& c : t) c = SemAcento(Maiuscula(c < u' ' ? u' ' : c));
}

Texto AparaDireitaCorta(TextoV t) {
  size_t b = t.size();
  while (b > 0 && t[b - 1] == u' ') --b;
  return Texto(t.substr(0, std::min<size_t>(b, 131)));
}

}  // namespace

Texto ChaveIndice(const Estrutura& e, const Registro* valores, const std::vector<int>& camposIndice,
                  int32_t numero) {
  Texto k;
  if (valores) {
    for (int f : camposIndice) {
      const Campo& c = e.campos[size_t(f)];
      // The piece starts one character left of the column: on the line's
      // opening quote, or on the last character of the column before.
      if (f == 0) {
        k += u'"';
      } else {
        const Campo& antes = e.campos[size_t(f - 1)];
        Texto v = TextoValor(antes, (*valores)[size_t(f - 1)]);
        k += v.size() >= size_t(antes.largura) ? v[size_t(antes.largura - 1)] : u' ';
      }
      Texto v = TextoValor(c, (*valores)[size_t(f)]);
      v.resize(size_t(c.largura - 1), u' ');
      k += v;
    }
  }
  k += Preenche(numero, 6);
  return k;
}

bool ChaveBusca(const Estrutura& e, const std::vector<int>& camposIndice, const std::vector<Texto>& valores,
                Texto& chave) {
  chave.clear();
  for (size_t i = 0; i < valores.size(); ++i) {
    if (i >= camposIndice.size()) return false;
    Texto v = valores[i];
    size_t largura = size_t(e.campos[size_t(camposIndice[i])].largura);
    if (v.size() < largura) v.resize(largura, u' ');
    chave += v;
  }
  return true;
}

ModoBusca LeModoBusca(TextoV modo) {
  Texto m = Maiusculas(modo);
  if (m == u"FIRST") return ModoBusca::Primeiro;
  if (m == u"LAST") return ModoBusca::Ultimo;
  if (m == u"NEXT") return ModoBusca::Proximo;
  return ModoBusca::Simples;
}

ListaOrdem::Entrada ListaOrdem::FazEntrada(Texto chave, int32_t registro) {
  size_t a = (!chave.empty() && chave[0] == u'"') ? 1 : 0;
  size_t b = a;
  while (b < chave.size() && chave[b] == u' ') ++b;
  chave.erase(0, b);
  Normaliza(chave);
  return Entrada{std::move(chave), registro, uint16_t(std::min<size_t>(b - a, 65535))};
}

void ListaOrdem::Limpa() {
  blocos_.clear();
  inicios_.clear();
  tamanho_ = 0;
  sujo_ = false;
}

void ListaOrdem::Reindexa() const {
  inicios_.resize(blocos_.size());
  int32_t n = 0;
  for (size_t b = 0; b < blocos_.size(); ++b) {
    inicios_[b] = n;
    n += int32_t(blocos_[b].size());
  }
  sujo_ = false;
}

const ListaOrdem::Entrada& ListaOrdem::Em(int32_t indice) const {
  if (sujo_) Reindexa();
  size_t b = size_t(std::upper_bound(inicios_.begin(), inicios_.end(), indice) - inicios_.begin()) - 1;
  return blocos_[b][size_t(indice - inicios_[b])];
}

int32_t ListaOrdem::RegistroEm(int32_t indice) const {
  if (indice < 0 || indice >= tamanho_) return -1;
  return Em(indice).registro;
}

void ListaOrdem::Insere(const Texto& chave, int32_t registro) {
  Entrada e = FazEntrada(chave, registro);
  if (blocos_.empty()) blocos_.emplace_back();
  auto bloco = std::lower_bound(blocos_.begin(), blocos_.end(), e, [](const std::vector<Entrada>& b, const Entrada& x) {
    return !b.empty() && b.back() < x;
  });
  if (bloco == blocos_.end()) --bloco;
  auto& v = *bloco;
  v.insert(std::upper_bound(v.begin(), v.end(), e), std::move(e));
  if (v.size() > 2 * kBloco) {
    std::vector<Entrada> metade(std::make_move_iterator(v.begin() + kBloco), std::make_move_iterator(v.end()));
    v.resize(kBloco);
    blocos_.insert(bloco + 1, std::move(metade));
  }
  ++tamanho_;
  sujo_ = true;
}

void ListaOrdem::RemoveEm(int32_t indice) {
  if (indice < 0 || indice >= tamanho_) return;
  if (sujo_) Reindexa();
  size_t b = size_t(std::upper_bound(inicios_.begin(), inicios_.end(), indice) - inicios_.begin()) - 1;
  auto& v = blocos_[b];
  v.erase(v.begin() + (indice - inicios_[b]));
  if (v.empty()) blocos_.erase(blocos_.begin() + std::ptrdiff_t(b));
  --tamanho_;
  sujo_ = true;
}

void ListaOrdem::Monta(std::vector<std::pair<Texto, int32_t>> chaves) {
  Limpa();
  std::vector<Entrada> todas;
  todas.reserve(chaves.size());
  for (auto& [k, r] : chaves) todas.push_back(FazEntrada(std::move(k), r));
  chaves.clear();
  std::sort(todas.begin(), todas.end());
  for (size_t i = 0; i < todas.size(); i += kBloco) {
    size_t f = std::min(todas.size(), i + kBloco);
    blocos_.emplace_back(std::make_move_iterator(todas.begin() + std::ptrdiff_t(i)),
                         std::make_move_iterator(todas.begin() + std::ptrdiff_t(f)));
  }
  tamanho_ = int32_t(todas.size());
  sujo_ = true;
}

int ListaOrdem::Compara(const Texto& busca, size_t tamanhoBusca, int32_t indice) const {
  const Entrada& e = Em(indice);
  // The entry cut to the search key's length, less its opening quote and
  // the blanks that were taken off its start.
  size_t corte = tamanhoBusca > 0 ? tamanhoBusca - 1 : 0;
  corte = corte > e.recuo ? corte - e.recuo : 0;
  Texto item = AparaDireitaCorta(TextoV(e.ordem).substr(0, corte));
  return busca.compare(item) < 0 ? -1 : (busca == item ? 0 : 1);
}

int32_t ListaOrdem::Busca(TextoV chave, ModoBusca modo) const {
  Texto k(chave);
  Normaliza(k);
  k = AparaDireitaCorta(Apara(k));
  const size_t tam = chave.size();
  int32_t lo = -1, hi = tamanho_, achado = -1;
  while (hi != lo + 1) {
    int32_t meio = (hi + lo) / 2;
    int c = Compara(k, tam, meio);
    if (c < 0) {
      hi = meio;
    } else if (c > 0) {
      lo = meio;
    } else {
      achado = meio;
      break;
    }
  }
  if (achado < 0) {
    if (modo == ModoBusca::Proximo) return hi < tamanho_ ? hi : hi - 1;
    return -1;
  }
  if (modo == ModoBusca::Primeiro)
    while (achado > 0 && Compara(k, tam, achado - 1) == 0) --achado;
  if (modo == ModoBusca::Ultimo)
    while (achado + 1 < tamanho_ && Compara(k, tam, achado + 1) == 0) ++achado;
  return achado;
}

void ConstroiOrdem(ArquivoRegistros& arquivo, const std::vector<int>& camposIndice, ListaOrdem& lista) {
  const Estrutura& e = arquivo.estrutura();
  // Only the index fields and the fields in front of them are read.
  std::vector<size_t> lidos;
  for (int f : camposIndice) {
    if (f > 0) lidos.push_back(size_t(f - 1));
    lidos.push_back(size_t(f));
  }
  std::sort(lidos.begin(), lidos.end());
  lidos.erase(std::unique(lidos.begin(), lidos.end()), lidos.end());

  const int32_t total = arquivo.Total();
  const size_t tam = size_t(e.tamanhoRegistro);
  const int32_t porVez = int32_t(std::max<size_t>(1, (1 << 20) / tam));
  std::vector<std::pair<Texto, int32_t>> chaves;
  chaves.reserve(size_t(total));
  Registro valores(e.campos.size());
  for (int32_t r = 0; r < total; r += porVez) {
    int32_t n = std::min(porVez, total - r);
    std::string bloco = arquivo.LeBruto(r, n);
    for (int32_t k = 0; k < n; ++k) {
      std::string_view reg(bloco.data() + size_t(k) * tam, tam);
      if (ArquivoRegistros::EApagado(reg)) {
        chaves.emplace_back(ChaveIndice(e, nullptr, camposIndice, r + k), r + k);
        continue;
      }
      for (size_t f : lidos) arquivo.DecodificaCampo(reg, r + k, f, valores[f]);
      chaves.emplace_back(ChaveIndice(e, &valores, camposIndice, r + k), r + k);
    }
  }
  lista.Monta(std::move(chaves));
}

}  // namespace zv
