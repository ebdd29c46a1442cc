// A program inside an executable: the block a built executable carries
// behind the run-time image, and the run-time image's own resources (its
// icon and version strings), which the builder writes in place.
//
// The block, in Windows-1252 bytes, with no lengths of its own:
//   "INICIOPROGZV" NAME "#FIMNOME" PAYLOAD "FIMPROGZV" FILENAME
// NAME is the source file's name in capitals less its last four characters;
// FILENAME the whole name in capitals. PAYLOAD is the main code stored
// scrambled, "#~^", then for each code tab that isn't empty its name
// scrambled, "&~^", its code scrambled, "#~^". Each scrambled piece starts
// with its own length, so it is read by that, not by the markers.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "core/interpretador.h"

namespace zv {

inline constexpr std::string_view kInicioBloco = "INICIOPROGZV";
inline constexpr std::string_view kFimNome = "#FIMNOME";
inline constexpr std::string_view kFimCodigo = "#~^";
inline constexpr std::string_view kFimNomeCodigo = "&~^";
inline constexpr std::string_view kFimBloco = "FIMPROGZV";

// MontaPrograma: the payload of a program's codes.
std::string MontaPrograma(const FontePrograma& fonte);
// The whole block for a source file's name (a path: only its last part counts).
std::string MontaBloco(const FontePrograma& fonte, std::string_view caminhoFonte);

// The block behind an executable's image (the image ends where its ELF
// section headers end), reading only the file's header and what lies
// behind the image. False when there is none, or it can't be read.
bool LeBlocoDoArquivo(const std::string& caminho, FontePrograma& fonte, std::string& nomeArquivo);
// Whether anything lies behind a file's ELF image (a block, sound or not).
bool TemBloco(const std::string& caminho);
// A block by itself, from its start marker.
bool LeSoBloco(std::string_view bloco, FontePrograma& fonte, std::string& nomeArquivo);

// ---- The run-time image's resources ---------------------------------------------

// An area of fixed size inside the run-time image, found by its signature:
// eight version strings of kTamanhoVersao bytes each, zero-padded, then the
// icon's length (four bytes, little-endian) and its bytes (an .ico or any
// picture file).
inline constexpr std::string_view kAssinaturaRecursos = "ZVRE" "CURSOS01";
inline constexpr size_t kTamanhoVersao = 256;
inline constexpr size_t kVersoes = 8;
inline constexpr size_t kTamanhoIcone = 60 * 1024;
inline constexpr size_t kTamanhoRecursos = 16 + kVersoes * kTamanhoVersao + 4 + kTamanhoIcone;

// The version strings, in the order of the builder's routines.
enum class Versao : int {
  CompanyName, FileDescription, FileVersion, InternalName, LegalCopyright, OriginalFilename, ProductName,
  ProductVersion,
};

// Where the area starts in an image's bytes; npos when it has none.
size_t AchaRecursos(std::string_view imagem);
// Writes a version string in place, cut to its space (empty erases it).
bool GravaVersao(std::string& imagem, Versao v, std::string_view texto);
// TrocaIcone: the icon's bytes in place of the image's; false when they
// don't fit or the image has no area.
bool TrocaIcone(std::string& imagem, std::string_view icone);
// What the area of a running image holds.
std::string LeVersao(std::string_view recursos, Versao v);
std::string_view LeIcone(std::string_view recursos);

}  // namespace zv
