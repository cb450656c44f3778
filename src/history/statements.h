#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>

#include <SQLiteCpp/Column.h>
#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>

#include "history/cell_value.h"

namespace vrx {

// The prepared statements of one view, by their text. One that is not in use is reset and
// holds no lock; what was bound to it stays until it is bound again.
class Statements {
 public:
  explicit Statements(SQLite::Database& database) : database_(database) {}

  class InUse {
   public:
    explicit InUse(SQLite::Statement& statement) : statement_(statement) {}
    ~InUse();
    InUse(const InUse&) = delete;
    InUse& operator=(const InUse&) = delete;

    SQLite::Statement& operator*() { return statement_; }
    SQLite::Statement* operator->() { return &statement_; }

   private:
    SQLite::Statement& statement_;
  };

  // Not again for the same text while it is in use. Throws SQLite::Exception.
  InUse Take(const std::string& text);

 private:
  SQLite::Database& database_;
  std::unordered_map<std::string, SQLite::Statement> prepared_;
};

CellValue ValueOf(const SQLite::Column& column);
void BindValue(SQLite::Statement& statement, int parameter, const CellValue& value);

}  // namespace vrx
