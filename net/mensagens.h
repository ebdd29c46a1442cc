// Every text the networking commands show a user.
#pragma once

#include "core/mensagens.h"

namespace zv::msg::rede {

// A transfer asked for before ConnectFTP said where to.
inline constexpr char16_t kSemConexaoFTP[] = u"no server: ConnectFTP first";
// The local file an upload sends isn't there.
inline constexpr char16_t kArquivoLocalAusente[] = u"File not found: {}";
// The transfer library can't make a request (out of memory, most likely).
inline constexpr char16_t kSemLibcurl[] = u"libcurl can't start a transfer";
// What the transfer's reply says when the server said nothing itself.
inline constexpr char16_t kInterrompida[] = u"The transfer was stopped with the program";

}  // namespace zv::msg::rede
