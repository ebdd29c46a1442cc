#include "library/library.h"

namespace zv {

void RegistraTextos() {}

}  // namespace zv
