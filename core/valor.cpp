#include "core/valor.h"

#include <cmath>
#include <limits>

namespace zv {

namespace {

Texto DataIso(double data) {
  // Days since 30 December 1899; civil date from the day number.
  double dia = std::floor(data);
  double frac = data - dia;
  // Civil date from the day number, counted from 1970-01-01.
  int64_t z = static_cast<int64_t>(dia) - 25569 + 719468;
  int64_t era = (z >= 0 ? z : z - 146096) / 146097;
  int64_t doe = z - era * 146097;
  int64_t yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
  int64_t y = yoe + era * 400;
  int64_t doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
  int64_t mp = (5 * doy + 2) / 153;
  int64_t d = doy - (153 * mp + 2) / 5 + 1;
  int64_t m = mp + (mp < 10 ? 3 : -9);
  y += (m <= 2);
  Texto t = Preenche(y, 4) + u"-" + Preenche(m, 2) + u"-" + Preenche(d, 2);
  int64_t seg = static_cast<int64_t>(std::llround(frac * 86400));
  if (seg > 0) {
    t += u" " + Preenche(seg / 3600, 2) + u":" + Preenche(seg / 60 % 60, 2) + u":" + Preenche(seg % 60, 2);
  }
  return t;
}

}  // namespace

Texto (*FormataDataPadrao)(double) = DataIso;

bool Valor::ENumerico() const {
  switch (tipo) {
    case Tipo::Vazio:
    case Tipo::Int16:
    case Tipo::Int32:
    case Tipo::Double:
    case Tipo::Decimal:
    case Tipo::Booleano:
      return true;
    case Tipo::Texto:
      return zv::ENumerico(s);
    case Tipo::Data:
      return false;
  }
  return false;
}

Texto Valor::ComoTexto() const {
  switch (tipo) {
    case Tipo::Vazio:
      return Texto();
    case Tipo::Texto:
      return s;
    case Tipo::Int16:
    case Tipo::Int32:
      return InteiroParaTexto(i);
    case Tipo::Double:
    case Tipo::Decimal:
      return NumeroParaTexto(d);
    case Tipo::Booleano:
      return i ? u"True" : u"False";
    case Tipo::Data:
      return FormataDataPadrao(d);
  }
  return Texto();
}

double Valor::ComoDouble() const {
  switch (tipo) {
    case Tipo::Vazio:
      return 0;
    case Tipo::Texto: {
      double v;
      if (LeNumero(s, v)) return v;
      Texto m = Maiusculas(Apara(s));
      if (m == u"TRUE") return -1;
      if (m == u"FALSE") return 0;
      throw FalhaHost(falha::TipoIncompativel);
    }
    case Tipo::Int16:
    case Tipo::Int32:
    case Tipo::Booleano:
      return i;
    case Tipo::Double:
    case Tipo::Decimal:
    case Tipo::Data:
      return d;
  }
  return 0;
}

int32_t Valor::ComoInt32() const {
  if (tipo == Tipo::Int16 || tipo == Tipo::Int32 || tipo == Tipo::Booleano) return i;
  int32_t n;
  if (!ArredondaInt32(ComoDouble(), n)) throw FalhaHost(falha::Estouro);
  return n;
}

int16_t Valor::ComoInt16() const {
  int32_t n;
  if (tipo == Tipo::Int16 || tipo == Tipo::Int32 || tipo == Tipo::Booleano) {
    n = i;
  } else {
    double r = ArredondaPar(ComoDouble());
    if (!(r >= -32768.0 && r <= 32767.0)) throw FalhaHost(falha::Estouro);
    n = static_cast<int32_t>(r);
  }
  if (n < -32768 || n > 32767) throw FalhaHost(falha::Estouro);
  return static_cast<int16_t>(n);
}

namespace {

bool Inteiro(const Valor& v) {
  return v.tipo == Valor::Tipo::Int16 || v.tipo == Valor::Tipo::Int32 || v.tipo == Valor::Tipo::Booleano ||
         v.tipo == Valor::Tipo::Vazio;
}

Valor Aritmetica(const Valor& a, const Valor& b, bool soma) {
  if (soma && a.ETexto() && b.ETexto()) return Valor::DeTexto(a.s + b.s);
  if (soma && a.EVazio() && b.ETexto()) return b;
  if (soma && a.ETexto() && b.EVazio()) return a;
  if (Inteiro(a) && Inteiro(b)) {
    int64_t r = soma ? int64_t(a.i) + b.i : int64_t(a.i) - b.i;
    if (r >= std::numeric_limits<int32_t>::min() && r <= std::numeric_limits<int32_t>::max())
      return Valor::DeInt32(static_cast<int32_t>(r));
    return Valor::DeDouble(static_cast<double>(r));
  }
  double x = a.ComoDouble(), y = b.ComoDouble();
  double r = soma ? x + y : x - y;
  if (!std::isfinite(r)) throw FalhaHost(falha::Estouro);
  if (a.tipo == Valor::Tipo::Decimal || b.tipo == Valor::Tipo::Decimal) return Valor::DeDecimal(r);
  return Valor::DeDouble(r);
}

}  // namespace

Valor SomaValores(const Valor& a, const Valor& b) { return Aritmetica(a, b, true); }
Valor SubtraiValores(const Valor& a, const Valor& b) { return Aritmetica(a, b, false); }

}  // namespace zv
