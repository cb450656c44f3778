#include "central/row_reader.h"

#include <limits>

#include <SQLiteCpp/Exception.h>
#include <sqlite3.h>

#include "database/connection.h"

namespace vrx {
namespace {

std::string BlockQuery() {
  return "SELECT " + EncodedColumns() +
         " FROM Transactions WHERE RowNumber > ?1 AND RowNumber <= ?2 ORDER BY RowNumber LIMIT ?3";
}

// Ends the reading of a statement, and with it the lock, whatever happens. Holds the connection's
// mutex, which is faster than a hundred times for each row.
class Reading {
 public:
  explicit Reading(sqlite3_stmt* statement)
      : statement_(statement), mutex_(sqlite3_db_mutex(sqlite3_db_handle(statement))) {
    sqlite3_mutex_enter(mutex_);
  }
  ~Reading() {
    sqlite3_reset(statement_);
    sqlite3_mutex_leave(mutex_);
  }
  Reading(const Reading&) = delete;
  Reading& operator=(const Reading&) = delete;

 private:
  sqlite3_stmt* statement_;
  sqlite3_mutex* mutex_;
};

sqlite3_stmt* Prepare(SQLite::Database& database) {
  sqlite3_stmt* statement = nullptr;
  database.check(
      sqlite3_prepare_v2(database.getHandle(), BlockQuery().c_str(), -1, &statement, nullptr));
  return statement;
}

}  // namespace

RowReader::RowReader(SQLite::Database& database, std::int64_t after)
    : database_(database),
      after_(after),
      query_(WithDatabaseErrors(database, [&] { return Prepare(database); }), sqlite3_finalize) {}

bool RowReader::ReadBlock(std::int64_t last, const std::function<void(const RowEncoder&)>& take) {
  return WithDatabaseErrors(database_, [&] {
    sqlite3_stmt* const query = query_.get();
    const Reading reading(query);
    sqlite3_bind_int64(query, 1, after_);
    sqlite3_bind_int64(query, 2, last);
    sqlite3_bind_int64(query, 3, kBlock);
    int count = 0;
    int result = sqlite3_step(query);
    for (; result == SQLITE_ROW; result = sqlite3_step(query)) {
      encoder_.Encode(query);
      after_ = encoder_.Number();
      take(encoder_);
      ++count;
    }
    if (result != SQLITE_DONE) {
      throw SQLite::Exception(database_.getHandle(), result);
    }
    return count == kBlock;
  });
}

std::string DigestOfRow(SQLite::Database& database, std::int64_t row) {
  if (row == std::numeric_limits<std::int64_t>::min()) {
    return {};
  }
  std::string digest;
  RowReader reader(database, row - 1);
  reader.ReadBlock(row, [&](const RowEncoder& encoder) { digest = encoder.Digest(); });
  return digest;
}

}  // namespace vrx
