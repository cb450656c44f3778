#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>

#include "insight/days.h"
#include "insight/record_reader.h"

namespace vrx {

// Finds single deliveries of pens by the index of pens, without reading the days between. The name
// of no pen is empty. All functions throw SQLite::Exception.
class PenSearch {
 public:
  // `ranges` are those of ReadTransactionRanges. Everything outlives it.
  PenSearch(SQLite::Database& database, const RecordReader& reader,
            const std::vector<std::int64_t>& ranges);

  // Reads the index of dates from the day on.
  [[nodiscard]] bool HasRowsAfter(DayNumber day);
  // The pens that any row has.
  [[nodiscard]] std::vector<std::string> Pens();
  // The day of some delivery before or after another day.
  [[nodiscard]] std::optional<DayNumber> DayBefore(const std::string& pen, DayNumber day);
  [[nodiscard]] std::optional<DayNumber> DayAfter(const std::string& pen, DayNumber day);

 private:
  std::optional<DayNumber> FindDay(const std::string& pen, const std::string& condition);

  SQLite::Database& database_;
  const RecordReader& reader_;
  std::string ranges_;  // a JSON array
  // The first row after the last day that was asked for: no delivery after it has a lower rowid.
  std::optional<DayNumber> after_;
  std::optional<std::int64_t> first_after_;
};

}  // namespace vrx
