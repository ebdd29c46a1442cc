// What the file commands' sources share among themselves.
#pragma once

#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

#include "core/texto.h"
#include "library/mensagens.h"

namespace zv {

// Every file command splits its arguments into a table of this size.
inline constexpr size_t kArgumentosArquivo = 3;

// A file descriptor closed on leaving the scope.
struct Descritor {
  int fd = -1;
  explicit Descritor(int f) : fd(f) {}
  ~Descritor() {
    if (fd >= 0) ::close(fd);
  }
  Descritor(const Descritor&) = delete;
  Descritor& operator=(const Descritor&) = delete;
};

// Reads up to `tamanho` bytes at the 0-based `posicao`: fewer at the end of
// the file. Writes all bytes at `posicao`. Both throw FalhaDeArquivo.
std::string LeTrecho(int fd, int64_t posicao, int64_t tamanho, const std::filesystem::path& caminho);
void GravaTrecho(int fd, std::string_view bytes, int64_t posicao, const std::filesystem::path& caminho);

void RegistraPastas();      // Directory, FindFile, DeleteFile, Copy, MkDir, RmDir
void RegistraContainers();  // InsertFile, ExtractFile

// A Directory pattern: "*" any run of characters, "?" one; letters in any
// case; "*.*" is every name.
bool CorrespondeCuringa(TextoV nome, TextoV padrao);

}  // namespace zv
