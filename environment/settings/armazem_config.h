// Settings store: the named texts of ZV.File and the preferences record of
// Zarvolt8.inf. Both files lie in a folder that the caller names (the
// environment's own folder, or the run's configuration folder).
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

#include "core/texto.h"

namespace zv {

inline constexpr const char* kArquivoConfig = "ZV.File";
inline constexpr const char* kArquivoPreferencias = "Zarvolt8.inf";

// ---- ZV.File ---------------------------------------------------------------
// Entries "#!" key "#@" value "#$", key and value complemented byte by byte,
// one behind the other. The file is never cut when an entry shrinks, so old
// bytes may lie behind (and, after later additions, between) the entries;
// lookups find entries by their markers from the start and pass them over.

// Older builds kept positions in the store in 16-bit integers: the file never
// grows past this many bytes.
inline constexpr size_t kLimiteConfig = 32767;

// The value of `chave`, or the empty text when it is absent or the file can't
// be read (a folder in its place, say); then `falha`, when given, says why in
// the words of a run-time error. The file is read once and then served from
// memory; a missing file is created empty.
Texto LeConfig(const std::filesystem::path& pasta, TextoV chave, Texto* falha = nullptr);

enum class ResultadoConfig {
  Gravado,
  // The store would pass kLimiteConfig even with the left-over bytes dropped.
  ArmazemCheio,
  // Key or value holds "ÜÞ", "Ü¿" or "ÜÛ": complemented, that is a marker,
  // and the format has no escape for it.
  TemMarcador,
  ErroArquivo,
};

// Adds or replaces the entry of `chave` and writes the file at once, reading
// it first so that what another process wrote is kept.
//
// At the limit: when the write would make the file longer than kLimiteConfig,
// the store is first rebuilt from the entries a lookup can find (one per key,
// the value a lookup gives), dropping the left-over bytes, and the file is
// then written at its exact length. If even that is too long, nothing is
// written, the file and every value stay as they were, and ArmazemCheio is
// returned.
// On ErroArquivo, `falha` (when given) says what stood in the way.
ResultadoConfig GravaConfig(const std::filesystem::path& pasta, TextoV chave, TextoV valor,
                            Texto* falha = nullptr);

// The message for a result other than Gravado.
Texto DescreveResultadoConfig(ResultadoConfig resultado);

// Forgets the text held in memory: the next LeConfig reads the file again.
void DescartaConfig();

// ---- Zarvolt8.inf ----------------------------------------------------------

inline constexpr size_t kTamanhoPreferencias = 210;

constexpr int32_t CorRgb(int vermelho, int verde, int azul) {
  return vermelho | (verde << 8) | (azul << 16);
}

// The editor's preferences and the last source file. Text fields hold what
// the record holds less the blanks that pad it on the right; they are cut to
// their width (100, 30, 30 characters) when written.
struct Preferencias {
  Texto dirPrograma = u"c:\\";  // folder of the last source, with its separator
  Texto nomePrograma;           // last source file, without folder
  Texto fonteNome = u"Courier New";
  int16_t fonteTamanho = 10;
  int32_t corFundo = CorRgb(255, 255, 255);
  int32_t corLetra = CorRgb(0, 0, 0);
  int32_t corComando = CorRgb(0, 0, 255);
  int32_t corComentario = CorRgb(0, 128, 0);
  int32_t corPC1 = CorRgb(255, 0, 0);
  int32_t corPC2 = CorRgb(110, 41, 205);
  int32_t corOperador = CorRgb(210, 20, 210);
  int32_t corAspas = CorRgb(0, 128, 192);
  int32_t corLinha = CorRgb(255, 255, 200);
  int32_t corMargem = CorRgb(230, 230, 230);
  int32_t corNumeracao = CorRgb(0, 128, 0);
  int16_t ativaNumeracao = 1;  // line numbering check box: 1 on, 0 off
};

// The one preferences record of the process.
Preferencias& PreferenciasAtivas();

enum class EstadoPreferencias {
  Lidas,
  Ausentes,       // no file yet: defaults
  TamanhoErrado,  // not 210 bytes: defaults, the file is left alone
  Ilegiveis,      // there but can't be read: defaults
};

// Fills PreferenciasAtivas(): defaults first, then the file.
EstadoPreferencias CarregaPreferencias(const std::filesystem::path& pasta);
// Writes PreferenciasAtivas() as the whole file, 210 bytes. False when the
// file can't be written.
bool GravaPreferencias(const std::filesystem::path& pasta);

// The record's bytes, and back. LeRegistroPreferencias wants exactly 210
// bytes; it takes them at face value.
std::string RegistroPreferencias(const Preferencias& preferencias);
bool LeRegistroPreferencias(std::string_view registro, Preferencias& preferencias);

}  // namespace zv
