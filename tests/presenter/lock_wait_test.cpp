#include "database/lock_wait.h"

#include <chrono>
#include <memory>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "database/connection.h"
#include "database/identity.h"
#include "presenter/database_identity.h"
#include "settings/settings.h"
#include "support/database_files.h"
#include "support/fixed_calendar.h"
#include "support/recording_operator.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using std::chrono::milliseconds;

class LockWaitTest : public ::testing::Test {
 protected:
  bool Locked() {
    try {
      OpenDatabase(path_, Access::kRead, budget_);
    } catch (const DatabaseError& error) {
      return error.Number() == kTableLockedError;
    }
    return false;
  }

  TempFolder folder_;
  fs::path path_ = CopyOfTemplate(folder_, "YARD.RDB");
  WaitBudget budget_{milliseconds(30)};
};

TEST_F(LockWaitTest, ABudgetIsGoneAfterTheFirstConnectionThatWaitsInVain) {
  const ExclusiveHolder holder(path_);
  EXPECT_TRUE(Locked());
  EXPECT_EQ(budget_.Left(), milliseconds(0));
  EXPECT_TRUE(Locked());
  budget_.Renew();
  EXPECT_EQ(budget_.Left(), milliseconds(30));
}

TEST_F(LockWaitTest, TheRoutinesOfAnActionShareTheBudgetOfTheirConnections) {
  RecordingOperator op;
  const FixedCalendar calendar;
  const PrivateINI settings;
  DatabaseIdentity identity(op, calendar, settings, budget_);
  const ExclusiveHolder holder(path_);
  EXPECT_EQ(identity.GetDatabaseType(path_), "");
  EXPECT_EQ(budget_.Left(), milliseconds(0));
  EXPECT_FALSE(identity.SetDatabaseDate(path_, DateSelector::kModified));
  EXPECT_FALSE(identity.SetDatabaseUoM(path_, "KG"));
  EXPECT_EQ(op.boxes.size(), 3U);
}

TEST_F(LockWaitTest, AFileThatIsFreeCostsNothing) {
  EXPECT_FALSE(Locked());
  EXPECT_EQ(budget_.Left(), milliseconds(30));
}

TEST_F(LockWaitTest, AStatementGoesOnOnceTheLockIsGone) {
  SQLite::Database database = OpenDatabase(path_, Access::kWrite, budget_);
  auto holder = std::make_unique<ExclusiveHolder>(path_);
  EXPECT_THROW(database.exec("UPDATE Pen SET Name = 'X' WHERE ID = 1"), SQLite::Exception);
  holder.reset();
  database.exec("UPDATE Pen SET Name = 'X' WHERE ID = 1");
  EXPECT_THAT(Ask(path_, "SELECT Name FROM Pen WHERE ID = 1"), ::testing::ElementsAre("X"));
}

TEST(WaitBudget, GivesAwayNoMoreThanItHas) {
  WaitBudget budget(milliseconds(25));
  EXPECT_EQ(budget.Take(milliseconds(10)), milliseconds(10));
  EXPECT_EQ(budget.Take(milliseconds(10)), milliseconds(10));
  EXPECT_EQ(budget.Take(milliseconds(10)), milliseconds(5));
  EXPECT_EQ(budget.Take(milliseconds(10)), milliseconds(0));
}

}  // namespace
}  // namespace vrx::testing
