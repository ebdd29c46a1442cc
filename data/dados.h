// The data subsystem's routines, registered into the keyword table once
// before any run.
#pragma once

namespace zv {

// The record commands and the DB block.
void RegistraDados();
// The SQL command, which reaches other databases (in the window module).
void RegistraSQL();

}  // namespace zv
