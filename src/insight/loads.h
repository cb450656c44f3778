#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <SQLiteCpp/Database.h>

#include "base/date.h"
#include "insight/accuracy.h"
#include "insight/load_deviations.h"
#include "insight/question.h"

namespace vrx {

// A load, or a delivery, by itself.
struct LoadLine {
  std::int64_t record = 0;  // row
  std::optional<std::int64_t> transaction = {};
  std::optional<Date> date = {};
  std::optional<TimeOfDay> time = {};
  std::optional<std::string> recipe = {};
  std::optional<std::string> operator_id = {};
  std::optional<std::string> ingredient = {};  // of a load
  std::optional<std::string> pen = {};         // of a delivery
  double target = 0;
  double actual = 0;
  double difference = 0;               // actual - target
  std::optional<double> percent = {};  // of the target; nothing if that is 0 or less
};

inline constexpr std::size_t kMostNotLoaded = 100;
inline constexpr std::size_t kLargestLoads = 5;

// The single loads that the figures of accuracy are made of.
struct Loads {
  InsightNotes notes = {};
  std::int64_t n = 0;                       // with T > 0 and A > 0
  std::int64_t not_loaded_count = 0;        // with T > 0 and A <= 0
  std::vector<LoadLine> not_loaded = {};    // the first ones, in stored order
  std::vector<LoadLine> largest = {};       // by the weight of the deviation, the largest first
  std::vector<DeviationLoad> dots = {};     // those with a date, ascending
  std::vector<DeviationRange> ranges = {};  // of all; nothing with a limit of 0 percent
};

// `by` of the question is not used. Throws QuestionError, QuestionCancelled and DatabaseError.
[[nodiscard]] Loads ReadLoads(SQLite::Database& database, const AccuracyQuestion& question,
                              const InsightProgress& progress = {});

}  // namespace vrx
