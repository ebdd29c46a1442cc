// Plans of the statements that read long texts: StrLen, StrPos and ConvStr
// worked out on the stored text itself, and GoTo's label found once. The walk
// copies a text every time it reads one; these read it where it lies, so a
// statement costs what it does, not the length of the text it looks at.
#include <algorithm>
#include <cmath>

#include "core/expressao.h"
#include "core/interpretador.h"
#include "core/marcas.h"

namespace zv {

namespace {

bool CaractereDeNome(char16_t c) { return ELetra(c) || EDigito(c) || c == u'_' || c == u'.'; }

bool Definido(const char16_t* palavra) { return Comandos().Rotina_(IndicePalavra(palavra)) != nullptr; }

}  // namespace

// The call's arguments as the routine reads them, where each is a plain
// variable, a quoted constant or a number the plans can work out.
bool Interpretador::PreparaChamadaTexto(const Texto& nome, const Texto& args, ChamadaTexto& c) {
  using F = ChamadaTexto::Funcao;
  if (nome == u"StrLen" && Definido(u"StrLen"))
    c.funcao = F::StrLen;
  else if (nome == u"StrPos" && Definido(u"StrPos") && Comandos().posicao)
    c.funcao = F::StrPos;
  else if (nome == u"ConvStr" && Definido(u"ConvStr"))
    c.funcao = F::ConvStr;
  else
    return false;
  if (args.find_first_of(u"()[]") != NPOS) return false;
  std::vector<Texto> a;
  try {
    a = SeparaArgumentos(args, c.funcao == F::StrLen ? 6 : 4);
  } catch (const FalhaHost&) {
    return false;
  }
  size_t n = ContaArgumentos(a);
  for (size_t i = n; i < a.size(); ++i)
    if (!a[i].empty()) return false;
  auto variavel = [this](const Texto& t, RefVariavel& r) {
    return t.find(u'"') == NPOS && PosicaoVariavel(t) >= 0 && ResolveRef(t, r);
  };
  if (c.funcao == F::ConvStr) return n == 1 && variavel(a[0], c.texto) && c.texto.tipo != TipoVariavel::String;
  if (!variavel(a[0], c.texto) || c.texto.tipo != TipoVariavel::String) return false;
  if (c.funcao == F::StrLen) return n == 1;
  if (n < 2 || n > 3) return false;
  const Texto& b = a[1];
  if (b.size() >= 2 && b.front() == u'"' && b.back() == u'"') {
    // A quoted search reads as itself unless a variable is named after it.
    if (b.find(u'"', 1) != b.size() - 1 || variaveis.HaNomeComAspas()) return false;
    c.busca.tipo = PlanoValor::Tipo::Constante;
    c.busca.constante = RemoveAspas(b);
  } else if (variavel(b, c.busca.var) && c.busca.var.tipo == TipoVariavel::String) {
    c.busca.tipo = PlanoValor::Tipo::Variavel;
  } else {
    return false;
  }
  c.temInicio = n == 3;
  if (!c.temInicio) return true;
  PreparaValor(a[2], c.inicio);
  using P = PlanoValor::Tipo;
  return c.inicio.tipo == P::Numero || (c.inicio.tipo == P::Aritmetica && c.inicio.temArvore) ||
         (c.inicio.tipo == P::Variavel && c.inicio.var.tipo != TipoVariavel::String);
}

// A value that is one call, or a calculation with one call in it whose
// result the walk would splice in as digits. `t` is trimmed and untagged.
bool Interpretador::PreparaValorComChamada(const Texto& t, PlanoValor& p) {
  Texto nome, args;
  if (AchaChamadaInterna(t, nome, args) != 1) return false;
  const Texto chamada = nome + u"(" + args + u")";
  size_t ini = t.find(nome);
  if (ini == NPOS || t.compare(ini, chamada.size(), chamada) != 0) return false;
  size_t fim = ini + chamada.size();
  auto c = std::make_shared<ChamadaTexto>();
  if (!PreparaChamadaTexto(nome, args, *c)) return false;
  if (ini == 0 && fim == t.size()) {
    p.tipo = PlanoValor::Tipo::Chamada;
    p.chamada = std::move(c);
    return true;
  }
  // In a calculation only numbers fit. A call whose argument is a bare name
  // keeps just one character behind it, so it must end the text.
  if (c->funcao == ChamadaTexto::Funcao::ConvStr) return false;
  if (c->funcao == ChamadaTexto::Funcao::StrLen && fim != t.size()) return false;
  if (ini > 0 && CaractereDeNome(t[ini - 1])) return false;
  Texto resto = t.substr(0, ini) + u"0" + t.substr(fim);
  double v;
  if (resto.find_first_of(u"\",") != NPOS || LeNumero(resto, v) || !ExpressaoAritmetica(Apara(resto)) ||
      PodeTerChamadaInterna(resto))
    return false;
  // The pieces and names as PreparaValor cuts them, the call one more hole.
  std::vector<Texto> pedacos;
  std::vector<RefVariavel> refs;
  Texto pedaco;
  for (size_t i = 0; i < t.size(); ++i) {
    if (i == ini) {
      pedacos.push_back(std::move(pedaco));
      pedaco.clear();
      RefVariavel r;
      r.nome = chamada;
      r.chamada = c;
      refs.push_back(std::move(r));
      i = fim - 1;
      continue;
    }
    if (!ELetra(t[i])) {
      pedaco += t[i];
      continue;
    }
    size_t j = i;
    while (j < t.size() && CaractereDeNome(t[j])) ++j;
    if (j < t.size() && t[j] == u'(') {
      size_t k = t.find(u')', j);
      j = k == NPOS ? t.size() : k + 1;
    }
    if (i < ini && j > ini) return false;
    RefVariavel r;
    if (!ResolveRef(t.substr(i, j - i), r)) return false;
    pedacos.push_back(std::move(pedaco));
    pedaco.clear();
    refs.push_back(std::move(r));
    i = j - 1;
  }
  pedacos.push_back(std::move(pedaco));
  p.pedacos = std::move(pedacos);
  p.refs = std::move(refs);
  p.temArvore = p.refs.size() <= 16 && p.arvore.Compila(p.pedacos);
  p.tipo = PlanoValor::Tipo::Aritmetica;
  return true;
}

// "x = call" or "x = calculation with a call": one value, as Atribui finds it.
bool Interpretador::PreparaAtribuicaoChamada(const Texto& nome, const Texto& dir, PlanoLinha& pl) {
  Texto t = Apara(LimpaParenteses(dir));
  if (t.empty() || !PodeTerChamadaInterna(t)) return false;
  PlanoValor v;
  v.fonte = dir;
  if (!PreparaValorComChamada(t, v) || !ResolveRef(nome, pl.alvo)) return false;
  pl.partes.clear();
  pl.partes.push_back(std::move(v));
  pl.tipo = PlanoLinha::Tipo::Atribuicao;
  return true;
}

bool Interpretador::NumeroDaChamada(ChamadaTexto& c, double& x) {
  int64_t i;
  if (c.funcao == ChamadaTexto::Funcao::ConvStr || !IndiceRef(c.texto, i)) return false;
  const Texto& t = variaveis.textos[static_cast<size_t>(c.texto.inicio + i)];
  if (c.funcao == ChamadaTexto::Funcao::StrLen) {
    x = static_cast<double>(t.size());
    return true;
  }
  const Texto* b = TextoRapido(c.busca);
  if (!b) return false;
  int32_t inicio = 1;
  if (c.temInicio) {
    double y;
    Valor::Tipo ty;
    // A start below 1 has a box to show: the walk shows it.
    if (!NumeroRapido(c.inicio, y, ty) || !ArredondaInt32(y, inicio) || inicio < 1) return false;
  }
  x = Comandos().posicao(t, *b, inicio);
  return true;
}

const Texto* Interpretador::TextoDaChamada(ChamadaTexto& c) {
  int64_t i;
  // The result comes back quoted; a variable named like it would be read instead.
  if (c.funcao != ChamadaTexto::Funcao::ConvStr || variaveis.HaNomeComAspas() || !IndiceRef(c.texto, i))
    return nullptr;
  size_t k = static_cast<size_t>(c.texto.inicio + i);
  double d = c.texto.tipo == TipoVariavel::Integer ? variaveis.inteiros[k] : variaveis.decimais[k];
  c.resultado = NumeroParaTexto(d);
  return &c.resultado;
}

bool Interpretador::ValorDaChamada(ChamadaTexto& c, Valor& v) {
  if (c.funcao == ChamadaTexto::Funcao::ConvStr) {
    const Texto* t = TextoDaChamada(c);
    if (!t) return false;
    v = Valor::DeTexto(*t);
    return true;
  }
  double x;
  if (!NumeroDaChamada(c, x)) return false;
  v = Valor::DeDouble(x);
  return true;
}

// A piece of a calculation: a variable's value, or a call's result as the
// whole number the walk would splice in.
bool Interpretador::LeParte(const RefVariavel& r, uint64_t geracao, Valor& v) {
  if (!r.chamada) return LeRef(r, geracao, v);
  double x;
  if (geracao != variaveis.geracao || !NumeroDaChamada(*r.chamada, x)) return false;
  v = Valor::DeInt32(static_cast<int32_t>(x));
  return true;
}

// GoTo: the label is searched from the start of the text, as the walk
// searches it, once.
void Interpretador::PreparaSalto(const Texto& texto, const Texto& linha, PlanoLinha& pl) {
  size_t p = linha.find(u"GoTo");
  Texto rotulo = Resto(linha, p + 5);
  if (TerminaCom(rotulo, u":")) return;  // the walk's box
  rotulo += u':';
  size_t h = texto.find(rotulo);
  size_t a = h == NPOS ? NPOS : texto.rfind(u"&#", h);
  if (a == NPOS) return;
  pl.desvio.pos = a;
  pl.desvio.numero = NumeroEm(texto, a + 2);
  pl.desvio.fim = std::min(texto.find(CRLF, a), texto.size());
  pl.tipo = PlanoLinha::Tipo::Salto;
}

}  // namespace zv
