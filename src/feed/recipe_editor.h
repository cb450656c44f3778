#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <SQLiteCpp/Database.h>

#include "database/records.h"
#include "feed/current_recipe.h"

namespace vrx {

enum class MoveDirection { kUp, kDown };

// The ingredients that can be chosen for a line: those in use.
std::vector<IngredientRecord> ReadActiveIngredients(SQLite::Database& database);

// What the editor reports and asks during an event.
class RecipeDialogs {
 public:
  virtual ~RecipeDialogs() = default;

  // A command on a line was refused.
  virtual void ReportRefusedCommand(std::string_view title, std::string_view text) = 0;
  // The edit of a line is stored, but put the recipe in use with an invalid name.
  virtual void ReportRefusedName(std::string_view text) = 0;
  // Whether the ingredient's line is to be deleted.
  virtual bool ConfirmDelete(const std::string& ingredient) = 0;
};

// The Recipes tab without its window: holds the current recipe and applies the events of its head
// and grid to it and to the database. A view shows this state and forwards events of its enabled
// controls.
//
// Each event is stored as one step, on its own or inside the caller's transaction. After it the
// database equals the current recipe, except for the line in the entry row. The caller sets
// `Modified`, around the event or in StoredStep. If the file is write-protected, recomputed figures
// are only shown, and the view must disable its inputs.
//
// If an event throws, database and current recipe are unchanged. It throws DatabaseError,
// FieldRefusal for an invalid entry, and Error for figures that cannot be computed.
class RecipeEditor {
 public:
  // Called at the end of each step that changes the database, inside its transaction, with the
  // recipe that becomes current after the commit. An exception undoes the step.
  using StoredStep = std::function<void(const CurrentRecipe& next)>;

  // Starts with a recipe. All references must outlive the editor.
  RecipeEditor(SQLite::Database& database, RecipeDialogs& dialogs, int recipe_id,
               StoredStep stored = {});

  [[nodiscard]] const CurrentRecipe& Current() const { return shown_; }

  // Runs EndEntry and shows another recipe, or reloads the current one: its ID, or 0 for the blank
  // item of the list.
  void Select(int recipe_id);

  // Index 0 of the list does nothing.
  void ChooseBatchType(int list_index);
  void ChooseAdjustItem(int list_index);

  // Called when a box of the head loses the focus. LeaveName stores the text in any case and
  // returns a message if the focus must stay, else an empty text. `abbreviation` is the name
  // derived from the description, if any.
  [[nodiscard]] std::string LeaveName(std::string_view text);
  void LeaveDescription(std::string_view text, std::optional<std::string> abbreviation);
  void LeaveHeadCount(std::string_view text);
  void LeaveRationTarget(std::string_view text);

  // Reloads the lines and updates the totals.
  void CommitRecipeRecord();

  // Recomputes all cells of all lines, as when the tab strip gets the focus.
  void RecomputeAll();

  // Events of the grid. GridGotFocus offers the entry row again after a deletion. `entered` is
  // false for a canceled edit, which does not complete a new line.
  void GridGotFocus();
  void BeforeCellEdit(LineColumn column);
  void AfterCellEdit(LineColumn column, bool entered = true);

  // Goes to a line or to the entry row, after adding a line in the entry row. Returns false and
  // keeps the current row if there is no such row or the line in the entry row is incomplete.
  bool GoToRow(int row);

  // Set cells of the current line. A stored line is committed at once.
  void ChooseIngredient(int ingredient_id);
  void EnterCell(LineColumn column, std::string_view typed);

  // Adds the line of the entry row. Returns false if it is incomplete, true if there is none.
  bool CommitRow();

  // Discards the line in the entry row and recomputes the figures without it.
  void DiscardEntry();

  // Adds the line of the entry row if it is complete, else discards it. To be called before leaving
  // the recipe.
  void EndEntry();

  // Delete or move the current line. Return false if this was refused with a message, or if it was
  // not confirmed.
  bool DeleteIng();
  bool MoveRow(MoveDirection direction);

  // Throw FieldRefusal for a recipe without type, whose grid is hidden, and for a full recipe.
  void RequireOpenLines() const;
  void RequireRoom() const;

 private:
  template <typename Change>
  void Apply(const Change& change);
  // Reloads the lines first.
  template <typename Change>
  void ApplyToStoredLines(const Change& change);
  template <typename Change>
  void CommitHead(const Change& change);
  template <typename Change>
  void EditLine(const Change& change);

  // Stores `next` and then makes it current.
  void Store(const Ration& before, CurrentRecipe next);

  [[nodiscard]] std::string RecipeLabel() const;

  SQLite::Database& database_;
  RecipeDialogs& dialogs_;
  StoredStep stored_;
  CurrentRecipe shown_;
};

}  // namespace vrx
