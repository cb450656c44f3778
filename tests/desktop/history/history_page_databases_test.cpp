#include <SQLiteCpp/Database.h>
#include <gmock/gmock.h>

#include "database/identity.h"
#include "desktop/history/history_fixture.h"
#include "history/data_group.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::StartsWith;

class HistoryPageDatabases : public HistoryFixture {
 protected:
  std::string EmptyText() { return Grid().accessibleDescription().toStdString(); }
};

TEST_F(HistoryPageDatabases, AClosedGridIsEmptyAndSaysWhatWouldFillIt) {
  Show();
  EXPECT_EQ(Grid().Model().rowCount(), 0);
  EXPECT_EQ(EmptyText(), "Open a transaction database to see its records here.");
}

TEST_F(HistoryPageDatabases, AnEmptyGridSaysWhatWouldFillIt) {
  ShowTab();
  ChooseGroup(4);
  EXPECT_EQ(EmptyText(), "Pick the name of a recipe above to see its records.");
  GoToTab(kTabDataTransfer);
  GoToTab(kTabBatchedFed);
  EXPECT_EQ(EmptyText(), "Choose the data group again to pick the name of a recipe.");
  Alter(Transactions(), "DELETE FROM Transactions");
  for (const auto& [group, text] :
       {std::pair{0, "No transactions are stored yet. Import a transaction file and store it."},
        {5, "No batch records are stored yet. Import a transaction file and store it."},
        {8, "No feed records are stored yet. Import a transaction file and store it."}}) {
    ChooseGroup(group);
    EXPECT_EQ(EmptyText(), text);
  }
  ChooseGroup(9);
  PickName(u"A01"_qs);
  EXPECT_EQ(EmptyText(), "No records are stored for the pen A01.");
}

TEST_F(HistoryPageDatabases, AGroupByNameWithoutADescribedRecordSaysSo) {
  ShowTab();
  ChooseGroup(7);
  EXPECT_EQ(EmptyText(), "Pick the name of an ingredient above to see its records.");
  Alter(Recipes(), "UPDATE Pen SET Description = ''");
  ChooseGroup(9);
  EXPECT_EQ(EmptyText(),
            "The recipe database has no pen with a description, so there is no name to pick.");
}

// A store ends with a save, which binds the database anew.
TEST_F(HistoryPageDatabases, WhatIsStoredWhileTheTabIsShownIsSeenAfterTheSave) {
  ShowTab();
  Alter(Transactions(),
        "INSERT INTO Transactions ([Transaction], Recipe, Type, Target, ActualBatch, ActualFeed) "
        "VALUES (4, 'NEW', 'BATCH', 1, 2, 0)");
  EXPECT_EQ(Lines().size(), 8U);
  Choose(u"mnuFileSaveTransactionDB"_qs);
  EXPECT_EQ(Lines().size(), 9U);
  EXPECT_THAT(Lines().back(), StartsWith("1: 4|NEW|BATCH|2"));
}

TEST_F(HistoryPageDatabases, AnotherTransactionDatabaseShowsTheChosenGroup) {
  ShowTab();
  ChooseGroup(8);
  {
    SQLite::Database other = SmallHistory(folder_, "OTHER.TDB");
    other.exec("UPDATE Transactions SET Pen = 'Z' WHERE Pen IS NOT NULL");
  }
  MakeUsers(folder_ / "OTHER.TDB", kUserTransDb);
  chooser_.Choose(folder_ / "OTHER.TDB");
  Choose(u"mnuFileOpenTransactionDB"_qs);
  EXPECT_EQ(GroupText(), "Pens Fed (all)");
  EXPECT_THAT(Lines(), ElementsAre("[1] Pen:Z"));
}

TEST_F(HistoryPageDatabases, AnotherDatabaseOpensItsGroupsWhileAllAreExpanded) {
  ShowTab();
  ChooseGroup(8);
  ExpandAll(true);
  Choose(u"mnuFileSaveTransactionDB"_qs);
  EXPECT_EQ(Lines().size(), 8U);
  EXPECT_TRUE(Header().isVisible());
}

TEST_F(HistoryPageDatabases, NoStatementStaysOpenBetweenEvents) {
  ShowTab();
  for (int group = 0; group < kDataGroupCount; ++group) {
    ChooseGroup(group);
    ExpandAll(group % 2 == 0);
    RunEvents();
    SQLite::Database other = OpenDatabase(Transactions(), Access::kWrite);
    EXPECT_NO_THROW(other.exec("BEGIN EXCLUSIVE; ROLLBACK")) << group;
  }
}

TEST_F(HistoryPageDatabases, TheEndOfTheProgramReleasesBothDatabases) {
  ShowTab();
  ChooseGroup(3);
  Main().ReleaseDataControls();
  EXPECT_EQ(Grid().Model().rowCount(), 0);
  ExpandAll(true);  // finds nothing to do
  EXPECT_EQ(Grid().Model().rowCount(), 0);
  SQLite::Database other = OpenDatabase(Transactions(), Access::kWrite);
  EXPECT_NO_THROW(other.exec("PRAGMA locking_mode=EXCLUSIVE; BEGIN EXCLUSIVE; COMMIT"));
}

TEST_F(HistoryPageDatabases, AGroupThatCannotBeReadIsReportedAndTheOldOneStays) {
  ShowTab();
  ChooseGroup(8);
  const auto before = Lines();
  Alter(Transactions(), "ALTER TABLE Transactions RENAME TO Elsewhere");
  ChooseGroup(3);
  ASSERT_EQ(operator_.boxes.size(), 1U);
  EXPECT_EQ(LastBox().text, "There is an invalid table in the specified database.");
  EXPECT_EQ(GroupText(), "Pens Fed (all)");
  Alter(Transactions(), "ALTER TABLE Elsewhere RENAME TO Transactions");
  EXPECT_EQ(Lines(), before);
}

TEST_F(HistoryPageDatabases, ARowThatCannotBeReadIsReportedOnceAndBlank) {
  ShowTab();
  Alter(Transactions(), "ALTER TABLE Transactions RENAME TO Elsewhere");
  ClickHeader(kTargetColumn);  // forgets what was read
  Grid().viewport()->repaint();
  RunEvents();
  EXPECT_EQ(operator_.boxes.size(), 1U);
  EXPECT_EQ(LastBox().icon, Icon::kCritical);
  EXPECT_EQ(Cells(0), std::string(Captions().size() - 1, '|'));
}

}  // namespace
}  // namespace vrx::testing
