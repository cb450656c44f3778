#pragma once

#include <QStyledItemDelegate>
#include <array>
#include <functional>

#include "desktop/recipes/ingredient_list.h"
#include "desktop/recipes/recipe_cell_look.h"
#include "desktop/recipes/recipe_grid_model.h"

namespace vrx {

// How the cells of `grdREC` look, and what they are edited with.
class RecipeGridDelegate : public QStyledItemDelegate {
  Q_OBJECT

 public:
  // An edit that ends: the editor holds what was entered into the cell.
  using Commit = std::function<void(QWidget& editor, const QModelIndex& cell)>;

  // The list and the model outlive it.
  RecipeGridDelegate(IngredientList& list, const RecipeGridModel& model, Commit commit,
                     QObject* parent);

  // The row that the grid stands on.
  void SetCurrentRow(int row) { current_row_ = row; }

  // Where a click on an ingredient drops the list down at once.
  static QRect ArrowOf(const QRect& cell);

  void paint(QPainter* painter, const QStyleOptionViewItem& option,
             const QModelIndex& index) const override;
  QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                        const QModelIndex& index) const override;
  void setEditorData(QWidget* editor, const QModelIndex& index) const override;
  void setModelData(QWidget* editor, QAbstractItemModel* model,
                    const QModelIndex& index) const override;
  void updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                            const QModelIndex& index) const override;

 protected:
  bool eventFilter(QObject* editor, QEvent* event) override;

 Q_SIGNALS:
  void KeyRefused();

 private:
  const RecipeCellLook& Look(CellManner manner, bool current_row, const QPalette& palette) const;
  void PaintArrow(QPainter& painter, const QRect& cell, const QColor& color) const;
  QWidget* MakeNumberEditor(QWidget* parent, LineColumn column) const;

  IngredientList& list_;
  const RecipeGridModel& model_;
  Commit commit_;
  int current_row_ = -1;
  // Worked out once for a palette.
  mutable std::array<std::array<RecipeCellLook, 2>, 3> looks_;
  mutable qint64 looks_of_ = 0;
};

}  // namespace vrx
