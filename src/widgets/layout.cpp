#include "widgets/layout.h"

#include <QEvent>
#include <QScreen>
#include <algorithm>
#include <vector>

namespace vrx {

TwoPartRow::TwoPartRow(QWidget* parent)
    : QWidget(parent),
      both_(new QBoxLayout(QBoxLayout::LeftToRight, this)),
      first_(new QBoxLayout(QBoxLayout::LeftToRight)),
      second_(new QBoxLayout(QBoxLayout::LeftToRight)) {
  setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
  both_->setContentsMargins(0, 0, 0, 0);
  both_->setSpacing(kSpacing);
  for (QBoxLayout* const part : {first_, second_}) {
    part->setSpacing(kSpacing);
    both_->addLayout(part);
    both_->setAlignment(part, Qt::AlignLeft);
  }
  both_->insertStretch(1);
}

QSize TwoPartRow::minimumSizeHint() const {
  return {std::max(first_->minimumSize().width(), second_->minimumSize().width()),
          both_->minimumSize().height()};
}

void TwoPartRow::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  Arrange();
}

// A control was added, removed or resized.
bool TwoPartRow::event(QEvent* event) {
  if (event->type() == QEvent::LayoutRequest) {
    Arrange();
  }
  return QWidget::event(event);
}

void TwoPartRow::Arrange() {
  const int needed = first_->minimumSize().width() + kGroupSpacing + second_->minimumSize().width();
  const auto direction = needed <= width() ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom;
  if (both_->direction() != direction) {
    both_->setDirection(direction);
  }
}

void KeepPlace(QWidget& widget) {
  QSizePolicy policy = widget.sizePolicy();
  policy.setRetainSizeWhenHidden(true);
  widget.setSizePolicy(policy);
}

QScrollArea* MakeScrollArea(QWidget* contents) {
  auto* const area = new QScrollArea;
  area->setFrameShape(QFrame::NoFrame);
  area->setWidgetResizable(true);
  area->setFocusPolicy(Qt::NoFocus);
  area->setWidget(contents);
  return area;
}

QSize FormSize(const QWidget& form, const QWidget& contents, QSize around, QSize wanted) {
  return wanted.expandedTo(contents.minimumSizeHint() + around)
      .boundedTo(form.screen()->availableSize() - kFrameSize);
}

void ShareWidth(QHeaderView& header, int width, const std::function<int(int column)>& least) {
  std::vector<int> columns;
  int left = width;
  for (int visual = 0; visual < header.count(); ++visual) {
    const int column = header.logicalIndex(visual);
    if (!header.isSectionHidden(column)) {
      columns.push_back(column);
      left -= least(column);
    }
  }
  int columns_left = static_cast<int>(columns.size());
  for (const int column : columns) {
    const int share = std::max(left, 0) / columns_left--;
    left -= share;
    header.resizeSection(column, least(column) + share);
  }
}

}  // namespace vrx
