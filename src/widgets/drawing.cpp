#include "widgets/drawing.h"

#include <algorithm>
#include <cmath>

namespace vrx {
namespace {

double Linear(double channel) {
  return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double Luminance(const QColor& color) {
  return 0.2126 * Linear(color.redF()) + 0.7152 * Linear(color.greenF()) +
         0.0722 * Linear(color.blueF());
}

bool IsDark(const QColor& background) {
  return ContrastRatio(Qt::white, background) > ContrastRatio(Qt::black, background);
}

QColor WithLightness(const QColor& color, int lightness) {
  return QColor::fromHsl(color.hslHue(), color.hslSaturation(), lightness);
}

QColor ToldColor(StatusColor color) {
  switch (color) {
    case StatusColor::kRed:
      return {255, 0, 0};
    case StatusColor::kGreen:
      return {0, 128, 0};
    case StatusColor::kBlue:
      break;
  }
  return {0, 0, 192};
}

// What an eye sees of a colour that lets the background through.
QColor Laid(const QColor& color, const QColor& background) {
  const auto mixed = [&](float above, float below) {
    return below + (above - below) * static_cast<float>(color.alphaF());
  };
  return QColor::fromRgbF(mixed(color.redF(), background.redF()),
                          mixed(color.greenF(), background.greenF()),
                          mixed(color.blueF(), background.blueF()));
}

}  // namespace

double ContrastRatio(const QColor& one, const QColor& other) {
  const auto [darker, lighter] = std::minmax({Luminance(one), Luminance(other)});
  return (lighter + 0.05) / (darker + 0.05);
}

QColor Readable(const QColor& color, const QColor& background, double contrast) {
  if (ContrastRatio(color, background) >= contrast) {
    return color;
  }
  constexpr int kFullLightness = 255;
  const bool lighten = IsDark(background);
  int lightness = color.lightness();
  QColor moved = color;
  while (ContrastRatio(moved, background) < contrast && lightness > 0 &&
         lightness < kFullLightness) {
    lightness += lighten ? 1 : -1;
    moved = WithLightness(color, lightness);
  }
  return moved;
}

QColor StatusTextColor(StatusColor color, const QColor& background) {
  const QColor told = ToldColor(color);
  return IsDark(background) ? Readable(told, background, kTextContrast) : told;
}

QPalette WithReadableHints(QPalette palette) {
  constexpr int kHalf = 128;
  const QColor base = palette.color(QPalette::Base);
  if (ContrastRatio(Laid(palette.color(QPalette::PlaceholderText), base), base) <
      kGraphicsContrast) {
    QColor hint = palette.color(QPalette::Text);
    hint.setAlpha(kHalf);
    palette.setColor(QPalette::PlaceholderText, hint);
  }
  return palette;
}

}  // namespace vrx
