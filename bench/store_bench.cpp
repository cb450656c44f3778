// How long a store of 6,000 rows takes: into a database of a million rows, against the plain
// sqlite3 shell that imports the same rows as CSV into the same table, and against an empty
// database.
//
// Each of the three runs in turn, several times; the figures are medians. A store is timed from its
// call to its return, including opening both databases, the commit and the date of change after it.
// The shell is timed as a whole process, including its start of a few milliseconds.

#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include <SQLiteCpp/Database.h>

#include "database/connection.h"
#include "database/open_databases.h"
#include "database/schema.h"
#include "database/templates.h"
#include "exchange/imported_data.h"
#include "exchange/store.h"
#include "measure.h"
#include "settings/settings.h"
#include "support/fixed_calendar.h"
#include "support/recording_operator.h"
#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;

constexpr int kRows = 6000;
constexpr int kRounds = 15;
constexpr int kFirstDay = 10;  // of January
constexpr int kBatchRows = 4;  // of each transaction, followed by as many feeds
constexpr double kShellTarget = 1.5;
constexpr double kEmptyTarget = 1.2;

// The rows of transactions 1, 2, 3 ... of four ingredients fed to four pens.
constexpr const char* kMillionRows = R"(
    WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM n WHERE i < 999999)
    INSERT INTO Transactions ([Transaction], Recipe, Type, UserID, Ingredient, Pen, Target,
                              ActualBatch, Time, Date, ActualFeed, IngPercent, Ing01Wt, Ing02Wt,
                              Ing03Wt, Ing04Wt)
    SELECT i / 8 + 1, printf('REC%03d', i / 8 % 100 + 1), iif(i % 8 < 4, 'BATCH', 'FEED'), '2',
           iif(i % 8 < 4, printf('ING%03d', i % 4 + 1), NULL),
           iif(i % 8 < 4, NULL, printf('PEN%03d', i % 400 + 1)), 1000.5,
           iif(i % 8 < 4, 998.5, 0), '08:30:00', date('2016-01-01', (i / 2500) || ' days'),
           iif(i % 8 < 4, 0, 748.5), iif(i % 8 < 4, 25.0, NULL), iif(i % 8 < 4, NULL, 187.1),
           iif(i % 8 < 4, NULL, 187.1), iif(i % 8 < 4, NULL, 187.1), iif(i % 8 < 4, NULL, 187.2)
    FROM n)";

class SilentProgress : public ProgressDisplay {
 public:
  void SetProgressMessage(std::string_view /*text*/) override {}
  void SetProgressRange(int /*maximum*/) override {}
  void SetProgressValue(int /*value*/) override {}
};

ImportedData MakeRows() {
  ImportedData rows;
  rows.Resize(kRows);
  for (int i = 0; i < kRows; ++i) {
    const auto row = static_cast<std::size_t>(i) + 1;
    const auto set = [&](int column, std::string text) {
      rows.SetCell(row, column, std::move(text));
    };
    const int transaction = i / (2 * kBatchRows) + 1;
    const bool batch = i % (2 * kBatchRows) < kBatchRows;
    set(kImportedTransactionNumber, std::to_string(transaction));
    set(kImportedRecipeID, std::to_string(transaction % 100 + 1));
    set(kImportedType, batch ? "BATCH" : "FEED");
    set(kImportedTarget, "1000.5");
    set(kImportedTime, "0830");
    set(kImportedDate, "01152026");
    set(kImportedUserID, "2");
    if (batch) {
      set(kImportedIngredientID, std::to_string(i % kBatchRows + 1));
      set(kImportedActualBatch, "998.5");
      set(kCalculatedIngPercentOfBatch, "25.0000");
      continue;
    }
    set(kImportedPenID, std::to_string(i % 400 + 1));
    set(kImportedActualFeed, "748.5");
    for (int ingredient = 0; ingredient < kBatchRows; ++ingredient) {
      set(kFirstIngredientWeight + ingredient, "187.1");
    }
  }
  return rows;
}

using bench::Median;
using bench::Milliseconds;

void RunShell(const fs::path& database, const fs::path& script) {
  bench::RunProgram(
      {"sqlite3", "-bail", "-batch", database.string(), ".read '" + script.string() + "'"},
      "/dev/null");
}

class StoreBench {
 public:
  StoreBench() {
    CreateTemplate(recipes_, DatabaseKind::kRecipe);
    CreateTemplate(empty_, DatabaseKind::kTransaction);
    fs::copy_file(empty_, ours_);
    OpenDatabase(ours_, Access::kWrite).exec(kMillionRows);
    fs::copy_file(ours_, shells_);
    DropRowNumbers(shells_);
    WriteShellScript();
  }

  void Run() {
    std::vector<double> ours;
    std::vector<double> shell;
    std::vector<double> empty;
    for (int round = 0; round < kRounds; ++round) {
      SetDay(round);
      ours.push_back(Milliseconds([&] { Store(ours_); }));
      shell.push_back(Milliseconds([&] { RunShell(shells_, script_); }));
      const fs::path fresh = folder_ / "FRESH.TDB";
      fs::copy_file(empty_, fresh, fs::copy_options::overwrite_existing);
      empty.push_back(Milliseconds([&] { Store(fresh); }));
    }
    CheckCount(ours_);
    CheckCount(shells_);
    Print(Median(ours), Median(shell), Median(empty));
  }

 private:
  // Each file is of another day, so that none of its batches is there already.
  void SetDay(int round) {
    for (std::size_t row = 1; row <= kRows; ++row) {
      rows_.SetCell(row, kImportedDate, "01" + std::to_string(kFirstDay + round) + "2026");
    }
  }

  void Store(const fs::path& path) {
    bool stored = false;
    const StoreOutcome outcome = store_.StoreImportedTransactions(rows_, {}, {recipes_, path, "LB"},
                                                                  stored, RepeatedBatches::kAll);
    if (outcome.stored != kRows) {
      throw std::runtime_error("the store failed: " + operator_.boxes.back().text);
    }
  }

  // Imported rows have no number of their own, and .import cannot leave one to SQLite.
  static void DropRowNumbers(const fs::path& path) {
    OpenDatabase(path, Access::kWrite)
        .exec(
            "PRAGMA writable_schema=ON; UPDATE sqlite_schema SET sql = replace(sql, ', [RowNumber] "
            "INTEGER PRIMARY KEY', '') WHERE name = 'Transactions'; PRAGMA writable_schema=RESET");
  }

  // The rows as CSV with all 112 columns, as our own store writes them.
  void WriteShellScript() {
    const fs::path source = folder_ / "SOURCE.TDB";
    fs::copy_file(empty_, source);
    Store(source);
    DropRowNumbers(source);
    const fs::path csv = folder_ / "rows.csv";
    const fs::path make = folder_.Write(
        "make.sql", ".mode csv\n.once '" + csv.string() + "'\nSELECT * FROM Transactions;\n");
    RunShell(source, make);
    script_ = folder_.Write("import.sql", "PRAGMA synchronous=FULL;\n.mode csv\nBEGIN;\n.import '" +
                                              csv.string() + "' Transactions\nCOMMIT;\n");
  }

  static void CheckCount(const fs::path& path) {
    SQLite::Database database = OpenDatabase(path, Access::kRead);
    if (database.execAndGet("SELECT count(*) FROM Transactions").getInt() !=
        1000000 + kRounds * kRows) {
      throw std::runtime_error(path.string() + " does not hold the rows that went in");
    }
  }

  static void Print(double ours, double shell, double empty) {
    std::printf("store of %d rows, medians of %d runs\n", kRows, kRounds);
    std::printf("  into 1,000,000 rows        %8.1f ms\n", ours);
    std::printf("  sqlite3 shell, same table  %8.1f ms\n", shell);
    std::printf("  into an empty database     %8.1f ms\n", empty);
    std::printf("ratio to the shell            %6.2f  (target: at most %.1f)\n", ours / shell,
                kShellTarget);
    std::printf("ratio to the empty database   %6.2f  (target: at most %.1f)\n", ours / empty,
                kEmptyTarget);
  }

  TempFolder folder_;
  fs::path recipes_ = folder_ / "BENCH.RDB";
  fs::path empty_ = folder_ / "EMPTY.TDB";
  fs::path ours_ = folder_ / "OURS.TDB";
  fs::path shells_ = folder_ / "SHELL.TDB";
  fs::path script_;
  ImportedData rows_ = MakeRows();
  RecordingOperator operator_;
  FixedCalendar calendar_;
  PrivateINI settings_;
  SilentProgress progress_;
  TransactionStore store_{operator_, settings_, calendar_, progress_, [] {}};
};

}  // namespace
}  // namespace vrx::testing

int main() {
  try {
    vrx::testing::StoreBench().Run();
  } catch (const std::exception& error) {
    std::fprintf(stderr, "store_bench: %s\n", error.what());
    return 1;
  }
}
