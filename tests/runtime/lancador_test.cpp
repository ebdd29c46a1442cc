// The run launcher: the walk's own deep stack on the caller's thread, the
// guard that stops a walk before any stack runs out, and reading programs.
#include <gtest/gtest.h>
#include <pthread.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "runtime/headless_host.h"
#include "runtime/lancador.h"

namespace zv {
namespace {

// Keeps the boxes a run shows, and answers each with its default button.
class HostGravador : public HostConsole {
 public:
  std::vector<Texto> caixas;
  Resposta MostraCaixa(const Caixa& c) override {
    caixas.push_back(c.texto);
    return c.padrao;
  }
  void Escreve(const Texto&) override {}
};

FontePrograma Programa(const std::string& texto) {
  FontePrograma f;
  f.textos[0] = NormalizaFimDeLinha(U(texto));
  return f;
}

// A Function without parameters that calls itself until `d` levels stand.
std::string Recursao(int niveis) {
  return "Var r Integer, d Integer\nr = F()\nMessage r\nEndProgram\nFunction F() Numero\nd++\nIf d < " +
         std::to_string(niveis) + "\nReturn F()\nEndIf\nReturn d\nEndFunction\n";
}

TEST(PilhaExecucao, SameThreadOtherStackAndExceptionsComeBack) {
  pthread_t fora = pthread_self();
  char localFora;
  pthread_t dentro{};
  const char* localDentro = nullptr;
  bool aninhadaRodou = false;
  NaPilhaDaExecucao([&] {
    char l;
    localDentro = &l;
    dentro = pthread_self();
    // A run started from inside a run stays where it is.
    NaPilhaDaExecucao([&] { aninhadaRodou = true; });
  });
  EXPECT_TRUE(pthread_equal(fora, dentro));
  EXPECT_TRUE(aninhadaRodou);
  long distancia = std::labs(static_cast<long>(&localFora - localDentro));
  EXPECT_GT(distancia, 64L * 1024 * 1024) << "the body ran on the caller's own stack";
  EXPECT_THROW(NaPilhaDaExecucao([] { throw std::runtime_error("x"); }), std::runtime_error);
  // And the stack is there again after an exception.
  bool depois = false;
  NaPilhaDaExecucao([&] { depois = true; });
  EXPECT_TRUE(depois);
}

TEST(Lancador, TenThousandNestedCallsOfASmallFunction) {
  HostGravador host;
  PedidoExecucao pedido;
  Lancador l(host, pedido, Programa(Recursao(10000)));
  l.Executa();
  ASSERT_EQ(host.caixas.size(), 1u);
  EXPECT_EQ(host.caixas[0], u"10000");
}

TEST(Lancador, PastTheLimitTheRunEndsWithItsMessage) {
  HostGravador host;
  PedidoExecucao pedido;
  Lancador l(host, pedido, Programa(Recursao(Interpretador::kMaxProfundidade)));
  l.Executa();
  ASSERT_EQ(host.caixas.size(), 1u);
  EXPECT_EQ(host.caixas[0], u"Editor: 0 Line: 8\rToo many nested calls: routines can't be nested more than 50000 deep!");
  EXPECT_TRUE(l.interpretador().abortado);
}

// A walk on a thread's small stack (as when no deep stack could be had)
// stops with a box when its stack is nearly used, instead of overflowing.
void* RodaEmPilhaPequena(void* arg) {
  auto* host = static_cast<HostGravador*>(arg);
  Interpretador zv(*host);
  RegistraSubsistemas();
  zv.fonte = Programa(Recursao(Interpretador::kMaxProfundidade));
  zv.fundoPilha = FundoPilhaAtual();
  zv.Executa();
  return nullptr;
}

TEST(Lancador, AWalkStopsBeforeItsStackRunsOut) {
  HostGravador host;
  pthread_attr_t attr;
  pthread_attr_init(&attr);
  pthread_attr_setstacksize(&attr, 8u * 1024 * 1024);
  pthread_t t;
  ASSERT_EQ(pthread_create(&t, &attr, RodaEmPilhaPequena, &host), 0);
  pthread_join(t, nullptr);
  pthread_attr_destroy(&attr);
  ASSERT_EQ(host.caixas.size(), 1u);
  Texto esperado = u"Too many nested calls: the run's stack is used up by ";
  EXPECT_NE(host.caixas[0].find(esperado), NPOS) << Utf8(host.caixas[0]);
}

TEST(CarregaFonte, DocumentsBareCodeAndWhatCantBeRead) {
  namespace fs = std::filesystem;
  fs::path pasta = fs::temp_directory_path() / ("zv-carrega-" + std::to_string(getpid()));
  fs::create_directories(pasta);
  auto escreve = [&](const char* nome, const std::string& bytes) {
    std::ofstream(pasta / nome, std::ios::binary) << bytes;
    return (pasta / nome).string();
  };
  FontePrograma f;
  std::string erro;
  ASSERT_TRUE(CarregaFonte(escreve("a.zvc", "Message 1\nEndProgram\n"), f, erro));
  EXPECT_EQ(f.textos[0], u"Message 1\r\nEndProgram\r\n");
  ASSERT_TRUE(CarregaFonte(escreve("b.Zvc", "#ZV7#Message 2\r\n#%Tab#&Write 3\r\n#%"), f, erro)) << erro;
  EXPECT_EQ(f.textos[0], u"Message 2\r\n");
  EXPECT_EQ(f.nomes[0], u"Tab");
  EXPECT_EQ(f.textos[1], u"Write 3\r\n");

  EXPECT_FALSE(CarregaFonte(escreve("c.Zvc", "#ZV7#Message 2\r\n"), f, erro));
  EXPECT_EQ(erro, (pasta / "c.Zvc").string() + " is a damaged source file: a code has no end marker #%");
  EXPECT_FALSE(CarregaFonte((pasta / "none.zvc").string(), f, erro));
  EXPECT_EQ(erro, "can't read " + (pasta / "none.zvc").string());
  EXPECT_FALSE(CarregaFonte(pasta.string(), f, erro));
  EXPECT_EQ(erro, pasta.string() + " is a folder, not a program file");
  fs::remove_all(pasta);
}

}  // namespace
}  // namespace zv
