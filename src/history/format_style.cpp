#include "history/format_style.h"

#include <array>
#include <cstddef>

#include "history/history_column.h"

namespace vrx {
namespace {

constexpr StyleColor System(SystemColor color) { return {.system = color}; }
constexpr StyleColor Rgb(std::uint32_t rgb) { return {.rgb = rgb}; }
constexpr std::nullopt_t kNotSet = std::nullopt;

// In the order of the enumeration.
using enum FormatStyle;
constexpr std::array<FormatStyleLook, 9> kLooks{{
    {kDefault, "Default", System(SystemColor::kWindowText), System(SystemColor::kInfoBack),
     "Courier New", 9.75, false},
    {kSelectedRow, "SelectedRow", System(SystemColor::kHighlightText),
     System(SystemColor::kHighlight), "", 0, false},
    {kOddRow, "OddRow", kNotSet, Rgb(0xFFFFBF), "", 0, false},
    {kEvenRow, "EvenRow", kNotSet, Rgb(0xB0D7C1), "", 0, false},
    {kRowGroup, "RowGroup", Rgb(0x0000C0), System(SystemColor::kWindow), "", 0, false},
    {kPreviewRow, "PreviewRow", Rgb(0x0000FF), kNotSet, "", 0, false},
    {kFeedStyle, "FeedStyle", Rgb(0xFF0000), System(SystemColor::kWindow), "Courier New", 10, true},
    {kBatchStyle, "BatchStyle", Rgb(0x0000FF), System(SystemColor::kWindow), "", 10, true},
    {kTargetStyle, "TargetStyle", Rgb(0x008000), System(SystemColor::kWindow), "", 10, true},
}};

}  // namespace

const FormatStyleLook& LookOf(FormatStyle style) {
  return kLooks.at(static_cast<std::size_t>(style));
}

FormatStyle RowStyle(HistoryRowKind kind, std::int64_t row) {
  switch (kind) {
    case HistoryRowKind::kGroup:
      return kRowGroup;
    case HistoryRowKind::kTotal:
      return kDefault;
    case HistoryRowKind::kRecord:
      break;
  }
  return row % 2 == 1 ? kOddRow : kEvenRow;
}

std::optional<FormatStyle> CellStyle(HistoryRowKind kind, int column) {
  if (kind != HistoryRowKind::kTotal) {
    return std::nullopt;
  }
  switch (column) {
    case kTargetColumn:
      return kTargetStyle;
    case kActualBatchColumn:
      return kBatchStyle;
    case kActualFeedColumn:
      return kFeedStyle;
    default:
      return std::nullopt;
  }
}

}  // namespace vrx
