#include "library/library.h"

namespace zv {

void RegistraDatas() {}

}  // namespace zv
