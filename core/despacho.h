// The keyword table and the routines behind the keywords. Each subsystem
// fills in its routines at start-up; the core dispatches by keyword.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "core/texto.h"
#include "core/valor.h"

namespace zv {

class Interpretador;

// A command's routine: given the argument text as it stands.
using Rotina = Valor (*)(Interpretador& zv, const Texto& argumentos);
// The Rep and Printer routines also get the name (Rep.Add, Printer.Font).
using RotinaComNome = Valor (*)(Interpretador& zv, const Texto& nome, const Texto& argumentos);

// The 142 keywords, in their order: the order in which an expression is
// searched for built-in calls.
inline constexpr int kTotalPalavras = 142;
extern const std::array<const char16_t*, kTotalPalavras> kPalavrasChave;
// The block words, upper case.
extern const std::array<const char16_t*, 8> kPalavrasBloco;

// Index of a keyword (exact spelling) in kPalavrasChave, or -1.
int IndicePalavra(TextoV palavra);

struct DefinicaoComando {
  Rotina rotina = nullptr;
  // No handler of its own: a failure goes up to the enclosing command.
  bool semTratador = false;
  // The routine takes no arguments (the argument text is not passed).
  bool semArgumentos = false;
  // Start of the handler's message; "Error in command " unless told.
  const char16_t* prefixoErro = msg::kErroEmComando;
};

// Hook of the DB block: reads the block from the statement at `posicao`
// (0-based, its "&#") and returns the number of the block's last statement.
using GanchoDB = int32_t (*)(Interpretador& zv, const Texto& texto, size_t posicao, size_t fim,
                             int32_t numero);
// Hook of NewWindow: the line from column 30.
using GanchoNewWindow = void (*)(Interpretador& zv, const Texto& argumentos);
// Hook of an assignment "x = SQL(...TOTALRECORDS...)": the three upper-case
// names; gives the row count.
using GanchoTotalSQL = Valor (*)(Interpretador& zv, const Texto& a, const Texto& b, const Texto& c);
// The part of a text that SubStr gives for a 1-based start and a length;
// false where SubStr fails.
using GanchoTrecho = bool (*)(TextoV texto, int64_t inicio, int64_t tamanho, TextoV& trecho);
// The place StrPos gives for a search from a 1-based start of 1 or more.
using GanchoPosicao = int32_t (*)(TextoV texto, TextoV busca, int64_t inicio);

// Process-wide table of routines, filled once before any run.
class TabelaComandos {
 public:
  // Defines the routine of a keyword of kPalavrasChave (exact spelling).
  void Define(TextoV palavra, Rotina rotina, DefinicaoComando opcoes = {});
  const DefinicaoComando* Rotina_(int indice) const {
    return (indice >= 0 && indice < kTotalPalavras && definicoes_[indice].rotina) ? &definicoes_[indice]
                                                                                   : nullptr;
  }

  RotinaComNome rep = nullptr;
  RotinaComNome printer = nullptr;
  GanchoDB db = nullptr;
  GanchoNewWindow newWindow = nullptr;
  GanchoTotalSQL totalSql = nullptr;
  // Set beside SubStr's routine so that plans may cut texts the same way.
  GanchoTrecho trecho = nullptr;
  // Set beside StrPos's routine, for the same reason.
  GanchoPosicao posicao = nullptr;

 private:
  std::array<DefinicaoComando, kTotalPalavras> definicoes_{};
};

TabelaComandos& Comandos();

// The number of filled argument slots: up to the first empty one.
size_t ContaArgumentos(const std::vector<Texto>& argumentos);

}  // namespace zv

namespace zv {

// Nesting tags: each "(" becomes "(n]" and each ")" becomes "[n)", n the
// depth from 1; LimpaParenteses takes them off again.
Texto MarcaParenteses(TextoV texto);
Texto LimpaParenteses(TextoV texto);
// In a marked text, the arguments of the call whose name (tamNome long)
// starts at q: from behind the first ']' to the next '[' with the same digit,
// tags taken off; `fim` is the place behind the call's closing parenthesis.
bool ArgumentosMarcados(const Texto& marcado, size_t q, size_t tamNome, Texto& args, size_t& fim);

// True when a text names one of the calls that SeparaArgumentos works out
// before it splits (upper-case text).
bool TemChamadaPreAvaliada(TextoV maiusculo);
// True when AchaFuncaoInterna could find a call in the text (or complain of
// one): a keyword followed by "(" or a blank. Shows nothing.
bool PodeTerChamadaInterna(const Texto& texto);
// The call AchaFuncaoInterna finds in a text, its name and its arguments:
// 1 found, 0 none, -1 found without its parentheses (AchaFuncaoInterna
// complains of that).
int AchaChamadaInterna(const Texto& texto, Texto& nome, Texto& argumentos);
// The same, searched every time (AchaChamadaInterna remembers recent answers).
int AchaChamadaInternaBusca(const Texto& texto, Texto& nome, Texto& argumentos);
// The first of `total` names, in their order, whose first place in `t` has
// "(" or a blank behind it; -1 when none does. Empty names are skipped.
int PalavraChamada(const Texto& t, const Texto* nomes, size_t total);
// The same over the keywords of kPalavrasChave, without a search per keyword.
int PalavraChamadaChave(const Texto& t);
// True when dispatching this name would run nothing.
bool DespachoSemEfeito(TextoV nome);

}  // namespace zv
