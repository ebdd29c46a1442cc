// The file association, the desktop's way: a MIME type for .Zvc and a
// desktop entry that opens it with this executable, in the user's data
// folder ($XDG_DATA_HOME, else ~/.local/share). Written once, when the
// settings key AssociaZV is empty.
#pragma once

#include <filesystem>
#include <string>

namespace zv {

inline constexpr char kTipoMime[] = "text/x-zarvolt-source";

// Writes the three files (MIME package, desktop entry, icon) under `dados`
// and asks the desktop's databases to read them again where their tools
// exist. Empty when done; otherwise the message for what failed.
std::string FazAssociacao(const std::filesystem::path& executavel, const std::filesystem::path& dados);
// The user's data folder.
std::filesystem::path PastaDadosUsuario();

}  // namespace zv
