#include "make_manual/manual_style.h"

#include <QFontInfo>
#include <QFontMetricsF>
#include <string>

#include "base/error.h"

namespace vrx::manual {
namespace {

const QString kProportional = QStringLiteral("DejaVu Sans");
const QString kFixed = QStringLiteral("DejaVu Sans Mono");

void RequireFont(const TextStyle& style, const QString& text) {
  const QFont font = FontOf(style);
  const std::string family = font.family().toStdString();
  if (QFontInfo(font).family() != font.family()) {
    throw Error("the font " + family +
                " is not installed (Debian: fonts-dejavu-core), or no font can be found at all");
  }
  const QFontMetricsF metrics(font);
  for (const uint character : text.toUcs4()) {
    if (character > ' ' && !metrics.inFontUcs4(character)) {
      throw Error("the font " + family + " has no picture of the character U+" +
                  QString::number(character, 16).toUpper().toStdString());
    }
  }
}

}  // namespace

QFont FontOf(const TextStyle& style) {
  QFont font(style.fixed ? kFixed : kProportional);
  font.setPointSizeF(style.size);
  font.setBold(style.bold);
  font.setHintingPreference(QFont::PreferNoHinting);
  // Too little to be seen, but spaced letters are not joined: a search for "file" finds it.
  font.setLetterSpacing(QFont::AbsoluteSpacing, FormatDots(1));
  return font;
}

void RequireFonts(const QString& text) {
  for (const bool fixed : {false, true}) {
    for (const bool bold : {false, true}) {
      RequireFont({.bold = bold, .fixed = fixed}, text);
    }
  }
}

}  // namespace vrx::manual
