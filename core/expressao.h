// The pieces of expression evaluation that stand on their own.
#pragma once

#include <array>

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
double NumeroRelido(double r);
// True when a text is taken for arithmetic.
bool ExpressaoAritmetica(TextoV texto);
// Replaces each name by its value's text; counts the pieces.
Texto TrocaVariaveis(Interpretador& zv, TextoV texto, int64_t& pecas);

// The tables of a condition.
struct Condicao {
  std::array<Texto, 51> operandos, relacoes, conectores;
};
void SeparaCondicao(TextoV texto, Condicao& c);
Texto ComparaValores(const std::array<Texto, 51>& relacoes, size_t indice, Valor esq, Valor dir);
Texto CombinaCondicoes(const std::array<Texto, 51>& conectores, const std::array<Texto, 21>& resultados);

}  // namespace zv
