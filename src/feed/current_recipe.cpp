#include "feed/current_recipe.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>
#include <utility>

#include "base/translation.h"
#include "feed/ration.h"
#include "feed/record_fields.h"

namespace vrx {
namespace {

// Columns 2 to 7 of the grid.
constexpr std::array kMovableCells = {
    &RecipeLineRecord::ingredient,     &RecipeLineRecord::target,
    &RecipeLineRecord::ration_percent, &RecipeLineRecord::dry_matter_percent,
    &RecipeLineRecord::dry_matter,     &RecipeLineRecord::batch_target,
};

std::size_t IndexOf(int row) { return static_cast<std::size_t>(row) - 1; }

// The first entry into an idle entry row starts a line.
RecipeLineRecord& LineToEnter(CurrentRecipe& shown) {
  if (shown.OnEntryRow() && !shown.EntryPending()) {
    shown.ration.entry_row.emplace();
  }
  return shown.Current();
}

}  // namespace

LineEntry CurrentRecipe::Entry() const {
  const BatchType* type = FindBatchType(ration.recipe.batch_type);
  return type == nullptr ? LineEntry::kNone : type->entry;
}

RecipeInputs CurrentRecipe::Shown() const {
  const BatchType* type = FindBatchType(ration.recipe.batch_type);
  return type == nullptr ? RecipeInputs{} : type->shown;
}

RecipeLineRecord& CurrentRecipe::Current() {
  return OnEntryRow() ? ration.entry_row.value() : ration.lines.at(IndexOf(row));
}

const RecipeLineRecord& CurrentRecipe::Current() const {
  return OnEntryRow() ? ration.entry_row.value() : ration.lines.at(IndexOf(row));
}

void Recompute(CurrentRecipe& shown, const Recomputation& what) {
  CurrentRecipe computed = shown;
  try {
    if (what.current_dry_matter) {
      RecalcLineDryMatter(computed.ration.recipe.batch_type, computed.Current());
    }
    if (what.all_dry_matter) {
      RecalcAllDryMatter(computed.ration);
    }
    if (what.ration_percents) {
      RecalcRationPercents(computed.ration);
    }
    RecipeTotals totals = RecalcRecipeTotals(computed.ration);
    computed.totals = std::move(totals.row);
    computed.enabled = totals.enabled;
    computed.failure.clear();
  } catch (const Error& error) {
    if (shown.failure.empty()) {
      throw;
    }
    computed.ration = shown.ration;
    computed.totals = {};
    computed.enabled = {};
    computed.failure = error.what();
  }
  shown = std::move(computed);
}

void EnableInputs(CurrentRecipe& shown, bool flag) {
  shown.enabled = EnableRecipeInputs(shown.ration.recipe.batch_type, flag && shown.failure.empty(),
                                     shown.totals.ingredient_percent);
}

void CellLeft(CurrentRecipe& shown, LineColumn column, bool entered) {
  if (entered) {
    shown.last_column = column;
  }
  if (column != LineColumn::kTarget) {
    return;
  }
  if (shown.EntryPending()) {
    EnableInputs(shown, true);
  } else {
    shown.enabled = EnabledByTotals(shown.ration.recipe.batch_type, shown.totals);
  }
}

void ShowRecipe(CurrentRecipe& shown, RecipeRecord recipe, std::vector<RecipeLineRecord> lines) {
  CurrentRecipe next{.type_list_enabled = shown.type_list_enabled};
  next.ration = {.recipe = std::move(recipe), .lines = std::move(lines)};
  next.entry_row_offered = next.HasRoom();
  if (next.ration.lines.empty()) {
    GoToEntryRow(next);
  } else {
    next.row = 1;
    next.failure = "The recipe was not computed yet.";
    Recompute(next, {});
    EnableInputs(next, true);
  }
  if (next.ration.recipe.batch_type == GetBatchTypeCode(0)) {
    next.type_list_enabled = true;
  }
  shown = std::move(next);
}

void GoToEntryRow(CurrentRecipe& shown) {
  shown.ration.entry_row.reset();
  shown.row = kEntryRow;
  shown.last_column.reset();
}

void GoToLine(CurrentRecipe& shown, int row) {
  shown.ration.entry_row.reset();
  shown.row = row;
}

void TakeIngredient(CurrentRecipe& shown, const IngredientRecord& ingredient) {
  RecipeLineRecord& line = LineToEnter(shown);
  line.ingredient = std::to_string(ingredient.id);
  line.dry_matter_percent = std::to_string(ingredient.dry_matter_percent);
  line.hand_add = ingredient.hand_add;
  shown.last_column = LineColumn::kIngredient;
  Recompute(shown, {.current_dry_matter = true, .all_dry_matter = true});
}

void TakeCell(CurrentRecipe& shown, LineColumn column, std::string text) {
  const bool weight = column == LineColumn::kTarget;
  RecipeLineRecord& line = LineToEnter(shown);
  (weight ? line.target : line.ingredient_percent) = std::move(text);
  shown.last_column = column;
  Recompute(shown, {.current_dry_matter = true, .ration_percents = weight});
  if (weight) {
    EnableInputs(shown, true);
  }
}

bool PrepareEntry(CurrentRecipe& shown) {
  RecipeLineRecord& line = shown.ration.entry_row.value();
  line.recipe_id = std::to_string(shown.ration.recipe.id);
  line.sequence = NextLineSequence(shown.ration.lines);
  return !line.ingredient.empty() && shown.last_column != LineColumn::kIngredient;
}

void AddEntry(CurrentRecipe& shown) {
  shown.ration.lines.push_back(shown.ration.entry_row.value());
  GoToLine(shown, shown.LineCount());
}

std::string RowUpdated(CurrentRecipe& shown) {
  Recompute(shown, {});
  shown.entry_row_offered = shown.HasRoom();
  RecipeRecord& recipe = shown.ration.recipe;
  if (!recipe.description.empty()) {
    return {};
  }
  recipe.description = recipe.name;
  LeftField left = LeaveField(FieldOf(RecordKind::kRecipe, "Name"), recipe.name);
  if (left.refusal.empty()) {
    recipe.name = std::move(left.text);
  }
  return left.refusal;
}

void RemoveCurrentLine(CurrentRecipe& shown) {
  auto& lines = shown.ration.lines;
  lines.erase(lines.begin() + (shown.row - 1));
  if (lines.empty()) {
    shown.entry_row_offered = true;
    GoToEntryRow(shown);
    Recompute(shown, {});
    EnableInputs(shown, false);
  } else {
    GoToLine(shown, 1);
    Recompute(shown, {});
    EnableInputs(shown, true);
  }
}

void SwapWithNeighbor(CurrentRecipe& shown, int neighbor) {
  RecipeLineRecord& line = shown.Current();
  RecipeLineRecord& other = shown.ration.lines.at(IndexOf(neighbor));
  for (const auto cell : kMovableCells) {
    std::swap(line.*cell, other.*cell);
  }
  Recompute(shown, {});
  shown.row = neighbor;
}

int NextLineSequence(const std::vector<RecipeLineRecord>& lines) {
  if (lines.empty()) {
    return 1;
  }
  const int highest =
      std::max_element(lines.begin(), lines.end(),
                       [](const RecipeLineRecord& left, const RecipeLineRecord& right) {
                         return left.sequence < right.sequence;
                       })
          ->sequence;
  if (highest == std::numeric_limits<int>::max()) {
    throw OverflowError(TrMark("the 'Sequence' of a new line"));
  }
  return highest + 1;
}

}  // namespace vrx
