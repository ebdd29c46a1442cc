// ChangeIcon IconFile, Executable: the icon of a program the builder made,
// written in place. Failures show nothing: the result says how it went.
#include "builder/compilador.h"
#include "builder/mensagens.h"
#include "core/interpretador.h"
#include "library/arquivos.h"

namespace zv {

namespace {

Valor ChangeIcon(Interpretador& zv, const Texto& argumentos) {
  auto a = zv.SeparaArgumentos(argumentos, 3);
  const Texto icone = ResolveArquivo(zv, zv.ValorTexto(a[0]).ComoTexto());
  const Texto executavel = ResolveArquivo(zv, zv.ValorTexto(a[1]).ComoTexto());
  bool ok = !icone.empty() && !executavel.empty() && TrocaIconeDoArquivo(Utf8(icone), Utf8(executavel));
  return Valor::TextoComAspas(ok ? msg::compilador::kIconeTrocado : msg::compilador::kIconeNaoTrocado);
}

}  // namespace

void RegistraBuilder() { Comandos().Define(u"ChangeIcon", ChangeIcon); }

}  // namespace zv
