// Plans of the statements that read long texts: StrLen, StrPos and ConvStr
// worked out on the stored text itself, and GoTo's label found once. The walk
// copies a text every time it reads one; these read it where it lies, so a
// statement costs what it does, not the length of the text it looks at.
#include <algorithm>
#include <cmath>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif
#if defined(__x86_64__) && defined(__GNUC__)
#include <immintrin.h>
#define ZV_AVX2 1
#endif

#include "core/expressao.h"
#include "core/interpretador.h"
#include "core/marcas.h"

namespace zv {

namespace {

bool CaractereDeNome(char16_t c) { return ELetra(c) || EDigito(c) || c == u'_' || c == u'.'; }

bool Definido(const char16_t* palavra) { return Comandos().Rotina_(IndicePalavra(palavra)) != nullptr; }

// The first place at or after `i` of a character that can change a quoted
// text read back (a quote, or the ']' and ')' that close a nesting tag);
// eight at a time where the processor can.
#if ZV_AVX2
// Thirty-two at a time, on processors that have AVX2.
__attribute__((target("avx2"))) size_t SemSuspeitoAte(const char16_t* d, size_t i, size_t n) {
  const __m256i aspas = _mm256_set1_epi16(u'"'), colchete = _mm256_set1_epi16(u']'),
                parentese = _mm256_set1_epi16(u')');
  for (; i + 32 <= n; i += 32) {
    __m256i a = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(d + i));
    __m256i b = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(d + i + 16));
    __m256i m = _mm256_or_si256(
        _mm256_or_si256(_mm256_or_si256(_mm256_cmpeq_epi16(a, aspas), _mm256_cmpeq_epi16(a, colchete)),
                        _mm256_cmpeq_epi16(a, parentese)),
        _mm256_or_si256(_mm256_or_si256(_mm256_cmpeq_epi16(b, aspas), _mm256_cmpeq_epi16(b, colchete)),
                        _mm256_cmpeq_epi16(b, parentese)));
    if (!_mm256_testz_si256(m, m)) break;
  }
  return i;
}
#endif

size_t ProximoSuspeito(TextoV r, size_t i) {
#if ZV_AVX2
  static const bool avx2 = __builtin_cpu_supports("avx2");
  if (r.size() >= i + 32 && avx2) i = SemSuspeitoAte(r.data(), i, r.size());
#endif
#if defined(__SSE2__)
  const __m128i aspas = _mm_set1_epi16(u'"'), colchete = _mm_set1_epi16(u']'), parentese = _mm_set1_epi16(u')');
  for (; i + 8 <= r.size(); i += 8) {
    __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(r.data() + i));
    __m128i m = _mm_or_si128(_mm_or_si128(_mm_cmpeq_epi16(v, aspas), _mm_cmpeq_epi16(v, colchete)),
                             _mm_cmpeq_epi16(v, parentese));
    if (_mm_movemask_epi8(m)) break;
  }
#endif
  for (; i < r.size(); ++i)
    if (r[i] == u'"' || r[i] == u']' || r[i] == u')') return i;
  return TextoV::npos;
}

// Whether the characters of `r`, coming after `a2` and `a1`, hold nothing
// that changes them when read back in quotes: a quote, or a nesting tag
// "(n]" or "[n)" that the reading takes off.
bool SemSuspeitos(TextoV r, char16_t a2, char16_t a1) {
  for (size_t i = ProximoSuspeito(r, 0); i != TextoV::npos; i = ProximoSuspeito(r, i + 1)) {
    char16_t c = r[i];
    if (c == u'"') return false;
    char16_t antes = i >= 2 ? r[i - 2] : (i == 1 ? a1 : a2);
    if ((c == u']' && antes == u'(') || (c == u')' && antes == u'[')) return false;
  }
  return true;
}

}  // namespace

// The call's arguments as the routine reads them, where each is a plain
// variable, a quoted constant or a number the plans can work out.
bool Interpretador::PreparaChamadaTexto(const Texto& nome, const Texto& args, ChamadaTexto& c, bool numerico) {
  using F = ChamadaTexto::Funcao;
  if (nome == u"StrLen" && Definido(u"StrLen"))
    c.funcao = F::StrLen;
  else if (nome == u"StrPos" && Definido(u"StrPos") && Comandos().posicao)
    c.funcao = F::StrPos;
  else if (nome == u"ConvStr" && Definido(u"ConvStr"))
    c.funcao = F::ConvStr;
  else if (nome == u"SubStr" && Definido(u"SubStr") && Comandos().trecho)
    c.funcao = F::SubStr;
  else
    return false;
  // Elements of arrays may stand as arguments, calls may not. A lone
  // argument with brackets would keep the ')' behind its own in the walk.
  if (args.find_first_of(u"[]") != NPOS || PodeTerChamadaInterna(args) || PodeTerChamadaUsuario(args)) return false;
  // Arguments the walk takes for a variable's name (a name, or anything
  // after an element's brackets) keep only one character behind the call's
  // first ')', unless the statement is an assignment to a number.
  c.numerico = numerico;
  if (!numerico && args.find(u'(') != NPOS && PosicaoVariavel(Apara(args)) >= 0) return false;
  std::vector<Texto> a;
  try {
    a = SeparaArgumentos(args, c.funcao == F::StrLen || c.funcao == F::SubStr ? 6 : 4);
  } catch (const FalhaHost&) {
    return false;
  }
  size_t n = ContaArgumentos(a);
  for (size_t i = n; i < a.size(); ++i)
    if (!a[i].empty()) return false;
  auto variavel = [this](const Texto& t, RefVariavel& r) {
    return t.find(u'"') == NPOS && PosicaoVariavel(t) >= 0 && ResolveRef(t, r);
  };
  using P = PlanoValor::Tipo;
  auto numero = [](const PlanoValor& v) {
    return v.tipo == P::Numero || (v.tipo == P::Aritmetica && v.temArvore) ||
           (v.tipo == P::Variavel && v.var.tipo != TipoVariavel::String);
  };
  if (c.funcao == F::ConvStr) {
    // The number: any value the plans work out as a number.
    if (n != 1) return false;
    PreparaValor(a[0], c.inicio);
    return numero(c.inicio);
  }
  if (!variavel(a[0], c.texto) || c.texto.tipo != TipoVariavel::String) return false;
  if (c.funcao == F::StrLen) return n == 1;
  if (c.funcao == F::SubStr) {
    if (n < 2 || n > 3) return false;
    PreparaValor(a[1], c.inicio);
    c.temInicio = true;
    c.temTamanho = n == 3;
    if (c.temTamanho) PreparaValor(a[2], c.tamanho);
    return numero(c.inicio) && (!c.temTamanho || numero(c.tamanho));
  }
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
  return numero(c.inicio);
}

// A value that is one call, or a calculation with one call in it whose
// result the walk would splice in as digits. `t` is trimmed and untagged.
bool Interpretador::PreparaValorComChamada(const Texto& t, PlanoValor& p, bool numerico) {
  Texto nome, args;
  if (AchaChamadaInterna(t, nome, args) != 1) return false;
  const Texto chamada = nome + u"(" + args + u")";
  size_t ini = t.find(nome);
  if (ini == NPOS || t.compare(ini, chamada.size(), chamada) != 0) return false;
  size_t fim = ini + chamada.size();
  auto c = std::make_shared<ChamadaTexto>();
  if (!PreparaChamadaTexto(nome, args, *c, numerico)) return false;
  if (ini == 0 && fim == t.size()) {
    p.tipo = PlanoValor::Tipo::Chamada;
    p.chamada = std::move(c);
    return true;
  }
  // In a calculation only numbers fit. A call whose argument is a bare name
  // keeps just one character behind it, so it must end the text.
  if (c->funcao == ChamadaTexto::Funcao::ConvStr || c->funcao == ChamadaTexto::Funcao::SubStr) return false;
  if (PosicaoVariavel(Apara(args)) >= 0 && (fim != t.size() || args.find(u'(') != NPOS)) return false;
  c->numerico = false;
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
      r.tipo = TipoVariavel::String;  // never read as a variable
      r.chamada = c.get();
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
  p.temArvore = p.refs.size() <= kMaxBuracos && p.arvore.Compila(p.pedacos);
  p.temChamada = true;
  p.chamada = std::move(c);
  p.tipo = PlanoValor::Tipo::Aritmetica;
  return true;
}

// CalculoRapido for a calculation with a call's hole (typed String, so that
// no variable read takes it): the call's whole number stands there.
bool Interpretador::CalculoComChamada(const PlanoValor& p, double& x) {
  double valores[kMaxBuracos];
  for (size_t n = 0; n < p.refs.size(); ++n) {
    const RefVariavel& r = p.refs[n];
    if (r.chamada) {
      if (!NumeroDaChamada(*r.chamada, valores[n])) return false;
      continue;
    }
    int64_t i;
    if (r.tipo != TipoVariavel::Integer || !IndiceRef(r, i)) return false;
    int32_t v = variaveis.inteiros[static_cast<size_t>(r.inicio + i)];
    if (v < 0) return false;
    valores[n] = v;
  }
  double r;
  x = p.arvore.Calcula(valores, r) ? NumeroRelido(r) : 0;
  return true;
}

// "x = call" or "x = calculation with a call": one value, as Atribui finds it.
bool Interpretador::PreparaAtribuicaoChamada(const Texto& nome, const Texto& dir, PlanoLinha& pl) {
  if (PreparaJoinStr(nome, dir, pl)) return true;
  Texto t = Apara(LimpaParenteses(dir));
  if (t.empty() || !PodeTerChamadaInterna(t)) return false;
  PlanoValor v;
  v.fonte = dir;
  if (!ResolveRef(nome, pl.alvo) || !PreparaValorComChamada(t, v, pl.alvo.tipo != TipoVariavel::String)) return false;
  // A whole SubStr has its own plan, which cuts in place.
  if (v.tipo == PlanoValor::Tipo::Chamada && v.chamada->funcao == ChamadaTexto::Funcao::SubStr) return false;
  pl.partes.clear();
  pl.partes.push_back(std::move(v));
  pl.tipo = PlanoLinha::Tipo::Atribuicao;
  return true;
}

bool Interpretador::NumeroDaChamada(ChamadaTexto& c, double& x) {
  int64_t i;
  if (c.funcao == ChamadaTexto::Funcao::ConvStr || c.funcao == ChamadaTexto::Funcao::SubStr ||
      !IndiceRef(c.texto, i))
    return false;
  // What is looked for is read whole.
  if (c.busca.tipo == PlanoValor::Tipo::Variavel) variaveis.Assenta();
  const size_t q = static_cast<size_t>(c.texto.inicio + i);
  TextoV t = TextoV(variaveis.textos[q]).substr(variaveis.Caidos(q));
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
  if (c.funcao == ChamadaTexto::Funcao::SubStr) {
    variaveis.Assenta();  // its result is read whole by plans that don't know a front to drop
    if (!IndiceRef(c.texto, i)) return nullptr;
    const Texto& t = variaveis.textos[static_cast<size_t>(c.texto.inicio + i)];
    int32_t inicio, tamanho = static_cast<int32_t>(std::min<size_t>(t.size(), INT32_MAX));
    double x;
    Valor::Tipo tx;
    if (!NumeroRapido(c.inicio, x, tx) || !ArredondaInt32(x, inicio)) return nullptr;
    if (c.temTamanho && (!NumeroRapido(c.tamanho, x, tx) || !ArredondaInt32(x, tamanho))) return nullptr;
    TextoV r;
    if (!Comandos().trecho(t, inicio, tamanho, r) ||
        !VoltaIgualGuardado(static_cast<size_t>(c.texto.inicio + i), r))
      return nullptr;
    c.resultado.assign(r.data(), r.size());
    return &c.resultado;
  }
  // The result comes back quoted; a variable named like it would be read instead.
  double d;
  Valor::Tipo td;
  if (c.funcao != ChamadaTexto::Funcao::ConvStr || variaveis.HaNomeComAspas() || !NumeroRapido(c.inicio, d, td))
    return nullptr;
  c.resultado = NumeroParaTexto(d);
  return &c.resultado;
}

bool Interpretador::ValorDaChamada(ChamadaTexto& c, Valor& v) {
  if (c.funcao == ChamadaTexto::Funcao::ConvStr || c.funcao == ChamadaTexto::Funcao::SubStr) {
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

// A text that the walk splices into the statement in quotes is read again
// as a value: it comes back as itself unless it holds a quote or a nesting
// tag, ends with ')' (taken for the end of a quoted argument) or a variable
// is named after it.
bool Interpretador::VoltaIgual(TextoV r) {
  if (!r.empty() && r.back() == u')') return false;
  if (!SemSuspeitos(r, 0, 0)) return false;
  if (r.size() + 2 <= 50 && variaveis.HaNomeComAspas()) {
    Texto aspas = u"\"" + Texto(r) + u"\"";
    if (variaveis.Posicao(aspas) >= 0) return false;
  }
  return true;
}

// A part of a clean prefix is clean itself: its suspects are the prefix's,
// with no more characters before them. Only the rest is read, with the two
// characters before it. (No variable's name is as long as the parts this
// looks up.)
bool Interpretador::VoltaIgualGuardado(size_t k, TextoV r) {
  if (r.size() < 64) return VoltaIgual(r);  // read sooner than looked up
  const Texto& t = variaveis.textos[k];
  if (r.data() < t.data() || r.data() + r.size() > t.data() + t.size()) return VoltaIgual(r);
  size_t de = static_cast<size_t>(r.data() - t.data()), limpo = variaveis.PrefixoLimpo(k);
  size_t desde = limpo > de ? std::min(limpo - de, r.size()) : 0;
  if (r.back() == u')') return false;
  char16_t a2 = desde >= 2 ? r[desde - 2] : 0, a1 = desde >= 1 ? r[desde - 1] : 0;
  return SemSuspeitos(r.substr(desde), a2, a1);
}

// "text = SubStr(L(i), ...)": the walk takes the arguments for the element's
// name and keeps one character behind the element's ')' after the result.
// When that is the comma, the assignment splits it off again, and the cut
// reads the same, so long as the result then holds no call.
bool Interpretador::VirgulaAposElemento(const Texto& dir, PlanoLinha& pl) {
  Texto t = LimpaParenteses(dir);
  size_t q = t.find(u"SubStr");
  size_t fp = q == NPOS ? NPOS : t.find(u')', q + 6);
  if (fp == NPOS || fp + 1 >= t.size() || t[fp + 1] != u',' || t.find(u'(', q + 7) > fp) return false;
  pl.virgula = true;
  return true;
}

bool Interpretador::VirgulaInofensiva(TextoV r) {
  Texto t = u"\"" + Texto(r) + u"\",";
  return !PodeTerChamadaInterna(t);
}

// "text = JoinStr(a, b, ...)", each argument a variable or a constant. The
// constants' texts are found once; the join grows the target in place when
// the target is its first argument, the accumulator users write.
bool Interpretador::PreparaJoinStr(const Texto& nome, const Texto& dir, PlanoLinha& pl) {
  Texto fn, args;
  if (!Definido(u"JoinStr") || AchaChamadaInterna(dir, fn, args) != 1 || fn != u"JoinStr") return false;
  if (LimpaParenteses(Apara(dir)) != u"JoinStr(" + args + u")" || args.find_first_of(u"()[]") != NPOS) return false;
  std::vector<Texto> a;
  try {
    a = SeparaArgumentos(args, 101);
  } catch (const FalhaHost&) {
    return false;
  }
  size_t n = ContaArgumentos(a);
  if (n == 0) return false;
  for (size_t i = n; i < a.size(); ++i)
    if (!a[i].empty()) return false;
  RefVariavel alvo;
  if (!ResolveRef(nome, alvo) || alvo.tipo != TipoVariavel::String) return false;
  std::vector<PlanoValor> partes(n);
  for (size_t i = 0; i < n; ++i) {
    PlanoValor& p = partes[i];
    p.fonte = a[i];
    double x;
    if (a[i].front() == u'"') {
      // A quoted constant that no variable is named after.
      if (a[i].size() < 2 || a[i].back() != u'"' || a[i].find(u'"', 1) != a[i].size() - 1 ||
          variaveis.HaNomeComAspas())
        return false;
      p.tipo = PlanoValor::Tipo::Constante;
      p.constante = RemoveAspas(a[i]);
    } else if (LeNumero(a[i], x)) {
      p.tipo = PlanoValor::Tipo::Constante;
      p.constante = Valor::DeDouble(x).ComoTexto();
    } else if (PosicaoVariavel(a[i]) >= 0 && ResolveRef(a[i], p.var)) {
      p.tipo = PlanoValor::Tipo::Variavel;
    } else {
      return false;
    }
  }
  pl.alvo = std::move(alvo);
  pl.partes = std::move(partes);
  pl.tipo = PlanoLinha::Tipo::JoinStr;
  return true;
}

bool Interpretador::JoinStrRapido(PlanoLinha& pl) {
  int64_t k;
  if (!IndiceRef(pl.alvo, k)) return false;
  const size_t a = static_cast<size_t>(pl.alvo.inicio + k);
  Texto& alvo = variaveis.textos[a];
  size_t limpo = 0;  // of the first part, known to the store
  // Each part's text; numbers are made into `numeros` first, so that the
  // pointers stay put.
  const size_t n = pl.partes.size();
  Texto numeros;
  std::vector<std::pair<size_t, size_t>> faixas;  // into numeros
  const Texto* textos[101];
  for (size_t i = 0; i < n; ++i) {
    const PlanoValor& p = pl.partes[i];
    textos[i] = nullptr;
    if (p.tipo == PlanoValor::Tipo::Constante) {
      textos[i] = &p.constante;
      continue;
    }
    int64_t j;
    if (!IndiceRef(p.var, j)) return false;
    size_t q = static_cast<size_t>(p.var.inicio + j);
    if (p.var.tipo == TipoVariavel::String) {
      textos[i] = &variaveis.textos[q];
      if (i == 0) limpo = variaveis.PrefixoLimpo(q);
      continue;
    }
    Valor v = p.var.tipo == TipoVariavel::Integer ? Valor::DeInt32(variaveis.inteiros[q])
                                                   : Valor::DeDouble(variaveis.decimais[q]);
    size_t ini = numeros.size();
    numeros += v.ComoTexto();
    faixas.emplace_back(i, ini);
  }
  auto parte = [&](size_t i) -> TextoV {
    if (textos[i]) return *textos[i];
    for (size_t f = 0; f < faixas.size(); ++f)
      if (faixas[f].first == i) {
        size_t fim = f + 1 < faixas.size() ? faixas[f + 1].second : numeros.size();
        return TextoV(numeros).substr(faixas[f].second, fim - faixas[f].second);
      }
    return TextoV();
  };
  // The joined text must read back as itself, across the joins too.
  size_t total = 0;
  char16_t a2 = 0, a1 = 0;
  for (size_t i = 0; i < n; ++i) {
    TextoV t = parte(i);
    // The first part is read only behind what the store knows clean.
    size_t de = i == 0 ? limpo : 0;
    if (de > 0) {
      a2 = de >= 2 ? t[de - 2] : 0;
      a1 = t[de - 1];
    }
    if (!SemSuspeitos(t.substr(de), a2, a1)) return false;
    total += t.size();
    if (t.size() >= 2) {
      a2 = t[t.size() - 2];
      a1 = t.back();
    } else if (t.size() == 1) {
      a2 = a1;
      a1 = t[0];
    }
  }
  if (total > kMaxTexto || a1 == u')') return false;
  if (total + 2 <= 50 && variaveis.HaNomeComAspas()) {
    Texto aspas = u"\"";
    for (size_t i = 0; i < n; ++i) aspas += parte(i);
    aspas += u'"';
    if (variaveis.Posicao(aspas) >= 0) return false;
  }
  if (textos[0] == &alvo) {
    // The accumulator: the target grows where it lies.
    const size_t velho = alvo.size();
    alvo.reserve(total);
    for (size_t i = 1; i < n; ++i) {
      if (textos[i] == &alvo)
        alvo.append(alvo, 0, velho);  // its old text once more
      else
        alvo.append(parte(i));
    }
    // All of it was found clean.
    variaveis.AnotaLimpo(a, alvo.size());
  } else {
    Texto r;
    r.reserve(total);
    for (size_t i = 0; i < n; ++i) r += parte(i);
    alvo = std::move(r);
    variaveis.Escreveu(a);
  }
  forcaTexto = false;
  return true;
}

// "RepStr name, text, start[, length]" on a String variable: the characters
// are overwritten where they lie.
void Interpretador::PreparaRepStr(const Texto& args, PlanoLinha& pl) {
  // A Rep routine would also run for this name (found by its prefix).
  if (!Definido(u"RepStr") || Comandos().rep || args.find_first_of(u"()[]") != NPOS) return;
  std::vector<Texto> a;
  try {
    a = SeparaArgumentos(args, 4);
  } catch (const FalhaHost&) {
    return;
  }
  size_t n = ContaArgumentos(a);
  if (n < 3) return;
  if (a[0].find(u'"') != NPOS || PosicaoVariavel(a[0]) < 0 || !ResolveRef(a[0], pl.fonte) ||
      pl.fonte.tipo != TipoVariavel::String)
    return;
  PlanoValor novo;
  novo.fonte = a[1];
  if (a[1].size() >= 2 && a[1].front() == u'"' && a[1].back() == u'"' && a[1].find(u'"', 1) == a[1].size() - 1 &&
      !variaveis.HaNomeComAspas()) {
    novo.tipo = PlanoValor::Tipo::Constante;
    novo.constante = RemoveAspas(a[1]);
  } else if (a[1].find(u'"') == NPOS && PosicaoVariavel(a[1]) >= 0 && ResolveRef(a[1], novo.var) &&
             novo.var.tipo == TipoVariavel::String) {
    novo.tipo = PlanoValor::Tipo::Variavel;
  } else {
    return;
  }
  pl.partes.push_back(std::move(novo));
  for (size_t i = 2; i < n; ++i) {
    pl.partes.emplace_back();
    PlanoValor& p = pl.partes.back();
    PreparaValor(a[i], p);
    using P = PlanoValor::Tipo;
    bool numero = p.tipo == P::Numero || (p.tipo == P::Aritmetica && p.temArvore) ||
                  (p.tipo == P::Variavel && p.var.tipo != TipoVariavel::String);
    if (!numero) return;
  }
  pl.tipo = PlanoLinha::Tipo::RepStr;
}

bool Interpretador::RepStrRapido(PlanoLinha& pl) {
  int64_t k;
  if (!IndiceRef(pl.fonte, k)) return false;
  Texto& alvo = variaveis.textos[static_cast<size_t>(pl.fonte.inicio + k)];
  const Texto* novo = TextoRapido(pl.partes[0]);
  if (!novo) return false;
  int32_t limites[2] = {0, 0};
  for (size_t i = 1; i < pl.partes.size(); ++i) {
    double x;
    Valor::Tipo tx;
    if (!NumeroRapido(pl.partes[i], x, tx) || !ArredondaInt32(x, limites[i - 1])) return false;
  }
  int64_t inicio = limites[0], tamanho = limites[1];
  // Where the routine fails, the walk shows its box.
  if (inicio < 1 || inicio > static_cast<int64_t>(alvo.size()) || tamanho < 0) return false;
  size_t de = static_cast<size_t>(inicio - 1);
  size_t n = std::min(novo->size(), alvo.size() - de);
  if (tamanho > 0) n = std::min(n, static_cast<size_t>(tamanho));
  variaveis.Escreveu(static_cast<size_t>(pl.fonte.inicio + k), de);
  if (novo == &alvo)
    alvo.replace(de, n, Texto(alvo, 0, n));
  else
    alvo.replace(de, n, *novo, 0, n);
  return true;
}

bool Interpretador::AcrescentaTexto(PlanoLinha& pl, const Valor& d) {
  // Two texts join; the target is read and stored by the plan's own
  // lookups, which still hold.
  int64_t k;
  if (!pl.mais || pl.alvo.tipo != TipoVariavel::String || pl.geracao != variaveis.geracao || !d.ETexto() ||
      !IndiceRef(pl.alvo, k))
    return false;
  Texto& x = variaveis.textos[static_cast<size_t>(pl.alvo.inicio + k)];
  if (x.size() + d.s.size() > kMaxTexto) return false;
  x += d.s;
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
