// What the file commands' sources share among themselves.
#pragma once

#include <unistd.h>

#include <cstddef>

#include "core/texto.h"

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

void RegistraPastas();      // Directory, FindFile, DeleteFile, Copy, MkDir, RmDir
void RegistraContainers();  // InsertFile, ExtractFile

// A Directory pattern: "*" any run of characters, "?" one; letters in any
// case; "*.*" is every name.
bool CorrespondeCuringa(TextoV nome, TextoV padrao);

}  // namespace zv
