// Number commands: arithmetic functions, Round, Random, binary digits.
#include "library/numeros.h"

#include <charconv>
#include <chrono>
#include <cmath>
#include <random>

#include "library/textos.h"

namespace zv {

DigitosDecimais DecompoeDecimal(double v) {
  DigitosDecimais d;
  v = std::fabs(v);
  if (v == 0 || !std::isfinite(v)) return d;
  char buf[64];
  auto r = std::to_chars(buf, buf + sizeof buf, v, std::chars_format::scientific, 14);
  std::string s(buf, r.ptr);
  size_t e = s.find('e');
  int expoente = std::stoi(s.substr(e + 1));
  std::string dig = s.substr(0, 1) + s.substr(2, e - 2);
  while (dig.size() > 1 && dig.back() == '0') dig.pop_back();
  if (expoente < 0) {
    d.fracao = std::string(static_cast<size_t>(-expoente - 1), '0') + dig;
  } else {
    size_t inteiros = static_cast<size_t>(expoente) + 1;
    if (dig.size() < inteiros) dig.append(inteiros - dig.size(), '0');
    d.inteira = dig.substr(0, inteiros);
    d.fracao = dig.substr(inteiros);
  }
  return d;
}

void ArredondaDigitos(DigitosDecimais& d, size_t casas, bool metadeParaPar) {
  if (d.fracao.size() <= casas) {
    d.fracao.append(casas - d.fracao.size(), '0');
    return;
  }
  char seguinte = d.fracao[casas];
  bool restoNaoNulo = d.fracao.find_first_not_of('0', casas + 1) != std::string::npos;
  std::string mantidos = d.inteira + d.fracao.substr(0, casas);
  char ultimo = mantidos.empty() ? '0' : mantidos.back();
  bool sobe = seguinte > '5' ||
              (seguinte == '5' && (!metadeParaPar || restoNaoNulo || (ultimo - '0') % 2 == 1));
  size_t tamInteira = d.inteira.size();
  if (sobe) {
    size_t i = mantidos.size();
    while (i > 0 && mantidos[i - 1] == '9') mantidos[--i] = '0';
    if (i == 0) {
      mantidos.insert(mantidos.begin(), '1');
      ++tamInteira;
    } else {
      ++mantidos[i - 1];
    }
  }
  d.inteira = mantidos.substr(0, tamInteira);
  d.fracao = mantidos.substr(tamInteira);
  size_t z = d.inteira.find_first_not_of('0');
  d.inteira = z == std::string::npos ? std::string() : d.inteira.substr(z);
}

double ArredondaCasas(double valor, int32_t casas) {
  if (casas < 0) throw FalhaHost(falha::ChamadaInvalida);
  DigitosDecimais d = DecompoeDecimal(valor);
  if (d.fracao.size() <= static_cast<size_t>(casas)) return valor;
  ArredondaDigitos(d, static_cast<size_t>(casas), true);
  std::string s = (valor < 0 ? "-0" : "0") + d.inteira + "." + d.fracao + "0";
  double r = 0;
  LeNumero(Texto(s.begin(), s.end()), r);
  return r;
}

int32_t BinarioParaDecimal(TextoV t) {
  if (t == u"00000000") return 0;
  int32_t soma = 0, peso = 1;
  for (size_t i = t.size(); i-- > 0;) {
    if (t[i] == u'1') soma += peso;
    // The weight is doubled behind every character, the last one too.
    if (peso > 16383) throw FalhaHost(falha::Estouro);
    peso *= 2;
  }
  return soma;
}

Texto DecimalParaBinario(int16_t valor) {
  Texto r;
  int32_t resto = valor;
  for (int32_t peso = 128; peso >= 1; peso /= 2) {
    if (peso <= resto) {
      r += u'1';
      resto -= peso;
    } else {
      r += u'0';
    }
  }
  return r;
}

namespace {

Valor Resultado(double x) {
  if (!std::isfinite(x)) throw FalhaHost(falha::Estouro);
  return Valor::DeDouble(x);
}

double Logaritmo(double x) {
  if (x <= 0) throw FalhaHost(falha::ChamadaInvalida);
  return std::log(x);
}

double Raiz(double x) {
  if (x < 0) throw FalhaHost(falha::ChamadaInvalida);
  return std::sqrt(x);
}

double Sinal(double x) { return x > 0 ? 1 : (x < 0 ? -1 : 0); }
double Absoluto(double x) { return std::fabs(x); }
double Cosseno(double x) { return std::cos(x); }
double Seno(double x) { return std::sin(x); }
double Exponencial(double x) { return std::exp(x); }
double Trunca(double x) { return std::trunc(x); }

// The functions of one number argument and a double result.
template <double (*F)(double)>
Valor Funcao(Interpretador& zv, const Texto& argumentos) {
  auto a = zv.SeparaArgumentos(argumentos, 6);
  return Resultado(F(ArgDouble(zv, a, 0)));
}

// Tan and Atn read their argument text as a number as written, with no
// evaluation and no handler of their own.
template <double (*F)(double)>
Valor FuncaoDireta(Interpretador& zv, const Texto& argumentos) {
  double x;
  if (!LeNumero(argumentos, x)) throw FalhaHost(falha::TipoIncompativel);
  return Resultado(F(x));
}

double Tangente(double x) { return std::tan(x); }
double ArcoTangente(double x) { return std::atan(x); }

Valor Int(Interpretador& zv, const Texto& argumentos) {
  auto a = zv.SeparaArgumentos(argumentos, 6);
  bool numerico = true;
  double x = std::floor(zv.ValorNumerico(Obrigatorio(a, 0), numerico).ComoDouble());
  return Valor::DeInt32(Valor::DeDouble(x).ComoInt32());
}

Valor Round(Interpretador& zv, const Texto& argumentos) {
  auto a = zv.SeparaArgumentos(argumentos, 4);
  double x = ArgDouble(zv, a, 0);
  return Resultado(ArredondaCasas(x, ArgInt32(zv, a, 1)));
}

// Seeded from the clock once per run.
struct GeradorAleatorio {
  std::mt19937 gerador{static_cast<uint32_t>(std::chrono::system_clock::now().time_since_epoch().count())};
  // A single-precision value in [0, 1).
  float Proximo() { return static_cast<float>(gerador() >> 8) * (1.0f / 16777216.0f); }
};

Valor Random(Interpretador& zv, const Texto& argumentos) {
  auto a = zv.SeparaArgumentos(argumentos, 6);
  double n = ArgDouble(zv, a, 0);
  double x = static_cast<double>(zv.Estado<GeradorAleatorio>().Proximo()) * n;
  return Valor::DeInt32(Valor::DeDouble(x).ComoInt32());
}

Valor BinToDec(Interpretador& zv, const Texto& argumentos) {
  auto a = zv.SeparaArgumentos(argumentos, 4);
  return Valor::DeInt32(BinarioParaDecimal(ArgTexto(zv, a, 0)));
}

// The result is bare, with no quotes.
Valor DecToBin(Interpretador& zv, const Texto& argumentos) {
  auto a = zv.SeparaArgumentos(argumentos, 4);
  return Valor::DeTexto(DecimalParaBinario(ArgNumerico(zv, a, 0).ComoInt16()));
}

// RGB Red, Green, Blue: red in the low byte. Each part as the original's
// 16-bit integer, above 255 taken as 255, below 0 refused.
Valor Rgb(Interpretador& zv, const Texto& argumentos) {
  auto a = zv.SeparaArgumentos(argumentos, 4);
  int32_t cor = 0;
  for (int i = 2; i >= 0; --i) {
    int16_t parte = ArgNumerico(zv, a, static_cast<size_t>(i)).ComoInt16();
    if (parte < 0) throw FalhaHost(falha::ChamadaInvalida);
    cor = cor * 256 + std::min<int16_t>(parte, 255);
  }
  return Valor::DeInt32(cor);
}

}  // namespace

void RegistraNumeros() {
  TabelaComandos& c = Comandos();
  c.Define(u"Abs", Funcao<Absoluto>);
  c.Define(u"Cos", Funcao<Cosseno>);
  c.Define(u"Sin", Funcao<Seno>);
  c.Define(u"Log", Funcao<Logaritmo>);
  c.Define(u"Exp", Funcao<Exponencial>);
  c.Define(u"Sqr", Funcao<Raiz>);
  c.Define(u"Sgn", Funcao<Sinal>);
  c.Define(u"Fix", Funcao<Trunca>);
  c.Define(u"Tan", FuncaoDireta<Tangente>, {.semTratador = true});
  c.Define(u"Atn", FuncaoDireta<ArcoTangente>, {.semTratador = true});
  c.Define(u"Int", Int, {.prefixoErro = msg::kErroEmFuncao});
  c.Define(u"Round", Round);
  c.Define(u"Random", Random);
  c.Define(u"BinToDec", BinToDec);
  c.Define(u"DecToBin", DecToBin);
  c.Define(u"RGB", Rgb);
}

}  // namespace zv
