#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

#include "base/encoding.h"
#include "exchange/import_columns.h"
#include "report/reports.h"

namespace vrx {
namespace {

class ImportRows : public ReportRows {
 public:
  ImportRows(const ImportedData& import, int count, std::vector<int> columns)
      : import_(import), count_(count), columns_(std::move(columns)) {}

  std::int64_t Count() const override { return count_; }

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
