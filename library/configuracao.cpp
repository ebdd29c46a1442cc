#include "library/library.h"

namespace zv {

void RegistraConfiguracao() {}

}  // namespace zv
