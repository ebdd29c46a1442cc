// The pieces of expression evaluation that stand on their own.
#pragma once

#include <cstdint>

#include <array>
#include <vector>

#include "core/texto.h"
#include "core/valor.h"

namespace zv {

class Interpretador;

// A text of numbers and operators to its value in general format; empty on
// failure (a bad character, a second point, a division by zero).
Texto CalculaExpressao(TextoV texto);
// The same calculation, as a number; false on failure.
bool CalculaNumero(TextoV texto, double& r);
// A result as it reads back from its text in general format.
double NumeroRelidoGeral(double r);
inline double NumeroRelido(double r) {
  // Whole numbers of up to 15 digits come back as they went (zero unsigned).
  if (r < 1e15 && r > -1e15 && r == static_cast<double>(static_cast<int64_t>(r))) return r + 0.0;
  return NumeroRelidoGeral(r);
}
// The calculation of a text with holes for values, parsed once. It gives
// what CalculaNumero gives on the text with each hole filled with the digits
// of a whole number of 0 or more: a hole is never next to a digit or a point,
// so its digits are read as one number, where the parse expects a number.
class ArvoreCalculo {
 public:
  // `pedacos` and holes in turn (a hole after each piece but the last).
  // False when the text doesn't parse whatever fills the holes.
  bool Compila(const std::vector<Texto>& pedacos);
  // False on a failure of the calculation; a remainder by zero or an
  // overflow of a whole-number operator throws, as the calculation does.
  bool Calcula(const double* valores, double& r) const;
  // Whether the calculation is two whole values (holes, or whole constants
  // of 32 bits) and one of + - * %; then CalculaInteiro gives what Calcula
  // gives, exactly, as a whole number.
  bool Inteira() const { return inteira_; }
  [[gnu::always_inline]] int64_t CalculaInteiro(const int32_t* valores) const;
  // An Inteira calculation's two values and operator: each value a hole's
  // number, or -1 and a whole constant.
  struct FormaInteira {
    char16_t op = 0;
    int buraco[2] = {-1, -1};
    int64_t constante[2] = {0, 0};
  };
  FormaInteira Forma() const;

 private:
  // The tree in postfix order: each step pushes a value or works on the top.
  struct Passo {
    char16_t op;  // 'n' number, 'v' hole, 'u' minus of one, or the operator
    double valor = 0;
  };
  static constexpr size_t kMaxPilha = 32;
  std::vector<Passo> passos_;
  size_t pilha_ = 0;  // the deepest the stack goes
  // Two values and one operator, the commonest calculation, go without the stack.
  bool binaria_ = false;
  bool inteira_ = false;
};

inline int64_t ArvoreCalculo::CalculaInteiro(const int32_t* valores) const {
  auto valor = [valores](const Passo& p) -> int64_t {
    return p.op == u'v' ? valores[static_cast<int>(p.valor)] : static_cast<int64_t>(p.valor);
  };
  const int64_t a = valor(passos_[0]), b = valor(passos_[1]);
  switch (passos_[2].op) {
    case u'+':
      return a + b;
    case u'-':
      return a - b;
    case u'*':
      return a * b;
    default:
      // As Aplica: a remainder by zero is a failure of the host.
      if (b == 0) throw FalhaHost(falha::DivisaoPorZero);
      return b == -1 ? 0 : a % b;
  }
}

// True when a text is taken for arithmetic.
bool ExpressaoAritmetica(TextoV texto);
// Replaces each name by its value's text; counts the pieces.
Texto TrocaVariaveis(Interpretador& zv, TextoV texto, int64_t& pecas);

// The tables of a condition.
struct Condicao {
  std::array<Texto, 51> operandos, relacoes, conectores;
};
void SeparaCondicao(TextoV texto, Condicao& c);
// The relation of a comparison as written; any other spelling is ">=".
enum class Relacao : uint8_t { Igual, Diferente, Menor, Maior, MenorIgual, MaiorIgual };
Relacao LeRelacao(TextoV rel);
// Whether a comparison result (-1, 0, 1) satisfies the relation.
inline bool Satisfaz(Relacao rel, int cmp) {
  switch (rel) {
    case Relacao::Igual: return cmp == 0;
    case Relacao::Diferente: return cmp != 0;
    case Relacao::Menor: return cmp < 0;
    case Relacao::Maior: return cmp > 0;
    case Relacao::MenorIgual: return cmp <= 0;
    default: return cmp >= 0;
  }
}
Texto ComparaValores(const std::array<Texto, 51>& relacoes, size_t indice, Valor esq, Valor dir);
Texto CombinaCondicoes(const std::array<Texto, 51>& conectores, const std::array<Texto, 21>& resultados);

}  // namespace zv
