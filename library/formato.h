// Format: numbers and dates shown by a pattern, as BASIC dialects write
// patterns. Numbers always show a point as decimal separator and a comma
// between thousands; names of days and months, the currency symbol and the
// named date forms come from the locale.
#pragma once

#include <QDateTime>
#include <QLocale>

#include "core/texto.h"

namespace zv {

// A number by a pattern: the named formats "General Number", "Currency",
// "Fixed", "Standard", "Percent", "Scientific", "Yes/No", "True/False",
// "On/Off", or up to three sections (positive;negative;zero) of '0', '#',
// '.', ',', '%', "E+"/"E-" and literal text ("quoted" or \escaped).
Texto FormataNumero(double valor, TextoV padrao, const QLocale& l);

// A moment by a pattern: the named formats "General Date", "Long Date",
// "Medium Date", "Short Date", "Long Time", "Medium Time", "Short Time", or
// the letters d, w, m, q, y, h, n, s, ttttt, AM/PM, am/pm, A/P, a/p.
Texto FormataMomento(const QDateTime& m, TextoV padrao, const QLocale& l);

// The pattern asks for a date: a named date format, or a date letter outside
// quotes.
bool PadraoDeData(TextoV padrao);

// The Format command on a value already taken to text: a numeric text as a
// number (as a date value under a date pattern), a date text as a date (as
// its day number under a number pattern); any other text stays as it is.
Texto FormataValor(TextoV valor, TextoV padrao, const QLocale& l);

}  // namespace zv
