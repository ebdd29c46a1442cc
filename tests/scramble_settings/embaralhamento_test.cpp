// The one text scrambling of the system, byte for byte.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>

#include "data/embaralhamento.h"

namespace zv {
namespace {

using namespace std::string_literals;

std::string Hex(std::string_view s) {
  static const char* d = "0123456789abcdef";
  std::string r;
  for (unsigned char c : s) {
    r += d[c >> 4];
    r += d[c & 15];
  }
  return r;
}

uint64_t Fnv1a(std::string_view s) {
  uint64_t h = 0xcbf29ce484222325ull;
  for (unsigned char c : s) h = (h ^ c) * 0x100000001b3ull;
  return h;
}

// Record files and built executables of every earlier build must stay
// readable: the keys may never change, not even by one character. The 255
// at the end of the text wraps its sum past 256 under both keys.
TEST(Embaralha, KeysNeverChange) {
  const uint64_t esperado[10] = {0x522f60b653e8d90d, 0x56269d33397d14c7, 0x7d33cd7ed223b242, 0x45bca6e086ce2e8c,
                                 0x6bc36e005e55ab07, 0xcba3a253c4b487ff, 0xabcdc812e8941d5a, 0xc468347b2a0f79a3,
                                 0xbe5d7b5b32fe819b, 0xb4985df9625ae55d};
  for (int k = 0; k < 10; ++k) EXPECT_EQ(Fnv1a(TabelaChaves[k]), esperado[k]) << "key " << k;
  const std::string texto = "Zarvolt 2024\0\xff"s;
  EXPECT_EQ(Hex(EmbaralhaComChave(texto, 3)), "0f000000fc58f55d20706eb6a7585a6884b483");
  EXPECT_EQ(Hex(EmbaralhaComChave(texto, 9)), "0f000000f6cb7464681b2621687b38596b95bf");
}

TEST(Embaralha, LayoutUnderEveryKey) {
  const std::string texto = "Nome do campo";
  for (int k = 0; k < 10; ++k) {
    std::string s = EmbaralhaComChave(texto, k);
    ASSERT_EQ(s.size(), texto.size() + 5);
    EXPECT_EQ(s.substr(0, 4), "\x0e\0\0\0"s);
    EXPECT_EQ(static_cast<unsigned char>(s[4]), 255 - k);
    for (size_t i = 0; i < texto.size(); ++i) {
      unsigned soma = (static_cast<unsigned char>(texto[i]) + static_cast<unsigned char>(TabelaChaves[k][i])) % 256;
      EXPECT_EQ(static_cast<unsigned char>(s[5 + i]), 255 - soma) << "key " << k << " char " << i;
    }
    EXPECT_EQ(Desembaralha(s), texto);
  }
}

TEST(Embaralha, EmptyTextIsFiveBytes) {
  for (int k = 0; k < 10; ++k) {
    std::string s = EmbaralhaComChave("", k);
    EXPECT_EQ(s, "\x01\0\0\0"s + static_cast<char>(255 - k));
    std::string t = "junk";
    EXPECT_TRUE(DesembaralhaSeguro(s, t));
    EXPECT_EQ(t, "");
  }
}

TEST(Embaralha, LongTextsWrapTheKey) {
  for (int k : {0, 3, 9}) {
    size_t n = TabelaChaves[k].size();
    std::string texto(3 * n + 7, 'x');
    std::string s = EmbaralhaComChave(texto, k);
    // The same character at the same place of the key stores the same byte.
    EXPECT_EQ(s[5], s[5 + n]);
    EXPECT_EQ(s[5 + n - 1], s[5 + 2 * n - 1]);
    EXPECT_EQ(s[5 + 6], s[5 + 3 * n + 6]);
    EXPECT_EQ(Desembaralha(s), texto);
  }
}

TEST(Embaralha, BinaryBytesSurvive) {
  int32_t inteiro = 0x00010000;
  double duplo = 1.0;  // 00 00 00 00 00 00 F0 3F
  std::string todos;
  for (int b = 0; b < 256; ++b) todos += static_cast<char>(b);
  for (std::string texto : {std::string(reinterpret_cast<char*>(&inteiro), 4),
                            std::string(reinterpret_cast<char*>(&duplo), 8), todos, std::string(1000, '\0')}) {
    for (int vez = 0; vez < 20; ++vez) {
      std::string s = Embaralha(texto);
      ASSERT_EQ(s.size(), texto.size() + 5);
      EXPECT_GE(static_cast<unsigned char>(s[4]), 246);  // a key of 0 to 9
      EXPECT_EQ(Desembaralha(s), texto);
    }
  }
}

TEST(Embaralha, BytesBehindTheStoredFormAreIgnored) {
  std::string s = EmbaralhaComChave("valor", 5);
  for (std::string cauda : {"     "s, "\0\0\xff"s, EmbaralhaComChave("outro", 2)}) {
    EXPECT_EQ(Desembaralha(s + cauda), "valor");
    std::string t;
    EXPECT_TRUE(DesembaralhaSeguro(s + cauda, t));
    EXPECT_EQ(t, "valor");
  }
}

TEST(Embaralha, DamagedStoredForms) {
  std::string s = EmbaralhaComChave("abcdef", 4);
  std::string t = "untouched";
  // Cut short: the lenient reading gives what is there, the safe one refuses.
  EXPECT_EQ(Desembaralha(s.substr(0, 8)), "abc");
  EXPECT_FALSE(DesembaralhaSeguro(s.substr(0, 8), t));
  // Too short for a header, a length of 0, a key number above 9.
  std::string semChave = s;
  semChave[4] = static_cast<char>(255 - 10);
  for (std::string ruim : {""s, "\x07\0\0"s, "\0\0\0\0\xff"s, semChave, "\xff\xff\xff\xff\xf6"s}) {
    EXPECT_FALSE(DesembaralhaSeguro(ruim, t)) << Hex(ruim);
    EXPECT_EQ(t, "untouched");
  }
  EXPECT_EQ(Desembaralha(semChave), "");
  EXPECT_EQ(Desembaralha("\xff\xff\xff\xff\xf6"s), "");  // a huge length over nothing
}

TEST(ComplementaTexto, EachByteBecomesItsComplement) {
  EXPECT_EQ(ComplementaTexto("Ab1"), "\xbe\x9d\xce");
  EXPECT_EQ(ComplementaTexto("\0\xff"s), "\xff\0"s);
  std::string todos;
  for (int b = 0; b < 256; ++b) todos += static_cast<char>(b);
  EXPECT_EQ(ComplementaTexto(ComplementaTexto(todos)), todos);
}

}  // namespace
}  // namespace zv
