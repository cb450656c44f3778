#include "export/csv_lines.h"

#include <algorithm>
#include <variant>

#include "base/encoding.h"
#include "base/error.h"
#include "export/cell_text.h"

namespace vrx {
namespace {

constexpr char kSeparator = ',';
constexpr char kBlank = ' ';

bool IsNull(const CellView& cell) { return std::holds_alternative<std::monostate>(cell); }

bool IsAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(),
                     [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

void AppendCell(const CellView& cell, ColumnContent content, std::string& line) {
  const auto* const text = std::get_if<std::string_view>(&cell);
  if (text != nullptr && !IsAscii(*text)) {
    line += Utf8ToWindows1252(*text);
    return;
  }
  AppendCellText(cell, content, line);
}

}  // namespace

std::string BuildCsvHeader(const ColumnDictionary& dictionary, std::string_view exclude) {
  std::string header;
  for (const ExportedColumn& column : dictionary) {
    if (exclude.find(column.caption) == std::string_view::npos) {
      header += header.empty() ? "" : std::string(1, kSeparator);
      header += column.caption;
    }
  }
  return Utf8ToWindows1252(header);
}

CsvColumns::CsvColumns(const ColumnDictionary& dictionary, std::span<const WalkedField> list)
    : first_caption_(dictionary.empty() ? "" : dictionary.front().caption) {
  for (const ExportedColumn& column : dictionary) {
    const auto found = std::find_if(list.begin(), list.end(), [&](const WalkedField& field) {
      return field.name == column.field;
    });
    if (found == list.end()) {
      places_.push_back({std::nullopt, ColumnContent::kText});
    } else {
      places_.push_back({static_cast<std::size_t>(found - list.begin()), found->content});
    }
  }
}

void BuildCsvDataRow(const CsvColumns& columns, std::span<const CellView> cells,
                     std::string& line) {
  bool first = true;
  for (const CsvColumns::Place& place : columns.Places()) {
    if (place.cell) {
      const CellView& cell = cells[*place.cell];
      if (first && IsNull(cell)) {
        throw Error("a row has no " + columns.FirstCaption() +
                    ", which is the first column: it cannot be written as CSV");
      }
      AppendCell(cell, place.content, line);
    }
    line += kSeparator;
    first = false;
  }
}

void BuildCsvPlainRow(const CsvColumns& columns, std::span<const CellView> cells,
                      std::string& line) {
  bool first = true;
  for (const CsvColumns::Place& place : columns.Places()) {
    const CellView cell = place.cell ? cells[*place.cell] : CellView();
    if (!first) {
      line += kSeparator;
    } else if (IsNull(cell)) {
      line += kBlank;
    }
    AppendCell(cell, place.content, line);
    first = false;
  }
}

void BuildCsvValueLine(const CellView& value, ColumnContent content, std::string& line) {
  AppendCell(value, content, line);
}

void BuildCsvTotalRow(const ColumnDictionary& dictionary, std::span<const CsvTotal> totals,
                      std::string& line) {
  for (const ExportedColumn& column : dictionary) {
    const auto found = std::find_if(totals.begin(), totals.end(), [&](const CsvTotal& total) {
      return total.key == column.field;
    });
    if (found == totals.end()) {
      line += kBlank;
    } else {
      line += found->value;
    }
    line += kSeparator;
  }
}

}  // namespace vrx
