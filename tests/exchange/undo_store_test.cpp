#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/files.h"
#include "database/connection.h"
#include "exchange/store_fixture.h"

namespace vrx::testing {
namespace {

using ::testing::HasSubstr;

class UndoLastStore : public ::testing::Test, public StoreFixture {
 protected:
  StoreOutcome Read(const std::vector<RowCells>& rows) {
    op.answers = {Answer::kStoreNew};
    stored_flag = false;
    return Store(MakeImport(rows));
  }
  bool Undo(Answer answer = Answer::kYes) {
    op.boxes.clear();
    op.answers = {answer};
    return store.UndoLastStore(databases);
  }
  std::string Query(const std::string& query) const {
    return QueryText(databases.trans_db_path, query);
  }
};

TEST_F(UndoLastStore, TakesOutExactlyTheRowsOfTheLastStore) {
  Read({BatchCells(1, 3, 4, "900.0"), FeedCells(1, 3, 12, "450.0"), BatchCells(2, 3, 4, "901.0")});
  const std::vector<StoredRow> before = Stored();
  Read({BatchCells(1, 3, 4, "900.0"), FeedCells(1, 3, 12, "450.0"), FeedCells(1, 3, 12, "450.0"),
        BatchCells(3, 3, 4, "902.0"), FeedCells(3, 3, 12, "452.0")});
  EXPECT_EQ(Stored().size(), before.size() + 3);
  EXPECT_TRUE(Undo());
  EXPECT_EQ(Stored(), before);
  EXPECT_EQ(Query("SELECT count(*) || ' ' || max(Number) FROM Imports"), "1 1");
  EXPECT_EQ(Query("SELECT count(*) FROM ImportedBatches WHERE Import = 2"), "0");
}

TEST_F(UndoLastStore, AsksWithFileTimeAndNumbersAndNoIsTheDefault) {
  Read({BatchCells(1, 3, 4, "900.0"), BatchCells(2, 3, 4, "901.0")});
  const std::string before = Sha256OfFile(databases.trans_db_path);
  EXPECT_FALSE(Undo(Answer::kNo));
  const MessageBox& box = OnlyBox(op.boxes);
  EXPECT_EQ(box.text,
            "Do you want to take the records of the last store out of the database?\r\n\r\n"
            "01.QXT, stored on 2026-01-05 at 06:30: 2 rows, transactions 1 to 2.");
  EXPECT_TRUE(box.refuses_by_default);
  EXPECT_EQ(Sha256OfFile(databases.trans_db_path), before);
}

TEST_F(UndoLastStore, IsPossibleOnce) {
  Read({BatchCells(1, 3, 4, "900.0")});
  Read({BatchCells(1, 3, 4, "901.0")});
  EXPECT_TRUE(TransactionStore::CanUndo(databases));
  EXPECT_TRUE(Undo());
  EXPECT_FALSE(TransactionStore::CanUndo(databases));
  EXPECT_FALSE(Undo());
  EXPECT_THAT(OnlyBox(op.boxes).text, HasSubstr("There is no store to undo"));
  EXPECT_EQ(Stored().size(), 1U);
}

TEST_F(UndoLastStore, IsPossibleAgainAfterTheNextStore) {
  Read({BatchCells(1, 3, 4, "900.0")});
  Undo();
  Read({BatchCells(1, 3, 4, "900.0")});
  EXPECT_TRUE(Undo());
  EXPECT_EQ(Stored().size(), 0U);
}

TEST_F(UndoLastStore, NothingCanBeUndoneInADatabaseWithoutRecordedStores) {
  EXPECT_FALSE(TransactionStore::CanUndo(databases));
  EXPECT_FALSE(Undo());
}

TEST_F(UndoLastStore, DatesTheDatabaseAndReopensIt) {
  Read({BatchCells(1, 3, 4, "900.0")});
  calendar.today = Date{std::chrono::year{2026}, std::chrono::February, std::chrono::day{1}};
  const int before = saves;
  Undo();
  EXPECT_EQ(Query("SELECT Modified FROM History"), "2026-02-01");
  EXPECT_EQ(saves, before + 1);
}

TEST_F(UndoLastStore, ADatabaseThatWasChangedOtherwiseIsLeftAlone) {
  Read({BatchCells(1, 3, 4, "900.0"), FeedCells(1, 3, 12, "450.0")});
  Execute(databases.trans_db_path, "DELETE FROM Transactions WHERE Type = 'FEED'");
  EXPECT_FALSE(Undo());
  EXPECT_THAT(
      LastBox(op.boxes).cause,
      HasSubstr("the database has 1 of the 2 rows of the last store; nothing was taken out"));
  EXPECT_EQ(Stored().size(), 1U);
}

TEST_F(UndoLastStore, AStoreOfAnotherProgramDuringTheQuestionIsNotUndone) {
  Read({BatchCells(1, 3, 4, "900.0")});
  op.on_message = [this](const MessageBox& box) {
    if (box.buttons == Buttons::kYesNo) {
      Execute(databases.trans_db_path, "INSERT INTO Imports (Stored) VALUES (0)");
    }
  };
  EXPECT_FALSE(Undo());
  EXPECT_THAT(LastBox(op.boxes).cause, HasSubstr("another program has used the database"));
  EXPECT_EQ(Stored().size(), 1U);
}

}  // namespace
}  // namespace vrx::testing
