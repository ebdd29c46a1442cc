// The language's side of the record database: the DB ... EndDB block, which
// declares a database and binds its fields to variables, and the record
// commands, which move whole records between those variables and the file.
#include <sys/stat.h>

#include <array>
#include <filesystem>
#include <map>
#include <memory>

#include "core/interpretador.h"
#include "core/preparacao.h"
#include "data/dados.h"
#include "data/registros_arquivo.h"

// Qt last: its keyword macros would clash with the core's names.
#include <QDateTime>
#include <QLocale>

namespace zv {

namespace {

namespace fs = std::filesystem;

constexpr size_t kSlotsDB = 21;
// Slot 0 is never used; the order tables stop at slot 10.
constexpr int16_t kUltimaBase = 10;

// Order modes, as the order tables hold them.
const Texto kSequencial = u"Sequencial";
const Texto kIndice = u"Indice";

struct BaseDeclarada {
  Texto nome;                  // NomeDB
  Texto pasta;                 // DirDB, with its separator at the end
  Estrutura estrutura;         // field types, widths and positions
  std::vector<Texto> campoDB;  // CampoDB: "Descriptor.Field"
  ArquivoRegistros arqDB;      // ArqDB
  Texto modoOrdem;             // ModoOrdem
  std::vector<Texto> campoIndice;
  std::vector<int> indices;    // the fields of campoIndice, by number
  ListaOrdem lstOrdem;         // LstOrdem

  Texto Caminho() const { return pasta + nome + u".Zvf"; }
};

// A damaged file: what is wrong, and which file it was. Another file put in
// its place (deleted and made anew, or mended) is not that file.
struct DanoArquivo {
  Texto problema;
  dev_t dispositivo = 0;
  ino_t inode = 0;
};

bool Identidade(const Texto& caminho, dev_t& dispositivo, ino_t& inode);

struct TabelaBases {
  std::array<std::unique_ptr<BaseDeclarada>, kSlotsDB> bases;
  int16_t qtdDB = 1;  // QtdDB
  // Files this run has found damaged, by ChaveArquivo, with what is wrong:
  // nothing of the run writes to them again.
  std::map<std::string, DanoArquivo> danificados;
};

fs::path ParaCaminho(const Texto& t) { return fs::path(Utf8(t)); }

// One key per file however a program names it (two descriptors, or two
// spellings of a folder, may reach one file).
std::string ChaveArquivo(const Texto& caminho) {
  std::error_code ec;
  fs::path p = fs::weakly_canonical(ParaCaminho(caminho), ec);
  return ec ? fs::absolute(ParaCaminho(caminho), ec).lexically_normal().string() : p.string();
}

bool Identidade(const Texto& caminho, dev_t& dispositivo, ino_t& inode) {
  struct stat st;
  if (::stat(ParaCaminho(caminho).c_str(), &st) != 0) return false;
  dispositivo = st.st_dev;
  inode = st.st_ino;
  return true;
}

// What this run found wrong with the file at a path, or null.
const Texto* DanoConhecido(Interpretador& zv, const Texto& caminho) {
  auto& d = zv.Estado<TabelaBases>().danificados;
  auto i = d.find(ChaveArquivo(caminho));
  if (i == d.end()) return nullptr;
  dev_t dispositivo;
  ino_t inode;
  if (!Identidade(caminho, dispositivo, inode) || dispositivo != i->second.dispositivo || inode != i->second.inode) {
    d.erase(i);
    return nullptr;
  }
  return &i->second.problema;
}

void NotaDano(Interpretador& zv, const Texto& caminho, const Texto& problema) {
  DanoArquivo d{problema};
  Identidade(caminho, d.dispositivo, d.inode);
  zv.Estado<TabelaBases>().danificados.insert_or_assign(ChaveArquivo(caminho), d);
}

Texto MensagemTamanho(const Texto& nome) {
  return msg::dados::NaBase(nome, msg::dados::kTamanhoMudou);
}

Texto MensagemDanificado(const Texto& caminho, const Texto& problema) { return MensagemDano(caminho, problema); }

// The stamps of the header: the date and the time in the locale's short form.
Texto Carimbo() {
  QDateTime agora = QDateTime::currentDateTime();
  QLocale l = QLocale::system();
  QString s = l.toString(agora.date(), QLocale::ShortFormat) + u' ' + agora.time().toString(u"HH:mm:ss");
  return Texto(reinterpret_cast<const char16_t*>(s.utf16()), size_t(s.size()));
}

BaseDeclarada* Base(Interpretador& zv, int s) { return zv.Estado<TabelaBases>().bases[size_t(s)].get(); }

// LocalizaDB: the slot of a descriptor, or -1 after telling the user.
int LocalizaDB(Interpretador& zv, const Texto& nome) {
  auto& t = zv.Estado<TabelaBases>();
  Texto m = Maiusculas(nome);
  for (size_t s = 0; s < kSlotsDB - 1; ++s)
    if (t.bases[s] && Maiusculas(t.bases[s]->nome) == m) return int(s);
  zv.CaixaCritica(msg::Formata(msg::dados::kDescritorNaoEncontrado, nome));
  return -1;
}

// The database named by the first argument, with an open file; null when the
// name is unknown (LocalizaDB has said so).
BaseDeclarada* BaseAberta(Interpretador& zv, const std::vector<Texto>& a) {
  int s = LocalizaDB(zv, zv.ValorTexto(a[0]).ComoTexto());
  if (s < 0) return nullptr;
  BaseDeclarada* b = Base(zv, s);
  if (!b->arqDB.Aberto()) {
    // A file OpenDB refused as damaged: say that, not only that it is closed.
    if (const Texto* p = DanoConhecido(zv, b->Caminho())) throw FalhaHost(MensagemDanificado(b->Caminho(), *p));
    throw FalhaHost(msg::Formata(msg::dados::kBaseFechada, b->nome));
  }
  return b;
}

// AddRecord, UpdateRecord, DeleteRecord and ReadRecord: they let pending
// events through, then split their arguments and find their open database
// (null when the name is unknown).
BaseDeclarada* ComandoDeRegistro(Interpretador& zv, const Texto& args, std::vector<Texto>& a) {
  zv.Bombeia();
  a = zv.SeparaArgumentos(args, 4);
  return BaseAberta(zv, a);
}

// Before a command writes: a file this run found damaged is refused, and the
// open file learns of it (another descriptor of the same file may have
// found it).
void RecusaDanificada(Interpretador& zv, BaseDeclarada& b) {
  if (const Texto* p = DanoConhecido(zv, b.Caminho())) {
    b.arqDB.MarcaDano(*p);
    throw FalhaHost(MensagemEscritaRecusada(b.Caminho(), *p));
  }
}

int32_t Posicao(Interpretador& zv, const Texto& arg) { return zv.ValorNumerico(arg).ComoInt32(); }

Texto MensagemPosicao(int32_t posicao) {
  return msg::Formata(msg::dados::kPosicaoInvalida, InteiroParaTexto(posicao));
}

// The field variables' values.
Registro LeCampos(Interpretador& zv, const BaseDeclarada& b) {
  Registro r(b.estrutura.campos.size());
  for (size_t i = 0; i < r.size(); ++i) {
    const Campo& c = b.estrutura.campos[i];
    if (c.tipo == TipoCampo::AutoInc) continue;  // the system gives it
    Valor v = zv.LeVariavel(b.campoDB[i]);
    if (c.tipo == TipoCampo::String) r[i].texto = v.ComoTexto();
    else if (c.tipo == TipoCampo::Integer) r[i].inteiro = v.ComoInt32();
    else r[i].decimal = v.ComoDouble();
  }
  return r;
}

void GravaCampos(Interpretador& zv, const BaseDeclarada& b, const Registro& r) {
  for (size_t i = 0; i < r.size(); ++i) {
    const Campo& c = b.estrutura.campos[i];
    Valor v;
    if (c.tipo == TipoCampo::String) v = Valor::DeTexto(r[i].texto);
    else if (c.tipo == TipoCampo::Decimal) v = Valor::DeDouble(r[i].decimal);
    else v = Valor::DeInt32(r[i].inteiro);
    zv.GravaVariavel(b.campoDB[i], v, true);
  }
}

// The record from the field variables; a text too long for its field is
// reported and the field left blank.
std::string MontaRegistro(Interpretador& zv, const BaseDeclarada& b, const Texto& comando, Registro& r,
                          int32_t autoInc) {
  std::vector<size_t> longos;
  std::string bytes = b.arqDB.Monta(r, autoInc, &longos);
  for (size_t i : longos) {
    zv.ErroExecucao(msg::Formata(msg::dados::kCampoPequeno, comando, b.campoDB[i]));
    r[i].texto.clear();
  }
  for (size_t i = 0; i < r.size(); ++i)
    if (b.estrutura.campos[i].tipo == TipoCampo::AutoInc) r[i].inteiro = autoInc;
  return bytes;
}

// ---- The DB block -----------------------------------------------------------

struct Declaracao {
  Texto nome, pasta, senha;
  Estrutura estrutura;
  std::vector<Texto> campoDB;
  Texto problema;
};

// One field line: declares its variable and adds the field.
void LinhaCampo(Interpretador& zv, const Texto& comando, Declaracao& d) {
  auto a = zv.SeparaArgumentos(comando, 11);
  Texto campo = zv.ValorTexto(a[0]).ComoTexto();
  Texto palavra = zv.ValorTexto(a[1]).ComoTexto();
  TipoCampo tipo;
  if (!LeTipoCampo(palavra, tipo)) {
    if (d.problema.empty())
      d.problema = msg::Formata(msg::dados::kTipoDeCampo, campo, palavra);
    return;
  }
  int32_t comprimento = (tipo == TipoCampo::String && !a[2].empty()) ? zv.ValorNumerico(a[2]).ComoInt32() : 0;
  Texto completo = d.nome + u"." + campo;
  zv.CriaVariavel(completo, tipo == TipoCampo::String ? u"String" : tipo == TipoCampo::Decimal ? u"Decimal" : u"Integer");
  d.estrutura.Acrescenta(campo, tipo, comprimento);
  d.campoDB.push_back(completo);
}

// Creates or checks the file and takes a slot.
void Declara(Interpretador& zv, Declaracao& d) {
  const Texto titulo = msg::Formata(msg::dados::kNaBase, d.nome);
  if (d.problema.empty()) d.problema = d.estrutura.Problema();
  if (d.problema.empty() && d.senha.size() > size_t(kMaxNome))
    d.problema = msg::Formata(msg::dados::kSenhaLonga, InteiroParaTexto(kMaxNome));
  if (!d.problema.empty()) {
    zv.CaixaCritica(titulo + d.problema + u"!");
    return;
  }
  auto& tab = zv.Estado<TabelaBases>();
  // A block run again (in a loop, a routine called twice) keeps its slot.
  int slot = -1;
  for (int16_t s = 1; s < tab.qtdDB; ++s)
    if (tab.bases[size_t(s)] && Maiusculas(tab.bases[size_t(s)]->nome) == Maiusculas(d.nome) &&
        tab.bases[size_t(s)]->pasta == d.pasta)
      slot = s;
  if (slot < 0 && tab.qtdDB > kUltimaBase) {
    zv.CaixaCritica(titulo + msg::Formata(msg::dados::kBasesDemais, InteiroParaTexto(kUltimaBase)));
    return;
  }
  std::error_code ec;
  if (!d.pasta.empty()) fs::create_directories(ParaCaminho(d.pasta), ec);  // a failure shows at the open
  Texto caminho = d.pasta + d.nome + u".Zvf";
  Texto problema;
  // A file this run found damaged isn't touched again, not even for the stamp.
  auto r = ArquivoRegistros::Declaracao::Danificada;
  if (const Texto* p = DanoConhecido(zv, caminho))
    problema = *p;
  else
    r = ArquivoRegistros::Declara(ParaCaminho(caminho), d.estrutura, d.senha, Carimbo(), problema);
  if (r == ArquivoRegistros::Declaracao::TamanhoDiferente) {
    zv.CaixaCritica(MensagemTamanho(d.nome));
    return;
  }
  if (r == ArquivoRegistros::Declaracao::Danificada) {
    // The slot is still taken, so that the commands on it say what is wrong
    // rather than that the database isn't declared.
    NotaDano(zv, caminho, problema);
    zv.CaixaCritica(titulo + MensagemDanificado(caminho, problema) + msg::dados::kDeixadoComoEsta);
  }
  if (slot >= 0) return;
  auto b = std::make_unique<BaseDeclarada>();
  b->nome = d.nome;
  b->pasta = d.pasta;
  b->estrutura = std::move(d.estrutura);
  b->campoDB = std::move(d.campoDB);
  // Waiting for another program's lock lets this one's events through.
  b->arqDB.aoEsperar = [&zv] {
    zv.Bombeia();
    return zv.executando && !zv.abortado;
  };
  tab.bases[size_t(tab.qtdDB)] = std::move(b);
  ++tab.qtdDB;
}

int32_t BlocoDB(Interpretador& zv, const Texto& texto, size_t posicao, size_t fim, int32_t numero) {
  auto comandoDe = [](const Texto& linha) { return linha.size() > kColunaComando ? Apara(linha.substr(kColunaComando)) : Texto(); };
  Texto primeira = comandoDe(texto.substr(posicao, fim - posicao));
  // "DB" must be a word of its own: "DBTotal = 1" is an assignment.
  if (primeira.size() > 2 && primeira[2] != u' ') {
    zv.ExecutaComando(texto.substr(posicao, fim - posicao));
    return numero;
  }
  // The block's statements, up to its EndDB.
  std::vector<Texto> linhas{primeira};
  int32_t ultimo = numero;
  bool fechado = false;
  for (size_t p = posicao;;) {
    p = texto.find(u"&#" + Preenche(ultimo + 1, 5), p);
    if (p == NPOS) break;
    size_t f = texto.find(CRLF, p);
    Texto c = comandoDe(texto.substr(p, (f == NPOS ? texto.size() : f) - p));
    Texto m = Maiusculas(c);
    // A block left open ends where the main code or a routine does.
    if (m == u"ENDPROGRAM" || ComecaCom(m, u"SUB ") || ComecaCom(m, u"FUNCTION ")) break;
    ++ultimo;
    if (ComecaCom(m, u"ENDDB")) {
      fechado = true;
      break;
    }
    linhas.push_back(std::move(c));
  }

  Declaracao d;
  try {
    auto a = zv.SeparaArgumentos(primeira, 11);
    d.nome = Interpretador::RemoveAspas(Apara(a[0].size() > 3 ? a[0].substr(3) : Texto()));
    d.estrutura.descritor = d.nome;
    if (!a[1].empty()) d.pasta = zv.ValorTexto(a[1]).ComoTexto();
    if (!a[2].empty()) d.senha = zv.ValorTexto(a[2]).ComoTexto();
    // A program may write either separator.
    for (char16_t& c : d.pasta)
      if (c == u'\\') c = u'/';
    if (!d.pasta.empty() && d.pasta.back() != u'/') d.pasta += u'/';
    if (!fechado) {
      zv.CaixaCritica(msg::dados::NaBase(d.nome, msg::dados::kSemEndDB));
      return ultimo;
    }
    for (size_t i = 1; i < linhas.size(); ++i) LinhaCampo(zv, linhas[i], d);
    Declara(zv, d);
  } catch (const FalhaHost& f) {
    zv.ErroExecucao(msg::FalhaDeComando(u"DB", f.descricao));
  } catch (const FalhaRegistros& f) {
    zv.ErroExecucao(msg::FalhaDeComando(u"DB", f.descricao));
  }
  return ultimo;
}

// ---- The commands -----------------------------------------------------------

// A failure of the file reaches the command's handler as a host failure; a
// wait for the lock given up because the run ended says nothing.
template <Valor (*R)(Interpretador&, const Texto&)>
Valor Protegido(Interpretador& zv, const Texto& args) {
  try {
    return R(zv, args);
  } catch (const FalhaRegistros& f) {
    if (f.dano) NotaDano(zv, f.arquivo, f.problema);
    throw FalhaHost(f.descricao);
  } catch (const EsperaInterrompida&) {
    return Valor();
  }
}

Valor OpenDB(Interpretador& zv, const Texto& args) {
  auto a = zv.SeparaArgumentos(args, 4);
  int s = LocalizaDB(zv, zv.ValorTexto(a[0]).ComoTexto());
  if (s < 0) return {};
  BaseDeclarada& b = *Base(zv, s);
  Texto senha = a[1].empty() ? Texto() : zv.ValorTexto(a[1]).ComoTexto();
  senha = DeCp1252(ParaCp1252(senha));  // as the header holds it
  Texto problema;
  // A file known to be damaged is opened for reading only: what can be read
  // of it still can, and nothing is written.
  const Texto* dano = DanoConhecido(zv, b.Caminho());
  switch (b.arqDB.Abre(ParaCaminho(b.Caminho()), &b.estrutura, &senha, dano != nullptr, problema)) {
    case ArquivoRegistros::Abertura::Aberta:
      if (dano) b.arqDB.MarcaDano(*dano);
      break;
    case ArquivoRegistros::Abertura::NaoEncontrada:
      zv.ErroExecucao(msg::Formata(msg::dados::kOpenDBSemArquivo, b.Caminho()));
      break;
    case ArquivoRegistros::Abertura::SenhaInvalida:
      zv.ErroExecucao(msg::Formata(msg::dados::kSenhaInvalida, b.nome));
      break;
    case ArquivoRegistros::Abertura::TamanhoDiferente: zv.CaixaCritica(MensagemTamanho(b.nome)); break;
    case ArquivoRegistros::Abertura::Danificada:
      NotaDano(zv, b.Caminho(), problema);
      throw FalhaHost(MensagemDanificado(b.Caminho(), problema));
  }
  return {};
}

Valor CloseDB(Interpretador& zv, const Texto& args) {
  auto a = zv.SeparaArgumentos(args, 4);
  int s = LocalizaDB(zv, zv.ValorTexto(a[0]).ComoTexto());
  if (s >= 0) Base(zv, s)->arqDB.Fecha();
  return {};
}

Valor AddRecord(Interpretador& zv, const Texto& args) {
  std::vector<Texto> a;
  BaseDeclarada* b = ComandoDeRegistro(zv, args, a);
  if (!b) return {};
  RecusaDanificada(zv, *b);
  Registro r = LeCampos(zv, *b);
  std::string bytes = MontaRegistro(zv, *b, u"AddRecord", r, -1);
  int32_t n = b->arqDB.Adiciona(std::move(bytes));
  if (b->modoOrdem == kIndice) {
    for (size_t i = 0; i < r.size(); ++i)
      if (b->estrutura.campos[i].tipo == TipoCampo::AutoInc) r[i].inteiro = n;
    b->lstOrdem.Insere(ChaveIndice(b->estrutura, &r, b->indices, n), n);
  }
  return {};
}

// The record number behind a position that has been checked against the
// count; -1 (after the report) when the order list has no such entry.
int32_t NumeroRegistro(Interpretador& zv, BaseDeclarada& b, int32_t posicao) {
  if (b.modoOrdem != kIndice) return posicao;
  int32_t n = b.lstOrdem.RegistroEm(posicao);
  if (n < 0) zv.ErroExecucao(MensagemPosicao(posicao));
  return n;
}

// UpdateRecord and DeleteRecord: a whole record written at a position, its
// entry in the order list replaced.
void RegravaRegistro(Interpretador& zv, BaseDeclarada& b, int32_t posicao, const std::string& bytes,
                     const Registro* valores, const char16_t* mensagem) {
  int32_t total = b.arqDB.Total();
  if (posicao < 0 || posicao > total) {
    zv.ErroExecucao(mensagem);
    return;
  }
  int32_t n = NumeroRegistro(zv, b, posicao);
  if (n < 0) return;
  // The write checks what it replaces; the list follows only a done write.
  b.arqDB.Grava(n, bytes);
  if (b.modoOrdem == kIndice) {
    b.lstOrdem.RemoveEm(posicao);
    b.lstOrdem.Insere(ChaveIndice(b.estrutura, valores, b.indices, n), n);
  }
}

Valor UpdateRecord(Interpretador& zv, const Texto& args) {
  std::vector<Texto> a;
  BaseDeclarada* b = ComandoDeRegistro(zv, args, a);
  if (!b) return {};
  RecusaDanificada(zv, *b);
  int32_t posicao = Posicao(zv, a[1]);
  Registro r = LeCampos(zv, *b);
  // An AutoInc field takes the position as it was given.
  std::string bytes = MontaRegistro(zv, *b, u"UpdateRecord", r, posicao);
  RegravaRegistro(zv, *b, posicao, bytes, &r, msg::dados::kNaoAtualiza);
  return {};
}

Valor DeleteRecord(Interpretador& zv, const Texto& args) {
  std::vector<Texto> a;
  BaseDeclarada* b = ComandoDeRegistro(zv, args, a);
  if (!b) return {};
  RecusaDanificada(zv, *b);
  int32_t posicao = Posicao(zv, a[1]);
  RegravaRegistro(zv, *b, posicao, b->arqDB.RegistroApagado(), nullptr, msg::dados::kNaoApaga);
  return {};
}

Valor ReadRecord(Interpretador& zv, const Texto& args) {
  std::vector<Texto> a;
  BaseDeclarada* b = ComandoDeRegistro(zv, args, a);
  if (!b) return Valor::TextoComAspas(u"");
  int32_t posicao = Posicao(zv, a[1]);
  int32_t total = b->arqDB.Total();
  if (posicao < 0 || posicao >= total) {
    zv.ErroExecucao(msg::dados::kNaoLe);
    return Valor::TextoComAspas(u"");
  }
  int32_t n = NumeroRegistro(zv, *b, posicao);
  if (n < 0) return Valor::TextoComAspas(u"");
  Registro r;
  bool vivo = b->arqDB.Decodifica(b->arqDB.LeBruto(n), n, r);
  GravaCampos(zv, *b, r);
  // The line carries its quotes: they are the wrapping of a text result.
  return vivo ? Valor::DeTexto(LinhaRegistro(b->estrutura, r)) : Valor::TextoComAspas(u"");
}

Valor TotalRecordsDB(Interpretador& zv, const Texto& args) {
  auto a = zv.SeparaArgumentos(args, 4);
  int s = LocalizaDB(zv, zv.ValorTexto(a[0]).ComoTexto());
  if (s < 0) return Valor::DeInt32(0);
  BaseAberta(zv, a);
  return Valor::DeInt32(Base(zv, s)->arqDB.Total());
}

// A field name of OrderDB: a quoted literal, a field's own name, or else a
// variable that holds one.
Texto NomeCampoIndice(Interpretador& zv, const BaseDeclarada& b, const Texto& arg) {
  if (ComecaCom(arg, u"\"")) return Interpretador::RemoveAspas(arg);
  if (b.estrutura.IndiceCampo(arg) >= 0) return arg;
  return zv.ValorTexto(arg).ComoTexto();
}

Valor OrderDB(Interpretador& zv, const Texto& args) {
  auto a = zv.SeparaArgumentos(args, 12);
  int s = LocalizaDB(zv, zv.ValorTexto(a[0]).ComoTexto());
  if (s < 0) return {};
  BaseDeclarada& b = *Base(zv, s);
  b.lstOrdem.Limpa();
  if (Maiusculas(zv.ValorTexto(a[1]).ComoTexto()) == u"SEQUENTIAL") {
    b.modoOrdem = kSequencial;
    return {};
  }
  b.modoOrdem = kIndice;
  b.campoIndice.clear();
  b.indices.clear();
  for (size_t i = 1; i < a.size() && !a[i].empty(); ++i) b.campoIndice.push_back(NomeCampoIndice(zv, b, a[i]));
  for (const Texto& c : b.campoIndice) {
    int f = b.estrutura.IndiceCampo(c);
    if (f < 0) {
      b.indices.clear();
      zv.ErroExecucao(msg::Formata(msg::dados::kCampoIndiceNaoEncontrado, c));
      return {};
    }
    b.indices.push_back(f);
  }
  BaseAberta(zv, a);
  ConstroiOrdem(b.arqDB, b.indices, b.lstOrdem);
  // Reading every record leaves the last one in the field variables.
  int32_t total = b.lstOrdem.Tamanho();
  if (total > 0) {
    Registro r;
    b.arqDB.Decodifica(b.arqDB.LeBruto(total - 1), total - 1, r);
    GravaCampos(zv, b, r);
  }
  return {};
}

Valor FindDB(Interpretador& zv, const Texto& args) {
  auto a = zv.SeparaArgumentos(args, 21);
  int s = LocalizaDB(zv, zv.ValorTexto(a[0]).ComoTexto());
  if (s < 0) return Valor::DeInt32(-1);
  BaseDeclarada& b = *Base(zv, s);
  ModoBusca modo = LeModoBusca(zv.ValorTexto(a[1]).ComoTexto());
  std::vector<Texto> valores;
  for (size_t i = 2; i < a.size() && !a[i].empty(); ++i) valores.push_back(zv.ValorTexto(a[i]).ComoTexto());
  Texto chave;
  if (!ChaveBusca(b.estrutura, b.indices, valores, chave)) {
    zv.ErroExecucao(msg::dados::FindDBSemOrdem());
    return Valor::DeInt32(0);
  }
  return Valor::DeInt32(b.lstOrdem.Busca(chave, modo));
}

Valor CompactDB(Interpretador& zv, const Texto& args) {
  auto a = zv.SeparaArgumentos(args, 4);
  int s = LocalizaDB(zv, zv.ValorTexto(a[0]).ComoTexto());
  if (s < 0) return Valor::TextoComAspas(u"");
  BaseDeclarada& b = *Base(zv, s);
  RecusaDanificada(zv, b);
  if (!b.arqDB.Aberto()) {
    // Compaction leaves the file open, as if OpenDB had run.
    Texto problema;
    auto r = b.arqDB.Abre(ParaCaminho(b.Caminho()), &b.estrutura, nullptr, false, problema);
    if (r == ArquivoRegistros::Abertura::NaoEncontrada) throw FalhaHost(msg::Formata(msg::biblioteca::kArquivoNaoEncontradoEm, b.Caminho()));
    if (r == ArquivoRegistros::Abertura::TamanhoDiferente) {
      zv.CaixaCritica(MensagemTamanho(b.nome));
      return Valor::TextoComAspas(u"");
    }
    if (r != ArquivoRegistros::Abertura::Aberta) {
      NotaDano(zv, b.Caminho(), problema);
      throw FalhaHost(MensagemDanificado(b.Caminho(), problema));
    }
  }
  fs::path trabalho;
  int32_t total = 0;
  if (b.arqDB.Compacta(trabalho, total) == ArquivoRegistros::Compactacao::TrabalhoExiste) {
    zv.CaixaCritica(msg::Formata(msg::dados::kOutroCompacta, U(trabalho.string())));
  }
  return Valor::TextoComAspas(u"");
}

}  // namespace

void RegistraDados() {
  TabelaComandos& c = Comandos();
  c.Define(u"OpenDB", Protegido<OpenDB>);
  c.Define(u"CloseDB", Protegido<CloseDB>);
  c.Define(u"AddRecord", Protegido<AddRecord>);
  c.Define(u"UpdateRecord", Protegido<UpdateRecord>);
  c.Define(u"DeleteRecord", Protegido<DeleteRecord>);
  c.Define(u"ReadRecord", Protegido<ReadRecord>);
  c.Define(u"TotalRecordsDB", Protegido<TotalRecordsDB>);
  c.Define(u"OrderDB", Protegido<OrderDB>);
  c.Define(u"FindDB", Protegido<FindDB>);
  c.Define(u"CompactDB", Protegido<CompactDB>);
  c.db = BlocoDB;
}

}  // namespace zv
