#include "feed/recipe_editor.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>

#include "base/number.h"
#include "base/text.h"
#include "base/translation.h"
#include "database/connection.h"
#include "feed/batch_type.h"
#include "feed/recipe_storage.h"
#include "feed/record_fields.h"

namespace vrx {
namespace {

std::string LeftText(std::string_view field, std::string_view text) {
  return FieldOf(RecordKind::kRecipe, field).leave(text);
}

// Keeps the current row if it still exists.
void TakeLines(CurrentRecipe& shown, std::vector<RecipeLineRecord> lines) {
  shown.ration.lines = std::move(lines);
  if (shown.OnEntryRow()) {
    return;
  }
  if (shown.ration.lines.empty()) {
    GoToEntryRow(shown);
  } else {
    GoToLine(shown, std::min(shown.row, shown.LineCount()));
  }
}

// Why a line cannot be moved; empty if it can.
std::string_view MoveObstacle(const CurrentRecipe& shown, MoveDirection direction) {
  if (shown.OnEntryRow()) {
    return "The ingredient entry row cannot be moved.";
  }
  if (direction == MoveDirection::kDown) {
    return shown.row == shown.LineCount() ? "The selected row cannot be moved down." : "";
  }
  return shown.row == 1 ? "The selected row cannot be moved up." : "";
}

IngredientRecord ReadActiveIngredient(SQLite::Database& database, int id) {
  if (id < 1 || id > kIngredientCount) {
    throw FieldRefusal("There is no ingredient " + std::to_string(id) +
                       ", they are numbered 1 to " + std::to_string(kIngredientCount) + ".");
  }
  IngredientRecord ingredient = ReadIngredient(database, id);
  if (!IsActive(ingredient)) {
    throw FieldRefusal("Ingredient " + std::to_string(id) + " (" + ingredient.name +
                       ") is not in use: only an ingredient with a description can be chosen.");
  }
  return ingredient;
}

}  // namespace

std::vector<IngredientRecord> ReadActiveIngredients(SQLite::Database& database) {
  std::vector<IngredientRecord> active;
  const std::vector<IngredientRecord> all = ReadIngredients(database);
  std::copy_if(all.begin(), all.end(), std::back_inserter(active),
               [](const IngredientRecord& ingredient) { return IsActive(ingredient); });
  return active;
}

void RecipeEditor::Store(const Ration& before, CurrentRecipe next) {
  if (IsWriteProtected(database_)) {
    shown_ = std::move(next);
    return;
  }
  StoreRecipe(database_, before, next.ration, [&] {
    if (stored_) {
      stored_(next);
    }
  });
  shown_ = std::move(next);
}

template <typename Change>
void RecipeEditor::Apply(const Change& change) {
  CurrentRecipe next = shown_;
  change(next);
  Store(shown_.ration, std::move(next));
}

template <typename Change>
void RecipeEditor::ApplyToStoredLines(const Change& change) {
  CurrentRecipe next = shown_;
  // A write-protected file does not have the recomputed lines.
  if (!IsWriteProtected(database_)) {
    TakeLines(next, ReadRecipeLines(database_, next.ration.recipe.id));
  }
  const Ration stored{.recipe = shown_.ration.recipe, .lines = next.ration.lines};
  change(next);
  Store(stored, std::move(next));
}

template <typename Change>
void RecipeEditor::CommitHead(const Change& change) {
  ApplyToStoredLines([&](CurrentRecipe& next) {
    change(next.ration.recipe);
    Recompute(next, {.ration_percents = false});
  });
}

template <typename Change>
void RecipeEditor::EditLine(const Change& change) {
  RequireOpenLines();
  std::string refusal;
  Apply([&](CurrentRecipe& next) {
    change(next);
    if (!next.OnEntryRow()) {
      refusal = RowUpdated(next);
    }
  });
  if (!refusal.empty()) {
    dialogs_.ReportRefusedName(refusal);
  }
}

RecipeEditor::RecipeEditor(SQLite::Database& database, RecipeDialogs& dialogs, int recipe_id,
                           StoredStep stored)
    : database_(database), dialogs_(dialogs), stored_(std::move(stored)) {
  Select(recipe_id);
}

void RecipeEditor::Select(int recipe_id) {
  EndEntry();
  if (recipe_id == 0) {
    recipe_id = shown_.ration.recipe.id;
  }
  Ration stored{.recipe = ReadRecipe(database_, recipe_id),
                .lines = ReadRecipeLines(database_, recipe_id)};
  CurrentRecipe next = shown_;
  ShowRecipe(next, stored.recipe, stored.lines);
  Store(stored, std::move(next));
}

void RecipeEditor::ChooseBatchType(int list_index) {
  const std::string_view code = GetBatchTypeCode(list_index);
  if (list_index == 0 || code.empty()) {
    return;
  }
  Apply([&](CurrentRecipe& next) {
    next.type_list_enabled = false;
    next.ration.recipe.batch_type = code;
    Recompute(next, {.ration_percents = false});
  });
}

void RecipeEditor::ChooseAdjustItem(int list_index) {
  Apply([&](CurrentRecipe& next) {
    next.ration.recipe.adjust_batch_index = std::to_string(list_index);
    Recompute(next, {.ration_percents = false});
  });
}

std::string RecipeEditor::LeaveName(std::string_view text) {
  const LeftField left = LeaveField(FieldOf(RecordKind::kRecipe, "Name"), text);
  CommitHead([&](RecipeRecord& recipe) { recipe.name = left.text; });
  return left.refusal;
}

void RecipeEditor::LeaveDescription(std::string_view text,
                                    std::optional<std::string> abbreviation) {
  CommitHead([&](RecipeRecord& recipe) {
    recipe.description = LeftText("Description", text);
    recipe.name = std::move(abbreviation).value_or(recipe.name);
  });
}

void RecipeEditor::LeaveHeadCount(std::string_view text) {
  CommitHead(
      [&](RecipeRecord& recipe) { recipe.head_count = TextToLong(LeftText("HeadCount", text)); });
}

void RecipeEditor::LeaveRationTarget(std::string_view text) {
  CommitHead([&](RecipeRecord& recipe) { recipe.ration_target = LeftText("RationTarget", text); });
}

void RecipeEditor::CommitRecipeRecord() {
  CommitHead([](const RecipeRecord&) {});
}

void RecipeEditor::RecomputeAll() {
  Apply([](CurrentRecipe& next) { Recompute(next, {.all_dry_matter = true}); });
}

void RecipeEditor::GridGotFocus() { shown_.entry_row_offered = shown_.HasRoom(); }

void RecipeEditor::BeforeCellEdit(LineColumn column) {
  if (column == LineColumn::kTarget) {
    EnableInputs(shown_, false);
  }
}

void RecipeEditor::AfterCellEdit(LineColumn column, bool entered) {
  CellLeft(shown_, column, entered);
}

bool RecipeEditor::GoToRow(int row) {
  const bool exists =
      row == kEntryRow ? shown_.entry_row_offered : row >= 1 && row <= shown_.LineCount();
  if (row == shown_.row || !exists) {
    return row == shown_.row;
  }
  if (!CommitRow()) {
    return false;
  }
  row == kEntryRow ? GoToEntryRow(shown_) : GoToLine(shown_, row);
  return true;
}

void RecipeEditor::ChooseIngredient(int ingredient_id) {
  const IngredientRecord ingredient = ReadActiveIngredient(database_, ingredient_id);
  EditLine([&](CurrentRecipe& next) { TakeIngredient(next, ingredient); });
}

void RecipeEditor::EnterCell(LineColumn column, std::string_view typed) {
  RequireOpenLines();
  const bool by_weight = shown_.Entry() == LineEntry::kWeight;
  const LineColumn open = by_weight ? LineColumn::kTarget : LineColumn::kIngredientPercent;
  if (column != open) {
    throw FieldRefusal("The '" + std::string(LineColumnName(column)) +
                       "' field is closed in a recipe of type \"" +
                       shown_.ration.recipe.batch_type + "\": its lines are entered by '" +
                       std::string(LineColumnName(open)) + "'.");
  }
  std::string text = EnterLineCell(column, typed);
  EditLine([&](CurrentRecipe& next) { TakeCell(next, column, text); });
}

bool RecipeEditor::CommitRow() {
  if (!shown_.EntryPending()) {
    return true;
  }
  CurrentRecipe next = shown_;
  if (!PrepareEntry(next)) {
    shown_ = std::move(next);
    return false;
  }
  RequireRoom();
  EditLine([](CurrentRecipe& added) {
    PrepareEntry(added);
    AddEntry(added);
  });
  return true;
}

void RecipeEditor::DiscardEntry() {
  if (!shown_.EntryPending()) {
    return;
  }
  // Another tab may have changed the lines meanwhile.
  ApplyToStoredLines([](CurrentRecipe& next) {
    GoToEntryRow(next);
    Recompute(next, {});
  });
}

void RecipeEditor::EndEntry() {
  if (!CommitRow()) {
    DiscardEntry();
  }
}

bool RecipeEditor::DeleteIng() {
  if (shown_.OnEntryRow()) {
    dialogs_.ReportRefusedCommand("Delete (Error)", "There is no ingredient selected to delete.");
    return false;
  }
  RequireOpenLines();
  const std::vector<IngredientRecord> active = ReadActiveIngredients(database_);
  const auto chosen = std::find_if(active.begin(), active.end(), [&](const auto& ingredient) {
    return std::to_string(ingredient.id) == shown_.Current().ingredient;
  });
  if (!dialogs_.ConfirmDelete(chosen == active.end() ? std::string() : chosen->name)) {
    return false;
  }
  Apply(RemoveCurrentLine);
  return true;
}

bool RecipeEditor::MoveRow(MoveDirection direction) {
  const std::string_view obstacle = MoveObstacle(shown_, direction);
  if (!obstacle.empty()) {
    dialogs_.ReportRefusedCommand("Move (Error)", obstacle);
    return false;
  }
  RequireOpenLines();
  const int neighbor = shown_.row + (direction == MoveDirection::kDown ? 1 : -1);
  Apply([&](CurrentRecipe& next) { SwapWithNeighbor(next, neighbor); });
  return true;
}

void RecipeEditor::RequireOpenLines() const {
  if (shown_.Entry() == LineEntry::kNone) {
    throw FieldRefusal(RecipeLabel() + " is of type \"" + shown_.ration.recipe.batch_type +
                       "\": its lines are closed until a type W, H, % or P is chosen.");
  }
}

void RecipeEditor::RequireRoom() const {
  if (!shown_.HasRoom()) {
    throw FieldRefusal(
        Tr("%1 has %2 lines, and a recipe holds at most %3.",
           {RecipeLabel(), std::to_string(shown_.LineCount()), std::to_string(kMaxRecipeLines)}));
  }
}

std::string RecipeEditor::RecipeLabel() const {
  return "Recipe " + std::to_string(shown_.ration.recipe.id);
}

}  // namespace vrx
