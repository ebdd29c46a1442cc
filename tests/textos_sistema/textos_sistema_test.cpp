// Every text a user reads in a box or a message lives in its subsystem's
// table, a file named mensagens.h; code names the table's entries. This test
// reads the production sources and fails on a message written anywhere else.
//
// The rule for "a message": a string literal (outside comments, #include
// lines and static_assert) that holds two words side by side, one blank
// between them, both of at least two letters, one of them starting with a
// small letter and holding a vowel: "Can't read {}", "Disk full", "Path not
// found!". Keywords, type names, date patterns ("d MMMM yyyy") and font names
// ("Courier New") don't read so. The tools in apps/ print their own usage and
// reports on a terminal and are not scanned.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace {

namespace fs = std::filesystem;

struct Literal {
  int linha;
  std::string texto;  // escapes worked out; a non-ASCII escape becomes a letter
};

bool ELetraInicial(char c) { return std::isalpha(static_cast<unsigned char>(c)) || c == '_'; }
bool ELetraDeNome(char c) { return std::isalnum(static_cast<unsigned char>(c)) || c == '_'; }

// The text of a literal's escapes as a reader sees it. Only the shape
// matters: \r \n \t break words, a character given by number is a letter.
std::string TiraEscapes(std::string_view s) {
  std::string r;
  for (size_t i = 0; i < s.size(); ++i) {
    if (s[i] != '\\' || i + 1 == s.size()) {
      r += s[i];
      continue;
    }
    char c = s[++i];
    switch (c) {
      case 'n': case 'r': case 't': r += '\n'; break;
      case 'u': case 'U': case 'x': case '0': case '1': case '2': case '3':
      case '4': case '5': case '6': case '7': {
        r += '\x80';
        while (i + 1 < s.size() && std::isxdigit(static_cast<unsigned char>(s[i + 1]))) ++i;
        break;
      }
      default: r += c;
    }
  }
  return r;
}

// The string literals of a C++ source, with the line each starts on.
std::vector<Literal> LeLiterais(std::string_view f) {
  std::vector<Literal> r;
  int linha = 1;
  bool inicioDeLinha = true;
  bool emStaticAssert = false;
  std::string nome;  // the identifier or number just read
  for (size_t i = 0; i < f.size();) {
    char c = f[i];
    if (c == '\n') {
      ++linha;
      inicioDeLinha = true;
      nome.clear();
      ++i;
      continue;
    }
    if (inicioDeLinha && c == '#' && f.compare(i, 8, "#include") == 0) {
      while (i < f.size() && f[i] != '\n') ++i;
      continue;
    }
    if (c != ' ' && c != '\t') inicioDeLinha = false;
    if (f.compare(i, 2, "//") == 0) {
      while (i < f.size() && f[i] != '\n') ++i;
      continue;
    }
    if (f.compare(i, 2, "/*") == 0) {
      size_t e = f.find("*/", i + 2);
      e = e == std::string_view::npos ? f.size() : e + 2;
      linha += static_cast<int>(std::count(f.begin() + i, f.begin() + e, '\n'));
      i = e;
      nome.clear();
      continue;
    }
    if (c == '\'') {
      // A digit separator (50'000) or a character literal (u'x', '"').
      bool numero = !nome.empty() && std::isdigit(static_cast<unsigned char>(nome[0]));
      if (numero) {
        ++i;
        continue;
      }
      for (++i; i < f.size() && f[i] != '\''; ++i)
        if (f[i] == '\\') ++i;
      ++i;
      nome.clear();
      continue;
    }
    if (c == '"') {
      bool cru = !nome.empty() && nome.back() == 'R' &&
                 (nome == "R" || nome == "uR" || nome == "UR" || nome == "LR" || nome == "u8R");
      int inicio = linha;
      std::string corpo;
      if (cru) {
        size_t a = f.find('(', i);
        std::string fim = ")" + std::string(f.substr(i + 1, a - i - 1)) + "\"";
        size_t e = f.find(fim, a);
        if (e == std::string_view::npos) e = f.size();
        corpo = std::string(f.substr(a + 1, e - a - 1));
        linha += static_cast<int>(std::count(corpo.begin(), corpo.end(), '\n'));
        i = std::min(f.size(), e + fim.size());
      } else {
        size_t j = i + 1;
        for (; j < f.size() && f[j] != '"' && f[j] != '\n'; ++j)
          if (f[j] == '\\') ++j;
        corpo = TiraEscapes(f.substr(i + 1, j - i - 1));
        i = j + 1;
      }
      if (!emStaticAssert) r.push_back({inicio, corpo});
      nome.clear();
      continue;
    }
    if (ELetraDeNome(c) && (!nome.empty() || ELetraInicial(c) || std::isdigit(static_cast<unsigned char>(c)))) {
      nome += c;
      if (nome == "static_assert" && (i + 1 == f.size() || !ELetraDeNome(f[i + 1]))) emStaticAssert = true;
      ++i;
      continue;
    }
    if (c == ';') emStaticAssert = false;
    nome.clear();
    ++i;
  }
  return r;
}

bool ELetraDePalavra(char c) {
  return std::isalpha(static_cast<unsigned char>(c)) || c == '\'' || static_cast<unsigned char>(c) >= 0x80;
}

bool EPalavraComum(std::string_view p) {
  if (p.size() < 2 || !std::islower(static_cast<unsigned char>(p[0]))) return false;
  return p.find_first_of("aeiou\x80") != std::string_view::npos;
}

// True when a literal reads like a sentence for a person (see the top).
bool EMensagem(std::string_view t) {
  std::vector<std::pair<std::string_view, size_t>> palavras;  // word, where it starts
  for (size_t i = 0; i < t.size();) {
    if (!ELetraDePalavra(t[i])) {
      ++i;
      continue;
    }
    size_t j = i;
    while (j < t.size() && ELetraDePalavra(t[j])) ++j;
    palavras.emplace_back(t.substr(i, j - i), i);
    i = j;
  }
  for (size_t k = 0; k + 1 < palavras.size(); ++k) {
    auto [a, pa] = palavras[k];
    auto [b, pb] = palavras[k + 1];
    bool vizinhas = pb == pa + a.size() + 1 && t[pa + a.size()] == ' ';
    if (vizinhas && a.size() >= 2 && b.size() >= 2 && (EPalavraComum(a) || EPalavraComum(b))) return true;
  }
  return false;
}

const char* const kPastas[] = {"core", "library", "data", "environment", "runtime"};

bool ETabela(const fs::path& p) { return p.stem() == "mensagens"; }

std::string Le(const fs::path& p) {
  std::ifstream in(p, std::ios::binary);
  std::stringstream s;
  s << in.rdbuf();
  return s.str();
}

// Every production source, by its path from the top of the tree.
std::map<std::string, std::string> Fontes() {
  std::map<std::string, std::string> r;
  const fs::path raiz = ZV_RAIZ;
  for (const char* pasta : kPastas) {
    if (!fs::is_directory(raiz / pasta)) continue;
    for (const auto& e : fs::recursive_directory_iterator(raiz / pasta)) {
      const auto ext = e.path().extension();
      if (e.is_regular_file() && (ext == ".h" || ext == ".cpp"))
        r[fs::relative(e.path(), raiz).generic_string()] = Le(e.path());
    }
  }
  return r;
}

// ---- The reader itself --------------------------------------------------------

TEST(LeituraDeLiterais, PassesOverCommentsIncludesAndStaticAsserts) {
  auto l = LeLiterais(
      "#include \"core/texto.h\"\n"
      "// \"a comment's text\"\n"
      "/* \"a block\n comment\" */ int x = 1; \n"
      "static_assert(sizeof(int) == 4, \"the record format wants it\");\n"
      "Texto t = u\"Type mismatch\";\n");
  ASSERT_EQ(l.size(), 1u);
  EXPECT_EQ(l[0].texto, "Type mismatch");
  EXPECT_EQ(l[0].linha, 6);
}

TEST(LeituraDeLiterais, CharactersSeparatorsEscapesAndRawTexts) {
  auto l = LeLiterais(
      "double m = 50'000'000; char q = '\"'; char16_t a = u'\\'';\n"
      "auto s = u\"say \\\"hi\\\" now\";\n"
      "auto r = R\"x(raw \"quoted\" text)x\";\n"
      "auto v = u\"a\\r\\nb\";\n");
  ASSERT_EQ(l.size(), 3u);
  EXPECT_EQ(l[0].texto, "say \"hi\" now");
  EXPECT_EQ(l[0].linha, 2);
  EXPECT_EQ(l[1].texto, "raw \"quoted\" text");
  EXPECT_EQ(l[2].texto, "a\n\nb");
}

TEST(LeituraDeLiterais, WhatReadsLikeAMessage) {
  for (const char* m : {"Can't read {}: undeclared variable!", "Error in command ", "Disk full",
                        "Arquivo n\xc3\xa3o encontrado!", "Arquivo n\x80o encontrado!", "{} - Alias file not found: {}",
                        "Invalid position:{}\nPositions range from 0"})
    EXPECT_TRUE(EMensagem(m)) << m;
  for (const char* n : {"Courier New", "d MMMM yyyy", "RetStr String, RetValue Decimal", "GENERAL DATE", "Sub ",
                        "hh:mm AP", "Overflow", "Editor: {} Line: {}", "{\"box\":\"", "#ZV7#"})
    EXPECT_FALSE(EMensagem(n)) << n;
}

// ---- The sources ------------------------------------------------------------

TEST(TextosDoSistema, NoMessageOutsideItsTable) {
  auto fontes = Fontes();
  ASSERT_GT(fontes.size(), 20u) << "no sources found under " << ZV_RAIZ;
  std::string fora;
  for (const auto& [caminho, texto] : fontes) {
    if (ETabela(caminho)) continue;
    for (const Literal& l : LeLiterais(texto))
      if (EMensagem(l.texto)) fora += "\n  " + caminho + ":" + std::to_string(l.linha) + ": \"" + l.texto + "\"";
  }
  EXPECT_TRUE(fora.empty()) << "A message belongs in its subsystem's mensagens.h; found elsewhere:" << fora;
}

TEST(TextosDoSistema, EachMessageStandsOnceInTheTables) {
  std::map<std::string, std::vector<std::string>> onde;
  for (const auto& [caminho, texto] : Fontes()) {
    if (!ETabela(caminho)) continue;
    for (const Literal& l : LeLiterais(texto))
      if (EMensagem(l.texto)) onde[l.texto].push_back(caminho + ":" + std::to_string(l.linha));
  }
  ASSERT_FALSE(onde.empty());
  for (const auto& [texto, lugares] : onde) {
    std::string lista;
    for (const auto& l : lugares) lista += " " + l;
    EXPECT_EQ(lugares.size(), 1u) << "\"" << texto << "\" stands in more than one place:" << lista;
  }
}

// The wrapper that reports a command's failure is the only place its prefix
// is written; every other failure text is built on it.
TEST(TextosDoSistema, TheCommandPrefixIsWrittenOnce) {
  int vezes = 0;
  for (const auto& [caminho, texto] : Fontes())
    for (const Literal& l : LeLiterais(texto))
      if (l.texto.find("Error in command") != std::string::npos) ++vezes;
  EXPECT_EQ(vezes, 1);
}

}  // namespace
