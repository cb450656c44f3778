#include "history/copied_rows.h"

#include <array>
#include <cstddef>
#include <string_view>
#include <utility>
#include <vector>

#include "history/columns.h"
#include "history/row_format.h"

namespace vrx {
namespace {

bool IsControl(char character) {
  const auto code = static_cast<unsigned char>(character);
  return code < 0x20 || code == 0x7F;
}

// CR LF is one line end.
std::string OnOneLine(std::string_view text) {
  std::string line;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] == '\r' && at + 1 < text.size() && text[at + 1] == '\n') {
      continue;
    }
    line += IsControl(text[at]) ? ' ' : text[at];
  }
  return line;
}

std::string Escaped(std::string_view text) {
  constexpr std::string_view kMarks = "&<>\"";
  constexpr std::array<std::string_view, 4> kNames{"&amp;", "&lt;", "&gt;", "&quot;"};
  std::string escaped;
  for (const char character : text) {
    const std::size_t mark = kMarks.find(character);
    if (mark == std::string_view::npos) {
      escaped += character;
    } else {
      escaped += kNames.at(mark);
    }
  }
  return escaped;
}

// Both forms, line by line.
class RowWriter {
 public:
  explicit RowWriter(const HistoryColumns& columns) : columns_(columns.VisibleColumns()) {
    rows_.html =
        "<html><head><meta charset=\"utf-8\"></head><body><table border=\"1\" "
        "cellspacing=\"0\">\n";
    std::vector<std::string> captions;
    for (const int column : columns_) {
      captions.push_back(columns.Caption(column));
    }
    WriteCells(captions, "th");
  }

  void Write(const ShownRow& row) {
    if (row.kind == HistoryRowKind::kGroup) {
      WriteGroup(OnOneLine(row.caption));
      return;
    }
    std::vector<std::string> cells;
    for (const int column : columns_) {
      cells.push_back(row.cells.at(static_cast<std::size_t>(column) - 1));
    }
    WriteCells(cells, row.kind == HistoryRowKind::kTotal ? "th" : "td");
  }

  CopiedRows Finish() {
    rows_.html += "</table></body></html>\n";
    return std::move(rows_);
  }

 private:
  void WriteGroup(const std::string& caption) {
    rows_.text += caption + "\n";
    rows_.html += "<tr><th align=\"left\" colspan=\"" + std::to_string(columns_.size()) + "\">" +
                  Escaped(caption) + "</th></tr>\n";
  }

  void WriteCells(const std::vector<std::string>& cells, const std::string& tag) {
    rows_.html += "<tr>";
    for (std::size_t i = 0; i < cells.size(); ++i) {
      const std::string cell = OnOneLine(cells[i]);
      const bool right = HistoryColumnAt(columns_[i]).right_aligned;
      rows_.text += (i == 0 ? "" : "\t") + cell;
      rows_.html += "<" + tag + " align=\"" + (right ? "right" : "left") + "\">" + Escaped(cell) +
                    "</" + tag + ">";
    }
    rows_.text += "\n";
    rows_.html += "</tr>\n";
  }

  std::vector<int> columns_;
  CopiedRows rows_;
};

}  // namespace

std::int64_t CountRows(std::span<const CopiedRange> ranges) {
  std::int64_t count = 0;
  for (const CopiedRange& range : ranges) {
    count += range.last - range.first + 1;
  }
  return count;
}

CopiedRows CopyRows(HistoryGrid& grid, std::span<const CopiedRange> ranges) {
  RowWriter writer(grid.Columns());
  for (const CopiedRange& range : ranges) {
    for (std::int64_t row = range.first; row <= range.last; ++row) {
      writer.Write(grid.Row(row));
    }
  }
  return writer.Finish();
}

}  // namespace vrx
