#pragma once

#include <optional>
#include <string>
#include <vector>

#include "database/records.h"
#include "feed/batch_type.h"
#include "feed/ration.h"
#include "feed/recipe_columns.h"

namespace vrx {

// The recipe shown in the Recipes tab, and how the events of its grid change it. Independent of the
// database; RecipeEditor stores the changes.

// Row number of the entry row, where a line is composed before it is added. Lines have row numbers
// from 1.
inline constexpr int kEntryRow = -1;

struct CurrentRecipe {
  Ration ration = {};  // has an entry row only while a line is composed
  int row = kEntryRow;
  TotalsRow totals = {};
  RecipeInputs enabled = {};
  bool type_list_enabled = true;
  bool entry_row_offered = true;

  // Why the stored recipe cannot be computed; its totals are then blank and its inputs disabled.
  // Otherwise empty.
  std::string failure = {};

  std::optional<LineColumn> last_column = std::nullopt;

  // True also for an idle entry row, into which nothing was entered yet.
  [[nodiscard]] bool OnEntryRow() const { return row == kEntryRow; }
  // True while a line is composed in the entry row.
  [[nodiscard]] bool EntryPending() const { return ration.entry_row.has_value(); }
  [[nodiscard]] int LineCount() const { return static_cast<int>(ration.lines.size()); }
  [[nodiscard]] bool HasRoom() const { return LineCount() < kMaxRecipeLines; }

  // Which cell of a line is entered; kNone while the grid is hidden.
  [[nodiscard]] LineEntry Entry() const;
  // Which groups of inputs are visible.
  [[nodiscard]] RecipeInputs Shown() const;

  // The line of the current row, also one that is being composed. Not to be called on an idle entry
  // row.
  [[nodiscard]] RecipeLineRecord& Current();
  [[nodiscard]] const RecipeLineRecord& Current() const;
};

// What to recompute, in this order; the totals are always recomputed last.
struct Recomputation {
  bool current_dry_matter = false;  // of the current line or the entry row
  bool all_dry_matter = false;
  bool ration_percents = true;
};

// Throws like the functions of ration.h and leaves the recipe unchanged. But if the recipe could
// not be computed before either, keeps its cells and sets `failure`, so that the operator can
// correct it.
void Recompute(CurrentRecipe& shown, const Recomputation& what);

// Enables or disables the inputs, as far as the batch type allows.
void EnableInputs(CurrentRecipe& shown, bool flag);

// Called when a cell loses the focus; `entered` is false for a canceled edit. Enables the inputs
// that BeforeCellEdit disabled; while no line is composed, only those that the totals allow.
void CellLeft(CurrentRecipe& shown, LineColumn column, bool entered);

// Replaces the current recipe by a stored one and recomputes it. The current row is line 1, or the
// entry row with blank totals and disabled inputs. The list of batch types is enabled for a recipe
// without type and unchanged for others.
void ShowRecipe(CurrentRecipe& shown, RecipeRecord recipe, std::vector<RecipeLineRecord> lines);

// Clears the entry row and makes it current. This changes no figures or inputs if it was idle.
void GoToEntryRow(CurrentRecipe& shown);
void GoToLine(CurrentRecipe& shown, int row);

// Sets the ingredient of the current line and copies its dry matter and hand-add mark.
void TakeIngredient(CurrentRecipe& shown, const IngredientRecord& ingredient);

// Sets a weight or percentage of the current line.
void TakeCell(CurrentRecipe& shown, LineColumn column, std::string text);

// Sets recipe and sequence of the composed line. Returns false if it is incomplete: it needs an
// ingredient and, entered after it, a weight or percentage.
bool PrepareEntry(CurrentRecipe& shown);

// Appends the composed line and makes it current.
void AddEntry(CurrentRecipe& shown);

// Called after the grid has committed a row. The first row puts the recipe in use: its name becomes
// its description. Returns a message for the operator if the recipe has no name.
[[nodiscard]] std::string RowUpdated(CurrentRecipe& shown);

void RemoveCurrentLine(CurrentRecipe& shown);

// Swaps six cells of the current line with those of `neighbor` and makes that line current.
// `Sequence`, `HandAdd` and `Ingredient%` stay in their rows.
void SwapWithNeighbor(CurrentRecipe& shown, int neighbor);

// One more than the highest sequence of the lines; gaps are not filled. Throws OverflowError.
int NextLineSequence(const std::vector<RecipeLineRecord>& lines);

}  // namespace vrx
