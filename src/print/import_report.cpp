#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

#include "exchange/import_columns.h"
#include "frame/encoding.h"
#include "print/reports.h"

namespace vrx {
namespace {

class ImportRows : public ReportRows {
 public:
  ImportRows(const ImportSession& import, std::vector<int> columns)
      : import_(import), columns_(std::move(columns)) {}

  std::int64_t Count() const override { return import_.Form().grd_import_rows; }

  ReportRow Row(std::int64_t row) override {
    ReportRow printed;
    for (const int column : columns_) {
      printed.cells.push_back(
          Windows1252ToUtf8(import_.File().Imported().Cell(static_cast<std::size_t>(row), column)));
    }
    return printed;
  }

 private:
  const ImportSession& import_;
  std::vector<int> columns_;
};

}  // namespace

Report ImportReport(const ImportSession& import, bool fit_columns, const ReportFacts& facts) {
  std::vector<int> visible;
  std::vector<ReportColumn> columns;
  for (int column = 1; column <= kImportColumns; ++column) {
    const ImportGridColumn& shown =
        import.Form().grd_import_columns.at(static_cast<std::size_t>(column) - 1);
    if (shown.visible) {
      visible.push_back(column);
      columns.push_back({.caption = shown.caption, .right_aligned = !IsImportText(column)});
    }
  }
  const TransFile& file = import.File();
  return {.design = {.texts = SetPageHeadersImport(file.FilePath(), file.FileUnits(), facts),
                     .columns = std::move(columns),
                     .fit_columns = fit_columns,
                     .grid_lines = facts.grid_lines,
                     .fixed_pitch = true},
          .rows = std::make_unique<ImportRows>(import, std::move(visible))};
}

}  // namespace vrx
