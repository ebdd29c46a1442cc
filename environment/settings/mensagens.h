// Every text the settings store gives a user: why a save was refused. The
// run-time's own failure descriptions are the core's, in zv::falha
// (core/mensagens.h).
#pragma once

#include "core/mensagens.h"

namespace zv::msg::ambiente {

inline constexpr char16_t kConfigCheio[] = u"The settings file ZV.File is full (32767 bytes); nothing was saved";
inline constexpr char16_t kConfigComMarcador[] =
    u"The key or value holds a pair of characters that ZV.File can't store; nothing was saved";

}  // namespace zv::msg::ambiente
