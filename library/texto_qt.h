// The system's 16-bit texts and Qt's strings hold the same code units: the
// two conversions every Qt-facing file needs.
#pragma once

#include <QString>

#include "core/texto.h"

namespace zv {

inline QString Q(const Texto& t) { return QString::fromStdU16String(t); }
inline Texto T(const QString& s) { return s.toStdU16String(); }

}  // namespace zv
