#include "feed/record_edits.h"

#include <utility>

#include "base/number.h"
#include "feed/batch_type.h"
#include "feed/key_filters.h"
#include "feed/ration_totals.h"
#include "feed/record_fields.h"

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

  void TypeTexts(const std::optional<std::string>& name,
                 const std::optional<std::string>& description, bool auto_abbreviate,
                 std::string& name_value, std::string& description_value) {
    AutoAbbreviation abbreviation;
    if (description) {
      // The box is emptied first, and it never gets a key too many: that was refused.
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

// Refuses what was typed into an input that is hidden or disabled.
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
