#include "history/statements.h"

#include <type_traits>
#include <variant>

#include <sqlite3.h>

namespace vrx {

Statements::InUse::~InUse() {
  // Its result is that of the step before, which was thrown then.
  statement_.tryReset();
}

Statements::InUse Statements::Take(const std::string& text) {
  return InUse(prepared_.try_emplace(text, database_, text).first->second);
}

CellValue ValueOf(const SQLite::Column& column) {
  switch (column.getType()) {
    case SQLITE_NULL:
      return std::monostate();
    case SQLITE_INTEGER:
      return column.getInt64();
    case SQLITE_FLOAT:
      return column.getDouble();
    default:
      return column.getString();
  }
}

void BindValue(SQLite::Statement& statement, int parameter, const CellValue& value) {
  std::visit(
      [&](const auto& stored) {
        if constexpr (std::is_same_v<std::decay_t<decltype(stored)>, std::monostate>) {
          statement.bind(parameter);
        } else {
          statement.bind(parameter, stored);
        }
      },
      value);
}

}  // namespace vrx
