#include "central/push_plan.h"

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "database/connection.h"
#include "database/imports.h"
#include "support/database_files.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr std::int64_t kAll = -1000;  // below every row

class PushPlan : public ::testing::Test {
 protected:
  PushPlan() { MakeImportTables(database_); }

  // So many rows of each of the transactions.
  void AddRows(std::int64_t first, std::int64_t last, int rows) {
    for (std::int64_t number = first; number <= last; ++number) {
      for (int row = 0; row < rows; ++row) {
        database_.exec("INSERT INTO Transactions ([Transaction]) VALUES (" +
                       std::to_string(number) + ")");
      }
    }
  }

  void AddImport(std::int64_t stored) {
    database_.exec("INSERT INTO Imports (Stored) VALUES (" + std::to_string(stored) + ")");
  }

  // "first-last:rows/last import" for each portion.
  std::vector<std::string> Plan(std::int64_t after_row, std::int64_t after_import, int size) {
    std::vector<std::string> texts;
    for (const PushPortion& portion : PlanPush(database_, after_row, after_import, size)) {
      texts.push_back(std::to_string(portion.first_row) + "-" + std::to_string(portion.last_row) +
                      ":" + std::to_string(portion.rows) + "/" +
                      std::to_string(portion.last_import));
    }
    return texts;
  }

  TempFolder folder_;
  SQLite::Database database_{CopyOfTemplate(folder_, "Y.TDB", DatabaseKind::kTransaction),
                             SQLite::OPEN_READWRITE};
};

TEST_F(PushPlan, WithoutRowsAndImportsIsEmpty) { EXPECT_THAT(Plan(kAll, 0, 10), IsEmpty()); }

TEST_F(PushPlan, EndsPortionsBetweenBatches) {
  AddRows(1, 6, 4);
  EXPECT_THAT(Plan(kAll, 0, 10), ElementsAre("1-12:12/0", "13-24:12/0"));
  EXPECT_THAT(Plan(kAll, 0, 12), ElementsAre("1-12:12/0", "13-24:12/0"));
  EXPECT_THAT(Plan(kAll, 0, 13), ElementsAre("1-16:16/0", "17-24:8/0"));
}

TEST_F(PushPlan, TakesTheRowsAndImportsThatAreNotThere) {
  AddRows(1, 1, 4);
  AddImport(4);
  AddRows(2, 2, 3);
  AddImport(3);
  EXPECT_THAT(Plan(4, 1, 100), ElementsAre("5-7:3/2"));
  EXPECT_THAT(Plan(7, 2, 100), IsEmpty());
}

TEST_F(PushPlan, KeepsAnImportWhole) {
  AddRows(1, 1, 5);  // recorded by no import
  AddRows(2, 3, 4);
  AddImport(8);
  AddRows(4, 4, 6);
  AddImport(6);
  EXPECT_THAT(Plan(kAll, 0, 6), ElementsAre("1-13:13/1", "14-19:6/2"));
  EXPECT_THAT(Plan(kAll, 0, 5), ElementsAre("1-5:5/0", "6-13:8/1", "14-19:6/2"));
}

TEST_F(PushPlan, TakesAnImportThatStoredNothing) {
  AddRows(1, 1, 5);
  AddImport(5);
  AddImport(0);
  EXPECT_THAT(Plan(kAll, 0, 100), ElementsAre("1-5:5/2"));
  EXPECT_THAT(Plan(5, 1, 100), ElementsAre("0-0:0/2"));
}

TEST_F(PushPlan, SendsAllImportsFirstWhenRowsAreMissing) {
  AddRows(1, 4, 5);
  AddImport(12);
  AddImport(13);
  EXPECT_THAT(Plan(kAll, 0, 10), ElementsAre("1-10:10/2", "11-20:10/2"));
}

}  // namespace
}  // namespace vrx::testing
