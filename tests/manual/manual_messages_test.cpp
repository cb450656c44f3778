// Nothing that the program says is missing in the manual.

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>

#include "manual/manual_chapters.h"
#include "manual/program_texts.h"

namespace vrx::testing {
namespace {

using manual::Chapter;
using manual::SpanStyle;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

// Quotations and captions of the manual, a line feed in place of what varies.
std::string WordsOfTheManual() {
  std::string words;
  for (const Chapter& chapter : ManualChapters()) {
    for (const Spans& spans : TextsOf(chapter)) {
      for (const Span& span : spans) {
        const bool is_message = span.style == SpanStyle::kCaption ||
                                (span.quote > 0 && span.style == SpanStyle::kPlain);
        words += is_message ? OneLine(span.text) : "\n";
      }
      words += "\n";
    }
  }
  return words;
}

bool EndsASentence(char character) {
  return std::string_view(".!?").find(character) != std::string_view::npos;
}

// The sentences of a text, and its parts between the places that a value is put into ("%1").
std::vector<std::string> SentencesOf(std::string_view text) {
  std::vector<std::string> sentences(1);
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool behind_sentence = text[i] == ' ' && i > 0 && EndsASentence(text[i - 1]);
    if (text[i] == '%' && i + 1 < text.size() && std::isdigit(text[i + 1]) != 0) {
      sentences.emplace_back();
      ++i;
    } else if (behind_sentence) {
      sentences.emplace_back();
    } else {
      sentences.back() += text[i];
    }
  }
  return sentences;
}

bool IsQueryOfADatabase(std::string_view text) {
  return text.ends_with(" = ?") || text.starts_with("SELECT ") || text.starts_with("DELETE ");
}

// The title of a file dialog, which asks for nothing but a name.
bool IsTitleOfAFileDialog(std::string_view text) { return text.ends_with(" As..."); }

// The form's words at its making; the program puts those of the pen in use in their place.
constexpr std::string_view kNeverShown =
    "This recipe will require the 200 pen capacity option in the K2260 indicator.";

// What reads as a message: a sentence of three words or more, the title of an error, or what it
// says of one.
bool IsMessage(std::string_view text) {
  if (text.empty() || std::isupper(static_cast<unsigned char>(text.front())) == 0 ||
      IsQueryOfADatabase(text) || IsTitleOfAFileDialog(text) || text == kNeverShown) {
    return false;
  }
  const auto blanks = std::count(text.begin(), text.end(), ' ');
  return (EndsASentence(text.back()) && blanks >= 2) || text.ends_with(" Error") ||
         (text.starts_with("Error ") && blanks >= 2);
}

std::vector<std::string> MissingIn(const std::string& words,
                                   const std::vector<std::string>& program) {
  constexpr std::size_t kTelling = 5;  // letters; less is what surrounds a value
  std::set<std::string> missing;
  for (const std::string& text : program) {
    if (!IsMessage(text)) {
      continue;
    }
    for (const std::string& sentence : SentencesOf(text)) {
      if (sentence.size() >= kTelling && words.find(OneLine(sentence)) == std::string::npos) {
        missing.insert(sentence);
      }
    }
  }
  return {missing.begin(), missing.end()};
}

// Sentences that explain figures beside them, on the tab Insight and on the page of a period.
bool ExplainsFigures(const std::filesystem::path& source) {
  const std::string name = source.filename().string();
  return name == "accuracy_tables.cpp" || name == "batch_tables.cpp" || name == "pen_tables.cpp" ||
         name == "statement_table.cpp" || name == "insight_topics.cpp" ||
         name == "period_sections.cpp";
}

TEST(ManualMessages, HaveEveryMessageOfTheProgram) {
  std::set<std::string> explanations;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(VRX_SOURCE_DIR "/src")) {
    if (entry.is_regular_file() && ExplainsFigures(entry.path())) {
      for (const std::string& literal : StringLiterals(ReadAll(entry.path()))) {
        explanations.insert(OneLine(literal));
      }
    }
  }
  std::vector<std::string> lines = ProgramTexts(VRX_SOURCE_DIR "/src").Lines();
  std::erase_if(lines, [&](const std::string& line) { return explanations.contains(line); });
  ASSERT_THAT(lines, Contains("KRM Successfully Detected."));
  EXPECT_GT(std::count_if(lines.begin(), lines.end(), IsMessage), 150);
  EXPECT_THAT(MissingIn(WordsOfTheManual(), lines), IsEmpty());
}

TEST(ManualMessages, AreMissedSentenceBySentence) {
  EXPECT_THAT(MissingIn("The pump is dry.\nPump Error\n",
                        {"The pump is dry. Fill it now.", "Pump Error", "Valve Error",
                         "cause: a b c.", "WHERE ID = ?", "There is no %1 here."}),
              ElementsAre(" here.", "Fill it now.", "There is no ", "Valve Error"));
}

}  // namespace
}  // namespace vrx::testing
