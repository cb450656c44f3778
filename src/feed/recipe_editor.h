#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <SQLiteCpp/Database.h>

#include "database/records.h"
#include "feed/current_recipe.h"
#include "platform/operator.h"
#include "settings/settings.h"

namespace vrx {

enum class MoveDirection { kUp, kDown };

// The ingredients that can be chosen for a line.
std::vector<IngredientRecord> ReadActiveIngredients(SQLite::Database& database);

// The Recipes tab without its window: which recipe is on show, and what the events of its head and
// its grid do to it and to the database. A screen shows what stands here and hands on what its
// enabled controls let through.
//
// Every event is stored as one step, by itself or inside the caller's transaction; then the
// database holds what is on show, but for the line in the entry row. The caller keeps `Modified`,
// around the event or by StoredStep.
// A write-protected file stays as it is, and what is recomputed is only shown: whoever shows it
// closes what the operator enters by.
// An event throws with the database and what is on show as they were: DatabaseError, FieldRefusal
// for what the tab does not let in, Error for what cannot be computed. HandleEditEvent tells that.
class RecipeEditor {
 public:
  // At the end of each step that changes the database, inside it, with what is on show once the
  // disk has it. What it throws undoes the step.
  using StoredStep = std::function<void(const CurrentRecipe& next)>;

  // Shows a recipe at once. What is referred to outlives the editor.
  RecipeEditor(SQLite::Database& database, Operator& op, const PrivateINI& settings, int recipe_id,
               StoredStep stored = {});

  const CurrentRecipe& Current() const { return shown_; }

  // Shows another recipe, or the same one as it is stored now; 0, the blank item of the list, is
  // the one on show. EndEntry comes first.
  void Select(int recipe_id);

  // Index 0 of the list does nothing.
  void ChooseBatchType(int list_index);
  void ChooseAdjustItem(int list_index);

  // A box of the head loses the focus with that text. LeaveName returns why the focus has to stay,
  // as the operator is told it, or nothing; what stands in the box is stored all the same.
  // `abbreviation` is the name that the description gives, where it gives one.
  std::string LeaveName(std::string_view text);
  void LeaveDescription(std::string_view text, std::optional<std::string> abbreviation);
  void LeaveHeadCount(std::string_view text);
  void LeaveRationTarget(std::string_view text);

  // Reads the lines anew and brings the totals up to date.
  void CommitRecipeRecord();

  // All cells of all lines, as on the tab strip's focus.
  void RecomputeAll();

  // Events of the grid. After a deletion the entry row is offered again from here on.
  void GridGotFocus();
  void BeforeCellEdit(LineColumn column);
  // `entered` is false for an edit that was given up: a new line does not count it.
  void AfterCellEdit(LineColumn column, bool entered = true);

  // To a line or to the entry row. A line in the entry row is added on the way. False: the grid
  // stays, for there is no such row or the entry row's line is not complete.
  bool GoToRow(int row);

  // Into the current line; into a stored one with all that follows from a committed row.
  void ChooseIngredient(int ingredient_id);
  void EnterCell(LineColumn column, std::string_view typed);

  // Adds the line of the entry row. False: it is held back, an ingredient alone makes no line. True
  // as well where nothing is being composed.
  bool CommitRow();

  // Gives up what stands in the entry row: the figures are those of the lines alone again.
  void DiscardEntry();

  // Adds the line of the entry row if it is complete, and gives it up if not: the recipe is about
  // to be left.
  void EndEntry();

  // Delete and move the current line. False: refused, with the operator told, or answered with No.
  bool DeleteIng();
  bool MoveRow(MoveDirection direction);

  // Throw FieldRefusal for a recipe of no type yet, whose grid is hidden, and for a full one.
  void RequireOpenLines() const;
  void RequireRoom() const;

 private:
  template <typename Change>
  void Apply(const Change& change);
  // The same, with the lines read anew first.
  template <typename Change>
  void ApplyToStoredLines(const Change& change);
  template <typename Change>
  void CommitHead(const Change& change);
  template <typename Change>
  void EditLine(const Change& change);

  // What is on show changes only once it is stored.
  void Store(const Ration& before, CurrentRecipe next);

  std::string RecipeLabel() const;
  bool Refuse(std::string_view title, std::string_view text);
  void ReportFieldError(std::string_view text);

  SQLite::Database& database_;
  Operator& op_;
  const PrivateINI& settings_;
  StoredStep stored_;
  CurrentRecipe shown_;
};

}  // namespace vrx
