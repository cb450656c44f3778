#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>

#include "base/date.h"

namespace vrx {

// One row of `Transactions`. Texts UTF-8; nothing stands for NULL, and so does an empty user,
// ingredient or pen.
struct TransactionRecord {
  std::int32_t transaction = 0;
  std::optional<std::string> recipe = {};
  std::string type = {};  // "BATCH" or "FEED"
  std::optional<std::string> user_id = {};
  std::optional<std::string> ingredient = {};
  std::optional<std::string> pen = {};
  double target = 0;
  double actual_batch = 0;
  std::optional<TimeOfDay> time = {};
  std::optional<Date> date = {};
  double actual_feed = 0;
  std::optional<double> ing_percent = {};
  std::array<std::optional<double>, 32> ingredient_weights = {};  // Ing01Wt to Ing32Wt
};

// The highest transaction number of the table, never below 0: no row, a NULL and a negative number
// count as 0. Does not grow with the table. Throws DatabaseError, also for a number outside 32
// bits.
std::int32_t HighestTransaction(SQLite::Database& database);

// Appends rows with one prepared statement. The caller's SQLite transaction encloses it, and the
// database outlives it. Throws DatabaseError; the row is then not there, and further ones may
// follow.
class TransactionAppender {
 public:
  explicit TransactionAppender(SQLite::Database& database);
  ~TransactionAppender();
  void Append(const TransactionRecord& record);

 private:
  SQLite::Database& database_;
  std::unique_ptr<SQLite::Statement> statement_;
};

// The ranges of transactions that have rows, ascending, each found by one search of an index.
// Nothing where no index of the table is led by a range and then `columns`, such as "Recipe, Type":
// a database of another making is read without ranges. Throws SQLite::Exception.
std::optional<std::vector<std::int64_t>> ReadTransactionRanges(SQLite::Database& database,
                                                               std::string_view columns);

// " AND ..." for a query of the rows in certain ranges, so that an index led by ranges is searched
// for each of them. `parameter`, such as "?2", is bound to a JsonArray of the ranges.
std::string InTransactionRanges(std::string_view parameter);

// "[1,2,3]", for the engine's json_each.
std::string JsonArray(std::span<const std::int64_t> numbers);

}  // namespace vrx
