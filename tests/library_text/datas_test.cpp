// Reading, writing and counting dates.
#include <gtest/gtest.h>

#include "library/datas.h"

namespace zv {
namespace {

const QLocale kEUA(QLocale::English, QLocale::UnitedStates);
const QLocale kBrasil(QLocale::Portuguese, QLocale::Brazil);
const QLocale kAlemanha(QLocale::German, QLocale::Germany);

QDateTime Lido(TextoV t, const QLocale& l = kEUA) {
  QDateTime m;
  return LeData(t, l, m) ? m : QDateTime();
}

QDateTime M(int a, int me, int d, int h = 0, int mi = 0, int s = 0) { return Momento(QDate(a, me, d), QTime(h, mi, s)); }

TEST(DateText, ShortFormHasFourDigitYears) {
  EXPECT_EQ(FormatoDataCurta(kEUA), QStringLiteral("M/d/yyyy"));
  EXPECT_EQ(FormatoDataCurta(kBrasil), QStringLiteral("dd/MM/yyyy"));
  EXPECT_EQ(FormatoDataCurta(kAlemanha), QStringLiteral("dd.MM.yyyy"));
  EXPECT_EQ(TextoMomento(M(2024, 1, 31), kEUA), u"1/31/2024");
  EXPECT_EQ(TextoMomento(M(2024, 1, 31), kAlemanha), u"31.01.2024");
  EXPECT_EQ(TextoMomento(M(2024, 1, 31, 13, 5, 7), kEUA), u"1/31/2024 1:05:07 PM");
  EXPECT_EQ(TextoMomento(M(2024, 1, 31, 13, 5, 7), kBrasil), u"31/01/2024 13:05:07");
  // A time alone lies on day 0 and shows no date.
  EXPECT_EQ(TextoMomento(M(1899, 12, 30, 8, 0, 0), kBrasil), u"08:00:00");
}

TEST(DateText, DayAndMonthOrderFollowTheLocale) {
  EXPECT_EQ(Lido(u"05/03/2024", kEUA), M(2024, 5, 3));
  EXPECT_EQ(Lido(u"05/03/2024", kBrasil), M(2024, 3, 5));
  EXPECT_EQ(Lido(u"31.1.2024", kAlemanha), M(2024, 1, 31));
  EXPECT_EQ(Lido(u"31-01-2024", kBrasil), M(2024, 1, 31));
  EXPECT_FALSE(Lido(u"31/01/2024", kEUA).isValid());
  // Year first reads the same everywhere.
  EXPECT_EQ(Lido(u"2024-01-31", kEUA), M(2024, 1, 31));
  EXPECT_EQ(Lido(u"2024-01-31", kBrasil), M(2024, 1, 31));
  EXPECT_EQ(Lido(u"1/2/29"), M(2029, 1, 2));
  EXPECT_EQ(Lido(u"1/2/30"), M(1930, 1, 2));
}

TEST(DateText, NamesTimesAndRejects) {
  EXPECT_EQ(Lido(u"31 January 2024"), M(2024, 1, 31));
  EXPECT_EQ(Lido(u"Jan 31, 2024"), M(2024, 1, 31));
  EXPECT_EQ(Lido(u"31 de janeiro de 2024", kBrasil), M(2024, 1, 31));
  EXPECT_EQ(Lido(u"31 January 2024", kBrasil), M(2024, 1, 31));
  EXPECT_EQ(Lido(u"1/31/2024 1:05:07 PM"), M(2024, 1, 31, 13, 5, 7));
  EXPECT_EQ(Lido(u"1/31/2024 12:05 am"), M(2024, 1, 31, 0, 5));
  EXPECT_EQ(Lido(u" 2024-01-31T10:30 "), M(2024, 1, 31, 10, 30));
  EXPECT_EQ(Lido(u"13:05"), M(1899, 12, 30, 13, 5));
  for (const char16_t* mau : {u"", u"abc", u"2024", u"2/30/2024", u"1/1/99999", u"1/1/0050", u"25:00",
                              u"1/31/2024 13:00 PM", u"1/31/2024x", u"1//2024"})
    EXPECT_FALSE(Lido(mau).isValid()) << Utf8(mau);
}

TEST(DateText, WhatIsWrittenReadsBack) {
  for (const char* nome : {"en_US", "pt_BR", "de_DE", "es_ES", "fr_FR", "ja_JP", "en_GB"}) {
    QLocale l(QString::fromLatin1(nome));
    for (const QDateTime& m : {M(2024, 2, 29), M(1999, 12, 31, 23, 59, 59), M(2024, 7, 4, 0, 0, 1)}) {
      QDateTime lido;
      ASSERT_TRUE(LeData(TextoMomento(m, l), l, lido)) << nome << " " << Utf8(TextoMomento(m, l));
      EXPECT_EQ(lido, m) << nome;
    }
  }
}

TEST(DateValue, DaysSince1899) {
  EXPECT_DOUBLE_EQ(SerialDoMomento(M(2024, 1, 31)), 45322);
  EXPECT_DOUBLE_EQ(SerialDoMomento(M(1899, 12, 30, 12)), 0.5);
  EXPECT_DOUBLE_EQ(SerialDoMomento(M(1899, 12, 29, 6)), -1.25);
  QDateTime m;
  ASSERT_TRUE(MomentoDoSerial(-1.25, m));
  EXPECT_EQ(m, M(1899, 12, 29, 6));
  ASSERT_TRUE(MomentoDoSerial(45322.9999999, m));
  EXPECT_EQ(m, M(2024, 2, 1));
  EXPECT_FALSE(MomentoDoSerial(1e9, m));
  EXPECT_FALSE(MomentoDoSerial(-700000, m));
}

TEST(DateAdd, MonthEndsAndRange) {
  EXPECT_EQ(IntervaloDaUnidade(u" month "), Intervalo::Mes);
  EXPECT_EQ(IntervaloDaUnidade(u"DayYear"), Intervalo::DiaAno);
  EXPECT_EQ(IntervaloDaUnidade(u"Fortnight"), Intervalo::Nenhum);
  auto soma = [](Intervalo u, int64_t n, QDateTime m) {
    return SomaIntervalo(u, n, m) ? m : QDateTime();
  };
  EXPECT_EQ(soma(Intervalo::Mes, 1, M(2024, 1, 31)), M(2024, 2, 29));
  EXPECT_EQ(soma(Intervalo::Mes, 1, M(2023, 1, 31)), M(2023, 2, 28));
  EXPECT_EQ(soma(Intervalo::Mes, -2, M(2024, 3, 15, 8)), M(2024, 1, 15, 8));
  EXPECT_EQ(soma(Intervalo::Ano, 1, M(2024, 2, 29)), M(2025, 2, 28));
  EXPECT_EQ(soma(Intervalo::Ano, 1, M(2023, 3, 1)), M(2024, 3, 1));  // a year over a 29 February
  EXPECT_EQ(soma(Intervalo::Dia, -1, M(2024, 1, 1)), M(2023, 12, 31));
  EXPECT_EQ(soma(Intervalo::Semana, 2, M(2024, 1, 31)), M(2024, 2, 14));
  EXPECT_EQ(soma(Intervalo::Hora, 25, M(2024, 1, 31, 23)), M(2024, 2, 2, 0));
  EXPECT_EQ(soma(Intervalo::Segundo, -1, M(2024, 1, 1)), M(2023, 12, 31, 23, 59, 59));
  EXPECT_FALSE(soma(Intervalo::Ano, 8000, M(2024, 1, 1)).isValid());
  EXPECT_FALSE(soma(Intervalo::Dia, 1, M(9999, 12, 31)).isValid());
}

TEST(DateDiff, CountsBoundariesCrossed) {
  QDateTime reveillon = M(2023, 12, 31, 23, 59, 59), anoNovo = M(2024, 1, 1);
  EXPECT_EQ(DiferencaIntervalo(Intervalo::Ano, reveillon, anoNovo), 1);
  EXPECT_EQ(DiferencaIntervalo(Intervalo::Mes, reveillon, anoNovo), 1);
  EXPECT_EQ(DiferencaIntervalo(Intervalo::Dia, reveillon, anoNovo), 1);
  EXPECT_EQ(DiferencaIntervalo(Intervalo::Hora, reveillon, anoNovo), 1);
  EXPECT_EQ(DiferencaIntervalo(Intervalo::Segundo, reveillon, anoNovo), 1);
  EXPECT_EQ(DiferencaIntervalo(Intervalo::Ano, anoNovo, reveillon), -1);
  EXPECT_EQ(DiferencaIntervalo(Intervalo::Dia, M(2024, 1, 31), M(2024, 1, 31)), 0);
  EXPECT_EQ(DiferencaIntervalo(Intervalo::Mes, M(2024, 1, 31), M(2024, 3, 1)), 2);
  // Weeks turn on Sunday: 6 January 2024 was a Saturday.
  EXPECT_EQ(DiferencaIntervalo(Intervalo::Semana, M(2024, 1, 6), M(2024, 1, 7)), 1);
  EXPECT_EQ(DiferencaIntervalo(Intervalo::Semana, M(2024, 1, 7), M(2024, 1, 13)), 0);
  EXPECT_EQ(DiferencaIntervalo(Intervalo::Semana, M(2024, 1, 13), M(2024, 1, 6)), -1);
  EXPECT_EQ(DiferencaIntervalo(Intervalo::DiaSemana, M(2024, 1, 6), M(2024, 1, 19)), 1);
  EXPECT_EQ(DiferencaIntervalo(Intervalo::DiaSemana, M(2024, 1, 19), M(2024, 1, 6)), -1);
  EXPECT_EQ(DiferencaIntervalo(Intervalo::Minuto, M(2024, 1, 1, 10, 0, 59), M(2024, 1, 1, 10, 1, 0)), 1);
}

TEST(WeekDay, NamesFromSunday) {
  EXPECT_EQ(DiaDaSemana(QDate(2024, 1, 7)), 0);
  EXPECT_EQ(DiaDaSemana(QDate(2024, 1, 13)), 6);
  EXPECT_EQ(NomeDiaSemana(0, u"EN"), u"Sunday");
  EXPECT_EQ(NomeDiaSemana(2, u"PT"), u"Terça-feira");
  EXPECT_EQ(NomeDiaSemana(6, u"GR"), u"Samstag");
  EXPECT_EQ(NomeDiaSemana(3, u"SP"), u"Miércoles");
  EXPECT_EQ(NomeDiaSemana(6, u"FR"), u"Samedi");
  EXPECT_EQ(NomeDiaSemana(1, u"XX"), u"");
  EXPECT_EQ(NomeDiaSemana(1, u"en"), u"");
}

}  // namespace
}  // namespace zv
