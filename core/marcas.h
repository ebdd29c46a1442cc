// Reading the markers and block tags of a prepared text.
#pragma once

#include "core/texto.h"

namespace zv {

// The number behind an "&#" at `p` (five digits, read as far as digits go).
inline int32_t NumeroEm(const Texto& t, size_t p) {
  int32_t n = 0;
  for (size_t k = p; k < p + 5 && k < t.size() && EDigito(t[k]); ++k) n = n * 10 + (t[k] - u'0');
  return n;
}

inline Texto MarcaComando(int32_t numero) { return u"&#" + Preenche(numero, 5); }

// The depth tag that follows a block word (from its "[" on, to the "]").
inline Texto TagProfundidade(const Texto& linha, size_t inicio) {
  size_t b = linha.find(u']', inicio);
  return b == NPOS ? linha.substr(inicio) : linha.substr(inicio, b - inicio);
}

inline bool ProfundidadeValida(const Texto& tag, int& d) {
  double v;
  if (!LeNumero(tag, v)) return false;
  d = static_cast<int>(v);
  return d >= 0 && d <= 20;
}

// The text from `p` on, or empty when the line is shorter.
inline Texto Resto(const Texto& linha, size_t p) { return p < linha.size() ? linha.substr(p) : Texto(); }

// The condition behind a tagged block word that stands at `p` and is
// `tamanho` long ("While[" or "If["). It starts `salto` places behind the
// word, the place that tags of one or two digits leave; a longer tag moves
// it to just behind its "]", as deep blocks would otherwise lose their
// condition's first characters to the tag and never end.
inline Texto CondicaoDoBloco(const Texto& linha, size_t p, size_t tamanho, size_t salto) {
  size_t inicio = p + salto;
  size_t b = linha.find(u']', p + tamanho);
  if (b != NPOS && b + 1 > inicio) inicio = b + 1;
  return Resto(linha, inicio);
}

// Editor and line (plus one) of a prepared line.
inline void Localizacao(TextoV linha, int32_t& editor, int32_t& numLinha) {
  int32_t e = 0, l = 0;
  for (size_t k = 16; k < 18 && k < linha.size() && EDigito(linha[k]); ++k) e = e * 10 + (linha[k] - u'0');
  for (size_t k = 9; k < 14 && k < linha.size() && EDigito(linha[k]); ++k) l = l * 10 + (linha[k] - u'0');
  editor = e;
  numLinha = l + 1;
}

}  // namespace zv
