// String and number rules that need no interpreter, as tables of cases; the
// commands around them are in tests/programs/text and number.
#include <gtest/gtest.h>

#include "library/numeros.h"
#include "library/textos.h"

namespace zv {
namespace {

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

}  // namespace
}  // namespace zv
