#pragma once

#include <cstddef>
#include <cstdint>
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

namespace vrx {

// A value as a transaction database stores it: NULL, a whole number, a number, a text (UTF-8).
using CellValue = std::variant<std::monostate, std::int64_t, double, std::string>;

// A row of the grouped view.
enum class HistoryRowKind { kGroup, kTotal, kRecord };

inline bool IsNull(const CellValue& value) { return std::holds_alternative<std::monostate>(value); }

// The prepared statements of one view, by their text. One that is not in use is reset and
// holds no lock; what was bound to it stays until it is bound again.
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

  // Not again for the same text while it is in use. Throws SQLite::Exception.
  InUse Take(const std::string& text);

 private:
  SQLite::Database& database_;
  std::unordered_map<std::string, SQLite::Statement> prepared_;
};

CellValue ValueOf(const SQLite::Column& column);
void BindValue(SQLite::Statement& statement, int parameter, const CellValue& value);

// What the values of a level are ordered by: an expression and the lowest value it can have but
// NULL.
struct LevelKey {
  std::string expression;
  CellValue lowest;
};

struct GroupLevel {
  int column;                  // by index
  std::string field;           // in brackets
  std::vector<LevelKey> keys;  // the last one is the field itself
  // Few rows to a value: the rows of an index are quicker read than each next value looked up.
  bool many_values;
};

// The query texts of a view, one for each thing to be asked, made so that an index of the table
// answers them.
class GroupQuery {
 public:
  // `name` counts in a group by name only.
  GroupQuery(const DataGroup& group, std::string_view name);

  // From now on rows with a higher rowid, those stored later, are left out.
  void EndAt(std::int64_t last_row) { last_row_ = last_row; }

  // From now on the rows are looked for in these ranges of transactions, by an index that is led by
  // them: the ranges that the table holds when this is called.
  void SearchBy(std::vector<std::int64_t> ranges);
  // What such an index has behind the range to serve this query: columns joined by ", ". Empty for
  // a query that no such index serves.
  std::string RangedColumns() const;
  bool IsRanged() const { return ranges_.has_value(); }
  const std::vector<std::int64_t>& Ranges() const { return *ranges_; }

  // Parameters of a text from here on are the caller's.
  static constexpr int kFirstOwnParameter = 5;

  const std::vector<GroupLevel>& Levels() const { return levels_; }

  // Binds what the texts below have in common: for the table no values, for a group those of its
  // levels from the outermost in.
  void Bind(SQLite::Statement& statement, std::span<const CellValue> values) const;

  // The rows of a group that many levels down: " FROM ... WHERE ...", for more conditions to
  // follow.
  std::string From(std::size_t levels) const;

  // The same of one range, for a ranged query: an index holds the rows of an innermost group in one
  // range in the order they were stored, if it does at all.
  std::string FromRange(std::size_t levels) const;
  void BindRange(SQLite::Statement& statement, std::span<const CellValue> values,
                 std::int64_t range) const;

  // Whether an index holds the rows of an innermost group, those of each range if it is ranged, in
  // the order they were stored.
  bool StoredOrderIsIndexed() const { return stored_order_is_indexed_; }
  // Whether the outermost level has the picked name as its only value.
  bool IsByName() const { return by_name_; }

  // The values of the next level inside a group that many levels down, ascending, NULL first, for a
  // ranged query: in each range one value is found after the other, each by one search of an index.
  std::string ValuesInRanges(std::size_t levels) const;

  // The values of all levels and the number of records, for every innermost group in order; for a
  // ranged query of one range.
  std::string WholeOutline() const;

 private:
  std::string Rows(std::size_t levels) const;
  std::string RowsOfRange(std::size_t levels, std::string_view range) const;
  void BindRows(SQLite::Statement& statement, std::span<const CellValue> values) const;

  std::vector<GroupLevel> levels_;
  std::string filter_;
  bool by_name_;
  bool stored_order_is_indexed_;
  std::string name_;
  std::optional<std::int64_t> last_row_;
  std::optional<std::vector<std::int64_t>> ranges_;
  std::string ranges_text_;
};

// " ORDER BY " the values of a column, those that are equal in the order they were stored; column 0
// is that order alone.
std::string RecordOrderText(int column, bool ascending);

// All columns of the table by index, each with what stands before it: "t." or nothing.
std::string RecordColumns(std::string_view prefix);

}  // namespace vrx
