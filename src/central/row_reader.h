#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include <SQLiteCpp/Database.h>

#include "central/row_encoder.h"

struct sqlite3_stmt;

namespace vrx {

// Reads stored rows in the order of their numbers, encoded. The file is locked for reading while a
// block is read and free between two blocks, so that local work never waits for the network.
class RowReader {
 public:
  // `database` must outlive the reader. It reads the rows above `after`.
  RowReader(SQLite::Database& database, std::int64_t after);

  // Calls `take` for each of the next rows up to row number `last`, at most a block of them.
  // Returns false after the last one. `take` must not use the database. Throws DatabaseError and
  // RowRefused.
  bool ReadBlock(std::int64_t last, const std::function<void(const RowEncoder&)>& take);

 private:
  static constexpr int kBlock = 2000;

  SQLite::Database& database_;
  std::int64_t after_;
  RowEncoder encoder_;
  std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt*)> query_;
};

// Columns of the server's rows that RowWriter takes, in this order.
[[nodiscard]] const std::string& CopiedColumns();

// Stores rows as the central database sends them.
class RowWriter {
 public:
  // `database` must outlive the writer.
  explicit RowWriter(SQLite::Database& database);

  // The bytes of one row in the binary form of COPY; the header and the trailer are passed over.
  // Throws CentralError for a row that is cut off, and SQLite::Exception.
  void Write(std::string_view bytes);

  [[nodiscard]] std::int64_t Rows() const { return rows_; }  // stored

 private:
  SQLite::Database& database_;
  std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt*)> insert_;
  std::int64_t rows_ = 0;
};

// The digest of one row; empty if there is no such row. Throws DatabaseError and RowRefused.
[[nodiscard]] std::string DigestOfRow(SQLite::Database& database, std::int64_t row);

}  // namespace vrx
