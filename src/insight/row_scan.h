#pragma once

#include <cstdint>
#include <exception>
#include <functional>
#include <string>
#include <string_view>

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>

struct sqlite3_context;
struct sqlite3_value;

namespace vrx {

// A query whose rows are passed to a function in the order in which SQLite reads them, or in that
// of an ORDER BY in a subquery. The rows go through an SQL aggregate: stepping through a million
// rows from outside takes twice the time. One scan runs at a time on a connection,
// and no other statement of it may be open when a scan is made.
class RowScan {
 public:
  using Take = std::function<void(sqlite3_value** row)>;

  // "SELECT `columns` `from`". Everything outlives it. Throws SQLite::Exception.
  RowScan(SQLite::Database& database, const std::string& columns, const std::string& from,
          Take take);
  ~RowScan();
  RowScan(const RowScan&) = delete;
  RowScan& operator=(const RowScan&) = delete;

  SQLite::Statement& Query() { return query_; }  // to bind parameters
  // May be called again. Throws what `take` throws, and SQLite::Exception.
  void Run();

 private:
  static void Step(sqlite3_context* context, int count, sqlite3_value** row);
  static SQLite::Database& Define(SQLite::Database& database, RowScan* scan);

  SQLite::Database& database_;
  Take take_;
  std::exception_ptr failure_;
  SQLite::Statement query_;
};

// The text of a value, valid until the function returns; empty for NULL.
[[nodiscard]] std::string_view TextIn(sqlite3_value* value);

}  // namespace vrx
