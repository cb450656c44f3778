#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

#include "history/format_style.h"
#include "report/reports.h"

namespace vrx {
namespace {

constexpr std::uint32_t kCaptionColor = 0x0000C0;

ReportRowKind KindOf(HistoryRowKind kind) {
  switch (kind) {
    case HistoryRowKind::kGroup:
      return ReportRowKind::kGroup;
    case HistoryRowKind::kTotal:
      return ReportRowKind::kTotal;
    case HistoryRowKind::kRecord:
      break;
  }
  return ReportRowKind::kRecord;
}

class HistoryRows : public ReportRows {
 public:
  HistoryRows(HistoryGrid& grid, std::vector<int> columns)
      : grid_(grid), columns_(std::move(columns)) {}

  std::int64_t Count() const override { return grid_.RowCount(); }

  ReportRow Row(std::int64_t row) override {
    ShownRow shown = grid_.Row(row);
    ReportRow printed{
        .kind = KindOf(shown.kind), .level = shown.depth, .caption = std::move(shown.caption)};
    if (shown.kind != HistoryRowKind::kGroup) {
      for (const int column : columns_) {
        printed.cells.push_back(std::move(shown.cells.at(static_cast<std::size_t>(column) - 1)));
      }
    }
    return printed;
  }

  bool IsHead(std::int64_t row) override {
    return grid_.KindOf(row) == HistoryRowKind::kGroup && grid_.Row(row).open;
  }

 private:
  HistoryGrid& grid_;
  std::vector<int> columns_;
};

std::optional<std::uint32_t> TotalColor(int column) {
  const auto style = CellStyle(HistoryRowKind::kTotal, column);
  return style ? std::optional(LookOf(*style).text->rgb) : std::nullopt;
}

}  // namespace

Report HistoryReport(HistoryGrid& grid, bool fit_columns, const ReportFacts& facts) {
  const std::vector<int> visible = grid.Columns().VisibleColumns();
  std::vector<ReportColumn> columns;
  columns.reserve(visible.size());
  for (const int column : visible) {
    columns.push_back({.caption = grid.Columns().Caption(column),
                       .right_aligned = HistoryColumnAt(column).right_aligned,
                       .total_color = TotalColor(column)});
  }
  return {.design = {.texts = SetPageHeadersTransactions(grid.Group().item, facts),
                     .columns = std::move(columns),
                     .captions = grid.ColumnHeaders(),
                     .fit_columns = fit_columns,
                     .grid_lines = facts.grid_lines,
                     .fixed_pitch = true,
                     .caption_color = kCaptionColor,
                     .group_color = LookOf(FormatStyle::kRowGroup).text->rgb},
          .rows = std::make_unique<HistoryRows>(grid, visible)};
}

}  // namespace vrx
