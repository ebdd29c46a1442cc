// A command's arguments as the window commands read them: a slot that may
// be missing, and the three forms a value is taken in.
#pragma once

#include <vector>

#include "core/interpretador.h"

namespace zv {

// The k-th argument, empty when there are fewer.
inline Texto Arg(const std::vector<Texto>& a, size_t k) { return k < a.size() ? a[k] : Texto(); }
// Text form.
inline Texto TextoT(Interpretador& zv, const Texto& t) { return t.empty() ? Texto() : zv.ValorTexto(t).ComoTexto(); }
// Numeric-or-text form.
inline Texto TextoNT(Interpretador& zv, const Texto& t) {
  return t.empty() ? Texto() : zv.ValorNumerico(t).ComoTexto();
}
// A number; 0 for an empty argument.
inline double Num(Interpretador& zv, const Texto& t) { return t.empty() ? 0.0 : zv.ValorNumerico(t).ComoDouble(); }

// A number cut toward zero to an int; beyond 32 bits it overflows, as the
// original's conversions did.
inline int ParaInt(double v) {
  if (!(v > -2147483649.0 && v < 2147483648.0)) throw FalhaHost(falha::Estouro);
  return static_cast<int>(v);
}
inline int NumInt(Interpretador& zv, const Texto& t) { return ParaInt(Num(zv, t)); }

// The name of a member or removal form: before the first ".", read through
// the String variable of that name when it begins with "$".
inline Texto NomeDoMembro(Interpretador& zv, const Texto& primeiro) {
  Texto n = Apara(primeiro.substr(0, primeiro.find(u'.')));
  if (!n.empty() && n[0] == u'$') return zv.LeVariavel(n).ComoTexto();
  return n;
}

// TRUE, FALSE or anything else, as the properties compare their value: 1,
// 0 or -1.
inline int Logico(Interpretador& zv, const Texto& v) {
  Texto m = Maiusculas(TextoNT(zv, v));
  return m == u"TRUE" ? 1 : m == u"FALSE" ? 0 : -1;
}

// The member word of "Name.Member ...": upper case, from the point up to a
// blank.
inline Texto PalavraDoMembro(const Texto& primeiro) {
  Texto resto = primeiro.substr(primeiro.find(u'.'));
  return Maiusculas(resto.substr(0, resto.find(u' ')));
}

}  // namespace zv
