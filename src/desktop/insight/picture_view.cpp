#include "desktop/insight/picture_view.h"

#include <QBuffer>
#include <QCursor>
#include <QFontInfo>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QResizeEvent>
#include <QScrollBar>
#include <QToolTip>
#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

#include "base/error.h"
#include "base/files.h"
#include "base/text.h"
#include "base/translation.h"
#include "database/keep_database.h"
#include "widgets/qt_text.h"

namespace vrx {
namespace {

constexpr QSizeF kSavedSize{900, 520};  // units of the picture, 1/96 inch
constexpr double kSavedScale = 2;       // pixels of a unit
constexpr double kUnitsOfInch = 96;
constexpr int kDarkest = 128;
constexpr int kScrollStep = 24;

QSize Whole(const QSizeF& size) {
  return {static_cast<int>(std::ceil(size.width())), static_cast<int>(std::ceil(size.height()))};
}

}  // namespace

PictureView::PictureView(QWidget* parent) : QAbstractScrollArea(parent) {
  setObjectName(QStringLiteral("picInsight"));
  setAccessibleName(QTr("Picture"));
  setFocusPolicy(Qt::StrongFocus);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  verticalScrollBar()->setSingleStep(kScrollStep);
  viewport()->setMouseTracking(true);
  viewport()->setAutoFillBackground(false);
}

void PictureView::Show(DrawPicture draw) {
  draw_ = std::move(draw);
  verticalScrollBar()->setValue(0);
  LayOut();
}

void PictureView::copy() { Q_EMIT CopyChosen(); }

Look PictureView::LookOf() const {
  return {.dark = palette().color(QPalette::Base).lightness() < kDarkest,
          .family = font().family(),
          .letter = QFontInfo(font()).pixelSize()};
}

void PictureView::LayOut() {
  picture_ = draw_ ? draw_(QSizeF(viewport()->size()), LookOf()) : Picture();
  setAccessibleDescription(picture_.title);
  drawn_ = {};
  const int rest = Whole(picture_.size).height() - viewport()->height();
  verticalScrollBar()->setRange(0, std::max(0, rest));
  verticalScrollBar()->setPageStep(viewport()->height());
  viewport()->update();
}

void PictureView::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(viewport());
  const Look look = LookOf();
  painter.fillRect(viewport()->rect(), ColorOf(Ink::kPaper, look.dark));
  if (!draw_) {
    return;
  }
  // Drawn once: many loads are many shapes.
  if (drawn_.isNull()) {
    const double scale = devicePixelRatioF();
    drawn_ = QPixmap(Whole(picture_.size * scale).expandedTo({1, 1}));
    drawn_.setDevicePixelRatio(scale);
    drawn_.fill(ColorOf(Ink::kPaper, look.dark));
    QPainter once(&drawn_);
    Paint(once, picture_, look);
  }
  painter.drawPixmap(0, -verticalScrollBar()->value(), drawn_);
}

void PictureView::resizeEvent(QResizeEvent* event) {
  QAbstractScrollArea::resizeEvent(event);
  LayOut();
}

void PictureView::changeEvent(QEvent* event) {
  QAbstractScrollArea::changeEvent(event);
  if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange) {
    LayOut();
  }
}

std::optional<Hit> PictureView::HitUnder(const QPoint& point) const {
  return HitAt(picture_, QPointF(point) + QPointF(0, verticalScrollBar()->value()));
}

bool PictureView::viewportEvent(QEvent* event) {
  if (event->type() == QEvent::ToolTip) {
    const auto& help = *static_cast<QHelpEvent*>(event);
    const std::optional<Hit> hit = HitUnder(help.pos());
    if (hit && tip_) {
      QToolTip::showText(help.globalPos(), tip_(hit->index, hit->count), viewport());
    } else {
      QToolTip::hideText();
    }
    return true;
  }
  return QAbstractScrollArea::viewportEvent(event);
}

void PictureView::mouseMoveEvent(QMouseEvent* event) {
  viewport()->setCursor(HitUnder(event->position().toPoint()) ? Qt::PointingHandCursor
                                                              : Qt::ArrowCursor);
}

void PictureView::mousePressEvent(QMouseEvent* event) {
  const std::optional<Hit> hit = HitUnder(event->position().toPoint());
  if (event->button() == Qt::LeftButton && hit) {
    Q_EMIT MarkChosen(hit->index);
  }
}

QImage ImageOf(const DrawPicture& draw) {
  const Look look;
  const Picture picture = draw(kSavedSize, look);
  QImage image(Whole(picture.size * kSavedScale), QImage::Format_RGB32);
  image.setDevicePixelRatio(kSavedScale);
  image.setDotsPerMeterX(static_cast<int>(kSavedScale * kUnitsOfInch / 0.0254));
  image.setDotsPerMeterY(image.dotsPerMeterX());
  image.fill(ColorOf(Ink::kPaper, false));
  QPainter painter(&image);
  Paint(painter, picture, look);
  return image;
}

std::string SvgOf(const DrawPicture& draw) {
  const Look look;
  return SvgText(draw(kSavedSize, look), look, SvgUse::kFile);
}

void WritePicture(const DrawPicture& draw, const std::filesystem::path& path) {
  KeepDatabase(path);
  if (UpperCase(path.extension().string()) != ".PNG") {
    WriteFileBytes(path, SvgOf(draw));
    return;
  }
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  if (!ImageOf(draw).save(&buffer, "PNG")) {
    throw Error(Tr("the picture cannot be written as PNG"));
  }
  WriteFileBytes(path, {bytes.constData(), static_cast<std::size_t>(bytes.size())});
}

void PrintPicture(const DrawPicture& draw, QPagedPaintDevice& device) {
  QPainter painter;
  if (!painter.begin(&device)) {
    throw Error(Tr("the printer does not accept the picture"));
  }
  const double scale = device.logicalDpiX() / kUnitsOfInch;
  const QSizeF sheet(device.width() / scale, device.height() / scale);
  const Look look;
  const double ratio = kSavedSize.height() / kSavedSize.width();
  const Picture picture = draw({sheet.width(), sheet.width() * ratio}, look);
  // A picture of many rows fits a sheet, too.
  const double fit = std::min(1.0, sheet.height() / std::max(1.0, picture.size.height()));
  painter.scale(scale * fit, scale * fit);
  Paint(painter, picture, look);
  if (!painter.end()) {
    throw Error(Tr("the printer does not accept the picture"));
  }
}

}  // namespace vrx
