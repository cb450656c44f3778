#pragma once

// Reads the records of years in parts, so that memory does not grow with them.

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#include <SQLiteCpp/Database.h>

#include "insight/days.h"
#include "insight/exact.h"
#include "insight/names.h"
#include "insight/question.h"
#include "insight/record_reader.h"

namespace vrx {

struct DayRanges {
  std::vector<DayRange> ranges = {};  // ascending; a day is in one of them
  bool has_undated = false;           // rows without a date, without a period
};

// Whether one part of the records may end with a day and the next one begin with another.
using MayPart = std::function<bool(const Date& end, const Date& begin)>;

// The days of the period that have rows, in ranges of about `Question::rows_at_once` rows. Throws
// SQLite::Exception.
[[nodiscard]] DayRanges ReadDayRanges(SQLite::Database& database, const Question& question,
                                      const MayPart& may_part = {});

// Reads the batches of a question in parts, so that memory does not grow with the records: first
// those without a date, then by date. A batch is in one part, with all its rows. Few rows are one
// part.
class BatchParts {
 public:
  // The references outlive it.
  BatchParts(SQLite::Database& database, const Question& question, const InsightProgress& progress,
             MayPart may_part = {})
      : database_(database),
        question_(question),
        progress_(progress),
        may_part_(std::move(may_part)) {}

  // Passes a reader for each part to `work`. Returns the notes of all parts. Throws what `work`
  // throws, QuestionError, QuestionCancelled and DatabaseError.
  InsightNotes Read(const std::function<void(RecordReader&)>& work);

 private:
  SQLite::Database& database_;
  const Question& question_;
  const InsightProgress& progress_;
  MayPart may_part_;
};

// What pens were delivered.

class PenSearch;

struct DayOfPen {
  Exact called = {};
  Exact delivered = {};
  DayNumber day = kNoDay;
  std::int32_t first = kNoTime;
  std::int32_t feedings = 0;
  NameId recipe = kNoName;      // of the last delivery
  bool recipe_changed = false;  // between a delivery and the one before it
};

// The days of a pen with a delivery, ascending. Years of hundreds of pens are a million of them.
using DaysOfPen = std::deque<DayOfPen>;
using DaysOfPens = std::map<NameId, DaysOfPen>;

// The first times of this many days before a day are compared with its own.
inline constexpr DayNumber kShiftDays = 14;
// A mean is over this many days.
inline constexpr DayNumber kMeanDays = 7;

// Reads the deliveries that the lines of a period need, a few days at a time: those of the period
// and of the days that means and medians reach back to. Of a pen's deliveries before and after them
// one is enough: each day between two deliveries is a line. Without a period, and with a filter by
// recipe, ingredient or operator, it reads all.
class PenDaysReader {
 public:
  // `reader` is of the question without its period and pen. Everything outlives it.
  PenDaysReader(SQLite::Database& database, RecordReader& reader, const Question& question);

  // Of a day outside of what was read only the number is known. Throws QuestionCancelled and
  // DatabaseError.
  DaysOfPens Read();

 private:
  struct Delivery;
  struct Pen {
    DaysOfPen days = {};
    NameId first_recipe = kNoName;  // of the first delivery that was read
    std::optional<NameId> last_recipe = {};
  };
  void ReadDays(const std::optional<Date>& from, const std::optional<Date>& to);
  static void Fold(Pen& pen, std::vector<Delivery>& deliveries);
  void AddLaterDays(PenSearch& search);
  void AddDaysBefore(PenSearch& search);

  SQLite::Database& database_;
  RecordReader& reader_;
  const Question& question_;
  NameId wanted_;
  std::map<NameId, Pen> pens_;
};

}  // namespace vrx
