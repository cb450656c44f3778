#include "widgets/svg_image.h"

#include <QPainter>

namespace vrx {

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
