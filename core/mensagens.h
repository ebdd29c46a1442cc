// Every text the language core shows a user, in one place, and the helpers
// that put a location or a command's name in front of a message.
//
// A text with parts to fill holds "{}" where each part goes, in order; build
// it with Formata. Texts marked "(sic)" are the system's own wording, odd
// spellings and grammar included: programs and users know them as they
// stand, so they stay so. The other subsystems keep their texts in their own
// mensagens.h; tests/textos_sistema fails when a message is written anywhere
// else.
#pragma once

#include <initializer_list>

#include "core/texto.h"

namespace zv {

// ---- Failures of the run-time (the description behind a command's name) ----

namespace falha {
inline const char16_t* TipoIncompativel = u"Type mismatch";
inline const char16_t* Estouro = u"Overflow";
inline const char16_t* ForaDoIndice = u"Subscript out of range";
inline const char16_t* ChamadaInvalida = u"Invalid procedure call or argument";
inline const char16_t* DivisaoPorZero = u"Division by zero";
inline const char16_t* SemMemoria = u"Out of memory";
inline const char16_t* NomeOuNumeroInvalido = u"Bad file name or number";
inline const char16_t* RegistroInvalido = u"Bad record number";
inline const char16_t* ArquivoNaoEncontrado = u"File not found";
inline const char16_t* CaminhoNaoEncontrado = u"Path not found";
inline const char16_t* PermissaoNegada = u"Permission denied";
inline const char16_t* ArquivoJaExiste = u"File already exists";
inline const char16_t* DiscoCheio = u"Disk full";
inline const char16_t* ArquivosDemais = u"Too many files";
inline const char16_t* AcessoArquivo = u"Path/File access error";
inline const char16_t* ErroES = u"Device I/O error";
inline const char16_t* ArgumentoObrigatorio = u"Argument not optional";
}  // namespace falha

namespace msg {

// ---- Filling a text ---------------------------------------------------------

// Puts the parts into the "{}" of a table's text, in order. A part is never
// searched for "{}" itself, so a name that holds one stays as it is.
inline Texto FormataLista(TextoV modelo, std::initializer_list<TextoV> partes) {
  Texto r;
  r.reserve(modelo.size() + 32);
  auto parte = partes.begin();
  size_t de = 0;
  for (size_t p = modelo.find(u"{}"); p != TextoV::npos && parte != partes.end(); p = modelo.find(u"{}", de)) {
    r.append(modelo.substr(de, p - de));
    r.append(*parte++);
    de = p + 2;
  }
  r.append(modelo.substr(de));
  return r;
}

template <class... Partes>
Texto Formata(TextoV modelo, const Partes&... partes) {
  return FormataLista(modelo, {TextoV(partes)...});
}

// Title of the system's own boxes.
inline const Texto kTituloSistema = u"Zarvolt";

// ---- Locations --------------------------------------------------------------

// LocalAtual: the place of the running statement in every run-time message.
inline constexpr char16_t kLocal[] = u"Editor: {} Line: {}";
inline Texto Local(TextoV editor, TextoV linha) { return Formata(kLocal, editor, linha); }
// The step box shows the place on two lines.
inline constexpr char16_t kLocalPasso[] = u"Editor: {}\rLine: {}";
inline Texto LocalPasso(TextoV editor, TextoV linha) { return Formata(kLocalPasso, editor, linha); }
// GoTo's complaints carry the place in their own short form (sic).
inline constexpr char16_t kLocalGoTo[] = u"(Ed.: {} Line {})";
inline Texto LocalGoTo(TextoV editor, TextoV linha) { return Formata(kLocalGoTo, editor, linha); }
// A run-time box's text: the location, a line break, the message.
inline Texto NoLocal(TextoV local, TextoV mensagem) {
  Texto t(local);
  t += CR;
  t.append(mensagem);
  return t;
}

// ---- A command's failure ----------------------------------------------------

// The prefix of a command's failure, written here only; Int says "function".
inline constexpr char16_t kErroEmComando[] = u"Error in command ";
inline constexpr char16_t kErroEmFuncao[] = u"Error in function ";
// The one wrapper: prefix, the keyword as the table spells it, ": " and the
// failure's description.
inline Texto FalhaDeComando(TextoV palavra, TextoV descricao, TextoV prefixo = kErroEmComando) {
  Texto t(prefixo);
  t.append(palavra);
  t += u": ";
  t.append(descricao);
  return t;
}
// GoTo names its place between the keyword and the colon.
inline Texto FalhaDeGoTo(TextoV editor, TextoV linha, TextoV descricao) {
  return FalhaDeComando(u"GoTo " + LocalGoTo(editor, linha), descricao);
}
// A call written without its parentheses: the prefix, the call's text, an
// empty line and the advice.
inline constexpr char16_t kPonhaParenteses[] = u"Make sure you put the arguments in parentheses!";
inline Texto SemParenteses(TextoV prefixo, TextoV chamada) {
  Texto t(prefixo);
  t.append(chamada);
  t += CR;
  t += CR;
  t += kPonhaParenteses;
  return t;
}

// ---- Variables --------------------------------------------------------------

inline constexpr char16_t kNaoLeVariavel[] = u"Can't read {}: undeclared variable!";
inline constexpr char16_t kIndiceForaDosLimites[] = u"Can't read {}: index out of range!";
inline constexpr char16_t kNaoAtribui[] = u"Can't assign value to {}: undeclared variable!";
inline constexpr char16_t kTextoLongoDemais[] = u"Out of memory: {} can't hold a text longer than {} characters!";
inline constexpr char16_t kVetorAlemDoLimite[] =
    u"Out of memory: {} can't be made: the {} variables can't hold more than {} values!";
inline constexpr char16_t kVetorSemMemoria[] = u"Out of memory: {} can't be made!";
inline constexpr char16_t kRemoveVariable[] = u"RemoveVariable - undeclared variable: {}";

// ---- Statements -------------------------------------------------------------

inline constexpr char16_t kNaoDeclarada[] = u"Error: variable undeclared: {}";  // (sic)
inline constexpr char16_t kRotuloComDoisPontos[] = u"Label can't have character : (colon)!";
inline constexpr char16_t kRotuloNaoEncontrado[] = u"Label not found: {}";
inline constexpr char16_t kEsperaSemJanela[] = u"Wait {}: there is no window to click in this run!";

// ---- Preparation and blocks -------------------------------------------------

inline constexpr char16_t kIfSemEndIf[] = u"If statement without their EndIf!";       // (sic)
inline constexpr char16_t kWhileSemLoop[] = u"While statement without their Loop!";  // (sic)
inline constexpr char16_t kCodigoPrincipalLongo[] =
    u"Main code too long: a code text can't have more than 100,000 lines!";
inline constexpr char16_t kCodigoLongo[] = u"Code {} too long: a code text can't have more than 100,000 lines!";
inline constexpr char16_t kProgramaLongo[] = u"Program too long: it can't have more than 100,000 statements!";

// ---- Limits of a run --------------------------------------------------------

inline constexpr char16_t kChamadasFundasDemais[] =
    u"Too many nested calls: routines can't be nested more than {} deep!";
inline constexpr char16_t kPilhaEsgotada[] = u"Too many nested calls: the run's stack is used up by {} nested routines!";
inline constexpr char16_t kIfFundoDemais[] = u"If blocks can't be nested more than 21 levels deep!";
inline constexpr char16_t kCondicaoLongaDemais[] = u"Condition too long: it can't have more than 21 comparisons!";

// ---- Routines ---------------------------------------------------------------

inline constexpr char16_t kFunctionSemFim[] = u"Function without its command EndFunction: {}";
inline constexpr char16_t kSubSemFim[] = u"Sub without its command EndSub: {}";
// (sic), with its two lines of advice.
inline constexpr char16_t kErroNasRotinas[] =
    u"Error creating function or subroutine!\r\r"
    u"-You forgot to put parentheses to declare a function or subroutine?\r"
    u"-You put some ZV reserved word in the name of some function or subroutine?";
inline constexpr char16_t kSubNaoEncontrada[] = u"Subroutine not found: {}";
inline constexpr char16_t kFunctionNaoEncontrada[] = u"Function not found: {}";
inline constexpr char16_t kFalhaDeFuncao[] =
    u"Error executing the function, make sure you set the argument types and the return type of the function!";

}  // namespace msg
}  // namespace zv
