#include "widgets/drawing.h"

#include <QByteArray>
#include <QFile>
#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QPixmap>
#include <QSvgRenderer>
#include <algorithm>
#include <array>
#include <cmath>

#include "widgets/qt_text.h"

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

QColor SpecifiedColor(StatusColor color) {
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

// The visible color of a translucent color on a background.
QColor Laid(const QColor& color, const QColor& background) {
  const auto mixed = [&](float above, float below) {
    return below + (above - below) * static_cast<float>(color.alphaF());
  };
  return QColor::fromRgbF(mixed(color.redF(), background.redF()),
                          mixed(color.greenF(), background.greenF()),
                          mixed(color.blueF(), background.blueF()));
}

class SvgIconEngine : public QIconEngine {
 public:
  explicit SvgIconEngine(QByteArray drawing) : drawing_(std::move(drawing)) {}

  void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode,
             QIcon::State /*state*/) override {
    QSvgRenderer renderer(Coloured(mode));
    renderer.setAspectRatioMode(Qt::KeepAspectRatio);
    renderer.render(painter, rect);
  }

  QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
    QPixmap pixmap(size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    paint(&painter, QRect(QPoint(0, 0), size), mode, state);
    return pixmap;
  }

  [[nodiscard]] QIconEngine* clone() const override { return new SvgIconEngine(drawing_); }

 private:
  [[nodiscard]] QByteArray Coloured(QIcon::Mode mode) const {
    const QPalette palette = QGuiApplication::palette();
    const QPalette::ColorGroup group =
        mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active;
    const QColor line = palette.color(group, QPalette::ButtonText);
    const QColor accent = mode == QIcon::Disabled
                              ? line
                              : Readable(palette.color(group, QPalette::Highlight),
                                         palette.color(group, QPalette::Button), kGraphicsContrast);
    QByteArray svg = drawing_;
    svg.replace("\"black\"", Quoted(line));
    svg.replace("\"royalblue\"", Quoted(accent));
    return svg;
  }

  static QByteArray Quoted(const QColor& color) { return '"' + color.name().toLatin1() + '"'; }

  QByteArray drawing_;
};

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
  return Readable(SpecifiedColor(color), background, kTextContrast);
}

QPalette WithReadableTexts(QPalette palette) {
  struct TextOn {
    QPalette::ColorRole text;
    QPalette::ColorRole background;
  };
  constexpr std::array<TextOn, 7> kTexts{{{QPalette::WindowText, QPalette::Window},
                                          {QPalette::Text, QPalette::Base},
                                          {QPalette::Text, QPalette::AlternateBase},
                                          {QPalette::ButtonText, QPalette::Button},
                                          {QPalette::ToolTipText, QPalette::ToolTipBase},
                                          {QPalette::Link, QPalette::Base},
                                          {QPalette::LinkVisited, QPalette::Base}}};
  constexpr int kHint = 170;  // its alpha
  for (const QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive}) {
    // Sets nothing that can be read, so that it follows the desktop.
    const auto make_readable = [&](QPalette::ColorRole role, QPalette::ColorRole other) {
      const QColor color = palette.color(group, role);
      const QColor readable = Readable(color, palette.color(group, other), kTextContrast);
      if (readable != color) {
        palette.setColor(group, role, readable);
      }
    };
    for (const TextOn& pair : kTexts) {
      make_readable(pair.text, pair.background);
    }
    make_readable(QPalette::Highlight, QPalette::HighlightedText);
    const QColor base = palette.color(group, QPalette::Base);
    if (ContrastRatio(Laid(palette.color(group, QPalette::PlaceholderText), base), base) <
        kTextContrast) {
      QColor hint = palette.color(group, QPalette::Text);
      hint.setAlpha(kHint);
      palette.setColor(group, QPalette::PlaceholderText, hint);
    }
  }
  return palette;
}

void PaintCurrentCell(QPainter& painter, const QRect& cell, const QColor& background,
                      bool has_focus) {
  constexpr int kThick = 3;
  const int width = has_focus ? kThick : 1;
  const QColor dark(Qt::black);
  const bool on_dark = Readable(dark, background, kTextContrast) != dark;
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing, false);
  for (int line = 0; line < width; ++line) {
    painter.setPen(on_dark ? QColor(Qt::white) : dark);
    painter.drawRect(cell.adjusted(line, line, -line - 1, -line - 1));
  }
  painter.restore();
}

QIcon SvgIcon(std::string_view name) {
  QFile file(QStringLiteral(":/icons/%1.svg").arg(ToQString(name)));
  if (!file.open(QIODevice::ReadOnly)) {
    return {};
  }
  return QIcon(new SvgIconEngine(file.readAll()));
}

SvgImage::SvgImage(const QString& path, QSize size, QWidget* parent)
    : QWidget(parent), renderer_(path) {
  renderer_.setAspectRatioMode(Qt::KeepAspectRatio);
  setFixedSize(size);
}

void SvgImage::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  renderer_.render(&painter, QRectF(rect()));
}

}  // namespace vrx
