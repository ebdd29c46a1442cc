// Text helpers of the language core: 16-bit texts, code pages, numbers as text.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace zv {

using Texto = std::u16string;
using TextoV = std::u16string_view;
constexpr size_t NPOS = Texto::npos;

inline constexpr char16_t CR = u'\r';
inline constexpr char16_t LF = u'\n';
inline const Texto CRLF = u"\r\n";

// Conversions to and from the outside world.
Texto U(std::string_view utf8);
std::string Utf8(TextoV texto);
Texto DeCp1252(std::string_view bytes);
// Characters outside Windows-1252 become '?'.
std::string ParaCp1252(TextoV texto);
// A file's bytes as text: UTF-8 when they are valid UTF-8 with a multi-byte
// sequence or a byte order mark, Windows-1252 otherwise.
Texto DeBytesArquivo(std::string_view bytes);
// Lone LF (a Unix line end) becomes CR LF; CR LF and lone CR stay.
Texto NormalizaFimDeLinha(TextoV texto);

// Case as the language folds it (Latin letters, with the Latin-1 accents).
char16_t Maiuscula(char16_t c);
char16_t Minuscula(char16_t c);
Texto Maiusculas(TextoV texto);
Texto Minusculas(TextoV texto);

// Trims only the blank (32); a tab stays.
Texto Apara(TextoV texto);
Texto AparaEsquerda(TextoV texto);
Texto AparaDireita(TextoV texto);

inline bool Contem(TextoV t, TextoV s) { return t.find(s) != TextoV::npos; }
inline bool ComecaCom(TextoV t, TextoV s) { return t.substr(0, s.size()) == s; }
inline bool TerminaCom(TextoV t, TextoV s) {
  return t.size() >= s.size() && t.substr(t.size() - s.size()) == s;
}
bool EDigito(char16_t c);
// Letters as names are made of: ASCII and the Latin-1 letters.
bool ELetra(char16_t c);

// Number text, always with a point as the decimal separator.
// General number format with up to 15 significant digits, as the language
// shows a number: 14, 2.5, 0.333333333333333, 1E+16, 1E-05, -3.
Texto NumeroParaTexto(double valor);
Texto InteiroParaTexto(int64_t valor);
// Zero-padded decimal of the given width (statement and line markers).
Texto Preenche(int64_t valor, int largura);

// A numeric text is what a sign, digits, one point and an exponent can
// spell, with blanks around it allowed. True and the value when it is one.
bool LeNumero(TextoV texto, double& valor);
inline bool ENumerico(TextoV texto) {
  double v;
  return LeNumero(texto, v);
}
// The number at the start of a text, read while it looks like one: "12.5kg"
// gives 12.5, "abc" gives 0.
double LeNumeroInicial(TextoV texto);

// Rounding to the nearest whole number, halves to the even neighbour.
double ArredondaPar(double v);
// The same into a 32-bit whole number; false when it doesn't fit.
inline bool ArredondaInt32(double v, int32_t& n) {
  if (v >= -2147483648.0 && v <= 2147483647.0) {
    n = static_cast<int32_t>(v);
    if (n == v) return true;  // already whole
  }
  double x = ArredondaPar(v);
  if (!(x >= -2147483648.0 && x <= 2147483647.0)) return false;
  n = static_cast<int32_t>(x);
  return true;
}

}  // namespace zv
