#include "export/level_walk.h"

#include <algorithm>
#include <utility>

#include <SQLiteCpp/Transaction.h>

#include "base/error.h"
#include "database/connection.h"
#include "database/exact_sum.h"
#include "database/transaction_ranges.h"
#include "database/translated.h"
#include "export/cell_text.h"
#include "export/level_queries.h"
#include "export/row_reader.h"
#include "history/data_group.h"

namespace vrx {
namespace {

// What one connection may hold in memory, in KiB: its pages, and as much again for each of the two
// sorts that are under way; the rest of a sort goes to temporary files.
constexpr const char* kBoundedMemory = "PRAGMA cache_size=-16384; PRAGMA temp_store=FILE";

std::vector<WalkedField> MakeFields(const ExportPlan& plan, const ColumnDictionary& dictionary) {
  std::vector<WalkedField> fields;
  for (std::string& field : BuildFieldList(dictionary, plan.excluded)) {
    const ColumnContent content = HistoryColumnAt(HistoryColumnOfField(field)).content;
    fields.push_back({std::move(field), content});
  }
  return fields;
}

std::vector<std::string> Names(std::span<const WalkedField> fields) {
  std::vector<std::string> names;
  for (const WalkedField& field : fields) {
    names.push_back(field.name);
  }
  return names;
}

// The rows of a group by name: how they are found, and what the queries are told for it.
struct PickedRows {
  NameSearch search = NameSearch::kInTable;
  std::vector<std::string> values;
};

PickedRows PickRows(SQLite::Database& database, const ExportPlan& plan, const std::string& name) {
  const std::string_view column = DataGroups()[static_cast<std::size_t>(plan.group)].named_column;
  if (column.empty()) {
    return {};
  }
  const auto ranges = ReadTransactionRanges(database, column);
  return ranges ? PickedRows{NameSearch::kInRanges, {name, JsonArray(*ranges)}}
                : PickedRows{NameSearch::kInTable, {name}};
}

bool IsNull(const CellView& cell) { return std::holds_alternative<std::monostate>(cell); }

// The sums of the innermost groups, in the order in which the records open them.
class SumStream {
 public:
  SumStream(SQLite::Database& database, const ExportPlan& plan, const PickedRows& picked)
      : plan_(plan),
        fields_(SummedFields(plan)),
        rows_(database, LevelSumQuery(plan, picked.search), picked.values),
        sums_(plan.weights.size()) {}

  // Of the group that the row of the records opens.
  std::span<const GroupSum> For(const RowReader& record) {
    do {
      if (!rows_.Next()) {
        throw Error("the rows of the table changed while they were summed");
      }
    } while (!StandsAt(record));
    const std::vector<ExportWeight>& weights = Weights(record);
    for (std::size_t at = 0; at < weights.size(); ++at) {
      sums_[at] = {&weights[at], Sum(weights[at].field)};
    }
    return sums_;
  }

 private:
  bool StandsAt(const RowReader& record) const {
    for (std::size_t depth = 0; depth < plan_.levels.size(); ++depth) {
      if (rows_.Cell(depth) != record.Cell(depth)) {
        return false;
      }
    }
    return true;
  }

  const std::vector<ExportWeight>& Weights(const RowReader& record) const {
    const bool batch = record.Cell(plan_.levels.size() - 1) == CellView(kBatchType);
    return plan_.fed_weights.empty() || batch ? plan_.weights : plan_.fed_weights;
  }

  std::optional<double> Sum(std::string_view field) const {
    // Nothing equals a NULL, so no row is summed for it; an "or" still finds those of the user.
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

// A group that is open, with the text of its value: the row it came from is gone.
struct OpenedGroup {
  CellView key;
  std::string text;
  WalkedGroup group;
};

class Walker {
 public:
  Walker(SQLite::Database& database, const ExportPlan& plan, std::span<const std::string> fields,
         const PickedRows& picked, LevelVisitor& visitor)
      : plan_(plan),
        visitor_(visitor),
        rows_(database, LevelRecordQuery(plan, fields, picked.search), picked.values),
        groups_(plan.levels.size()),
        cells_(fields.size()) {
    if (!plan.levels.empty()) {
      sums_.emplace(database, plan, picked);
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
  // How many groups stand around the row. It is no record below them when one of its values is
  // NULL.
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

  // Tells the row by the value of its next level.
  [[noreturn]] void Refuse(std::size_t depth) const {
    std::string which;
    if (depth + 1 < plan_.levels.size()) {
      which = " of " + std::string(plan_.levels[depth + 1].field) + " ";
      AppendCellText(rows_.Cell(depth + 1), ColumnContent::kNumber, which);
    }
    throw Error("a row" + which + " has no " + std::string(plan_.levels[depth].field) +
                ": it cannot be exported by it");
  }

  std::size_t LevelsKept(std::size_t depth) const {
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
  std::vector<OpenedGroup> groups_;
  std::size_t open_ = 0;
  std::vector<CellView> cells_;
  bool complete_ = false;  // the row is a record below the innermost level
};

}  // namespace

LevelWalk::LevelWalk(const std::filesystem::path& transaction_database, const ExportPlan& plan,
                     const ColumnDictionary& dictionary, std::string_view name, LockWait wait)
    : plan_(plan),
      name_(name),
      fields_(MakeFields(plan, dictionary)),
      database_(OpenDatabase(transaction_database, Access::kRead, wait)) {
  if (fields_.empty()) {
    throw Error("the data group shows no columns to export");
  }
  Translated(database_, [&] { database_.exec(kBoundedMemory); });
  RegisterExactSum(database_);
}

void LevelWalk::Walk(LevelVisitor& visitor) {
  Translated(database_, [&] {
    const SQLite::Transaction snapshot(database_);
    Walker(database_, plan_, Names(fields_), PickRows(database_, plan_, name_), visitor).Walk();
  });
}

}  // namespace vrx
