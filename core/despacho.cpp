#include "core/despacho.h"

#include <array>
#include <unordered_map>

#include "core/interpretador.h"

namespace zv {

const std::array<const char16_t*, kTotalPalavras> kPalavrasChave = {
    u"JoinStr", u"Message", u"Write", u"Format", u"StrLen", u"SubStr", u"StrPos", u"OpenFile",
    u"OpenDB", u"AddRecord", u"AddIconSysTray", u"AddSysStartup", u"Wait", u"Random",
    u"WindowHeight", u"Exp", u"Trim", u"API", u"Atn", u"Round", u"Asc", u"UpdateRecord",
    u"DownFileFTP", u"ScrollBar", u"BinToDec", u"Box", u"DialogBox", u"Calendar", u"CaptureWindow",
    u"Chr", u"Call", u"Check", u"Circle", u"Cls", u"Combo", u"ConnectFTP", u"ConnectP2P",
    u"ConvStr", u"Copy", u"Cos", u"MkDir", u"DecToBin", u"UnCaptureWindow", u"DrawPictures",
    u"WeekDay", u"Directory", u"GetText", u"SendP2P", u"OutPort", u"ListenP2P", u"ButtonStyle",
    u"Event", u"DeleteRecord", u"ExtractFile", u"CloseFile", u"CloseDB", u"Picture", u"Fonts",
    u"Gradient", u"WriteFile", u"RecordSound", u"AnimatedGif", u"Hex", u"Time", u"Image",
    u"InsertFile", u"WindowWidth", u"ReadFile", u"ReadPoint", u"Inport", u"GetWinReg",
    u"GetString", u"CompactDB", u"Straight", u"Link", u"ClearWindow", u"Log", u"Mask",
    u"SystemMenu", u"MinimizeSysTray", u"Currency", u"Frame", u"ChangeIcon", u"ChangeWallpaper",
    u"Browser", u"NewWindow", u"OrderDB", u"Radio", u"Fix", u"Paint", u"UpFileFTP", u"Position",
    u"FindFile", u"FindDB", u"Printer", u"Sqr", u"Rep.TestEndPage", u"RGB", u"DeleteFile",
    u"RemoveSysStartup", u"RmDir", u"Rectangle", u"Label", u"SaveWinReg", u"SaveString", u"Sin",
    u"SeqStr", u"Sgn", u"RepStr", u"SQL", u"SizeFile", u"Tan", u"Timer", u"TestEmail", u"TestDate",
    u"TestMouse", u"DateAdd", u"DateDiff", u"KeyTest", u"Text", u"TotalRecordsDB", u"Transition",
    u"Abs", u"Int", u"StrVal", u"Var", u"Variable", u"Video", u"WebCam", u"RevDate", u"Button",
    u"Date", u"Day", u"Month", u"Year", u"Font", u"Icon", u"Window", u"ReadRecord", u"Point",
    u"Rep", u"Sound",
};

const std::array<const char16_t*, 8> kPalavrasBloco = {u"WHILE", u"LOOP",   u"IF",     u"ELSE",
                                                       u"ENDIF", u"GOTO",   u"ENDSUB", u"ENDFUNCTION"};

namespace {

struct Indices {
  std::unordered_map<Texto, int> exato, maiusculo;
  Indices() {
    for (int i = 0; i < kTotalPalavras; ++i) {
      exato.emplace(kPalavrasChave[i], i);
      maiusculo.emplace(Maiusculas(kPalavrasChave[i]), i);
    }
  }
};

const Indices& Ind() {
  static const Indices ind;
  return ind;
}

int IndiceMaiusculo(const Texto& maiusculo) {
  auto it = Ind().maiusculo.find(maiusculo);
  return it == Ind().maiusculo.end() ? -1 : it->second;
}

}  // namespace

int IndicePalavra(TextoV palavra) {
  auto it = Ind().exato.find(Texto(palavra));
  return it == Ind().exato.end() ? -1 : it->second;
}

void RegistraNucleo(TabelaComandos& t);

TabelaComandos& Comandos() {
  static TabelaComandos* tabela = [] {
    auto* t = new TabelaComandos();
    RegistraNucleo(*t);
    return t;
  }();
  return *tabela;
}

void TabelaComandos::Define(TextoV palavra, Rotina rotina, DefinicaoComando opcoes) {
  int i = IndicePalavra(palavra);
  if (i < 0) return;
  opcoes.rotina = rotina;
  definicoes_[i] = opcoes;
}

size_t ContaArgumentos(const std::vector<Texto>& argumentos) {
  size_t n = 0;
  while (n < argumentos.size() && !argumentos[n].empty()) ++n;
  return n;
}

Texto MarcaParenteses(TextoV texto) {
  Texto m;
  m.reserve(texto.size() + 16);
  int nivel = 0;
  for (char16_t c : texto) {
    if (c == u'(') {
      ++nivel;
      m += u'(';
      m += InteiroParaTexto(nivel);
      m += u']';
    } else if (c == u')') {
      m += u'[';
      m += InteiroParaTexto(nivel);
      m += u')';
      --nivel;
    } else {
      m += c;
    }
  }
  return m;
}

Texto LimpaParenteses(TextoV texto) {
  Texto t;
  t.reserve(texto.size());
  for (size_t i = 0; i < texto.size(); ++i) {
    char16_t c = texto[i];
    if (c == u'(' && i + 2 < texto.size() && texto[i + 2] == u']') {
      t += c;
      i += 2;
    } else if (c == u'[' && i + 2 < texto.size() && texto[i + 2] == u')') {
      ++i;
    } else {
      t += c;
    }
  }
  return t;
}

bool Interpretador::EPalavraConhecida(TextoV palavra) const {
  Texto m = Maiusculas(palavra);
  if (IndiceMaiusculo(m) >= 0) return true;
  for (const char16_t* b : kPalavrasBloco)
    if (ComecaCom(m, b)) return true;
  if (!m.empty()) {
    char16_t u = m.back();
    if (u == u':' || u == u'+' || u == u'-') return true;
  }
  return false;
}

namespace {

Valor ChamaComTratador(Interpretador& zv, const DefinicaoComando& d, int indice, const Texto& argumentos) {
  const Texto vazio;
  const Texto& args = d.semArgumentos ? vazio : argumentos;
  if (d.semTratador) return d.rotina(zv, args);
  try {
    return d.rotina(zv, args);
  } catch (const FalhaHost& f) {
    zv.ErroExecucao(msg::FalhaDeComando(kPalavrasChave[indice], f.descricao, d.prefixoErro));
  } catch (const std::bad_alloc&) {
    zv.ErroExecucao(msg::FalhaDeComando(kPalavrasChave[indice], falha::SemMemoria, d.prefixoErro));
  } catch (const std::exception& e) {
    zv.ErroExecucao(msg::FalhaDeComando(kPalavrasChave[indice], U(e.what()), d.prefixoErro));
  }
  return Valor();
}

}  // namespace

bool DespachoSemEfeito(TextoV nome) {
  Texto m = Maiusculas(nome);
  const TabelaComandos& tab = Comandos();
  int i = IndiceMaiusculo(m);
  static const int iChr = IndicePalavra(u"Chr");
  if (i >= 0 && tab.Rotina_(i)) return false;
  if (ComecaCom(m, u"CHR") && i != iChr && tab.Rotina_(iChr)) return false;
  if (ComecaCom(m, u"PRINTER") && tab.printer) return false;
  if (ComecaCom(m, u"REP") && tab.rep) return false;
  return true;
}

Valor Interpretador::DespachaComando(const Texto& nome, const Texto& argumentos) {
  Texto m = Maiusculas(nome);
  const TabelaComandos& tab = Comandos();
  Valor r;
  int i = IndiceMaiusculo(m);
  static const int iChr = IndicePalavra(u"Chr");
  if (i >= 0) {
    if (const DefinicaoComando* d = tab.Rotina_(i)) r = ChamaComTratador(*this, *d, i, argumentos);
  }
  // Chr, Printer and Rep are also found by prefix.
  if (ComecaCom(m, u"CHR") && i != iChr) {
    if (const DefinicaoComando* d = tab.Rotina_(iChr)) r = ChamaComTratador(*this, *d, iChr, argumentos);
  }
  if (ComecaCom(m, u"PRINTER") && tab.printer) r = tab.printer(*this, nome, argumentos);
  if (ComecaCom(m, u"REP") && tab.rep) r = tab.rep(*this, nome, argumentos);
  return r;
}

bool TemChamadaPreAvaliada(TextoV maiusculo) {
  // The same answer as looking for each "NAME(" in turn, found in one pass:
  // at each "(", is one of the names just before it?
  static const TextoV kPreAvaliadas[] = {u"JOINSTR", u"FORMAT", u"DATEADD",  u"DATEDIFF", u"READPOINT",
                                         u"FIND",    u"RGB",    u"CIRCLE",   u"RECTANGLE", u"READFILE",
                                         u"COPY",    u"CALL",   u"SEQSTR",   u"SUBSTR"};
  for (size_t i = maiusculo.find(u'('); i != NPOS; i = maiusculo.find(u'(', i + 1)) {
    const TextoV antes = maiusculo.substr(0, i);
    for (TextoV nome : kPreAvaliadas)
      if (antes.size() >= nome.size() && antes.substr(antes.size() - nome.size()) == nome) return true;
  }
  return false;
}

std::vector<Texto> Interpretador::SeparaArgumentos(const Texto& texto, size_t vagas, bool separaIgual,
                                                   bool& numerico, bool compacto) {
  Texto t = Apara(texto);
  // The splitter knows no parentheses: nested calls with commas are worked
  // out first, so that their commas don't split the list.
  if (t.find(u'(') != NPOS && TemChamadaPreAvaliada(Maiusculas(t))) {
    Texto par[2];
    for (int guarda = 0; guarda < 10000 && AchaFuncaoInterna(t, par); ++guarda) {
      Texto antes = t;
      ExecutaFuncaoInterna(t, par, numerico);
      if (t == antes) break;
    }
  }
  std::vector<Texto> tab;
  tab.reserve(std::min<size_t>(vagas, 8));
  // Each argument is the stretch between two separators outside quotes,
  // without the blanks at its ends.
  auto poe = [&](size_t de, size_t ate) {
    if (tab.size() >= vagas) throw FalhaHost(falha::ForaDoIndice);
    while (de < ate && t[de] == u' ') ++de;
    while (ate > de && t[ate - 1] == u' ') --ate;
    tab.emplace_back(t, de, ate - de);
  };
  size_t inicio = 0;
  for (size_t i = 0; i < t.size(); ++i) {
    char16_t c = t[i];
    if (c == u'"') {
      size_t q = t.find(u'"', i + 1);
      i = q == NPOS ? t.size() - 1 : q;
    } else if (c == u',') {
      poe(inicio, i);
      inicio = i + 1;
    } else if (c == u'=' && separaIgual) {
      poe(inicio, i);
      if (tab.size() >= vagas) throw FalhaHost(falha::ForaDoIndice);
      tab.emplace_back(u"=");
      inicio = i + 1;
    }
  }
  poe(inicio, t.size());
  if (!compacto) tab.resize(vagas);
  return tab;
}

namespace {

bool ELetraDeNome(char16_t c) {
  return EDigito(c) || (c >= u'A' && c <= u'Z') || (c >= u'_' && c <= u'z');
}

}  // namespace

bool ArgumentosMarcados(const Texto& m, size_t q, size_t tamNome, Texto& args, size_t& fim) {
  size_t r = m.find(u']', q + tamNome);
  if (r == NPOS || r == 0) return false;
  Texto fecho = Texto(u"[") + m[r - 1];
  size_t s = m.find(fecho, r + 1);
  if (s == NPOS) return false;
  args = LimpaParenteses(TextoV(m).substr(r + 1, s - r - 1));
  fim = s + 2;
  if (fim < m.size() && m[fim] == u')') ++fim;
  return true;
}

namespace {

// The text a call is looked for in, or empty when it can hold none.
Texto TextoDeChamada(const Texto& texto) {
  if (ComecaCom(texto, u"RetStr String")) return Texto();
  Texto t = LimpaParenteses(Apara(texto));
  if (!t.empty() && t.front() == u'"' && t.back() == u'"') return Texto();
  // Nothing can be a call without a '(' or a blank behind a keyword.
  if (t.find_first_of(u"( ") == NPOS) return Texto();
  return t;
}

}  // namespace

int PalavraChamada(const Texto& t, const Texto* nomes, size_t total) {
  for (size_t k = 0; k < total; ++k) {
    const Texto& kw = nomes[k];
    if (kw.empty()) continue;
    size_t p = t.find(kw);
    if (p == NPOS) continue;
    size_t e = p + kw.size();
    if (e >= t.size() || (t[e] != u'(' && t[e] != u' ')) continue;
    return static_cast<int>(k);
  }
  return -1;
}

// By first character: the keywords that can start at each place of the
// text, tried in the table's order. It finds each keyword's first place as
// find does, so the answer is PalavraChamada's.
int PalavraChamadaChave(const Texto& t) {
  // Buckets by the low seven bits of the first character; the comparison
  // below checks the whole keyword.
  struct Indice {
    std::array<std::vector<uint8_t>, 128> porInicial;
    Indice() {
      static_assert(kTotalPalavras <= 256);
      for (int k = 0; k < kTotalPalavras; ++k) {
        TextoV kw = kPalavrasChave[k];
        if (!kw.empty()) porInicial[kw[0] & 127].push_back(static_cast<uint8_t>(k));
      }
    }
  };
  static const Indice ind;
  int melhor = kTotalPalavras;
  std::array<bool, kTotalPalavras> visto{};
  for (size_t p = 0; p < t.size(); ++p) {
    for (uint8_t k : ind.porInicial[t[p] & 127]) {
      if (k >= melhor) break;
      if (visto[k]) continue;
      TextoV kw = kPalavrasChave[k];
      if (t.compare(p, kw.size(), kw.data(), kw.size()) != 0) continue;
      visto[k] = true;  // its first place: the only one find would look at
      size_t e = p + kw.size();
      if (e < t.size() && (t[e] == u'(' || t[e] == u' ')) melhor = k;
    }
  }
  return melhor == kTotalPalavras ? -1 : melhor;
}

bool PodeTerChamadaInterna(const Texto& texto) {
  Texto t = TextoDeChamada(texto);
  return !t.empty() && PalavraChamadaChave(t) >= 0;
}

int AchaChamadaInternaBusca(const Texto& texto, Texto& nome, Texto& argumentos) {
  nome.clear();
  argumentos.clear();
  Texto t = TextoDeChamada(texto);
  int k = t.empty() ? -1 : PalavraChamadaChave(t);
  if (k < 0) return 0;
  TextoV kw = kPalavrasChave[k];
  Texto m = MarcaParenteses(t);
  size_t q = m.find(kw);
  size_t w = q;
  while (w < m.size() && ELetraDeNome(m[w])) ++w;
  Texto n = Apara(TextoV(m).substr(q, w - q));
  size_t fim;
  if (!ArgumentosMarcados(m, q, n.size(), argumentos, fim)) {
    argumentos.clear();
    return -1;
  }
  nome = std::move(n);
  return 1;
}

int AchaChamadaInterna(const Texto& texto, Texto& nome, Texto& argumentos) {
  // A loop asks about the same statement's text at every turn; the answer
  // depends on the text alone, so the last answers are kept, one a slot
  // chosen by the text's hash. Texts that change at every turn (a value
  // spliced in) pass through a slot and are soon replaced.
  struct Resposta {
    Texto texto, nome, argumentos;
    size_t hash = 0;  // of the text last met here; kept only the second time
    int r = 0;
    bool usada = false;
  };
  static constexpr size_t kVagas = 256;
  thread_local std::array<Resposta, kVagas> memoria;
  if (texto.size() > 512) return AchaChamadaInternaBusca(texto, nome, argumentos);
  size_t h = std::hash<Texto>{}(texto);
  Resposta& m = memoria[h % kVagas];
  if (m.usada && m.texto == texto) {
    nome = m.nome;
    argumentos = m.argumentos;
    return m.r;
  }
  int r = AchaChamadaInternaBusca(texto, nome, argumentos);
  if (m.hash != h) {
    m.hash = h;
    m.usada = false;
    return r;
  }
  m.r = r;
  m.texto = texto;
  m.nome = nome;
  m.argumentos = argumentos;
  m.usada = true;
  return r;
}

bool Interpretador::AchaFuncaoInterna(const Texto& texto, Texto par[2]) {
  int r = AchaChamadaInterna(texto, par[0], par[1]);
  if (r < 0)
    CaixaCritica(msg::SemParenteses(msg::kErroEmComando, TextoDeChamada(texto)));
  return r > 0;
}

namespace {

// What a call's place in a text gives, worked out from the text alone: the
// text before the call, the text behind it, and the one character kept
// behind it when its argument is a variable.
struct FormaChamada {
  Texto texto, nome, argumentos;  // the key
  bool usada = false;
  bool achada = false;            // the name stands in the text
  bool funcaoNumerica = false;
  Texto cabeca, cauda;
  bool temDepois = false;
  char16_t depois = 0;
};

FormaChamada AnalisaChamada(const Texto& texto, const Texto par[2]) {
  static const char16_t* const kNumericas[] = {u"INT", u"STRVAL", u"EXP", u"ATN", u"ROUND", u"COS",
                                               u"FIX", u"SQR",    u"SIN", u"TAN", u"ABS"};
  FormaChamada f;
  Texto nomeM = Maiusculas(par[0]);
  for (const char16_t* n : kNumericas)
    if (nomeM == n) f.funcaoNumerica = true;
  Texto t = LimpaParenteses(texto);
  Texto m = MarcaParenteses(t);
  size_t q = m.find(par[0]);
  if (q == NPOS) return f;
  f.achada = true;
  f.cabeca = LimpaParenteses(TextoV(m).substr(0, q));
  // Only the one character behind the call's first ')' survives.
  size_t qt = t.find(par[0]);
  size_t fp = t.find(u')', qt + par[0].size());
  if (!f.funcaoNumerica && fp != NPOS && fp + 1 < t.size()) {
    f.temDepois = true;
    f.depois = t[fp + 1];
  }
  Texto args;
  size_t fim;
  if (ArgumentosMarcados(m, q, par[0].size(), args, fim)) f.cauda = LimpaParenteses(TextoV(m).substr(fim));
  return f;
}

}  // namespace

void Interpretador::ExecutaFuncaoInterna(Texto& texto, const Texto par[2], bool& numerico) {
  // The same statement puts the same call in the same place at every turn
  // of a loop: its shape is kept, one a slot chosen by the text's hash.
  // A walk without plans works it out every time, for the comparison.
  thread_local std::array<FormaChamada, 128> formas;
  FormaChamada analisada;
  FormaChamada* f = &analisada;
  if (semPlanos) {
    analisada = AnalisaChamada(texto, par);
  } else {
    f = &formas[std::hash<Texto>{}(texto) % formas.size()];
    if (!f->usada || f->texto != texto || f->nome != par[0] || f->argumentos != par[1]) {
      *f = AnalisaChamada(texto, par);
      f->usada = true;
      f->texto = texto;
      f->nome = par[0];
      f->argumentos = par[1];
    }
  }
  if (!f->achada) return;
  // A call in the arguments may take the slot: what is needed is taken first.
  Texto novo = f->cabeca, cauda = f->cauda;
  bool temDepois = f->temDepois;
  char16_t depois = f->depois;
  Valor r = DespachaComando(par[0], par[1]);
  novo += r.ComoTexto();
  Texto argsAparados = Apara(par[1]);
  if (!numerico && (argsAparados.empty() || PosicaoVariavel(argsAparados) >= 0)) {
    if (temDepois) novo += depois;
    texto = std::move(novo);
    return;
  }
  novo += cauda;
  if (numerico)
    for (auto& c : novo)
      if (c == u',') c = u'.';
  texto = std::move(novo);
}

}  // namespace zv
