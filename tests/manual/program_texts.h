#pragma once

#include <filesystem>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace vrx::testing {

// The texts between quotation marks of C++ source, those that follow each other joined, with their
// escapes resolved; comments and characters left out.
std::vector<std::string> StringLiterals(std::string_view source);

// Every text of the program: the literals of the sources of the desktop and of what is below it.
class ProgramTexts {
 public:
  explicit ProgramTexts(const std::filesystem::path& sources);

  // As a caption: without "&" and without surrounding blanks.
  bool HasCaption(std::string_view caption) const;

  // Some text holds this part; blanks and line ends count as one blank.
  bool HoldsPart(std::string_view part) const;

  // Each text on one line.
  const std::vector<std::string>& Lines() const { return lines_; }

 private:
  std::set<std::string, std::less<>> captions_;
  std::vector<std::string> lines_;
  std::string all_;  // one behind the other, each closed by a line feed
};

// One blank for each run of blanks and line ends, none at the ends.
std::string OneLine(std::string_view text);

}  // namespace vrx::testing
