#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <SQLiteCpp/Database.h>

#include "base/date.h"
#include "insight/question.h"
#include "insight/weight_limit.h"

namespace vrx {

// Both answers take whole batches, also where a filter names an ingredient or a pen. Recipe and
// operator are those of the first row.

enum class BalanceState { kBalanced, kOut, kNeverFed, kNeverLoaded };

// "balanced", "out", "never fed", "never loaded"
[[nodiscard]] std::string_view TextOf(BalanceState state);

struct BalanceQuestion {
  Question about = {};
  // A batch is out of balance if what is left differs from 0 by more than both.
  double percent = 2;  // of what was loaded
  WeightLimit weight = {50, WeightUnit::kKilograms};
  bool all = false;  // balanced batches too
};

struct BalanceLine {
  std::optional<std::int64_t> transaction = {};
  std::optional<Date> date = {};
  std::optional<std::string> recipe = {};
  std::optional<std::string> operator_id = {};
  std::optional<double> loaded = {};        // sum of the loads
  std::optional<double> fed = {};           // sum of the deliveries
  double left = 0;                          // loaded - fed
  std::optional<double> left_percent = {};  // of what was loaded; nothing if that is 0 or less
  BalanceState state = BalanceState::kBalanced;
  std::optional<TimeOfDay> time = {};  // of the first row with one
  double limit = 0;                    // the larger of the two, as a weight
};

// All batches of a day: scale error, spilled and carried-over feed together. It is not the feed
// left in the wagon.
struct BalanceDay {
  Date date;
  double loaded = 0;
  double left = 0;
  std::optional<double> left_percent = {};
  std::optional<double> median = {};  // of `left_percent` over the 30 days that end with this one
};

struct Balance {
  InsightNotes notes = {};
  std::vector<BalanceLine> lines = {};  // by date and number
  std::vector<BalanceDay> days = {};    // those with a batch, ascending
  std::int64_t batches = 0;
  std::int64_t out = 0;
  std::int64_t never_fed = 0;
  std::int64_t never_loaded = 0;
};

// Throws QuestionError, QuestionCancelled and DatabaseError.
[[nodiscard]] Balance ReadBalance(SQLite::Database& database, const BalanceQuestion& question,
                                  const InsightProgress& progress = {});
// The same with each line passed to `take`; the answer has none.
Balance StreamBalance(SQLite::Database& database, const BalanceQuestion& question,
                      const TakeLine<BalanceLine>& take, const InsightProgress& progress = {});

enum class TimesKey { kRecipe, kOperator };

struct TimesQuestion {
  Question about = {};
  TimesKey by = TimesKey::kRecipe;
};

// Minutes; nothing without a value.
struct TimesFigures {
  std::optional<double> median = {};
  std::optional<double> q1 = {};
  std::optional<double> q3 = {};
};

struct TimesGroup {
  std::optional<std::string> key = {};
  std::int64_t batches = 0;     // timed ones
  std::int64_t left_out = 0;    // a row without date or time, or a step back of up to 12 hours
  TimesFigures preparing = {};  // first to last load
  TimesFigures waiting = {};    // last load to first delivery
  TimesFigures feeding = {};    // first to last delivery
};

struct BatchTimes {
  std::optional<std::int64_t> transaction = {};
  std::optional<Date> date = {};
  std::optional<std::string> recipe = {};
  std::optional<std::string> operator_id = {};
  bool left_out = false;
  std::optional<double> preparing = {};  // minutes; needs two loads
  std::optional<double> waiting = {};
  std::optional<double> feeding = {};  // needs two deliveries
};

// A file has one date for all loads of a batch: a row that lies more than 12 hours before the row
// before it, in stored order, is moved on by whole days until it does not. The resolution is a
// minute, and the work before the first record is not in it.
struct Times {
  InsightNotes notes = {};
  std::vector<TimesGroup> groups = {};   // ascending by key
  std::vector<BatchTimes> batches = {};  // by date and number
};

// Medians of 26 dairies, in minutes (Applied Animal Science 33, 2017).
struct TimesRange {
  double lowest;
  double highest;
};
inline constexpr TimesRange kPreparingOfDairies{9, 27};
inline constexpr TimesRange kWaitingOfDairies{2, 9};
inline constexpr TimesRange kFeedingOfDairies{1.5, 11};
inline constexpr std::string_view kTimesSource = "26 dairies, Applied Animal Science 33, 2017";

// Throws QuestionError, QuestionCancelled and DatabaseError.
[[nodiscard]] Times ReadTimes(SQLite::Database& database, const TimesQuestion& question,
                              const InsightProgress& progress = {});
// The same with each batch passed to `take`; the answer has none.
Times StreamTimes(SQLite::Database& database, const TimesQuestion& question,
                  const TakeLine<BatchTimes>& take, const InsightProgress& progress = {});

}  // namespace vrx
