#include "database/identity.h"

#include <functional>
#include <tuple>

#include <gtest/gtest.h>
#include <sqlite3.h>

#include "database/connection.h"
#include "database/missing_records.h"
#include "support/database_files.h"
#include "support/fixed_calendar.h"

namespace vrx::testing {
namespace {

class IdentityTest : public ::testing::Test {
 protected:
  int NumberOf(const std::function<void()>& action) {
    try {
      action();
    } catch (const DatabaseError& failure) {
      return failure.Number();
    }
    return SQLITE_OK;
  }

  TempFolder folder_;
  std::filesystem::path path_ = CopyOfTemplate(folder_, "YARD.RDB");
  SQLite::Database database_ = OpenDatabase(path_, Access::kWrite);
};

TEST_F(IdentityTest, ADateIsReadOnlyIfThereIsOne) {
  EXPECT_EQ(ReadDateField(database_, kCreatedField), std::nullopt);
  WriteField(database_, kCreatedField, "");
  EXPECT_EQ(ReadDateField(database_, kCreatedField), std::nullopt);
  WriteField(database_, kCreatedField, "2026-01-05");
  EXPECT_EQ(ReadDateField(database_, kCreatedField), FixedCalendar().Today());
  WriteField(database_, kCreatedField, "1/5/2026");
  EXPECT_EQ(NumberOf([&] { std::ignore = ReadDateField(database_, kCreatedField); }),
            SQLITE_MISMATCH);
}

TEST_F(IdentityTest, AChangeSetsModifiedAndLeavesCreated) {
  TouchDatabase(database_, FixedCalendar());
  EXPECT_EQ(ReadField(database_, kModifiedField), "2026-01-05");
  EXPECT_EQ(ReadField(database_, kCreatedField), std::nullopt);
}

TEST_F(IdentityTest, ATableWithoutARowIsNeitherReadNorWritten) {
  database_.exec("DELETE FROM UnitsOfMeasure");
  EXPECT_EQ(NumberOf([&] { std::ignore = ReadField(database_, kUnitField); }), kNoRecordError);
  EXPECT_EQ(NumberOf([&] { WriteField(database_, kUnitField, "KG"); }), kNoRecordError);
}

TEST_F(IdentityTest, OnlyTheFirstRowCounts) {
  database_.exec("INSERT INTO UnitsOfMeasure VALUES ('LB')");
  WriteField(database_, kUnitField, "KG");
  EXPECT_EQ(ReadDatabaseUoM(path_), "KG");
  EXPECT_EQ(Ask(path_, "SELECT UoM FROM UnitsOfMeasure"), (std::vector<std::string>{"KG", "LB"}));
}

TEST(MissingRecordsTest, ConsecutiveNumbersAreARangeFromTwoOn) {
  EXPECT_EQ(ToText({.ingredients = {3, 17, 18, 20}, .recipes = {}, .pens = {398, 399, 400}}),
            "ingredients 3, 17-18, 20; pens 398-400");
  EXPECT_EQ(ToText({}), "");
}

}  // namespace
}  // namespace vrx::testing
