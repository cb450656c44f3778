#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "history/columns.h"
#include "history/data_group.h"
#include "history/group_query.h"
#include "history/grouped_rows.h"

namespace vrx {

// A row as the grid shows it; the record behind it is another matter.
struct ShownRow {
  HistoryRowKind kind = HistoryRowKind::kRecord;
  int depth = 1;
  bool open = false;         // of a group row
  std::string caption = {};  // of a group row
  // By column index less 1: the texts of the visible columns, "" for the others. Of a group row
  // none.
  std::vector<std::string> cells = {};
};

// A stored value as its column shows it: numbers in their default text form, "14-Mar-11",
// "02:05 PM". NULL is empty, and a value that is not of the column's kind is shown as it stands.
std::string ShownValue(const HistoryColumn& column, const CellValue& value);

// The group prefix of the level's column, directly followed by the value.
std::string GroupCaption(const DataGroup& group, int depth, const CellValue& value);

// A cell of a record or total row, whether its column is visible or not. A total row shows its
// sums, a sum over nothing as 0, and "Total:"; where the depth says so, and for a batch or feed
// weight of 0, nothing.
std::string ShownCell(const HistoryRow& row, const DataGroup& group, const HistoryColumns& columns,
                      int column);

ShownRow FormatRow(const HistoryRow& row, const DataGroup& group, const HistoryColumns& columns);

// The format styles of the history grid.
enum class FormatStyle {
  kDefault,
  kSelectedRow,
  kOddRow,
  kEvenRow,
  kRowGroup,
  kPreviewRow,
  kFeedStyle,
  kBatchStyle,
  kTargetStyle
};

// A colour told by its role on the desktop, for which the palette has its own.
enum class SystemColor { kHighlight, kHighlightText, kWindow, kWindowText, kInfoBack };

struct StyleColor {
  std::optional<SystemColor> system = {};
  std::uint32_t rgb = 0;  // 0xRRGGBB, where it is no system colour
};

// What a style sets; nothing leaves it as `Default` has it.
struct FormatStyleLook {
  FormatStyle style;
  std::string_view name;
  std::optional<StyleColor> text;
  std::optional<StyleColor> back;
  std::string_view font;  // the family
  double points;          // 0: not set
  bool bold;
};

const FormatStyleLook& LookOf(FormatStyle style);

// Of a row by its number in the grid: records are striped.
FormatStyle RowStyle(HistoryRowKind kind, std::int64_t row);

// Of a cell, over its row's: the weights of a total row are told apart by colour.
std::optional<FormatStyle> CellStyle(HistoryRowKind kind, int column);

}  // namespace vrx
