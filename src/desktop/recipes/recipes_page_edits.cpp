// Leaving the fields of the Recipes tab.

#include <QScopedValueRollback>
#include <algorithm>
#include <utility>

#include "base/translation.h"
#include "desktop/recipes/recipes_page.h"
#include "desktop/records/edit_gate.h"
#include "presenter/report_failure.h"

namespace vrx {

// The boxes of the head.

void RecipesPage::LeaveBox(FilteredEdit& box, std::string_view field, StoreBox store) {
  gate_.Leave({.field = &box,
               .what = FieldName(field),
               .text = box.Text(),
               .store = std::move(store),
               .discard =
                   [this, &box] {
                     RecipeHead::Stored(box);
                     Show();
                   },
               .stay = [&box] { TakeFocus(box); },
               .entered = box.isModified()});
}

void RecipesPage::LeaveName() {
  FilteredEdit& box = head_->OnRecName();
  LeaveBox(box, "Name", [this, &box] {
    std::string refusal;
    Do(
        [&](RecipeEditor& editor) {
          refusal = editor.LeaveName(box.Text());
          RecipeHead::Stored(box);
        },
        EditAct::kSet, "Name");
    RewriteItem(box.Text());
    return refusal;
  });
}

void RecipesPage::LeaveDescription() {
  FilteredEdit& box = head_->OnRecDesc();
  const std::optional<std::string> abbreviation =
      abbreviation_.LeaveDescription(box.Text(), services_.settings.AutoAbbreviateOn());
  LeaveBox(box, "Description", [this, &box, abbreviation] {
    FilteredEdit& name = head_->OnRecName();
    const std::string listed = name.Text();
    Do(
        [&](RecipeEditor& editor) {
          editor.LeaveDescription(box.Text(), abbreviation);
          RecipeHead::Stored(box);
          if (abbreviation) {
            RecipeHead::Stored(name);
          }
        },
        EditAct::kSet, "Description");
    // The list shows an abbreviation only after the name is left.
    RewriteItem(listed);
    return std::string();
  });
}

void RecipesPage::LeaveNumber(FilteredEdit& box, std::string_view field,
                              void (RecipeEditor::*leave)(std::string_view)) {
  LeaveBox(box, field, [this, &box, field, leave] {
    Do(
        [&](RecipeEditor& editor) {
          (editor.*leave)(box.Text());
          RecipeHead::Stored(box);
        },
        EditAct::kSet, field);
    return std::string();
  });
}

void RecipesPage::Leave(FilteredEdit& box) {
  if (!editor_ || read_only_) {
    return;
  }
  if (&box == &head_->OnRecName()) {
    LeaveName();
  } else if (&box == &head_->OnRecDesc()) {
    LeaveDescription();
  } else if (&box == &head_->OnRecHeadCount()) {
    LeaveNumber(box, "HeadCount", &RecipeEditor::LeaveHeadCount);
  } else {
    LeaveNumber(box, "RationTarget", &RecipeEditor::LeaveRationTarget);
  }
}

void RecipesPage::RewriteItem(std::string_view name) {
  if (editor_) {
    head_->CboRecId().SetItem(editor_->Current().ration.recipe.id, name);
  }
}

// The lists of the head.

void RecipesPage::Choose(QComboBox& list, int index) {
  head_->KeepChoice(list);
  if (FinishCell()) {
    StoreChoice(list, index);
  } else {
    head_->DropChoice(list);
    Show();
  }
}

void RecipesPage::StoreChoice(QComboBox& list, int index) {
  const bool type = &list == &head_->OnRecBatchType();
  const auto choose = type ? &RecipeEditor::ChooseBatchType : &RecipeEditor::ChooseAdjustItem;
  gate_.Leave({.field = &list,
               .what = FieldName(type ? "BatchType" : "AdjBatTotIndex"),
               .text = list.itemText(index).toStdString(),
               .store =
                   [this, &list, index, choose, type] {
                     Do(
                         [&](RecipeEditor& editor) {
                           (editor.*choose)(index);
                           head_->DropChoice(list);
                         },
                         EditAct::kSet, type ? "BatchType" : "AdjBatTotIndex");
                     return std::string();
                   },
               .discard =
                   [this, &list] {
                     head_->DropChoice(list);
                     Show();
                   },
               .stay = [&list] { TakeFocus(list); }});
}

void RecipesPage::LeaveChoices() {
  for (QComboBox* const list : {&head_->OnRecBatchType(), &head_->OnAdjustBatchTotal()}) {
    if (head_->KeepsChoice(*list) && !gate_.Holds(list)) {
      StoreChoice(*list, list->currentIndex());
    }
  }
}

// The cells of the lines. A refused value is reported while the grid keeps the focus, and its
// editor stays open. If an edit cannot be stored, or the operator leaves the grid with a refused
// edit, the operator is asked.

bool RecipesPage::StoreCell(LineColumn column, std::string text, const Event& event) {
  RecipeGrid& grid = lines_->GrdRec();
  const auto store = [this, column, event] {
    const QScopedValueRollback entering(entering_, true);
    Do(event, EditAct::kSet, LineColumnName(column));
  };
  const auto report = [&](const Error& failure) {
    if (!IsDatabaseError(failure) && !leaving_ && grid.HoldsFocus()) {
      return EditFailure(failure);
    }
    gate_.Keep({.field = &grid,
                .what = FieldName(LineColumnName(column)),
                .text = std::move(text),
                .store =
                    [&grid, store] {
                      store();
                      grid.GiveUpEdit();
                      return std::string();
                    },
                .discard = [this] { DiscardCell(); },
                .stay = [&grid] { grid.ReturnToEdit(); }},
               failure.what());
    return kNoReport;
  };
  return RunReported<Error>(services_.op, report, [&] {
    store();
    gate_.Forget(&grid);
  });
}

bool RecipesPage::EnterCell(LineColumn column, std::string_view text) {
  std::string typed(text);
  return StoreCell(column, typed,
                   [column, typed](RecipeEditor& editor) { editor.EnterCell(column, typed); });
}

bool RecipesPage::ChooseIngredient(int id) {
  return StoreCell(LineColumn::kIngredient, std::to_string(id),
                   [id](RecipeEditor& editor) { editor.ChooseIngredient(id); });
}

void RecipesPage::DiscardCell() {
  const QScopedValueRollback discarding(discarding_, true);
  lines_->GrdRec().GiveUpEdit();
}

// Returns false if the cell is still being edited, or the operator stays in another field.
bool RecipesPage::FinishCell() {
  bool finished = false;
  {
    const QScopedValueRollback leaving(leaving_, true);
    finished = gate_.Holds(&lines_->GrdRec()) || lines_->GrdRec().FinishEdit();
  }
  return gate_.Settle(MayStay::kYes) && (finished || !lines_->GrdRec().IsEditing());
}

// The entry row.

FieldEdit RecipesPage::NewLine() {
  const RecipeLineRecord& line = editor_->Current().Current();
  const std::string& amount = line.target.empty() ? line.ingredient_percent : line.target;
  return {.field = lines_,
          .what = Tr("new line"),
          .text = "ingredient " + line.ingredient + ", " + amount,
          .store =
              [this] {
                Do([](RecipeEditor& editor) { editor.CommitRow(); }, EditAct::kAddLine);
                return std::string();
              },
          .discard =
              [this] {
                DiscardCell();
                Run([](RecipeEditor& editor) { editor.DiscardEntry(); });
              },
          .stay = [this] { lines_->GrdRec().ReturnToEdit(); }};
}

void RecipesPage::LeaveEntryRow() {
  if (editor_ && editor_->Current().EntryPending()) {
    gate_.Leave(NewLine());
  }
}

bool RecipesPage::RunWithNewLine(const Event& event) {
  const auto report = [this](const Error& failure) {
    if (!IsDatabaseError(failure) || !editor_->Current().EntryPending()) {
      return EventFailure(failure);
    }
    gate_.Keep(NewLine(), failure.what());
    return kNoReport;
  };
  return RunReported<Error>(services_.op, report, [&] { Do(event, EditAct::kAddLine); });
}

// All of them.

void RecipesPage::KeepOpenEdits() {
  RecipeGrid& grid = lines_->GrdRec();
  const QScopedValueRollback leaving(leaving_, true);
  if (!gate_.Holds(&grid)) {
    grid.FinishEdit();
  }
  for (FilteredEdit* const box : head_->Boxes()) {
    if (box->isModified() && !gate_.Holds(box)) {
      Leave(*box);
    }
  }
}

bool RecipesPage::LeaveEdits(MayStay may_stay) {
  if (!editor_ || ended_) {
    return true;
  }
  KeepOpenEdits();
  if (!gate_.Settle(may_stay)) {
    return false;
  }
  LeaveChoices();
  if (!gate_.Holds(lines_)) {
    LeaveEntryRow();
  }
  return gate_.Settle(may_stay);
}

std::vector<LostEdit> RecipesPage::EndEdits() {
  if (!editor_) {
    return {};
  }
  KeepOpenEdits();
  if (!lines_->GrdRec().IsEditing() && !gate_.Holds(lines_)) {
    LeaveEntryRow();
  }
  std::vector<LostEdit> lost = gate_.Drop();
  const RecipeRecord& recipe = editor_->Current().ration.recipe;
  for (LostEdit& edit : lost) {
    edit.what = "recipe " + std::to_string(recipe.id) + " (" + recipe.name + "), " + edit.what;
  }
  DiscardCell();
  head_->GiveUpTyping();
  ended_ = true;
  return lost;
}

}  // namespace vrx
