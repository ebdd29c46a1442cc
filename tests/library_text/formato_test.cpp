// Format's number and date patterns.
#include <gtest/gtest.h>

#include "library/datas.h"
#include "library/formato.h"

namespace zv {
namespace {

const QLocale kEUA(QLocale::English, QLocale::UnitedStates);
const QLocale kBrasil(QLocale::Portuguese, QLocale::Brazil);

Texto N(double v, TextoV padrao, const QLocale& l = kEUA) { return FormataNumero(v, padrao, l); }

TEST(FormatNumber, DigitPlaces) {
  EXPECT_EQ(N(7, u"00"), u"07");
  EXPECT_EQ(N(1234.5, u"#,##0.00"), u"1,234.50");
  EXPECT_EQ(N(1234567.891, u"#,##0.##"), u"1,234,567.89");
  EXPECT_EQ(N(0.5, u"#.##"), u".5");
  EXPECT_EQ(N(1, u"#.##"), u"1.");
  EXPECT_EQ(N(1.5, u"0.0#"), u"1.5");
  EXPECT_EQ(N(1.556, u"0.0#"), u"1.56");
  EXPECT_EQ(N(0, u"#"), u"");
  EXPECT_EQ(N(0.5, u"0.00"), u"0.50");
  EXPECT_EQ(N(12345, u"00"), u"12345");
  EXPECT_EQ(N(5, u"#0#"), u"05");
  EXPECT_EQ(N(1e20, u"#,##0"), u"100,000,000,000,000,000,000");
  EXPECT_EQ(N(1.5, u".00"), u"1.50");
}

TEST(FormatNumber, HalvesRoundUpAsTheNumberReads) {
  EXPECT_EQ(N(2.5, u"0"), u"3");
  EXPECT_EQ(N(-2.5, u"0"), u"-3");
  EXPECT_EQ(N(0.125, u"0.00"), u"0.13");
  EXPECT_EQ(N(1.005, u"0.00"), u"1.01");
  EXPECT_EQ(N(9.999, u"0.00"), u"10.00");
  // A negative that rounds to nothing loses its sign.
  EXPECT_EQ(N(-0.001, u"0.00"), u"0.00");
}

TEST(FormatNumber, PercentScalingLiteralsAndSections) {
  EXPECT_EQ(N(0.256, u"0.0%"), u"25.6%");
  EXPECT_EQ(N(1234567, u"#,##0,"), u"1,235");
  EXPECT_EQ(N(1234567, u"0,,.0"), u"1.2");
  EXPECT_EQ(N(5551234567, u"(000) 000-0000"), u"(555) 123-4567");
  EXPECT_EQ(N(5, u"$0 \"kg\""), u"$5 kg");
  EXPECT_EQ(N(5, u"\\#0"), u"#5");
  EXPECT_EQ(N(-5, u"0"), u"-5");
  EXPECT_EQ(N(-5, u"$0"), u"-$5");
  EXPECT_EQ(N(-5, u"0;(0)"), u"(5)");
  EXPECT_EQ(N(5, u"0;(0)"), u"5");
  EXPECT_EQ(N(0, u"0;(0);\"zero\""), u"zero");
  EXPECT_EQ(N(-5, u"0;;\"zero\""), u"-5");
  EXPECT_EQ(N(3, u"\"a;b\" 0"), u"a;b 3");
}

TEST(FormatNumber, Exponents) {
  EXPECT_EQ(N(1234.5, u"0.00E+00"), u"1.23E+03");
  EXPECT_EQ(N(0.00012, u"0.0E-00"), u"1.2E-04");
  EXPECT_EQ(N(12, u"0.0E-00"), u"1.2E01");
  EXPECT_EQ(N(9.996, u"0.00E+00"), u"1.00E+01");
  EXPECT_EQ(N(0, u"0.00E+00"), u"0.00E+00");
}

TEST(FormatNumber, NamedFormats) {
  EXPECT_EQ(N(1234.5, u"General Number"), u"1234.5");
  EXPECT_EQ(N(1234.5, u"fixed"), u"1234.50");
  EXPECT_EQ(N(1234.5, u"Standard"), u"1,234.50");
  EXPECT_EQ(N(0.5, u"Percent"), u"50.00%");
  EXPECT_EQ(N(1234.5, u"Scientific"), u"1.23E+03");
  EXPECT_EQ(N(1234.5, u"Currency"), u"$1,234.50");
  EXPECT_EQ(N(-1234.5, u"Currency"), u"($1,234.50)");
  EXPECT_EQ(N(2, u"Yes/No"), u"Yes");
  EXPECT_EQ(N(0, u"On/Off"), u"Off");
  // The symbol and its place are the locale's; the digits stay ours.
  Texto real = N(1234.5, u"Currency", kBrasil);
  EXPECT_EQ(real.substr(0, 2), u"R$");
  EXPECT_EQ(real.substr(real.size() - 8), u"1,234.50");
}

// Wednesday 31 January 2024, 13:05:07.
QDateTime Exemplo() { return Momento(QDate(2024, 1, 31), QTime(13, 5, 7)); }

Texto D(TextoV padrao, const QLocale& l = kEUA) { return FormataMomento(Exemplo(), padrao, l); }

TEST(FormatDate, Letters) {
  EXPECT_EQ(D(u"dd/mm/yyyy"), u"31/01/2024");
  EXPECT_EQ(D(u"d/m/yy"), u"31/1/24");
  EXPECT_EQ(D(u"DD-MM-YYYY"), u"31-01-2024");
  EXPECT_EQ(D(u"dddd, mmmm d"), u"Wednesday, January 31");
  EXPECT_EQ(D(u"ddd mmm"), u"Wed Jan");
  EXPECT_EQ(D(u"dddd", kBrasil), u"quarta-feira");
  EXPECT_EQ(D(u"hh:nn:ss"), u"13:05:07");
  // m behind an hour or before seconds is the minute.
  EXPECT_EQ(D(u"hh:mm"), u"13:05");
  EXPECT_EQ(D(u"mm:ss"), u"05:07");
  EXPECT_EQ(D(u"h:mm AM/PM"), u"1:05 PM");
  EXPECT_EQ(D(u"hh:mm am/pm"), u"01:05 pm");
  EXPECT_EQ(D(u"h a/p"), u"1 p");
  EXPECT_EQ(D(u"w ww q y"), u"4 5 1 31");
  EXPECT_EQ(D(u"yyyy\\y \"at\" h"), u"2024y at 13");
  EXPECT_EQ(FormataMomento(Momento(QDate(2024, 1, 1), QTime(0, 30)), u"h:nn AM/PM", kEUA), u"12:30 AM");
}

TEST(FormatDate, NamedFormatsFollowTheLocale) {
  EXPECT_EQ(D(u"Short Date"), u"1/31/2024");
  EXPECT_EQ(D(u"Short Date", kBrasil), u"31/01/2024");
  EXPECT_EQ(D(u"Long Date"), u"Wednesday, January 31, 2024");
  EXPECT_EQ(D(u"Short Time"), u"13:05");
  EXPECT_EQ(D(u"Long Time"), u"1:05:07 PM");
  EXPECT_EQ(D(u"long time", kBrasil), u"13:05:07");
  EXPECT_EQ(D(u"Medium Time"), u"01:05 PM");
  EXPECT_EQ(D(u"General Date"), u"1/31/2024 1:05:07 PM");
  EXPECT_EQ(D(u"Medium Date"), u"31-Jan-24");
  EXPECT_EQ(D(u"ddddd|dddddd"), u"1/31/2024|Wednesday, January 31, 2024");
  EXPECT_EQ(D(u"ttttt AMPM"), u"1:05:07 PM PM");
}

TEST(Format, ValueKindAndPatternKind) {
  EXPECT_TRUE(PadraoDeData(u"dd/mm/yyyy"));
  EXPECT_TRUE(PadraoDeData(u"Short Time"));
  EXPECT_TRUE(PadraoDeData(u"h AM/PM"));
  EXPECT_FALSE(PadraoDeData(u"#,##0.00"));
  EXPECT_FALSE(PadraoDeData(u"Standard"));
  EXPECT_FALSE(PadraoDeData(u"0 \"days\""));
  EXPECT_FALSE(PadraoDeData(u"0.0E+00"));

  EXPECT_EQ(FormataValor(u"7", u"00", kEUA), u"07");
  EXPECT_EQ(FormataValor(u"1/31/2024", u"yyyy-mm-dd", kEUA), u"2024-01-31");
  EXPECT_EQ(FormataValor(u"31/01/2024", u"mmmm", kBrasil), u"janeiro");
  // A number under a date pattern is a day count, a date under a number
  // pattern is its day count.
  EXPECT_EQ(FormataValor(u"45322", u"dd/mm/yyyy", kEUA), u"31/01/2024");
  EXPECT_EQ(FormataValor(u"2024-01-31", u"0", kEUA), u"45322");
  EXPECT_EQ(FormataValor(u"abc", u"00", kEUA), u"abc");
  EXPECT_EQ(FormataValor(u"12.5", u"", kEUA), u"12.5");
}

}  // namespace
}  // namespace zv
