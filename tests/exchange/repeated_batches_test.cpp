// Batches that the database has already: a data module that was not cleared, or that was read in
// the middle of a feeding.

#include "exchange/repeated_batches.h"

#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/files.h"
#include "exchange/store_fixture.h"

namespace vrx::testing {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr const char* kTypesAndNumbers =
    "SELECT group_concat([Transaction] || ' ' || Type, ', ') FROM (SELECT * FROM Transactions "
    "ORDER BY rowid)";

// A batch of one load, whose weight makes it unlike any other, and of these deliveries.
std::vector<RowCells> Batch(int number, const std::string& load,
                            const std::vector<std::string>& feeds) {
  std::vector<RowCells> rows{BatchCells(number, 3, 4, load)};
  int pen = 10;
  for (const std::string& feed : feeds) {
    rows.push_back(FeedCells(number, 3, ++pen, feed));
  }
  return rows;
}

ImportedData Import(const std::vector<std::vector<RowCells>>& batches) {
  std::vector<RowCells> rows;
  for (const std::vector<RowCells>& batch : batches) {
    rows.insert(rows.end(), batch.begin(), batch.end());
  }
  return MakeImport(rows);
}

class RepeatedStore : public ::testing::Test, public StoreFixture {
 protected:
  // Stores another reading of the module. A question is answered with `answer`.
  StoreOutcome Read(const ImportedData& import, Answer answer = Answer::kStoreNew) {
    op.boxes.clear();
    op.answers = {answer};
    stored_flag = false;
    return Store(import);
  }

  // "1 BATCH, 1 FEED": the stored rows in their order.
  std::string Rows() const { return QueryText(databases.trans_db_path, kTypesAndNumbers); }
  std::string Query(const std::string& query) const {
    return QueryText(databases.trans_db_path, query);
  }

  // As an earlier version left the database.
  void ForgetImports() {
    Execute(databases.trans_db_path, "DROP TABLE Imports; DROP TABLE ImportedBatches");
  }
};

TEST_F(RepeatedStore, NewBatchesAreStoredWithoutAQuestion) {
  EXPECT_TRUE(Read(Import({Batch(1, "900.0", {"450.0"})})).complete);
  EXPECT_TRUE(Read(Import({Batch(1, "901.0", {"450.0"})})).complete);
  EXPECT_THAT(op.boxes, IsEmpty());
  EXPECT_EQ(Rows(), "1 BATCH, 1 FEED, 2 BATCH, 2 FEED");
}

TEST_F(RepeatedStore, AModuleThatWasNotClearedBringsOnlyItsNewBatches) {
  Read(Import({Batch(1, "900.0", {"450.0"}), Batch(2, "901.0", {"450.0", "451.0"})}));
  const StoreOutcome outcome =
      Read(Import({Batch(1, "900.0", {"450.0"}), Batch(2, "901.0", {"450.0", "451.0"}),
                   Batch(3, "902.0", {"452.0"})}));
  EXPECT_TRUE(outcome.complete);
  EXPECT_EQ(outcome.stored, 2U);
  EXPECT_EQ(outcome.repeated, 5U);
  EXPECT_EQ(outcome.lowest, 5);
  EXPECT_EQ(Rows(), "1 BATCH, 1 FEED, 2 BATCH, 2 FEED, 2 FEED, 5 BATCH, 5 FEED");
}

TEST_F(RepeatedStore, TheQuestionHasTheCountsAndTheNumbersInTheDatabase) {
  Read(Import({Batch(7, "900.0", {"450.0"}), Batch(8, "901.0", {"450.0"}),
               Batch(9, "902.0", {"450.0"}), Batch(11, "903.0", {"450.0", "451.0"})}));
  Read(Import({Batch(1, "900.0", {"450.0"}), Batch(2, "901.0", {"450.0"}),
               Batch(3, "902.0", {"450.0", "452.0"}), Batch(4, "903.0", {"450.0", "459.0"}),
               Batch(5, "904.0", {}), Batch(6, "905.0", {})}));
  const MessageBox& box = OnlyBox(op.boxes);
  EXPECT_THAT(box, IsBox(Icon::kQuestion, "Repeated Batches",
                         "The transaction database has batches of this import already.\r\n\r\n"
                         "2 batches are there already, as transactions 7-8.\r\n"
                         "1 batch is there, but not all of its feeds, as transaction 9.\r\n"
                         "1 batch has the loads of a stored batch, but other feeds, as "
                         "transaction 11.\r\n"
                         "2 batches are new.",
                         Buttons::kNewAllNothing));
  EXPECT_EQ(box.cause,
            "Batches 1-2: the same as transactions 7-8\r\n"
            "Batch 3: continues transaction 9\r\nBatch 4: has other feeds than transaction 11");
}

TEST_F(RepeatedStore, FurtherFeedsGoUnderTheNumberThatTheBatchHas) {
  Read(Import({Batch(1, "900.0", {"450.0"}), Batch(2, "901.0", {})}));
  const StoreOutcome outcome = Read(Import({Batch(1, "900.0", {"450.0", "451.0", "452.0"})}));
  EXPECT_EQ(outcome.stored, 2U);
  EXPECT_EQ(Rows(), "1 BATCH, 1 FEED, 2 BATCH, 1 FEED, 1 FEED");
  EXPECT_EQ(Query("SELECT group_concat(ActualFeed) FROM Transactions WHERE Type = 'FEED'"),
            "450.0,451.0,452.0");
}

TEST_F(RepeatedStore, EqualDeliveriesAreCounted) {
  const RowCells feed = FeedCells(1, 3, 12, "450.0");
  const RowCells load = BatchCells(1, 3, 4, "900.0");
  Read(MakeImport({load, feed}));
  EXPECT_EQ(Read(MakeImport({load, feed, feed})).stored, 1U);
  EXPECT_EQ(Read(MakeImport({load, feed, feed})).stored, 0U);
  EXPECT_EQ(Rows(), "1 BATCH, 1 FEED, 1 FEED");
}

TEST_F(RepeatedStore, AnOlderReadingIsTheSame) {
  Read(Import({Batch(1, "900.0", {"450.0"})}));
  Read(Import({Batch(1, "900.0", {"450.0", "451.0"})}));
  EXPECT_EQ(Read(Import({Batch(1, "900.0", {"450.0"})})).stored, 0U);
  EXPECT_EQ(Read(Import({Batch(1, "900.0", {})})).stored, 0U);
  EXPECT_THAT(OnlyBox(op.boxes).text, HasSubstr("1 batch is there already"));
  EXPECT_EQ(Rows(), "1 BATCH, 1 FEED, 1 FEED");
}

TEST_F(RepeatedStore, AConflictIsLeftOut) {
  Read(Import({Batch(1, "900.0", {"450.0"})}));
  const StoreOutcome outcome = Read(Import({Batch(1, "900.0", {"460.0"})}));
  EXPECT_TRUE(outcome.complete);
  EXPECT_EQ(outcome.stored, 0U);
  EXPECT_EQ(Query("SELECT State FROM ImportedBatches WHERE Import = 2"), "conflict");
}

TEST_F(RepeatedStore, StoreAllAgainNumbersTheRepeatedBatchesAnew) {
  Read(Import({Batch(1, "900.0", {"450.0"})}));
  EXPECT_EQ(Read(Import({Batch(1, "900.0", {"450.0", "451.0"})}), Answer::kStoreAll).stored, 3U);
  EXPECT_EQ(Rows(), "1 BATCH, 1 FEED, 2 BATCH, 2 FEED, 2 FEED");
}

TEST_F(RepeatedStore, StoreNothingLeavesTheFileUnchanged) {
  Read(Import({Batch(1, "900.0", {"450.0"})}));
  const std::string before = Sha256OfFile(databases.trans_db_path);
  EXPECT_FALSE(
      Read(Import({Batch(1, "900.0", {"450.0"}), Batch(2, "901.0", {})}), Answer::kStoreNothing)
          .complete);
  EXPECT_EQ(Sha256OfFile(databases.trans_db_path), before);
}

TEST_F(RepeatedStore, NoneRefusesARepeatedImportWithoutAQuestion) {
  repeated = RepeatedBatches::kNone;
  EXPECT_TRUE(Read(Import({Batch(1, "900.0", {"450.0"})})).complete);
  EXPECT_FALSE(Read(Import({Batch(1, "900.0", {"450.0"}), Batch(2, "901.0", {})})).complete);
  EXPECT_EQ(OnlyBox(op.boxes).buttons, Buttons::kOk);
  EXPECT_THAT(OnlyBox(op.boxes).text, HasSubstr("Nothing was stored."));
  EXPECT_EQ(Rows(), "1 BATCH, 1 FEED");
}

TEST_F(RepeatedStore, WhatAnEarlierVersionStoredIsComparedByName) {
  Read(Import(
      {Batch(1, "900.0", {"450.0"}), Batch(2, "901.0", {"450.0"}), Batch(3, "902.0", {"450.0"})}));
  ForgetImports();
  Read(Import({Batch(4, "900.0", {"450.0"}), Batch(5, "901.0", {"450.0", "451.0"}),
               Batch(6, "902.0", {"460.0"}), Batch(7, "903.0", {"450.0"})}));
  EXPECT_EQ(OnlyBox(op.boxes).cause,
            "Batch 4: the same as transaction 1 (compared by name)\r\n"
            "Batch 5: continues transaction 2 (compared by name)\r\n"
            "Batch 6: has other feeds than transaction 3 (compared by name)");
  EXPECT_EQ(Rows(), "1 BATCH, 1 FEED, 2 BATCH, 2 FEED, 3 BATCH, 3 FEED, 2 FEED, 10 BATCH, 10 FEED");
}

TEST_F(RepeatedStore, AnEarlierBatchWithOtherLoadsIsAnother) {
  Read(Import({Batch(1, "900.0", {"450.0"}), Batch(2, "901.0", {"450.0"})}));
  ForgetImports();
  Read(Import({Batch(1, "900.0", {"450.0"}), Batch(2, "902.0", {"450.0"})}));
  EXPECT_EQ(OnlyBox(op.boxes).cause, "Batch 1: the same as transaction 1 (compared by name)");
}

TEST_F(RepeatedStore, AnEarlierDeliveryToAnotherPenIsAnother) {
  const RowCells load = BatchCells(1, 3, 4, "900.0");
  Read(MakeImport({load, FeedCells(1, 3, 12, "450.0")}));
  ForgetImports();
  Read(MakeImport({load, FeedCells(1, 3, 13, "450.0")}));
  EXPECT_EQ(OnlyBox(op.boxes).cause,
            "Batch 1: has other feeds than transaction 1 (compared by name)");
}

TEST_F(RepeatedStore, TheSameIsPreferredToAConflict) {
  Read(Import({Batch(1, "900.0", {"450.0"})}));
  Read(Import({Batch(1, "900.0", {"460.0"})}), Answer::kStoreAll);
  Read(Import({Batch(1, "900.0", {"450.0"})}));
  EXPECT_EQ(OnlyBox(op.boxes).cause, "Batch 1: the same as transaction 1");
  Read(Import({Batch(1, "900.0", {"460.0"})}));
  EXPECT_EQ(OnlyBox(op.boxes).cause, "Batch 1: the same as transaction 2");
}

TEST_F(RepeatedStore, BatchesThatDifferInOneFieldOfALoadAreDifferent) {
  const RowCells load = BatchCells(1, 3, 4, "900.0");
  Read(MakeImport({load}));
  const std::vector<std::pair<int, std::string>> changes{
      {kImportedRecipeID, "4"},     {kImportedUserID, "3"},      {kImportedDate, "01162009"},
      {kImportedIngredientID, "5"}, {kImportedTarget, "1001.0"}, {kImportedTime, "0831"}};
  for (const bool forgotten : {false, true}) {
    for (const auto& [column, text] : changes) {
      RowCells other = load;
      other[column] = text;
      if (forgotten) {
        ForgetImports();
        other[kImportedActualBatch] = "900.5";
        Read(MakeImport({other}));
        ForgetImports();
        other[kImportedActualBatch] = "900.0";
      }
      EXPECT_THAT((Read(MakeImport({other})), op.boxes), SizeIs(forgotten ? 1U : 0U)) << column;
    }
  }
}

TEST_F(RepeatedStore, OneBatchOfTheDatabaseAccountsForOneBatchOfTheFile) {
  Read(Import({Batch(1, "900.0", {"450.0"})}));
  EXPECT_EQ(Read(Import({Batch(1, "900.0", {"450.0"}), Batch(2, "900.0", {"450.0"})})).stored, 2U);
}

TEST_F(RepeatedStore, AStoreIsRecordedWithItsFileAndItsNumbers) {
  std::vector<RowCells> rows = Batch(3, "900.0", {"450.0"});
  rows.push_back(BatchCells(5, 3, 4, "901.0"));
  rows.push_back(BatchCells(9, 3, 4, "902.0"));
  rows.back()[kImportedDate] = "01172009";
  rows.emplace_back();  // counted, never filled
  Read(MakeImport({BatchCells(2, 3, 4, "890.0")}));
  Read(MakeImport(rows));
  EXPECT_EQ(Query("SELECT Number || '|' || At || '|' || File || '|' || SHA256 || '|' || Units || "
                  "'|' || RowsRead || '|' || Stored || '|' || LeftOut || '|' || NotRead || '|' || "
                  "Repeated || '|' || Batches || '|' || FileLow || '|' || FileHigh || '|' || "
                  "Missing || '|' || StoredLow || '|' || StoredHigh || '|' || FirstDate || '|' || "
                  "LastDate FROM Imports WHERE Number = 2"),
            "2|2026-01-05T06:30:00-06:00|01.QXT|ab|LB|5|4|1|0|0|3|3|9|4,6-8|5|11|2009-01-15|"
            "2009-01-17");
  EXPECT_EQ(
      Query("SELECT group_concat(FileNumber || ' ' || [Transaction] || ' ' || State || ' ' || "
            "Rows || ' ' || length(Loads) || ' ' || length(Feeds), ', ') FROM "
            "ImportedBatches WHERE Import = 2"),
      "3 5 new 2 64 16, 5 7 new 1 64 0, 9 11 new 1 64 0");
}

TEST_F(RepeatedStore, AStoreThatStoppedInABatchContinuesIt) {
  std::vector<RowCells> rows = Batch(1, "900.0", {"450.0", "451.0"});
  rows.back()[kImportedPenID] = "999";
  EXPECT_FALSE(Read(MakeImport(rows)).complete);
  EXPECT_EQ(Read(Import({Batch(1, "900.0", {"450.0", "451.0"})})).stored, 1U);
  EXPECT_EQ(Rows(), "1 BATCH, 1 FEED, 1 FEED");
}

TEST_F(RepeatedStore, AStoreThatStoppedAmongTheLoadsOfABatchIsNotTakenForIt) {
  RowCells unreadable = BatchCells(1, 3, 5, "901.0");
  unreadable[kImportedIngredientID] = "999";
  const ImportedData import = MakeImport({BatchCells(1, 3, 4, "900.0"), unreadable});
  EXPECT_FALSE(Read(import).complete);
  EXPECT_FALSE(Read(import).complete);
  EXPECT_EQ(Rows(), "1 BATCH, 2 BATCH");
}

TEST_F(RepeatedStore, ARepeatedBatchNeedsNoRoomForItsNumber) {
  Read(Import({Batch(2, "900.0", {})}));
  Execute(databases.trans_db_path, "INSERT INTO Transactions ([Transaction]) VALUES (2147483646)");
  EXPECT_TRUE(Read(Import({Batch(2, "900.0", {"450.0"})})).complete);
  EXPECT_FALSE(Read(Import({Batch(2, "901.0", {"450.0"})})).complete);
}

}  // namespace
}  // namespace vrx::testing
