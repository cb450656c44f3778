#include "database/transactions.h"

#include <SQLiteCpp/Transaction.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/date.h"
#include "database/connection.h"
#include "support/database_files.h"

namespace vrx::testing {
namespace {

using std::chrono::day;
using std::chrono::month;
using std::chrono::year;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

class Transactions : public ::testing::Test {
 protected:
  void AddNumber(const std::string& number) {
    database_.exec("INSERT INTO Transactions ([Transaction]) VALUES (" + number + ")");
  }

  TempFolder folder_;
  std::filesystem::path path_ = CopyOfTemplate(folder_, "YARD.TDB", DatabaseKind::kTransaction);
  SQLite::Database database_ = OpenDatabase(path_, Access::kWrite);
};

TEST_F(Transactions, TheHighestOfAnEmptyTableIsZero) {
  EXPECT_EQ(HighestTransaction(database_), 0);
}

TEST_F(Transactions, ANullNumberIsZero) {
  AddNumber("NULL");
  EXPECT_EQ(HighestTransaction(database_), 0);
}

TEST_F(Transactions, ANegativeNumberIsZero) {
  AddNumber("-5");
  EXPECT_EQ(HighestTransaction(database_), 0);
  AddNumber("NULL");
  EXPECT_EQ(HighestTransaction(database_), 0);
}

TEST_F(Transactions, TheHighestIsFoundInAnyRow) {
  for (const char* number : {"9", "40", "100", "NULL", "7", "-3"}) {
    AddNumber(number);
  }
  EXPECT_EQ(HighestTransaction(database_), 100);
  AddNumber("2147483647");
  EXPECT_EQ(HighestTransaction(database_), 2147483647);
}

TEST_F(Transactions, ATextIsZeroAndHidesNoHigherNumber) {
  AddNumber("'LOST'");
  EXPECT_EQ(HighestTransaction(database_), 0);
  for (const char* number : {"17", "'12'", "''", "x'FF'"}) {
    AddNumber(number);
  }
  EXPECT_EQ(HighestTransaction(database_), 17);
  AddNumber("'40'");
  EXPECT_EQ(HighestTransaction(database_), 40);
}

TEST_F(Transactions, ANumberOutside32BitsIsAnError) {
  AddNumber("2147483648");
  EXPECT_THROW(HighestTransaction(database_), DatabaseError);
}

TEST_F(Transactions, AMissingTableHasItsErrorNumber) {
  database_.exec("DROP TABLE Transactions");
  try {
    HighestTransaction(database_);
    ADD_FAILURE() << "found";
  } catch (const DatabaseError& error) {
    EXPECT_EQ(error.Number(), kInvalidTableError);
  }
  EXPECT_THROW(TransactionAppender appender(database_), DatabaseError);
}

TEST_F(Transactions, AppendedRowsHoldEveryField) {
  TransactionRecord row{.transaction = 41,
                        .recipe = "O'NEIL",
                        .type = "BATCH",
                        .user_id = "7",
                        .ingredient = "bARLEY",
                        .pen = "KÄLbER",
                        .target = 1000.5,
                        .actual_batch = 998,
                        .time = TimeOfDay{8, 5, 0},
                        .date = Date{year{2009}, month{1}, day{15}},
                        .actual_feed = 0.1,
                        .ing_percent = 66.6667};
  for (std::size_t i = 0; i < row.ingredient_weights.size(); ++i) {
    row.ingredient_weights[i] = 10.5 * static_cast<double>(i + 1);
  }
  TransactionAppender(database_).Append(row);
  EXPECT_THAT(Ask(path_,
                  "SELECT [Transaction] || '|' || Recipe || '|' || Type || '|' || UserID || '|' || "
                  "Ingredient || '|' || Pen || '|' || Target || '|' || ActualBatch || '|' || Time "
                  "|| '|' || Date || '|' || ActualFeed || '|' || IngPercent FROM Transactions"),
              ElementsAre("41|O'NEIL|BATCH|7|bARLEY|KÄLbER|1000.5|998.0|08:05:00|2009-01-15|0.1|"
                          "66.6667"));
  EXPECT_THAT(Ask(path_, "SELECT Ing01Wt || '|' || Ing02Wt || '|' || Ing32Wt FROM Transactions"),
              ElementsAre("10.5|21.0|336.0"));
  for (int id = 33; id <= kWeightColumnCount; ++id) {
    EXPECT_THAT(Ask(path_, "SELECT " + IngredientWeightColumn(id) + " FROM Transactions"),
                ElementsAre("NULL"));
  }
}

TEST_F(Transactions, AbsentValuesAreNull) {
  TransactionAppender appender(database_);
  appender.Append({.transaction = 1, .type = "FEED"});
  appender.Append(
      {.transaction = 2, .recipe = "", .type = "FEED", .user_id = "", .ingredient = "", .pen = ""});
  for (const char* column :
       {"UserID", "Ingredient", "Pen", "Time", "Date", "IngPercent", "Ing01Wt", "Ing32Wt"}) {
    EXPECT_THAT(Ask(path_, std::string("SELECT ") + column + " FROM Transactions"),
                ElementsAre("NULL", "NULL"))
        << column;
  }
  EXPECT_THAT(Ask(path_, "SELECT Recipe FROM Transactions ORDER BY rowid"),
              ElementsAre("NULL", ""));
  EXPECT_THAT(Ask(path_, "SELECT Target + ActualBatch + ActualFeed FROM Transactions"),
              ElementsAre("0.0", "0.0"));
}

TEST_F(Transactions, AValueOfOneRowDoesNotReachTheNext) {
  TransactionAppender appender(database_);
  TransactionRecord full{.transaction = 1, .type = "BATCH", .user_id = "3", .ingredient = "CORN"};
  full.ingredient_weights.fill(5);
  appender.Append(full);
  appender.Append({.transaction = 1, .type = "FEED"});
  EXPECT_THAT(Ask(path_, "SELECT UserID FROM Transactions ORDER BY rowid"),
              ElementsAre("3", "NULL"));
  EXPECT_THAT(Ask(path_, "SELECT Ing32Wt FROM Transactions ORDER BY rowid"),
              ElementsAre("5.0", "NULL"));
}

TEST_F(Transactions, RowsKeepTheOrderOfStoring) {
  {
    SQLite::Transaction store(database_);
    TransactionAppender appender(database_);
    for (const std::int32_t number : {9, 3, 7, 3}) {
      appender.Append({.transaction = number, .type = "BATCH"});
    }
    store.commit();
  }
  EXPECT_THAT(Ask(path_, "SELECT [Transaction] FROM Transactions ORDER BY rowid"),
              ElementsAre("9", "3", "7", "3"));
}

TEST_F(Transactions, ARolledBackStoreLeavesNothing) {
  {
    const SQLite::Transaction store(database_);
    TransactionAppender appender(database_);
    appender.Append({.transaction = 1, .type = "BATCH"});
  }
  EXPECT_THAT(Ask(path_, "SELECT count(*) FROM Transactions"), ElementsAre("0"));
}

TEST_F(Transactions, AfterARefusedRowTheNextOneIsTaken) {
  database_.exec(
      "CREATE TRIGGER Refuse BEFORE INSERT ON Transactions WHEN NEW.Recipe = 'BAD' "
      "BEGIN SELECT RAISE(ABORT, 'the disk is full'); END");
  TransactionAppender appender(database_);
  try {
    appender.Append({.transaction = 1, .recipe = "BAD", .type = "BATCH"});
    ADD_FAILURE() << "taken";
  } catch (const DatabaseError& error) {
    EXPECT_THAT(error.what(), HasSubstr("YARD.TDB: the disk is full"));
  }
  appender.Append({.transaction = 2, .recipe = "GOOD", .type = "BATCH"});
  EXPECT_THAT(Ask(path_, "SELECT [Transaction] FROM Transactions"), ElementsAre("2"));
}

}  // namespace
}  // namespace vrx::testing
