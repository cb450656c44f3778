#include <string>

#include <SQLiteCpp/Column.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "database/central_source.h"
#include "database/connection.h"
#include "database/schema.h"
#include "support/database_files.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

// The table of a database that an earlier version made, with gaps in the row IDs.
constexpr const char* kEarlierRows =
    "INSERT INTO Transactions (rowid, [Transaction], Type, Recipe, Ing32Wt) VALUES (1, 7, 'BATCH', "
    "'A', 1.5), (2, 7, 'FEED', 'A', NULL), (40, 8, 'BATCH', 'B', 2.25)";

class RowNumbers : public ::testing::Test {
 protected:
  RowNumbers() {
    fs::permissions(path_, fs::perms::owner_write, fs::perm_options::add);
    SQLite::Database database = Open();
    // The columns of the table without the last one, then the indexes anew.
    std::string text =
        database.execAndGet("SELECT sql FROM sqlite_schema WHERE name = 'Transactions'")
            .getString();
    const std::string column = ", [RowNumber] INTEGER PRIMARY KEY";
    text.erase(text.find(column), column.size());
    database.exec("DROP TABLE Transactions");
    database.exec(text);
    for (const std::string& index : SchemaIndexes(DatabaseKind::kTransaction)) {
      database.exec(index);
    }
    database.exec(kEarlierRows);
  }

  [[nodiscard]] SQLite::Database Open() const { return OpenDatabase(path_, Access::kWrite); }
  [[nodiscard]] std::vector<std::string> Query(const std::string& query) const {
    return Ask(path_, query);
  }

  TempFolder folder_;
  fs::path path_ = CopyOfTemplate(folder_, "Y.TDB", DatabaseKind::kTransaction);
};

TEST_F(RowNumbers, ANewDatabaseHasThem) {
  SQLite::Database blank(TemplatePath(DatabaseKind::kTransaction), SQLite::OPEN_READONLY);
  EXPECT_TRUE(HasRowNumbers(blank));
}

TEST_F(RowNumbers, ADatabaseMadeBeforeGetsItsRowIdsAsNumbers) {
  SQLite::Database database = Open();
  EXPECT_FALSE(HasRowNumbers(database));
  AddRowNumbers(database);
  EXPECT_TRUE(HasRowNumbers(database));
  EXPECT_THAT(
      Query("SELECT RowNumber || ' ' || rowid || ' ' || [Transaction] || ' ' || Type || ' ' "
            "|| Recipe || ' ' || ifnull(Ing32Wt, '-') FROM Transactions"),
      ElementsAre("1 1 7 BATCH A 1.5", "2 2 7 FEED A -", "40 40 8 BATCH B 2.25"));
  EXPECT_THAT(Query("PRAGMA integrity_check"), ElementsAre("ok"));
}

TEST_F(RowNumbers, RowsStoredLaterGoOnAfterTheHighest) {
  SQLite::Database database = Open();
  AddRowNumbers(database);
  database.exec("INSERT INTO Transactions ([Transaction]) VALUES (9)");
  EXPECT_THAT(Query("SELECT max(RowNumber) FROM Transactions"), ElementsAre("41"));
  EXPECT_THAT(Query("SELECT RowNumber FROM Transactions INDEXED BY TransactionsByNumber WHERE "
                    "[Transaction] = 8"),
              ElementsAre("40"));
}

TEST_F(RowNumbers, AVacuumKeepsThem) {
  {
    SQLite::Database database = Open();
    AddRowNumbers(database);
    database.exec("VACUUM");
  }
  EXPECT_THAT(Query("SELECT RowNumber FROM Transactions ORDER BY 1"), ElementsAre("1", "2", "40"));
  EXPECT_THAT(Query("PRAGMA integrity_check"), ElementsAre("ok"));
}

TEST_F(RowNumbers, AConnectionThatWasOpenBeforeGoesOn) {
  SQLite::Database other = Open();
  SQLite::Statement insert(other, "INSERT INTO Transactions ([Transaction]) VALUES (?)");
  insert.bind(1, 10);
  insert.exec();
  SQLite::Database database = Open();
  AddRowNumbers(database);
  insert.reset();
  insert.bind(1, 11);
  insert.exec();
  EXPECT_EQ(
      other.execAndGet("SELECT RowNumber FROM Transactions WHERE [Transaction] = 11").getInt(), 42);
}

TEST_F(RowNumbers, TheSecondTimeChangesNothing) {
  SQLite::Database database = Open();
  AddRowNumbers(database);
  const auto before = Query("SELECT sql FROM sqlite_schema");
  AddRowNumbers(database);
  EXPECT_EQ(Query("SELECT sql FROM sqlite_schema"), before);
}

TEST_F(RowNumbers, ATableWithAnotherKeyIsRefusedAndLeft) {
  SQLite::Database database = Open();
  database.exec("DROP TABLE Transactions; CREATE TABLE Transactions (ID INTEGER PRIMARY KEY)");
  const auto before = Query("SELECT sql FROM sqlite_schema");
  try {
    AddRowNumbers(database);
    FAIL() << "no error";
  } catch (const DatabaseError& error) {
    EXPECT_THAT(error.what(), HasSubstr("cannot get row numbers"));
  }
  EXPECT_EQ(Query("SELECT sql FROM sqlite_schema"), before);
}

TEST_F(RowNumbers, ADefinitionThatDoesNotEndWithItsColumnsIsRefusedAndLeft) {
  SQLite::Database database = Open();
  database.exec(
      "DROP TABLE Transactions; CREATE TABLE Transactions ([Transaction] INTEGER, "
      "UNIQUE ([Transaction]))");
  const auto before = Query("SELECT sql FROM sqlite_schema");
  EXPECT_THROW(AddRowNumbers(database), DatabaseError);
  EXPECT_EQ(Query("SELECT sql FROM sqlite_schema"), before);
  EXPECT_NO_THROW(database.exec("INSERT INTO Transactions VALUES (1)"));
}

}  // namespace
}  // namespace vrx::testing
