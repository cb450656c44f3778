#pragma once

#include <QHeaderView>

namespace vrx {

// The captions of `grdREC`, which can be moved and sized. They keep as far from the edge as the
// cells below them.
class RecipeGridHeader : public QHeaderView {
  Q_OBJECT

 public:
  explicit RecipeGridHeader(QWidget* parent = nullptr);

 protected:
  void initStyleOptionForIndex(QStyleOptionHeader* option, int logical_index) const override;
};

}  // namespace vrx
