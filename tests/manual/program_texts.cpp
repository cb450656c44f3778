#include "manual/program_texts.h"

#include <optional>
#include <utility>

#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kBlanks = " \t\r\n";

class LiteralScanner {
 public:
  explicit LiteralScanner(std::string_view source) : source_(source) {}

  std::vector<std::string> Run() {
    while (at_ < source_.size()) {
      Step();
    }
    End();
    return std::move(literals_);
  }

 private:
  void Step() {
    if (Starts("//") || Starts("#include")) {
      Skip("\n");
    } else if (Starts("/*")) {
      Skip("*/");
    } else if (Starts("R\"(")) {
      at_ += 3;
      const auto end = source_.find(")\"", at_);
      Append(std::string(source_.substr(at_, end - at_)));
      at_ = end + 2;
    } else if (IsDigitSeparator()) {
      ++at_;
    } else if (source_[at_] == '"' || source_[at_] == '\'') {
      Quoted(source_[at_]);
    } else {
      if (kBlanks.find(source_[at_]) == std::string_view::npos) {
        End();
      }
      ++at_;
    }
  }

  bool IsDigitSeparator() const {
    constexpr std::string_view kDigits = "0123456789abcdefABCDEF";
    return source_[at_] == '\'' && at_ > 0 && kDigits.find(source_[at_ - 1]) != kDigits.npos;
  }

  void Quoted(char mark) {
    std::string text;
    for (++at_; source_.at(at_) != mark; ++at_) {
      text += source_[at_] == '\\' ? Escaped() : source_[at_];
    }
    ++at_;
    if (mark == '"') {
      Append(text);
    } else {
      End();
    }
  }

  char Escaped() {
    const char code = source_.at(++at_);
    return code == 'n' || code == 'r' || code == 't' ? ' ' : code;
  }

  void Append(const std::string& text) { open_ = open_.value_or("") + text; }
  void End() {
    if (open_) {
      literals_.push_back(*std::exchange(open_, std::nullopt));
    }
  }

  bool Starts(std::string_view mark) const { return source_.substr(at_).starts_with(mark); }
  void Skip(std::string_view mark) {
    const auto end = source_.find(mark, at_);
    at_ = end == std::string_view::npos ? source_.size() : end + mark.size();
  }

  std::string_view source_;
  std::size_t at_ = 0;
  std::optional<std::string> open_;
  std::vector<std::string> literals_;
};

}  // namespace

std::vector<std::string> StringLiterals(std::string_view source) {
  return LiteralScanner(source).Run();
}

std::string OneLine(std::string_view text) {
  std::string line;
  bool blank = false;
  for (const char character : text) {
    if (kBlanks.find(character) != std::string_view::npos) {
      blank = !line.empty();
    } else {
      line += blank ? " " : "";
      line += character;
      blank = false;
    }
  }
  return line;
}

ProgramTexts::ProgramTexts(const fs::path& sources) {
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(sources)) {
    const std::string extension = entry.path().extension().string();
    const std::string library = fs::relative(entry.path(), sources).begin()->string();
    if ((extension != ".cpp" && extension != ".h") || library == "ctl" || library == "simulator") {
      continue;
    }
    for (const std::string& literal : StringLiterals(ReadAll(entry.path()))) {
      const std::string line = OneLine(literal);
      all_ += line + '\n';
      lines_.push_back(line);
      std::string caption;
      for (const char character : line) {
        caption += character == '&' ? std::string() : std::string(1, character);
      }
      captions_.insert(caption);
    }
  }
}

bool ProgramTexts::HasCaption(std::string_view caption) const {
  return captions_.contains(caption);
}

bool ProgramTexts::HoldsPart(std::string_view part) const {
  return all_.find(OneLine(part)) != std::string::npos;
}

}  // namespace vrx::testing
