// GetString and SaveString: a program's own small settings, kept in the
// ZV.File that the environment uses too.
#include "core/interpretador.h"
#include "environment/settings/armazem_config.h"
#include "library/biblioteca.h"

namespace zv {

namespace {

constexpr size_t kArgumentos = 4;

std::filesystem::path PastaConfig(const Interpretador& zv) { return std::filesystem::path(zv.dirConfig); }

Valor GetString(Interpretador& zv, const Texto& argumentos) {
  auto a = zv.SeparaArgumentos(argumentos, kArgumentos);
  Texto chave = zv.ValorTexto(a[0]).ComoTexto();
  Texto falha;
  Texto valor = LeConfig(PastaConfig(zv), chave, &falha);
  if (!falha.empty()) throw FalhaHost(falha);
  return Valor::TextoComAspas(valor);
}

Valor SaveString(Interpretador& zv, const Texto& argumentos) {
  auto a = zv.SeparaArgumentos(argumentos, kArgumentos);
  Texto chave = zv.ValorTexto(a[0]).ComoTexto();
  Texto valor = zv.ValorNumerico(a[1]).ComoTexto();
  Texto falha;
  ResultadoConfig r = GravaConfig(PastaConfig(zv), chave, valor, &falha);
  if (r != ResultadoConfig::Gravado) throw FalhaHost(falha.empty() ? DescreveResultadoConfig(r) : falha);
  return Valor();
}

}  // namespace

void RegistraConfiguracao() {
  Comandos().Define(u"GetString", GetString);
  Comandos().Define(u"SaveString", SaveString);
}

}  // namespace zv
