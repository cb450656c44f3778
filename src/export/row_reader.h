#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include <SQLiteCpp/Database.h>

#include "export/level_walk.h"

struct sqlite3_stmt;

namespace vrx {

// The rows of a query one after the other, a cell at a time and without a copy of it. Throws
// SQLite::Exception.
class RowReader {
 public:
  // `values` are bound to the query's parameters, as many as it has.
  RowReader(SQLite::Database& database, const std::string& query,
            std::span<const std::string> values);

  // False behind the last row.
  bool Next();

  // Valid until the next row.
  CellView Cell(std::size_t column) const;

 private:
  struct Finalize {
    void operator()(sqlite3_stmt* statement) const;
  };

  SQLite::Database& database_;
  std::unique_ptr<sqlite3_stmt, Finalize> statement_;
};

}  // namespace vrx
