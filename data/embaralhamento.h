// The one reversible text transformation of the system: stored forms of
// record fields, settings and embedded programs. Texts are counted byte
// strings of Windows-1252 characters; every byte value, 0 too, is allowed.
#pragma once

#include <array>
#include <string>
#include <string_view>

namespace zv {

// The ten keys. Files written under them must stay readable by every later
// build, so they never change.
extern const std::array<std::string_view, 10> TabelaChaves;

// Stored form of a text, under a key drawn at random: N + 5 bytes.
std::string Embaralha(std::string_view texto);
// The same under a given key, 0 to 9 (any other number is taken as 0).
std::string EmbaralhaComChave(std::string_view texto, int chave);
// The text of a stored form; bytes behind the stored form are ignored. A
// damaged stored form gives what can be read of it: a form cut short gives the
// characters that are there, an impossible key number the empty text.
std::string Desembaralha(std::string_view armazenado);
// As Desembaralha, but false (and nothing written) when the stored form is
// damaged: shorter than its length prefix says, or a key number above 9.
bool DesembaralhaSeguro(std::string_view armazenado, std::string& texto);
// Every byte x becomes 255 - x; its own inverse.
std::string ComplementaTexto(std::string_view texto);

}  // namespace zv
