#include "export/level_walk.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Exception.h>
#include <SQLiteCpp/Transaction.h>
#include <sqlite3.h>

#include "base/date.h"
#include "base/error.h"
#include "base/number.h"
#include "base/translation.h"
#include "database/connection.h"
#include "database/exact_sum.h"
#include "database/transactions.h"
#include "export/export_plan.h"
#include "history/data_group.h"
#include "history/difference.h"

namespace vrx {

namespace {

// Steps through the rows of a query and gives cells without copying them: an export may have
// hundreds of millions. Throws SQLite::Exception.
class RowReader {
 public:
  // Binds the first of `values` to the query's parameters, as many as it has.
  RowReader(SQLite::Database& database, const std::string& query,
            std::span<const std::string> values);

  // False after the last row.
  bool Next();

  // Valid until the next row.
  [[nodiscard]] CellView Cell(std::size_t column) const;

 private:
  struct Finalize {
    void operator()(sqlite3_stmt* statement) const;
  };

  SQLite::Database& database_;
  std::unique_ptr<sqlite3_stmt, Finalize> statement_;
};

RowReader::RowReader(SQLite::Database& database, const std::string& query,
                     std::span<const std::string> values)
    : database_(database) {
  sqlite3_stmt* statement = nullptr;
  database.check(sqlite3_prepare_v2(database.getHandle(), query.c_str(),
                                    static_cast<int>(query.size()), &statement, nullptr));
  statement_.reset(statement);
  const auto count = static_cast<std::size_t>(sqlite3_bind_parameter_count(statement));
  int parameter = 0;
  for (const std::string& value : values.first(count)) {
    database.check(sqlite3_bind_text64(statement, ++parameter, value.data(), value.size(),
                                       SQLITE_TRANSIENT, SQLITE_UTF8));
  }
}

bool RowReader::Next() {
  const int result = sqlite3_step(statement_.get());
  if (result != SQLITE_ROW && result != SQLITE_DONE) {
    throw SQLite::Exception(database_.getHandle(), result);
  }
  return result == SQLITE_ROW;
}

CellView RowReader::Cell(std::size_t column) const {
  sqlite3_stmt* const statement = statement_.get();
  const int index = static_cast<int>(column);
  switch (sqlite3_column_type(statement, index)) {
    case SQLITE_NULL:
      return {};
    case SQLITE_INTEGER:
      return std::int64_t{sqlite3_column_int64(statement, index)};
    case SQLITE_FLOAT:
      return sqlite3_column_double(statement, index);
    default: {
      // The bytes of a blob are treated as text.
      const auto* const text = reinterpret_cast<const char*>(sqlite3_column_text(statement, index));
      const auto size = static_cast<std::size_t>(sqlite3_column_bytes(statement, index));
      return text == nullptr ? std::string_view() : std::string_view(text, size);
    }
  }
}

void RowReader::Finalize::operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }

// Limits the memory of the connection, in KiB: its page cache, and the same again for each of the
// two running sorts. The rest of a sort goes to temporary files.
constexpr const char* kBoundedMemory = "PRAGMA cache_size=-16384; PRAGMA temp_store=FILE";

std::vector<WalkedField> MakeFields(const ExportPlan& plan, const ColumnDictionary& dictionary) {
  std::vector<WalkedField> fields;
  for (std::string& field : BuildFieldList(dictionary, plan.excluded)) {
    const int column = HistoryColumnOfField(field);
    // The query gives a difference as a text.
    const ColumnContent content = FindDifferenceColumn(column) != nullptr
                                      ? ColumnContent::kText
                                      : HistoryColumnAt(column).content;
    fields.push_back({std::move(field), content});
  }
  return fields;
}

std::vector<DifferenceColumn> DifferencesIn(const ColumnDictionary& dictionary) {
  std::vector<DifferenceColumn> found;
  for (const ExportedColumn& column : dictionary) {
    const int index = HistoryColumnOfField(column.field);
    if (const DifferenceColumn* const difference = FindDifferenceColumn(index)) {
      found.push_back(*difference);
    }
  }
  return found;
}

std::vector<std::string> Names(std::span<const WalkedField> fields) {
  std::vector<std::string> names;
  for (const WalkedField& field : fields) {
    names.push_back(field.name);
  }
  return names;
}

// How the rows of a group by name are found, and the query parameters for it.
struct PickedRows {
  ExportRows rows = {};
  std::vector<std::string> values;
};

PickedRows PickRows(SQLite::Database& database, const ExportPlan& plan, const std::string& name,
                    const Period& period) {
  const std::string_view column = DataGroups()[static_cast<std::size_t>(plan.group)].named_column;
  if (column.empty()) {
    return {.rows = {.period = period}, .values = {}};
  }
  const auto ranges = ReadTransactionRanges(database, column);
  return ranges ? PickedRows{{NameSearch::kInRanges, period}, {name, JsonArray(*ranges)}}
                : PickedRows{{NameSearch::kInTable, period}, {name}};
}

// Steps to the row of a query of sums that has the keys of a record. Both are in the same order.
void FindKeysOf(const RowReader& record, std::size_t levels, RowReader& sums) {
  const auto has_keys = [&] {
    for (std::size_t depth = 0; depth < levels; ++depth) {
      if (sums.Cell(depth) != record.Cell(depth)) {
        return false;
      }
    }
    return true;
  };
  do {
    if (!sums.Next()) {
      throw Error(Tr("the rows of the table changed while they were summed"));
    }
  } while (!has_keys());
}

// Reads the sums of the innermost groups, in the order in which the records open them.
class SumStream {
 public:
  SumStream(SQLite::Database& database, const ExportPlan& plan, const PickedRows& picked)
      : plan_(plan),
        fields_(SummedFields(plan)),
        rows_(database, LevelSumQuery(plan, picked.rows), picked.values),
        sums_(plan.weights.size()) {}

  // The sums of the group that this row of the records opens.
  std::span<const GroupSum> For(const RowReader& record) {
    FindKeysOf(record, plan_.levels.size(), rows_);
    const std::vector<ExportWeight>& weights = Weights(record);
    for (std::size_t at = 0; at < weights.size(); ++at) {
      sums_[at] = {&weights[at], Sum(weights[at].field)};
    }
    return sums_;
  }

 private:
  [[nodiscard]] const std::vector<ExportWeight>& Weights(const RowReader& record) const {
    const bool batch = record.Cell(plan_.levels.size() - 1) == CellView(kBatchType);
    return plan_.fed_weights.empty() || batch ? plan_.weights : plan_.fed_weights;
  }

  [[nodiscard]] std::optional<double> Sum(std::string_view field) const {
    // No row equals a NULL key, so it has no sum; kOfUserOrOfTheType still finds the user's rows.
    const std::size_t innermost = plan_.levels.size() - 1;
    if (plan_.summed != SummedRows::kOfUserOrOfTheType && IsNull(rows_.Cell(innermost))) {
      return std::nullopt;
    }
    const auto found = std::find(fields_.begin(), fields_.end(), field);
    const CellView sum =
        rows_.Cell(plan_.levels.size() + static_cast<std::size_t>(found - fields_.begin()));
    return IsNull(sum) ? std::nullopt : std::optional(std::get<double>(sum));
  }

  const ExportPlan& plan_;
  std::vector<std::string_view> fields_;
  RowReader rows_;
  std::vector<GroupSum> sums_;
};

// Reads the differences of the innermost groups likewise.
class DifferenceStream {
 public:
  DifferenceStream(SQLite::Database& database, const ExportPlan& plan, const PickedRows& picked,
                   const std::vector<DifferenceColumn>& columns)
      : levels_(plan.levels.size()),
        columns_(columns),
        rows_(database, LevelComparisonQuery(plan, picked.rows), picked.values) {}

  std::span<const DifferenceTotal> For(const RowReader& record) {
    FindKeysOf(record, levels_, rows_);
    totals_.clear();
    for (const DifferenceColumn& column : columns_) {
      const std::size_t first = levels_ + 2 * static_cast<std::size_t>(column.kind);
      const Comparison sums{.target = Sum(first), .actual = Sum(first + 1)};
      totals_.push_back(
          {.field = HistoryColumnAt(column.column).field,
           .text = column.percent ? DifferencePercentText(sums) : DifferenceText(sums)});
    }
    return totals_;
  }

 private:
  [[nodiscard]] std::optional<double> Sum(std::size_t column) const {
    // No row equals a NULL key, so it has no sum.
    const CellView sum = IsNull(rows_.Cell(levels_ - 1)) ? CellView() : rows_.Cell(column);
    return IsNull(sum) ? std::nullopt : std::optional(std::get<double>(sum));
  }

  std::size_t levels_;
  const std::vector<DifferenceColumn>& columns_;
  RowReader rows_;
  std::vector<DifferenceTotal> totals_;
};

// An open group. It keeps a copy of its text, because its row is no longer valid.
struct OpenedGroup {
  CellView key;
  std::string text;
  WalkedGroup group;
};

class Walker {
 public:
  Walker(SQLite::Database& database, const ExportPlan& plan, std::span<const std::string> fields,
         const std::vector<DifferenceColumn>& differences, const PickedRows& picked,
         LevelVisitor& visitor)
      : plan_(plan),
        visitor_(visitor),
        rows_(database, LevelRecordQuery(plan, fields, picked.rows), picked.values),
        groups_(plan.levels.size()),
        cells_(fields.size()) {
    if (!plan.levels.empty()) {
      sums_.emplace(database, plan, picked);
    }
    if (!plan.levels.empty() && !differences.empty()) {
      differences_.emplace(database, plan, picked, differences);
    }
  }

  void Walk() {
    while (rows_.Next()) {
      const std::size_t depth = DepthOfRow();
      const std::size_t kept = LevelsKept(depth);
      if (kept < depth) {
        CloseDownTo(kept);
        OpenUpTo(depth);
      }
      if (complete_) {
        VisitRecord();
      }
    }
    CloseDownTo(0);
  }

 private:
  // The number of groups that enclose the row. A row with a NULL key is not a record.
  std::size_t DepthOfRow() {
    complete_ = false;
    for (std::size_t depth = 0; depth < plan_.levels.size(); ++depth) {
      if (!IsNull(rows_.Cell(depth))) {
        continue;
      }
      const ExportLevel& level = plan_.levels[depth];
      if (level.nulls == NullValues::kRefused) {
        CloseDownTo(depth);
        Refuse(depth);
      }
      return level.nulls == NullValues::kSkipped ? depth : depth + 1;
    }
    complete_ = true;
    return plan_.levels.size();
  }

  // Names the row by the value of its next level.
  [[noreturn]] void Refuse(std::size_t depth) const {
    const std::string field(plan_.levels[depth].field);
    if (depth + 1 == plan_.levels.size()) {
      throw Error(Tr("a row has no %1: it cannot be exported by it", {field}));
    }
    std::string row = std::string(plan_.levels[depth + 1].field) + " ";
    AppendCellText(rows_.Cell(depth + 1), ColumnContent::kNumber, row);
    throw Error(Tr("a row of %1 has no %2: it cannot be exported by it", {row, field}));
  }

  [[nodiscard]] std::size_t LevelsKept(std::size_t depth) const {
    std::size_t kept = 0;
    while (kept < std::min(open_, depth) && groups_[kept].key == rows_.Cell(kept)) {
      ++kept;
    }
    return kept;
  }

  void OpenUpTo(std::size_t depth) {
    for (; open_ < depth; ++open_) {
      const ExportLevel& level = plan_.levels[open_];
      OpenedGroup& opened = groups_[open_];
      opened.key = rows_.Cell(open_);
      if (const auto* const text = std::get_if<std::string_view>(&opened.key)) {
        opened.text = *text;
        opened.key = std::string_view(opened.text);
      }
      const bool no_user = level.nulls == NullValues::kNoUser && opened.key == CellView(kNoUserKey);
      opened.group = {.depth = open_,
                      .level = &level,
                      .content = HistoryColumnAt(HistoryColumnOfField(level.field)).content,
                      .value = no_user ? CellView(kNoUserText) : opened.key};
      if (open_ + 1 == plan_.levels.size()) {
        opened.group.sums = sums_->For(rows_);
        if (differences_) {
          opened.group.differences = differences_->For(rows_);
        }
      }
      visitor_.OpenGroup(opened.group);
    }
  }

  void CloseDownTo(std::size_t depth) {
    while (open_ > depth) {
      --open_;
      visitor_.CloseGroup(groups_[open_].group);
    }
  }

  void VisitRecord() {
    for (std::size_t at = 0; at < cells_.size(); ++at) {
      cells_[at] = rows_.Cell(plan_.levels.size() + at);
    }
    visitor_.Record(cells_);
  }

  const ExportPlan& plan_;
  LevelVisitor& visitor_;
  RowReader rows_;
  std::optional<SumStream> sums_;
  std::optional<DifferenceStream> differences_;
  std::vector<OpenedGroup> groups_;
  std::size_t open_ = 0;
  std::vector<CellView> cells_;
  bool complete_ = false;  // the row is a record below the innermost level
};

// The functions below write the same texts as DefaultText, without allocating a string per cell.

// Weights have at most 3 decimals. The limits keep within the 15 digits that DefaultText writes.
constexpr std::int64_t kScale = 1000;
constexpr double kLargestScaled = 1e14;
constexpr std::int64_t kLargestWhole = 999'999'999'999'999;

void AppendWhole(std::integral auto value, std::string& text) {
  std::array<char, 20> digits{};
  const auto written = std::to_chars(digits.data(), digits.data() + digits.size(), value);
  text.append(digits.data(), written.ptr);
}

void AppendTwoDigits(int value, std::string& text) {
  text += static_cast<char>('0' + value / 10);
  text += static_cast<char>('0' + value % 10);
}

void AppendNumber(std::int64_t value, std::string& text) {
  if (value < -kLargestWhole || value > kLargestWhole) {
    text += DefaultText(value);
    return;
  }
  AppendWhole(value, text);
}

void AppendNumber(double value, std::string& text) {
  const double scaled = std::abs(value) * static_cast<double>(kScale);
  if (!(scaled < kLargestScaled)) {
    text += DefaultText(value);
    return;
  }
  const auto thousandths = static_cast<std::int64_t>(std::nearbyint(scaled));
  // The division is correctly rounded, so equality proves that these digits are exact.
  if (static_cast<double>(thousandths) / static_cast<double>(kScale) != std::abs(value)) {
    text += DefaultText(value);
    return;
  }
  if (value < 0) {
    text += '-';
  }
  AppendWhole(thousandths / kScale, text);
  std::int64_t rest = thousandths % kScale;
  if (rest == 0) {
    return;
  }
  text += '.';
  for (std::int64_t place = kScale / 10; rest != 0; place /= 10) {
    text += static_cast<char>('0' + rest / place);
    rest %= place;
  }
}

void AppendText(std::string_view value, ColumnContent content, std::string& text) {
  if (content == ColumnContent::kDate) {
    if (const auto date = ParseStoredDate(value)) {
      AppendWhole(static_cast<unsigned>(date->month()), text);
      text += '/';
      AppendWhole(static_cast<unsigned>(date->day()), text);
      text += '/';
      text += value.substr(0, 4);
      return;
    }
  }
  if (content == ColumnContent::kTime) {
    if (const auto time = ParseStoredTime(value)) {
      AppendWhole(time->hour % 12 == 0 ? 12 : time->hour % 12, text);
      text += ':';
      AppendTwoDigits(time->minute, text);
      text += ':';
      AppendTwoDigits(time->second, text);
      text += time->hour < 12 ? " AM" : " PM";
      return;
    }
  }
  text += value;
}

}  // namespace

LevelWalk::LevelWalk(const std::filesystem::path& transaction_database, const ExportPlan& plan,
                     const ColumnDictionary& dictionary, std::string_view name, LockWait wait,
                     const Period& period)
    : plan_(plan),
      name_(name),
      period_(period),
      fields_(MakeFields(plan, dictionary)),
      differences_(DifferencesIn(dictionary)),
      database_(OpenDatabase(transaction_database, Access::kRead, wait)) {
  if (fields_.empty()) {
    throw Error(Tr("the data group shows no columns to export"));
  }
  WithDatabaseErrors(database_, [&] { database_.exec(kBoundedMemory); });
  RegisterExactSum(database_);
  RegisterStoredDates(database_);
  RegisterDifferences(database_);
}

void LevelWalk::Walk(LevelVisitor& visitor) {
  WithDatabaseErrors(database_, [&] {
    const SQLite::Transaction snapshot(database_);
    const PickedRows picked = PickRows(database_, plan_, name_, period_);
    Walker(database_, plan_, Names(fields_), differences_, picked, visitor).Walk();
  });
}

void AppendCellText(const CellView& value, ColumnContent content, std::string& text) {
  if (const auto* const stored = std::get_if<std::string_view>(&value)) {
    AppendText(*stored, content, text);
  } else if (const auto* const number = std::get_if<double>(&value)) {
    AppendNumber(*number, text);
  } else if (const auto* const whole = std::get_if<std::int64_t>(&value)) {
    AppendNumber(*whole, text);
  }
}

}  // namespace vrx
