// Reading, writing and declaring variables, and the predeclared ones.
#include <cmath>
#include <new>

#include "core/interpretador.h"
#include "core/preparacao.h"

namespace zv {

namespace {

// The values of one type (String, Integer or Decimal) that the store holds
// in all. An array that would take its type past this is refused with a box
// rather than exhausting memory; it also keeps every value's index within
// 32 bits.
constexpr double kMaxValoresTipo = 100'000'000;

}  // namespace

// The index of "name(index)": a number, or an Integer variable's value. An
// index variable that isn't declared gives a box and index 0.
static int64_t IndiceDe(Interpretador& zv, TextoV nome) {
  size_t a = nome.find(u'(');
  if (a == TextoV::npos) return 0;
  size_t b = nome.find(u')');
  TextoV dentro = (b == TextoV::npos || b < a) ? nome.substr(a + 1) : nome.substr(a + 1, b - a - 1);
  double v;
  if (LeNumero(dentro, v)) return static_cast<int64_t>(ArredondaPar(v));
  if (zv.variaveis.Posicao(dentro) < 0) {
    zv.CaixaCritica(msg::Formata(msg::kNaoLeVariavel, dentro));
    return 0;
  }
  // Whatever the index variable's type, its value as a whole number counts.
  try {
    Valor x = zv.LeVariavel(dentro);
    return x.ComoInt32();
  } catch (const FalhaHost&) {
    return 0;
  }
}

Valor Interpretador::LeVariavel(TextoV nome) {
  if (variaveis.Posicao(nome) < 0) {
    CaixaCritica(msg::NoLocal(LocalAtual(), msg::Formata(msg::kNaoLeVariavel, nome)));
    return Valor();
  }
  TipoVariavel tipo = variaveis.tipoEncontrado;
  int32_t inicio = variaveis.entradaEncontrada->inicio;
  int32_t tamanho = variaveis.entradaEncontrada->tamanho;
  int64_t i = IndiceDe(*this, nome);
  if (i < 0 || i >= tamanho) {
    CaixaCritica(msg::NoLocal(LocalAtual(), msg::Formata(msg::kIndiceForaDosLimites, nome)));
    return Valor();
  }
  size_t k = static_cast<size_t>(inicio + i);
  switch (tipo) {
    case TipoVariavel::String:
      return Valor::DeTexto(variaveis.textos[k]);
    case TipoVariavel::Integer:
      return Valor::DeInt32(variaveis.inteiros[k]);
    case TipoVariavel::Decimal:
      return Valor::DeDouble(variaveis.decimais[k]);
  }
  return Valor();
}

void Interpretador::GravaVariavel(TextoV nome, const Valor& valor, bool deveExistir) {
  if (variaveis.Posicao(nome) < 0) {
    if (deveExistir) throw FalhaHost(msg::Formata(msg::kNaoAtribui, nome));
    return;
  }
  TipoVariavel tipo = variaveis.tipoEncontrado;
  int32_t inicio = variaveis.entradaEncontrada->inicio;
  int32_t tamanho = variaveis.entradaEncontrada->tamanho;
  int64_t i = IndiceDe(*this, nome);
  // A bad index or a value that doesn't convert leaves everything as it was.
  if (i < 0 || i >= tamanho) return;
  size_t k = static_cast<size_t>(inicio + i);
  // A text that keeps doubling would take all the machine's memory before
  // anything noticed; refuse it while the run can still say so.
  if (tipo == TipoVariavel::String && valor.tipo == Valor::Tipo::Texto && valor.s.size() > kMaxTexto) {
    if (!abortado)
      CaixaCritica(msg::NoLocal(LocalAtual(), msg::Formata(msg::kTextoLongoDemais, nome,
                                                           InteiroParaTexto(static_cast<int64_t>(kMaxTexto)))));
    abortado = true;
    throw FalhaHost(falha::SemMemoria);
  }
  GravaNaPosicao(tipo, k, valor);
}

void Interpretador::GravaNaPosicao(TipoVariavel tipo, size_t k, const Valor& valor) {
  try {
    switch (tipo) {
      case TipoVariavel::String:
        variaveis.textos[k] = valor.ComoTexto();
        variaveis.Escreveu(k);
        break;
      case TipoVariavel::Integer:
        variaveis.inteiros[k] = valor.ComoInt32();
        break;
      case TipoVariavel::Decimal: {
        double d = valor.ComoDouble();
        if (std::isfinite(d)) variaveis.decimais[k] = d;
        break;
      }
    }
  } catch (const FalhaHost&) {
  }
}

void Interpretador::DeclaraVariaveis(const Texto& linha, TextoV palavra) {
  if (palavra.empty()) palavra = u"Variable";
  size_t ini = kColunaComando + palavra.size() + 1;
  Texto lista = ini < linha.size() ? linha.substr(ini) : Texto();
  auto itens = SeparaArgumentos(lista, 101);
  for (const Texto& item : itens) {
    if (item.empty()) break;
    size_t b = item.find(u' ');
    Texto nome = b == NPOS ? item : item.substr(0, b);
    Texto tipo = b == NPOS ? Texto(u"String") : item.substr(b + 1);
    if (TerminaCom(nome, u")"))
      CriaVetor(nome, tipo);
    else
      CriaVariavel(nome, tipo);
  }
}

void Interpretador::CriaVetor(TextoV nome, TextoV tipo) {
  size_t a = nome.find(u'(');
  size_t b = nome.rfind(u')');
  if (a == TextoV::npos || b == TextoV::npos || b < a) return;
  double v = 0;
  if (!LeNumero(nome.substr(a + 1, b - a - 1), v)) v = 0;
  v = ArredondaPar(v);
  if (v < 0) v = 0;
  TipoVariavel t;
  // An unknown type word or a name that exists makes nothing, and says nothing.
  if (!LeTipo(tipo, t) || variaveis.Posicao(nome) >= 0) return;
  if (static_cast<double>(variaveis.TamanhoValores(t)) + v > kMaxValoresTipo) {
    ErroExecucao(msg::Formata(msg::kVetorAlemDoLimite, nome, NomeTipo(t),
                              InteiroParaTexto(static_cast<int64_t>(kMaxValoresTipo))));
    return;
  }
  try {
    variaveis.Cria(nome.substr(0, a), tipo, static_cast<int32_t>(v));
  } catch (const std::bad_alloc&) {
    ErroExecucao(msg::Formata(msg::kVetorSemMemoria, nome));
  }
}

void Interpretador::RemoveVariable(TextoV nome) {
  if (!variaveis.Remove(nome)) CaixaCritica(msg::Formata(msg::kRemoveVariable, nome));
}

void Interpretador::DeclaraSistema() {
  static const Texto lista =
      u"RetStr String, RetValue Decimal, MouseX Integer, MouseY Integer, MouseClick String, Blue Integer, "
      u"Red Integer, Green Integer, Black Integer, White Integer, Yellow Integer, LightBlue Integer, "
      u"DarkBlue Integer, DarkRed Integer, DarkGreen Integer, DarkYellow Integer, FieldReturn Integer, "
      u"TotalFonts Integer, WindowsDir String, Desktop String, ProgramDir String, WindowsPrograms String, "
      u"TestButton String, ZVDir String, ObjectValue String, ReferenceValue String, SQLPointer String, "
      u"LinSize Decimal, ColSize Decimal, GotFocus String, LostFocus String, DefaultBackcolor Integer, "
      u"RefIndex Integer, CommandLine String, StartWindowInvisible Integer, ScreenHeight Integer, "
      u"ScreenWidth Integer";
  DeclaraVariaveis(u"&#00000\u00A7#00000$#00 Variable " + lista, u"");
  auto rgb = [](int r, int g, int b) { return Valor::DeInt32(r + 256 * g + 65536 * b); };
  GravaVariavel(u"Blue", rgb(0, 0, 255), false);
  GravaVariavel(u"Red", rgb(255, 0, 0), false);
  GravaVariavel(u"Green", rgb(0, 255, 0), false);
  GravaVariavel(u"Black", rgb(0, 0, 0), false);
  GravaVariavel(u"White", rgb(255, 255, 255), false);
  GravaVariavel(u"Yellow", rgb(255, 255, 0), false);
  GravaVariavel(u"LightBlue", rgb(0, 255, 255), false);
  GravaVariavel(u"DarkBlue", rgb(0, 0, 110), false);
  GravaVariavel(u"DarkRed", rgb(110, 0, 0), false);
  GravaVariavel(u"DarkGreen", rgb(0, 110, 0), false);
  GravaVariavel(u"DarkYellow", rgb(110, 110, 0), false);
  GravaVariavel(u"FieldReturn", Valor::DeInt32(0), false);
  Plataforma pf = host_.DadosPlataforma();
  GravaVariavel(u"TotalFonts", Valor::DeInt32(pf.totalFontes - 1), false);
  GravaVariavel(u"WindowsDir", Valor::DeTexto(pf.pastaSistema), false);
  GravaVariavel(u"Desktop", Valor::DeTexto(pf.areaDeTrabalho), false);
  Texto dir = Apara(dirPrograma);
  GravaVariavel(u"ProgramDir", Valor::DeTexto(dir.empty() ? dir : dir.substr(0, dir.size() - 1)), false);
  GravaVariavel(u"WindowsPrograms", Valor::DeTexto(pf.pastaProgramas), false);
  GravaVariavel(u"ZVDir", Valor::DeTexto(pf.pastaExecutavel), false);
  GravaVariavel(u"DefaultBackcolor", Valor::DeInt32(static_cast<int32_t>(0x8000000Fu)), false);
  GravaVariavel(u"CommandLine", Valor::DeTexto(linhaDeComando), false);
  GravaVariavel(u"StartWindowInvisible", Valor::DeInt32(0), false);
}

void Interpretador::DefineVariaveisJanela() {
  Plataforma pf = host_.DadosPlataforma();
  GravaVariavel(u"LinSize", Valor::DeDouble(14), false);
  GravaVariavel(u"ColSize", Valor::DeDouble(8), false);
  GravaVariavel(u"ScreenHeight", Valor::DeDouble(pf.alturaTela / 14.0), false);
  GravaVariavel(u"ScreenWidth", Valor::DeDouble(pf.larguraTela / 8.0), false);
}

}  // namespace zv
