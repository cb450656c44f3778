#include "desktop/recipe_grid_header.h"

#include <QStyleOptionHeader>

#include "desktop/form_parts.h"

namespace vrx {

RecipeGridHeader::RecipeGridHeader(QWidget* parent) : QHeaderView(Qt::Horizontal, parent) {
  setSectionsMovable(true);
  setHighlightSections(false);
  setSectionsClickable(false);
  setMinimumSectionSize(3 * kSpacing);
}

void RecipeGridHeader::initStyleOptionForIndex(QStyleOptionHeader* option,
                                               int logical_index) const {
  QHeaderView::initStyleOptionForIndex(option, logical_index);
  constexpr QChar kThirdOfEm(0x2004);
  option->text = kThirdOfEm + option->text + kThirdOfEm;
}

}  // namespace vrx
