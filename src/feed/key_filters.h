#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "base/translation.h"
namespace vrx {

inline constexpr std::size_t kDescriptionLimit = 16;  // characters
inline constexpr int kBackspaceKey = 8;               // dropped by every filter, so check it first

// Key filters. Each takes a key code and returns the code to accept, or 0 to drop the key. All drop
// backspace; fields check for it first. Names have "b" and "d" in lower case because the indicator
// cannot display them in upper case.
[[nodiscard]] int FilterNameKey(int key);  // letters upper-cased except b and d, digits, "/+- "
[[nodiscard]] int FilterDescriptionKey(int key);  // letters as typed, digits, "+- "
[[nodiscard]] int FilterDigitKey(int key);        // digits: ration target and feed amount
[[nodiscard]] int FilterDigitKey2(int key);       // digits: dry matter, head count, recipe grid
[[nodiscard]] int FilterDecimalKey(int key);      // digits and "."

// What the fields with these filters take, as a refused key is explained: "Only digits".
inline constexpr std::string_view kTakesName = TrMark("Only letters, digits, / + - and spaces");
inline constexpr std::string_view kTakesDescription =
    TrMark("Only letters, digits, + - and spaces");
inline constexpr std::string_view kTakesDigits = TrMark("Only digits");
inline constexpr std::string_view kTakesWholeNumbers = TrMark("Only whole numbers, no decimals");

// Why a field of digits drops a key: a decimal key asks for another number, any other key for none.
[[nodiscard]] std::string_view DigitRefusal(int key);

// "Full: at most 6 characters"
[[nodiscard]] std::string FullRefusal(std::size_t limit);

// The point or the comma: the decimal key of a keyboard, whatever its language is.
constexpr bool IsDecimalKey(int key) { return key == '.' || key == ','; }

// FilterNameKey for texts: returns one character or an empty text.
[[nodiscard]] std::string NormalizeNameChar(std::string_view character);

// Name from the first six characters of a description. Dropped characters are not replaced by later
// ones.
[[nodiscard]] std::string AbbreviateDescription(std::string_view description);

// True for "" and for a number from 0 to 100 with at most two decimals.
[[nodiscard]] bool ValidPercentText(std::string_view text);

// Decides when a description determines the name of its record: if a key was typed into it after
// the last change of the name. The description boxes of all three kinds of records share one
// object.
class AutoAbbreviation {
 public:
  // Filters a key in a description box that has `length` characters; returns 0 to drop it. A key
  // that the filter drops is treated as typed, but a key in a full box resets the typed state.
  int DescriptionKey(int key, std::size_t length);

  // Called when the text of a name box has changed for any reason.
  void NameChanged() { typed_ = false; }

  // Called when a description box loses the focus. Returns the new name, or nothing to keep the
  // name; it is kept too if the description gives an empty name, because a name is mandatory. The
  // caller then changes the name box, which calls NameChanged.
  [[nodiscard]] std::optional<std::string> LeaveDescription(std::string_view description,
                                                            bool auto_abbreviate) const;

 private:
  bool typed_ = false;
};

}  // namespace vrx
