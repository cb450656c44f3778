#include "database/transaction_ranges.h"

#include <SQLiteCpp/Statement.h>

#include "database/schema.h"

namespace vrx {

namespace {

bool HasIndexByRangeAnd(SQLite::Database& database, std::string_view columns) {
  SQLite::Statement query(database,
                          "SELECT EXISTS (SELECT 1 FROM sqlite_schema WHERE type = 'index' AND "
                          "tbl_name = ?1 COLLATE NOCASE AND instr(sql, ?2))");
  query.bind(1, std::string(kTransactionsTable));
  query.bind(2, "(" + std::string(kTransactionRange) + ", " + std::string(columns));
  query.executeStep();
  return query.getColumn(0).getInt() != 0;
}

}  // namespace

std::optional<std::vector<std::int64_t>> ReadTransactionRanges(SQLite::Database& database,
                                                               std::string_view columns) {
  if (!HasIndexByRangeAnd(database, columns)) {
    return std::nullopt;
  }
  const std::string range(kTransactionRange);
  const std::string lowest = "SELECT min(" + range + ") FROM " + std::string(kTransactionsTable);
  SQLite::Statement query(database, "WITH RECURSIVE Listed (Number) AS (" + lowest +
                                        " UNION ALL SELECT (" + lowest + " WHERE " + range +
                                        " > Number) FROM Listed WHERE Number IS NOT NULL) "
                                        "SELECT Number FROM Listed WHERE Number IS NOT NULL");
  std::vector<std::int64_t> ranges;
  while (query.executeStep()) {
    ranges.push_back(query.getColumn(0).getInt64());
  }
  return ranges;
}

std::string InTransactionRanges(std::string_view parameter) {
  return " AND " + std::string(kTransactionRange) + " IN (SELECT value FROM json_each(" +
         std::string(parameter) + "))";
}

std::string JsonArray(std::span<const std::int64_t> numbers) {
  std::string text = "[";
  for (const std::int64_t number : numbers) {
    text += (text.size() == 1 ? "" : ",") + std::to_string(number);
  }
  return text + "]";
}

}  // namespace vrx
