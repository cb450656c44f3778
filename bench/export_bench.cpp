// Exports of years of records: how long they take against the sqlite3 shell that writes the same
// columns as CSV, and against a tenth of the records; and how much memory.
//
//   export_bench [--rows N] [--rounds N] [--group N]

#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <functional>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "database/connection.h"
#include "database/records.h"
#include "database/schema.h"
#include "export/csv_export.h"
#include "export/export_columns.h"
#include "export/html_export.h"
#include "export/xml_export.h"
#include "figures.h"
#include "history/columns.h"
#include "history/data_group.h"
#include "support/fixed_system_info.h"
#include "support/recording_operator.h"
#include "years.h"

namespace vrx::bench {
namespace {

namespace fs = std::filesystem;

constexpr double kFlatLimit = 1.5;
constexpr double kGroupedLimit = 3;
constexpr double kTenfoldLimit = 11;
constexpr double kMemoryLimit = 100;  // MB

class ExportBench {
 public:
  explicit ExportBench(const BenchOptions& options) : options_(options), years_(options.rows) {
    SQLite::Database recipes = OpenDatabase(years_.recipes, Access::kRead);
    ingredients_ = ReadIngredients(recipes);
  }

  int Run() {
    std::printf("%-60s %9s  %7s\n", "figure", "", "limit");
    for (const DataGroup& group : MeasuredGroups(options_)) {
      SetUp(group);
      Compare(group, "CSV", [&](const fs::path& from) { WriteCsv(group, from); });
      Compare(group, "XML", [&](const fs::path& from) { WriteXml(group, from); });
    }
    return figures_.Over();
  }

 private:
  // The columns of the grid, and its captions.
  void SetUp(const DataGroup& group) {
    HistoryColumns columns;
    columns.RefreshIngredientColumns(ingredients_);
    columns.SetUp(group);
    visible_ = columns.GetVisibleColumnList();
    names_ = {};
    for (const HistoryColumn& column : HistoryColumnTable()) {
      names_.SetIngredientColumnName(column.field, columns.Caption(column.index));
    }
  }

  fs::path ShellScript(const DataGroup& group) const {
    const int index = group.index == 4 ? 3 : group.index;
    const auto dictionary = ExportColumn(names_).IntializeExportColumn(index, visible_);
    std::string fields;
    for (const ExportedColumn& column : dictionary.value()) {
      fields += (fields.empty() ? "" : ", ") + Bracketed(column.field);
    }
    const std::string keys = LevelKeys(group, group.levels.size());
    return years_.folder.Write(
        "export.sql", ".mode csv\n.headers on\n.once '" + (years_.folder / "shell.csv").string() +
                          "'\nSELECT " + fields + " FROM Transactions" + GroupCondition(group) +
                          (keys.empty() ? "" : " ORDER BY " + keys) + ";\n");
  }

  void Compare(const DataGroup& group, const std::string& format,
               const std::function<void(const fs::path&)>& work) {
    const fs::path script = ShellScript(group);
    const std::vector<double> times = InterleavedMedians(
        options_.rounds, {[&] { work(years_.all); }, [&] { RunShell(years_.all, script); },
                          [&] { work(years_.tenth); }});
    const std::string name =
        std::to_string(group.index) + " " + std::string(group.item) + ", " + format;
    figures_.Limited(name + " to the shell's CSV", times[0] / times[1],
                     group.index == 0 && format == "CSV" ? kFlatLimit : kGroupedLimit,
                     Times(times[0], times[1]));
    figures_.Limited(name + " to a tenth", times[0] / times[2], kTenfoldLimit,
                     Times(times[0], times[2]));
    figures_.Limited(name + ", memory, MB", PeakMegabytes([&] { work(years_.all); }), kMemoryLimit);
  }

  void WriteCsv(const DataGroup& group, const fs::path& from) const {
    CheckWritten(CSVExport(names_).ExportData(group.index, years_.folder / "ours.csv", from,
                                              visible_, PickedName(group)));
  }

  void WriteXml(const DataGroup& group, const fs::path& from) {
    CheckWritten(XMLExport(names_, style_sheets_)
                     .ExportData(group.index, years_.folder / "ours.xml", from, visible_,
                                 PickedName(group)));
  }

  static void CheckWritten(bool written) {
    if (!written) {
      throw std::runtime_error("an export was not written");
    }
  }

  BenchOptions options_;
  Years years_;
  std::vector<IngredientRecord> ingredients_;
  std::vector<std::string> visible_;
  IngredientColumnNames names_;
  testing::RecordingOperator operator_;
  testing::FixedSystemInfo system_;
  StyleSheets style_sheets_{years_.folder.Path(), system_, operator_};
  Figures figures_;
};

}  // namespace
}  // namespace vrx::bench

int main(int argc, char** argv) {
  try {
    const std::span<const char* const> arguments(argv + 1, static_cast<std::size_t>(argc) - 1);
    return vrx::bench::ExportBench(vrx::bench::ReadBenchOptions(arguments)).Run() == 0 ? 0 : 3;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "export_bench: %s\n", error.what());
    return 1;
  }
}
