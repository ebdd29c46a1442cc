// Every text the builder shows a user.
#pragma once

namespace zv::msg::compilador {

inline constexpr char kArquivoNaoEncontrado[] = "File not found";
inline constexpr char kPermissaoNegada[] = "Permission denied";
inline constexpr char kDiscoCheio[] = "Disk full";
inline constexpr char kErroDeAcesso[] = "Path/File access error";
inline constexpr char kImagemSemRecursos[] = "The run-time file has no place for an icon: ";
inline constexpr char kIconeGrande[] = "The icon doesn't fit in the executable (60 KB at most): ";

}  // namespace zv::msg::compilador
