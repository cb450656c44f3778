#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "base/error.h"
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

// The size of the indicator's pen table that the feed calls for: 200, 300 or 400, or nothing where
// no row above 100 is fed. The rows are those of the pen grid as it is filtered, so a row's place
// counts and not its pen's ID.
std::optional<int> CheckPenCapacity(std::span<const PenRecord> rows);

// " This recipe requires a 400-pen capacity option in the K2260 indicator."
std::string PenCapacityWarning(int size);

// A text that a form does not let into a field, or a field that is closed. what() is for the
// operator.
class FieldRefusal : public Error {
 public:
  using Error::Error;
};

inline constexpr std::string_view kFieldErrorTitle = "Field Error";

inline constexpr std::size_t kDescriptionLimit = 16;  // characters
inline constexpr int kBackspaceKey = 8;               // no filter lets it through: ask for it first

// A field that is typed, as the forms know it. One table holds them all.
struct RecordField {
  RecordKind kind;
  std::string_view name;  // of the database
  std::size_t limit;      // characters
  int (*filter)(int key);
  // The text that stands in the field once the focus has left it. Throws FieldRefusal.
  std::string (*leave)(std::string_view text);
};

// Throws std::out_of_range for a name that the kind does not have.
const RecordField& FieldOf(RecordKind kind, std::string_view name);

struct FieldEntry {
  std::string text;
  std::string note;  // why a number is not the one typed; empty where it is
};

// What the field holds after a UTF-8 text was typed key by key into the empty field and the focus
// has left it. Where the form would drop a key with a beep, this throws FieldRefusal with nothing
// half taken: it names the character, or the limit that was passed.
FieldEntry EnterText(const RecordField& field, std::string_view typed);

}  // namespace vrx
