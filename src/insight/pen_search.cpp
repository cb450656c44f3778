#include "insight/pen_search.h"

#include <SQLiteCpp/Column.h>

#include "database/schema.h"
#include "database/transactions.h"

namespace vrx {
namespace {

std::string DayText(DayNumber day) { return "'" + StoredText(*ToDate(day)) + "'"; }

}  // namespace

PenSearch::PenSearch(SQLite::Database& database, const RecordReader& reader,
                     const std::vector<std::int64_t>& ranges)
    : database_(database), reader_(reader), ranges_(JsonArray(ranges)) {}

std::vector<std::string> PenSearch::Pens() {
  const std::string next = "SELECT min(Pen) FROM Transactions WHERE " +
                           std::string(kTransactionRange) + " = Listed.Number AND Pen > ";
  SQLite::Statement query(
      database_,
      "WITH RECURSIVE Listed (Number, Name) AS (SELECT value, '' FROM json_each(?1) "
      "UNION ALL SELECT Number, (" +
          next +
          "Listed.Name) FROM Listed WHERE Name IS NOT "
          "NULL) SELECT DISTINCT Name FROM Listed WHERE Name IS NOT NULL");
  query.bind(1, ranges_);
  std::vector<std::string> pens;  // the first one is no pen
  while (query.executeStep()) {
    pens.push_back(query.getColumn(0).getString());
  }
  return pens;
}

std::optional<DayNumber> PenSearch::DayBefore(const std::string& pen, DayNumber day) {
  return FindDay(pen, " AND +[Date] > '' AND +[Date] < " + DayText(day));
}

std::optional<DayNumber> PenSearch::DayAfter(const std::string& pen, DayNumber day) {
  if (!HasRowsAfter(day)) {
    return std::nullopt;
  }
  return FindDay(
      pen, " AND rowid >= " + std::to_string(*first_after_) + " AND +[Date] > " + DayText(day));
}

bool PenSearch::HasRowsAfter(DayNumber day) {
  if (after_ != day) {
    SQLite::Statement first(database_,
                            "SELECT min(rowid) FROM Transactions WHERE [Date] > " + DayText(day));
    first.executeStep();
    const SQLite::Column rowid = first.getColumn(0);
    first_after_ = rowid.isNull() ? std::nullopt : std::optional(rowid.getInt64());
    after_ = day;
  }
  return first_after_.has_value();
}

std::optional<DayNumber> PenSearch::FindDay(const std::string& pen, const std::string& condition) {
  const auto find = [&](const char* is_pen) -> std::optional<DayNumber> {
    SQLite::Statement query(database_,
                            std::string("SELECT rowid, [Date] FROM Transactions WHERE ") + is_pen +
                                " AND Type = 'FEED'" + condition + InTransactionRanges("?2"));
    query.bind(1, pen);
    query.bind(2, ranges_);
    while (query.executeStep()) {
      const auto date = ParseStoredDate(query.getColumn(1).getString());
      if (date && !reader_.IsLeftOut(query.getColumn(0).getInt64())) {
        return ToDayNumber(date);
      }
    }
    return std::nullopt;
  };
  const std::optional<DayNumber> found = find("Pen = ?1");
  return found || !pen.empty() ? found : find("Pen IS NULL AND ?1 = ''");
}

}  // namespace vrx
