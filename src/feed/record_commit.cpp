#include "feed/record_commit.h"

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include <SQLiteCpp/Transaction.h>

#include "base/error.h"
#include "base/number.h"
#include "base/translation.h"
#include "database/connection.h"
#include "database/identity.h"
#include "feed/batch_type.h"
#include "feed/key_filters.h"
#include "feed/ration.h"
#include "feed/record_fields.h"

namespace vrx {
namespace {

template <typename Record>
Record WithDefaultDescription(Record record) {
  const RecordKind kind = KindOf(record);
  if (TraitsOf(kind).name_becomes_description && record.description.empty() &&
      record.name != DefaultName(kind, record.id)) {
    record.description = record.name;
  }
  return record;
}

bool IsStored(SQLite::Database& database, const IngredientRecord& record) {
  const IngredientRecord stored = ReadIngredient(database, record.id);
  return stored.name == record.name && stored.description == record.description &&
         stored.dry_matter_percent == record.dry_matter_percent &&
         stored.hand_add == record.hand_add;
}

bool IsStored(SQLite::Database& database, const PenRecord& record) {
  const PenRecord stored = ReadPen(database, record.id);
  return stored.name == record.name && stored.description == record.description &&
         stored.feed_amount == record.feed_amount;
}

void WriteChangedLines(SQLite::Database& database, const std::vector<RecipeLineRecord>& stored,
                       const std::vector<RecipeLineRecord>& lines) {
  std::vector<RecipeLineRecord> changed;
  for (std::size_t line = 0; line < lines.size(); ++line) {
    if (lines[line] != stored[line]) {
      changed.push_back(lines[line]);
    }
  }
  WriteStoredLines(database, changed);
}

void ChangeLines(SQLite::Database& database, int ingredient_id,
                 const std::function<void(RecipeLineRecord&)>& change) {
  const std::vector<RecipeLineRecord> stored = ReadLinesWithIngredient(database, ingredient_id);
  std::vector<RecipeLineRecord> lines = stored;
  for (RecipeLineRecord& line : lines) {
    change(line);
  }
  WriteChangedLines(database, stored, lines);
}

// Batch type by RecipeID, a text in the lines.
std::map<std::string, std::string> BatchTypes(SQLite::Database& database) {
  std::map<std::string, std::string> types;
  for (RecipeRecord& recipe : ReadRecipes(database)) {
    types.emplace(std::to_string(recipe.id), std::move(recipe.batch_type));
  }
  return types;
}

void RecalcNamingTheRecipe(std::string_view batch_type, RecipeLineRecord& line) {
  try {
    RecalcLineDryMatter(batch_type, line);
  } catch (const Error& error) {
    throw Error(Tr("Recipe %1: %2", {line.recipe_id, error.what()}));
  }
}

template <typename Record, typename Commit>
bool Store(SQLite::Database& database, Record& record, const Calendar& calendar,
           const Commit& commit) {
  return WithDatabaseErrors(database, [&] {
    Record committed = record;
    SQLite::Transaction transaction(database, SQLite::TransactionBehavior::IMMEDIATE);
    const auto changes = database.getTotalChanges();
    commit(committed);
    const bool changed = database.getTotalChanges() != changes;
    if (changed) {
      TouchDatabase(database, calendar);
      transaction.commit();
    }
    record = std::move(committed);
    return changed;
  });
}

class Form {
 public:
  explicit Form(RecordKind kind) : kind_(kind) {}

  // Changes nothing if nothing was typed.
  void Type(std::string_view field, const std::optional<std::string>& typed, std::string& value) {
    if (typed) {
      FieldEntry entry = EnterText(FieldOf(kind_, field), *typed);
      value = std::move(entry.text);
      if (!entry.note.empty()) {
        notes_.push_back(std::move(entry.note));
      }
    }
  }

  void TypeTexts(const std::optional<std::string>& name,
                 const std::optional<std::string>& description, bool auto_abbreviate,
                 std::string& name_value, std::string& description_value) {
    AutoAbbreviation abbreviation;
    if (description) {
      // A backspace marks the box as typed. No key of `description` finds the box full, because
      // EnterText refuses such a text.
      abbreviation.DescriptionKey(kBackspaceKey, description_value.size());
      Type("Description", description, description_value);
    }
    if (auto given = abbreviation.LeaveDescription(description_value, auto_abbreviate)) {
      name_value = *std::move(given);
    }
    Type("Name", name, name_value);
  }

  std::vector<std::string> TakeNotes() { return std::move(notes_); }

 private:
  RecordKind kind_;
  std::vector<std::string> notes_;
};

std::string ClosedInput(std::string_view input) {
  return "The '" + std::string(input) + "' field is closed";
}

// Refuses entries into inputs that are hidden or disabled.
class InputGate {
 public:
  InputGate(const std::string& batch_type, const std::vector<RecipeLineRecord>& lines)
      : batch_type_(batch_type), type_(FindBatchType(batch_type)), lines_(lines) {}

  void Require(bool typed, std::string_view input, bool RecipeInputs::*group) const {
    if (!typed) {
      return;
    }
    if (type_ == nullptr || !(type_->shown.*group)) {
      throw FieldRefusal(ClosedInput(input) + " in a recipe of type \"" + batch_type_ + "\".");
    }
    if (!(EnabledByLines(batch_type_, lines_).*group)) {
      const bool by_percent = type_->entry == LineEntry::kPercent;
      throw FieldRefusal(ClosedInput(input) + ": " +
                         (by_percent ? std::string(kMustTotal100Pct)
                                     : "the 'Target' weights of the recipe total less than 1") +
                         ".");
    }
  }

 private:
  const std::string& batch_type_;
  const BatchType* type_;
  const std::vector<RecipeLineRecord>& lines_;
};

}  // namespace

void CommitIngredientRecord(SQLite::Database& database, IngredientRecord& record,
                            std::optional<std::string_view> current_batch_type) {
  IngredientRecord committed = WithDefaultDescription(record);
  // First, because it may fail because of the lines.
  SetRecipesDryMatterPct(database, committed.id, std::to_string(committed.dry_matter_percent),
                         current_batch_type);
  SetRecipesHandAdd(database, committed.id, committed.hand_add);
  if (!IsStored(database, committed)) {
    WriteIngredient(database, committed);
  }
  record = std::move(committed);
}

std::string CommitRecipeRecord(SQLite::Database& database, RecipeRecord& record) {
  RecipeRecord committed = WithDefaultDescription(record);
  const std::vector<RecipeLineRecord> stored = ReadRecipeLines(database, record.id);
  Ration ration{.recipe = committed, .lines = stored};
  std::string failure = RecalcFailure(ration);
  if (!failure.empty()) {
    Ration before{.recipe = ReadRecipe(database, record.id), .lines = stored};
    if (RecalcFailure(before).empty()) {
      throw Error(Tr("Recipe %1: %2", {std::to_string(record.id), failure}));
    }
  }
  WriteRecipe(database, committed);
  WriteChangedLines(database, stored, ration.lines);
  record = std::move(committed);
  return failure;
}

void CommitPenRecord(SQLite::Database& database, PenRecord& record) {
  PenRecord committed = WithDefaultDescription(record);
  if (!IsStored(database, committed)) {
    WritePen(database, committed);
  }
  record = std::move(committed);
}

void SetRecipesHandAdd(SQLite::Database& database, int ingredient_id, bool hand_add) {
  ChangeLines(database, ingredient_id, [&](RecipeLineRecord& line) { line.hand_add = hand_add; });
}

void SetRecipesDryMatterPct(SQLite::Database& database, int ingredient_id,
                            std::string_view dry_matter_percent,
                            std::optional<std::string_view> current_batch_type) {
  const auto types =
      current_batch_type ? std::map<std::string, std::string>() : BatchTypes(database);
  const auto type_of = [&](const RecipeLineRecord& line) -> std::string_view {
    if (current_batch_type) {
      return *current_batch_type;
    }
    const auto own = types.find(line.recipe_id);
    return own == types.end() ? std::string_view() : own->second;
  };
  ChangeLines(database, ingredient_id, [&](RecipeLineRecord& line) {
    line.dry_matter_percent = dry_matter_percent;
    RecalcNamingTheRecipe(type_of(line), line);
  });
}

bool StoreRecord(SQLite::Database& database, IngredientRecord& record,
                 std::optional<std::string_view> current_batch_type, const Calendar& calendar) {
  return Store(database, record, calendar, [&](IngredientRecord& committed) {
    CommitIngredientRecord(database, committed, current_batch_type);
  });
}

bool StoreRecord(SQLite::Database& database, PenRecord& record, const Calendar& calendar) {
  return Store(database, record, calendar,
               [&](PenRecord& committed) { CommitPenRecord(database, committed); });
}

std::vector<std::string> ApplyEdit(const IngredientEdit& edit, bool auto_abbreviate,
                                   IngredientRecord& record) {
  Form form(RecordKind::kIngredient);
  IngredientRecord edited = record;
  form.TypeTexts(edit.name, edit.description, auto_abbreviate, edited.name, edited.description);
  std::string dry_matter = std::to_string(edited.dry_matter_percent);
  form.Type("DryMatter%", edit.dry_matter_percent, dry_matter);
  edited.dry_matter_percent = TextToLong(dry_matter);
  edited.hand_add = edit.hand_add.value_or(edited.hand_add);
  record = std::move(edited);
  return form.TakeNotes();
}

std::vector<std::string> ApplyEdit(const RecipeEdit& edit,
                                   const std::vector<RecipeLineRecord>& lines, bool auto_abbreviate,
                                   RecipeRecord& record) {
  Form form(RecordKind::kRecipe);
  RecipeRecord edited = record;
  form.TypeTexts(edit.name, edit.description, auto_abbreviate, edited.name, edited.description);
  edited.batch_type = edit.batch_type.value_or(edited.batch_type);
  const InputGate gate(edited.batch_type, lines);
  gate.Require(edit.head_count.has_value(), "HeadCount", &RecipeInputs::head_count);
  gate.Require(edit.ration_target.has_value(), "RationTarget", &RecipeInputs::ration_target);
  gate.Require(edit.adjust_batch_index.has_value(), "AdjBatTotIndex", &RecipeInputs::adjust_batch);
  std::string head_count = std::to_string(edited.head_count);
  form.Type("HeadCount", edit.head_count, head_count);
  edited.head_count = TextToLong(head_count);
  form.Type("RationTarget", edit.ration_target, edited.ration_target);
  if (edit.adjust_batch_index) {
    edited.adjust_batch_index = std::to_string(*edit.adjust_batch_index);
  }
  record = std::move(edited);
  return form.TakeNotes();
}

std::vector<std::string> ApplyEdit(const PenEdit& edit, bool auto_abbreviate, PenRecord& record) {
  Form form(RecordKind::kPen);
  PenRecord edited = record;
  form.TypeTexts(edit.name, edit.description, auto_abbreviate, edited.name, edited.description);
  form.Type("FeedAmount", edit.feed_amount, edited.feed_amount);
  record = std::move(edited);
  return form.TakeNotes();
}

}  // namespace vrx
