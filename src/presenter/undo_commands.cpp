#include "presenter/undo_commands.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "base/number.h"
#include "base/translation.h"
#include "base/undo.h"
#include "database/connection.h"
#include "database/schema.h"
#include "feed/batch_type.h"
#include "feed/edit_history.h"
#include "feed/recipe_columns.h"
#include "presenter/recipe_actions.h"
#include "presenter/report_failure.h"

namespace vrx {
namespace {

struct FieldNoun {
  std::string_view field;
  std::string_view noun;
};

// In the order in which a form that stored several fields is named by one.
constexpr std::array<FieldNoun, 12> kNouns{{
    {"Name", TrMark("name")},
    {"Description", TrMark("description")},
    {"BatchType", TrMark("batch type")},
    {"HeadCount", TrMark("head count")},
    {"RationTarget", TrMark("ration target")},
    {"AdjBatTotIndex", TrMark("batch total")},
    {"Ingredient", TrMark("ingredient")},
    {"Target", TrMark("weight")},
    {"Ingredient%", TrMark("share")},
    {"FeedAmount", TrMark("feed amount")},
    {"HandAdd", TrMark("hand-add")},
    {"DryMatter%", TrMark("dry matter")},
}};

std::string_view TableOf(const EditPlace& place) {
  if (place.line > 0) {
    return kRecipeRationTable;
  }
  switch (place.kind) {
    case RecordKind::kIngredient:
      return kIngredientTable;
    case RecordKind::kRecipe:
      return kRecipeTable;
    case RecordKind::kPen:
      break;
  }
  return kPenTable;
}

// Of a record, in the name of a step.
std::string NounOf(RecordKind kind) { return Tr(TraitsOf(kind).noun); }

std::string NounOf(std::string_view field) {
  const auto* const found = std::find_if(kNouns.begin(), kNouns.end(),
                                         [&](const FieldNoun& row) { return row.field == field; });
  return found == kNouns.end() ? std::string(field) : Tr(found->noun);
}

// A field of one row, before and after.
struct FieldChange {
  std::string before;
  std::string after;
};

std::optional<FieldChange> ChangeOf(const ChangedRow& row, std::string_view field) {
  const std::optional<std::string> before = CellOf(row.table, row.before, field);
  const std::optional<std::string> after = CellOf(row.table, row.after, field);
  if (!before || !after || before == after) {
    return std::nullopt;
  }
  return FieldChange{.before = *before, .after = *after};
}

std::optional<FieldChange> FindChange(const std::vector<ChangedRow>& rows, std::string_view table,
                                      std::string_view field) {
  for (const ChangedRow& row : rows) {
    if (row.table == table) {
      if (std::optional<FieldChange> change = ChangeOf(row, field)) {
        return change;
      }
    }
  }
  return std::nullopt;
}

// A stored value as the form shows it.
class ShownValue {
 public:
  explicit ShownValue(SQLite::Database& database) : database_(database) {}

  [[nodiscard]] std::string Of(std::string_view field, const std::string& stored) const {
    if (stored.empty()) {
      return Tr("(empty)");
    }
    if (field == "Ingredient") {
      return IngredientName(stored);
    }
    if (field == "BatchType" && stored == GetBatchTypeCode(0)) {
      return Tr("(none)");
    }
    if (field == "BatchType") {
      const BatchType* const type = FindBatchType(stored);
      return type == nullptr ? stored : std::string(type->list_text);
    }
    if (field == "AdjBatTotIndex") {
      return AdjustText(stored);
    }
    if (field == "HandAdd") {
      return stored == "0" ? Tr("No") : Tr("Yes");
    }
    return field == "Ingredient%" ? PercentText(stored) : stored;
  }

 private:
  [[nodiscard]] std::string IngredientName(const std::string& number) const {
    for (const IngredientRecord& ingredient : ReadIngredients(database_)) {
      if (ingredient.id == ParseLong(number)) {
        return ingredient.name;
      }
    }
    return "'" + number + "'";
  }

  SQLite::Database& database_;
};

bool AnyLine(const std::vector<ChangedRow>& rows, bool added) {
  return std::any_of(rows.begin(), rows.end(), [added](const ChangedRow& row) {
    return row.table == kRecipeRationTable &&
           (added ? !row.before.has_value() : !row.after.has_value());
  });
}

bool AnyRow(const std::vector<ChangedRow>& rows, std::string_view table) {
  return std::any_of(rows.begin(), rows.end(),
                     [&](const ChangedRow& row) { return row.table == table; });
}

class StepName {
 public:
  StepName(const EditStep& step, SQLite::Database& database) : step_(step), shown_(database) {}

  // Empty if the step has changed nothing but computed figures.
  [[nodiscard]] std::string Of(const std::vector<ChangedRow>& rows) const {
    switch (step_.act) {
      case EditAct::kSet:
        return OfField(rows);
      case EditAct::kAddLine:
        return AnyLine(rows, true) ? Tr("adding %1", {step_.subject}) : "";
      case EditAct::kDeleteLine:
        return AnyLine(rows, false) ? Tr("deleting %1", {step_.subject}) : "";
      case EditAct::kMoveLineUp:
        return Tr("moving %1 up", {step_.subject});
      case EditAct::kMoveLineDown:
        return Tr("moving %1 down", {step_.subject});
      case EditAct::kDefaults:
        return AnyRow(rows, TableOf(step_.place)) || AnyLine(rows, false)
                   ? Tr("defaults of %1", {Record()})
                   : "";
      case EditAct::kCopy:
        return Tr("copying %1 to recipe %2", {step_.subject, std::to_string(step_.place.id)});
      case EditAct::kRecompute:
        break;
    }
    return {};
  }

 private:
  [[nodiscard]] std::string Record() const {
    return NounOf(step_.place.kind) + " " + std::to_string(step_.place.id) + " " + step_.subject;
  }

  [[nodiscard]] std::string OfField(const std::vector<ChangedRow>& rows) const {
    const std::string& field = step_.place.field;
    const std::optional<FieldChange> change = FindChange(rows, TableOf(step_.place), field);
    if (!change) {
      return {};
    }
    const std::string before = shown_.Of(field, change->before);
    const std::string after = shown_.Of(field, change->after);
    if (field == "Ingredient") {
      return Tr("%1 %2 to %3", {NounOf(field), before, after});
    }
    // The name is among the values.
    const std::string of = field == "Name"
                               ? NounOf(step_.place.kind) + " " + std::to_string(step_.place.id)
                               : step_.subject;
    return Tr("%1 of %2 %3 to %4", {NounOf(field), of, before, after});
  }

  const EditStep& step_;
  ShownValue shown_;
};

// A form may store another field than the one that is left.
std::string FieldOfStep(const EditStep& step, const std::vector<ChangedRow>& rows) {
  const std::string_view table = TableOf(step.place);
  if (step.act != EditAct::kSet || FindChange(rows, table, step.place.field)) {
    return step.place.field;
  }
  const auto* const changed = std::find_if(kNouns.begin(), kNouns.end(), [&](const FieldNoun& row) {
    return step.place.line == 0 && FindChange(rows, table, row.field).has_value();
  });
  return changed == kNouns.end() ? step.place.field : std::string(changed->field);
}

}  // namespace

void UndoCommands::Watch(SQLite::Database* database) {
  RunOrUndo([&] { history_.Watch(database); }, [this] { history_.Watch(nullptr); });
  database_ = database;
  Changed();
}

void UndoCommands::Stored(const EditStep& step) {
  if (database_ == nullptr) {
    return;
  }
  history_.Add([&](const std::vector<ChangedRow>& rows) {
    EditStep named = step;
    named.place.field = FieldOfStep(step, rows);
    std::string name = StepName(named, *database_).Of(rows);
    return EditHistory::Named{.name = std::move(name), .place = named.place};
  });
  Changed();
}

void UndoCommands::Changed() const {
  if (changed_) {
    changed_();
  }
}

std::optional<EditPlace> UndoCommands::Place(bool undo) const {
  const EditEntry* const entry = undo ? history_.ToUndo() : history_.ToRedo();
  if (entry == nullptr) {
    return std::nullopt;
  }
  EditPlace place = entry->place;
  if (!undo && place.line_after > 0) {
    place.line = place.line_after;
  }
  return place;
}

bool UndoCommands::Run(bool undo) {
  const auto report = [undo](const Error& failure) -> FailureReport {
    const bool refused = dynamic_cast<const UndoRefusal*>(&failure) != nullptr;
    return {.title = undo ? TrMark("Undo (Error)") : TrMark("Redo (Error)"),
            .text = refused ? FailureText::kMessage : FailureText::kDatabaseWords,
            .icon = Icon::kWarning};
  };
  const bool done = RunReported<Error>(services_.op, report, [&] {
    undo ? history_.Undo(services_.calendar) : history_.Redo(services_.calendar);
  });
  Changed();
  return done;
}

}  // namespace vrx
