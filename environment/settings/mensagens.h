// Every text the settings store gives a user: why a save was refused, why
// its file can't be used. The run-time's own failure descriptions are the
// core's, in zv::falha (core/mensagens.h).
#pragma once

#include "core/mensagens.h"

namespace zv::msg::ambiente {

inline constexpr char16_t kConfigCheio[] = u"The settings file ZV.File is full (32767 bytes); nothing was saved";
inline constexpr char16_t kConfigComMarcador[] =
    u"The key or value holds a pair of characters that ZV.File can't store; nothing was saved";

// Why ZV.File can't be used: a run-time error's description, then the file's
// path (the folder's, when that is missing).
inline constexpr char16_t kConfigEPasta[] = u"Path/File access error: the settings file {} is a folder";
inline constexpr char16_t kConfigSemPasta[] = u"Path not found: {}";
inline constexpr char16_t kConfigNegado[] = u"Permission denied: {}";
inline constexpr char16_t kConfigIlegivel[] = u"Path/File access error: the settings file {} can't be read";

}  // namespace zv::msg::ambiente
