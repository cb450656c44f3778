// The history on years of records: how long its screens take, against the sqlite3 shell and against
// a tenth of the records.
//
//   history_bench [--rows N] [--rounds N] [--group N]

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <functional>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include <SQLiteCpp/Database.h>

#include "database/connection.h"
#include "database/records.h"
#include "figures.h"
#include "history/columns.h"
#include "history/data_group.h"
#include "history/grouped_rows.h"
#include "history/history_grid.h"
#include "measure.h"
#include "years.h"

namespace vrx::bench {
namespace {

constexpr std::int64_t kScreen = 50;  // rows
constexpr double kShellLimit = 1.0;
constexpr double kScreenLimit = 300;  // ms, at a million records
constexpr double kEqualLimit = 1.2;
constexpr double kTenfoldLimit = 11;
constexpr double kMemoryLimit = 200;  // MB

std::string NameOf(const DataGroup& group) {
  return std::to_string(group.index) + " " + std::string(group.item);
}

void ReadRows(GroupedRows& rows, std::int64_t first, std::int64_t last) {
  for (std::int64_t row = first; row <= last; ++row) {
    rows.Row(row);
  }
}

// The row of a group with that value among the rows from `first` on; throws when there is none.
std::int64_t FindGroup(GroupedRows& rows, const CellValue& value, std::int64_t first = 1) {
  for (std::int64_t row = first; row <= rows.RowCount(); ++row) {
    const HistoryRow shown = rows.Row(row);
    if (shown.kind == HistoryRowKind::kGroup && shown.group == value) {
      return row;
    }
  }
  throw std::runtime_error("a group is missing");
}

class HistoryBench {
 public:
  explicit HistoryBench(const BenchOptions& options) : options_(options), years_(options.rows) {}

  int Run() {
    std::printf("%-60s %9s  %7s\n", "figure", "", "limit");
    for (const DataGroup& group : MeasuredGroups(options_)) {
      FirstPage(group);
    }
    for (const DataGroup& group : MeasuredGroups(options_)) {
      FirstScreen(group);
    }
    EqualGroups();
    for (const DataGroup& group : MeasuredGroups(options_)) {
      OpenAll(group);
    }
    for (const int column : {HistoryColumnOfKey("Target"), HistoryColumnOfKey("Ingredient")}) {
      Sort(column);
    }
    for (const DataGroup& group : MeasuredGroups(options_)) {
      Memory(group);
    }
    return figures_.Over();
  }

 private:
  // Compared with the totals that the shell would have to compute for the same outermost groups.
  void FirstPage(const DataGroup& group) {
    const std::string keys = LevelKeys(group, std::min<std::size_t>(group.levels.size(), 1));
    const auto script = years_.folder.Write(
        "groups.sql", ".once /dev/null\nSELECT " + (keys.empty() ? "" : keys + ", ") +
                          "count(*), sum(Target), sum(ActualBatch), sum(ActualFeed) FROM "
                          "Transactions" +
                          GroupCondition(group) +
                          (keys.empty() ? "" : " GROUP BY " + keys + " ORDER BY " + keys) + ";\n");
    const std::vector<double> times = InterleavedMedians(
        options_.rounds,
        {[&] { ShowFirstPage(years_.all, group); }, [&] { RunShell(years_.all, script); }});
    figures_.Limited(NameOf(group) + ": first page to the shell's GROUP BY", times[0] / times[1],
                     kShellLimit, Times(times[0], times[1]));
  }

  static void ShowFirstPage(const std::filesystem::path& path, const DataGroup& group) {
    SQLite::Database database = OpenDatabase(path, Access::kRead);
    GroupedRows rows(database);
    rows.Show(group, PickedName(group));
    ReadRows(rows, 1, std::min(kScreen, rows.RowCount()));
  }

  // The contents of the window after a selection in the list, including its columns.
  void FirstScreen(const DataGroup& group) {
    SQLite::Database recipes = OpenDatabase(years_.recipes, Access::kRead);
    const std::vector<IngredientRecord> ingredients = ReadIngredients(recipes);
    for (const bool expand : {false, true}) {
      const double time = InterleavedMedians(
          options_.rounds, {[&] {
            SQLite::Database database = OpenDatabase(years_.all, Access::kRead);
            HistoryGrid grid(database);
            grid.RefreshIngredientColumns(ingredients);
            grid.SetUp(group, PickedName(group));
            grid.ApplyExpandState(expand);
            for (std::int64_t row = 1; row <= std::min(kScreen, grid.RowCount()); ++row) {
              grid.Row(row);
            }
          }})[0];
      const std::string name = NameOf(group) + ": first screen, ms";
      if (expand) {
        figures_.Specified(name + ", all open", time);
      } else {
        figures_.Limited(name, time,
                         kScreenLimit *
                             static_cast<double>(std::max<std::int64_t>(years_.rows, 1'000'000)) /
                             1'000'000);
      }
    }
  }

  // Groups of as many records in a table of ten times the records.
  void EqualGroups() {
    Opening("a recipe chosen, opened and read", {}, [](GroupedRows& rows) {
      rows.Show(*FindDataGroup(4), kEqualName);
      rows.Open(1);
      for (std::int64_t row = rows.RowCount(); row > 1; --row) {
        rows.Open(row);
      }
      ReadRows(rows, 1, rows.RowCount());
    });
    Opening("a pen chosen, opened and read", {}, [](GroupedRows& rows) {
      rows.Show(*FindDataGroup(9), kEqualName);
      rows.Open(1);
      ReadRows(rows, 1, rows.RowCount());
    });
    // The list of the pens is the first page; it grows with the table, slowly.
    std::int64_t pen = 0;
    Opening(
        "a pen among all of them, opened and read",
        [&](GroupedRows& rows) {
          rows.Show(*FindDataGroup(8), "");
          pen = FindGroup(rows, std::string(kEqualName));
        },
        [&](GroupedRows& rows) {
          const std::int64_t before = rows.RowCount();
          rows.Open(pen);
          ReadRows(rows, pen, pen + rows.RowCount() - before);
        });
  }

  using Use = std::function<void(GroupedRows&)>;

  // Times only `work`, each time on rows made by `prepare`.
  void Opening(const std::string& name, const Use& prepare, const Use& work) {
    std::array<std::vector<double>, 2> times;
    for (int round = -1; round < 4 * options_.rounds; ++round) {
      for (const std::size_t years : {0, 1}) {
        SQLite::Database database =
            OpenDatabase(years == 0 ? years_.all : years_.tenth, Access::kRead);
        GroupedRows rows(database);
        if (prepare) {
          prepare(rows);
        }
        const double time = Milliseconds([&] { work(rows); });
        if (round >= 0) {
          times[years].push_back(time);
        }
      }
    }
    const double all = Median(times[0]);
    const double tenth = Median(times[1]);
    figures_.Limited(name + ", to a tenth", all / tenth, kEqualLimit, Times(all, tenth));
  }

  void OpenAll(const DataGroup& group) {
    const auto work = [&](const std::filesystem::path& path) {
      SQLite::Database database = OpenDatabase(path, Access::kRead);
      GroupedRows rows(database);
      rows.Show(group, PickedName(group));
      rows.OpenAll();
      const std::int64_t last = rows.RowCount();
      ReadRows(rows, std::max<std::int64_t>(1, last - kScreen), last);
    };
    const std::vector<double> times = InterleavedMedians(
        options_.rounds, {[&] { work(years_.all); }, [&] { work(years_.tenth); }});
    figures_.Limited(NameOf(group) + ": all opened, last page, to a tenth", times[0] / times[1],
                     kTenfoldLimit, Times(times[0], times[1]));
  }

  void Sort(int column) {
    const auto work = [&](const std::filesystem::path& path) {
      SQLite::Database database = OpenDatabase(path, Access::kRead);
      GroupedRows rows(database);
      rows.Show(*FindDataGroup(0), "");
      rows.SortBy(column, false);
      ReadRows(rows, 1, kScreen);
    };
    const auto& field = HistoryColumnAt(column).field;
    const auto script = years_.folder.Write(
        "sort.sql",
        ".once /dev/null\nSELECT rowid FROM Transactions ORDER BY " + field + " DESC, rowid;\n");
    const std::vector<double> times =
        InterleavedMedians(options_.rounds, {[&] { work(years_.all); }, [&] { work(years_.tenth); },
                                             [&] { RunShell(years_.all, script); }});
    // A sort takes n log n, so ten times the records take slightly more than ten times the time.
    figures_.Specified("all records sorted by " + field + ", to a tenth", times[0] / times[1],
                       Times(times[0], times[1]));
    figures_.Limited("all records sorted by " + field + ", to the shell", times[0] / times[2],
                     kEqualLimit, Times(times[0], times[2]));
  }

  void Memory(const DataGroup& group) {
    const double peak = PeakMegabytes([&] {
      SQLite::Database database = OpenDatabase(years_.all, Access::kRead);
      GroupedRows rows(database);
      rows.Show(group, PickedName(group));
      rows.OpenAll();
      rows.SortBy(HistoryColumnOfKey("Target"), true);
      const std::int64_t step = std::max<std::int64_t>(1, rows.RowCount() / 500);
      for (std::int64_t row = 1; row <= rows.RowCount(); row += step) {
        rows.Row(row);
      }
    });
    figures_.Limited(NameOf(group) + ": memory, all opened and sorted, MB", peak, kMemoryLimit);
  }

  BenchOptions options_;
  Years years_;
  Figures figures_;
};

}  // namespace
}  // namespace vrx::bench

int main(int argc, char** argv) {
  try {
    const std::span<const char* const> arguments(argv + 1, static_cast<std::size_t>(argc) - 1);
    return vrx::bench::HistoryBench(vrx::bench::ReadBenchOptions(arguments)).Run() == 0 ? 0 : 3;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "history_bench: %s\n", error.what());
    return 1;
  }
}
