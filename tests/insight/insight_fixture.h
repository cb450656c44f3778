#pragma once

#include <string>
#include <vector>

#include <SQLiteCpp/Database.h>
#include <gtest/gtest.h>

#include "base/date.h"
#include "database/connection.h"
#include "insight/accuracy.h"
#include "insight/batches.h"
#include "insight/completeness.h"
#include "insight/pens.h"
#include "insight/question.h"
#include "insight/use.h"
#include "support/database_files.h"
#include "support/temp_folder.h"

namespace vrx::testing {

// A transaction database with rows, opened for reading and writing without waiting for the disk.
class InsightTest : public ::testing::Test {
 protected:
  InsightTest()
      : path(CopyOfTemplate(folder, "YARD.TDB", DatabaseKind::kTransaction)),
        database(OpenDatabase(path, Access::kWrite)) {
    database.exec("PRAGMA synchronous=OFF; PRAGMA journal_mode=MEMORY");
  }

  // "(1, 'STEERS', 'BATCH', '2', 'CORN', NULL, 1000, 998, 0, '2026-01-05', '08:30:00'), ..."
  void Store(const std::string& rows) {
    database.exec(
        "INSERT INTO Transactions ([Transaction], Recipe, Type, UserID, Ingredient, Pen, Target, "
        "ActualBatch, ActualFeed, Date, Time) VALUES " +
        rows);
  }
  // One load with a target and an actual weight.
  void Load(int number, const std::string& ingredient, double target, double actual,
            const std::string& more = "'1', '2026-01-05', '08:00:00'");
  void SetUnit(const std::string& unit) {
    database.exec("UPDATE UnitsOfMeasure SET UoM = '" + unit + "'");
  }

  static std::optional<Date> Day(const std::string& text) { return ParseStoredDate(text); }

  TempFolder folder;
  std::filesystem::path path;
  SQLite::Database database;
};

// Every figure of an answer as text, "-" for nothing, with all digits of a double.
std::string Shown(const std::optional<double>& figure);
std::string Shown(const std::optional<std::string>& text);
std::string Shown(const AccuracyFigures& figures);
std::vector<std::string> Shown(const Accuracy& answer);
std::vector<std::string> Shown(const std::vector<CompositionLine>& lines);
std::vector<std::string> Shown(const Balance& answer);
std::vector<std::string> Shown(const Times& answer);
std::vector<std::string> Shown(const Statement& answer);
std::vector<std::string> Shown(const std::vector<TraceLine>& trace);
std::vector<std::string> Shown(const std::vector<DeliveredLine>& delivered);
// Without the reasons.
std::vector<std::string> Shown(const std::vector<HoldingLine>& holding);
std::vector<std::string> Shown(const std::vector<UseLine>& use);

}  // namespace vrx::testing
