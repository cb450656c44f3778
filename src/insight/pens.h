#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <SQLiteCpp/Database.h>

#include "base/date.h"
#include "insight/question.h"

namespace vrx {

// Called and delivered.

// The heads of a pen from a day on.
struct HeadCount {
  std::string pen = {};
  Date from = {};
  double heads = 0;
};

// Lines are of pens and days; a day without a delivery between two days with one is a line, too.
struct DeliveredLine {
  std::optional<std::string> pen = {};
  Date date = {};
  std::optional<double> called = {};  // sum of the targets; nothing on a missed day
  std::optional<double> delivered = {};
  std::optional<double> difference = {};  // delivered - called
  std::int64_t feedings = 0;
  // Delivered on the seven days that end with this one, by 7; nothing before the seventh day of the
  // pen.
  std::optional<double> mean7 = {};
  std::optional<std::string> recipe = {};  // of the day's last delivery
  bool recipe_changed = false;             // between a delivery of the day and the one before it
  std::optional<TimeOfDay> first = {};     // time of the first delivery
  // Minutes after the median of the pen's first times on the 14 days before.
  std::optional<double> first_shift = {};
  bool missed = false;
  std::optional<double> per_head = {};  // delivered, by the heads of the day
};

struct Delivered {
  InsightNotes notes = {};
  std::vector<DeliveredLine> lines = {};       // by pen and date
  std::vector<std::string> unknown_pens = {};  // of the head counts, that no record has
};

// Goes by the date of each delivery, which the period chooses; means, medians and the delivery
// before reach back before it. Deliveries without a date are in no line. Names choose as in every
// question. Throws QuestionError, QuestionCancelled and DatabaseError.
[[nodiscard]] Delivered ReadDelivered(SQLite::Database& database, const Question& question,
                                      const std::vector<HeadCount>& heads = {},
                                      const InsightProgress& progress = {});
// The same with each line passed to `take`; the answer has none.
Delivered StreamDelivered(SQLite::Database& database, const Question& question,
                          const std::vector<HeadCount>& heads, const TakeLine<DeliveredLine>& take,
                          const InsightProgress& progress = {});

// The lines of a pen together. Sums are exact; nothing is a sum of missed days only.
struct PenTotal {
  std::optional<std::string> pen = {};
  std::optional<double> called = {};
  std::optional<double> delivered = {};
  std::optional<double> difference = {};
  std::optional<double> difference_percent = {};  // of what was called, if that is above 0
  std::int64_t feedings = 0;
  std::int64_t days = 0;  // with a delivery
  std::int64_t missed_days = 0;
  std::int64_t recipe_changes = 0;  // days with one
};

struct PenTotals {
  std::vector<PenTotal> pens = {};  // as the lines are ordered
  PenTotal all = {};                // without a pen
};

[[nodiscard]] PenTotals TotalsOf(const Delivered& delivered);

// Trace, in support of a recall of batches (21 CFR 225.202). By names as stored: names that were
// changed later count as others, and drug lots are kept elsewhere. The weights can differ by tenths
// from the stored columns of ingredients, which were rounded on the way.

struct TraceLine {
  std::optional<std::int64_t> transaction = {};
  std::optional<Date> date = {};                // of the delivery; of the batch for what stayed
  std::optional<std::string> recipe = {};       // of the batch
  std::optional<std::string> operator_id = {};  // of the delivery; of the batch for what stayed
  std::optional<std::string> pen = {};
  std::optional<std::string> ingredient = {};
  bool stayed = false;  // what was loaded and not delivered
  // Of the ingredient. Nothing if the batch weighs 0 or less, or has no load.
  std::optional<double> weight = {};
  std::optional<double> share = {};  // of the ingredient in the batch, in percent
};

struct Trace {
  InsightNotes notes = {};
  std::vector<TraceLine> lines = {};
};

// Forward: where an ingredient went. A batch with a load of it held it, whatever the load weighed.
// Batches by date and number, of each a line for every delivery in stored order and one for what
// stayed. The question names the ingredient. Throws QuestionError, QuestionCancelled and
// DatabaseError.
[[nodiscard]] Trace TraceIngredient(SQLite::Database& database, const Question& question,
                                    const InsightProgress& progress = {});
// The same with each line passed to `take`.
InsightNotes StreamTraceOfIngredient(SQLite::Database& database, const Question& question,
                                     const TakeLine<TraceLine>& take,
                                     const InsightProgress& progress = {});

// Backward: what a pen was fed. Of each batch a line for every delivery to the pen and every
// ingredient, by name; a batch without loads has one without an ingredient. The question names the
// pen.
[[nodiscard]] Trace TracePen(SQLite::Database& database, const Question& question,
                             const InsightProgress& progress = {});
// The same with each line passed to `take`.
InsightNotes StreamTraceOfPen(SQLite::Database& database, const Question& question,
                              const TakeLine<TraceLine>& take,
                              const InsightProgress& progress = {});

// Holding.

struct HoldingQuestion {
  std::vector<std::string> ingredients = {};
  int days = 0;                         // from 1, of 24 hours
  Date on = {};                         // as of the end of this day; later records do not count
  std::optional<std::string> pen = {};  // only this one
  double division = 0;                  // of the scale, in the database's unit
};

enum class HoldingState { kHeld, kPassed, kUnknown, kNotInTheRecords };

// "held", "passed", "unknown", "not in the records". The word "cleared" is not used: these are
// pens, not animals, and names, not drug lots, and nothing proves that the wagon was cleaned.
[[nodiscard]] std::string_view TextOf(HoldingState state);

// A moment of a delivery, to the minute.
struct Moment {
  Date date = {};
  TimeOfDay time = {};
};
[[nodiscard]] std::string TextOf(const Moment& moment);  // "2026-01-05T06:30"

struct HoldingLine {
  std::optional<std::string> pen = {};
  std::optional<Moment> last = {};   // delivery with one of the ingredients
  std::optional<Moment> since = {};  // first delivery without any of them after it
  std::optional<Moment> until = {};  // since and the days
  HoldingState state = HoldingState::kNotInTheRecords;
  std::string why = {};
};

struct Holding {
  InsightNotes notes = {};
  std::vector<HoldingLine> lines = {};  // by pen, of all pens with a delivery
};

// Unknown comes in place of every other state: if between the day of `last` (the first record for a
// pen without one) and `on` a store did not read or store everything, or rows stand that no store
// accounts for, or if, since `since`, the pen was fed from the batch with the next higher number
// after one that held an ingredient and of which more than the division was left. Throws
// QuestionError, QuestionCancelled and DatabaseError.
[[nodiscard]] Holding ReadHolding(SQLite::Database& database, const HoldingQuestion& question,
                                  const InsightProgress& progress = {});

}  // namespace vrx
