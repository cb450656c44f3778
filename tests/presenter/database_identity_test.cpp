#include "presenter/database_identity.h"

#include <functional>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>

#include "database/identity.h"
#include "presenter/report_failure.h"
#include "settings/settings.h"
#include "support/database_files.h"
#include "support/fixed_calendar.h"
#include "support/recording_operator.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr const char* kInvalidTable = "There is an invalid table in the specified database.";
constexpr const char* kNoRecord = "There is no record available in the specified database.";
constexpr const char* kLocked = "A table in the specified database is locked.";
constexpr const char* kInvalidField = "There is an invalid field in the specified database.";

class Identity : public ::testing::Test {
 protected:
  struct Routine {
    std::string title;
    std::function<void(const fs::path&)> call;
  };

  // The five data routines, each checked for the result it has after a failure.
  std::vector<Routine> Routines() {
    return {
        {"Database-Type Error",
         [&](auto& path) { EXPECT_EQ(identity_.GetDatabaseType(path), ""); }},
        {"Set Database-Type Error",
         [&](auto& path) { EXPECT_FALSE(identity_.SetDatabaseType(path, kUserRecipeDb)); }},
        {"Database Date Read Error",
         [&](auto& path) {
           EXPECT_EQ(identity_.GetDatabaseDate(path, DateSelector::kCreated), std::nullopt);
         }},
        {"Database Date Write Error",
         [&](auto& path) {
           EXPECT_FALSE(identity_.SetDatabaseDate(path, DateSelector::kModified));
         }},
        {"Database UoM Write Error",
         [&](auto& path) { EXPECT_FALSE(identity_.SetDatabaseUoM(path, "LB")); }},
    };
  }

  // Each routine fails on the file with one beep and one box of that text, its own title, a cause.
  void ExpectAllFail(const fs::path& path, const std::string& text) {
    for (const Routine& routine : Routines()) {
      operator_ = RecordingOperator();
      routine.call(path);
      EXPECT_EQ(operator_.beeps, 1) << routine.title;
      ASSERT_THAT(operator_.boxes, SizeIs(1)) << routine.title;
      EXPECT_EQ(operator_.boxes[0].icon, Icon::kCritical);
      EXPECT_EQ(operator_.boxes[0].buttons, Buttons::kOk);
      EXPECT_EQ(operator_.boxes[0].title, routine.title);
      EXPECT_EQ(operator_.boxes[0].text, text) << routine.title;
      EXPECT_FALSE(operator_.boxes[0].cause.empty()) << routine.title;
    }
  }

  TempFolder folder_;
  RecordingOperator operator_;
  FixedCalendar calendar_;
  PrivateINI settings_;
  DatabaseIdentity identity_{operator_, calendar_, settings_, std::chrono::milliseconds(0)};
};

TEST_F(Identity, ReportsTheTypesOfBothTemplates) {
  EXPECT_EQ(identity_.GetDatabaseType(TemplatePath(DatabaseKind::kRecipe)), "NUL_RECIPE_DB");
  EXPECT_EQ(identity_.GetDatabaseType(TemplatePath(DatabaseKind::kTransaction)), "NUL_TRANS_DB");
}

TEST_F(Identity, EachOfTheFourTypesIsReadBackAsSet) {
  const fs::path path = CopyOfTemplate(folder_, "YARD.RDB");
  for (const std::string_view type : {kNulRecipeDb, kNulTransDb, kUserRecipeDb, kUserTransDb}) {
    EXPECT_TRUE(identity_.SetDatabaseType(path, type));
    EXPECT_EQ(identity_.GetDatabaseType(path), type);
  }
  EXPECT_THAT(operator_.boxes, IsEmpty());
  EXPECT_EQ(operator_.beeps, 0);
}

TEST_F(Identity, AnotherTextInTheMarkerGivesNothingAndNoBox) {
  const fs::path path = CopyOfTemplate(folder_, "YARD.RDB");
  for (const char* type : {"'ANOTHER_DB'", "'user_recipe_db'", "''", "NULL"}) {
    Alter(path, std::string("UPDATE BrantockDatabase SET dBType = ") + type);
    EXPECT_EQ(identity_.GetDatabaseType(path), "");
  }
  EXPECT_THAT(operator_.boxes, IsEmpty());
}

TEST_F(Identity, SelectorOneIsCreatedTwoAndZeroAreModified) {
  const fs::path path = CopyOfTemplate(folder_, "YARD.RDB");
  Alter(path, "UPDATE History SET Created = '2009-01-15', Modified = '2010-02-28'");
  const Date created{std::chrono::year{2009} / 1 / 15};
  const Date modified{std::chrono::year{2010} / 2 / 28};
  EXPECT_EQ(identity_.GetDatabaseDate(path, static_cast<DateSelector>(1)), created);
  EXPECT_EQ(identity_.GetDatabaseDate(path, static_cast<DateSelector>(2)), modified);
  EXPECT_EQ(identity_.GetDatabaseDate(path, static_cast<DateSelector>(0)), modified);
}

TEST_F(Identity, ADateThatIsNotSetIsEmptyWithoutABox) {
  const fs::path path = CopyOfTemplate(folder_, "YARD.RDB");
  EXPECT_EQ(identity_.GetDatabaseDate(path, DateSelector::kCreated), std::nullopt);
  EXPECT_EQ(identity_.GetDatabaseDate(path, DateSelector::kModified), std::nullopt);
  EXPECT_THAT(operator_.boxes, IsEmpty());
}

TEST_F(Identity, SetsTodaysDateInTheSelectedFieldOnly) {
  const fs::path path = CopyOfTemplate(folder_, "YARD.RDB");
  EXPECT_TRUE(identity_.SetDatabaseDate(path, DateSelector::kCreated));
  EXPECT_THAT(Ask(path, "SELECT Created FROM History"), ElementsAre("2026-01-05"));
  EXPECT_THAT(Ask(path, "SELECT Modified FROM History"), ElementsAre("NULL"));
  calendar_.today = std::chrono::year{2026} / 12 / 31;
  EXPECT_TRUE(identity_.SetDatabaseDate(path, DateSelector::kModified));
  EXPECT_THAT(Ask(path, "SELECT Created FROM History"), ElementsAre("2026-01-05"));
  EXPECT_THAT(Ask(path, "SELECT Modified FROM History"), ElementsAre("2026-12-31"));
}

TEST_F(Identity, ADateThatCannotBeReadIsAFailure) {
  const fs::path path = CopyOfTemplate(folder_, "YARD.RDB");
  Alter(path, "UPDATE History SET Created = 'yesterday'");
  EXPECT_EQ(identity_.GetDatabaseDate(path, DateSelector::kCreated), std::nullopt);
  ASSERT_THAT(operator_.boxes, SizeIs(1));
  EXPECT_EQ(operator_.boxes[0].title, "Database Date Read Error");
  EXPECT_EQ(operator_.boxes[0].text, "Error: " + std::to_string(SQLITE_MISMATCH));
  EXPECT_EQ(operator_.boxes[0].cause,
            "YARD.RDB holds \"yesterday\" in Created; expected a date as YYYY-MM-DD");
}

TEST_F(Identity, SetsAndReadsTheUnit) {
  const fs::path path = CopyOfTemplate(folder_, "YARD.RDB");
  EXPECT_EQ(ReadDatabaseUoM(path), "");
  EXPECT_TRUE(identity_.SetDatabaseUoM(path, "KG"));
  EXPECT_EQ(ReadDatabaseUoM(path), "KG");
  EXPECT_THROW(ReadDatabaseUoM(folder_ / "NONE.RDB"), DatabaseError);
}

TEST_F(Identity, WorksBesideAnotherOpenConnection) {
  const fs::path path = CopyOfTemplate(folder_, "YARD.RDB");
  SQLite::Database window = OpenDatabase(path, Access::kWrite);
  EXPECT_EQ(window.exec("UPDATE Pen SET FeedAmount = '5'"), 400);
  EXPECT_TRUE(identity_.SetDatabaseDate(path, DateSelector::kModified));
  EXPECT_EQ(window.exec("UPDATE Pen SET FeedAmount = '6'"), 400);
}

TEST_F(Identity, AFileThatIsNoDatabaseIsReportedByItsNumber) {
  const fs::path path = folder_.Write("YARD.RDB", "no database");
  ExpectAllFail(path, "Error: " + std::to_string(SQLITE_NOTADB));
  EXPECT_EQ(ReadAll(path), "no database");
}

TEST_F(Identity, ADatabaseWithoutItsTablesIsReported) {
  const fs::path path = CopyOfTemplate(folder_, "YARD.RDB");
  Alter(path, "DROP TABLE BrantockDatabase; DROP TABLE History; DROP TABLE UnitsOfMeasure");
  ExpectAllFail(path, kInvalidTable);
}

TEST_F(Identity, ADatabaseOfAnotherProgramIsReported) {
  const fs::path path = CopyOfTemplate(folder_, "YARD.RDB");
  Alter(path, "PRAGMA application_id=0");
  ExpectAllFail(path, kInvalidTable);
}

TEST_F(Identity, TablesWithoutARowAreReported) {
  const fs::path path = CopyOfTemplate(folder_, "YARD.RDB");
  Alter(path, "DELETE FROM BrantockDatabase; DELETE FROM History; DELETE FROM UnitsOfMeasure");
  ExpectAllFail(path, kNoRecord);
}

TEST_F(Identity, TablesWithoutTheirFieldsAreReported) {
  const fs::path path = CopyOfTemplate(folder_, "YARD.RDB");
  Alter(path,
        "ALTER TABLE BrantockDatabase RENAME COLUMN dBType TO x;"
        "ALTER TABLE History RENAME COLUMN Created TO x;"
        "ALTER TABLE History RENAME COLUMN Modified TO y;"
        "ALTER TABLE UnitsOfMeasure RENAME COLUMN UoM TO x");
  ExpectAllFail(path, kInvalidField);
}

TEST_F(Identity, ALockedFileIsReported) {
  const fs::path path = CopyOfTemplate(folder_, "YARD.RDB");
  const ExclusiveHolder holder(path);
  ExpectAllFail(path, kLocked);
}

TEST_F(Identity, AnEmptyPathFailsLikeAnyOther) {
  ExpectAllFail({}, "Error: " + std::to_string(SQLITE_CANTOPEN));
}

TEST_F(Identity, WritingAWriteProtectedFileIsReportedAndReadingGoesOn) {
  const fs::path path = CopyOfTemplate(folder_, "YARD.RDB");
  const std::string before = ReadAll(path);
  {
    const WithoutWritePermission protection(folder_.Path());
    EXPECT_FALSE(identity_.SetDatabaseDate(path, DateSelector::kModified));
    EXPECT_EQ(identity_.GetDatabaseType(path), "NUL_RECIPE_DB");
  }
  ASSERT_THAT(operator_.boxes, SizeIs(1));
  EXPECT_EQ(operator_.boxes[0].title, "Database Date Write Error");
  EXPECT_EQ(operator_.boxes[0].text, "Error: " + std::to_string(SQLITE_READONLY));
  EXPECT_EQ(ReadAll(path), before);
}

TEST_F(Identity, AFailureIsSilentWhileTheBeeperIsOff) {
  settings_.SetEnableBeeperOn(false);
  EXPECT_EQ(identity_.GetDatabaseType(folder_ / "NONE.RDB"), "");
  EXPECT_EQ(operator_.beeps, 0);
  EXPECT_THAT(operator_.boxes, SizeIs(1));
}

TEST_F(Identity, ShowDatabaseErrorHasWordsForFourNumbers) {
  const std::vector<std::pair<int, std::string>> words{
      {-2147217865, kInvalidTable}, {3021, kNoRecord}, {3251, kLocked},
      {3265, kInvalidField},        {14, "Error: 14"}, {-5, "Error: -5"}};
  for (const auto& [number, text] : words) {
    ShowDatabaseError(operator_, number, "A Title", "a cause");
    EXPECT_EQ(operator_.boxes.back().icon, Icon::kCritical);
    EXPECT_EQ(operator_.boxes.back().title, "A Title");
    EXPECT_EQ(operator_.boxes.back().text, text);
    EXPECT_EQ(operator_.boxes.back().cause, "a cause");
  }
  EXPECT_EQ(operator_.beeps, 0);
}

}  // namespace
}  // namespace vrx::testing
