// Expressions are worked out by rewriting text: calls are replaced by their
// results, names by their values, and what is left is read or calculated.
#include <array>
#include <cmath>

#include "core/expressao.h"
#include "core/interpretador.h"

namespace zv {

namespace {

// Bounds the splice loops: a call whose result spells the same call again
// must not loop for ever.
constexpr int kMaxSubstituicoes = 10000;

bool FuncaoNumerica(const Texto& nome) {
  static const char16_t* const k[] = {u"INT", u"STRVAL", u"EXP", u"ATN", u"ROUND", u"COS",
                                      u"FIX", u"SQR",    u"SIN", u"TAN", u"ABS"};
  Texto m = Maiusculas(nome);
  for (const char16_t* n : k)
    if (m == n) return true;
  return false;
}

// The operand of a whole-number operator (%, &, |).
inline int32_t Inteiro32DoCalculo(double v) {
  // Whole values in range, the usual operands, are themselves.
  if (v >= -2147483648.0 && v <= 2147483647.0) {
    int32_t w = static_cast<int32_t>(v);
    if (w == v) return w;
  }
  int32_t n;
  if (!ArredondaInt32(v, n)) throw FalhaHost(falha::Estouro);
  return n;
}

// One operator on the two values on top: e op d into e. False when a
// division by nought fails the calculation.
[[gnu::always_inline]] inline bool Aplica(char16_t op, double& e, double d) {
  switch (op) {
    case u'+':
      e += d;
      return true;
    case u'-':
      e -= d;
      return true;
    case u'*':
      e *= d;
      return true;
    case u'/':
      if (d == 0) return false;
      e /= d;
      return true;
    case u'^':
      e = std::pow(e, d);
      return true;
    default: {
      int32_t a = Inteiro32DoCalculo(e), b = Inteiro32DoCalculo(d);
      if (op == u'%') {
        // A remainder by zero is a failure of the host, not of the sum.
        if (b == 0) throw FalhaHost(falha::DivisaoPorZero);
        e = b == -1 ? 0 : a % b;
      } else {
        e = op == u'&' ? (a & b) : (a | b);
      }
      return true;
    }
  }
}


// A precedence evaluator over the characters of a text of numbers and
// operators. Any failure makes the result empty.
class Calculo {
 public:
  explicit Calculo(TextoV t) : t_(t) {}
  bool Executa(double& r) {
    if (!Soma(r, true)) return false;
    Brancos();
    return i_ == t_.size() && std::isfinite(r);
  }

 private:
  void Brancos() {
    while (i_ < t_.size() && t_[i_] == u' ') ++i_;
  }
  char16_t Proximo() {
    Brancos();
    return i_ < t_.size() ? t_[i_] : 0;
  }
  // Lowest level: + and -. A '-' with nothing on its left takes 0 as left.
  bool Soma(double& r, bool inicioGrupo) {
    char16_t c = Proximo();
    if (inicioGrupo && (c == u'-' || c == u'+')) {
      r = 0;
    } else if (!Produto(r)) {
      return false;
    }
    for (;;) {
      c = Proximo();
      if (c != u'+' && c != u'-') return true;
      ++i_;
      double d;
      if (!Produto(d)) return false;
      r = c == u'+' ? r + d : r - d;
    }
  }
  bool Produto(double& r) {
    if (!Potencia(r)) return false;
    for (;;) {
      char16_t c = Proximo();
      if (c != u'*' && c != u'/' && c != u'%' && c != u'&' && c != u'@') return true;
      ++i_;
      double d;
      if (!Potencia(d)) return false;
      if (!Aplica(c, r, d)) return false;
    }
  }
  // '^' groups from the left too.
  bool Potencia(double& r) {
    if (!Fator(r)) return false;
    while (Proximo() == u'^') {
      ++i_;
      double d;
      if (!Fator(d)) return false;
      r = std::pow(r, d);
    }
    return true;
  }
  bool Fator(double& r) {
    char16_t c = Proximo();
    if (c == u'(') {
      ++i_;
      if (++nivel_ > 200) return false;
      if (!Soma(r, true)) return false;
      --nivel_;
      if (Proximo() != u')') return false;
      ++i_;
      return true;
    }
    // A sign right behind an operator belongs to its number: 2 * -3.
    if (c == u'-' || c == u'+') {
      ++i_;
      if (++nivel_ > 200) return false;
      if (!Fator(r)) return false;
      --nivel_;
      if (c == u'-') r = -r;
      return true;
    }
    size_t ini = i_;
    bool ponto = false;
    while (i_ < t_.size() && (EDigito(t_[i_]) || t_[i_] == u'.')) {
      if (t_[i_] == u'.') {
        if (ponto) return false;
        ponto = true;
      }
      ++i_;
    }
    if (i_ == ini || (i_ - ini == 1 && ponto)) return false;
    double v;
    if (!LeNumero(t_.substr(ini, i_ - ini), v)) return false;
    r = v;
    return true;
  }

  TextoV t_;
  size_t i_ = 0;
  int nivel_ = 0;
};

}  // namespace

Texto CalculaExpressao(TextoV texto) {
  double r;
  Calculo c(texto);
  if (!c.Executa(r)) return Texto();
  return NumeroParaTexto(r);
}

bool CalculaNumero(TextoV texto, double& r) {
  Calculo c(texto);
  return c.Executa(r);
}

double NumeroRelidoGeral(double r) {
  Texto s = NumeroParaTexto(r);
  for (auto& c : s)
    if (c == u',') c = u'.';
  double v;
  return LeNumero(s, v) ? v : 0;
}

namespace {

// The parse of Calculo over a text whose holes stand as characters of their
// own; it builds the tree instead of working out the value. Calculo itself
// stays one pass: there a failure of the arithmetic (a remainder by zero)
// comes before a fault of the syntax further on, and a tree built first
// would turn that order round.
class Compilador {
 public:
  static constexpr char16_t kBuraco = 0xFFFF;
  explicit Compilador(const std::u16string& t) : t_(t) {}
  struct No {
    char16_t op;
    double valor;
    int esq, dir;
  };
  std::vector<No> nos;
  int buracos = 0;
  bool Executa(int& raiz) {
    if (!Soma(raiz, true)) return false;
    Brancos();
    return i_ == t_.size();
  }

 private:
  int Novo(char16_t op, double v, int e, int d) {
    nos.push_back({op, v, e, d});
    return static_cast<int>(nos.size()) - 1;
  }
  void Brancos() {
    while (i_ < t_.size() && t_[i_] == u' ') ++i_;
  }
  char16_t Proximo() {
    Brancos();
    return i_ < t_.size() ? t_[i_] : 0;
  }
  bool Soma(int& r, bool inicioGrupo) {
    char16_t c = Proximo();
    if (inicioGrupo && (c == u'-' || c == u'+')) {
      r = Novo(u'n', 0, -1, -1);
    } else if (!Produto(r)) {
      return false;
    }
    for (;;) {
      c = Proximo();
      if (c != u'+' && c != u'-') return true;
      ++i_;
      int d;
      if (!Produto(d)) return false;
      r = Novo(c, 0, r, d);
    }
  }
  bool Produto(int& r) {
    if (!Potencia(r)) return false;
    for (;;) {
      char16_t c = Proximo();
      if (c != u'*' && c != u'/' && c != u'%' && c != u'&' && c != u'@') return true;
      ++i_;
      int d;
      if (!Potencia(d)) return false;
      r = Novo(c, 0, r, d);
    }
  }
  bool Potencia(int& r) {
    if (!Fator(r)) return false;
    while (Proximo() == u'^') {
      ++i_;
      int d;
      if (!Fator(d)) return false;
      r = Novo(u'^', 0, r, d);
    }
    return true;
  }
  bool Fator(int& r) {
    char16_t c = Proximo();
    if (c == u'(') {
      ++i_;
      if (++nivel_ > 200) return false;
      if (!Soma(r, true)) return false;
      --nivel_;
      if (Proximo() != u')') return false;
      ++i_;
      return true;
    }
    if (c == u'-' || c == u'+') {
      ++i_;
      if (++nivel_ > 200) return false;
      if (!Fator(r)) return false;
      --nivel_;
      if (c == u'-') r = Novo(u'u', 0, r, -1);
      return true;
    }
    if (c == kBuraco) {
      ++i_;
      r = Novo(u'v', buracos++, -1, -1);
      return true;
    }
    size_t ini = i_;
    bool ponto = false;
    while (i_ < t_.size() && (EDigito(t_[i_]) || t_[i_] == u'.')) {
      if (t_[i_] == u'.') {
        if (ponto) return false;
        ponto = true;
      }
      ++i_;
    }
    if (i_ == ini || (i_ - ini == 1 && ponto)) return false;
    double v;
    if (!LeNumero(TextoV(t_).substr(ini, i_ - ini), v)) return false;
    r = Novo(u'n', v, -1, -1);
    return true;
  }

  const std::u16string& t_;
  size_t i_ = 0;
  int nivel_ = 0;
};

}  // namespace

bool ArvoreCalculo::Compila(const std::vector<Texto>& pedacos) {
  passos_.clear();
  pilha_ = 0;
  binaria_ = false;
  Texto t;
  for (size_t i = 0; i < pedacos.size(); ++i) {
    const Texto& p = pedacos[i];
    if (p.find(Compilador::kBuraco) != NPOS) return false;
    auto colado = [](char16_t c) { return EDigito(c) || c == u'.'; };
    // A hole's digits must not join a number beside it, nor another hole's.
    if (i > 0 && ((p.empty() && i + 1 < pedacos.size()) || (!p.empty() && colado(p.front())))) return false;
    if (i + 1 < pedacos.size() && !p.empty() && colado(p.back())) return false;
    t += p;
    if (i + 1 < pedacos.size()) t += Compilador::kBuraco;
  }
  Compilador c(t);
  int raiz;
  if (!c.Executa(raiz) || raiz < 0) return false;
  // Left before right, as the one-pass calculation meets them.
  size_t fundo = 0;
  auto posordem = [&](auto&& self, int i) -> void {
    const auto& n = c.nos[static_cast<size_t>(i)];
    if (n.esq >= 0) self(self, n.esq);
    if (n.dir >= 0) self(self, n.dir);
    if (n.op == u'n' || n.op == u'v')
      pilha_ = std::max(pilha_, ++fundo);
    else if (n.op != u'u')
      --fundo;
    passos_.push_back({n.op, n.valor});
  };
  posordem(posordem, raiz);
  auto valor = [](const Passo& p) { return p.op == u'n' || p.op == u'v'; };
  binaria_ = passos_.size() == 3 && valor(passos_[0]) && valor(passos_[1]) && !valor(passos_[2]) &&
             passos_[2].op != u'u';
  auto inteiro = [](const Passo& p) {
    return p.op == u'v' || (p.op == u'n' && p.valor == std::trunc(p.valor) && std::fabs(p.valor) < 2147483648.0);
  };
  inteira_ = binaria_ && inteiro(passos_[0]) && inteiro(passos_[1]) &&
             (passos_[2].op == u'+' || passos_[2].op == u'-' || passos_[2].op == u'*' || passos_[2].op == u'%');
  // A deeper calculation is left to the text's own way.
  return pilha_ <= kMaxPilha;
}



ArvoreCalculo::FormaInteira ArvoreCalculo::Forma() const {
  FormaInteira f;
  if (!inteira_) return f;
  f.op = passos_[2].op;
  for (int k = 0; k < 2; ++k) {
    const Passo& p = passos_[static_cast<size_t>(k)];
    if (p.op == u'v')
      f.buraco[k] = static_cast<int>(p.valor);
    else
      f.constante[k] = static_cast<int64_t>(p.valor);
  }
  return f;
}

bool ArvoreCalculo::Calcula(const double* valores, double& r) const {
  if (binaria_) {
    const Passo& a = passos_[0];
    const Passo& b = passos_[1];
    r = a.op == u'v' ? valores[static_cast<int>(a.valor)] : a.valor;
    if (!Aplica(passos_[2].op, r, b.op == u'v' ? valores[static_cast<int>(b.valor)] : b.valor)) return false;
    return std::isfinite(r);
  }
  if (passos_.empty()) return false;
  double p[kMaxPilha];
  size_t n = 0;  // values on the stack
  for (const Passo& s : passos_) {
    switch (s.op) {
      case u'n':
        p[n++] = s.valor;
        continue;
      case u'v':
        p[n++] = valores[static_cast<int>(s.valor)];
        continue;
      case u'u':
        p[n - 1] = -p[n - 1];
        continue;
      default:
        break;
    }
    double d = p[--n];
    if (!Aplica(s.op, p[n - 1], d)) return false;
  }
  r = p[0];
  return std::isfinite(r);
}

bool ExpressaoAritmetica(TextoV texto) {
  if (texto.find_first_of(u"/*-+^%") == TextoV::npos) return false;
  if (texto.empty() || texto[0] == u'"') return false;
  return Apara(Interpretador::RemoveAspas(texto)).size() > 2;
}

Texto Interpretador::RemoveAspas(TextoV t) {
  long ini = 0, fim = static_cast<long>(t.size()) - 1;
  if (ComecaCom(t, u"(\""))
    ini = 2;
  else if (ComecaCom(t, u"\""))
    ini = 1;
  if (TerminaCom(t, u"\")"))
    fim -= 2;
  else if (TerminaCom(t, u"\""))
    fim -= 1;
  if (fim < ini) return Texto();
  return Texto(t.substr(ini, fim - ini + 1));
}

Texto TrocaVariaveis(Interpretador& zv, TextoV t, int64_t& pecas) {
  Texto saida;
  pecas = 0;
  for (size_t i = 0; i < t.size(); ++i) {
    char16_t c = t[i];
    if (ELetra(c)) {
      size_t j = i;
      while (j < t.size() && (ELetra(t[j]) || EDigito(t[j]) || t[j] == u'_' || t[j] == u'.')) ++j;
      if (j < t.size() && t[j] == u'(') {
        size_t k = t.find(u')', j);
        j = k == TextoV::npos ? t.size() : k + 1;
      }
      saida += zv.LeVariavel(t.substr(i, j - i)).ComoTexto();
      i = j - 1;
    } else {
      saida += c;
    }
    ++pecas;
  }
  return saida;
}

namespace {

// Runs the built-in and then the user calls found in the text.
void SubstituiChamadas(Interpretador& zv, Texto& t, bool& numerico) {
  Texto par[2];
  for (int g = 0; g < kMaxSubstituicoes && zv.AchaFuncaoInterna(t, par); ++g) {
    if (FuncaoNumerica(par[0])) numerico = true;
    Texto antes = t;
    zv.ExecutaFuncaoInterna(t, par, numerico);
    if (t == antes) break;
  }
  Texto palavra;
  for (int g = 0; g < kMaxSubstituicoes && zv.AchaFuncaoUsuario(t, par, palavra); ++g) {
    Texto antes = t;
    zv.ExecutaFuncaoUsuario(t, par, palavra);
    if (t == antes) break;
  }
}

}  // namespace

Valor Interpretador::ValorNumerico(const Texto& texto, bool& numerico) {
  if (Valor v; ValorPorPlano(texto, v)) return v;
  Texto t = Apara(LimpaParenteses(texto));
  SubstituiChamadas(*this, t, numerico);
  double v;
  if (LeNumero(t, v)) return Valor::DeDouble(v);
  Texto a = Apara(t);
  if (ExpressaoAritmetica(a)) {
    int64_t pecas;
    Texto s = TrocaVariaveis(*this, a, pecas);
    if (pecas == 1) return Valor::DeTexto(s);
    Texto r = CalculaExpressao(s);
    for (auto& c : r)
      if (c == u',') c = u'.';
    if (!LeNumero(r, v)) v = 0;
    return Valor::DeDecimal(v);
  }
  if (PosicaoVariavel(a) >= 0) return LeVariavel(a);
  return Valor::DeTexto(RemoveAspas(a));
}

Valor Interpretador::ValorTexto(const Texto& texto, bool& numerico) {
  Texto t = texto;
  SubstituiChamadas(*this, t, numerico);
  if (PosicaoVariavel(t) >= 0) return LeVariavel(t);
  return Valor::DeTexto(RemoveAspas(t));
}

void SeparaCondicao(TextoV t, Condicao& c) {
  for (auto& x : c.operandos) x.clear();
  for (auto& x : c.relacoes) x.clear();
  for (auto& x : c.conectores) x.clear();
  size_t no = 0, nr = 0, nc = 0;
  Texto buf;
  auto guarda = [](std::array<Texto, 51>& tab, size_t& n, Texto v) {
    if (n >= tab.size()) throw FalhaHost(falha::ForaDoIndice);
    tab[n++] = std::move(v);
  };
  for (size_t i = 0; i < t.size(); ++i) {
    char16_t ch = t[i];
    if (ch == u'"') {
      size_t q = t.find(u'"', i + 1);
      if (q == TextoV::npos) q = t.size() - 1;
      buf.append(t.substr(i, q - i + 1));
      i = q;
      continue;
    }
    char16_t n = i + 1 < t.size() ? Maiuscula(t[i + 1]) : 0;
    char16_t m = i + 2 < t.size() ? Maiuscula(t[i + 2]) : 0;
    size_t tam = 0;
    if ((ch == u'<' && (n == u'>' || n == u'=')) || (ch == u'>' && n == u'='))
      tam = 2;
    else if (ch == u'=' || ch == u'<' || ch == u'>')
      tam = 1;
    if (tam) {
      guarda(c.operandos, no, Apara(buf));
      guarda(c.relacoes, nr, Texto(t.substr(i, tam)));
      buf.clear();
      i += tam - 1;
      continue;
    }
    if (ch == u'O' && n == u'R')
      tam = 2;
    else if (ch == u'A' && n == u'N' && m == u'D')
      tam = 3;
    if (tam) {
      guarda(c.operandos, no, Apara(buf));
      guarda(c.conectores, nc, Texto(t.substr(i, tam)));
      buf.clear();
      i += tam - 1;
      continue;
    }
    buf += ch;
  }
  guarda(c.operandos, no, Apara(buf));
}

Texto ComparaValores(const std::array<Texto, 51>& relacoes, size_t indice, Valor esq, Valor dir) {
  if (!esq.ETexto()) {
    if (esq.ENumerico()) esq = Valor::DeDouble(esq.ComoDouble());
    if (dir.ENumerico()) dir = Valor::DeDouble(dir.ComoDouble());
  }
  const Texto& rel = relacoes[indice];
  if (rel.empty()) return Texto();
  auto numero = [](const Valor& v) { return !v.ETexto(); };
  int cmp;
  if (numero(esq) && numero(dir)) {
    double a = esq.tipo == Valor::Tipo::Vazio ? 0 : esq.ComoDouble();
    double b = dir.tipo == Valor::Tipo::Vazio ? 0 : dir.ComoDouble();
    cmp = a < b ? -1 : (a > b ? 1 : 0);
  } else if (!numero(esq) && !numero(dir)) {
    int c = esq.s.compare(dir.s);
    cmp = c < 0 ? -1 : (c > 0 ? 1 : 0);
  } else if (esq.ETexto() && dir.EVazio()) {
    cmp = esq.s.empty() ? 0 : 1;
  } else {
    // A number is less than any text.
    cmp = numero(esq) ? -1 : 1;
  }
  return Satisfaz(LeRelacao(rel), cmp) ? u"TRUE" : u"FALSE";
}

Relacao LeRelacao(TextoV rel) {
  if (rel == u"=") return Relacao::Igual;
  if (rel == u"<>") return Relacao::Diferente;
  if (rel == u"<") return Relacao::Menor;
  if (rel == u">") return Relacao::Maior;
  if (rel == u"<=") return Relacao::MenorIgual;
  return Relacao::MaiorIgual;
}


Texto CombinaCondicoes(const std::array<Texto, 51>& conectores, const std::array<Texto, 21>& resultados) {
  Texto v = resultados[0];
  for (size_t i = 0; i < conectores.size() && !conectores[i].empty(); ++i) {
    if (i + 1 >= resultados.size()) throw FalhaHost(falha::ForaDoIndice);
    Texto m = Maiusculas(conectores[i]);
    if (m == u"OR" && resultados[i + 1] == u"TRUE") v = u"TRUE";
    if (m == u"AND" && resultados[i + 1] == u"FALSE") v = u"FALSE";
  }
  return v;
}

Texto Interpretador::AvaliaCondicao(const Texto& condicao) {
  Condicao c;
  std::array<Texto, 21> resultados;
  auto longaDemais = [this] {
    CaixaCritica(msg::NoLocal(LocalAtual(), msg::kCondicaoLongaDemais));
    throw FalhaHost(falha::ForaDoIndice);
  };
  try {
    SeparaCondicao(condicao, c);
  } catch (const FalhaHost&) {
    longaDemais();
  }
  for (size_t k = 0; k < c.operandos.size() && !c.operandos[k].empty(); k += 2) {
    size_t j = k / 2;
    if (j >= resultados.size() || k + 1 >= c.operandos.size()) longaDemais();
    bool n1 = false, n2 = false;
    Valor esq = ValorNumerico(c.operandos[k], n1);
    Valor dir = ValorNumerico(c.operandos[k + 1], n2);
    resultados[j] = ComparaValores(c.relacoes, j, esq, dir);
  }
  if (!c.conectores[0].empty()) {
    size_t n = 0;
    while (n < c.conectores.size() && !c.conectores[n].empty()) ++n;
    if (n >= resultados.size()) longaDemais();
    return CombinaCondicoes(c.conectores, resultados);
  }
  return resultados[0];
}

void Interpretador::Atribui(const Texto& linha, const Texto& nome, bool numerico) {
  size_t eq = linha.find(u'=');
  Texto dir = eq == NPOS ? Texto() : Apara(TextoV(linha).substr(eq + 1));
  Texto maius = Maiusculas(linha);
  forcaTexto = false;
  for (const char16_t* w : {u"CHR(", u"JOIN(", u"FORMAT(", u"DIRECTORY(", u"SQL("})
    if (Contem(maius, w)) forcaTexto = true;
  Texto dirM = Maiusculas(dir);
  if (ComecaCom(dirM, u"SQL(") && Contem(dirM, u"TOTALRECORDS") && Comandos().totalSql) {
    SeparaArgumentos(dir, 11, false, numerico);
    size_t f = dir.find(u')');
    Texto dentro = Apara(dir.substr(4, f == NPOS ? NPOS : f - 4));
    size_t p1 = dentro.find(u'.');
    size_t p2 = p1 == NPOS ? NPOS : dentro.find(u'.', p1 + 1);
    Texto a = Maiusculas(dentro.substr(0, p1));
    Texto b = p1 == NPOS ? Texto() : Maiusculas(dentro.substr(p1 + 1, p2 == NPOS ? NPOS : p2 - p1 - 1));
    Texto c = p2 == NPOS ? Texto() : Maiusculas(dentro.substr(p2 + 1));
    GravaVariavel(nome, Comandos().totalSql(*this, a, b, c), true);
    return;
  }
  Texto buf;
  if (!Contem(dir, u" & ")) {
    Texto par[2], palavra;
    if (AchaFuncaoUsuario(dir, par, palavra) && TerminaCom(dir, u"()")) {
      GravaVariavel(nome, ChamaFuncao(dir.substr(0, dir.size() - 2), Texto()), true);
      return;
    }
    AtribuiSemJuncao(nome, std::move(dir), numerico, 0, false);
    return;
  }
  // A join: the cut at " & " takes no notice of quotes.
  size_t ini = 0;
  for (;;) {
    size_t p = dir.find(u" & ", ini);
    Texto parte = Apara(TextoV(dir).substr(ini, p == NPOS ? NPOS : p - ini));
    Texto par[2];
    if (ComecaCom(parte, u"\"")) {
      buf += RemoveAspas(parte);
    } else if (PosicaoVariavel(parte) >= 0) {
      buf += LeVariavel(parte).ComoTexto();
    } else if (AchaFuncaoInterna(parte, par)) {
      buf += RemoveAspas(DespachaComando(par[0], par[1]).ComoTexto());
    }
    if (p == NPOS) break;
    ini = p + 3;
  }
  GravaVariavel(nome, Valor::DeTexto(buf), true);
}

void Interpretador::AtribuiSemJuncao(const Texto& nome, Texto dir, bool numerico, int inicio,
                                     bool semMaisChamadas) {
  Texto par[2], palavra;
  for (int g = inicio; !semMaisChamadas && g < kMaxSubstituicoes && AchaFuncaoUsuario(dir, par, palavra); ++g) {
    Texto antes = dir;
    ExecutaFuncaoUsuario(dir, par, palavra);
    if (dir == antes) break;
  }
  for (int g = 0; g < kMaxSubstituicoes && AchaFuncaoInterna(dir, par); ++g) {
    Texto antes = dir;
    ExecutaFuncaoInterna(dir, par, numerico);
    if (dir == antes) break;
  }
  Texto buf;
  auto partes = SeparaArgumentos(dir, 11, false, numerico);
  for (const Texto& p : partes) {
    if (p.empty()) break;
    buf += (forcaTexto ? ValorTexto(p, numerico) : ValorNumerico(p, numerico)).ComoTexto();
  }
  GravaVariavel(nome, Valor::DeTexto(buf), true);
  forcaTexto = false;
}

}  // namespace zv
