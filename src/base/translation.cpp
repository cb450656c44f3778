#include "base/translation.h"

#include <utility>

#include "base/english_texts.h"

namespace vrx {
namespace {

// Process-wide, as the language is: texts are made in every library.
std::function<std::string(std::string_view)>& Translator() {
  static std::function<std::string(std::string_view)> translator;
  return translator;
}

thread_local int english_texts = 0;  // how many EnglishTexts there are

}  // namespace

std::string Tr(std::string_view text) {
  return Translator() && english_texts == 0 ? Translator()(text) : std::string(text);
}

std::string Tr(std::string_view text, std::initializer_list<std::string> values) {
  return FilledIn(Tr(text), values);
}

std::string FilledIn(std::string_view pattern, std::initializer_list<std::string> values) {
  std::string filled;
  for (std::size_t i = 0; i < pattern.size(); ++i) {
    const std::size_t value = pattern[i] == '%' && i + 1 < pattern.size() && pattern[i + 1] >= '1'
                                  ? static_cast<std::size_t>(pattern[i + 1] - '1')
                                  : values.size();
    if (value < values.size()) {
      filled += values.begin()[value];
      ++i;
    } else {
      filled += pattern[i];
    }
  }
  return filled;
}

void SetTranslator(std::function<std::string(std::string_view)> translator) {
  Translator() = std::move(translator);
}

EnglishTexts::EnglishTexts() { ++english_texts; }

EnglishTexts::~EnglishTexts() { --english_texts; }

}  // namespace vrx
