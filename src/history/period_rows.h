#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <SQLiteCpp/Database.h>

#include "history/period.h"

namespace vrx {

// A set of rowids as runs of consecutive ones: small for rows that were stored together.
class RowRuns {
 public:
  // In any order, each once. Settle must follow before anything is read.
  void Add(std::int64_t rowid);
  void Settle();

  [[nodiscard]] std::int64_t Count() const { return count_; }
  [[nodiscard]] bool Contains(std::int64_t rowid) const;
  // By position from 0, ascending; fewer than `length` at the end.
  [[nodiscard]] std::vector<std::int64_t> Slice(std::int64_t first, std::size_t length) const;
  // Both ends of a set that is not empty.
  [[nodiscard]] std::int64_t Lowest() const { return runs_.front().first; }
  [[nodiscard]] std::int64_t Highest() const { return runs_.back().last; }

 private:
  struct Run {
    std::int64_t first;
    std::int64_t last;
    std::int64_t place;  // position of `first`
  };

  std::vector<Run> runs_;
  std::int64_t count_ = 0;
};

// The rows of `Transactions` whose own date is in a period. All queries of a view use this set, so
// that each still searches the index it has without a period.
struct PeriodRows {
  Period period = {};
  RowRuns rows = {};
  RowRuns undated = {};                   // rows without a readable date, in no period
  std::vector<std::int64_t> ranges = {};  // ranges of transactions with such rows, ascending
  // Lowest and highest transaction; nothing if a row has none, or a value that is no whole number.
  std::optional<std::pair<std::int64_t, std::int64_t>> transactions = {};
};

// Scans the index of dates. The period is not all days. Throws SQLite::Exception.
[[nodiscard]] PeriodRows ReadPeriodRows(SQLite::Database& database, const Period& period);

// Defines an SQL function of one rowid, whether a set contains it, during the object's lifetime.
// The database and the set outlive it.
class RowFilter {
 public:
  RowFilter(SQLite::Database& database, const RowRuns& rows);
  ~RowFilter();
  RowFilter(const RowFilter&) = delete;
  RowFilter& operator=(const RowFilter&) = delete;

  // SQL condition " AND ...".
  [[nodiscard]] std::string Condition() const { return " AND " + name_ + "(rowid)"; }

 private:
  SQLite::Database& database_;
  std::string name_;
};

}  // namespace vrx
