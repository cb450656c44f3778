#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vrx {

// A line of a text of bytes and what ends it: CR LF, CR or LF, or nothing behind the last one.
struct TextLine {
  std::string_view text;
  std::string_view end;
};

// At least one line, also of an empty text. The lines point into the text.
std::vector<TextLine> SplitLines(std::string_view text);

// The bytes after an edit, of which only the lines without their ends are known. A line that
// stands as it stood keeps its end, and so does one that took the place of another; any other is
// ended by CR LF. The last line has no end.
std::string TakeEdit(std::string_view before, std::span<const std::string> edited);

}  // namespace vrx
