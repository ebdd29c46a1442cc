// String commands, and the small argument readers that the number, date and
// Format commands share with them.
#pragma once

#include <cstdint>
#include <vector>

#include "core/interpretador.h"
#include "core/texto.h"
#include "core/valor.h"

namespace zv {

// Reading one slot of a split argument list. An empty slot is an absent
// argument: these throw "Argument not optional" for it.
const Texto& Obrigatorio(const std::vector<Texto>& args, size_t i);
Valor ArgNumerico(Interpretador& zv, const std::vector<Texto>& args, size_t i);
double ArgDouble(Interpretador& zv, const std::vector<Texto>& args, size_t i);
int32_t ArgInt32(Interpretador& zv, const std::vector<Texto>& args, size_t i);
Texto ArgTexto(Interpretador& zv, const std::vector<Texto>& args, size_t i);
inline bool Presente(const std::vector<Texto>& args, size_t i) { return i < args.size() && !args[i].empty(); }

// InStr: the 1-based place of `busca` in `texto` from `inicio` on, 0 if
// not found. An empty search is found at `inicio` while that lies in the text.
int32_t PosicaoTexto(TextoV texto, TextoV busca, int64_t inicio);
// InStrRev: the last hit that lies wholly within the first `fim` characters
// (-1: the whole text); 0 if none or if `fim` lies past the end.
int32_t PosicaoReversa(TextoV texto, TextoV busca, int64_t fim);
// Overwrites `alvo` from the 1-based place `inicio` with `novo`, for at most
// `tamanho` characters (0: all of `novo`), never past the end of `alvo`.
// A start outside the text is a failure.
Texto SobrescreveTrecho(TextoV alvo, TextoV novo, int64_t inicio, int64_t tamanho);
// The rough shape test of an e-mail address.
bool TestaEmail(TextoV texto);

void RegistraNumeros();
void RegistraFormato();

}  // namespace zv
