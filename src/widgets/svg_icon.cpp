#include "widgets/svg_icon.h"

#include <QByteArray>
#include <QFile>
#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QPixmap>
#include <QSvgRenderer>

#include "widgets/drawing.h"
#include "widgets/qt_text.h"

namespace vrx {
namespace {

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

  QIconEngine* clone() const override { return new SvgIconEngine(drawing_); }

 private:
  QByteArray Coloured(QIcon::Mode mode) const {
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

QIcon SvgIcon(std::string_view name) {
  QFile file(QStringLiteral(":/icons/%1.svg").arg(ToQString(name)));
  if (!file.open(QIODevice::ReadOnly)) {
    return {};
  }
  return QIcon(new SvgIconEngine(file.readAll()));
}

}  // namespace vrx
