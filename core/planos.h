// What the executor learnt about a statement of the main text the first
// time it ran it: its kind, the jumps it takes, its expressions cut into
// pieces with their variables found. Running a plan calls the same value,
// comparison and store routines as the walk over the text, in the same
// order, so the results are the same; what is saved is the searching.
// Anything a plan can't be sure of runs the walk's own way.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

#include "core/expressao.h"
#include "core/texto.h"
#include "core/valor.h"
#include "core/variaveis.h"

namespace zv {

class Interpretador;
struct ModeloFuncao;
struct PlanoLinha;
struct ChamadaTexto;

// A variable as a statement names it ("x", "L(3)", "L(i)"), found.
// Variables a planned calculation reads at most; one with more goes the
// walk's way.
inline constexpr size_t kMaxBuracos = 16;

// Laid out in 64 bytes: the hot loops index arrays of them.
struct RefVariavel {
  Texto nome;
  int64_t indice = 0;  // the fixed index
  int32_t inicio = 0, tamanho = 0;
  int32_t posIndice = 0;  // value of the index variable
  TipoVariavel tipo = TipoVariavel::Integer;
  TipoVariavel tipoIndice = TipoVariavel::Integer;
  bool indiceVariavel = false;
  // A hole of a calculation that a text command fills (see
  // planos_textos.cpp); the PlanoValor that holds the ref owns it.
  ChamadaTexto* chamada = nullptr;
};

// The value of an expression as ValorNumerico works it out.
struct PlanoValor {
  enum class Tipo : uint8_t { Lento, Numero, Constante, Variavel, Aritmetica, Chamada };
  Tipo tipo = Tipo::Lento;
  Texto fonte;    // the expression as given (for the walk's own way)
  double numero = 0;
  Texto constante;
  RefVariavel var;
  // Aritmetica: text pieces and variables in turn; `refs[i]` goes after
  // `pedacos[i]`.
  std::vector<Texto> pedacos;
  std::vector<RefVariavel> refs;
  bool pecaUnica = false;  // the whole text was one piece: it stays text
  bool temArvore = false;  // the calculation parsed once, for whole values of 0 or more
  bool temChamada = false; // a text command fills one of the refs (CalculoComChamada)
  bool inteiro = false;    // the tree is Inteira and its refs whole-number variables (InteiroRapido)
  ArvoreCalculo arvore;
  // Chamada: the whole value is one call; Aritmetica: the call in one of
  // the refs.
  std::shared_ptr<ChamadaTexto> chamada;
};

// A call of StrLen, StrPos, ConvStr or SubStr that a plan works out on the
// stored text itself instead of a copy of it.
struct ChamadaTexto {
  enum class Funcao : uint8_t { StrLen, StrPos, ConvStr, SubStr };
  Funcao funcao = Funcao::StrLen;
  RefVariavel texto;         // the text read; ConvStr: the number
  PlanoValor busca, inicio;  // StrPos: what is looked for and from where; SubStr: inicio
  PlanoValor tamanho;        // SubStr: the length
  bool temInicio = false, temTamanho = false;
  bool numerico = false;     // the walk reads it as an assignment to a number does
  Texto resultado;           // ConvStr, SubStr: the text of the last call
};

// A whole-number variable or constant a statement reads or writes, found
// once: where the value stands in the store, or where the array starts and
// where its whole-number index stands.
struct OperandoInteiro {
  enum class Modo : uint8_t { Constante, Escalar, Elemento };
  Modo modo = Modo::Constante;
  int32_t posicao = 0;       // Escalar: the value; Elemento: the array's first element
  int32_t posIndice = 0, tamanho = 0;  // Elemento
  // The least value read this way: 0 for a calculation's hole (a value
  // below 0 reads through its text), else any.
  int64_t minimo = INT64_MIN;
  int64_t constante = 0;
};
static_assert(sizeof(OperandoInteiro) == 32);

// What InteiroDoValor reads: an operand alone (operador 0) or two and one
// of + - * %.
struct ValorInteiro {
  char16_t operador = 0;
  OperandoInteiro a, b;
};

// What InteiroDoValor takes of a value: a whole-number variable, a whole
// calculation of two, or a whole constant of up to 15 digits; false for
// anything else.
bool ValorInteiroDe(const PlanoValor& p, ValorInteiro& v);

// The whole-number ways of Incremento, Atribuicao, Composto, While and If,
// with everything they check of the plan checked once, when it is made:
// what is left to check at each run is the values themselves. Each gives
// what the general fast ways give; Nenhum where it doesn't apply.
// Chamada: a whole-number variable given a call of a Function of one
// Return (ChamadaRapida), every argument a whole-number variable. Salto,
// FimSe, Nada: a Loop or GoTo, an EndIf (of depth profundidadeIf), a
// statement that does nothing.
struct Atalho {
  enum class Tipo : uint8_t {
    Nenhum, Incremento, Atribuicao, Soma, Condicao, Chamada, Salto, FimSe, Nada,
    Copia,     // Atribuicao of one variable, which always fits
    Compara,   // Condicao of one operand against one
  };
  Tipo tipo = Tipo::Nenhum;
  bool mais = true;
  // Condicao: the outcomes the relation takes for true, by bit: 1 less,
  // 2 equal, 4 greater; and an If's depth (-1 for a While) and whether a
  // false one goes to an Else.
  uint8_t aceita = 0;
  int8_t profundidadeIf = -1;
  bool falsoVaiAoElse = false;
  OperandoInteiro alvo;
  ValorInteiro valor, direita;  // Condicao: left and right of the comparison
};

// What a condition came to: "TRUE", "FALSE" or anything else.
enum class Veredito : uint8_t { Verdadeiro, Falso, Outro };

struct PlanoCondicao {
  bool lento = true;
  bool simples = false;  // one comparison with a relation
  Relacao relacao = Relacao::Igual;
  Texto fonte;
  // The relations and connectors as the text's split found them; kept apart
  // so that an empty plan is cheap to make.
  struct Partes {
    std::array<Texto, 51> relacoes, conectores;
  };
  std::unique_ptr<Partes> partes;
  std::vector<PlanoValor> operandos;  // in pairs
};

// One part of a join "a & b & c", as the walk's cut at " & " gives it.
struct ParteJuncao {
  enum class Tipo : uint8_t {
    Constante,  // a quoted text: its text without the marks
    Variavel,   // a declared variable, found
    Chamada,    // a built-in function that only works out a value
    Nada        // anything else gives nothing
  };
  Tipo tipo = Tipo::Nada;
  Texto texto;       // Constante: the text; Chamada: the function's name
  Texto argumentos;  // Chamada
  RefVariavel var;   // Variavel
};

// "text = a & b & c": the parts in order and what the line sets ForcaTexto to.
struct PlanoJuncao {
  std::vector<ParteJuncao> partes;
  bool forcaTexto = false;
  bool temChamada = false;
  // Texts of the parts that aren't stored texts, reused from run to run.
  std::vector<Texto> valores;
  std::vector<TextoV> pedacos;
};

// Where the walk goes next: a statement number, its marker and line end;
// pos NPOS is the end of the text.
struct Destino {
  int32_t numero = 0;
  size_t pos = NPOS, fim = 0;
  // The plan last found there. Plans are kept until their text goes, so it
  // is only trusted when it is still for that place and these variables.
  mutable PlanoLinha* plano = nullptr;
  // The variables' generation `plano` was found there for, in a text whose
  // statement numbers are all different (else 0): under the same
  // generation it is still the statement's.
  mutable uint64_t geracaoPlano = 0;
};

struct PlanoLinha {
  enum class Tipo : uint8_t {
    Generico, Incremento, Composto, While, Loop, If, Else, EndIf, Atribuicao, SubStr,
    Retorno,     // Return: its value in valor
    FimFuncao,   // a line with EndFunction: the routine's walk ends
    Chamada,     // alvo = F(args): partes are the arguments
    Juncao,      // text = a & b & c: the parts in juncao
    Salto,       // GoTo: desvio is the label's statement
    Nulo,        // a statement that does nothing, such as a label
    JoinStr,     // alvo = JoinStr(partes): each part a variable or a constant
    RepStr       // RepStr fonte, partes: the new text, the start, the length
  };
  Tipo tipo = Tipo::Generico;
  // What the step from plan to plan reads, together at the front.
  int32_t editor = 0, linha = 0;
  Atalho atalho;
  // The next statement, and where a jump goes (a Loop: back to its While), found once.
  Destino seguinte, desvio;
  // Generico: whether the walk found none of its words in the line (1),
  // found one (0), or hasn't looked yet (-1). A plain command line then goes
  // straight to its command.
  int8_t semPalavras = -1;
  // Such a line whose first word is a command (no variable, Sub, Var or
  // Return of that name), found for the variables of `geracaoComando`: the
  // walk dispatches its word and arguments straight away.
  bool comandoDireto = false;
  uint64_t geracaoComando = 0;
  Texto palavraComando, argumentosComando;
  size_t pos = NPOS, fim = 0;
  uint64_t geracao = 0;
  int emUso = 0;  // walks running it now: a remade plan mustn't pull it from under them
  bool mais = true;             // ++ or +=
  RefVariavel alvo;             // Incremento, Composto, Atribuicao
  PlanoValor valor;             // Composto, Retorno
  std::vector<PlanoValor> partes;  // Atribuicao; SubStr: its start and length
  RefVariavel fonte;               // SubStr: the text it cuts
  bool virgula = false;            // SubStr: the walk keeps the comma behind an element
  PlanoCondicao condicao;       // While, If
  int profundidade = 0;         // If, Else, EndIf: the depth tag
  int32_t numeroSalto = -1;     // While false: the Loop; Else: the EndIf
  int32_t numeroElse = -1, numeroEndIf = -1;  // If false
  // Chamada: the Function, its result word, the right side as written, and
  // whether it is the "F()" form, whose result goes to the variable as it is.
  Texto nomeFuncao, direita;
  bool direto = false;
  bool resultadoTexto = false, resultadoNumero = false;  // the result word is "String", "Numero"
  mutable ModeloFuncao* modelo = nullptr;  // found at the first call
  std::unique_ptr<PlanoJuncao> juncao;     // Juncao
  std::vector<OperandoInteiro> argumentosInteiros;  // Atalho::Tipo::Chamada
};

// The plans of a Function's body, made on the body as one call renamed it.
// Another call's body differs only in the routine's own names, which stand
// where the first call's stood; so the plans hold as long as those variables
// stand where they stood and nothing else changed. These plans only take
// their fast ways: whatever would read a name or a text goes back to the
// walk over that call's own body.
struct CorpoPlanejado {
  Texto modelo;       // the renamed body the plans were made on
  int32_t primeiro = 0;
  std::vector<std::unique_ptr<PlanoLinha>> linhas;  // by statement number, from `primeiro`
  // Where each of the routine's own variables stood: type and first value.
  std::vector<std::pair<TipoVariavel, int32_t>> vagas;
  // The same in short, when each type's variables stood one after another
  // in their order: where each type's first stood (-1: none of that type).
  bool vagasSeguidas = false;
  std::array<int32_t, 3> primeiraVaga = {-1, -1, -1};
  uint64_t geracao = 0;
  // A body that is one Return of a whole-number parameter or a whole
  // calculation of them: its value is worked out from the arguments, and
  // the variables that nothing else could see aren't made. The operands'
  // `posicao` is the parameter's number.
  bool folha = false;
  ValorInteiro retorno;
  PlanoLinha* Linha(int32_t numero, size_t pos, size_t fim, uint64_t g) const {
    size_t k = static_cast<size_t>(numero - primeiro);
    if (numero < primeiro || k >= linhas.size()) return nullptr;
    PlanoLinha* p = linhas[k].get();
    return p && p->pos == pos && p->fim == fim && p->geracao == g ? p : nullptr;
  }
};

// What every call of a Function finds the same in the main text: its
// stretch and its parameter list.
struct ModeloFuncao {
  Texto corpo;                    // the lines after the head, through EndFunction
  std::vector<Texto> parametros;  // the items of the head's list
  // Whether its calls can run the body's plans, worked out once: then the
  // names of the parameters and of the first Var line's locals, with their
  // type words, and the body without that line.
  bool analisado = false, rapido = false;
  size_t totalParametros = 0;
  std::vector<Texto> locais, tipos;
  std::vector<TipoVariavel> tiposLocais;
  bool locaisDistintos = false;
  char16_t inicialMaiuscula = 0;  // of the generated names
  Texto corpoSemVar;
  std::unique_ptr<CorpoPlanejado> plano;
  // Plans remade for calls that found their variables elsewhere; too many,
  // and the calls walk instead.
  int64_t chamadas = 0, replanos = 0;
  // The names a call makes, of this length before the locals' own, were
  // found free under this Variaveis::versaoDigitos.
  uint64_t nomesLivresEm = UINT64_MAX;
  size_t nomesLivresTamanho = 0;
};

// The plans of the main text, by statement number, and an index of where
// each statement marker stands.
struct Planos {
  std::unordered_map<Texto, ModeloFuncao> funcoes;
  std::vector<std::unique_ptr<PlanoLinha>> linhas;
  std::vector<std::unique_ptr<PlanoLinha>> aposentados;  // remade while in use
  std::vector<uint32_t> primeiraMarca;                 // by number; UINT32_MAX: none
  std::vector<std::pair<int32_t, uint32_t>> marcas;   // every (number, position), sorted
  bool indexado = false;
  // No statement number stands twice in the text: a number's plan is then
  // always the one statement's, wherever the walk comes from.
  bool numerosUnicos = false;
  const char16_t* dados = nullptr;  // the text indexed
  size_t tamanho = 0;
};

// A text a command evaluates (one of its arguments), planned the second
// time it is met, as a statement's values are. Commands in a loop evaluate
// the same texts at every turn; texts with a value spliced in are met once
// and never planned.
struct ValorLembrado {
  Texto texto;           // once planned
  size_t hash = 0;       // of the text last met here
  uint64_t geracao = 0;  // of the variables when it was planned
  bool planejado = false;
  bool util = false;     // a plan that works it out without the text's way
  PlanoValor plano;
};
inline constexpr size_t kValoresLembrados = 512;

}  // namespace zv
