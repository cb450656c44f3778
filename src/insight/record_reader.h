#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include <SQLiteCpp/Database.h>

#include "base/date.h"
#include "insight/days.h"
#include "insight/exact.h"
#include "insight/import_units.h"
#include "insight/names.h"
#include "insight/question.h"

struct sqlite3_value;

namespace vrx {

// Which rows a scan reads and which of their columns; all others of a record stay empty.
enum ReadFlags : unsigned {
  kReadLoads = 1U << 0U,
  kReadDeliveries = 1U << 1U,
  kReadRecipe = 1U << 2U,
  kReadOperator = 1U << 3U,
  kReadIngredient = 1U << 4U,
  kReadPen = 1U << 5U,
  kReadWeights = 1U << 6U,
  kReadDate = 1U << 7U,
  kReadTime = 1U << 8U,
  kReadBatch = 1U << 9U,
  kReadBatchDay = 1U << 10U,  // the date of the rows that decide the day of their batch
  kReadBoth = kReadLoads | kReadDeliveries,
};

struct Record {
  std::int64_t rowid = 0;
  bool is_load = false;
  std::uint32_t batch = 0;  // index of RecordReader::Batches, with kReadBatch
  NameId recipe = kNoName;
  NameId operator_id = kNoName;
  NameId ingredient = kNoName;  // of a load
  NameId pen = kNoName;         // of a delivery
  Exact target = {};            // a missing weight is 0
  Exact actual = {};
  DayNumber day = kNoDay;
  std::int32_t seconds = kNoTime;  // since midnight
};

// A batch as far as its rows have been read. Years have half a million of them.
struct Batch {
  std::int64_t key = 0;     // the number, or the rowid of a row without one
  DayNumber day = kNoDay;   // of its first load, or of its first delivery if it has no load
  NameId recipe = kNoName;  // of its first row
  NameId operator_id = kNoName;
  bool has_number : 1 = true;
  bool has_row : 1 = false;
  bool has_load : 1 = false;
  bool has_delivery : 1 = false;
  bool has_ingredient : 1 = false;  // a load of the question's ingredient
  bool has_pen : 1 = false;         // a delivery to the question's pen
  bool chosen : 1 = true;

  [[nodiscard]] std::optional<std::int64_t> Number() const {
    return has_number ? std::optional(key) : std::nullopt;
  }
};

// The index of each batch by its number. Numbers follow each other in most databases.
class BatchNumbers {
 public:
  // Nothing for a number that was not added.
  [[nodiscard]] std::optional<std::uint32_t> Find(std::int64_t number) const;
  void Add(std::int64_t number, std::uint32_t batch);

 private:
  static constexpr unsigned kRunBits = 5;
  static constexpr std::size_t kRunLength = std::size_t{1} << kRunBits;
  static constexpr std::uint32_t kNoBatch = std::numeric_limits<std::uint32_t>::max();
  using NumberRun = std::array<std::uint32_t, kRunLength>;
  static std::size_t PlaceInRun(std::int64_t number) {
    return static_cast<std::size_t>(number) % kRunLength;
  }

  std::unordered_map<std::int64_t, NumberRun> runs_;  // by number >> kRunBits
};

// A read transaction, also inside another transaction.
class ReadTransaction {
 public:
  explicit ReadTransaction(SQLite::Database& database);  // throws DatabaseError
  ~ReadTransaction();
  ReadTransaction(const ReadTransaction&) = delete;
  ReadTransaction& operator=(const ReadTransaction&) = delete;

 private:
  SQLite::Database& database_;
};

// Which batches a reader takes of a question without a period.
enum class BatchChoice { kAll, kUndated };

// Reads the rows that a question is about, in stored order, within one read transaction that lasts
// as long as the object. A period is found by the index of dates, so that the time depends on its
// rows only.
class RecordReader {
 public:
  // Everything outlives it. Throws QuestionError, QuestionCancelled and DatabaseError.
  RecordReader(SQLite::Database& database, const Question& question,
               const InsightProgress& progress, BatchChoice choice = BatchChoice::kAll);
  RecordReader(const RecordReader&) = delete;
  RecordReader& operator=(const RecordReader&) = delete;

  // Passes each row of the chosen batches to `take`. Throws what it throws, QuestionCancelled and
  // DatabaseError, the latter also for a weight that is not finite.
  void Read(unsigned flags, const std::function<void(const Record&)>& take);

  // Passes the rows with dates from `from` to `to` by date, whatever the day of their batch, of a
  // question without a period. A read by the index of dates: the time depends on its rows only.
  // `percent` is what is done of the question.
  void ReadDates(unsigned flags, const DayRange& days,
                 const std::function<void(const Record&)>& take, int percent = 0);

  // Makes Batch::day known before a row of the batch is passed, for deliveries that are stored
  // before a load. Not needed for loads.
  void FindDays();

  [[nodiscard]] const std::vector<Batch>& Batches() const { return batches_; }
  // Indexes of the chosen ones by date and number, each missing value first.
  [[nodiscard]] std::vector<std::uint32_t> BatchesInOrder() const;
  [[nodiscard]] const Names& NamesOf(NameKind kind) const {
    return names_[static_cast<std::size_t>(kind)];
  }
  // The number of a name of the question; kNoName if no row has had it yet.
  [[nodiscard]] NameId IdOf(const std::optional<std::string>& name, NameKind kind);
  [[nodiscard]] WeightUnit Unit() const { return units_.Unit(); }
  // A row of an import in another unit.
  [[nodiscard]] bool IsLeftOut(std::int64_t rowid) const {
    return units_.UseOf(rowid) == ImportUnits::Use::kLeftOut;
  }
  // Called after the last scan.
  [[nodiscard]] InsightNotes Notes() const;
  // For long work after the last scan. Throws QuestionCancelled.
  void Report(int percent) const;

 private:
  struct Run {
    std::int64_t first;
    std::int64_t last;
  };
  static constexpr std::int64_t kNoRow = std::numeric_limits<std::int64_t>::max();
  struct DatedRow {
    std::int64_t rowid = kNoRow;
    DayNumber day = kNoDay;
  };
  struct FirstRows {
    DatedRow load = {};
    DatedRow delivery = {};
  };
  using DatedRows = std::unordered_map<std::int64_t, FirstRows>;  // by transaction
  struct Scan;                                                    // one pass over the rows

  [[nodiscard]] unsigned FlagsOfScan(unsigned flags) const {
    return chooses_ ? flags | kReadBatch : flags;
  }
  void ReadRuns(Scan& scan);
  void Take(Scan& scan, sqlite3_value** row);
  void ReadCells(Scan& scan, sqlite3_value** row, Record& record);
  [[nodiscard]] Exact Weight(std::int64_t rowid, sqlite3_value* value) const;

  std::optional<std::uint32_t> BatchOf(std::int64_t rowid, sqlite3_value* number);
  [[nodiscard]] bool DecidesDay(const Record& record) const;
  std::uint32_t AddBatch(std::int64_t key, bool numbered);
  void NoteRow(const Record& record);
  [[nodiscard]] NameId Wanted(NameKind kind) const {
    return wanted_[static_cast<std::size_t>(kind)];
  }

  void FindRows(BatchChoice choice);
  void FindAllRows();
  void ReadPeriod(DatedRows& dated, BatchChoice choice);
  void ChooseByPeriod(const DatedRows& dated);
  void ChooseByName();
  void AddRun(std::int64_t rowid);
  void SettleRuns();

  SQLite::Database& database_;
  const Question& question_;
  const InsightProgress& progress_;
  ReadTransaction transaction_;
  ImportUnits units_;
  NamesOfKinds names_;
  std::array<NameId, kNameKinds> wanted_{};
  std::vector<Batch> batches_;
  BatchNumbers batch_of_number_;
  std::unordered_map<std::int64_t, std::uint32_t> batch_of_row_;  // of rows without a number
  std::optional<std::int64_t> last_number_;
  std::uint32_t last_batch_ = 0;
  std::vector<Run> runs_;  // of the candidates; all rows without a period
  bool chooses_ = false;   // only some batches are chosen
  bool days_known_ = false;
  std::int64_t undated_ = 0;
};

}  // namespace vrx
