#include "library/biblioteca.h"

namespace zv {

void RegistraBiblioteca() {
  static bool feito = false;
  if (feito) return;
  feito = true;
  RegistraTextos();
  RegistraDatas();
  RegistraArquivos();
  RegistraConfiguracao();
  RegistraSistema();
}

}  // namespace zv
