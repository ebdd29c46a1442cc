#include "library/library.h"

namespace zv {

void RegistraArquivos() {}

}  // namespace zv
