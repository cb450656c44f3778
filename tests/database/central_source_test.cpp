#include "database/central_source.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/uuid.h"
#include "database/connection.h"
#include "database/copy_database.h"
#include "support/database_files.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class CentralSourceTest : public ::testing::Test {
 protected:
  CentralSourceTest() {
    fs::permissions(path_, fs::perms::owner_write, fs::perm_options::add);
    database_ = std::make_unique<SQLite::Database>(OpenDatabase(path_, Access::kWrite));
    Exec("INSERT INTO Transactions ([Transaction], Recipe) VALUES (1, 'A'), (1, 'A'), (2, 'B')");
  }

  void Exec(const std::string& text) { database_->exec(text); }

  // Rows 1 to `row` are in the central database.
  void Watch(std::int64_t row) {
    CentralSource source = MakeCentralSource(*database_, "pc");
    source.watched_to = row;
    WriteCentralSource(*database_, source);
  }

  std::vector<std::string> Changes() {
    std::vector<std::string> texts;
    for (const CentralChange& change : ReadCentralChanges(*database_, 100)) {
      texts.push_back(std::to_string(change.row) + " " + change.what);
    }
    return texts;
  }

  TempFolder folder_;
  fs::path path_ = CopyOfTemplate(folder_, "Y.TDB", DatabaseKind::kTransaction);
  std::unique_ptr<SQLite::Database> database_;
};

TEST_F(CentralSourceTest, AFileThatIsNeverPushedHasNothingOfIt) {
  EXPECT_FALSE(ReadCentralSource(*database_));
  EXPECT_THAT(Ask(path_,
                  "SELECT name FROM sqlite_schema WHERE name LIKE 'Central%' OR type = "
                  "'trigger'"),
              IsEmpty());
  RenewGeneration(*database_);
  EXPECT_FALSE(ReadCentralSource(*database_));
}

TEST_F(CentralSourceTest, IsMadeOnce) {
  const CentralSource made = MakeCentralSource(*database_, "pc");
  EXPECT_TRUE(IsUuid(made.source));
  EXPECT_TRUE(IsUuid(made.generation));
  EXPECT_NE(made.source, made.generation);
  EXPECT_EQ(made.parent, "");
  EXPECT_EQ(made.watched_to, 0);
  const CentralSource again = MakeCentralSource(*database_, "other");
  EXPECT_EQ(again.source, made.source);
  EXPECT_EQ(again.machine, "pc");
}

TEST_F(CentralSourceTest, RowsAboveTheMarkAreNotNoted) {
  Watch(2);
  Exec("UPDATE Transactions SET Recipe = 'C' WHERE RowNumber = 3");
  Exec("DELETE FROM Transactions WHERE RowNumber = 3");
  Exec("INSERT INTO Transactions ([Transaction]) VALUES (4)");
  EXPECT_THAT(Changes(), IsEmpty());
}

TEST_F(CentralSourceTest, ChangesAndDeletionsOfPushedRowsAreNoted) {
  Watch(3);
  Exec("UPDATE Transactions SET Recipe = 'C' WHERE RowNumber = 1");
  Exec("UPDATE Transactions SET Recipe = 'D' WHERE RowNumber = 1");
  Exec("DELETE FROM Transactions WHERE RowNumber = 3");
  EXPECT_THAT(Changes(), ElementsAre("1 changed", "3 deleted"));
  EXPECT_EQ(CountCentralChanges(*database_), 2);
}

TEST_F(CentralSourceTest, ADeletionOutweighsAnEarlierChange) {
  Watch(3);
  Exec("UPDATE Transactions SET Recipe = 'C' WHERE RowNumber = 3");
  Exec("DELETE FROM Transactions WHERE RowNumber = 3");
  EXPECT_THAT(Changes(), ElementsAre("3 deleted"));
}

TEST_F(CentralSourceTest, ARowThatTakesTheNumberOfADeletedOneIsNoted) {
  Watch(3);
  Exec("DELETE FROM Transactions WHERE RowNumber = 3");
  Exec("INSERT INTO Transactions ([Transaction]) VALUES (9)");
  EXPECT_THAT(Changes(), ElementsAre("3 deleted"));
  Exec("DELETE FROM CentralChanges");
  Exec("INSERT OR REPLACE INTO Transactions (RowNumber, [Transaction]) VALUES (2, 9)");
  Exec("INSERT INTO Transactions (RowNumber, [Transaction]) VALUES (-5, 9)");
  EXPECT_THAT(Changes(), ElementsAre("-5 added", "2 added"));
}

TEST_F(CentralSourceTest, ARowThatIsRenumberedIsNotedAtBothNumbers) {
  Watch(3);
  Exec("UPDATE OR ABORT Transactions SET RowNumber = 8 WHERE RowNumber = 2");
  Exec("UPDATE OR FAIL Transactions SET RowNumber = 2 WHERE RowNumber = 8");
  Exec("UPDATE OR FAIL Transactions SET RowNumber = 0 WHERE RowNumber = 1");
  EXPECT_THAT(Changes(), ElementsAre("0 changed", "1 changed", "2 changed"));
}

TEST_F(CentralSourceTest, NotesAreForgottenByRow) {
  Watch(3);
  Exec("DELETE FROM Transactions");
  ForgetCentralChanges(*database_, {1, 3, 77});
  EXPECT_THAT(Changes(), ElementsAre("2 deleted"));
}

TEST_F(CentralSourceTest, SaveAsMakesAGenerationWithItsParent) {
  Watch(3);
  const CentralSource source = *ReadCentralSource(*database_);
  CopyDatabaseFile(path_, folder_ / "COPY.TDB", kBusyTimeout);
  SQLite::Database copy = OpenDatabase(folder_ / "COPY.TDB", Access::kRead);
  const CentralSource copied = *ReadCentralSource(copy);
  EXPECT_EQ(copied.source, source.source);
  EXPECT_EQ(copied.parent, source.generation);
  EXPECT_TRUE(IsUuid(copied.generation));
  EXPECT_NE(copied.generation, source.generation);
  EXPECT_EQ(copied.watched_to, 3);
  EXPECT_EQ(ReadCentralSource(*database_)->generation, source.generation);
  EXPECT_THAT(FileNames(folder_.Path()), ElementsAre("COPY.TDB", "Y.TDB"));
}

TEST_F(CentralSourceTest, CountsTheRowsThatWait) {
  EXPECT_EQ(CountRowsAbove(*database_, 1), 2);
  EXPECT_EQ(HighestRow(*database_), 3);
  Exec("DELETE FROM Transactions");
  EXPECT_EQ(CountRowsAbove(*database_, 0), 0);
  EXPECT_EQ(HighestRow(*database_), 0);
}

}  // namespace
}  // namespace vrx::testing
