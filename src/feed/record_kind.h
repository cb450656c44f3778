#pragma once

#include <span>
#include <string>
#include <string_view>

#include "database/records.h"

namespace vrx {

enum class RecordKind { kIngredient, kRecipe, kPen };

// In what the three kinds of records differ, their fields apart.
struct RecordKindTraits {
  RecordKind kind;
  std::string_view noun;    // "ingredient"
  std::string_view plural;  // "ingredients"
  int count;                // IDs run from 1 to here, and every record is always there
  std::string_view default_name_prefix;

  // A commit puts the name of a record without description in its place. A recipe is put in use by
  // its first committed line instead.
  bool name_becomes_description;

  std::string_view reset_title;
  std::string_view reset_question_end;  // behind the record's number and name
  std::string_view reset_refusal_end;   // empty: reset even while in use
  bool reset_beeps;                     // when it is done
};

// In the order of the enumeration, which is that of the tabs.
std::span<const RecordKindTraits> RecordKinds();
const RecordKindTraits& TraitsOf(RecordKind kind);

constexpr RecordKind KindOf(const IngredientRecord& /*record*/) { return RecordKind::kIngredient; }
constexpr RecordKind KindOf(const RecipeRecord& /*record*/) { return RecordKind::kRecipe; }
constexpr RecordKind KindOf(const PenRecord& /*record*/) { return RecordKind::kPen; }

// Whether a record is in use.
inline bool IsActive(const IngredientRecord& record) { return !record.description.empty(); }
inline bool IsActive(const RecipeRecord& record) { return !record.description.empty(); }
inline bool IsActive(const PenRecord& record) {
  return record.feed_amount != "0" || !record.description.empty();
}

// "ING005", "REC005", "PEN005"
std::string DefaultName(RecordKind kind, int id);

// "  7: ", what stands ahead of a record's name in a list. The number is right-aligned in three
// characters.
std::string FormatIdPrefix(int id);

}  // namespace vrx
