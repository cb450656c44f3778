#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "database/connection.h"
#include "database/schema.h"
#include "database/templates.h"
#include "database/transactions.h"
#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Optional;

class TransactionRanges : public ::testing::Test {
 protected:
  void Exec(const std::string& statements) { database_.exec(statements); }
  SQLite::Database& Database() { return database_; }

  std::optional<std::vector<std::int64_t>> Of(std::string_view columns) {
    return ReadTransactionRanges(database_, columns);
  }

  // Range of the row with that transaction.
  std::int64_t RangeOf(const std::string& transaction) {
    return database_
        .execAndGet("SELECT " + std::string(kTransactionRange) + " FROM (SELECT " + transaction +
                    " AS [Transaction])")
        .getInt64();
  }

 private:
  SQLite::Database NewDatabase() const {
    CreateTemplate(folder_ / "T.TDB", DatabaseKind::kTransaction);
    return OpenDatabase(folder_ / "T.TDB", Access::kWrite);
  }

  TempFolder folder_;
  SQLite::Database database_ = NewDatabase();
};

TEST_F(TransactionRanges, OfAnEmptyTableAreEmpty) { EXPECT_THAT(Of("Pen"), Optional(IsEmpty())); }

TEST_F(TransactionRanges, AreThoseWithRowsAscendingAndTheOneWithoutANumberFirst) {
  Exec(
      "INSERT INTO Transactions ([Transaction]) VALUES (9000000), (1), (2), (NULL), (-1), "
      "(9223372036854775807), (-9223372036854775808)");
  for (const std::string_view columns :
       {"Recipe, Type", "Recipe, Ingredient", "Ingredient", "Pen"}) {
    EXPECT_THAT(Of(columns), Optional(ElementsAre(RangeOf("NULL"), RangeOf("-9223372036854775808"),
                                                  RangeOf("-1"), RangeOf("1"), RangeOf("9000000"),
                                                  RangeOf("9223372036854775807"))));
  }
}

TEST_F(TransactionRanges, IncludeRowsWithoutAValidNumber) {
  Exec("INSERT INTO Transactions ([Transaction]) VALUES ('x'), (1e300), (NULL), (-7), (X'00')");
  SQLite::Database& database = Database();
  SQLite::Statement query(
      database, "SELECT count(*) FROM Transactions WHERE true" + InTransactionRanges("?1"));
  query.bind(1, JsonArray(*Of("Pen")));
  ASSERT_TRUE(query.executeStep());
  EXPECT_EQ(query.getColumn(0).getInt(), 5);
}

TEST_F(TransactionRanges, AreNothingWithoutAnIndexThatStartsWithThem) {
  EXPECT_EQ(Of("Date"), std::nullopt);
  EXPECT_EQ(Of("[Transaction]"), std::nullopt);
  Exec("DROP INDEX TransactionsByPen");
  EXPECT_EQ(Of("Pen"), std::nullopt);
  Exec("CREATE INDEX TransactionsByPen ON Transactions (Pen, Type)");
  EXPECT_EQ(Of("Pen"), std::nullopt);
  EXPECT_NE(Of("Ingredient"), std::nullopt);
}

TEST(JsonArray, ListsNumbers) {
  EXPECT_EQ(JsonArray({}), "[]");
  EXPECT_EQ(JsonArray(std::vector<std::int64_t>{-3, 0, INT64_MAX}), "[-3,0,9223372036854775807]");
}

}  // namespace
}  // namespace vrx::testing
