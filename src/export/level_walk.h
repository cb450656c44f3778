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

namespace vrx {

// A value as stored: NULL, a whole number, a number, a text (UTF-8). cell_text.h gives its default
// text form.
using CellView = std::variant<std::monostate, std::int64_t, double, std::string_view>;

// A field of a record or of a level, and what its values are.
struct WalkedField {
  std::string name;
  ColumnContent content = ColumnContent::kText;
};

struct GroupSum {
  const ExportWeight* weight = nullptr;
  std::optional<double> value = {};  // nothing: a sum over no values
};

// One value of a level. `value` is NULL only where the plan shows such values, and kNoUserText for
// rows without a user.
struct WalkedGroup {
  std::size_t depth = 0;  // 0 for the outermost level
  const ExportLevel* level = nullptr;
  ColumnContent content = ColumnContent::kText;
  CellView value = {};
  std::span<const GroupSum> sums = {};  // of the innermost level, in the plan's order; else empty
};

// Receives an export in the order it is written. What it gets is valid during the call; what it
// throws ends the walk and comes out of it.
class LevelVisitor {
 public:
  virtual ~LevelVisitor() = default;

  virtual void OpenGroup(const WalkedGroup& group) = 0;
  // One cell per field of LevelWalk::Fields().
  virtual void Record(std::span<const CellView> cells) = 0;
  // The group with the depth of `group`; it tells the same as when it was opened.
  virtual void CloseGroup(const WalkedGroup& group) = 0;
};

// Walks a transaction database by a plan, on a connection of its own. One read transaction encloses
// all of it, so that what another program stores meanwhile stays out. The table is read as sorted
// streams: time grows with its rows, memory does not.
//
// Throws DatabaseError where the storage fails, and Error for what the plan refuses.
class LevelWalk {
 public:
  // `name` is that of a group by name, else empty.
  LevelWalk(const std::filesystem::path& transaction_database, const ExportPlan& plan,
            const ColumnDictionary& dictionary, std::string_view name,
            LockWait wait = kBusyTimeout);

  // The fields of a record in order: all of the dictionary in group 0, else those that the plan
  // does not exclude.
  std::span<const WalkedField> Fields() const { return fields_; }

  void Walk(LevelVisitor& visitor);

 private:
  const ExportPlan& plan_;
  std::string name_;
  std::vector<WalkedField> fields_;
  SQLite::Database database_;
};

// Appends the default text form of a stored value, UTF-8: 500.5, 3/14/2011, 6:10:00 AM. NULL
// appends nothing; a date or time that is not in its stored form is appended as it stands. Throws
// ConversionError for an infinite number.
void AppendCellText(const CellView& value, ColumnContent content, std::string& text);

inline bool IsNull(const CellView& cell) { return std::holds_alternative<std::monostate>(cell); }

}  // namespace vrx
