#include "core/texto.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>

namespace zv {

namespace {

// Windows-1252 bytes 0x80 to 0x9F; 0 where the code page has no character
// (those bytes map to the C1 control of the same number).
const char16_t kCp1252Alto[32] = {
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0,      0x017D, 0,
    0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

void AnexaUtf8(std::string& s, char32_t c) {
  if (c < 0x80) {
    s += static_cast<char>(c);
  } else if (c < 0x800) {
    s += static_cast<char>(0xC0 | (c >> 6));
    s += static_cast<char>(0x80 | (c & 0x3F));
  } else if (c < 0x10000) {
    s += static_cast<char>(0xE0 | (c >> 12));
    s += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    s += static_cast<char>(0x80 | (c & 0x3F));
  } else {
    s += static_cast<char>(0xF0 | (c >> 18));
    s += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
    s += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    s += static_cast<char>(0x80 | (c & 0x3F));
  }
}

// Decodes UTF-8; false on any malformed sequence.
bool DecodificaUtf8(std::string_view b, Texto* saida, bool* temMultibyte) {
  size_t i = 0;
  bool multi = false;
  while (i < b.size()) {
    unsigned char c = static_cast<unsigned char>(b[i]);
    char32_t cp;
    int n;
    if (c < 0x80) {
      cp = c;
      n = 0;
    } else if ((c & 0xE0) == 0xC0 && c >= 0xC2) {
      cp = c & 0x1F;
      n = 1;
    } else if ((c & 0xF0) == 0xE0) {
      cp = c & 0x0F;
      n = 2;
    } else if ((c & 0xF8) == 0xF0 && c <= 0xF4) {
      cp = c & 0x07;
      n = 3;
    } else {
      return false;
    }
    if (i + static_cast<size_t>(n) >= b.size() && n > 0) return false;
    for (int k = 1; k <= n; ++k) {
      unsigned char d = static_cast<unsigned char>(b[i + k]);
      if ((d & 0xC0) != 0x80) return false;
      cp = (cp << 6) | (d & 0x3F);
    }
    if (n == 2 && (cp < 0x800 || (cp >= 0xD800 && cp <= 0xDFFF))) return false;
    if (n == 3 && (cp < 0x10000 || cp > 0x10FFFF)) return false;
    if (n > 0) multi = true;
    if (saida) {
      if (cp >= 0x10000) {
        cp -= 0x10000;
        saida->push_back(static_cast<char16_t>(0xD800 + (cp >> 10)));
        saida->push_back(static_cast<char16_t>(0xDC00 + (cp & 0x3FF)));
      } else {
        saida->push_back(static_cast<char16_t>(cp));
      }
    }
    i += n + 1;
  }
  if (temMultibyte) *temMultibyte = multi;
  return true;
}

}  // namespace

Texto U(std::string_view utf8) {
  Texto t;
  t.reserve(utf8.size());
  if (!DecodificaUtf8(utf8, &t, nullptr)) return DeCp1252(utf8);
  return t;
}

std::string Utf8(TextoV texto) {
  std::string s;
  s.reserve(texto.size());
  for (size_t i = 0; i < texto.size(); ++i) {
    char32_t c = texto[i];
    if (c >= 0xD800 && c <= 0xDBFF && i + 1 < texto.size() && texto[i + 1] >= 0xDC00 &&
        texto[i + 1] <= 0xDFFF) {
      c = 0x10000 + ((c - 0xD800) << 10) + (texto[i + 1] - 0xDC00);
      ++i;
    } else if (c >= 0xD800 && c <= 0xDFFF) {
      c = 0xFFFD;
    }
    AnexaUtf8(s, c);
  }
  return s;
}

Texto DeCp1252(std::string_view bytes) {
  Texto t;
  t.resize(bytes.size());
  for (size_t i = 0; i < bytes.size(); ++i) {
    unsigned char c = static_cast<unsigned char>(bytes[i]);
    if (c >= 0x80 && c < 0xA0 && kCp1252Alto[c - 0x80] != 0)
      t[i] = kCp1252Alto[c - 0x80];
    else
      t[i] = c;
  }
  return t;
}

std::string ParaCp1252(TextoV texto) {
  std::string s;
  s.resize(texto.size());
  for (size_t i = 0; i < texto.size(); ++i) {
    char16_t c = texto[i];
    if (c < 0x80 || (c >= 0xA0 && c <= 0xFF)) {
      s[i] = static_cast<char>(c);
      continue;
    }
    if (c >= 0x80 && c < 0xA0 && kCp1252Alto[c - 0x80] == 0) {
      s[i] = static_cast<char>(c);
      continue;
    }
    char r = '?';
    for (int k = 0; k < 32; ++k)
      if (kCp1252Alto[k] == c) r = static_cast<char>(0x80 + k);
    s[i] = r;
  }
  return s;
}

Texto DeBytesArquivo(std::string_view bytes) {
  if (bytes.size() >= 3 && static_cast<unsigned char>(bytes[0]) == 0xEF &&
      static_cast<unsigned char>(bytes[1]) == 0xBB && static_cast<unsigned char>(bytes[2]) == 0xBF) {
    Texto t;
    if (DecodificaUtf8(bytes.substr(3), &t, nullptr)) return t;
  }
  bool multi = false;
  if (DecodificaUtf8(bytes, nullptr, &multi) && multi) {
    Texto t;
    DecodificaUtf8(bytes, &t, nullptr);
    return t;
  }
  return DeCp1252(bytes);
}

Texto NormalizaFimDeLinha(TextoV texto) {
  Texto t;
  t.reserve(texto.size() + texto.size() / 20);
  for (size_t i = 0; i < texto.size(); ++i) {
    if (texto[i] == LF && (i == 0 || texto[i - 1] != CR)) t.push_back(CR);
    t.push_back(texto[i]);
  }
  return t;
}

char16_t Maiuscula(char16_t c) {
  if (c >= u'a' && c <= u'z') return c - 32;
  if (c < 0xE0) return c;
  if (c <= 0xFE && c != 0xF7) return c - 32;
  if (c == 0xFF) return 0x178;
  if (c == 0x161 || c == 0x153 || c == 0x17E) return c - 1;
  return c;
}

char16_t Minuscula(char16_t c) {
  if (c >= u'A' && c <= u'Z') return c + 32;
  if (c < 0xC0) return c;
  if (c <= 0xDE && c != 0xD7) return c + 32;
  if (c == 0x178) return 0xFF;
  if (c == 0x160 || c == 0x152 || c == 0x17D) return c + 1;
  return c;
}

Texto Maiusculas(TextoV texto) {
  Texto t(texto);
  for (auto& c : t) c = Maiuscula(c);
  return t;
}

Texto Minusculas(TextoV texto) {
  Texto t(texto);
  for (auto& c : t) c = Minuscula(c);
  return t;
}

Texto Apara(TextoV texto) {
  size_t a = 0, b = texto.size();
  while (a < b && texto[a] == u' ') ++a;
  while (b > a && texto[b - 1] == u' ') --b;
  return Texto(texto.substr(a, b - a));
}

Texto AparaEsquerda(TextoV texto) {
  size_t a = 0;
  while (a < texto.size() && texto[a] == u' ') ++a;
  return Texto(texto.substr(a));
}

Texto AparaDireita(TextoV texto) {
  size_t b = texto.size();
  while (b > 0 && texto[b - 1] == u' ') --b;
  return Texto(texto.substr(0, b));
}

bool EDigito(char16_t c) { return c >= u'0' && c <= u'9'; }

bool ELetra(char16_t c) {
  return (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z') ||
         (c >= 0xC0 && c <= 0xFF && c != 0xD7 && c != 0xF7);
}

Texto NumeroParaTexto(double valor) {
  if (valor == 0) return u"0";
  // Whole numbers of up to 15 digits read the same in the general format.
  if (valor == std::trunc(valor) && std::fabs(valor) < 1e15) return InteiroParaTexto(static_cast<int64_t>(valor));
  if (std::isnan(valor)) return u"NaN";
  if (std::isinf(valor)) return valor > 0 ? u"Infinity" : u"-Infinity";
  char buf[64];
  auto r = std::to_chars(buf, buf + sizeof buf, valor, std::chars_format::scientific, 14);
  *r.ptr = 0;
  // buf is d.ddddddddddddddE±xx: mantissa digits and the exponent.
  char* e = std::strchr(buf, 'e');
  int exp = std::atoi(e + 1);
  *e = 0;
  bool neg = buf[0] == '-';
  std::string dig;
  for (char* p = buf + (neg ? 1 : 0); *p; ++p)
    if (*p != '.') dig += *p;
  while (dig.size() > 1 && dig.back() == '0') dig.pop_back();
  std::string s = neg ? "-" : "";
  if (exp >= 15 || exp < -4) {
    s += dig[0];
    if (dig.size() > 1) {
      s += '.';
      s += dig.substr(1);
    }
    char eb[16];
    std::snprintf(eb, sizeof eb, "E%c%02d", exp < 0 ? '-' : '+', exp < 0 ? -exp : exp);
    s += eb;
  } else if (exp < 0) {
    s += "0.";
    s.append(static_cast<size_t>(-exp - 1), '0');
    s += dig;
  } else {
    size_t inteiros = static_cast<size_t>(exp) + 1;
    if (dig.size() <= inteiros) {
      s += dig;
      s.append(inteiros - dig.size(), '0');
    } else {
      s += dig.substr(0, inteiros);
      s += '.';
      s += dig.substr(inteiros);
    }
  }
  return Texto(s.begin(), s.end());
}

Texto InteiroParaTexto(int64_t valor) {
  char buf[32];
  auto r = std::to_chars(buf, buf + sizeof buf, valor);
  return Texto(buf, r.ptr);
}

Texto Preenche(int64_t valor, int largura) {
  Texto t = InteiroParaTexto(valor < 0 ? -valor : valor);
  if (static_cast<int>(t.size()) < largura) t.insert(0, largura - t.size(), u'0');
  if (valor < 0) t.insert(0, 1, u'-');
  return t;
}

namespace {

// Reads sign, digits, one point and an exponent from position i; returns the
// end of what was read and the ASCII spelling, or i when nothing numeric.
size_t LeEstruturaNumero(TextoV t, size_t i, std::string& ascii) {
  size_t ini = i;
  ascii.clear();
  if (i < t.size() && (t[i] == u'+' || t[i] == u'-')) {
    if (t[i] == u'-') ascii += '-';
    ++i;
  }
  size_t digitos = 0;
  while (i < t.size() && EDigito(t[i])) {
    ascii += static_cast<char>(t[i]);
    ++i;
    ++digitos;
  }
  if (i < t.size() && t[i] == u'.') {
    ascii += '.';
    ++i;
    while (i < t.size() && EDigito(t[i])) {
      ascii += static_cast<char>(t[i]);
      ++i;
      ++digitos;
    }
  }
  if (digitos == 0) return ini;
  if (i < t.size() && (t[i] == u'e' || t[i] == u'E')) {
    size_t j = i + 1;
    std::string ex = "e";
    if (j < t.size() && (t[j] == u'+' || t[j] == u'-')) {
      ex += static_cast<char>(t[j]);
      ++j;
    }
    size_t k = j;
    while (k < t.size() && EDigito(t[k])) {
      ex += static_cast<char>(t[k]);
      ++k;
    }
    if (k > j) {
      ascii += ex;
      i = k;
    }
  }
  return i;
}

double ConverteAscii(const std::string& s) {
  double v = 0;
  const char* p = s.c_str();
  if (*p == '+') ++p;
  auto r = std::from_chars(p, s.c_str() + s.size(), v);
  if (r.ec == std::errc::result_out_of_range) {
    // from_chars leaves v alone on range errors: say so by size.
    bool neg = s[0] == '-';
    bool pequeno = s.find("e-") != std::string::npos;
    return pequeno ? 0.0 : (neg ? -HUGE_VAL : HUGE_VAL);
  }
  return v;
}

}  // namespace

bool LeNumero(TextoV texto, double& valor) {
  size_t a = 0, b = texto.size();
  while (a < b && texto[a] == u' ') ++a;
  while (b > a && texto[b - 1] == u' ') --b;
  if (a == b) return false;
  {
    // Plain whole numbers (the common case) without a trip through text:
    // up to 15 digits are exact in a double.
    size_t i = a;
    bool neg = texto[i] == u'-';
    if (neg || texto[i] == u'+') ++i;
    if (i < b && b - i <= 15) {
      int64_t n = 0;
      size_t k = i;
      while (k < b && EDigito(texto[k])) n = n * 10 + (texto[k++] - u'0');
      if (k == b) {
        valor = neg ? -static_cast<double>(n) : static_cast<double>(n);
        return true;
      }
    }
  }
  std::string ascii;
  size_t fim = LeEstruturaNumero(texto.substr(0, b), a, ascii);
  if (fim == a || fim != b) return false;
  valor = ConverteAscii(ascii);
  return std::isfinite(valor);
}

double LeNumeroInicial(TextoV texto) {
  size_t a = 0;
  while (a < texto.size() && (texto[a] == u' ' || texto[a] == u'\t')) ++a;
  std::string ascii;
  size_t fim = LeEstruturaNumero(texto, a, ascii);
  if (fim == a) return 0;
  double v = ConverteAscii(ascii);
  return std::isfinite(v) ? v : 0;
}

double ArredondaPar(double v) { return std::nearbyint(v); }

}  // namespace zv
