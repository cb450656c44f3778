#pragma once

#include <QCheckBox>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QWidget>
#include <optional>

#include "desktop/recipes/recipe_grid.h"
#include "desktop/recipes/recipe_totals_row.h"
#include "feed/recipe_editor.h"

namespace vrx {

// The record navigator of `grdREC`: "Ingredient: 2 of 5" between the buttons that move.
class LineNavigator : public QWidget {
  Q_OBJECT

 public:
  explicit LineNavigator(QWidget* parent = nullptr);

  // A row less than 1 is the entry row.
  void Show(int row, int lines);

 Q_SIGNALS:
  // To a line, from 1.
  void Moved(int line);

 private:
  enum Button { kFirst, kPrevious, kNext, kLast };

  void AddButton(Button button);
  [[nodiscard]] int Target(Button button) const;

  QLabel* text_;
  int row_ = 0;
  int lines_ = 0;
};

// `lblScanPrint` and `prgScanPrint`: the progress of a walk over all recipes. Repaints immediately,
// without running events.
class ScanPanel : public QWidget {
  Q_OBJECT

 public:
  explicit ScanPanel(QWidget* parent = nullptr);

  void ShowText(const QString& text);
  void GoTo(int position);

 private:
  QLabel* text_;
  QProgressBar* bar_;
};

// The lines of the current recipe: grid, totals and the controls around them.
class RecipeLines : public QWidget {
  Q_OBJECT

 public:
  // The events outlive it.
  explicit RecipeLines(RecipeGridEvents& events, QWidget* parent = nullptr);

  // The grid of a recipe without a type is hidden, and a hint is shown instead.
  void Show(const CurrentRecipe& shown);

  // Repaints the figures of the next Show for the same lines immediately, so that the operator need
  // not wait for the disk. Sends only paint events.
  void DrawFigures(const CurrentRecipe& next);

  // Disables entering, moving and deleting lines for that reason, or enables it for an empty one.
  void SetReadOnly(const QString& reason);

  // Hides grid and totals until the next Show.
  void HideGrid();

  // During a walk over all recipes its progress replaces the grid, and `cmdDeleteIng` is hidden.
  ScanPanel& BeginScan();
  void EndScan();

  // `lblRequiresIndicatorPenCapacityX`; std::nullopt hides it.
  void ShowPenCapacity(std::optional<int> size);

  // Sets the texts that the caption pass does not set.
  void ShowFixedTexts();

  RecipeGrid& GrdRec() { return *grid_; }

 Q_SIGNALS:
  void DeleteClicked();
  void MoveClicked(vrx::MoveDirection direction);
  void MissesTotal(bool misses);

 private:
  QWidget* MakeGridPlace();
  QWidget* MakeUpDown();
  QLayout* MakeBottomRow();

  RecipeGrid* grid_;
  RecipeTotalsRow* totals_;
  QLabel* hint_;
  ScanPanel* scan_;
  bool grid_was_hidden_ = false;
  bool hint_was_hidden_ = false;
  QWidget* up_down_;
  QLabel* move_legend_;
  QPushButton* delete_;
  QCheckBox* use_navigator_;
  LineNavigator* navigator_;
  QLabel* pen_capacity_;
};

}  // namespace vrx
