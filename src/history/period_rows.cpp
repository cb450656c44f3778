#include "history/period_rows.h"

#include <algorithm>
#include <exception>
#include <iterator>
#include <limits>
#include <set>
#include <string_view>

#include <SQLiteCpp/Statement.h>
#include <sqlite3.h>

#include "database/schema.h"

namespace vrx {
namespace {

constexpr int kFunctionFlags = SQLITE_UTF8 | SQLITE_DIRECTONLY;

// Takes the rows of a scan: rowid, transaction and its range.
struct Gathered {
  RowRuns rows = {};
  std::set<std::int64_t> ranges = {};
  std::int64_t last_range = 0;
  std::int64_t lowest = std::numeric_limits<std::int64_t>::max();
  std::int64_t highest = std::numeric_limits<std::int64_t>::min();
  bool numbered = true;

  void Take(sqlite3_value** row) {
    rows.Add(sqlite3_value_int64(row[0]));
    if (sqlite3_value_type(row[1]) == SQLITE_INTEGER) {
      const std::int64_t transaction = sqlite3_value_int64(row[1]);
      lowest = std::min(lowest, transaction);
      highest = std::max(highest, transaction);
    } else {
      numbered = false;
    }
    const std::int64_t range = sqlite3_value_int64(row[2]);
    if (ranges.empty() || range != last_range) {
      ranges.insert(range);
      last_range = range;
    }
  }
};

// Called from C code, which no exception may cross.
void GatherRow(sqlite3_context* context, int /*count*/, sqlite3_value** values) {
  try {
    static_cast<Gathered*>(sqlite3_user_data(context))->Take(values);
  } catch (const std::exception&) {
    sqlite3_result_error_nomem(context);
  }
}

void FinishGathering(sqlite3_context* context) { sqlite3_result_null(context); }

// The aggregate gather_row during the object's lifetime. An aggregate, because stepping through a
// million rows from outside takes twice the time.
class GatherFunction {
 public:
  GatherFunction(SQLite::Database& database, Gathered& gathered) : database_(database) {
    database.check(Define(&gathered, GatherRow, FinishGathering));
  }
  ~GatherFunction() { Define(nullptr, nullptr, nullptr); }
  GatherFunction(const GatherFunction&) = delete;
  GatherFunction& operator=(const GatherFunction&) = delete;

 private:
  int Define(Gathered* gathered, void (*step)(sqlite3_context*, int, sqlite3_value**),
             void (*finish)(sqlite3_context*)) {
    return sqlite3_create_function_v2(database_.getHandle(), "gather_row", 3, kFunctionFlags,
                                      gathered, nullptr, step, finish, nullptr);
  }

  SQLite::Database& database_;
};

Gathered Gather(SQLite::Database& database, const std::string& condition) {
  Gathered gathered;
  const GatherFunction function(database, gathered);
  SQLite::Statement scan(database, "SELECT gather_row(rowid, [Transaction], " +
                                       std::string(kTransactionRange) + ") FROM " +
                                       std::string(kTransactionsTable) + " WHERE " + condition);
  scan.executeStep();
  gathered.rows.Settle();
  return gathered;
}

void ContainsRow(sqlite3_context* context, int /*count*/, sqlite3_value** values) {
  const auto* const rows = static_cast<const RowRuns*>(sqlite3_user_data(context));
  sqlite3_result_int(context, rows->Contains(sqlite3_value_int64(values[0])) ? 1 : 0);
}

}  // namespace

void RowRuns::Add(std::int64_t rowid) {
  ++count_;
  if (!runs_.empty() && runs_.back().last < rowid && runs_.back().last + 1 == rowid) {
    runs_.back().last = rowid;
  } else {
    runs_.push_back({.first = rowid, .last = rowid, .place = 0});
  }
}

void RowRuns::Settle() {
  std::sort(runs_.begin(), runs_.end(),
            [](const Run& one, const Run& other) { return one.first < other.first; });
  std::vector<Run> joined;
  std::int64_t place = 0;
  for (const Run& run : runs_) {
    if (!joined.empty() && joined.back().last + 1 == run.first) {
      joined.back().last = run.last;
    } else {
      joined.push_back({.first = run.first, .last = run.last, .place = place});
    }
    place += run.last - run.first + 1;
  }
  joined.shrink_to_fit();
  runs_ = std::move(joined);
}

bool RowRuns::Contains(std::int64_t rowid) const {
  const auto after =
      std::upper_bound(runs_.begin(), runs_.end(), rowid,
                       [](std::int64_t wanted, const Run& run) { return wanted < run.first; });
  return after != runs_.begin() && rowid <= std::prev(after)->last;
}

std::vector<std::int64_t> RowRuns::Slice(std::int64_t first, std::size_t length) const {
  std::vector<std::int64_t> rowids;
  if (first < 0 || first >= count_) {
    return rowids;
  }
  auto run = std::prev(
      std::upper_bound(runs_.begin(), runs_.end(), first,
                       [](std::int64_t place, const Run& other) { return place < other.place; }));
  std::int64_t rowid = run->first + (first - run->place);
  while (rowids.size() < length) {
    rowids.push_back(rowid);
    if (rowid < run->last) {
      ++rowid;
    } else if (++run == runs_.end()) {
      break;
    } else {
      rowid = run->first;
    }
  }
  return rowids;
}

PeriodRows ReadPeriodRows(SQLite::Database& database, const Period& period) {
  RegisterStoredDates(database);
  Gathered inside = Gather(database, "1" + PeriodCondition(period));
  PeriodRows answer{.period = period, .rows = std::move(inside.rows)};
  answer.ranges.assign(inside.ranges.begin(), inside.ranges.end());
  if (inside.numbered && answer.rows.Count() > 0) {
    answer.transactions = {inside.lowest, inside.highest};
  }
  answer.undated = Gather(database, "NOT is_stored_date([Date])").rows;
  return answer;
}

// The name must differ from those of all other filters of the connection.
RowFilter::RowFilter(SQLite::Database& database, const RowRuns& rows)
    : database_(database),
      name_("row_filter_" + std::to_string(reinterpret_cast<std::uintptr_t>(this))) {
  database.check(sqlite3_create_function_v2(
      database.getHandle(), name_.c_str(), 1, kFunctionFlags | SQLITE_DETERMINISTIC,
      const_cast<RowRuns*>(&rows),  // NOLINT(*-const-cast): the function only reads it
      ContainsRow, nullptr, nullptr, nullptr));
}

RowFilter::~RowFilter() {
  sqlite3_create_function_v2(database_.getHandle(), name_.c_str(), 1, kFunctionFlags, nullptr,
                             nullptr, nullptr, nullptr, nullptr);
}

}  // namespace vrx
