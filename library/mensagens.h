// Every text the built-in library shows a user: its boxes, the descriptions
// its commands fail with, and the error texts some commands give as their
// result. Build texts with parts through msg::Formata (core/mensagens.h);
// "(sic)" marks the system's own wording, kept as it stands. The run-time's
// own failure descriptions ("File not found", "Path/File access error", ...)
// are the core's, in zv::falha.
#pragma once

#include "core/mensagens.h"

namespace zv::msg::biblioteca {

// ---- Files ------------------------------------------------------------------

// The command's name, then the alias in capitals (sic).
inline constexpr char16_t kAliasNaoEncontrado[] = u"{} - Alias file not found: {}";
inline constexpr char16_t kArquivoNaoEncontradoEm[] = u"File not found: {}";
// The result of Copy when it fails: "Error ", the number, ": ", the description.
inline constexpr char16_t kErroDeCopy[] = u"Error ";
// The result of MkDir and RmDir when they fail, spelled so (sic).
inline constexpr char16_t kErroDePasta[] = u"Erro ";
inline constexpr char16_t kPastaExisteOuNegada[] = u"Directory already exists or access denied!";
inline constexpr char16_t kPastaNaoEncontrada[] = u"Path not found!";

// ---- System services ----------------------------------------------------------

// Call's result when the program can't start: "Error ", the number, ": ",
// the description.
inline constexpr char16_t kErroAoChamar[] = u"Error {}: {}";

// ---- Containers -------------------------------------------------------------

inline constexpr char16_t kContainerDanificado[] = u"The container is damaged: {}";
inline constexpr char16_t kEntradaGrandeDemais[] = u"The entry is too large for the container";
inline constexpr char16_t kNomeDeEntradaInvalido[] = u"An entry's name can't be empty or begin with a blank";
inline constexpr char16_t kNomeComControle[] = u"An entry's name can't hold control characters";
inline constexpr char16_t kContainerCheio[] = u"The container is full: it holds {} entries";
// ExtractFile's box when the container has no such entry, in the system's
// own Portuguese (sic).
inline constexpr char16_t kEntradaNaoEncontrada[] = u"Arquivo não encontrado!";

}  // namespace zv::msg::biblioteca
