#include "widgets/labels.h"

#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QToolTip>
#include <algorithm>

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
  const QRect room = Room();
  style()->drawItemText(&painter, room, static_cast<int>(alignment()), palette(), isEnabled(),
                        fontMetrics().elidedText(text(), Qt::ElideMiddle, room.width()),
                        foregroundRole());
}

bool ElidedLabel::IsCut() const { return fontMetrics().horizontalAdvance(text()) > Room().width(); }

// The indent is on the side that the text is aligned to.
QRect ElidedLabel::Room() const {
  const int indented = std::max(0, indent());
  return (alignment() & Qt::AlignRight) != 0 ? contentsRect().adjusted(0, 0, -indented, 0)
                                             : contentsRect().adjusted(indented, 0, 0, 0);
}

}  // namespace vrx
