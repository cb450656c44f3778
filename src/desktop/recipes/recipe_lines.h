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

  // A row below 1 is the entry row.
  void Show(int row, int lines);

 Q_SIGNALS:
  // To a line, from 1.
  void Moved(int line);

 private:
  enum Button { kFirst, kPrevious, kNext, kLast };

  void AddButton(Button button);
  int Target(Button button) const;

  QLabel* text_;
  int row_ = 0;
  int lines_ = 0;
};

// `lblScanPrint` and `prgScanPrint`: how far a walk over all recipes has come. It is seen at once,
// with no event in between.
class ScanPanel : public QWidget {
  Q_OBJECT

 public:
  explicit ScanPanel(QWidget* parent = nullptr);

  void Tell(const QString& text);
  void GoTo(int position);

 private:
  QLabel* text_;
  QProgressBar* bar_;
};

// The lines of the recipe on show: grid, totals, and what stands around them.
class RecipeLines : public QWidget {
  Q_OBJECT

 public:
  // The events outlive it.
  explicit RecipeLines(RecipeGridEvents& events, QWidget* parent = nullptr);

  // The grid of an untyped recipe is hidden, and what to do is said in its place.
  void Show(const CurrentRecipe& shown);

  // What the next Show is about to bring for the same lines, on the glass at once: the operator's
  // eyes need not wait for the disk. Sends no events but those of painting.
  void DrawFigures(const CurrentRecipe& next);

  // No line can be entered, moved or deleted, for that reason; again they can for an empty one.
  void SetReadOnly(const QString& reason);

  // Grid and totals, until the next Show.
  void HideGrid();

  // While a walk over all recipes lasts, its progress stands in the place of the grid, and
  // `cmdDeleteIng` is hidden.
  ScanPanel& BeginScan();
  void EndScan();

  // `lblRequiresIndicatorPenCapacityX`; nothing hides it.
  void ShowPenCapacity(std::optional<int> size);

  // What the caption pass leaves without a text.
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
