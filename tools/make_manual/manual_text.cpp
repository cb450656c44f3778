#include "make_manual/manual_text.h"

#include <algorithm>
#include <optional>
#include <sstream>

#include "base/error.h"
#include "make_manual/span_parser.h"

namespace vrx::manual {
namespace {

constexpr std::string_view kBlanks = " \t\r";

std::string_view Trim(std::string_view text) {
  const auto first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) {
    return {};
  }
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

// The cells of "| a | b |"; an escaped bar and one in code belong to the cell.
std::vector<std::string> CellsOf(std::string_view line) {
  std::vector<std::string> cells;
  std::string cell;
  bool code = false;
  line.remove_prefix(1);
  for (std::size_t i = 0; i < line.size(); ++i) {
    if (line[i] == '`') {
      code = !code;
    }
    if (line[i] == '|' && !code && (i == 0 || line[i - 1] != '\\')) {
      cells.emplace_back(Trim(cell));
      cell.clear();
    } else {
      cell += line[i];
    }
  }
  if (!Trim(cell).empty()) {
    throw Error("the row does not end in a bar");
  }
  return cells;
}

// "3. text" is 3 and "text".
std::optional<std::pair<int, std::string_view>> NumberedItem(std::string_view line) {
  const auto digits = line.find_first_not_of("0123456789");
  constexpr std::size_t kMaxDigits = 3;
  if (digits == 0 || digits > kMaxDigits || line.substr(digits, 2) != ". ") {
    return std::nullopt;
  }
  return std::pair{std::stoi(std::string(line.substr(0, digits))), line.substr(digits + 2)};
}

class ChapterParser {
 public:
  ChapterParser(std::string_view file, std::string_view text) : text_(std::string(text)) {
    chapter_.file = file;
  }

  Chapter Run() {
    try {
      for (std::string line; std::getline(text_, line);) {
        ++line_;
        Take(line);
      }
      EndText();
      if (chapter_.title.empty()) {
        throw Error("the chapter has no title");
      }
    } catch (const Error& error) {
      throw Error(chapter_.file + ":" + std::to_string(line_) + ": " + error.what());
    }
    return std::move(chapter_);
  }

 private:
  void Take(std::string_view line) {
    const std::string_view trimmed = Trim(line);
    if (trimmed.empty()) {
      EndText();
    } else if (line.starts_with("    ") && open_text_.empty()) {
      TakeCode(line.substr(4));
    } else if (trimmed.starts_with("# ")) {
      TakeTitle(trimmed.substr(2));
    } else if (trimmed.starts_with("## ")) {
      Begin(BlockKind::kSection, trimmed.substr(3));
      EndText();
    } else if (trimmed.starts_with("|")) {
      TakeRow(trimmed);
    } else if (trimmed.starts_with("![")) {
      TakeFigure(trimmed);
    } else if (trimmed.starts_with("- ")) {
      Begin(BlockKind::kBullet, trimmed.substr(2));
    } else if (const auto item = NumberedItem(trimmed)) {
      Begin(BlockKind::kNumbered, item->second).number = item->first;
    } else if (open_text_.empty()) {
      Begin(BlockKind::kParagraph, trimmed);
    } else {
      open_text_.append(" ").append(trimmed);
    }
  }

  Block& Begin(BlockKind kind, std::string_view text) {
    EndText();
    if (chapter_.title.empty()) {
      throw Error("a chapter begins with its title");
    }
    open_text_ = text;
    Block& block = chapter_.blocks.emplace_back();
    block.kind = kind;
    block.line = line_;
    return block;
  }

  void EndText() {
    if (!open_text_.empty()) {
      chapter_.blocks.back().spans = ParseSpans(open_text_);
      open_text_.clear();
    }
    rows_open_ = false;
  }

  void TakeTitle(std::string_view title) {
    if (!chapter_.title.empty()) {
      throw Error("a chapter has one title");
    }
    chapter_.title = title;
  }

  void TakeCode(std::string_view line) {
    if (chapter_.blocks.empty() || chapter_.blocks.back().kind != BlockKind::kCode) {
      Begin(BlockKind::kCode, {});
    } else {
      chapter_.blocks.back().text += '\n';
    }
    chapter_.blocks.back().text += line;
  }

  void TakeFigure(std::string_view line) {
    constexpr std::string_view kMiddle = "](screen:";
    const auto middle = line.find(kMiddle);
    if (middle == std::string_view::npos || !line.ends_with(")")) {
      throw Error("a figure reads ![CAPTION](screen:NAME)");
    }
    Block& block = Begin(BlockKind::kFigure, line.substr(2, middle - 2));
    block.text = line.substr(middle + kMiddle.size());
    block.text.pop_back();
    EndText();
  }

  void TakeRow(std::string_view line) {
    if (!rows_open_) {
      Begin(BlockKind::kTable, {});
      rows_open_ = true;
    }
    Block& table = chapter_.blocks.back();
    const std::vector<std::string> cells = CellsOf(line);
    if (table.rows.size() == 1 && table.widths.empty()) {
      for (const std::string& dashes : cells) {
        if (dashes.find_first_not_of('-') != std::string::npos) {
          throw Error("the heading of a table stands above a row of dashes");
        }
        table.widths.push_back(static_cast<int>(dashes.size()));
      }
    } else {
      std::vector<Spans>& row = table.rows.emplace_back();
      for (const std::string& cell : cells) {
        row.push_back(ParseSpans(cell));
      }
    }
    if (cells.size() != table.rows.front().size()) {
      throw Error(std::to_string(cells.size()) + " cells instead of " +
                  std::to_string(table.rows.front().size()));
    }
  }

  std::istringstream text_;
  Chapter chapter_;
  int line_ = 0;
  std::string open_text_;  // of the last block, still growing
  bool rows_open_ = false;
};

}  // namespace

Chapter ParseChapter(std::string_view file, std::string_view text) {
  return ChapterParser(file, text).Run();
}

std::vector<const Spans*> TextsOf(const Chapter& chapter) {
  std::vector<const Spans*> texts;
  for (const Block& block : chapter.blocks) {
    texts.push_back(&block.spans);
    for (const std::vector<Spans>& row : block.rows) {
      for (const Spans& cell : row) {
        texts.push_back(&cell);
      }
    }
  }
  return texts;
}

}  // namespace vrx::manual
