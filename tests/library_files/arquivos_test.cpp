// The container format byte for byte, path handling, and the file commands
// as a program reaches them.
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

std::string Bytes(size_t n, char semente) {
  std::string s(n, '\0');
  for (size_t i = 0; i < n; ++i) s[i] = static_cast<char>(semente + i * 7);
  return s;
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

TEST_F(Container, FotoAndSomComeOutByteForByte) {
  std::string foto = Bytes(1000, 'a'), som = Bytes(200, 'z');
  fs::path pak = dir / "midia.pak";
  InsereNoContainer(pak, u"Foto", foto);
  InsereNoContainer(pak, u"Som", som);

  std::string c = Le(pak);
  ASSERT_EQ(c.size(), 16201u);
  EXPECT_EQ(c.substr(0, 50), "Foto                     1000      15001          ");
  EXPECT_EQ(c.substr(50, 50), "Som                      200       16002          ");
  EXPECT_EQ(c.substr(100, 14900), std::string(14900, ' '));
  EXPECT_EQ(c.substr(15000, 1000), foto);
  EXPECT_EQ(c[16000], '\0');  // the unused byte between two entries
  EXPECT_EQ(c.substr(16001), som);
  EXPECT_EQ(ArquivosNaPasta(), 1u);  // no temporary file left behind

  EXPECT_TRUE(ExtraiDoContainer(pak, u"sOM", dir / "som.wav"));
  EXPECT_EQ(Le(dir / "som.wav"), som);
  EXPECT_TRUE(ExtraiDoContainer(pak, u"FOTO", dir / "foto.bmp"));
  EXPECT_EQ(Le(dir / "foto.bmp"), foto);
}

TEST_F(Container, EntriesAreAppendedNeverReplaced) {
  fs::path pak = dir / "a.pak";
  InsereNoContainer(pak, u"Vazio", "");
  InsereNoContainer(pak, u"Dup", "primeiro");
  InsereNoContainer(pak, u"dup", "segundo");
  InsereNoContainer(pak, u"NomeComTrintaCaracteres123456", "longo");
  std::string c = Le(pak);
  std::vector<EntradaContainer> entradas = LeDiretorio(c, static_cast<int64_t>(c.size()), pak);
  ASSERT_EQ(entradas.size(), 4u);
  EXPECT_EQ(entradas[0].posicao, 15001);
  EXPECT_EQ(entradas[0].tamanho, 0);
  EXPECT_EQ(entradas[1].posicao, 15002);  // a 0-byte entry still leaves its byte
  EXPECT_EQ(entradas[2].posicao, 15002 + 8 + 1);
  EXPECT_EQ(entradas[3].nome, u"NomeComTrintaCaracteres12");

  // Empty entries at the end still advance the position by one each.
  InsereNoContainer(pak, u"Vazio2", "");
  InsereNoContainer(pak, u"Vazio3", "");
  InsereNoContainer(pak, u"Fim", "f");
  c = Le(pak);
  entradas = LeDiretorio(c, static_cast<int64_t>(c.size()), pak);
  ASSERT_EQ(entradas.size(), 7u);
  EXPECT_EQ(entradas[6].posicao, entradas[3].posicao + 5 + 3);
  EXPECT_EQ(c.size(), static_cast<size_t>(entradas[6].posicao));
  EXPECT_EQ(c.back(), 'f');

  EXPECT_TRUE(ExtraiDoContainer(pak, u"DUP", dir / "d"));
  EXPECT_EQ(Le(dir / "d"), "primeiro");
  EXPECT_TRUE(ExtraiDoContainer(pak, u"vazio", dir / "v"));
  EXPECT_EQ(Le(dir / "v"), "");

  // Not found: the old target is gone and an empty one stands there.
  Grava(dir / "alvo", "dados antigos");
  EXPECT_FALSE(ExtraiDoContainer(pak, u"NomeComTrintaCaracteres123456", dir / "alvo"));
  EXPECT_TRUE(fs::exists(dir / "alvo"));
  EXPECT_EQ(fs::file_size(dir / "alvo"), 0u);
}

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

TEST_F(ComandoArquivo, AliasesAndTheFullTable) {
  for (int i = 0; i < 20; ++i) Faz(u"OpenFile", u"F" + InteiroParaTexto(i) + u", \"f.bin\", \"Binary\"");
  Faz(u"OpenFile", u"extra, \"extra.bin\", \"BINARY\"");
  EXPECT_FALSE(fs::exists(dir / "extra.bin"));
  EXPECT_TRUE(host.caixas.empty());
  Faz(u"ReadFile", u"Extra, 1, 1");
  ASSERT_EQ(host.caixas.size(), 1u);
  EXPECT_EQ(host.caixas[0], u"\rReadFile - Alias file not found: EXTRA");

  // A freed slot is taken again; an unknown mode takes one and opens nothing.
  Faz(u"CloseFile", u"f3");
  Faz(u"OpenFile", u"modo, \"m.txt\", \"RANDOM\"");
  EXPECT_FALSE(fs::exists(dir / "m.txt"));
  EXPECT_EQ(Faz(u"ReadFile", u"modo"), u"\"\"");
  EXPECT_EQ(Faz(u"WriteFile", u"modo, \"x\""), u"\"\"");
  Faz(u"CloseFile", u"MODO");
  Faz(u"SizeFile", u"modo");
  Faz(u"WriteFile", u"modo, 1, \"x\"");
  Faz(u"CloseFile", u"modo");
  ASSERT_EQ(host.caixas.size(), 4u);
  EXPECT_EQ(host.caixas[1], u"\rSizeFile - Alias file not found: MODO");
  EXPECT_EQ(host.caixas[2], u"\rWriteFile - Alias file not found: MODO");
  EXPECT_EQ(host.caixas[3], u"\rCloseFile - Alias file not found: MODO");
}

TEST_F(ComandoArquivo, FailuresCarryTheCommandsName) {
  Faz(u"OpenFile", u"x, \"falta.txt\", \"INPUT\"");
  ASSERT_EQ(host.caixas.size(), 1u);
  EXPECT_EQ(host.caixas[0], u"\rError in command OpenFile: File not found: falta.txt");
  // The slot of a file that didn't open is free again.
  Faz(u"ReadFile", u"x");
  EXPECT_EQ(host.caixas.back(), u"\rReadFile - Alias file not found: X");

  Faz(u"OpenFile", u"b, \"b.bin\", \"BINARY\"");
  Faz(u"ReadFile", u"b, 0, 1");
  EXPECT_EQ(host.caixas.back(), u"\rError in command ReadFile: Bad record number");
  Faz(u"InsertFile", u"Foto, \"./falta.bmp\", \"c.pak\"");
  EXPECT_EQ(host.caixas.back(), u"\rError in command InsertFile: File not found: ./falta.bmp");
  EXPECT_FALSE(fs::exists(dir / "c.pak"));
}

TEST_F(ComandoArquivo, FolderAndCopyResults) {
  EXPECT_EQ(Faz(u"MkDir", u"\"p\""), u"\"\"");
  EXPECT_EQ(Faz(u"MkDir", u"\"p\""), u"\"Erro 75: Directory already exists or access denied!\"");
  EXPECT_EQ(Faz(u"MkDir", u"\"falta\\p\""), u"\"Erro 76: Path not found!\"");
  Grava(dir / "p" / "dentro.txt", "d");
  EXPECT_EQ(Faz(u"RmDir", u"\"p\""), u"\"Erro 75: Directory already exists or access denied!\"");
  EXPECT_EQ(Faz(u"RmDir", u"\"q\""), u"\"Erro 76: Path not found!\"");

  EXPECT_EQ(Faz(u"Copy", u"\"p\\dentro.txt\", \"copia.txt\""), u"\"\"");
  EXPECT_EQ(Le(dir / "copia.txt"), "d");
  EXPECT_EQ(Faz(u"Copy", u"\"falta.txt\", \"c2.txt\""), u"\"Error 53: File not found\"");
  EXPECT_EQ(Faz(u"Copy", u"\"copia.txt\", \"falta/c2.txt\""), u"\"Error 76: Path not found\"");
  EXPECT_EQ(Faz(u"Copy", u"\"p\", \"c3.txt\""), u"\"Error 75: Path/File access error\"");
  EXPECT_TRUE(host.caixas.empty());

  // DeleteFile resolves a bare name in the program's folder.
  EXPECT_EQ(Faz(u"DeleteFile", u"\"copia.txt\""), u"\"" + U((dir / "copia.txt").string()) + u"\"");
  EXPECT_FALSE(fs::exists(dir / "copia.txt"));
  EXPECT_EQ(Faz(u"DeleteFile", u"\"copia.txt\""), u"\"\"");
}

TEST_F(ComandoArquivo, DirectoryAndFindFile) {
  fs::create_directories(dir / "a" / "b");
  Grava(dir / "z.txt", "");
  Grava(dir / "A.TXT", "");
  Grava(dir / ".oculto.txt", "");
  Grava(dir / "a" / "b" / "alvo.dat", "");
  EXPECT_EQ(Faz(u"Directory", u"\"*.txt\""), u"\"A.TXT\"");
  EXPECT_EQ(Faz(u"Directory", u""), u"\"z.txt\"");
  EXPECT_EQ(Faz(u"Directory", u""), u"\"\"");
  EXPECT_EQ(Faz(u"Directory", u"\"a\\b\\\""), u"\"alvo.dat\"");
  EXPECT_EQ(Faz(u"Directory", u"\"a\""), u"\"\"");  // a folder is no normal file
  EXPECT_EQ(Faz(u"FindFile", u"\".\", \"ALVO.DAT\""), u"\"" + U((dir / "a" / "b" / "alvo.dat").string()) + u"\"");
  EXPECT_EQ(Faz(u"FindFile", u"\".\", \"nada.dat\""), u"\"\"");
}

}  // namespace
}  // namespace zv
