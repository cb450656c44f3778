#include "export/csv_export.h"

#include <array>
#include <cstddef>
#include <optional>
#include <vector>

#include "export/cell_text.h"
#include "export/csv_lines.h"
#include "export/export_columns.h"
#include "export/export_plan.h"
#include "export/level_walk.h"
#include "export/line_file.h"
#include "history/data_group.h"
#include "history/history_column.h"

namespace vrx {
namespace {

// The one group whose records follow each other without a line for the value they share, which
// each of them bears itself.
constexpr int kWithoutGroupLines = 10;

constexpr std::string_view kTotalText = "Total:";

class CsvWriter : public LevelVisitor {
 public:
  CsvWriter(const ExportPlan& plan, const ColumnDictionary& dictionary,
            std::span<const WalkedField> fields, LineFile& file)
      : plan_(plan), dictionary_(dictionary), file_(file), record_columns_(dictionary, fields) {
    for (const ExportLevel& level : plan.levels) {
      const std::array<WalkedField, 1> list{{{std::string(level.field), ContentOf(level.field)}}};
      group_columns_.emplace_back(dictionary, list);
    }
    const DataGroup* const group = FindDataGroup(plan.group);
    if (const int column = HistoryColumnOfKey(group->total_column)) {
      total_field_ = HistoryColumnAt(column).field;
    }
  }

  void WriteHeader() {
    file_.Line() += BuildCsvHeader(dictionary_, "");
    file_.EndLine();
  }

  void OpenGroup(const WalkedGroup& group) override {
    if (plan_.group == kWithoutGroupLines) {
      return;
    }
    if (group.level->nulls == NullValues::kNoUser) {
      BuildCsvValueLine(group.value, group.content, file_.Line());
    } else {
      BuildCsvDataRow(group_columns_[group.depth], {&group.value, 1}, file_.Line());
    }
    file_.EndLine();
  }

  void Record(std::span<const CellView> cells) override {
    if (plan_.levels.empty()) {
      BuildCsvPlainRow(record_columns_, cells, file_.Line());
    } else {
      BuildCsvDataRow(record_columns_, cells, file_.Line());
    }
    file_.EndLine();
  }

  void CloseGroup(const WalkedGroup& group) override {
    if (group.depth + 1 < plan_.levels.size()) {
      return;
    }
    totals_.assign(1, {total_field_, std::string(kTotalText)});
    for (const GroupSum& sum : group.sums) {
      CsvTotal& total = totals_.emplace_back(CsvTotal{sum.weight->field, {}});
      if (sum.value) {
        AppendCellText(*sum.value, ColumnContent::kWeight, total.value);
      }
    }
    BuildCsvTotalRow(dictionary_, totals_, file_.Line());
    file_.EndLine();
  }

 private:
  static ColumnContent ContentOf(std::string_view field) {
    return HistoryColumnAt(HistoryColumnOfField(field)).content;
  }

  const ExportPlan& plan_;
  const ColumnDictionary& dictionary_;
  LineFile& file_;
  CsvColumns record_columns_;
  std::vector<CsvColumns> group_columns_;  // by depth
  std::string total_field_;
  std::vector<CsvTotal> totals_;
};

}  // namespace

bool CSVExport::ExportData(int group, const std::filesystem::path& file,
                           const std::filesystem::path& transaction_database,
                           std::span<const std::string> visible_columns, std::string_view name,
                           LockWait wait) const {
  const ExportPlan* const plan = FindExportPlan(group);
  if (plan == nullptr) {
    return false;
  }
  const ColumnDictionary dictionary =
      ExportColumn(ingredients_)
          .IntializeExportColumn(plan->column_group, visible_columns)
          .value_or(ColumnDictionary());
  LevelWalk walk(transaction_database, *plan, dictionary, name, wait);
  LineFile lines(file);
  CsvWriter writer(*plan, dictionary, walk.Fields(), lines);
  writer.WriteHeader();
  walk.Walk(writer);
  lines.Close();
  return true;
}

}  // namespace vrx
