// String commands: functions on texts used inside expressions.
#include "library/textos.h"

#include <algorithm>

#include "library/biblioteca.h"

namespace zv {

const Texto& Obrigatorio(const std::vector<Texto>& args, size_t i) {
  if (!Presente(args, i)) throw FalhaHost(falha::ArgumentoObrigatorio);
  return args[i];
}

Valor ArgNumerico(Interpretador& zv, const std::vector<Texto>& args, size_t i) {
  return zv.ValorNumerico(Obrigatorio(args, i));
}

double ArgDouble(Interpretador& zv, const std::vector<Texto>& args, size_t i) {
  return ArgNumerico(zv, args, i).ComoDouble();
}

int32_t ArgInt32(Interpretador& zv, const std::vector<Texto>& args, size_t i) {
  return ArgNumerico(zv, args, i).ComoInt32();
}

Texto ArgTexto(Interpretador& zv, const std::vector<Texto>& args, size_t i) {
  return zv.ValorTexto(Obrigatorio(args, i)).ComoTexto();
}

int32_t PosicaoTexto(TextoV texto, TextoV busca, int64_t inicio) {
  if (inicio < 1) throw FalhaHost(falha::ChamadaInvalida);
  if (inicio > static_cast<int64_t>(texto.size())) return 0;
  if (busca.empty()) return static_cast<int32_t>(inicio);
  size_t p = texto.find(busca, static_cast<size_t>(inicio - 1));
  return p == TextoV::npos ? 0 : static_cast<int32_t>(p + 1);
}

int32_t PosicaoReversa(TextoV texto, TextoV busca, int64_t fim) {
  if (fim == -1) fim = static_cast<int64_t>(texto.size());
  if (fim < 1) throw FalhaHost(falha::ChamadaInvalida);
  if (fim > static_cast<int64_t>(texto.size())) return 0;
  if (busca.empty()) return static_cast<int32_t>(fim);
  if (busca.size() > static_cast<size_t>(fim)) return 0;
  size_t p = texto.substr(0, static_cast<size_t>(fim)).rfind(busca);
  return p == TextoV::npos ? 0 : static_cast<int32_t>(p + 1);
}

Texto SobrescreveTrecho(TextoV alvo, TextoV novo, int64_t inicio, int64_t tamanho) {
  if (inicio < 1 || inicio > static_cast<int64_t>(alvo.size()) || tamanho < 0)
    throw FalhaHost(falha::ChamadaInvalida);
  size_t de = static_cast<size_t>(inicio - 1);
  size_t n = std::min(novo.size(), alvo.size() - de);
  if (tamanho > 0) n = std::min(n, static_cast<size_t>(tamanho));
  Texto r(alvo);
  r.replace(de, n, novo.substr(0, n));
  return r;
}

bool TestaEmail(TextoV t) {
  if (t.find(u'.') == TextoV::npos) return false;
  size_t arroba = t.find(u'@');
  if (arroba == TextoV::npos || t.find(u'@', arroba + 1) != TextoV::npos) return false;
  if (Apara(t).size() < 7) return false;
  return t.front() != u'@' && t.back() != u'@';
}

namespace {

// Longest text that SeqStr builds: past it the answer is "Out of memory"
// rather than a process that swaps for minutes.
constexpr int64_t kMaxRepeticoes = int64_t{1} << 26;

Texto CaractereCp1252(int32_t codigo) {
  if (codigo < 0 || codigo > 255) throw FalhaHost(falha::ChamadaInvalida);
  return DeCp1252(std::string(1, static_cast<char>(codigo)));
}

Valor JoinStr(Interpretador& zv, const Texto& argumentos) {
  bool numerico = false;
  auto a = zv.SeparaArgumentos(argumentos, 101, false, numerico, true);
  Texto r;
  for (size_t i = 0; Presente(a, i); ++i) r += zv.ValorNumerico(a[i]).ComoTexto();
  return Valor::TextoComAspas(r);
}

bool Trecho(TextoV t, int64_t inicio, int64_t tamanho, TextoV& r) {
  if (inicio < 1 || tamanho < 0) return false;
  r = inicio > static_cast<int64_t>(t.size()) ? TextoV()
                                               : t.substr(static_cast<size_t>(inicio - 1), static_cast<size_t>(tamanho));
  return true;
}

Valor SubStr(Interpretador& zv, const Texto& argumentos) {
  auto a = zv.SeparaArgumentos(argumentos, 6);
  Texto t = ArgTexto(zv, a, 0);
  int64_t inicio = ArgInt32(zv, a, 1);
  int64_t tamanho = Presente(a, 2) ? ArgInt32(zv, a, 2) : static_cast<int64_t>(t.size());
  TextoV r;
  if (!Trecho(t, inicio, tamanho, r)) throw FalhaHost(falha::ChamadaInvalida);
  return Valor::TextoComAspas(r);
}

Valor StrLen(Interpretador& zv, const Texto& argumentos) {
  auto a = zv.SeparaArgumentos(argumentos, 6);
  return Valor::DeInt32(static_cast<int32_t>(ArgTexto(zv, a, 0).size()));
}

Valor StrPos(Interpretador& zv, const Texto& argumentos) {
  auto a = zv.SeparaArgumentos(argumentos, 4);
  Texto t = ArgTexto(zv, a, 0);
  Texto busca = ArgTexto(zv, a, 1);
  if (!Presente(a, 2)) return Valor::DeInt32(PosicaoTexto(t, busca, 1));
  // The third argument is either the start or the word "Reverse".
  Valor terceiro = zv.ValorNumerico(a[2]);
  if (terceiro.ETexto() && Maiusculas(Apara(terceiro.s)) == u"REVERSE") {
    int64_t fim = Presente(a, 3) ? ArgInt32(zv, a, 3) : -1;
    return Valor::DeInt32(PosicaoReversa(t, busca, fim));
  }
  return Valor::DeInt32(PosicaoTexto(t, busca, terceiro.ComoInt32()));
}

Valor RepStr(Interpretador& zv, const Texto& argumentos) {
  auto a = zv.SeparaArgumentos(argumentos, 4);
  const Texto& nome = Obrigatorio(a, 0);
  if (zv.PosicaoVariavel(nome) < 0)
    throw FalhaHost(msg::Formata(msg::kNaoAtribui, nome));
  Texto velho = ArgTexto(zv, a, 0);
  Texto novo = ArgTexto(zv, a, 1);
  int64_t inicio = ArgInt32(zv, a, 2);
  int64_t tamanho = Presente(a, 3) ? ArgInt32(zv, a, 3) : 0;
  zv.GravaVariavel(nome, Valor::DeTexto(SobrescreveTrecho(velho, novo, inicio, tamanho)), true);
  return Valor();
}

Valor Trim(Interpretador& zv, const Texto& argumentos) {
  auto a = zv.SeparaArgumentos(argumentos, 6);
  return Valor::TextoComAspas(Apara(ArgTexto(zv, a, 0)));
}

Valor SeqStr(Interpretador& zv, const Texto& argumentos) {
  auto a = zv.SeparaArgumentos(argumentos, 4);
  int64_t n = ArgInt32(zv, a, 0);
  if (n < 0) throw FalhaHost(falha::ChamadaInvalida);
  if (n > kMaxRepeticoes) throw FalhaHost(falha::SemMemoria);
  Valor v = ArgNumerico(zv, a, 1);
  char16_t c;
  if (v.ETexto()) {
    if (v.s.empty()) throw FalhaHost(falha::ChamadaInvalida);
    c = v.s[0];
  } else {
    int32_t codigo = v.ComoInt32();
    if (codigo < 0) throw FalhaHost(falha::ChamadaInvalida);
    c = CaractereCp1252(codigo % 256)[0];
  }
  return Valor::TextoComAspas(Texto(static_cast<size_t>(n), c));
}

Valor Chr(Interpretador& zv, const Texto& argumentos) {
  auto a = zv.SeparaArgumentos(argumentos, 6);
  return Valor::TextoComAspas(CaractereCp1252(ArgInt32(zv, a, 0)));
}

Valor Asc(Interpretador& zv, const Texto& argumentos) {
  auto a = zv.SeparaArgumentos(argumentos, 6);
  Texto t = ArgTexto(zv, a, 0);
  if (t.empty()) throw FalhaHost(falha::ChamadaInvalida);
  return Valor::DeInt16(static_cast<int16_t>(static_cast<unsigned char>(ParaCp1252(TextoV(t).substr(0, 1))[0])));
}

Valor Hex(Interpretador& zv, const Texto& argumentos) {
  auto a = zv.SeparaArgumentos(argumentos, 4);
  Valor v = ArgNumerico(zv, a, 0);
  // A 16-bit value shows its own two's complement; everything else is 32-bit.
  uint32_t n = v.tipo == Valor::Tipo::Int16 ? static_cast<uint16_t>(v.i) : static_cast<uint32_t>(v.ComoInt32());
  static const char16_t kDigitos[] = u"0123456789ABCDEF";
  Texto r;
  do {
    r.insert(r.begin(), kDigitos[n % 16]);
    n /= 16;
  } while (n);
  return Valor::TextoComAspas(r);
}

Valor ConvStr(Interpretador& zv, const Texto& argumentos) {
  auto a = zv.SeparaArgumentos(argumentos, 4);
  return Valor::TextoComAspas(NumeroParaTexto(ArgDouble(zv, a, 0)));
}

Valor StrVal(Interpretador& zv, const Texto& argumentos) {
  auto a = zv.SeparaArgumentos(argumentos, 4);
  bool numerico = true;
  Texto t = zv.ValorTexto(LimpaParenteses(Obrigatorio(a, 0)), numerico).ComoTexto();
  return Valor::DeDouble(LeNumeroInicial(t));
}

Valor TestEmail(Interpretador& zv, const Texto& argumentos) {
  auto a = zv.SeparaArgumentos(argumentos, 4);
  return Valor::TextoComAspas(TestaEmail(ArgNumerico(zv, a, 0).ComoTexto()) ? u"TRUE" : u"FALSE");
}

}  // namespace

void RegistraTextos() {
  TabelaComandos& c = Comandos();
  c.Define(u"JoinStr", JoinStr);
  c.Define(u"SubStr", SubStr);
  c.trecho = Trecho;
  c.Define(u"StrLen", StrLen);
  c.Define(u"StrPos", StrPos);
  c.posicao = PosicaoTexto;
  c.Define(u"RepStr", RepStr);
  c.Define(u"Trim", Trim);
  c.Define(u"SeqStr", SeqStr);
  c.Define(u"Chr", Chr);
  c.Define(u"Asc", Asc);
  c.Define(u"Hex", Hex);
  c.Define(u"ConvStr", ConvStr);
  c.Define(u"StrVal", StrVal);
  c.Define(u"TestEmail", TestEmail);
  RegistraNumeros();
  RegistraFormato();
}

}  // namespace zv
