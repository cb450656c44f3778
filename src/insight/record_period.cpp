// The period of a question. The indexes of dates and of numbers have all that decides which batches
// are in it.

#include <algorithm>

#include <SQLiteCpp/Column.h>
#include <SQLiteCpp/Statement.h>
#include <sqlite3.h>

#include "database/transactions.h"
#include "insight/days.h"
#include "insight/record_reader.h"
#include "insight/row_scan.h"

namespace vrx {
namespace {

// Runs of rows with a smaller gap are read as one; the rows between them are skipped.
constexpr std::int64_t kReadOver = 64;

// By number: of all numbers from ?1 to ?2, or of those of the array ?1.
std::string RowsOfNumbers(bool dense) {
  return std::string(
             "FROM (SELECT [Transaction] AS number, Type AS kind, rowid AS row FROM Transactions "
             "WHERE [Transaction] ") +
         (dense ? "BETWEEN ?1 AND ?2" : "IN (SELECT value FROM json_each(?1))") +
         " ORDER BY [Transaction])";
}

}  // namespace

void RecordReader::FindAllRows() {
  SQLite::Statement ends(database_,
                         "SELECT min(rowid), (SELECT max(rowid) FROM Transactions) FROM "
                         "Transactions");
  if (ends.executeStep() && !ends.getColumn(0).isNull()) {
    runs_.push_back({ends.getColumn(0).getInt64(), ends.getColumn(1).getInt64()});
  }
}

void RecordReader::FindRows(BatchChoice choice) {
  if (!question_.HasPeriod() && choice == BatchChoice::kAll) {
    FindAllRows();
    return;
  }
  if (question_.HasPeriod()) {
    undated_ = database_
                   .execAndGet(
                       "SELECT count(*) FROM Transactions WHERE [Date] IS NULL AND Type IN "
                       "('BATCH', 'FEED')")
                   .getInt64();
  }
  DatedRows dated;
  ReadPeriod(dated, choice);
  ChooseByPeriod(dated);
  SettleRuns();
  chooses_ = true;
  days_known_ = true;
}

void RecordReader::ReadPeriod(DatedRows& dated, BatchChoice choice) {
  const bool undated = choice == BatchChoice::kUndated;
  DayReader days;
  RowScan rows(
      database_, "rowid, [Transaction], Type, [Date]",
      "FROM Transactions WHERE " + (undated ? "1" : DayCondition(question_.from, question_.to)),
      [&](sqlite3_value** row) {
        const std::int64_t rowid = sqlite3_value_int64(row[0]);
        const DayNumber day = days.Read(TextIn(row[3]));
        const std::string_view type = TextIn(row[2]);
        if ((day == kNoDay) != undated || !Counts(type) || IsLeftOut(rowid)) {
          return;
        }
        if (sqlite3_value_type(row[1]) != SQLITE_INTEGER) {
          batches_[AddBatch(rowid, false)].day = day;
          AddRun(rowid);
          return;
        }
        FirstRows& rows_of = dated[sqlite3_value_int64(row[1])];
        DatedRow& first_row = type == kLoadType ? rows_of.load : rows_of.delivery;
        if (rowid < first_row.rowid) {
          first_row = {.rowid = rowid, .day = day};
        }
      });
  rows.Run();
}

// A batch is in the period if its first load is among the rows of the period; of the undated ones,
// if that load is without a date.
void RecordReader::ChooseByPeriod(const DatedRows& dated) {
  std::vector<std::int64_t> numbers;
  numbers.reserve(dated.size());
  for (const auto& [number, rows] : dated) {
    numbers.push_back(number);
  }
  std::sort(numbers.begin(), numbers.end());
  std::optional<std::int64_t> number;
  FirstRows first;
  std::vector<std::int64_t> rowids;
  const auto finish = [&] {
    if (rowids.empty()) {
      return;
    }
    const auto found = dated.find(*number);
    if (found == dated.end()) {
      rowids.clear();
      return;
    }
    const FirstRows& in_period = found->second;
    const bool has_load = first.load.rowid != kNoRow;
    const DatedRow& decides = has_load ? in_period.load : in_period.delivery;
    if (decides.rowid != kNoRow &&
        decides.rowid == (has_load ? first.load.rowid : first.delivery.rowid)) {
      batches_[AddBatch(*number, true)].day = decides.day;
      std::for_each(rowids.begin(), rowids.end(), [this](std::int64_t row) { AddRun(row); });
    }
    rowids.clear();
  };
  // Numbers usually follow each other: one range is read twice as fast as many single numbers.
  const bool dense = !numbers.empty() && numbers.back() - numbers.front() <
                                             2 * static_cast<std::int64_t>(numbers.size());
  RowScan rows(database_, "number, kind, row", RowsOfNumbers(dense), [&](sqlite3_value** row) {
    const std::int64_t rowid = sqlite3_value_int64(row[2]);
    const std::string_view type = TextIn(row[1]);
    if (!Counts(type) || IsLeftOut(rowid)) {
      return;
    }
    if (const std::int64_t next = sqlite3_value_int64(row[0]); number != next) {
      finish();
      number = next;
      first = {};
    }
    DatedRow& first_row = type == kLoadType ? first.load : first.delivery;
    first_row.rowid = std::min(first_row.rowid, rowid);
    rowids.push_back(rowid);
  });
  if (dense) {
    rows.Query().bind(1, numbers.front());
    rows.Query().bind(2, numbers.back());
  } else {
    rows.Query().bind(1, JsonArray(numbers));
  }
  rows.Run();
  finish();
}

void RecordReader::AddRun(std::int64_t rowid) {
  if (!runs_.empty() && runs_.back().last + 1 == rowid) {
    runs_.back().last = rowid;
  } else {
    runs_.push_back({.first = rowid, .last = rowid});
  }
}

void RecordReader::SettleRuns() {
  std::sort(runs_.begin(), runs_.end(),
            [](const Run& one, const Run& other) { return one.first < other.first; });
  std::vector<Run> joined;
  for (const Run& run : runs_) {
    if (!joined.empty() && run.first - joined.back().last <= kReadOver) {
      joined.back().last = std::max(joined.back().last, run.last);
    } else {
      joined.push_back(run);
    }
  }
  runs_ = std::move(joined);
}

}  // namespace vrx
