#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <SQLiteCpp/Statement.h>

#include "history/cell_value.h"
#include "history/data_group.h"

namespace vrx {

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

  // Parameters of a text from here on are the caller's.
  static constexpr int kFirstOwnParameter = 5;

  const std::vector<GroupLevel>& Levels() const { return levels_; }

  // Binds what the texts below have in common: for the table no values, for a group those of its
  // levels from the outermost in.
  void Bind(SQLite::Statement& statement, std::span<const CellValue> values) const;

  // The rows of a group that many levels down: " FROM ... WHERE ...", for more conditions to
  // follow.
  std::string From(std::size_t levels) const;

  // Whether an index holds the rows of an innermost group in the order they were stored.
  bool StoredOrderIsIndexed() const { return stored_order_is_indexed_; }
  // Whether the outermost level has the picked name as its only value.
  bool IsByName() const { return by_name_; }

  // The values of all levels and the number of records, for every innermost group in order.
  std::string WholeOutline() const;

 private:
  std::vector<GroupLevel> levels_;
  std::string filter_;
  bool by_name_;
  bool stored_order_is_indexed_;
  std::string name_;
  std::optional<std::int64_t> last_row_;
};

// " ORDER BY " the values of a column, those that are equal in the order they were stored; column 0
// is that order alone.
std::string RecordOrderText(int column, bool ascending);

// All columns of the table by index, each with what stands before it: "t." or nothing.
std::string RecordColumns(std::string_view prefix);

}  // namespace vrx
