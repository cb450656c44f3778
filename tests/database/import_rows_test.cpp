#include "database/import_rows.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "database/connection.h"
#include "database/imports.h"
#include "support/database_files.h"

namespace vrx::testing {
namespace {

// Rows 1 and 2 are of no import, 3 to 5 of the first one, 6 to 9 of the second one, which has gone
// on with batch 7.
class ImportRowsOfBatches : public ::testing::Test {
 protected:
  ImportRowsOfBatches() {
    MakeImportTables(database_);
    database_.exec(
        "INSERT INTO Transactions ([Transaction]) VALUES (1), (1), (7), (7), (7), (7), (7), (8), "
        "(8)");
    database_.exec("INSERT INTO Imports (Stored) VALUES (3), (4), (0)");
    database_.exec(
        "INSERT INTO ImportedBatches (Import, [Transaction], Rows) VALUES (1, 7, 3), (2, 7, 2), "
        "(2, 8, 2), (2, 1, 0)");
  }

  // The import of each row, 0 for none.
  std::string Imports(const std::vector<std::int64_t>& numbers) {
    const ImportRows found(database_, numbers);
    std::string text;
    for (std::int64_t row = 1; row <= 9; ++row) {
      text += std::to_string(found.ImportOf(row).value_or(0));
    }
    return text;
  }

  TempFolder folder_;
  SQLite::Database database_{CopyOfTemplate(folder_, "Y.TDB", DatabaseKind::kTransaction),
                             SQLite::OPEN_READWRITE};
};

TEST_F(ImportRowsOfBatches, TheLastRowsOfATransactionAreThoseOfItsLastImport) {
  EXPECT_EQ(Imports({1, 2}), "001112222");
  EXPECT_EQ(Imports({2}), "000002222");
  EXPECT_EQ(Imports({1}), "001110000");
  EXPECT_EQ(Imports({3}), "000000000");
  EXPECT_EQ(Imports({}), "000000000");
}

TEST_F(ImportRowsOfBatches, RowsCanBeAskedForInAnyOrder) {
  const ImportRows found(database_, {1, 2});
  EXPECT_EQ(found.ImportOf(9), 2);
  EXPECT_EQ(found.ImportOf(3), 1);
  EXPECT_EQ(found.ImportOf(6), 2);
  EXPECT_EQ(found.ImportOf(1), std::nullopt);
  EXPECT_EQ(found.ImportOf(10), std::nullopt);
}

TEST_F(ImportRowsOfBatches, CountsTheRowsThatAreThere) {
  database_.exec("DELETE FROM Transactions WHERE rowid = 3");
  const ImportRows found(database_, {1, 2, 3});
  EXPECT_EQ(found.CountOf(1), 2);
  EXPECT_EQ(found.CountOf(2), 4);
  EXPECT_EQ(found.CountOf(3), 0);
}

TEST_F(ImportRowsOfBatches, NumbersAreThoseInTheRange) {
  EXPECT_EQ(ImportNumbers(database_, 0, 2), (std::vector<std::int64_t>{1, 2}));
  EXPECT_EQ(ImportNumbers(database_, 1, 9), (std::vector<std::int64_t>{2, 3}));
}

}  // namespace
}  // namespace vrx::testing
