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

// One row of `Transactions`. Texts are UTF-8. An empty optional is NULL, and so is an empty user,
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

// Highest transaction number in the table, at least 0. One search of an index. Throws
// DatabaseError, also for a number outside 32 bits.
std::int32_t HighestTransaction(SQLite::Database& database);

// The day of the latest record; nothing if no record has a date. One search of an index. Throws
// DatabaseError.
[[nodiscard]] std::optional<Date> LatestDay(SQLite::Database& database);

// Inserts rows with one prepared statement, inside the caller's SQLite transaction. The database
// must outlive it. If Append throws DatabaseError, that row is not stored; more rows may follow.
class TransactionAppender {
 public:
  explicit TransactionAppender(SQLite::Database& database);
  ~TransactionAppender();
  void Append(const TransactionRecord& record);

 private:
  SQLite::Database& database_;
  std::unique_ptr<SQLite::Statement> statement_;
};

// Ranges of transactions that have rows, ascending, each found by one search of an index. Nothing
// if the table has no index on a range followed by `columns`, such as "Recipe, Type": databases
// from other sources are read without ranges. Throws SQLite::Exception.
[[nodiscard]] std::optional<std::vector<std::int64_t>> ReadTransactionRanges(
    SQLite::Database& database, std::string_view columns);

// SQL condition " AND ..." for the rows of some ranges, in a form that makes SQLite search an index
// once for each range. The caller binds `parameter`, such as "?2", to a JsonArray of the ranges.
[[nodiscard]] std::string InTransactionRanges(std::string_view parameter);

// "[1,2,3]", for SQLite's json_each.
[[nodiscard]] std::string JsonArray(std::span<const std::int64_t> numbers);

}  // namespace vrx
