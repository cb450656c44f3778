#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "history/grouped_rows.h"

namespace vrx {

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
