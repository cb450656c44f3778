#pragma once

#include <optional>
#include <string>
#include <vector>

#include "database/records.h"
#include "feed/batch_type.h"
#include "feed/ration.h"
#include "feed/recipe_columns.h"

// The recipe that the Recipes tab shows, and what the events of its grid do to it. Nothing here
// knows of the database; RecipeEditor stores what these rules change.
namespace vrx {

// The grid's row for a line that is not added yet; lines have row numbers from 1.
inline constexpr int kEntryRow = -1;

struct CurrentRecipe {
  Ration ration = {};  // with an entry row exactly while a line is composed in it
  int row = kEntryRow;
  TotalsRow totals = {};
  RecipeInputs enabled = {};
  bool type_list_enabled = true;
  bool entry_row_offered = true;

  // Why the recipe as it is stored cannot be computed: its totals are blank then and its inputs
  // closed. Empty where it can.
  std::string failure = {};

  std::optional<LineColumn> last_column = std::nullopt;

  // The grid stands on the entry row, also on an idle one in which nothing was entered yet.
  bool OnEntryRow() const { return row == kEntryRow; }
  // A line is being composed in the entry row.
  bool EntryPending() const { return ration.entry_row.has_value(); }
  int LineCount() const { return static_cast<int>(ration.lines.size()); }
  bool HasRoom() const { return LineCount() < kMaxRecipeLines; }

  // Which cells the lines are entered by; kNone while the grid is hidden.
  LineEntry Entry() const;
  // Which groups of inputs are visible.
  RecipeInputs Shown() const;

  // The line that the grid stands on, the one that is being composed included. There is none on an
  // idle entry row.
  RecipeLineRecord& Current();
  const RecipeLineRecord& Current() const;
};

// What is recomputed, in this order; the totals always come last.
struct Recomputation {
  bool current_dry_matter = false;  // the entry row's as well
  bool all_dry_matter = false;
  bool ration_percents = true;
};

// Throws as the routines of ration.h do, with the recipe as it was. A recipe that could not be
// computed beforehand is not held to it: its cells stay and `failure` says why, so that the
// operator can mend it.
void Recompute(CurrentRecipe& shown, const Recomputation& what);

// Sets the three groups of inputs by a flag, as the batch type lets them.
void EnableInputs(CurrentRecipe& shown, bool flag);

// A cell is left. The inputs that BeforeCellEdit closed open again, those of a recipe without a
// line in composition only as far as its totals let them. `entered` is false for an edit that was
// given up.
void CellLeft(CurrentRecipe& shown, LineColumn column, bool entered);

// A recipe with its stored lines in place of the one on show: recomputed and on line 1, or on the
// entry row with blank totals and closed inputs. The list of batch types opens for an untyped
// recipe, and stays as it is for a typed one.
void ShowRecipe(CurrentRecipe& shown, RecipeRecord recipe, std::vector<RecipeLineRecord> lines);

// Empties the entry row and goes there. An idle entry row changes no figure and no input.
void GoToEntryRow(CurrentRecipe& shown);
void GoToLine(CurrentRecipe& shown, int row);

// An ingredient of the list becomes that of the current line, with its dry matter and mark.
void TakeIngredient(CurrentRecipe& shown, const IngredientRecord& ingredient);

// A weight or a percentage was entered into the current line.
void TakeCell(CurrentRecipe& shown, LineColumn column, std::string text);

// Puts recipe and sequence into the line that is composed. False: it rests in the entry row until
// an ingredient was chosen and, after it, a weight or percentage entered.
bool PrepareEntry(CurrentRecipe& shown);

// Makes the entry row the last line and goes there.
void AddEntry(CurrentRecipe& shown);

// After the grid has committed a row. The first one puts the recipe in use: its name becomes its
// description. Returns what the operator is told, where that has no name.
std::string RowUpdated(CurrentRecipe& shown);

void RemoveCurrentLine(CurrentRecipe& shown);

// Swaps the six movable cells between the current line and its neighbour, and goes there.
// `Sequence`, `HandAdd` and `Ingredient%` stay with the place.
void SwapWithNeighbour(CurrentRecipe& shown, int neighbour);

// 1 above the highest of the lines; gaps are not filled. Throws OverflowError.
int NextLineSequence(const std::vector<RecipeLineRecord>& lines);

}  // namespace vrx
