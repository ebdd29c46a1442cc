// The door to the window module: a program without a window command loads
// nothing of the GUI; the first window command loads the module, whose
// routines then stand in the keyword table.
#include <gtest/gtest.h>

#include "core/interpretador.h"
#include "runtime/janela_host.h"
#include "runtime/lancador.h"
#include "runtime/porta_janelas.h"

namespace zv {
namespace {

FontePrograma Programa(const char* texto) {
  FontePrograma f;
  f.textos[0] = NormalizaFimDeLinha(U(texto));
  return f;
}

// Each test runs in a process of its own (gtest_discover_tests), so the
// module's state starts afresh in each.
TEST(PortaJanelas, NoWindowCommandLoadsNothing) {
  HostJanela host(HostJanela::Modo::SemTela, std::tmpfile());
  PedidoExecucao p;
  Lancador l(host, p, Programa("Var x Integer\nx = 2\nWrite x\n"));
  host.Liga(&l.interpretador());
  l.Executa();
  EXPECT_EQ(ModuloJanelasCarregado(), nullptr);
  EXPECT_FALSE(host.GuiAtiva());
}

TEST(PortaJanelas, FirstWindowCommandLoadsTheModule) {
  HostJanela host(HostJanela::Modo::SemTela, std::tmpfile());
  PedidoExecucao p;
  Lancador l(host, p, Programa("Var s String\nText A, 1, 1, 10\nText A.Txt = \"typed\"\ns = A.Txt\n"));
  host.Liga(&l.interpretador());
  l.Executa();
  ASSERT_NE(ModuloJanelasCarregado(), nullptr);
  EXPECT_TRUE(host.GuiAtiva());
  EXPECT_EQ(l.interpretador().LeVariavel(u"s").ComoTexto(), u"typed");
  std::string d = ModuloJanelasCarregado()->DespejaJanelas(l.interpretador());
  EXPECT_NE(d.find("\"control\":\"Text\",\"name\":\"A\""), std::string::npos) << d;
  host.Termina();
  // The tear-down removed the mirror variable.
  EXPECT_LT(l.interpretador().PosicaoVariavel(u"A.Txt"), 0);
}

}  // namespace
}  // namespace zv
