#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "base/error.h"
#include "database/records.h"
#include "feed/key_filters.h"

namespace vrx {

enum class RecordKind { kIngredient, kRecipe, kPen };

// Properties that differ between the three record kinds, except their fields.
struct RecordKindTraits {
  RecordKind kind;
  std::string_view noun;    // "ingredient"
  std::string_view plural;  // "ingredients"
  int count;                // highest ID; all records from 1 on always exist
  std::string_view default_name_prefix;

  // A commit copies the name to an empty description. A recipe is put in use by its first committed
  // line instead.
  bool name_becomes_description;

  std::string_view reset_title;
  std::string_view reset_question_end;  // follows the record's number and name
  std::string_view reset_refusal_end;   // empty if a record in use can be reset
  bool reset_beeps;                     // after the reset
};

// In the order of the enumeration and of the tabs.
[[nodiscard]] std::span<const RecordKindTraits> RecordKinds();
[[nodiscard]] const RecordKindTraits& TraitsOf(RecordKind kind);

constexpr RecordKind KindOf(const IngredientRecord& /*record*/) { return RecordKind::kIngredient; }
constexpr RecordKind KindOf(const RecipeRecord& /*record*/) { return RecordKind::kRecipe; }
constexpr RecordKind KindOf(const PenRecord& /*record*/) { return RecordKind::kPen; }

// True if the record is in use.
inline bool IsActive(const IngredientRecord& record) { return !record.description.empty(); }
inline bool IsActive(const RecipeRecord& record) { return !record.description.empty(); }
inline bool IsActive(const PenRecord& record) {
  return record.feed_amount != "0" || !record.description.empty();
}

// "ING005", "REC005", "PEN005"
[[nodiscard]] std::string DefaultName(RecordKind kind, int id);

// "  7: ", the prefix of a record's name in a list; the number is right-aligned in 3 characters.
[[nodiscard]] std::string FormatIdPrefix(int id);

// Required size of the indicator's pen table: 200, 300 or 400; nothing if no row above 100 has
// feed. Uses the position of a row in the filtered pen grid, not the ID of its pen.
[[nodiscard]] std::optional<int> CheckPenCapacity(std::span<const PenRecord> rows);

// " This recipe requires a 400-pen capacity option in the K2260 indicator."
[[nodiscard]] std::string PenCapacityWarning(int size);

// A text is invalid for its field, or the field is disabled. what() is shown to the operator.
class FieldRefusal : public Error {
 public:
  using Error::Error;
};

inline constexpr std::string_view kFieldErrorTitle = "Field Error";

// A text field of a form.
struct RecordField {
  RecordKind kind;
  std::string_view name;  // in the database
  std::size_t limit;      // characters
  int (*filter)(int key);
  bool number;
  // Returns the normalized text when the field loses the focus. Throws FieldRefusal.
  std::string (*leave)(std::string_view text);
};

// Why the field, which holds `text`, drops a key: "Only digits".
[[nodiscard]] std::string KeyRefusal(const RecordField& field, std::string_view text, int key);

// Throws std::out_of_range if the kind has no such field.
const RecordField& FieldOf(RecordKind kind, std::string_view name);

struct LeftField {
  std::string text;     // empty if it is refused
  std::string refusal;  // for the operator; empty if it is not refused
};

// RecordField::leave with the refusal as a result.
LeftField LeaveField(const RecordField& field, std::string_view text);

struct FieldEntry {
  std::string text;
  std::string note;  // why a number differs from the typed one, else empty
};

// Returns the field's content after a UTF-8 text was typed key by key into the empty field and the
// field lost the focus. Throws FieldRefusal if the form would drop a key; it names the character or
// the limit.
FieldEntry EnterText(const RecordField& field, std::string_view typed);

}  // namespace vrx
