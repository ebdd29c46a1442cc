// ZV.File and Zarvolt8.inf at the byte; what a program sees of ZV.File is in
// tests/programs/settings.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "environment/settings/armazem_config.h"

namespace zv {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;

class PastaTemporaria : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string modelo = (fs::temp_directory_path() / "zvsettings-XXXXXX").string();
    ASSERT_NE(mkdtemp(modelo.data()), nullptr);
    pasta = modelo;
    DescartaConfig();
  }
  void TearDown() override {
    DescartaConfig();
    fs::remove_all(pasta);
  }

  std::string Le(const char* nome) {
    std::ifstream f(pasta / nome, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(f), std::istreambuf_iterator<char>());
  }
  void Escreve(const char* nome, std::string_view bytes) {
    std::ofstream f(pasta / nome, std::ios::binary | std::ios::trunc);
    f.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  }
  std::string Arquivo() { return Le(kArquivoConfig); }
  Texto Valor(TextoV chave) { return LeConfig(pasta, chave); }
  void Grava(TextoV chave, TextoV valor) { ASSERT_EQ(GravaConfig(pasta, chave, valor), ResultadoConfig::Gravado); }

  fs::path pasta;
};

// One entry as it stands in the file, key and value given plain.
std::string Entrada(std::string_view chave, std::string_view valor) {
  std::string r = "#!";
  for (unsigned char c : chave) r += static_cast<char>(255 - c);
  r += "#@";
  for (unsigned char c : valor) r += static_cast<char>(255 - c);
  return r + "#$";
}

using ZVFile = PastaTemporaria;

TEST_F(ZVFile, EntryBytes) {
  Grava(u"Ab", u"1");
  EXPECT_EQ(Arquivo(), "\x23\x21\xbe\x9d\x23\x40\xce\x23\x24");
  EXPECT_EQ(Valor(u"Ab"), u"1");
  EXPECT_EQ(Valor(u"ab"), u"");  // keys are case-sensitive
  Grava(u"Descrição", u"Preço: 5 € – ok");
  EXPECT_EQ(Valor(u"Descrição"), u"Preço: 5 € – ok");
  Grava(u"Grego", u"αβ");  // outside the code page
  EXPECT_EQ(Valor(u"Grego"), u"??");
}

TEST_F(ZVFile, MissingFileReadsEmptyAndIsCreated) {
  EXPECT_EQ(Valor(u"AssociaZV"), u"");
  EXPECT_TRUE(fs::exists(pasta / kArquivoConfig));
  EXPECT_EQ(fs::file_size(pasta / kArquivoConfig), 0u);
}

TEST_F(ZVFile, RewritesKeepOrderAndLeaveStaleBytes) {
  Grava(u"A", u"comprido");
  Grava(u"B", u"x");
  std::string antes = Arquivo();
  Grava(u"A", u"c");  // seven bytes shorter; the file is not cut
  std::string agora = Entrada("A", "c") + Entrada("B", "x");
  EXPECT_EQ(Arquivo(), agora + antes.substr(agora.size()));
  EXPECT_EQ(Valor(u"A"), u"c");
  EXPECT_EQ(Valor(u"B"), u"x");

  // A new key lands behind the stale bytes; everything stays readable.
  std::string velhos = antes.substr(agora.size());
  Grava(u"C", u"novo");
  EXPECT_EQ(Arquivo(), agora + velhos + Entrada("C", "novo"));
  Grava(u"B", u"maior agora");
  EXPECT_EQ(Arquivo(), Entrada("A", "c") + Entrada("B", "maior agora") + velhos + Entrada("C", "novo"));
  DescartaConfig();
  EXPECT_EQ(Valor(u"A"), u"c");
  EXPECT_EQ(Valor(u"B"), u"maior agora");
  EXPECT_EQ(Valor(u"C"), u"novo");
}

TEST_F(ZVFile, MemoryServesReadsButWritesReadTheFileFirst) {
  Grava(u"X", u"1");
  // Another process adds an entry behind our back.
  Escreve(kArquivoConfig, Arquivo() + Entrada("Outro", "2"));
  EXPECT_EQ(Valor(u"Outro"), u"");  // not seen: the text in memory stands
  Grava(u"X", u"3");                // the file is read again
  EXPECT_EQ(Valor(u"Outro"), u"2");
  EXPECT_EQ(Arquivo(), Entrada("X", "3") + Entrada("Outro", "2"));
}

TEST_F(ZVFile, FoldersAreKeptApart) {
  Grava(u"K", u"aqui");
  fs::path outra = pasta / "outra";
  fs::create_directory(outra);
  EXPECT_EQ(LeConfig(outra, u"K"), u"");
  EXPECT_EQ(Valor(u"K"), u"aqui");
}

TEST_F(ZVFile, DamagedFilesAreReadWithoutFailing) {
  // An entry cut in its value, one cut in its key, markers with nothing
  // between them, plain garbage.
  Escreve(kArquivoConfig, Entrada("Bom", "sim") + "\x01\x02" + Entrada("Cortado", "inteiro").substr(0, 14));
  EXPECT_EQ(Valor(u"Bom"), u"sim");
  EXPECT_EQ(Valor(u"Cortado"), u"int");  // no end marker: the value runs to the end
  for (std::string ruim : {"#!"s, "#!#@"s, "#$#@#!"s, "\0\xff#!\x9d"s, Entrada("K", "v").substr(0, 4)}) {
    DescartaConfig();
    Escreve(kArquivoConfig, ruim);
    EXPECT_EQ(Valor(u"K"), u"");
    EXPECT_EQ(Valor(u"b"), u"");
  }
  // A write over a cut entry mends it.
  DescartaConfig();
  Escreve(kArquivoConfig, Entrada("Bom", "sim") + Entrada("Cortado", "inteiro").substr(0, 14));
  Grava(u"Cortado", u"de novo");
  EXPECT_EQ(Arquivo(), Entrada("Bom", "sim") + Entrada("Cortado", "de novo"));
}

TEST_F(ZVFile, TextsThatWouldHoldAMarkerAreRefused) {
  Grava(u"K", u"v");
  std::string antes = Arquivo();
  // A value's marker is in tests/programs/settings/limits.zvc.
  EXPECT_EQ(GravaConfig(pasta, u"a Ü¿ b", u"v"), ResultadoConfig::TemMarcador);
  EXPECT_EQ(GravaConfig(pasta, u"K", u"xÜÞ"), ResultadoConfig::TemMarcador);
  EXPECT_EQ(Arquivo(), antes);
  EXPECT_EQ(Valor(u"K"), u"v");
  Grava(u"K", u"ÜÜ Û¿");  // the characters apart are fine
  EXPECT_EQ(Valor(u"K"), u"ÜÜ Û¿");
}

TEST_F(ZVFile, NoFolderIsAFileError) {
  fs::path nenhuma = pasta / "nao" / "existe";
  EXPECT_EQ(LeConfig(nenhuma, u"K"), u"");
  EXPECT_EQ(GravaConfig(nenhuma, u"K", u"v"), ResultadoConfig::ErroArquivo);
  EXPECT_FALSE(DescreveResultadoConfig(ResultadoConfig::ErroArquivo).empty());
}

TEST_F(ZVFile, SomethingElseInItsPlaceIsToldAndNeverWaitedOn) {
  Texto falha;
  fs::create_directory(pasta / kArquivoConfig);
  EXPECT_EQ(LeConfig(pasta, u"K", &falha), u"");
  EXPECT_EQ(falha, u"Path/File access error: the settings file " + U((pasta / kArquivoConfig).string()) +
                       u" is a folder");
  falha.clear();
  EXPECT_EQ(GravaConfig(pasta, u"K", u"v", &falha), ResultadoConfig::ErroArquivo);
  EXPECT_NE(falha.find(u"is a folder"), Texto::npos);
  EXPECT_TRUE(fs::is_directory(pasta / kArquivoConfig));
  fs::remove(pasta / kArquivoConfig);

  // A pipe with nobody writing would block a plain open for ever.
  ASSERT_EQ(::mkfifo((pasta / kArquivoConfig).c_str(), 0600), 0);
  falha.clear();
  EXPECT_EQ(LeConfig(pasta, u"K", &falha), u"");
  EXPECT_NE(falha.find(u"can't be read"), Texto::npos);
  EXPECT_EQ(GravaConfig(pasta, u"K", u"v"), ResultadoConfig::ErroArquivo);
  fs::remove(pasta / kArquivoConfig);

  Grava(u"K", u"v");
  falha.clear();
  EXPECT_EQ(LeConfig(pasta, u"K", &falha), u"v");
  EXPECT_EQ(falha, u"");
}

TEST_F(ZVFile, FullStoreRefusesAndKeepsEverything) {
  Texto grande(16000, u'g');
  Grava(u"Um", grande);
  Grava(u"Dois", grande);
  std::string antes = Arquivo();
  EXPECT_EQ(GravaConfig(pasta, u"Tres", Texto(800, u't')), ResultadoConfig::ArmazemCheio);
  EXPECT_EQ(GravaConfig(pasta, u"Um", Texto(16800, u'g')), ResultadoConfig::ArmazemCheio);
  EXPECT_EQ(Arquivo(), antes);
  EXPECT_EQ(Valor(u"Um"), grande);
  EXPECT_EQ(Valor(u"Tres"), u"");
  Grava(u"Tres", Texto(700, u't'));  // what still fits is stored
  EXPECT_LE(Arquivo().size(), kLimiteConfig);
}

TEST_F(ZVFile, StaleBytesAreDroppedAtTheLimit) {
  // A value that swings between long and short grows the file each time
  // (the stale tail is never cut); at the limit it is cut back.
  Grava(u"Fixo", u"fica");
  size_t anterior = 0;
  bool cortado = false;
  for (int vez = 0; vez < 40; ++vez) {
    Grava(u"Vai", Texto(1000, u'v'));
    Grava(u"Vai", u"c");
    size_t tamanho = Arquivo().size();
    ASSERT_LE(tamanho, kLimiteConfig);
    cortado = cortado || tamanho < anterior;
    anterior = tamanho;
  }
  EXPECT_TRUE(cortado);
  DescartaConfig();
  EXPECT_EQ(Valor(u"Fixo"), u"fica");
  EXPECT_EQ(Valor(u"Vai"), u"c");
}

using Preferencias8 = PastaTemporaria;

std::string Cor(int r, int g, int b) { return {char(r), char(g), char(b), '\0'}; }

TEST_F(Preferencias8, DefaultsAndTheirRecord) {
  PreferenciasAtivas().nomePrograma = u"sobra.Zvc";
  EXPECT_EQ(CarregaPreferencias(pasta), EstadoPreferencias::Ausentes);
  const Preferencias& p = PreferenciasAtivas();
  EXPECT_EQ(p.dirPrograma, u"c:\\");
  EXPECT_EQ(p.nomePrograma, u"");
  EXPECT_FALSE(fs::exists(pasta / kArquivoPreferencias));

  std::string esperado = "c:\\" + std::string(97, ' ') + std::string(30, ' ') + "Courier New" + std::string(19, ' ') +
                         "\x0a\0"s + Cor(255, 255, 255) + Cor(0, 0, 0) + Cor(0, 0, 255) + Cor(0, 128, 0) +
                         Cor(255, 0, 0) + Cor(110, 41, 205) + Cor(210, 20, 210) + Cor(0, 128, 192) +
                         Cor(255, 255, 200) + Cor(230, 230, 230) + Cor(0, 128, 0) + "\0\0\x01\0"s;
  ASSERT_EQ(esperado.size(), kTamanhoPreferencias);
  ASSERT_TRUE(GravaPreferencias(pasta));
  EXPECT_EQ(Le(kArquivoPreferencias), esperado);
}

TEST_F(Preferencias8, RoundTrip) {
  Preferencias& p = PreferenciasAtivas();
  p = Preferencias{};
  p.dirPrograma = u"/home/ana/Programas/";
  p.nomePrograma = u"Relatório.Zvc";
  p.fonteNome = u"DejaVu Sans Mono";
  p.fonteTamanho = -12;
  p.corPC2 = CorRgb(1, 2, 3);
  p.corNumeracao = static_cast<int32_t>(0xFF000000u);
  p.ativaNumeracao = 0;
  Preferencias gravadas = p;
  ASSERT_TRUE(GravaPreferencias(pasta));
  p = Preferencias{};
  ASSERT_EQ(CarregaPreferencias(pasta), EstadoPreferencias::Lidas);
  EXPECT_EQ(p.dirPrograma, gravadas.dirPrograma);
  EXPECT_EQ(p.nomePrograma, gravadas.nomePrograma);
  EXPECT_EQ(p.fonteNome, gravadas.fonteNome);
  EXPECT_EQ(p.fonteTamanho, -12);
  EXPECT_EQ(p.corPC2, CorRgb(1, 2, 3));
  EXPECT_EQ(p.corNumeracao, gravadas.corNumeracao);
  EXPECT_EQ(p.ativaNumeracao, 0);
}

TEST_F(Preferencias8, AnyRecordIsWrittenBackByteForByte) {
  std::string registro(kTamanhoPreferencias, '\0');
  for (size_t i = 0; i < registro.size(); ++i) registro[i] = static_cast<char>((i * 37 + 11) % 256);
  registro[40] = ' ';  // a blank inside a text field, and leading blanks
  registro[100] = registro[101] = ' ';
  registro[206] = registro[207] = '\0';  // the reserved field is always written 0
  Escreve(kArquivoPreferencias, registro);
  ASSERT_EQ(CarregaPreferencias(pasta), EstadoPreferencias::Lidas);
  ASSERT_TRUE(GravaPreferencias(pasta));
  EXPECT_EQ(Le(kArquivoPreferencias), registro);
}

TEST_F(Preferencias8, LongTextsAreCut) {
  Preferencias p;
  p.dirPrograma = Texto(120, u'd');
  p.nomePrograma = u"um nome de arquivo longo demais.Zvc";
  Preferencias lidas;
  ASSERT_TRUE(LeRegistroPreferencias(RegistroPreferencias(p), lidas));
  EXPECT_EQ(lidas.dirPrograma, Texto(100, u'd'));
  EXPECT_EQ(lidas.nomePrograma, u"um nome de arquivo longo demai");
}

TEST_F(Preferencias8, WrongLengthLeavesDefaultsAndTheFile) {
  for (size_t tamanho : {0, 209, 211, 420}) {
    std::string lixo(tamanho, 'Z');
    Escreve(kArquivoPreferencias, lixo);
    PreferenciasAtivas().fonteTamanho = 99;
    EXPECT_EQ(CarregaPreferencias(pasta), EstadoPreferencias::TamanhoErrado);
    EXPECT_EQ(PreferenciasAtivas().fonteTamanho, 10);
    EXPECT_EQ(PreferenciasAtivas().fonteNome, u"Courier New");
    EXPECT_EQ(Le(kArquivoPreferencias), lixo);
  }
  // The next save mends it.
  ASSERT_TRUE(GravaPreferencias(pasta));
  EXPECT_EQ(fs::file_size(pasta / kArquivoPreferencias), kTamanhoPreferencias);
  EXPECT_EQ(CarregaPreferencias(pasta), EstadoPreferencias::Lidas);
  Preferencias p;
  EXPECT_FALSE(LeRegistroPreferencias(std::string(209, ' '), p));
}

TEST_F(Preferencias8, UnreadableOrUnwritable) {
  fs::create_directory(pasta / kArquivoPreferencias);  // a folder where the file should be
  EXPECT_EQ(CarregaPreferencias(pasta), EstadoPreferencias::Ilegiveis);
  EXPECT_EQ(PreferenciasAtivas().fonteNome, u"Courier New");
  EXPECT_FALSE(GravaPreferencias(pasta));
  EXPECT_FALSE(GravaPreferencias(pasta / "nao-existe"));
}

}  // namespace
}  // namespace zv
