#include "desktop/recipes/recipe_cell_look.h"

#include "widgets/drawing.h"

namespace vrx {
namespace {

constexpr double kTint = 0.28;
constexpr double kFrameStrength = 0.35;

double Mixed(double one, double other, double share) { return one + (other - one) * share; }

QColor Blend(const QColor& one, const QColor& other, double share) {
  return QColor::fromRgbF(static_cast<float>(Mixed(one.redF(), other.redF(), share)),
                          static_cast<float>(Mixed(one.greenF(), other.greenF(), share)),
                          static_cast<float>(Mixed(one.blueF(), other.blueF(), share)));
}

QPalette::ColorRole BackgroundRole(CellManner manner) {
  switch (manner) {
    case CellManner::kEntered:
      return QPalette::Base;
    case CellManner::kReadOnly:
      return QPalette::Window;
    case CellManner::kComputed:
      break;
  }
  return QPalette::ToolTipBase;
}

}  // namespace

RecipeCellLook LookOfCell(CellManner manner, bool current_row, const QPalette& palette) {
  RecipeCellLook look{
      .background = palette.color(BackgroundRole(manner)),
      .text = manner == CellManner::kComputed ? QColor(Qt::blue) : palette.color(QPalette::Text)};
  if (current_row) {
    look.background = Blend(look.background, palette.color(QPalette::Highlight), kTint);
  }
  look.text = Readable(look.text, look.background, kTextContrast);
  if (manner == CellManner::kEntered) {
    look.frame = Blend(look.background, look.text, kFrameStrength);
  }
  return look;
}

}  // namespace vrx
