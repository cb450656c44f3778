#pragma once

#include <functional>
#include <vector>

#include <SQLiteCpp/Database.h>

#include "insight/question.h"
#include "insight/record_reader.h"

namespace vrx {

struct DayRanges {
  std::vector<DayRange> ranges = {};  // ascending; a day is in one of them
  bool has_undated = false;           // rows without a date, without a period
};

// The days of the period that have rows, in ranges of about `Question::rows_at_once` rows. Throws
// SQLite::Exception.
[[nodiscard]] DayRanges ReadDayRanges(SQLite::Database& database, const Question& question);

// Reads the batches of a question in parts, so that memory does not grow with the records: first
// those without a date, then by date. A batch is in one part, with all its rows. Few rows are one
// part.
class BatchParts {
 public:
  // Everything outlives it.
  BatchParts(SQLite::Database& database, const Question& question, const InsightProgress& progress)
      : database_(database), question_(question), progress_(progress) {}

  // Passes a reader for each part to `work`. Returns the notes of all parts. Throws what `work`
  // throws, QuestionError, QuestionCancelled and DatabaseError.
  InsightNotes Read(const std::function<void(RecordReader&)>& work);

 private:
  SQLite::Database& database_;
  const Question& question_;
  const InsightProgress& progress_;
};

}  // namespace vrx
