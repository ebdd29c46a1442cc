// Damaged containers: one table of named variants, each a few bytes written
// over a sound container of two entries. Every variant must be told as
// damage by both commands, leave the container and the target as they were,
// and never read as a missing entry.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "core/interpretador.h"
#include "library/arquivos.h"

namespace zv {
namespace {

namespace fs = std::filesystem;

std::string Le(const fs::path& p) {
  std::ifstream f(p, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(f), {});
}

void Grava(const fs::path& p, std::string_view bytes) {
  std::ofstream f(p, std::ios::binary | std::ios::trunc);
  f.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

struct Variante {
  const char* nome;
  size_t posicao;     // where the bytes go in the directory
  const char* bytes;  // written as they stand
  size_t tamanho;
};

// Slot 0 is "Um", 3 bytes at 15001; slot 1 is "Dois", 4 bytes at 15005.
const Variante kVariantes[] = {
    {"control characters in a name", 1, "\x01\x02", 2},
    {"a zero byte in a name", 0, "\0", 1},
    {"a size that isn't a number", 25, "x", 1},
    {"a size past the end", 50 + 25, "9999", 4},
    {"a position inside the directory", 35, "100  ", 5},
    {"a position that skips the gap", 50 + 35, "15006", 5},
    {"a position that overlaps", 50 + 35, "15003", 5},
    {"a used slot behind a free one", 150, "Fantasma", 8},
    {"a stray byte in a free slot", 14999, "x", 1},
    {"a first slot blanked", 0, "  ", 2},
};

class ContainerDanificado : public ::testing::TestWithParam<Variante> {
 protected:
  void SetUp() override {
    std::string modelo = (fs::temp_directory_path() / "zvcontainer-XXXXXX").string();
    ASSERT_NE(::mkdtemp(modelo.data()), nullptr);
    pasta = modelo;
    pak = pasta / "c.pak";
    InsereNoContainer(pak, u"Um", "abc");
    InsereNoContainer(pak, u"Dois", "defg");
  }
  void TearDown() override { fs::remove_all(pasta); }
  fs::path pasta, pak;
};

TEST_P(ContainerDanificado, IsToldAsDamageAndChangesNothing) {
  const Variante& v = GetParam();
  std::string bytes = Le(pak);
  bytes.replace(v.posicao, v.tamanho, std::string(v.bytes, v.tamanho));
  Grava(pak, bytes);
  Grava(pasta / "alvo", "intacto");
  for (const char16_t* nome : {u"Um", u"Dois", u"Nada"}) {
    try {
      ExtraiDoContainer(pak, nome, pasta / "alvo");
      ADD_FAILURE() << "ExtractFile of " << Utf8(nome) << " read the container";
    } catch (const FalhaHost& f) {
      EXPECT_EQ(f.descricao, u"The container is damaged: " + U(pak.string()));
    }
  }
  EXPECT_THROW(InsereNoContainer(pak, u"Tres", "h"), FalhaHost);
  EXPECT_EQ(Le(pak), bytes);
  EXPECT_EQ(Le(pasta / "alvo"), "intacto");
}

INSTANTIATE_TEST_SUITE_P(Variantes, ContainerDanificado, ::testing::ValuesIn(kVariantes),
                         [](const ::testing::TestParamInfo<Variante>& i) {
                           std::string n;
                           for (const char* p = i.param.nome; *p; ++p) n += std::isalnum(*p) ? *p : '_';
                           return n;
                         });

TEST(Container, SoundOnesStillReadAndNamesWithControlCharactersAreRefused) {
  std::string modelo = (fs::temp_directory_path() / "zvcontainer-XXXXXX").string();
  ASSERT_NE(::mkdtemp(modelo.data()), nullptr);
  fs::path pasta = modelo, pak = pasta / "c.pak";
  InsereNoContainer(pak, u"Um", "abc");
  InsereNoContainer(pak, u"Vazio", "");
  InsereNoContainer(pak, u"Relat\u00F3rio", "r");
  EXPECT_THROW(InsereNoContainer(pak, u"Um\tDois", "x"), FalhaHost);
  EXPECT_TRUE(ExtraiDoContainer(pak, u"RELAT\u00D3RIO", pasta / "r"));
  EXPECT_EQ(Le(pasta / "r"), "r");
  // A name that isn't there, in a sound container, is a missing entry.
  EXPECT_FALSE(ExtraiDoContainer(pak, u"Nada", pasta / "r"));
  fs::remove_all(pasta);
}

}  // namespace
}  // namespace zv
