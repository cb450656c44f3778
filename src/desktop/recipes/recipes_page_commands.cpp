// The commands on the current recipe of the Recipes tab, and how its edits are named and undone.

#include <algorithm>
#include <optional>
#include <string>

#include "desktop/dialogs/recipe_dialogs.h"
#include "desktop/recipes/recipes_page.h"
#include "feed/record_fields.h"
#include "feed/record_reset.h"
#include "presenter/recipe_actions.h"
#include "presenter/report_failure.h"

namespace vrx {

// The line that an edit concerns is the current one before it.
EditStep RecipesPage::StepBefore(EditAct act, std::string_view field) const {
  const CurrentRecipe& current = editor_->Current();
  const RecipeRecord& recipe = current.ration.recipe;
  EditStep step{
      .act = act,
      .place = {.kind = RecordKind::kRecipe, .id = recipe.id, .field = std::string(field)},
      .subject = recipe.name};
  const bool of_line = act == EditAct::kAddLine || act == EditAct::kDeleteLine ||
                       act == EditAct::kMoveLineUp || act == EditAct::kMoveLineDown ||
                       field == LineColumnName(LineColumn::kIngredient) ||
                       field == LineColumnName(LineColumn::kTarget) ||
                       field == LineColumnName(LineColumn::kIngredientPercent);
  if (of_line && (!current.OnEntryRow() || current.EntryPending())) {
    step.place.line = current.OnEntryRow() ? current.LineCount() + 1 : current.row;
    step.subject = lines_->GrdRec().IngredientName(current.Current().ingredient);
  }
  return step;
}

void RecipesPage::EndStep(EditStep step) {
  if (step.act == EditAct::kMoveLineUp || step.act == EditAct::kMoveLineDown) {
    step.place.line_after = editor_->Current().row;
  }
  RunReported<Error>(services_.op, EventFailure, [&] { undo_.Stored(step); });
}

void RecipesPage::DefaultRecord() {
  const int id = Position();
  if (id == 0 || read_only_) {
    return;
  }
  RunReported<Error>(services_.op, EventFailure, [this] { undo_.Begin(); });
  const EditStep step = StepBefore(EditAct::kDefaults, {});
  if (AskAndReset(*connection_, RecordKind::kRecipe, id, services_) != ResetOutcome::kReset) {
    return;
  }
  EndStep(step);
  gate_.Forget();
  lines_->GrdRec().GiveUpEdit();
  head_->GiveUpTyping();
  RunReported<Error>(services_.op, EventFailure, [&] { editor_ = MakeEditor(*connection_, id); });
  Show();
  head_->CboRecId().SetItem(id);
  Q_EMIT RecordChanged();
}

void RecipesPage::CopyRecipe() {
  const std::optional<CopyOffer> offer =
      MayCopy() && !preparing_ ? OfferCopy(*connection_, Position(), services_) : std::nullopt;
  const SQLite::Database* const connection = connection_;
  const int from = Position();
  RunReported<Error>(services_.op, EventFailure, [this] { undo_.Begin(); });
  const std::optional<int> to = offer ? AskForCopy(*offer, window()) : std::nullopt;
  // Another database may have been opened while the dialog was shown.
  if (!to || connection_ != connection || services_.pump.Closing()) {
    return;
  }
  if (const std::optional<RecipeRecord> copy = StoreCopy(*connection_, from, *to, services_)) {
    EditStep step = StepBefore(EditAct::kCopy, {});
    step.place.id = copy->id;
    EndStep(step);
    Q_EMIT RecordChanged();
    head_->CboRecId().SetItem(copy->id, IsActive(*copy) ? copy->name : std::string());
    if (Select(copy->id, MayStay::kYes)) {
      head_->OnRecName().setFocus();
      head_->OnRecName().selectAll();
    }
  }
}

void RecipesPage::ShowRestored(const EditPlace& place) {
  if (!editor_) {
    return;
  }
  gate_.Forget();
  lines_->GrdRec().GiveUpEdit();
  head_->GiveUpTyping();
  Run([this](RecipeEditor& editor) {
    ReadIngredients();
    editor.Select(0);
  });
  const RecipeRecord& recipe = editor_->Current().ration.recipe;
  head_->CboRecId().SetItem(recipe.id, IsActive(recipe) ? recipe.name : std::string());
  Q_EMIT RecordChanged();
  Q_EMIT Moved(Position());
  FocusPlace(place);
}

// A field that the recipe closes leaves the focus where it is.
void RecipesPage::FocusPlace(const EditPlace& place) {
  RecipeGrid& grid = lines_->GrdRec();
  if (place.line > 0) {
    grid.setFocus();
    grid.GoTo(std::min(place.line, grid.model()->rowCount()) - 1, grid.ColumnOf(place.field));
  } else if (QWidget* const field = head_->Field(place.field); field != nullptr) {
    field->setFocus();
  }
}

}  // namespace vrx
