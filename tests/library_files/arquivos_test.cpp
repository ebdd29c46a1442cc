// What the programs in tests/programs/file can't show: a container's refusals
// and damage at the byte, paths on this platform, wildcards, line ends.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "core/interpretador.h"
#include "library/arquivos.h"
#include "library/arquivos_interno.h"
#include "library/biblioteca.h"
#include "runtime/headless_host.h"

namespace zv {
namespace {

namespace fs = std::filesystem;

std::string Le(const fs::path& p) {
  std::ifstream f(p, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(f), {});
}

void Grava(const fs::path& p, std::string_view bytes) {
  std::ofstream f(p, std::ios::binary);
  f.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

// A fresh folder per test, which is also the working folder.
class Pasta : public ::testing::Test {
 protected:
  fs::path dir, antes;
  void SetUp() override {
    antes = fs::current_path();
    dir = fs::temp_directory_path() /
          ("zv_arquivos_" + std::to_string(::getpid()) + "_" +
           ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::remove_all(dir);
    fs::create_directories(dir);
    fs::current_path(dir);
  }
  void TearDown() override {
    fs::current_path(antes);
    fs::remove_all(dir);
  }
  size_t ArquivosNaPasta() const { return static_cast<size_t>(std::distance(fs::directory_iterator(dir), {})); }
};

using Container = Pasta;

TEST_F(Container, The301stEntryIsRefusedAndChangesNothing) {
  fs::path pak = dir / "cheio.pak";
  for (int i = 0; i < kSlotsDiretorio; ++i) InsereNoContainer(pak, u"E" + InteiroParaTexto(i), "x");
  std::string antes = Le(pak);
  EXPECT_EQ(antes.size(), 15000u + 300 * 2 - 1);
  try {
    InsereNoContainer(pak, u"Demais", "y");
    FAIL() << "the 301st entry went in";
  } catch (const FalhaHost& f) {
    EXPECT_EQ(f.descricao, u"The container is full: it holds 300 entries");
  }
  EXPECT_EQ(Le(pak), antes);
  EXPECT_EQ(ArquivosNaPasta(), 1u);  // no temporary file left behind
  EXPECT_TRUE(ExtraiDoContainer(pak, u"E299", dir / "ultimo"));
  EXPECT_EQ(Le(dir / "ultimo"), "x");
}

TEST_F(Container, DamageIsReportedAndNothingIsWritten) {
  fs::path pak = dir / "ruim.pak";
  Grava(dir / "alvo", "intacto");
  auto recusa = [&](const std::string& conteudo) {
    Grava(pak, conteudo);
    EXPECT_THROW(InsereNoContainer(pak, u"Novo", "abc"), FalhaHost);
    EXPECT_EQ(Le(pak), conteudo);
    EXPECT_THROW(ExtraiDoContainer(pak, u"Foto", dir / "alvo"), FalhaHost);
    EXPECT_EQ(Le(dir / "alvo"), "intacto");
  };
  // Shorter than its directory.
  recusa(std::string(100, ' '));
  // A size that isn't a number.
  std::string d(15000, ' ');
  d.replace(0, 50, "Foto                     1x00      15001          ");
  recusa(d + std::string(1000, 'f'));
  // An entry that runs past the end of the file.
  d.replace(0, 50, MontaSlot(u"Foto", 1000, 15001));
  recusa(d + std::string(999, 'f'));
  // A position inside the directory.
  d.replace(0, 50, MontaSlot(u"Foto", 10, 100));
  recusa(d);
  EXPECT_EQ(ArquivosNaPasta(), 2u);

  // An empty file is a new container, not a damaged one.
  Grava(pak, "");
  InsereNoContainer(pak, u"Foto", "abc");
  EXPECT_EQ(fs::file_size(pak), 15003u);
  // A name that would read as a free slot is refused.
  EXPECT_THROW(InsereNoContainer(pak, u" Foto", "abc"), FalhaHost);
  EXPECT_THROW(InsereNoContainer(pak, u"", "abc"), FalhaHost);
}

TEST_F(Container, NamesAreWindows1252) {
  fs::path pak = dir / "c.pak";
  InsereNoContainer(pak, u"Relat\u00F3rio \u20AC", "r");
  EXPECT_EQ(Le(pak).substr(0, 11), "Relat\xF3rio \x80");
  EXPECT_TRUE(ExtraiDoContainer(pak, u"RELAT\u00D3RIO \u20AC", dir / "r"));
}

TEST_F(Pasta, ProgramPathsOnThisPlatform) {
  EXPECT_EQ(CaminhoPlataforma(u"dados\\a.txt"), u"dados/a.txt");
  EXPECT_EQ(CaminhoPlataforma(u"C:\\dados\\a.txt"), u"/dados/a.txt");
  EXPECT_EQ(CaminhoPlataforma(u"/tmp/x"), u"/tmp/x");

  fs::create_directories(dir / "sub");
  Grava(dir / "a.txt", "a");
  Grava(dir / "sub" / "b.txt", "b");
  Texto programa = U(dir.string()) + u"/";
  EXPECT_EQ(ResolveArquivo(u"", programa), u"");
  // A bare name lies in the program's folder, trimmed, with or without its separator.
  EXPECT_EQ(ResolveArquivo(u"a.txt", programa), programa + u"a.txt");
  EXPECT_EQ(ResolveArquivo(u"a.txt", u"  " + U(dir.string()) + u"  "), programa + u"a.txt");
  EXPECT_EQ(ResolveArquivo(u"b.txt", programa), u"");
  // A relative path is taken from the working folder, with either separator.
  EXPECT_EQ(ResolveArquivo(u"sub\\b.txt", u"/nowhere/"), u"sub/b.txt");
  EXPECT_EQ(ResolveArquivo(u"./a.txt", u"/nowhere/"), u"./a.txt");
  // From the root, with or without a drive.
  Texto abs = U((dir / "sub" / "b.txt").string());
  EXPECT_EQ(ResolveArquivo(abs, u""), abs);
  Texto comDrive = u"C:" + abs;
  for (auto& ch : comDrive)
    if (ch == u'/') ch = u'\\';
  EXPECT_EQ(ResolveArquivo(comDrive, u""), abs);
  // A folder is no file.
  EXPECT_EQ(ResolveArquivo(u"sub", programa), u"");
}

TEST(Curinga, DirectoryPatterns) {
  EXPECT_TRUE(CorrespondeCuringa(u"Notas.TXT", u"*.txt"));
  EXPECT_TRUE(CorrespondeCuringa(u"semponto", u"*.*"));
  EXPECT_TRUE(CorrespondeCuringa(u"a1b.dat", u"a?b.*"));
  EXPECT_FALSE(CorrespondeCuringa(u"ab.dat", u"a?b.*"));
  EXPECT_TRUE(CorrespondeCuringa(u"x.tar.gz", u"*.gz"));
  EXPECT_FALSE(CorrespondeCuringa(u"x.gz.bak", u"*.gz"));
  EXPECT_TRUE(CorrespondeCuringa(u"abcabd", u"*abd"));
  EXPECT_TRUE(CorrespondeCuringa(u"exato.txt", u"EXATO.TXT"));
  EXPECT_FALSE(CorrespondeCuringa(u"exato.txt", u"exato"));
}

// The commands as a program calls them, with the boxes they show.
class ComandoArquivo : public Pasta {
 protected:
  struct HostGravador : HostConsole {
    std::vector<Texto> caixas;
    Resposta MostraCaixa(const Caixa& c) override {
      caixas.push_back(c.texto);
      return Resposta::OK;
    }
  } host;
  std::unique_ptr<Interpretador> zv;
  void SetUp() override {
    Pasta::SetUp();
    RegistraBiblioteca();
    host.mudo = true;
    zv = std::make_unique<Interpretador>(host);
    zv->dirPrograma = U(dir.string()) + u"/";
  }
  void TearDown() override {
    zv.reset();
    Pasta::TearDown();
  }
  Texto Faz(const Texto& comando, const Texto& argumentos) {
    return zv->DespachaComando(comando, argumentos).ComoTexto();
  }
};

TEST_F(ComandoArquivo, InputReadsEveryKindOfLineEnd) {
  Grava(dir / "linhas.txt", "um\r\ndois\ntr\xEAs\r\rcinco");
  Faz(u"OpenFile", u"L, \"linhas.txt\", \"input\"");
  EXPECT_EQ(Faz(u"ReadFile", u"l"), u"\"um\"");
  EXPECT_EQ(Faz(u"ReadFile", u"l"), u"\"dois\"");
  EXPECT_EQ(Faz(u"ReadFile", u"l"), u"\"tr\u00EAs\"");
  EXPECT_EQ(Faz(u"ReadFile", u"l"), u"\"\"");
  EXPECT_EQ(Faz(u"ReadFile", u"l"), u"\"cinco\"");
  EXPECT_EQ(Faz(u"ReadFile", u"l"), u"\"EOF\"");
  EXPECT_EQ(Faz(u"ReadFile", u"l"), u"\"EOF\"");
  EXPECT_EQ(Faz(u"SizeFile", u"L"), u"20");
  EXPECT_TRUE(host.caixas.empty());
}

}  // namespace
}  // namespace zv
