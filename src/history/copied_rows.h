#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "history/history_grid.h"

namespace vrx {

// Rows of the grid by their numbers, both ends included.
struct CopiedRange {
  std::int64_t first;
  std::int64_t last;
};

// Rows as other programs take them from the clipboard, UTF-8: a line of captions, then the rows as
// they are shown, the visible columns in their order. A group row has its caption in the first
// column. A tab, a line end and any other control character of a cell is a blank.
struct CopiedRows {
  std::string text;  // cells separated by tabs, lines by line feeds
  std::string html;  // a table
};

// About 1 kB for each row.
inline constexpr std::int64_t kMostCopiedRows = 20000;

[[nodiscard]] std::int64_t CountRows(std::span<const CopiedRange> ranges);

// The ranges are ascending and do not overlap. Throws DatabaseError.
[[nodiscard]] CopiedRows CopyRows(HistoryGrid& grid, std::span<const CopiedRange> ranges);

}  // namespace vrx
