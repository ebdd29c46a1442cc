// Number commands, and the decimal rounding that Round and Format share.
#pragma once

#include <cstdint>
#include <string>

#include "core/texto.h"

namespace zv {

// A non-negative number as the decimal digits that the language shows (15
// significant at most): whole part without leading zeros ("" for less than
// one), fraction without its point. Rounding on these digits rather than on
// the binary value makes 2.675 round as it reads.
struct DigitosDecimais {
  std::string inteira;
  std::string fracao;
};
DigitosDecimais DecompoeDecimal(double valorAbsoluto);
// Keeps `casas` fraction digits (padding with zeros); a half goes up, or to
// the even neighbour when metadeParaPar.
void ArredondaDigitos(DigitosDecimais& d, size_t casas, bool metadeParaPar);

// Round: to `casas` decimals, halves to even. Negative places are a failure.
double ArredondaCasas(double valor, int32_t casas);

// BinToDec: "1" characters weigh 1, 2, 4... from the right; 16-bit sum and
// weight, so 15 or more characters overflow.
int32_t BinarioParaDecimal(TextoV texto);
// DecToBin: eight digits for the weights 128 down to 1.
Texto DecimalParaBinario(int16_t valor);

}  // namespace zv
