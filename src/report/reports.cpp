#include "report/reports.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "base/encoding.h"
#include "exchange/imported_data.h"
#include "feed/recipe_columns.h"
#include "history/row_format.h"

namespace vrx {

namespace {

std::string YesNo(bool yes) { return yes ? "Yes" : "No"; }

Report ListedReport(PageTexts texts, std::vector<ReportColumn> columns, std::vector<ReportRow> rows,
                    const ReportFacts& facts) {
  return {.design = {.texts = std::move(texts),
                     .columns = std::move(columns),
                     .grid_lines = facts.grid_lines},
          .rows = std::make_unique<ListedRows>(std::move(rows))};
}

std::string IngredientName(const std::map<std::string, std::string>& names, const std::string& id) {
  const auto found = names.find(id);
  return found == names.end() ? std::string() : found->second;
}

std::string PrintedCell(const RecipeLineRecord& line, int column,
                        const std::map<std::string, std::string>& names) {
  return column == kColumnIngredient ? IngredientName(names, line.ingredient)
                                     : CellText(line, column);
}

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

  [[nodiscard]] std::int64_t Count() const override { return grid_.RowCount(); }

  ReportRow Row(std::int64_t row) override {
    ShownRow shown = grid_.Row(row);
    ReportRow printed{
        .kind = KindOf(shown.kind), .level = shown.depth, .caption = std::move(shown.caption)};
    if (shown.kind != HistoryRowKind::kGroup) {
      for (const int column : columns_) {
        printed.cells.push_back(std::move(shown.cells.at(static_cast<std::size_t>(column) - 1)));
        printed.bold.push_back(FindDifferenceColumn(column) == nullptr
                                   ? std::nullopt
                                   : std::optional(shown.IsMarked(column)));
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

class ImportRows : public ReportRows {
 public:
  ImportRows(const ImportedData& import, int count, std::vector<int> columns)
      : import_(import), count_(count), columns_(std::move(columns)) {}

  [[nodiscard]] std::int64_t Count() const override { return count_; }

  ReportRow Row(std::int64_t row) override {
    ReportRow printed;
    for (const int column : columns_) {
      printed.cells.push_back(
          Windows1252ToUtf8(import_.Cell(static_cast<std::size_t>(row), column)));
    }
    return printed;
  }

 private:
  const ImportedData& import_;
  int count_;
  std::vector<int> columns_;
};

}  // namespace

Report IngredientReport(const std::vector<IngredientRecord>& rows, bool active_only,
                        const ReportFacts& facts) {
  std::vector<ReportRow> listed;
  listed.reserve(rows.size());
  for (const IngredientRecord& row : rows) {
    listed.push_back({.cells = {std::to_string(row.id), row.name, row.description,
                                std::to_string(row.dry_matter_percent), YesNo(row.hand_add)}});
  }
  return ListedReport(SetPageHeadersIngredients(active_only, facts),
                      {{.caption = "ID", .right_aligned = true},
                       {.caption = "Name"},
                       {.caption = "Description"},
                       {.caption = "Dry Matter (%)", .right_aligned = true},
                       {.caption = "Hand-Add"}},
                      std::move(listed), facts);
}

Report PenReport(const std::vector<PenRecord>& rows, bool active_only, const ReportFacts& facts) {
  std::vector<ReportRow> listed;
  listed.reserve(rows.size());
  for (const PenRecord& row : rows) {
    listed.push_back(
        {.cells = {std::to_string(row.id), row.name, row.description, row.feed_amount}});
  }
  return ListedReport(
      SetPageHeadersPens(active_only, facts),
      {{.caption = "ID", .right_aligned = true},
       {.caption = "Name"},
       {.caption = "Description"},
       {.caption = WithUnit("Feed Amount", facts.caption_unit), .right_aligned = true}},
      std::move(listed), facts);
}

Report RecipeReport(const CurrentRecipe& recipe, const std::vector<IngredientRecord>& ingredients,
                    const ReportFacts& facts) {
  return RecipeReport(recipe, ColumnsInSight(recipe.Entry()), ingredients, facts);
}

Report RecipeReport(const CurrentRecipe& recipe, const std::vector<int>& shown,
                    const std::vector<IngredientRecord>& ingredients, const ReportFacts& facts) {
  std::map<std::string, std::string> names;
  for (const IngredientRecord& ingredient : ingredients) {
    names.emplace(std::to_string(ingredient.id), ingredient.name);
  }
  std::vector<ReportColumn> columns;
  for (const int column : shown) {
    columns.push_back({.caption = ColumnCaption(column, facts.caption_unit),
                       .right_aligned = column != kColumnIngredient});
  }
  std::vector<ReportRow> rows;
  for (const RecipeLineRecord& line : recipe.ration.lines) {
    ReportRow& row = rows.emplace_back();
    for (const int column : shown) {
      row.cells.push_back(PrintedCell(line, column, names));
    }
  }
  return ListedReport(SetPageHeadersRecipe(recipe, facts), std::move(columns), std::move(rows),
                      facts);
}

CurrentRecipe ReadRecipeToPrint(SQLite::Database& recipes, int id) {
  CurrentRecipe shown;
  ShowRecipe(shown, ReadRecipe(recipes, id), ReadRecipeLines(recipes, id));
  return shown;
}

Report HistoryReport(HistoryGrid& grid, bool fit_columns, const ReportFacts& facts) {
  const std::vector<int> visible = grid.Columns().VisibleColumns();
  std::vector<ReportColumn> columns;
  columns.reserve(visible.size());
  for (const int column : visible) {
    columns.push_back({.caption = grid.Columns().Caption(column),
                       .right_aligned = HistoryColumnAt(column).right_aligned,
                       .total_color = TotalColor(column)});
  }
  return {.design = {.texts = SetPageHeadersTransactions(grid.Group().item, facts,
                                                         PeriodText(grid.ShownPeriod())),
                     .columns = std::move(columns),
                     .captions = grid.ColumnHeaders(),
                     .fit_columns = fit_columns,
                     .grid_lines = facts.grid_lines,
                     .fixed_pitch = true,
                     .caption_color = kCaptionColor,
                     .group_color = LookOf(FormatStyle::kRowGroup).text->rgb},
          .rows = std::make_unique<HistoryRows>(grid, visible)};
}

Report ImportReport(const TransFile& file, int rows, std::span<const ImportGridColumn> grid_columns,
                    bool fit_columns, const ReportFacts& facts) {
  std::vector<int> visible;
  std::vector<ReportColumn> columns;
  for (int column = 1; column <= kImportColumns; ++column) {
    const ImportGridColumn& shown = grid_columns[static_cast<std::size_t>(column) - 1];
    if (shown.visible) {
      visible.push_back(column);
      columns.push_back({.caption = shown.caption, .right_aligned = !IsImportText(column)});
    }
  }
  return {.design = {.texts = SetPageHeadersImport(file.FilePath(), file.FileUnits(), facts),
                     .columns = std::move(columns),
                     .fit_columns = fit_columns,
                     .grid_lines = facts.grid_lines,
                     .fixed_pitch = true},
          .rows = std::make_unique<ImportRows>(file.Imported(), rows, std::move(visible))};
}

}  // namespace vrx
