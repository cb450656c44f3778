#include "insight/record_reader.h"

#include <algorithm>
#include <cmath>
#include <string_view>
#include <tuple>
#include <utility>

#include <SQLiteCpp/Column.h>
#include <SQLiteCpp/Statement.h>
#include <sqlite3.h>

#include "database/connection.h"
#include "insight/row_scan.h"

namespace vrx {
namespace {

constexpr std::int64_t kRowsPerReport = 4096;
constexpr std::string_view kNoUser = "-1";  // how some databases store a missing user

// The columns of a scan.
enum Cell {
  kRow,
  kNumber,
  kType,  // of a scan of both types
  kTarget,
  kActual,
  kIngredient,
  kPen,
  kRecipe,
  kUser,
  kDay,
  kTime
};

// NULL stands for a column that is not read; those at the end are left out.
std::string ColumnsOf(unsigned flags) {
  const auto column = [flags](unsigned flag, const char* name) {
    return (flags & flag) != 0 ? name : "NULL";
  };
  const bool loads = (flags & kReadLoads) != 0;
  const bool deliveries = (flags & kReadDeliveries) != 0;
  const char* actual = loads ? "ActualBatch" : "ActualFeed";
  if (loads && deliveries) {
    actual = "iif(Type = 'BATCH', ActualBatch, ActualFeed)";
  }
  std::string text = "rowid";
  std::string skipped;
  for (const std::string_view cell :
       {column(kReadBatch, "[Transaction]"), loads && deliveries ? "Type" : "NULL",
        column(kReadWeights, "Target"), column(kReadWeights, actual),
        column(kReadIngredient, "Ingredient"), column(kReadPen, "Pen"),
        column(kReadRecipe, "Recipe"), column(kReadOperator, "UserID"),
        column(kReadDate | kReadBatchDay, "Date"), column(kReadTime, "Time")}) {
    skipped += ", " + std::string(cell);
    if (cell != "NULL") {
      text += std::exchange(skipped, "");
    }
  }
  return text;
}

std::string TypeCondition(unsigned flags) {
  if ((flags & kReadBoth) == kReadBoth) {
    return {};
  }
  return (flags & kReadLoads) != 0 ? " AND Type = 'BATCH'" : " AND Type = 'FEED'";
}

}  // namespace

ReadTransaction::ReadTransaction(SQLite::Database& database) : database_(database) {
  WithDatabaseErrors(database, [&] { database.exec("SAVEPOINT insight"); });
}

ReadTransaction::~ReadTransaction() { database_.tryExec("RELEASE insight"); }

struct RecordReader::Scan {
  unsigned flags;
  const std::function<void(const Record&)>& take;
  DayReader days = {};
  std::int64_t rows = 0;
  int percent = 0;          // without runs
  std::int64_t total = 0;   // rowids of all runs
  std::int64_t before = 0;  // rowids of the runs before this one
  std::int64_t first = 0;   // rowid of this run
};

RecordReader::RecordReader(SQLite::Database& database, const Question& question,
                           const InsightProgress& progress, BatchChoice choice)
    : database_(database),
      question_(question),
      progress_(progress),
      transaction_(database),
      units_(database) {
  CheckPeriod(question_);
  CheckNames(database_, question_);
  for (int kind = 0; kind < kNameKinds; ++kind) {
    const auto& name = question_.Name(static_cast<NameKind>(kind));
    wanted_.at(static_cast<std::size_t>(kind)) = IdOf(name, static_cast<NameKind>(kind));
  }
  WithDatabaseErrors(database_, [&] { FindRows(choice); });
  if (question_.HasName()) {
    ChooseByName();
  }
}

NameId RecordReader::IdOf(const std::optional<std::string>& name, NameKind kind) {
  return name ? names_.at(static_cast<std::size_t>(kind)).Intern(*name) : kNoName;
}

InsightNotes RecordReader::Notes() const {
  return {.units = TextOf(units_.Unit()),
          .left_out = units_.LeftOut(),
          .alike = AlikeOf(names_),
          .undated = undated_};
}

void RecordReader::Report(int percent) const {
  if (progress_ && !progress_(percent)) {
    throw QuestionCancelled();
  }
}

// The rows of a scan.

void RecordReader::Read(unsigned flags, const std::function<void(const Record&)>& take) {
  for (Batch& batch : batches_) {
    batch.has_row = false;
    batch.has_load = false;
    batch.has_delivery = false;
  }
  Scan scan{.flags = FlagsOfScan(flags), .take = take};
  WithDatabaseErrors(database_, [&] { ReadRuns(scan); });
}

void RecordReader::ReadRuns(Scan& scan) {
  RowScan rows(
      database_, ColumnsOf(scan.flags),
      "FROM Transactions NOT INDEXED WHERE rowid BETWEEN ?1 AND ?2" + TypeCondition(scan.flags),
      [&](sqlite3_value** row) { Take(scan, row); });
  for (const Run& run : runs_) {
    scan.total += run.last - run.first + 1;
  }
  for (const Run& run : runs_) {
    scan.first = run.first;
    rows.Query().bind(1, run.first);
    rows.Query().bind(2, run.last);
    rows.Run();
    scan.before += run.last - run.first + 1;
  }
}

void RecordReader::ReadDates(unsigned flags, const DayRange& days,
                             const std::function<void(const Record&)>& take, int percent) {
  Scan scan{.flags = FlagsOfScan(flags), .take = take, .percent = percent};
  WithDatabaseErrors(database_, [&] {
    RowScan rows(
        database_, ColumnsOf(scan.flags),
        "FROM Transactions WHERE " + DayCondition(days.from, days.to) + TypeCondition(flags),
        [&](sqlite3_value** row) { Take(scan, row); });
    rows.Run();
  });
}

void RecordReader::Take(Scan& scan, sqlite3_value** row) {
  Record record{.rowid = sqlite3_value_int64(row[kRow])};
  if (++scan.rows % kRowsPerReport == 0) {
    Report(scan.total == 0
               ? scan.percent
               : static_cast<int>((scan.before + record.rowid - scan.first) * 100 / scan.total));
  }
  record.is_load = (scan.flags & kReadLoads) != 0;
  if ((scan.flags & kReadBoth) == kReadBoth) {
    const std::string_view type = TextIn(row[kType]);
    record.is_load = type == kLoadType;
    if (!Counts(type)) {
      return;
    }
  }
  if (IsLeftOut(record.rowid)) {
    return;
  }
  const bool with_batch = (scan.flags & kReadBatch) != 0;
  if (with_batch) {
    const std::optional<std::uint32_t> batch = BatchOf(record.rowid, row[kNumber]);
    if (!batch || !batches_[*batch].chosen) {
      return;
    }
    record.batch = *batch;
  }
  ReadCells(scan, row, record);
  if (with_batch) {
    NoteRow(record);
  }
  scan.take(record);
}

void RecordReader::ReadCells(Scan& scan, sqlite3_value** row, Record& record) {
  const auto name = [&](NameKind kind, Cell cell) {
    return names_[static_cast<std::size_t>(kind)].Intern(TextIn(row[cell]));
  };
  if ((scan.flags & kReadRecipe) != 0) {
    record.recipe = name(NameKind::kRecipe, kRecipe);
  }
  if ((scan.flags & kReadOperator) != 0 && TextIn(row[kUser]) != kNoUser) {
    record.operator_id = name(NameKind::kOperator, kUser);
  }
  if ((scan.flags & kReadIngredient) != 0 && record.is_load) {
    record.ingredient = name(NameKind::kIngredient, kIngredient);
  }
  if ((scan.flags & kReadPen) != 0 && !record.is_load) {
    record.pen = name(NameKind::kPen, kPen);
  }
  if ((scan.flags & kReadWeights) != 0) {
    record.target = Weight(record.rowid, row[kTarget]);
    record.actual = Weight(record.rowid, row[kActual]);
  }
  if ((scan.flags & kReadDate) != 0 || ((scan.flags & kReadBatchDay) != 0 && DecidesDay(record))) {
    record.day = scan.days.Read(TextIn(row[kDay]));
  }
  if ((scan.flags & kReadTime) != 0) {
    if (const auto time = ParseStoredTime(TextIn(row[kTime]))) {
      record.seconds = (time->hour * 60 + time->minute) * 60 + time->second;
    }
  }
}

Exact RecordReader::Weight(std::int64_t rowid, sqlite3_value* value) const {
  double weight = sqlite3_value_double(value);  // 0 for NULL
  if (!std::isfinite(weight)) {
    throw DatabaseError(
        SQLITE_RANGE,
        database_.getFilename() + " has a weight without an end in row " + std::to_string(rowid));
  }
  if (units_.UseOf(rowid) == ImportUnits::Use::kConverted) {
    weight = units_.Converted(weight);
  }
  return Exact::Of(weight);
}

// Batches.

std::optional<std::uint32_t> BatchNumbers::Find(std::int64_t number) const {
  const auto run = runs_.find(number >> kRunBits);
  if (run == runs_.end()) {
    return std::nullopt;
  }
  const std::uint32_t batch = run->second[PlaceInRun(number)];
  return batch == kNoBatch ? std::nullopt : std::optional(batch);
}

void BatchNumbers::Add(std::int64_t number, std::uint32_t batch) {
  const auto [run, is_new] = runs_.try_emplace(number >> kRunBits);
  if (is_new) {
    run->second.fill(kNoBatch);
  }
  run->second[PlaceInRun(number)] = batch;
}

bool RecordReader::DecidesDay(const Record& record) const {
  const Batch& batch = batches_[record.batch];
  return !days_known_ && !batch.has_load && (record.is_load || !batch.has_delivery);
}

// Nothing for a batch that cannot be chosen.
std::optional<std::uint32_t> RecordReader::BatchOf(std::int64_t rowid, sqlite3_value* number) {
  const bool numbered = sqlite3_value_type(number) == SQLITE_INTEGER;
  const std::int64_t key = numbered ? sqlite3_value_int64(number) : rowid;
  if (numbered && last_number_ == key) {
    return last_batch_;
  }
  std::optional<std::uint32_t> batch = numbered ? batch_of_number_.Find(key) : std::nullopt;
  if (const auto row = batch_of_row_.find(key); !numbered && row != batch_of_row_.end()) {
    batch = row->second;
  }
  if (!batch && chooses_) {
    return std::nullopt;
  }
  if (!batch) {
    batch = AddBatch(key, numbered);
  }
  if (numbered) {
    last_number_ = key;
    last_batch_ = *batch;
  }
  return batch;
}

std::uint32_t RecordReader::AddBatch(std::int64_t key, bool numbered) {
  const auto batch = static_cast<std::uint32_t>(batches_.size());
  batches_.push_back({.key = key, .has_number = numbered});
  if (numbered) {
    batch_of_number_.Add(key, batch);
  } else {
    batch_of_row_.emplace(key, batch);
  }
  return batch;
}

void RecordReader::NoteRow(const Record& record) {
  Batch& batch = batches_[record.batch];
  if (!batch.has_row) {
    batch.recipe = record.recipe;
    batch.operator_id = record.operator_id;
    batch.has_row = true;
  }
  if (DecidesDay(record)) {
    batch.day = record.day;
  }
  if (record.is_load) {
    batch.has_load = true;
    batch.has_ingredient =
        batch.has_ingredient ||
        (record.ingredient != kNoName && record.ingredient == Wanted(NameKind::kIngredient));
  } else {
    batch.has_delivery = true;
    batch.has_pen =
        batch.has_pen || (record.pen != kNoName && record.pen == Wanted(NameKind::kPen));
  }
}

std::vector<std::uint32_t> RecordReader::BatchesInOrder() const {
  std::vector<std::uint32_t> order;
  for (std::uint32_t index = 0; index < batches_.size(); ++index) {
    if (batches_[index].chosen) {
      order.push_back(index);
    }
  }
  std::sort(order.begin(), order.end(), [this](std::uint32_t one, std::uint32_t other) {
    const Batch& left = batches_[one];
    const Batch& right = batches_[other];
    return std::tuple(left.day, left.has_number, left.key) <
           std::tuple(right.day, right.has_number, right.key);
  });
  return order;
}

void RecordReader::FindDays() {
  if (!days_known_) {
    Read(kReadBoth | kReadBatch | kReadBatchDay, [](const Record&) {});
    days_known_ = true;
  }
}

void RecordReader::ChooseByName() {
  // The first row of a batch and its day can be of either type.
  const bool needs_both = !days_known_ || question_.recipe || question_.operator_id;
  unsigned flags = kReadBatch;
  flags |= needs_both || question_.ingredient ? kReadLoads : 0U;
  flags |= needs_both || question_.pen ? kReadDeliveries : 0U;
  flags |= question_.recipe ? kReadRecipe : 0U;
  flags |= question_.operator_id ? kReadOperator : 0U;
  flags |= question_.ingredient ? kReadIngredient : 0U;
  flags |= question_.pen ? kReadPen : 0U;
  flags |= days_known_ ? 0U : kReadBatchDay;
  Read(flags, [](const Record&) {});
  days_known_ = true;
  chooses_ = true;
  for (Batch& batch : batches_) {
    batch.chosen =
        batch.chosen && (!question_.recipe || batch.recipe == Wanted(NameKind::kRecipe)) &&
        (!question_.operator_id || batch.operator_id == Wanted(NameKind::kOperator)) &&
        (!question_.ingredient || batch.has_ingredient) && (!question_.pen || batch.has_pen);
  }
}

}  // namespace vrx
