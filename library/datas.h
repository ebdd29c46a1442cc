// Dates and times. A date is a text in the locale's short date form (with
// the year always in four digits), a time is added in the locale's long time
// form when there is one. A date value counts days since 30 December 1899,
// with the time of day as a fraction.
#pragma once

#include <QDateTime>
#include <QLocale>

#include "core/texto.h"
#include "core/valor.h"

namespace zv {

// The locale of dates: the system's (LC_ALL, LC_TIME, LANG), with the bare
// C locale taken as US English so that dates read as numbers.
const QLocale& LocaleDatas();

// A moment with no time zone: date and time of day as written.
QDateTime Momento(QDate data, QTime hora = QTime(0, 0));

// Formats (QLocale patterns) of the date and time texts.
QString FormatoDataCurta(const QLocale& l);  // e.g. "M/d/yyyy", "dd/MM/yyyy"
QString FormatoHora(const QLocale& l);       // e.g. "h:mm:ss AP", "HH:mm:ss"

// The text of a moment: the short date, and the time behind a blank unless it
// is midnight; a moment on 30 December 1899 shows only its time.
Texto TextoMomento(const QDateTime& m, const QLocale& l);
// Reads a date text: numbers in the locale's order of day, month and year
// (a four-digit first number starts year-month-day), a two-digit year taken
// as 1930 to 2029, month names in the locale's or in English, and an optional
// time "H:mm[:ss] [AM|PM]"; a time alone falls on 30 December 1899.
bool LeData(TextoV texto, const QLocale& l, QDateTime& m);

// Date values: days since 30 December 1899. Years outside 100 to 9999 have
// no value.
double SerialDoMomento(const QDateTime& m);
bool MomentoDoSerial(double serial, QDateTime& m);

// The units of DateAdd and DateDiff.
enum class Intervalo { Nenhum, Segundo, Minuto, Hora, Semana, DiaSemana, Dia, DiaAno, Mes, Ano };
// SECOND, MINUTE, HOUR, WEEK, WEEKDAY, DAY, DAYYEAR, MONTH, YEAR (any case).
Intervalo IntervaloDaUnidade(TextoV unidade);
// DateAdd: a month or a year added to a day that the target month lacks
// lands on that month's last day. False when the result leaves the years
// 100 to 9999.
bool SomaIntervalo(Intervalo u, int64_t quantidade, QDateTime& m);
// DateDiff: the boundaries of the unit crossed from `a` to `b` (weeks start
// on Sunday); WEEKDAY counts whole weeks.
int64_t DiferencaIntervalo(Intervalo u, const QDateTime& a, const QDateTime& b);

// The weekday's name in a language of the WeekDay table (EN, PT, GR, SP, IT,
// FR), Sunday 0; empty for any other code.
Texto NomeDiaSemana(int diaDesdeDomingo, TextoV idioma);
// Sunday 0 to Saturday 6.
int DiaDaSemana(QDate d);

// Between Texto and QString.
inline QString QS(TextoV t) { return QString::fromUtf16(t.data(), static_cast<qsizetype>(t.size())); }
inline Texto TX(const QString& s) { return s.toStdU16String(); }

// A command's date argument: a date text, a date value or a number of days.
// Anything else is a type mismatch.
QDateTime MomentoDoValor(const Valor& v);

}  // namespace zv
