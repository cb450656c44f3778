#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <SQLiteCpp/Database.h>

#include "base/date.h"
#include "database/imports.h"
#include "insight/question.h"

namespace vrx {

// The days of a store: of its stored rows, or the day of the store if none was stored.
struct ImportDays {
  std::optional<Date> first = {};
  std::optional<Date> last = {};
  std::optional<Date> stored = {};  // the day of the store

  // Whether a day of the store is in these days; true also if it has no day at all.
  [[nodiscard]] bool Touch(const std::optional<Date>& from, const std::optional<Date>& to) const;
};
[[nodiscard]] ImportDays DaysOf(const ImportRecord& import);

// Batch numbers that a file lacks between its lowest and its highest one.
struct MissingInFile {
  std::int64_t import = 0;
  std::string file = {};
  std::string numbers = {};  // "3-5,9"
};

// Numbers between the highest of one file and the lowest of the next. The module may have been
// cleared or used otherwise: they are not called missing.
struct ImportGap {
  std::int64_t after = 0;  // imports
  std::int64_t before = 0;
  std::int64_t first = 0;  // numbers
  std::int64_t last = 0;
};

// A date of a store that is after the day of the store, or before the first date of the store
// before.
struct OddDate {
  std::int64_t import = 0;
  Date date = {};
  bool in_future = false;
};

struct ImportInOtherUnit {
  std::int64_t import = 0;
  std::string file = {};
  std::string units = {};
  std::string settled = {};  // "", "keep" or "convert"
};

// What of a period is stored, what of it is known to be incomplete, and what is not known.
struct Statement {
  InsightNotes notes = {};
  std::optional<Date> from = {};
  std::optional<Date> to = {};
  std::int64_t imports = 0;
  std::int64_t batches = 0;
  std::int64_t loads = 0;
  std::int64_t deliveries = 0;
  std::optional<double> loaded = {};
  std::optional<double> fed = {};
  std::int64_t not_read = 0;  // feed records that are in no row
  std::int64_t left_out = 0;  // rows without data
  std::vector<MissingInFile> missing = {};
  std::vector<ImportGap> gaps = {};
  std::int64_t same = 0;  // batches that a store met again
  std::int64_t continued = 0;
  std::int64_t conflicts = 0;
  std::int64_t never_fed = 0;
  std::int64_t out = 0;                       // of balance, by more than 2 % and 50 kg
  std::int64_t days_without = 0;              // between the first and the last day of the database
  std::vector<Date> first_days_without = {};  // at most 100
  std::vector<OddDate> odd_dates = {};
  std::vector<ImportInOtherUnit> other_units = {};
  std::int64_t not_recorded = 0;  // rows that no import accounts for
};

inline constexpr std::size_t kMostDaysWithout = 100;

// Batches are those of the period, stores those with a row of it. The question has no filter.
// Throws QuestionError, QuestionCancelled and DatabaseError.
[[nodiscard]] Statement ReadStatement(SQLite::Database& database, const std::optional<Date>& from,
                                      const std::optional<Date>& to,
                                      const InsightProgress& progress = {});

// Parts of a statement, for answers about several files. Both go by the period of `answer`.
//
// Adds the stores of one file, by number, whose unit is `unit`, and calls `taken` with those that
// have a row of the period.
void AddImports(const std::vector<ImportRecord>& imports, const std::string& unit,
                const std::function<void(const ImportRecord&)>& taken, Statement& answer);
// `days` have a record, ascending.
void AddDaysWithout(const std::vector<Date>& days, Statement& answer);

}  // namespace vrx
