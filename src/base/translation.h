#pragma once

#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>

namespace vrx {

// The texts of the window are written in English and pass through Tr. scripts/update-languages
// collects them from the sources, so the argument is a literal. Command line and files are English.

// The text in the language of the window; the text itself without a translation.
[[nodiscard]] std::string Tr(std::string_view text);

// The same with the values in place of %1, %2 and so on, nine at the most.
[[nodiscard]] std::string Tr(std::string_view text, std::initializer_list<std::string> values);

// Marks a text of a table for the collection. It is translated where it is shown.
[[nodiscard]] constexpr std::string_view TrMark(std::string_view text) { return text; }

// The language of this process; without a translator texts stay English. Called before the window
// is made: nothing that is shown changes later.
void SetTranslator(std::function<std::string(std::string_view)> translator);

}  // namespace vrx
