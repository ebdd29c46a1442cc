// The run-time image's resources: an area the builder finds by its
// signature and fills in place (builder/embutido.h), read back at start.
#include "builder/embutido.h"

// Signature, eight version strings, the icon; zeros until the builder writes.
extern "C" __attribute__((used)) const char zv_recursos[zv::kTamanhoRecursos] = "ZVRECURSOS01";
