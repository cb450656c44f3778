#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include <SQLiteCpp/Database.h>

#include "database/lock_wait.h"
#include "export/export_columns.h"
#include "export/export_plan.h"
#include "history/columns.h"
#include "history/period.h"

namespace vrx {

// A value as stored: NULL, an integer, a number or a text (UTF-8). AppendCellText formats it.
using CellView = std::variant<std::monostate, std::int64_t, double, std::string_view>;

// A field of a record or of a level, and the kind of its values.
struct WalkedField {
  std::string name;
  ColumnContent content = ColumnContent::kText;
};

struct GroupSum {
  const ExportWeight* weight = nullptr;
  std::optional<double> value = {};  // empty for a sum over no values
};

// A column of differences in a total.
struct DifferenceTotal {
  std::string field = {};
  std::string text = {};  // empty without records of its kind
};

// One value of a level. `value` is NULL only if the plan shows such values; it is kNoUserText for
// rows without a user.
struct WalkedGroup {
  std::size_t depth = 0;  // 0 for the outermost level
  const ExportLevel* level = nullptr;
  ColumnContent content = ColumnContent::kText;
  CellView value = {};
  std::span<const GroupSum> sums = {};  // in the plan's order; empty except at the innermost level
  // The differences of the records below, by their columns in the dictionary; likewise.
  std::span<const DifferenceTotal> differences = {};
};

// Receives an export in the order of its output. Arguments are valid only during the call. An
// exception ends the walk and leaves LevelWalk::Walk.
class LevelVisitor {
 public:
  virtual ~LevelVisitor() = default;

  virtual void OpenGroup(const WalkedGroup& group) = 0;
  // One cell per field of LevelWalk::Fields().
  virtual void Record(std::span<const CellView> cells) = 0;
  // Closes the group at the depth of `group`, with the same contents as in OpenGroup.
  virtual void CloseGroup(const WalkedGroup& group) = 0;
};

// Walks a transaction database as a plan specifies, on its own connection. One read transaction
// encloses the walk, so rows that another program stores in the meantime are not seen. The table is
// read as sorted streams: memory does not grow with the number of rows.
//
// Throws DatabaseError if the database fails, and Error for rows that the plan refuses.
class LevelWalk {
 public:
  // `name` selects the rows of a group by name; otherwise it is empty. The plan outlives the
  // object.
  LevelWalk(const std::filesystem::path& transaction_database, const ExportPlan& plan,
            const ColumnDictionary& dictionary, std::string_view name, LockWait wait = kBusyTimeout,
            const Period& period = {});

  // The fields of a record in order: those of the dictionary that the plan does not exclude.
  [[nodiscard]] std::span<const WalkedField> Fields() const { return fields_; }

  void Walk(LevelVisitor& visitor);

 private:
  const ExportPlan& plan_;
  std::string name_;
  Period period_;
  std::vector<WalkedField> fields_;
  std::vector<DifferenceColumn> differences_;  // in the dictionary
  SQLite::Database database_;
};

// Appends the default text form of a stored value, UTF-8: 500.5, 3/14/2011, 6:10:00 AM. NULL
// appends nothing. A date or time that is not in its stored form is appended unchanged. Throws
// ConversionError for an infinite number.
void AppendCellText(const CellView& value, ColumnContent content, std::string& text);

[[nodiscard]] inline bool IsNull(const CellView& cell) {
  return std::holds_alternative<std::monostate>(cell);
}

}  // namespace vrx
