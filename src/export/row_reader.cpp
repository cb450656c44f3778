#include "export/row_reader.h"

#include <SQLiteCpp/Exception.h>
#include <sqlite3.h>

namespace vrx {

RowReader::RowReader(SQLite::Database& database, const std::string& query,
                     std::span<const std::string> values)
    : database_(database) {
  sqlite3_stmt* statement = nullptr;
  database.check(sqlite3_prepare_v2(database.getHandle(), query.c_str(),
                                    static_cast<int>(query.size()), &statement, nullptr));
  statement_.reset(statement);
  const auto count = static_cast<std::size_t>(sqlite3_bind_parameter_count(statement));
  int parameter = 0;
  for (const std::string& value : values.first(count)) {
    database.check(sqlite3_bind_text64(statement, ++parameter, value.data(), value.size(),
                                       SQLITE_TRANSIENT, SQLITE_UTF8));
  }
}

bool RowReader::Next() {
  const int result = sqlite3_step(statement_.get());
  if (result != SQLITE_ROW && result != SQLITE_DONE) {
    throw SQLite::Exception(database_.getHandle(), result);
  }
  return result == SQLITE_ROW;
}

CellView RowReader::Cell(std::size_t column) const {
  sqlite3_stmt* const statement = statement_.get();
  const int index = static_cast<int>(column);
  switch (sqlite3_column_type(statement, index)) {
    case SQLITE_NULL:
      return {};
    case SQLITE_INTEGER:
      return std::int64_t{sqlite3_column_int64(statement, index)};
    case SQLITE_FLOAT:
      return sqlite3_column_double(statement, index);
    default: {
      // The bytes of a blob are taken as a text.
      const auto* const text = reinterpret_cast<const char*>(sqlite3_column_text(statement, index));
      const auto size = static_cast<std::size_t>(sqlite3_column_bytes(statement, index));
      return text == nullptr ? std::string_view() : std::string_view(text, size);
    }
  }
}

void RowReader::Finalize::operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }

}  // namespace vrx
