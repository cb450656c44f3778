#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace vrx {

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
