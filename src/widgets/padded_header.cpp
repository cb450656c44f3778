#include "widgets/padded_header.h"

#include <QStyleOptionHeader>

#include "widgets/main_window_layout.h"

namespace vrx {

PaddedHeader::PaddedHeader(QWidget* parent) : QHeaderView(Qt::Horizontal, parent) {
  setHighlightSections(false);
  setSectionsClickable(false);
  setMinimumSectionSize(3 * kSpacing);
}

QString PaddedHeader::Padded(const QString& text) {
  constexpr QChar kThirdOfEm(0x2004);
  return kThirdOfEm + text + kThirdOfEm;
}

void PaddedHeader::initStyleOptionForIndex(QStyleOptionHeader* option, int logical_index) const {
  QHeaderView::initStyleOptionForIndex(option, logical_index);
  option->text = Padded(option->text);
}

}  // namespace vrx
