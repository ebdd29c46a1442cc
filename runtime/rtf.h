// A small RTF writer and reader for what the properties of a multi-line
// text set: fonts, sizes, bold, italic, colours and paragraphs (with their
// alignment). What it writes opens in a word processor; what it reads is
// that subset of any RTF, the rest skipped.
#pragma once

#include <QTextDocument>
#include <string>

namespace zv {

// The document as RTF: 8-bit text, Windows-1252 escapes for the Latin
// letters and \u for anything beyond.
std::string EscreveRtf(const QTextDocument& doc);
// Fills `doc` from RTF; false (and `doc` untouched) when the text isn't RTF.
bool LeRtf(const std::string& rtf, QTextDocument& doc);

}  // namespace zv
