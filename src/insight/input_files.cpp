#include <cstddef>
#include <functional>

#include "base/number.h"
#include "insight/use.h"

namespace vrx {
namespace {

using CsvCells = std::vector<std::string>;

// The next line of RFC 4180; `text` loses it.
CsvCells NextLine(std::string_view& text) {
  CsvCells cells{""};
  bool quoted = false;
  std::size_t at = 0;
  for (; at < text.size(); ++at) {
    const char character = text[at];
    if (quoted && character == '"' && text.substr(at + 1).starts_with('"')) {
      cells.back() += '"';
      ++at;
    } else if (character == '"') {
      quoted = !quoted;
    } else if (!quoted && character == ',') {
      cells.emplace_back();
    } else if (!quoted && character == '\n') {
      ++at;
      break;
    } else if (quoted || character != '\r') {
      cells.back() += character;
    }
  }
  text.remove_prefix(at);
  return cells;
}

// A line of a file with its cells, which throw QuestionError for a text of another kind.
class InputLine {
 public:
  InputLine(const std::string& file, std::size_t number, CsvCells cells)
      : file_(file), number_(number), cells_(std::move(cells)) {}

  [[nodiscard]] const CsvCells& Cells() const { return cells_; }

  [[nodiscard]] const std::string& Name(std::size_t cell) const {
    if (cells_[cell].empty()) {
      Refuse(cell, "a name");
    }
    return cells_[cell];
  }
  [[nodiscard]] Date Day(std::size_t cell) const {
    const auto day = ParseStoredDate(cells_[cell]);
    if (!day) {
      Refuse(cell, "a day as YYYY-MM-DD");
    }
    return *day;
  }
  [[nodiscard]] double Amount(std::size_t cell) const {
    const auto amount = ParseNumber(cells_[cell]);
    if (!amount || *amount < 0) {
      Refuse(cell, "a number from 0");
    }
    return *amount;
  }

 private:
  [[noreturn]] void Refuse(std::size_t cell, const std::string& expected) const {
    throw QuestionError(file_ + ", line " + std::to_string(number_) + ": found '" + cells_[cell] +
                        "', expected " + expected + ".");
  }

  const std::string& file_;
  std::size_t number_;
  CsvCells cells_;
};

// Passes each line to `take`. A first line without a number or day in the cell `typed` is a
// heading.
void ReadLines(std::string_view text, const std::string& file, std::size_t columns,
               std::size_t typed, const std::function<void(const InputLine&)>& take) {
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  text.remove_prefix(text.starts_with(kByteOrderMark) ? kByteOrderMark.size() : 0);
  for (std::size_t number = 1; !text.empty(); ++number) {
    const CsvCells cells = NextLine(text);
    if (cells == CsvCells{""}) {
      continue;
    }
    if (cells.size() != columns) {
      throw QuestionError(file + ", line " + std::to_string(number) + ": found " +
                          std::to_string(cells.size()) + " values, expected " +
                          std::to_string(columns) + ".");
    }
    if (number == 1 && !ParseNumber(cells[typed]) && !ParseStoredDate(cells[typed]) &&
        !cells[typed].empty() && cells[typed].find_first_of("0123456789") == std::string::npos) {
      continue;
    }
    take(InputLine(file, number, cells));
  }
}

}  // namespace

std::vector<HeadCount> ParseHeadCounts(std::string_view text, const std::string& name) {
  std::vector<HeadCount> counts;
  ReadLines(text, name, 3, 1, [&](const InputLine& line) {
    counts.push_back({.pen = line.Name(0), .from = line.Day(1), .heads = line.Amount(2)});
  });
  return counts;
}

std::vector<IngredientPrice> ParsePrices(std::string_view text, const std::string& name) {
  std::vector<IngredientPrice> prices;
  ReadLines(text, name, 3, 1, [&](const InputLine& line) {
    prices.push_back({.ingredient = line.Name(0), .price = line.Amount(1), .from = line.Day(2)});
  });
  return prices;
}

std::vector<StockLine> ParseStock(std::string_view text, const std::string& name) {
  std::vector<StockLine> stock;
  ReadLines(text, name, 5, 1, [&](const InputLine& line) {
    stock.push_back({.ingredient = line.Name(0),
                     .date = line.Day(1),
                     .opening = line.Amount(2),
                     .received = line.Amount(3),
                     .closing = line.Amount(4)});
  });
  return stock;
}

}  // namespace vrx
