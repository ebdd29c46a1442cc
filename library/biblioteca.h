// The built-in library's routines, registered into the keyword table once
// before any run.
#pragma once

namespace zv {

void RegistraBiblioteca();

// One per area; RegistraBiblioteca calls them all.
void RegistraTextos();         // strings and numbers
void RegistraDatas();          // dates and times, Format
void RegistraArquivos();       // files and containers
void RegistraConfiguracao();   // GetString, SaveString
void RegistraSistema();        // GetWinReg, SaveWinReg, Call

}  // namespace zv
