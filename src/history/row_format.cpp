#include "history/row_format.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <optional>
#include <string_view>

#include "base/date.h"
#include "base/number.h"
#include "history/columns.h"

namespace vrx {

namespace {

constexpr std::string_view kIngredientSumFormat = "0.0";

// "Medium Time": hh:mm AM/PM.
std::string MediumTime(const TimeOfDay& time) {
  const int hour = time.hour % 12 == 0 ? 12 : time.hour % 12;
  return Format(hour, "00") + ":" + Format(time.minute, "00") + (time.hour < 12 ? " AM" : " PM");
}

std::string ShownText(ColumnContent content, const std::string& text) {
  if (content == ColumnContent::kDate) {
    const std::optional<Date> date = ParseStoredDate(text);
    return date ? MediumText(*date) : text;
  }
  if (content == ColumnContent::kTime) {
    const std::optional<TimeOfDay> time = ParseStoredTime(text);
    return time ? MediumTime(*time) : text;
  }
  return text;
}

// A sum of stored numbers can be infinite.
std::string ShownNumber(double value, std::string_view format) {
  if (!std::isfinite(value)) {
    return std::signbit(value) ? "-Inf" : "Inf";
  }
  return format.empty() ? DefaultText(value) : Format(value, format);
}

double SumValue(const CellValue& sum) {
  if (const auto* const whole = std::get_if<std::int64_t>(&sum)) {
    return static_cast<double>(*whole);
  }
  const auto* const number = std::get_if<double>(&sum);
  return number == nullptr ? 0 : *number;
}

std::string ShownSum(int column, const CellValue& sum) {
  if (IngredientSlot(column) != 0) {
    return ShownNumber(SumValue(sum), kIngredientSumFormat);
  }
  std::string text = ShownNumber(SumValue(sum), "");
  const bool blank_zero = column == kActualBatchColumn || column == kActualFeedColumn;
  return blank_zero && text == "0" ? std::string() : text;
}

std::optional<double> WeightOf(const HistoryRow& row, int column) {
  const CellValue& value = row.cells.at(static_cast<std::size_t>(column) - 1);
  if (const auto* const whole = std::get_if<std::int64_t>(&value)) {
    return static_cast<double>(*whole);
  }
  const auto* const number = std::get_if<double>(&value);
  return number == nullptr ? std::nullopt : std::optional(*number);
}

// Empty for the records of the other kind.
Comparison ComparisonOf(const HistoryRow& row, const DifferenceColumn& column) {
  if (row.kind != HistoryRowKind::kRecord) {
    return row.comparisons.at(static_cast<std::size_t>(column.kind));
  }
  const auto* const type = std::get_if<std::string>(&row.cells.at(kTypeColumn - 1));
  if (type == nullptr || (*type == kBatchType) != (column.kind == ComparedKind::kBatch)) {
    return {};
  }
  return {.target = WeightOf(row, kTargetColumn), .actual = WeightOf(row, column.actual_column)};
}

// A closed group has no sum where its columns would mix batched and fed weights.
std::string ClosedGroupCell(const HistoryRow& row, int column) {
  const CellValue& sum = row.cells.at(static_cast<std::size_t>(column) - 1);
  return IsNull(sum) ? std::string() : ShownSum(column, sum);
}

std::string TotalsText(const ShownRow& row, const HistoryColumns& columns) {
  std::string text;
  for (const int column : columns.VisibleColumns()) {
    const std::string& figure = row.cells.at(static_cast<std::size_t>(column) - 1);
    if (!figure.empty()) {
      text += (text.empty() ? "" : ", ") + columns.Caption(column) + " " + figure;
    }
  }
  return text;
}

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

std::string ShownValue(const HistoryColumn& column, const CellValue& value) {
  if (const auto* const text = std::get_if<std::string>(&value)) {
    return ShownText(column.content, *text);
  }
  if (const auto* const whole = std::get_if<std::int64_t>(&value)) {
    return DefaultText(*whole);
  }
  const auto* const number = std::get_if<double>(&value);
  return number == nullptr ? std::string() : ShownNumber(*number, "");
}

std::string GroupCaption(const DataGroup& group, int depth, const CellValue& value) {
  const std::string_view key = group.levels.at(static_cast<std::size_t>(depth) - 1);
  const HistoryColumn& column = HistoryColumnAt(HistoryColumnOfKey(key));
  return column.group_prefix + ShownValue(column, value);
}

std::string ShownCell(const HistoryRow& row, const DataGroup& group, const HistoryColumns& columns,
                      int column) {
  if (const DifferenceColumn* const difference = FindDifferenceColumn(column)) {
    const Comparison weights = ComparisonOf(row, *difference);
    return difference->percent ? DifferencePercentText(weights) : DifferenceText(weights);
  }
  if (row.kind == HistoryRowKind::kGroup) {
    return ClosedGroupCell(row, column);
  }
  const HistoryColumn& traits = HistoryColumnAt(column);
  if (IsBlanked(group, row.depth, column)) {
    return {};
  }
  if (row.kind == HistoryRowKind::kTotal && !traits.summed) {
    return std::string(columns.TotalText(column));
  }
  if (row.cells.empty()) {
    return {};  // sums that are not known yet
  }
  const CellValue& value = row.cells.at(static_cast<std::size_t>(column) - 1);
  return row.kind == HistoryRowKind::kTotal ? ShownSum(column, value) : ShownValue(traits, value);
}

bool ShownRow::IsMarked(int column) const {
  const DifferenceColumn* const difference = FindDifferenceColumn(column);
  return difference != nullptr && marked.at(static_cast<std::size_t>(difference->kind));
}

ShownRow FormatRow(const HistoryRow& row, const DataGroup& group, const HistoryColumns& columns,
                   double tolerance) {
  ShownRow shown{.kind = row.kind, .depth = row.depth, .open = row.open};
  if (row.kind == HistoryRowKind::kGroup) {
    shown.caption = GroupCaption(group, row.depth, row.group);
    if (row.cells.empty()) {
      return shown;
    }
  }
  shown.cells.resize(kGridColumnCount);
  for (int column = 1; column <= kGridColumnCount; ++column) {
    if (columns.IsVisible(column)) {
      shown.cells[static_cast<std::size_t>(column) - 1] = ShownCell(row, group, columns, column);
    }
  }
  for (const DifferenceColumn& difference : kDifferenceColumns) {
    if (difference.percent && columns.IsVisible(difference.column)) {
      shown.marked.at(static_cast<std::size_t>(difference.kind)) =
          IsBeyond(ComparisonOf(row, difference), tolerance);
    }
  }
  if (row.kind == HistoryRowKind::kGroup) {
    shown.totals = TotalsText(shown, columns);
  }
  return shown;
}

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
