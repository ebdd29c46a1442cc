// The currency field's arithmetic: the display text, the lighter colour of
// a disabled field, and the value read from the raw text.
#include <gtest/gtest.h>

#include "controls/entra_num.h"

namespace zv {
namespace {

TEST(FormataMoeda, GroupsDecimalsSignsAndTheTemplatesLimits) {
  EXPECT_EQ(FormataMoeda(QStringLiteral("1234.5"), 2), QStringLiteral("1.234,50"));
  EXPECT_EQ(FormataMoeda(QStringLiteral("0"), 2), QStringLiteral("0,00"));
  EXPECT_EQ(FormataMoeda(QString(), 2), QStringLiteral("0,00"));
  EXPECT_EQ(FormataMoeda(QStringLiteral("1234"), 0), QStringLiteral("1.234"));
  EXPECT_EQ(FormataMoeda(QStringLiteral("-0.5"), 1), QStringLiteral("-0,5"));
  EXPECT_EQ(FormataMoeda(QStringLiteral("+7"), 2), QStringLiteral("7,00"));
  EXPECT_EQ(FormataMoeda(QStringLiteral("-"), 2), QStringLiteral("-0,00"));
  EXPECT_EQ(FormataMoeda(QStringLiteral("1000000"), 2), QStringLiteral("1.000.000,00"));
  // Typed decimals beyond the places still show; the template holds six.
  EXPECT_EQ(FormataMoeda(QStringLiteral("1.567"), 2), QStringLiteral("1,567"));
  EXPECT_EQ(FormataMoeda(QStringLiteral("0.1234567"), 9), QStringLiteral("0,123456"));
  // Fifteen integer places: a sixteenth digit, the leading one, is lost.
  EXPECT_EQ(FormataMoeda(QStringLiteral("1234567890123456"), 0), QStringLiteral("234.567.890.123.456"));
}

TEST(FormataMoeda, DecimalsTypedSoFar) {
  EXPECT_EQ(CasasDigitadas(QStringLiteral("12")), 0);
  EXPECT_EQ(CasasDigitadas(QStringLiteral("12.")), 0);
  EXPECT_EQ(CasasDigitadas(QStringLiteral("12.34")), 2);
  EXPECT_EQ(CasasDigitadas(QStringLiteral("1.2.3")), 3);
}

TEST(Clareia, TheLeadingComponentsStayAndTheOthersRise) {
  EXPECT_EQ(Clareia(QColor(0, 0, 0), 255, 100), QColor(100, 100, 100));      // 6: all three
  EXPECT_EQ(Clareia(QColor(255, 0, 0), 255, 100), QColor(255, 100, 100));    // 0: G, B
  EXPECT_EQ(Clareia(QColor(0, 0, 255), 255, 100), QColor(100, 100, 255));    // 2: R, G
  EXPECT_EQ(Clareia(QColor(0, 200, 0), 255, 100), QColor(100, 200, 100));    // 1: R, B
  EXPECT_EQ(Clareia(QColor(0, 128, 128), 255, 100), QColor(100, 128, 128));  // 5: R
  EXPECT_EQ(Clareia(QColor(200, 200, 0), 255, 100), QColor(200, 200, 100));  // 3: B
  // A component that would reach the limit stays.
  EXPECT_EQ(Clareia(QColor(160, 160, 160), 255, 100), QColor(160, 160, 160));
}

TEST(ValorDoTexto, TheLeadingNumberOnly) {
  EXPECT_DOUBLE_EQ(ValorDoTexto(QStringLiteral("1234.5")), 1234.5);
  EXPECT_DOUBLE_EQ(ValorDoTexto(QStringLiteral("1.2.3")), 1.2);
  EXPECT_DOUBLE_EQ(ValorDoTexto(QStringLiteral("-")), 0);
  EXPECT_DOUBLE_EQ(ValorDoTexto(QStringLiteral("12-")), 12);
  EXPECT_DOUBLE_EQ(ValorDoTexto(QStringLiteral(" -.5")), -0.5);
  EXPECT_DOUBLE_EQ(ValorDoTexto(QStringLiteral("0.")), 0);
  EXPECT_DOUBLE_EQ(ValorDoTexto(QStringLiteral("abc")), 0);
}

}  // namespace
}  // namespace zv
