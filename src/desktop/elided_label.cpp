#include "desktop/elided_label.h"

#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QToolTip>

namespace vrx {

ElidedLabel::ElidedLabel(QWidget* parent) : QLabel(parent) {
  setTextFormat(Qt::PlainText);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
}

QSize ElidedLabel::minimumSizeHint() const {
  constexpr int kShortestText = 4;
  return {fontMetrics().averageCharWidth() * kShortestText, QLabel::minimumSizeHint().height()};
}

bool ElidedLabel::event(QEvent* event) {
  if (event->type() == QEvent::ToolTip && toolTip().isEmpty()) {
    const auto* const help = static_cast<QHelpEvent*>(event);
    QToolTip::showText(help->globalPos(), IsCut() ? text() : QString(), this);
    return true;
  }
  return QLabel::event(event);
}

void ElidedLabel::paintEvent(QPaintEvent* event) {
  if (!IsCut()) {
    QLabel::paintEvent(event);
    return;
  }
  QPainter painter(this);
  drawFrame(&painter);
  const QRect room = contentsRect();
  style()->drawItemText(&painter, room, static_cast<int>(alignment()), palette(), isEnabled(),
                        fontMetrics().elidedText(text(), Qt::ElideMiddle, room.width()),
                        foregroundRole());
}

bool ElidedLabel::IsCut() const {
  return fontMetrics().horizontalAdvance(text()) > contentsRect().width();
}

}  // namespace vrx
