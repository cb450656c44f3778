#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <variant>
#include <vector>

#include <SQLiteCpp/Column.h>
#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>

#include "history/data_group.h"
#include "history/period_rows.h"

namespace vrx {

// A value as a transaction database stores it: NULL, a whole number, a number, a text (UTF-8).
using CellValue = std::variant<std::monostate, std::int64_t, double, std::string>;

// A row of the grouped view.
enum class HistoryRowKind { kGroup, kTotal, kRecord };

[[nodiscard]] inline bool IsNull(const CellValue& value) {
  return std::holds_alternative<std::monostate>(value);
}

// Sort order of the records of a group. Column 0 is stored order.
struct RecordSort {
  int column = 0;
  bool ascending = true;
};

// Cache of the prepared statements of one view. A statement that is not in use is reset and holds
// no lock; its bindings remain.
class Statements {
 public:
  explicit Statements(SQLite::Database& database) : database_(database) {}

  class InUse {
   public:
    explicit InUse(SQLite::Statement& statement) : statement_(statement) {}
    ~InUse();
    InUse(const InUse&) = delete;
    InUse& operator=(const InUse&) = delete;

    SQLite::Statement& operator*() { return statement_; }
    SQLite::Statement* operator->() { return &statement_; }

   private:
    SQLite::Statement& statement_;
  };

  // Must not be called for a text whose statement is in use. Throws SQLite::Exception.
  [[nodiscard]] InUse Take(const std::string& text);

 private:
  SQLite::Database& database_;
  std::unordered_map<std::string, SQLite::Statement> prepared_;
};

[[nodiscard]] CellValue ValueOf(const SQLite::Column& column);
void BindValue(SQLite::Statement& statement, int parameter, const CellValue& value);

// SQL expression that orders the values of a level.
struct LevelKey {
  std::string expression;
  CellValue lowest;  // lowest possible value except NULL
};

struct GroupLevel {
  int column;                  // index
  std::string field;           // in brackets
  std::vector<LevelKey> keys;  // the last one is the field itself
  // Few rows per value: scanning the index is faster than searching for each next value.
  bool many_values;
};

// SQL texts of the queries of a view, written so that SQLite answers them from an index.
class GroupQuery {
 public:
  // `name` is only used by a group by name.
  GroupQuery(const DataGroup& group, std::string_view name);

  // Excludes rows with a higher rowid from now on: rows that are stored later.
  void EndAt(std::int64_t last_row) { last_row_ = last_row; }

  // Leaves only the rows of a period. `filter` is the condition that selects them. To be called
  // before SearchBy.
  void LimitTo(std::shared_ptr<const PeriodRows> period, std::string filter);
  // nullptr for all days.
  [[nodiscard]] const PeriodRows* Within() const { return period_.get(); }

  // Makes this a ranged query: searches these ranges of transactions with an index that starts with
  // the range. They must be all ranges of the table; those without rows of the period are skipped.
  void SearchBy(std::vector<std::int64_t> ranges);
  // Columns that such an index must have after the range, joined by ", ". Empty if no such index is
  // useful for this query.
  [[nodiscard]] std::string RangedColumns() const;
  [[nodiscard]] bool IsRanged() const { return ranges_.has_value(); }
  [[nodiscard]] const std::vector<std::int64_t>& Ranges() const { return *ranges_; }

  // SQL parameters from this number on are free for the caller.
  static constexpr int kFirstOwnParameter = 5;

  [[nodiscard]] const std::vector<GroupLevel>& Levels() const { return levels_; }

  // Binds the common parameters of the texts below. `values` are those of the group's levels,
  // outermost first; none for the whole table.
  void Bind(SQLite::Statement& statement, std::span<const CellValue> values) const;

  // " FROM ... WHERE ..." for the rows of a group at that depth; conditions can be appended.
  [[nodiscard]] std::string From(std::size_t levels) const;

  // The same for one range of a ranged query. Within one range an index has the rows of an
  // innermost group in stored order, if StoredOrderIsIndexed.
  [[nodiscard]] std::string FromRange(std::size_t levels) const;
  void BindRange(SQLite::Statement& statement, std::span<const CellValue> values,
                 std::int64_t range) const;

  // True if an index has the rows of an innermost group in stored order; for a ranged query, within
  // each range.
  [[nodiscard]] bool StoredOrderIsIndexed() const { return stored_order_is_indexed_; }
  // True if the picked name is the only value of the outermost level.
  [[nodiscard]] bool IsByName() const { return by_name_; }

  // The rowid and the values of all levels of the first row of the view with a rowid above the
  // first own parameter. BindFirstAfter binds the parameters.
  [[nodiscard]] std::string FirstAfter() const;
  void BindFirstAfter(SQLite::Statement& statement, std::int64_t rowid) const;

  // " FROM ... WHERE ... ORDER BY rowid" for the rows of the view with a rowid from the first own
  // parameter to the second one, in stored order. It scans the table and searches no other index.
  [[nodiscard]] std::string Scan() const;
  void BindScan(SQLite::Statement& statement, std::int64_t first, std::int64_t last) const;
  // The rows of the view have no higher rowid, if EndAt was called.
  [[nodiscard]] const std::optional<std::int64_t>& LastRow() const { return last_row_; }

  // For a ranged query: the values of the next level inside a group at that depth, ascending, NULL
  // first. Each value of each range takes one search of an index.
  [[nodiscard]] std::string ValuesInRanges(std::size_t levels) const;

  // The values of all levels and the number of records of every innermost group in order; for a
  // ranged query within one range.
  [[nodiscard]] std::string WholeOutline() const;

 private:
  [[nodiscard]] std::string Rows(std::size_t levels) const;
  [[nodiscard]] std::string Conditions(std::size_t levels) const;
  [[nodiscard]] std::string RowsOfPeriod(std::size_t levels) const;
  [[nodiscard]] bool StartsByDate() const;
  [[nodiscard]] std::string RowsOfRange(std::size_t levels, std::string_view range) const;
  void BindRows(SQLite::Statement& statement, std::span<const CellValue> values) const;

  std::vector<GroupLevel> levels_;
  std::string filter_;
  bool by_name_;
  bool stored_order_is_indexed_;
  std::string name_;
  std::optional<std::int64_t> last_row_;
  std::shared_ptr<const PeriodRows> period_;
  std::string period_filter_;
  std::optional<std::vector<std::int64_t>> ranges_;
  std::string ranges_text_;
};

// SQLite's order of two values: NULL, numbers, texts by their bytes. Negative, 0 or positive.
[[nodiscard]] int CompareValues(const CellValue& left, const CellValue& right);
// The order of the values of a level: users are in the order of their numbers.
[[nodiscard]] int CompareLevelValues(int column, const CellValue& left, const CellValue& right);

// SQL expression that orders the records by a column; NULL for column 0.
[[nodiscard]] std::string SortExpression(int column);

// SQL expression of a record's cell: the stored value, or the text of a difference, which needs
// RegisterDifferences.
[[nodiscard]] std::string CellExpression(int column);

// " ORDER BY ..." for the values of a column, equal values in stored order. Column 0 is stored
// order.
[[nodiscard]] std::string RecordOrderText(int column, bool ascending);

// List of all columns of the table by index, each with a prefix such as "t.".
[[nodiscard]] std::string RecordColumns(std::string_view prefix);

}  // namespace vrx
