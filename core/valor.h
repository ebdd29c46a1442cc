// Tagged values: the result of every expression and command.
#pragma once

#include <cstdint>
#include <exception>
#include <string>

#include "core/mensagens.h"
#include "core/texto.h"

namespace zv {

// A failure of the host during a command: the nearest command's handler
// reports it as "Error in command X: " followed by the description.
struct FalhaHost : std::exception {
  Texto descricao;
  Texto origem;
  explicit FalhaHost(Texto d, Texto o = msg::kTituloSistema) : descricao(std::move(d)), origem(std::move(o)) {}
  const char* what() const noexcept override { return "FalhaHost"; }
};

// The longest text a variable holds: 16 Mi characters (32 MB).
inline constexpr size_t kMaxTexto = size_t{16} << 20;

struct Valor {
  enum class Tipo : uint8_t { Vazio, Texto, Int16, Int32, Double, Decimal, Booleano, Data };

  Tipo tipo = Tipo::Vazio;
  zv::Texto s;     // Texto
  double d = 0;    // Double, Decimal, Data (days since 30 Dec 1899, time as fraction)
  int32_t i = 0;   // Int16, Int32, Booleano (-1 or 0)

  static Valor DeTexto(zv::Texto t) {
    Valor v;
    v.tipo = Tipo::Texto;
    v.s = std::move(t);
    return v;
  }
  // A text result of a command, carrying its double quotes.
  static Valor TextoComAspas(TextoV t) {
    zv::Texto q;
    q.reserve(t.size() + 2);
    q += u'"';
    q += t;
    q += u'"';
    return DeTexto(std::move(q));
  }
  static Valor DeInt32(int32_t n) {
    Valor v;
    v.tipo = Tipo::Int32;
    v.i = n;
    return v;
  }
  static Valor DeInt16(int16_t n) {
    Valor v;
    v.tipo = Tipo::Int16;
    v.i = n;
    return v;
  }
  static Valor DeDouble(double x) {
    Valor v;
    v.tipo = Tipo::Double;
    v.d = x;
    return v;
  }
  static Valor DeDecimal(double x) {
    Valor v;
    v.tipo = Tipo::Decimal;
    v.d = x;
    return v;
  }
  static Valor DeBooleano(bool b) {
    Valor v;
    v.tipo = Tipo::Booleano;
    v.i = b ? -1 : 0;
    return v;
  }
  static Valor DeData(double x) {
    Valor v;
    v.tipo = Tipo::Data;
    v.d = x;
    return v;
  }

  bool EVazio() const { return tipo == Tipo::Vazio; }
  bool ETexto() const { return tipo == Tipo::Texto; }
  bool ENumero() const {
    return tipo == Tipo::Int16 || tipo == Tipo::Int32 || tipo == Tipo::Double || tipo == Tipo::Decimal;
  }
  // Numeric as the language asks it: numbers, booleans, empty, numeric texts.
  bool ENumerico() const;

  // The text form: numbers in general format with a point, "True"/"False".
  zv::Texto ComoTexto() const;
  // Conversions that fail with a host failure ("Type mismatch", "Overflow").
  double ComoDouble() const;
  int32_t ComoInt32() const;  // rounds halves to even
  int16_t ComoInt16() const;
};

// How a date value shows as text; the library sets the locale's form.
extern zv::Texto (*FormataDataPadrao)(double data);

// Variant arithmetic of the "+ =" and "- =" statements: texts join, numbers
// add, a numeric text counts as a number, anything else is a type mismatch.
Valor SomaValores(const Valor& a, const Valor& b);
Valor SubtraiValores(const Valor& a, const Valor& b);

}  // namespace zv
