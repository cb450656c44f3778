#include <gmock/gmock.h>

#include "base/files.h"
#include "central/administration.h"
#include "central/client_fixture.h"
#include "central/server_source.h"
#include "central/transfer.h"
#include "support/database_files.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

class CentralVerify : public ClientFixture {
 protected:
  // Changes the file behind the back of its triggers.
  void AlterUnseen(const fs::path& file, const std::string& statements) {
    Alter(file,
          "DROP TRIGGER IF EXISTS CentralDeleted; DROP TRIGGER IF EXISTS CentralChanged; "
          "DROP TRIGGER IF EXISTS CentralAdded; " +
              statements);
  }

  // "first-last: changed, missing here, missing there"
  std::string DifferenceOf(const fs::path& file) {
    const std::optional<Difference> found = Verify(file).difference;
    return found ? std::to_string(found->first_row) + "-" + std::to_string(found->last_row) + ": " +
                       std::to_string(found->changed) + ", " + std::to_string(found->missing_here) +
                       ", " + std::to_string(found->missing_there)
                 : "";
  }
};

TEST_F(CentralVerify, FindsNoDifferenceAndCountsWhatWaits) {
  const fs::path file = MakeFile("Y.TDB", 200);
  Push(file);
  AddBatches(file, 1);
  const VerifyOutcome outcome = Verify(file);
  EXPECT_FALSE(outcome.difference);
  EXPECT_EQ(outcome.proof.rows, 1000);
  EXPECT_EQ(outcome.waiting, 5);
}

TEST_F(CentralVerify, NamesTheFirstRangeThatDiffers) {
  const fs::path file = MakeFile("Y.TDB", 20);
  Push(file);
  AlterUnseen(file, "UPDATE Transactions SET Pen = 'X' WHERE rowid IN (12, 17)");
  EXPECT_EQ(DifferenceOf(file), "12-17: 2, 0, 0");
  AlterUnseen(file, "DELETE FROM Transactions WHERE rowid BETWEEN 60 AND 62");
  EXPECT_EQ(DifferenceOf(file), "12-62: 2, 3, 0");
}

TEST_F(CentralVerify, SeesARowInAGapAndAtTheBeginning) {
  const fs::path file = MakeFile("Y.TDB", 20);
  Alter(file, "DELETE FROM Transactions WHERE [Transaction] = 4");
  Push(file);
  AlterUnseen(file, "INSERT INTO Transactions (RowNumber, Type) VALUES (18, 'FEED'), (0, 'FEED')");
  EXPECT_EQ(DifferenceOf(file), "0-18: 0, 0, 2");
}

TEST_F(CentralVerify, SeesTheSmallestChangeOfAWeight) {
  const fs::path file = MakeFile("Y.TDB", 20);
  Push(file);
  AlterUnseen(file, "UPDATE Transactions SET Ing32Wt = Ing32Wt + 5e-324 WHERE rowid = 30");
  EXPECT_EQ(DifferenceOf(file), "30-30: 1, 0, 0");
}

TEST_F(CentralVerify, SeesAChangeOnTheServerThatKeptTheDigest) {
  const fs::path file = MakeFile("Y.TDB", 20);
  Push(file);
  chief_.Query("ALTER TABLE vrx.transaction DROP CONSTRAINT row_equals_its_digest");
  chief_.Query("UPDATE vrx.transaction SET pen = 'X' WHERE row = 33");
  EXPECT_EQ(DifferenceOf(file), "33-33: 1, 0, 0");
}

TEST_F(CentralVerify, ErasedRowsAreNoDifference) {
  const fs::path file = MakeFile("Y.TDB", 20);
  const std::string source = Push(file).source;
  Erase(chief_, {.source = source, .first_row = 1, .last_row = 1, .why = "wrong yard"});
  Erase(chief_, {.source = source, .first_row = 11, .last_row = 15, .why = "wrong yard"});
  Erase(chief_, {.source = source, .first_row = 100, .last_row = 100, .why = "wrong yard"});
  Withdraw(chief_, {.source = source, .first_row = 21, .last_row = 25, .why = "wrong yard"});
  const VerifyOutcome outcome = Verify(file);
  EXPECT_FALSE(outcome.difference);
  EXPECT_EQ(outcome.erased, 7);
  EXPECT_EQ(outcome.proof.rows, 93);
}

TEST_F(CentralVerify, AFileThatWasNeverPushedIsRefused) {
  EXPECT_THROW(Verify(MakeFile("Y.TDB", 1)), CentralRefused);
}

class CentralRestore : public ClientFixture {};

TEST_F(CentralRestore, MakesTheSameRowsWithAllIndexes) {
  const fs::path file = MakeFile("Y.TDB", 200);
  Alter(file, "DELETE FROM Transactions WHERE rowid BETWEEN 400 AND 405");
  Push(file);
  const fs::path copy = Restore("R.TDB");
  EXPECT_EQ(Rows(copy), Rows(file));
  const std::string indexes =
      "SELECT group_concat(sql, ';') FROM (SELECT sql FROM sqlite_schema WHERE type = 'index' "
      "ORDER BY name)";
  EXPECT_EQ(Ask(copy, indexes), Ask(file, indexes));
  EXPECT_EQ(Ask(copy, "PRAGMA integrity_check"), "ok");
  EXPECT_EQ(Ask(copy, "SELECT dBType || UoM FROM BrantockDatabase, UnitsOfMeasure"),
            "USER_TRANS_DBLB");
  EXPECT_THAT(FileNames(folder_.Path()), ElementsAre("R.TDB", "Y.TDB"));
  EXPECT_EQ(Ask(copy, "SELECT Parent FROM CentralSource"),
            Ask(file, "SELECT Generation FROM CentralSource"));
  ExpectThere(copy, 994);
}

TEST_F(CentralRestore, NeverReplacesAFile) {
  Push(MakeFile("Y.TDB", 2));
  folder_.Write("R.TDB", "mine");
  EXPECT_THROW(Restore("R.TDB"), FileError);
  EXPECT_EQ(ReadFileBytes(folder_ / "R.TDB", 100), "mine");
  EXPECT_THAT(FileNames(folder_.Path()), ElementsAre("R.TDB", "Y.TDB"));
}

// Rows that are not those that were pushed: changed, away, and under another number before the
// first push or between two.
TEST_F(CentralRestore, RowsThatDoNotProveThemselvesLeaveNoFile) {
  const fs::path file = MakeFile("Y.TDB", 20);
  Alter(file, "DELETE FROM Transactions WHERE rowid = 100");
  Push(file);
  Alter(file, "INSERT INTO Transactions (RowNumber, [Transaction]) VALUES (110, 21)");
  Push(file);
  chief_.Query("ALTER TABLE vrx.transaction DROP CONSTRAINT row_equals_its_digest");
  for (const auto& [change, undo] :
       {std::pair("pen = pen || 'X' WHERE row = 10", "pen = left(pen, -1) WHERE row = 10"),
        std::pair("target = target + 0.1 WHERE row = 1", "target = target - 0.1 WHERE row = 1"),
        std::pair("row = 5000 WHERE row = 10", "row = 10 WHERE row = 5000"),
        std::pair("row = -1 WHERE row = 1", "row = 1 WHERE row = -1"),
        std::pair("row = 104 WHERE row = 99", "row = 99 WHERE row = 104")}) {
    chief_.Query("UPDATE vrx.transaction SET " + std::string(change));
    EXPECT_THROW(Restore("R.TDB"), CentralRefused) << change;
    EXPECT_THAT(FileNames(folder_.Path()), ElementsAre("Y.TDB"));
    chief_.Query("UPDATE vrx.transaction SET " + std::string(undo));
  }
  EXPECT_EQ(Rows(Restore("R.TDB")), Rows(file));
}

TEST_F(CentralRestore, ErasedRowsAreNotRestoredAndTheOthersAreProven) {
  const fs::path file = MakeFile("Y.TDB", 200);
  const std::string source = Push(file).source;
  Erase(chief_, {.source = source, .first_row = 296, .last_row = 310, .why = "wrong yard"});
  Withdraw(chief_, {.source = source, .first_row = 601, .last_row = 605, .why = "wrong yard"});
  Alter(file, "DELETE FROM Transactions WHERE rowid BETWEEN 296 AND 310");
  EXPECT_EQ(Rows(Restore("R.TDB")), Rows(file));
}

TEST_F(CentralRestore, StopsWithoutAFileWhenAsked) {
  Push(MakeFile("Y.TDB", 2000));
  CentralConnection server = Connect();
  CentralProgress progress;
  progress.go_on = [] { return false; };
  EXPECT_THROW(
      vrx::Restore(server, {.yard = "North", .out = folder_ / "R.TDB"}, calendar_, progress),
      CentralStopped);
  EXPECT_THAT(FileNames(folder_.Path()), ElementsAre("Y.TDB"));
}

TEST_F(CentralRestore, SeveralSourcesHaveToBeChosenFrom) {
  const std::string source = Push(MakeFile("Y.TDB", 2)).source;
  Push(MakeFile("Z.TDB", 3));
  try {
    Restore("R.TDB");
    FAIL() << "no error";
  } catch (const CentralRefused& error) {
    EXPECT_THAT(error.what(), HasSubstr("2 sources"));
  }
  EXPECT_EQ(Rows(Restore("R.TDB", source)), Rows(folder_ / "Y.TDB"));
  EXPECT_THROW(Restore("S.TDB", "'; DROP TABLE vrx.yard; --"), CentralRefused);
  EXPECT_THROW(Restore("S.TDB", "00000000-0000-0000-0000-000000000000"), CentralRefused);
}

}  // namespace
}  // namespace vrx::testing
