#pragma once

#include <QTableView>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "desktop/recipes/ingredient_list.h"
#include "desktop/recipes/recipe_grid_cells.h"
#include "desktop/recipes/recipe_grid_columns.h"
#include "feed/current_recipe.h"
#include "feed/recipe_columns.h"

namespace vrx {

// The events of `grdREC`, for the owner of the recipe.
class RecipeGridEvents {
 public:
  virtual ~RecipeGridEvents() = default;

  virtual void GridGotFocus() = 0;
  virtual void GridLostFocus() = 0;

  // Goes to a line, from 1, or to kEntryRow. Returns false if the current row must not change.
  virtual bool GoToRow(int row) = 0;
  // Returns false if the line in the entry row was not added.
  virtual bool CommitRow() = 0;
  virtual void DiscardEntry() = 0;

  virtual void BeforeCellEdit(LineColumn column) = 0;
  virtual void AfterCellEdit(LineColumn column) = 0;
  // Enters a text into the current line. Returns false if the text stays in its editor.
  virtual bool EnterCell(LineColumn column, std::string_view text) = 0;
  virtual bool ChooseIngredient(int id) = 0;

  // A key was dropped.
  virtual void KeyRefused() = 0;
};

// The grid `grdREC`: the lines of the current recipe and the entry row. The cells for entry look
// and work like fields; Tab moves through them, and from the last one of the entry row to an empty
// entry row. It changes nothing itself: it passes edits to the events, and Show displays the
// result.
class RecipeGrid : public QTableView {
  Q_OBJECT

 public:
  // The events outlive it.
  explicit RecipeGrid(RecipeGridEvents& events, QWidget* parent = nullptr);

  void Show(const CurrentRecipe& shown);

  // Updates only the figures; keeps the current cell and its editor.
  void ShowFigures(const CurrentRecipe& shown) { model_->Show(shown); }

  // Widens columns whose totals, in logical pixels, are wider than their captions; smaller totals
  // shrink them again. Columns sized by the operator do not change.
  void MakeRoomForTotals(const RecipeColumnWidths& totals);

  // The rows of the drop-down list `grdINGSEL`. Call Show afterwards.
  void SetIngredients(std::vector<IngredientRecord> ingredients);
  void SetUnit(std::string_view unit) { model_->SetUnit(unit); }
  void SetReadOnly(bool read_only) { model_->SetReadOnly(read_only); }

  // The columns for that way of entry, from left to right as the operator has moved them.
  [[nodiscard]] std::vector<int> ColumnsInSight(LineEntry entry) const;

  // The name of an ingredient that can be chosen, by its number; otherwise the number.
  [[nodiscard]] std::string IngredientName(const std::string& number) const;

  // The column of a cell that is entered, by its field in the database; else the current one.
  [[nodiscard]] int ColumnOf(std::string_view field) const;

  // Goes to a row of the grid like a click, from 0. Returns false if the current cell does not
  // change.
  bool GoTo(int row, int column);

  [[nodiscard]] bool IsEditing() const { return state() == EditingState; }
  // Ends the edit of the current cell. Returns false if the text stays in the editor.
  bool FinishEdit();
  void GiveUpEdit();
  // Returns the focus to the editor, or to the grid if no cell is edited.
  void ReturnToEdit();
  [[nodiscard]] bool HoldsFocus() const;

 Q_SIGNALS:
  // Columns were moved, sized, shown or hidden, or the view was scrolled.
  void LaidOut();

 protected:
  void closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) override;
  void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
  void keyPressEvent(QKeyEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void updateGeometries() override;
  void changeEvent(QEvent* event) override;

 private:
  void SetUpHeaders();
  void FollowFocus(const QWidget* now);
  void ShowColumns(LineEntry entry);
  void FitColumns();
  void SetFigures();

  bool MoveOn();
  bool MoveBack();
  bool MoveFromEntryRow();
  bool MoveByKey(const QKeyEvent& key);
  [[nodiscard]] int RowNumber(int row) const {
    return model_->IsEntryRow(row) ? kEntryRow : row + 1;
  }

  bool BeginEdit(const QModelIndex& cell);
  void ExplainClosed(const QModelIndex& cell);
  void Commit(QWidget& editor, const QModelIndex& cell);

  RecipeGridEvents& events_;
  RecipeGridModel* model_;
  IngredientList* list_;
  RecipeGridDelegate* delegate_;
  LineEntry entry_ = LineEntry::kNone;
  std::optional<LineColumn> editing_;
  bool commit_failed_ = false;
  bool has_focus_ = false;
  bool sized_by_operator_ = false;
  bool sizing_ = false;
  RecipeColumnWidths totals_ = {};
  QModelIndex pressed_;
  bool opens_on_release_ = false;
};

}  // namespace vrx
