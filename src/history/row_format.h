#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "history/columns.h"
#include "history/data_group.h"
#include "history/difference.h"
#include "history/group_query.h"
#include "history/grouped_rows.h"

namespace vrx {

// A formatted row of the grid.
struct ShownRow {
  HistoryRowKind kind = HistoryRowKind::kRecord;
  int depth = 1;
  bool open = false;         // of a group row
  std::string caption = {};  // of a group row
  // By column index - 1: the texts of the visible columns, "" for the others. Empty for a group
  // row, except a closed one whose sums are known.
  std::vector<std::string> cells = {};
  // These sums with the captions of their columns: "Batch Wt 5180, Feed Wt 5175".
  std::string totals = {};
  // By ComparedKind: the difference is beyond the tolerance.
  std::array<bool, 2> marked = {};

  // True for a difference beyond the tolerance, in both columns of its kind.
  [[nodiscard]] bool IsMarked(int column) const;
};

// Formats a stored value for its column: numbers in their default text form, "14-Mar-11",
// "02:05 PM". NULL is empty; a value of another kind than the column's is shown unchanged.
[[nodiscard]] std::string ShownValue(const HistoryColumn& column, const CellValue& value);

// The group prefix of the level's column, directly followed by the value.
[[nodiscard]] std::string GroupCaption(const DataGroup& group, int depth, const CellValue& value);

// Text of a cell of a record or total row, also if its column is hidden. A total row has its sums,
// 0 for a sum without values, and "Total:". Cells that are blank at its depth, sums of batch or
// feed weight that are 0, and differences of the other kind of records are empty.
[[nodiscard]] std::string ShownCell(const HistoryRow& row, const DataGroup& group,
                                    const HistoryColumns& columns, int column);

// `tolerance` is the percentage beyond which a difference is marked.
[[nodiscard]] ShownRow FormatRow(const HistoryRow& row, const DataGroup& group,
                                 const HistoryColumns& columns, double tolerance = kUsualTolerance);

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

// Color by its role on the desktop; the palette of the desktop defines it.
enum class SystemColor { kHighlight, kHighlightText, kWindow, kWindowText, kInfoBack };

struct StyleColor {
  std::optional<SystemColor> system = {};
  std::uint32_t rgb = 0;  // 0xRRGGBB, if `system` is empty
};

// Properties of a style. An empty property is that of `Default`.
struct FormatStyleLook {
  FormatStyle style;
  std::string_view name;
  std::optional<StyleColor> text;
  std::optional<StyleColor> back;
  std::string_view font;  // the family
  double points;          // 0: not set
  bool bold;
};

[[nodiscard]] const FormatStyleLook& LookOf(FormatStyle style);

// Style of a row by its number in the grid: records alternate between two styles.
[[nodiscard]] FormatStyle RowStyle(HistoryRowKind kind, std::int64_t row);

// Style of a cell that overrides the style of its row: weights of a total row have their own
// colors.
[[nodiscard]] std::optional<FormatStyle> CellStyle(HistoryRowKind kind, int column);

}  // namespace vrx
