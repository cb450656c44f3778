#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace vrx {

// Texts of files, which are English in every language of the window.

// The pattern with the values in place of %1, %2 and so on, nine at the most.
[[nodiscard]] std::string FilledIn(std::string_view pattern,
                                   std::initializer_list<std::string> values);

// While it exists, Tr returns texts as they are in the thread that made it.
class EnglishTexts {
 public:
  EnglishTexts();
  ~EnglishTexts();
  EnglishTexts(const EnglishTexts&) = delete;
  EnglishTexts& operator=(const EnglishTexts&) = delete;
};

}  // namespace vrx
