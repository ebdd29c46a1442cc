// Every text the builder shows a user.
#pragma once

#include "core/mensagens.h"

namespace zv::msg::compilador {

inline constexpr char kImagemSemRecursos[] = "The run-time file has no place for an icon: ";
inline constexpr char kIconeGrande[] = "The icon doesn't fit in the executable (60 KB at most): ";
// ChangeIcon's results.
inline constexpr char16_t kIconeTrocado[] = u"Icon changed successfully!";
inline constexpr char16_t kIconeNaoTrocado[] = u"An error occurred while trying to change the icon!";

}  // namespace zv::msg::compilador
