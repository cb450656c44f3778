#include "widgets/tabular_figures.h"

#include <QFontDatabase>
#include <QFontMetricsF>
#include <QString>
#include <algorithm>

namespace vrx {

QFont TabularFigures(const QFont& font) {
  const QFontMetricsF metrics(font);
  const QString digits = QStringLiteral("0123456789");
  const qreal width = metrics.horizontalAdvance(digits.front());
  const bool equal = std::all_of(digits.begin(), digits.end(), [&](QChar digit) {
    return qFuzzyCompare(metrics.horizontalAdvance(digit), width);
  });
  if (equal) {
    return font;
  }
  QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
  fixed.setPointSizeF(font.pointSizeF());
  fixed.setWeight(font.weight());
  return fixed;
}

}  // namespace vrx
