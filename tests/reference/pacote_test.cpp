// Commands.pack as the help reads it: a container whose directory of 300
// slots names every page as WORD.rtf, searched by the help's own rule (the
// first 25 characters of a slot, trimmed, against the page name, both in
// capitals, through all 300 slots), and whose entries the language's
// ExtractFile gives back byte for byte.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "core/texto.h"
#include "library/arquivos.h"

namespace fs = std::filesystem;
using namespace zv;

namespace {

std::string Le(const fs::path& p) {
  std::ifstream f(p, std::ios::binary);
  std::ostringstream s;
  s << f.rdbuf();
  return s.str();
}

std::string Maiusculas(std::string s) {
  for (char& c : s) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return s;
}

std::string Aparado(std::string s) {
  s.erase(0, s.find_first_not_of(' '));
  s.erase(s.find_last_not_of(' ') + 1);
  return s;
}

// The help's search, written from its description alone, so that the pack
// is checked against the reader rather than against the code that wrote it.
std::optional<std::string> AchaPagina(const std::string& pacote, const std::string& pagina) {
  for (size_t i = 0; i < 300; ++i) {
    std::string slot = pacote.substr(i * 50, 50);
    if (Maiusculas(Aparado(slot.substr(0, 25))) != Maiusculas(pagina)) continue;
    size_t tamanho = std::stoul(Aparado(slot.substr(25, 10)));
    size_t posicao = std::stoul(Aparado(slot.substr(35, 15)));
    return pacote.substr(posicao - 1, tamanho);
  }
  return std::nullopt;
}

std::vector<std::string> PaginasEscritas() {
  std::vector<std::string> nomes{"Curso"};
  std::istringstream lista(Le(ZV_FONTE "/docs/reference/words.txt"));
  for (std::string w; std::getline(lista, w);)
    if (!w.empty() && fs::exists(fs::path(ZV_FONTE "/docs/reference/pages") / (w + ".md"))) nomes.push_back(w);
  return nomes;
}

// The page's first line, "# TITLE", without its mark.
std::string Titulo(const std::string& palavra) {
  std::istringstream md(Le(fs::path(ZV_FONTE "/docs/reference/pages") / (palavra + ".md")));
  std::string linha;
  std::getline(md, linha);
  return linha.substr(linha.find_first_not_of("# "));
}

class Pacote : public ::testing::Test {
 protected:
  void SetUp() override {
    pacote_ = Le(ZV_PACOTE);
    ASSERT_GE(pacote_.size(), 15000u) << ZV_PACOTE;
  }
  std::string pacote_;
};

TEST_F(Pacote, DirectoryChainsItsEntriesFromByte15001) {
  int64_t esperada = 15001, ultimoFim = 15000;
  size_t usados = 0;
  for (size_t i = 0; i < 300; ++i) {
    std::string slot = pacote_.substr(i * 50, 50);
    if (slot[0] == ' ') break;
    ++usados;
    int64_t tamanho = std::stoll(Aparado(slot.substr(25, 10)));
    int64_t posicao = std::stoll(Aparado(slot.substr(35, 15)));
    EXPECT_EQ(posicao, esperada) << slot;
    ultimoFim = posicao - 1 + tamanho;
    esperada = posicao + tamanho + 1;
  }
  EXPECT_EQ(usados, PaginasEscritas().size());
  EXPECT_EQ(static_cast<int64_t>(pacote_.size()), ultimoFim);
}

TEST_F(Pacote, EveryWrittenPageIsFoundInAnyCaseAndIsRtf) {
  for (const std::string& w : PaginasEscritas()) {
    for (const std::string& nome : {w + ".rtf", Maiusculas(w) + ".RTF"}) {
      std::optional<std::string> rtf = AchaPagina(pacote_, nome);
      ASSERT_TRUE(rtf) << nome;
      EXPECT_EQ(rtf->rfind("{\\rtf1", 0), 0u) << nome;
      EXPECT_NE(rtf->find(Titulo(w)), std::string::npos) << nome << " doesn't hold its page's title";
    }
  }
}

TEST_F(Pacote, NamesMatchWhole) {
  ASSERT_TRUE(AchaPagina(pacote_, "Abs.rtf"));
  EXPECT_FALSE(AchaPagina(pacote_, "Ab.rtf"));
  EXPECT_FALSE(AchaPagina(pacote_, "AbsX.rtf"));
  EXPECT_FALSE(AchaPagina(pacote_, "Abs"));
}

TEST_F(Pacote, ExtractFileGivesTheSameBytes) {
  fs::path alvo = fs::temp_directory_path() / "zv_pacote_test.rtf";
  for (const std::string& w : PaginasEscritas()) {
    ASSERT_TRUE(ExtraiDoContainer(ZV_PACOTE, U(w + ".rtf"), alvo)) << w;
    EXPECT_EQ(Le(alvo), *AchaPagina(pacote_, w + ".rtf")) << w;
  }
  fs::remove(alvo);
}

}  // namespace
