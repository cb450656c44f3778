#include "feed/record_edits.h"

#include <array>
#include <utility>

#include "feed/record_fields.h"
#include "frame/number.h"
#include "frame/text.h"

namespace vrx {
namespace {

class Form {
 public:
  explicit Form(RecordKind kind) : kind_(kind) {}

  // Leaves the field alone where nothing was typed.
  void Type(std::string_view field, const std::optional<std::string>& typed, std::string& value) {
    if (typed) {
      FieldEntry entry = EnterText(FieldOf(kind_, field), *typed);
      value = std::move(entry.text);
      if (!entry.note.empty()) {
        notes_.push_back(std::move(entry.note));
      }
    }
  }

  // An abbreviation without a character leaves the name as it was: a name is mandatory.
  void TypeTexts(const std::optional<std::string>& name,
                 const std::optional<std::string>& description, bool auto_abbreviate,
                 std::string& name_value, std::string& description_value) {
    Type("Description", description, description_value);
    if (description && auto_abbreviate) {
      std::string abbreviation = AbbreviateDescription(description_value);
      if (abbreviation.find_first_not_of(' ') != std::string::npos) {
        name_value = std::move(abbreviation);
      }
    }
    Type("Name", name, name_value);
  }

  void TakeNameAsDescription(int id, const std::string& name, std::string& description) {
    if (description.empty() && name != DefaultName(kind_, id)) {
      description = name;
    }
  }

  std::vector<std::string> TakeNotes() { return std::move(notes_); }

 private:
  RecordKind kind_;
  std::vector<std::string> notes_;
};

void RequireOpen(bool wanted, bool open, std::string_view input, const std::string& batch_type) {
  if (wanted && !open) {
    throw FieldRefusal("The '" + std::string(input) + "' field is closed in a recipe of type \"" +
                       batch_type + "\".");
  }
}

}  // namespace

RecipeInputs InputsOfBatchType(std::string_view batch_type) {
  struct Row {
    std::string_view code;
    RecipeInputs inputs;
  };
  constexpr RecipeInputs kByWeight = {
      .head_count = false, .ration_target = true, .adjust_batch = true};
  constexpr RecipeInputs kByHead = {
      .head_count = true, .ration_target = false, .adjust_batch = true};
  constexpr std::array<Row, 4> kRows = {
      {{"W", kByWeight}, {"H", kByHead}, {"%", kByWeight}, {"P", kByWeight}}};
  for (const Row& row : kRows) {
    if (row.code == batch_type) {
      return row.inputs;
    }
  }
  return {};
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
  form.TakeNameAsDescription(edited.id, edited.name, edited.description);
  record = std::move(edited);
  return form.TakeNotes();
}

std::vector<std::string> ApplyEdit(const RecipeEdit& edit, bool auto_abbreviate,
                                   RecipeRecord& record) {
  Form form(RecordKind::kRecipe);
  RecipeRecord edited = record;
  form.TypeTexts(edit.name, edit.description, auto_abbreviate, edited.name, edited.description);
  edited.batch_type = edit.batch_type.value_or(edited.batch_type);
  const RecipeInputs inputs = InputsOfBatchType(edited.batch_type);
  RequireOpen(edit.head_count.has_value(), inputs.head_count, "HeadCount", edited.batch_type);
  RequireOpen(edit.ration_target.has_value(), inputs.ration_target, "RationTarget",
              edited.batch_type);
  RequireOpen(edit.adjust_batch_index.has_value(), inputs.adjust_batch, "AdjBatTotIndex",
              edited.batch_type);
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
  form.TakeNameAsDescription(edited.id, edited.name, edited.description);
  record = std::move(edited);
  return form.TakeNotes();
}

}  // namespace vrx
