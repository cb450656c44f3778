#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace vrx {

// Key filters: the key's code in, the code to let through out, 0 to drop it. A backspace is not let
// through by any of them: the field tests for it first. The indicator's display shows the letters b
// and d only in lower case, which is why every name has them so.
int FilterNameKey(int key);         // A-Z upper-cased but b and d, digits, "/", "+", "-", blank
int FilterDescriptionKey(int key);  // letters as typed, digits, "+", "-", blank
int FilterDigitKey(int key);        // ration targets and pen feed
int FilterDigitKey2(int key);       // dry matter, head count, the ration grid
int FilterDecimalKey(int key);      // digits and "."

// The text form of FilterNameKey: one character in, one or none out.
std::string NormalizeNameChar(std::string_view character);

// A name from the first six characters of a description; a dropped character leaves no gap and is
// not replaced by a seventh.
std::string AbbreviateDescription(std::string_view description);

// A percentage as typed into a recipe line: 0 to 100 with at most two decimals; "" passes.
bool ValidPercentText(std::string_view text);

// When a description gives a record its name: once it was typed into since the name was last
// changed. One object serves the description boxes of all three kinds of records, which share what
// it remembers.
class AutoAbbreviation {
 public:
  // A key in a description box that holds `length` characters. Returns the code to let through, 0
  // to drop it. A dropped key counts as typed as long as there was room for it; a key without room
  // ends what was typed.
  int DescriptionKey(int key, std::size_t length);

  // The text of a name box has changed, by whomever.
  void NameChanged() { typed_ = false; }

  // The focus has left a description box. Returns the name to write, which the name box then
  // reports as changed; nothing when the name stays. A description whose first six characters hold
  // nothing for a name leaves the name as well: it is mandatory.
  std::optional<std::string> LeaveDescription(std::string_view description,
                                              bool auto_abbreviate) const;

 private:
  bool typed_ = false;
};

}  // namespace vrx
