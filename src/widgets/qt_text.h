#pragma once

#include <QString>
#include <string>
#include <string_view>

#include "base/translation.h"

namespace vrx {

// The texts of the logic are UTF-8.
inline QString ToQString(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

// The same with the line breaks of Qt: CR LF becomes a line feed.
inline QString ToScreenLines(std::string_view text) {
  return ToQString(text).replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
}

// A text of the program in the language of the window; see Tr.
inline QString QTr(std::string_view text) { return ToQString(Tr(text)); }

}  // namespace vrx
