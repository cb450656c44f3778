#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "base/error.h"
#include "feed/record_kind.h"

namespace vrx {

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
