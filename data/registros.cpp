#include "data/data.h"

namespace zv {

void RegistraDados() {}

}  // namespace zv
