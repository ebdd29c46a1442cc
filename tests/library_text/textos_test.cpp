// String and number algorithms that need no interpreter.
#include <gtest/gtest.h>

#include "library/numeros.h"
#include "library/textos.h"

namespace zv {
namespace {

TEST(StrPos, ForwardAndReverse) {
  EXPECT_EQ(PosicaoTexto(u"abcabc", u"c", 1), 3);
  EXPECT_EQ(PosicaoTexto(u"abcabc", u"c", 4), 6);
  EXPECT_EQ(PosicaoTexto(u"abcabc", u"C", 1), 0);  // case counts
  EXPECT_EQ(PosicaoTexto(u"abcabc", u"c", 7), 0);
  EXPECT_EQ(PosicaoTexto(u"abc", u"", 2), 2);
  EXPECT_EQ(PosicaoReversa(u"abcabc", u"c", -1), 6);
  EXPECT_EQ(PosicaoReversa(u"abcabc", u"c", 5), 3);
  // A hit must lie wholly before the end given.
  EXPECT_EQ(PosicaoReversa(u"abcabc", u"bc", 5), 2);
  EXPECT_EQ(PosicaoReversa(u"abcabc", u"c", 9), 0);
  EXPECT_EQ(PosicaoReversa(u"abcabc", u"x", -1), 0);
  EXPECT_THROW(PosicaoTexto(u"abc", u"a", 0), FalhaHost);
  EXPECT_THROW(PosicaoReversa(u"abc", u"a", 0), FalhaHost);
}

TEST(RepStr, OverwritesWithinTheOldLength) {
  EXPECT_EQ(SobrescreveTrecho(u"abcd", u"XY", 2, 0), u"aXYd");
  EXPECT_EQ(SobrescreveTrecho(u"abcd", u"XYZ", 3, 0), u"abXY");
  EXPECT_EQ(SobrescreveTrecho(u"abcd", u"XYZ", 1, 2), u"XYcd");
  EXPECT_EQ(SobrescreveTrecho(u"abcd", u"", 1, 0), u"abcd");
  EXPECT_THROW(SobrescreveTrecho(u"abcd", u"X", 5, 0), FalhaHost);
  EXPECT_THROW(SobrescreveTrecho(u"abcd", u"X", 0, 0), FalhaHost);
  EXPECT_THROW(SobrescreveTrecho(u"", u"X", 1, 0), FalhaHost);
}

TEST(TestEmail, ShapeRules) {
  EXPECT_TRUE(TestaEmail(u"ab@cd.ef"));
  EXPECT_FALSE(TestaEmail(u"a@b.c"));        // shorter than 7
  EXPECT_FALSE(TestaEmail(u"  a@b.cd  "));   // blanks don't count
  EXPECT_FALSE(TestaEmail(u"abcdefgh@ij"));  // no point
  EXPECT_FALSE(TestaEmail(u"abcd.efgh"));    // no @
  EXPECT_FALSE(TestaEmail(u"ab@cd@ef.gh"));
  EXPECT_FALSE(TestaEmail(u"@abcd.efg"));
  EXPECT_FALSE(TestaEmail(u"abcd.efg@"));
  EXPECT_FALSE(TestaEmail(u""));
}

TEST(Round, HalvesGoToEven) {
  EXPECT_DOUBLE_EQ(ArredondaCasas(2.5, 0), 2);
  EXPECT_DOUBLE_EQ(ArredondaCasas(3.5, 0), 4);
  EXPECT_DOUBLE_EQ(ArredondaCasas(-2.5, 0), -2);
  EXPECT_DOUBLE_EQ(ArredondaCasas(-2.51, 0), -3);
  EXPECT_DOUBLE_EQ(ArredondaCasas(0.125, 2), 0.12);
  EXPECT_DOUBLE_EQ(ArredondaCasas(0.135, 2), 0.14);
  // Rounded as the number reads, not as its binary value lies.
  EXPECT_DOUBLE_EQ(ArredondaCasas(2.675, 2), 2.68);
  EXPECT_DOUBLE_EQ(ArredondaCasas(9.995, 2), 10);
  EXPECT_DOUBLE_EQ(ArredondaCasas(1.23456, 3), 1.235);
  EXPECT_DOUBLE_EQ(ArredondaCasas(7, 2), 7);
  EXPECT_DOUBLE_EQ(ArredondaCasas(1e20, 0), 1e20);
  EXPECT_THROW(ArredondaCasas(1.5, -1), FalhaHost);
}

TEST(Binary, BinToDecWeighsFromTheRight) {
  EXPECT_EQ(BinarioParaDecimal(u"101"), 5);
  EXPECT_EQ(BinarioParaDecimal(u"00000000"), 0);
  EXPECT_EQ(BinarioParaDecimal(u"11111111"), 255);
  EXPECT_EQ(BinarioParaDecimal(u"1x1"), 5);  // other characters count as 0
  EXPECT_EQ(BinarioParaDecimal(u""), 0);
  EXPECT_EQ(BinarioParaDecimal(Texto(14, u'1')), 16383);
  // The weight overflows 16 bits behind the 15th character.
  EXPECT_THROW(BinarioParaDecimal(Texto(15, u'0')), FalhaHost);
}

TEST(Binary, DecToBinGivesEightDigits) {
  EXPECT_EQ(DecimalParaBinario(5), u"00000101");
  EXPECT_EQ(DecimalParaBinario(0), u"00000000");
  EXPECT_EQ(DecimalParaBinario(128), u"10000000");
  EXPECT_EQ(DecimalParaBinario(255), u"11111111");
  EXPECT_EQ(DecimalParaBinario(300), u"11111111");
  EXPECT_EQ(DecimalParaBinario(-3), u"00000000");
}

}  // namespace
}  // namespace zv
