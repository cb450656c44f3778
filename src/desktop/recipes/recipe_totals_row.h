#pragma once

#include <QLabel>
#include <QTimer>
#include <QWidget>
#include <array>

#include "desktop/recipes/recipe_grid.h"
#include "feed/current_recipe.h"
#include "feed/recipe_columns.h"

namespace vrx {

// The totals of a recipe: labels aligned with the columns of its grid. The share of a recipe by
// percent flashes while it is not 100.00.
class RecipeTotalsRow : public QWidget {
  Q_OBJECT

 public:
  // The grid outlives it.
  explicit RecipeTotalsRow(const RecipeGrid& grid, QWidget* parent = nullptr);

  void Show(const CurrentRecipe& shown);

  // The widths of the columns that the shown totals need.
  [[nodiscard]] RecipeColumnWidths Widths() const;

  // `HideRecipeTotals`, until the next Show.
  void HideTotals();

  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

 Q_SIGNALS:
  // Whether to warn that the shares of a recipe by percent do not add up to 100.00.
  void MissesTotal(bool misses);

 protected:
  void changeEvent(QEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void Follow();
  void PaintLabels();
  void ApplyPercentRule();
  void Flash();
  [[nodiscard]] QLabel& IngPctTotal() const { return *labels_.at(kColumnIngredientPercent); }

  const RecipeGrid& grid_;
  QWidget* strip_;                                    // as wide as the columns can be seen
  std::array<QLabel*, kRecipeColumnCount> labels_{};  // the first one is `lblTarTot`
  QTimer* timer_;
  bool alarm_ = false;  // the warning colour is on
  LineEntry entry_ = LineEntry::kNone;
};

}  // namespace vrx
