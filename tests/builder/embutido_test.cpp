// The builder: the program's block in its exact layout, read back from a
// built file; the resource area written in place; a whole build that runs.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "builder/compilador.h"
#include "builder/embutido.h"
#include "data/embaralhamento.h"

namespace zv {
namespace {

namespace fs = std::filesystem;

std::string LeArquivo(const fs::path& p) {
  std::ifstream f(p, std::ios::binary);
  return std::string((std::istreambuf_iterator<char>(f)), std::istreambuf_iterator<char>());
}

void Grava(const fs::path& p, std::string_view b) {
  std::ofstream f(p, std::ios::binary);
  f.write(b.data(), std::streamsize(b.size()));
}

// Reads one scrambled piece at `pos` and moves past it.
std::string Peca(std::string_view b, size_t& pos) {
  uint32_t n = uint8_t(b[pos]) | uint8_t(b[pos + 1]) << 8 | uint8_t(b[pos + 2]) << 16 | uint32_t(uint8_t(b[pos + 3])) << 24;
  std::string t = Desembaralha(b.substr(pos, 4 + n));
  pos += 4 + n;
  return t;
}

TEST(BlocoDoPrograma, LayoutExatoEIdaEVolta) {
  FontePrograma f;
  f.textos[0] = u"Write \"olá\"\r\nSoma()";
  f.nomes[0] = u"Vazia";
  f.nomes[1] = u"Util";
  f.textos[2] = u"Sub Soma()\r\nEndSub";
  std::string b = MontaBloco(f, "C:\\Work\\Demo.Zvc");
  ASSERT_TRUE(b.starts_with("INICIOPROGZVDEMO#FIMNOME"));
  ASSERT_TRUE(b.ends_with("FIMPROGZVDEMO.ZVC"));
  size_t pos = std::string("INICIOPROGZVDEMO#FIMNOME").size();
  EXPECT_EQ(Peca(b, pos), "Write \"ol\xe1\"\r\nSoma()");  // Windows-1252
  EXPECT_EQ(b.substr(pos, 3), "#~^");
  pos += 3;
  // The empty tab is left out; the one behind it comes up.
  EXPECT_EQ(Peca(b, pos), "Util");
  EXPECT_EQ(b.substr(pos, 3), "&~^");
  pos += 3;
  EXPECT_EQ(Peca(b, pos), "Sub Soma()\r\nEndSub");
  EXPECT_EQ(b.substr(pos), "#~^FIMPROGZVDEMO.ZVC");

  FontePrograma lido;
  std::string nome;
  ASSERT_TRUE(LeSoBloco(b, lido, nome));
  EXPECT_EQ(nome, "DEMO.ZVC");
  EXPECT_EQ(lido.textos[0], f.textos[0]);
  EXPECT_EQ(lido.nomes[0], u"Util");
  EXPECT_EQ(lido.textos[1], f.textos[2]);

  // Only a main code: one code end; a longer extension cuts too little.
  FontePrograma so;
  so.textos[0] = u"x = 1";
  std::string c = MontaBloco(so, "/home/ana/Agenda.zvc2");
  EXPECT_TRUE(c.starts_with("INICIOPROGZVAGENDA.#FIMNOME"));
  EXPECT_TRUE(c.ends_with("FIMPROGZVAGENDA.ZVC2"));
  EXPECT_EQ(c.find("#~^") + 3, c.find("FIMPROGZV"));

  // A block cut short, or with its marker damaged, isn't trusted.
  EXPECT_FALSE(LeSoBloco(b.substr(0, b.size() / 2), lido, nome));
  std::string ruim = b;
  ruim[ruim.find("&~^")] = 'x';
  EXPECT_FALSE(LeSoBloco(ruim, lido, nome));
}

TEST(RecursosDaImagem, VersoesEIconeNoLugar) {
  std::string imagem(1000, 'x');
  imagem += std::string(kAssinaturaRecursos);
  imagem += std::string(kTamanhoRecursos - kAssinaturaRecursos.size(), '\0');
  imagem += "tail";
  const size_t tamanho = imagem.size();
  ASSERT_EQ(AchaRecursos(imagem), 1000u);
  ASSERT_TRUE(GravaVersao(imagem, Versao::CompanyName, "Acme"));
  ASSERT_TRUE(GravaVersao(imagem, Versao::ProductName, std::string(400, 'p')));  // cut to its space
  ASSERT_TRUE(TrocaIcone(imagem, "ICONBYTES"));
  EXPECT_FALSE(TrocaIcone(imagem, std::string(kTamanhoIcone + 1, 'i')));
  EXPECT_EQ(imagem.size(), tamanho);  // nothing moves
  EXPECT_TRUE(imagem.ends_with("tail"));
  std::string_view r = std::string_view(imagem).substr(1000);
  EXPECT_EQ(LeVersao(r, Versao::CompanyName), "Acme");
  EXPECT_EQ(LeVersao(r, Versao::ProductName).size(), kTamanhoVersao - 1);
  EXPECT_EQ(LeVersao(r, Versao::FileVersion), "");
  EXPECT_EQ(LeIcone(r), "ICONBYTES");
  ASSERT_TRUE(GravaVersao(imagem, Versao::CompanyName, ""));  // an empty field erases
  EXPECT_EQ(LeVersao(std::string_view(imagem).substr(1000), Versao::CompanyName), "");
  std::string sem(5000, 'y');
  EXPECT_FALSE(GravaVersao(sem, Versao::CompanyName, "x"));
}

class Construcao : public ::testing::Test {
 protected:
  void SetUp() override {
    pasta = fs::temp_directory_path() / ("zv-builder-" + std::to_string(::getpid()));
    fs::create_directories(pasta);
    Grava(pasta / "Demo.Zvc",
          "#ZV7#Var x Integer\r\nx = 41\r\nx++\r\nWrite JoinStr(\"x is \", x, \" \", CommandLine)\r\nMostra()\r\n"
          "#%Util#&Sub Mostra()\r\n  Write \"from a tab\"\r\nEndSub\r\n#%");
    p.imagem = ZV_IMAGEM_RUNTIME;
    p.fonte = (pasta / "Demo.Zvc").string();
    p.executavel = (pasta / "demo").string();
  }
  void TearDown() override { fs::remove_all(pasta); }

  std::string Roda(const std::string& args) {
    std::string saida;
    FILE* f = ::popen((p.executavel + " --headless " + args + " 2>&1").c_str(), "r");
    char buf[256];
    while (f && std::fgets(buf, sizeof buf, f)) saida += buf;
    if (f) ::pclose(f);
    return saida;
  }

  fs::path pasta;
  PedidoCompilacao p;
};

TEST_F(Construcao, UmExecutavelQueRodaOProgramaSalvo) {
  p.versoes[size_t(Versao::CompanyName)] = "Acme";
  Compila(p);
  EXPECT_EQ(Roda("one two"), "x is 42 one two\nfrom a tab\n");
  std::string feito = LeArquivo(p.executavel);
  ASSERT_NE(AchaRecursos(feito), std::string::npos);
  EXPECT_EQ(LeVersao(std::string_view(feito).substr(AchaRecursos(feito)), Versao::CompanyName), "Acme");

  // ChangeIcon on it afterwards: the icon in place, the program still runs.
  Grava(pasta / "a.ico", "not really an icon, but bytes");
  EXPECT_TRUE(TrocaIconeDoArquivo((pasta / "a.ico").string(), p.executavel));
  EXPECT_EQ(Roda(""), "x is 42 \nfrom a tab\n");
  EXPECT_FALSE(TrocaIconeDoArquivo((pasta / "a.ico").string(), p.fonte));  // no icon area there

  // Built again over it: the older file goes first.
  Compila(p);
  EXPECT_EQ(Roda("again"), "x is 42 again\nfrom a tab\n");
}

TEST_F(Construcao, FalhasDizemOPassoEDeixamOQueFoiFeito) {
  p.fonte = (pasta / "none.zvc").string();
  try {
    Compila(p);
    FAIL() << "a missing source was built";
  } catch (const FalhaCompilacao& f) {
    EXPECT_EQ(f.numero, 53);
  }
  // The image was copied before the source was found missing.
  EXPECT_TRUE(fs::exists(p.executavel));

  p.imagem = (pasta / "no-runtime").string();
  EXPECT_THROW(Compila(p), FalhaCompilacao);
  p.imagem = ZV_IMAGEM_RUNTIME;
  p.icone = (pasta / "big.ico").string();
  Grava(p.icone, std::string(kTamanhoIcone + 10, 'i'));
  EXPECT_THROW(Compila(p), FalhaCompilacao);
}

}  // namespace
}  // namespace zv
