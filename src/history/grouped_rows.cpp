#include "history/grouped_rows.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <unordered_map>
#include <utility>
#include <vector>

#include <SQLiteCpp/Statement.h>
#include <SQLiteCpp/Transaction.h>
#include <sqlite3.h>

#include "base/undo.h"
#include "database/connection.h"
#include "database/exact_sum.h"
#include "database/schema.h"
#include "database/transactions.h"
#include "history/columns.h"
#include "history/data_group.h"
#include "history/found_rows.h"
#include "history/group_query.h"
#include "history/group_totals.h"
#include "history/outline.h"
#include "history/period_rows.h"
#include "history/record_pages.h"

namespace vrx {
namespace {

// What is summed.
struct Summed {
  std::vector<int> columns = {kTargetColumn, kActualBatchColumn, kActualFeedColumn};
  bool compared = false;
};

// The highest rowid; rows stored later get higher ones. 0 for an empty table.
std::int64_t LastRow(SQLite::Database& database) {
  SQLite::Statement query(database, "SELECT max(rowid) FROM " + std::string(kTransactionsTable));
  query.executeStep();
  return query.getColumn(0).getInt64();
}

// Runs `body` in one read transaction, so that all its queries see the same rows.
template <typename Body>
auto Read(SQLite::Database& database, Body&& body) {
  return WithDatabaseErrors(database, [&] {
    std::optional<SQLite::Transaction> reading;
    if (sqlite3_get_autocommit(database.getHandle()) != 0) {
      reading.emplace(database);
    }
    return std::forward<Body>(body)();
  });
}

// Everything of the shown group; the members refer to each other.
struct View {
  View(SQLite::Database& database, const DataGroup& group, std::string_view name,
       const Summed& summed, const std::shared_ptr<const PeriodRows>& period = {})
      : statements(database),
        query(group, name),
        outline(static_cast<int>(query.Levels().size())),
        pages(statements, query),
        totals(statements, query, group, summed.columns),
        sliced(statements, query, group) {
    sliced.SetColumns(summed.columns, summed.compared);
    if (period) {
      filter.emplace(database, period->rows);
      query.LimitTo(period, filter->Condition());
    }
  }

  std::optional<RowFilter> filter;  // used by the statements
  Statements statements;
  GroupQuery query;
  Outline outline;
  RecordPages pages;
  GroupTotals totals;
  SlicedTotals sliced;
  std::optional<FoundRows> found;
  std::int64_t undated = 0;
};

}  // namespace

class GroupedRows::Impl {
 public:
  explicit Impl(SQLite::Database& database) : database_(database) {
    RegisterExactSum(database);
    view_ = std::make_unique<View>(database_, DataGroups().front(), "", summed_);
    view_->outline.SetRecordCount({}, 0);
  }

  void Show(const DataGroup& group, std::string_view name, const Period& period) {
    view_ = Read(database_, [&] {
      const std::shared_ptr<const PeriodRows> rows = RowsOf(period);
      auto view = std::make_unique<View>(database_, group, name, summed_, rows);
      if (rows) {
        view->undated = CountUndated(*rows, GroupQuery(group, name));
      }
      FindRanges(view->query);
      Learn(*view, {});
      view->query.EndAt(LastRow(database_));
      return view;
    });
  }

  [[nodiscard]] const Outline& Rows() const { return view_->outline; }
  [[nodiscard]] std::int64_t UndatedCount() const { return view_->undated; }

  HistoryRow Row(std::int64_t row, SumsWanted wanted) {
    const OutlinePlace place = Rows().Find(row);
    HistoryRow answer{.kind = place.kind, .depth = place.depth};
    if (place.kind == HistoryRowKind::kRecord) {
      answer.cells = Record(place);
      return answer;
    }
    answer.group = Rows().Values(place.path).back();
    if (place.kind == HistoryRowKind::kTotal) {
      SetTotals(answer, place.path, wanted);
      return answer;
    }
    answer.open = Rows().IsOpen(place.path);
    const GroupSums* const known =
        answer.open || wanted == SumsWanted::kAll ? nullptr : view_->sliced.Find(place.path);
    if (known != nullptr) {
      answer.cells = known->cells;
      answer.comparisons = known->comparisons;
    }
    return answer;
  }

  void SetOpen(std::int64_t row, bool open) {
    if (row < 1 || row > Rows().RowCount()) {
      return;
    }
    const OutlinePlace place = Rows().Find(row);
    if (place.kind != HistoryRowKind::kGroup || Rows().IsOpen(place.path) == open) {
      return;
    }
    if (open) {
      Read(database_, [&] { Open(place.path); });
    } else {
      view_->outline.SetOpen(place.path, false);
    }
  }

  void OpenAll() {
    if (Rows().IsWhole()) {
      view_->outline.SetAllOpen(true);
      return;
    }
    view_->outline =
        Read(database_, [&] { return ReadWholeOutline(view_->statements, view_->query); });
    view_->pages.Forget();
    view_->totals.Forget();
    view_->sliced.Forget();
  }

  void CloseAll() { view_->outline.SetAllOpen(false); }

  std::int64_t SortBy(int column, bool ascending, std::int64_t row) {
    if (column != 0) {
      HistoryColumnAt(column);
    }
    view_->found.reset();
    const RecordSort sort{.column = column, .ascending = ascending};
    if (row < 1 || row > Rows().RowCount()) {
      view_->pages.SortBy(sort);
      return row;
    }
    return SortAndFollow(sort, row);
  }

  std::int64_t OpenNewest(std::int64_t count) {
    return Read(database_, [&]() -> std::int64_t {
      Statements::InUse first = view_->statements.Take(view_->query.FirstAfter());
      view_->query.BindFirstAfter(*first, LastRow(database_) - count);
      if (!first->executeStep()) {
        return 0;
      }
      RowPlace place{.rowid = first->getColumn(0).getInt64()};
      for (int level = 1; level <= static_cast<int>(view_->query.Levels().size()); ++level) {
        place.groups.push_back(ValueOf(first->getColumn(level)));
      }
      return OpenNow(place, false);
    });
  }

  void Find(const CellTest* test, std::vector<int> columns) {
    view_->found.reset();
    if (test != nullptr) {
      view_->found.emplace(database_, view_->query, *test, std::move(columns), view_->pages.Sort());
    }
  }
  [[nodiscard]] std::optional<FoundRows>& Found() { return view_->found; }

  std::int64_t OpenTo(const RowPlace& place, bool and_itself) {
    return Read(database_, [&] { return OpenNow(place, and_itself); });
  }

  RowPlace PlaceOf(std::int64_t row) {
    const OutlinePlace place = Rows().Find(row);
    RowPlace answer{.kind = place.kind, .groups = Rows().Values(place.path)};
    if (place.kind != HistoryRowKind::kRecord) {
      return answer;
    }
    return Read(database_, [&] {
      answer.rowid = view_->pages.RowidAt(Rows(), place).value_or(0);
      Statements::InUse sorted =
          view_->statements.Take("SELECT " + SortExpression(view_->pages.Sort().column) + " FROM " +
                                 std::string(kTransactionsTable) + " WHERE rowid = ?");
      sorted->bind(1, answer.rowid);
      answer.sorted = sorted->executeStep() ? ValueOf(sorted->getColumn(0)) : CellValue();
      return answer;
    });
  }

  SumsRead ReadSums(std::int64_t first, std::int64_t last, std::int64_t records) {
    std::vector<GroupPath> unknown;
    for (std::int64_t row = std::max<std::int64_t>(first, 1);
         row <= std::min(last, Rows().RowCount()); ++row) {
      OutlinePlace place = Rows().Find(row);
      if (WaitsForSums(place)) {
        unknown.push_back(std::move(place.path));
      }
    }
    SumsRead result;
    if (!unknown.empty()) {
      Read(database_, [&] {
        for (const GroupPath& path : unknown) {
          if (records > 0) {
            records -= view_->sliced.Read(Rows(), path, records);
          }
          const bool known = view_->sliced.Find(path) != nullptr;
          result.any = result.any || known;
          result.more = result.more || !known;
        }
      });
    }
    return result;
  }

  void SumColumns(Summed summed) {
    view_->totals.SetColumns(summed.columns);
    view_->sliced.SetColumns(summed.columns, summed.compared);
    summed_ = std::move(summed);
  }

 private:
  // The groups around it are open.
  void Open(const GroupPath& path) {
    if (!Rows().IsKnown(path)) {
      Learn(*view_, path);
    }
    if (!Rows().IsOpen(path)) {
      view_->outline.SetOpen(path, true);
    }
  }

  // 0 if there is no such row, because it was stored or deleted after the view was read.
  std::int64_t OpenNow(const RowPlace& place, bool and_itself) {
    const bool is_record = place.kind == HistoryRowKind::kRecord;
    GroupPath path;
    for (const CellValue& value : place.groups) {
      const std::optional<GroupPath> group = Rows().FindGroup(path, value);
      if (!group) {
        return 0;
      }
      path = *group;
      if (is_record || and_itself || path.size() < place.groups.size()) {
        Open(path);
      }
    }
    if (!is_record) {
      return Rows().RowOf(path);
    }
    const std::optional<std::int64_t> record =
        place.record < 0 ? PlaceOf(path, place.rowid) : place.record;
    return record ? Rows().RowOf(path, *record) : 0;
  }

  // In stored order it takes no list of all records, but counts those after it.
  std::optional<std::int64_t> PlaceOf(const GroupPath& path, std::int64_t rowid) {
    if (view_->pages.Sort().column != 0) {
      return view_->pages.PlaceOf(Rows(), path, rowid);
    }
    Statements::InUse later = view_->statements.Take(
        "SELECT count(*)" + view_->query.From(path.size()) + " AND rowid >= " + "?" +
        std::to_string(GroupQuery::kFirstOwnParameter));
    view_->query.Bind(*later, Rows().Values(path));
    later->bind(GroupQuery::kFirstOwnParameter, rowid);
    later->executeStep();
    return Rows().RecordCount(path) - later->getColumn(0).getInt64();
  }

  // A number that differs after any change of the database, by this connection or another one.
  std::pair<std::int64_t, std::int64_t> Version() {
    SQLite::Statement query(database_, "PRAGMA data_version");
    query.executeStep();
    return {query.getColumn(0).getInt64(), sqlite3_total_changes64(database_.getHandle())};
  }

  // nullptr for all days.
  std::shared_ptr<const PeriodRows> RowsOf(const Period& period) {
    if (period.IsAll()) {
      return nullptr;
    }
    const std::pair<std::int64_t, std::int64_t> version = Version();
    if (!period_rows_ || period_rows_->period != period || period_version_ != version) {
      period_rows_ = std::make_shared<PeriodRows>(ReadPeriodRows(database_, period));
      period_version_ = version;
    }
    return period_rows_;
  }

  // `query` is that of the group with all days.
  std::int64_t CountUndated(const PeriodRows& rows, const GroupQuery& query) {
    if (rows.undated.Count() == 0) {
      return 0;
    }
    const RowFilter filter(database_, rows.undated);
    SQLite::Statement count(database_, "SELECT count(*)" + query.From(0) + filter.Condition());
    query.Bind(count, {});
    count.executeStep();
    return count.getColumn(0).getInt64();
  }

  // The record stays in its group.
  std::int64_t SortAndFollow(const RecordSort& sort, std::int64_t row) {
    RecordPages& pages = view_->pages;
    const OutlinePlace place = Rows().Find(row);
    if (place.kind != HistoryRowKind::kRecord) {
      pages.SortBy(sort);
      return row;
    }
    const RecordSort before = pages.Sort();
    const auto sorted = [&] {
      return Read(database_, [&] {
        const std::optional<std::int64_t> rowid = pages.RowidAt(Rows(), place);
        pages.SortBy(sort);
        const std::optional<std::int64_t> now =
            rowid ? pages.PlaceOf(Rows(), place.path, *rowid) : std::nullopt;
        return row + now.value_or(place.record) - place.record;
      });
    };
    return RunOrUndo(sorted, [&] { pages.SortBy(before); });
  }

  void FindRanges(GroupQuery& query) {
    const std::string columns = query.RangedColumns();
    if (columns.empty()) {
      return;
    }
    if (std::optional<std::vector<std::int64_t>> ranges =
            ReadTransactionRanges(database_, columns)) {
      query.SearchBy(*std::move(ranges));
    }
  }

  // Reads the contents of a group.
  static void Learn(View& view, const GroupPath& path) {
    const std::vector<CellValue> values = view.outline.Values(path);
    if (view.outline.IsInnermost(path)) {
      view.outline.SetRecordCount(path, CountRecords(view.statements, view.query, values));
    } else {
      view.outline.SetGroups(path, ReadLevelValues(view.statements, view.query, values));
    }
  }

  std::vector<CellValue> Record(const OutlinePlace& place) {
    const RecordPages::Record* held = view_->pages.Find(place);
    return held != nullptr ? *held : Read(database_, [&]() -> RecordPages::Record {
      return view_->pages.Load(Rows(), place);
    });
  }

  // Of a total row. Reads only what is not known, and nothing for the screen.
  void SetTotals(HistoryRow& row, const GroupPath& path, SumsWanted wanted) {
    const GroupSums* sums = view_->sliced.Find(path);
    if (sums == nullptr && wanted == SumsWanted::kAll && summed_.compared) {
      sums = Read(database_, [&] { return &view_->sliced.Load(Rows(), path); });
    }
    if (sums != nullptr) {
      row.cells = view_->totals.Of(path, *sums);
      row.comparisons = sums->comparisons;
    } else if (std::optional<std::vector<CellValue>> cells = view_->totals.Find(path)) {
      row.cells = *std::move(cells);
    } else if (wanted == SumsWanted::kAll) {
      row.cells = Read(database_, [&] { return view_->totals.Load(Rows(), path); });
    }
  }

  // Whether the row has sums on the screen that are not known yet.
  [[nodiscard]] bool WaitsForSums(const OutlinePlace& place) const {
    if (place.kind == HistoryRowKind::kRecord || view_->sliced.Find(place.path) != nullptr) {
      return false;
    }
    return place.kind == HistoryRowKind::kGroup
               ? !Rows().IsOpen(place.path)
               : summed_.compared || !view_->totals.Knows(place.path);
  }

  SQLite::Database& database_;
  Summed summed_;
  std::shared_ptr<const PeriodRows> period_rows_;
  std::pair<std::int64_t, std::int64_t> period_version_;
  std::unique_ptr<View> view_;
};

GroupedRows::GroupedRows(SQLite::Database& database) : impl_(std::make_unique<Impl>(database)) {}
GroupedRows::~GroupedRows() = default;
GroupedRows::GroupedRows(GroupedRows&&) noexcept = default;
GroupedRows& GroupedRows::operator=(GroupedRows&&) noexcept = default;

void GroupedRows::Show(const DataGroup& group, std::string_view name, const Period& period) {
  impl_->Show(group, name, period);
}
std::int64_t GroupedRows::UndatedCount() const { return impl_->UndatedCount(); }
std::int64_t GroupedRows::RowCount() const { return impl_->Rows().RowCount(); }
HistoryRow GroupedRows::Row(std::int64_t row, SumsWanted wanted) { return impl_->Row(row, wanted); }
HistoryRowKind GroupedRows::KindOf(std::int64_t row) { return impl_->Rows().Find(row).kind; }
bool GroupedRows::ShowsRecords() const { return impl_->Rows().ShowsRecords(); }
void GroupedRows::Open(std::int64_t row) { impl_->SetOpen(row, true); }
void GroupedRows::Close(std::int64_t row) { impl_->SetOpen(row, false); }
void GroupedRows::OpenAll() { impl_->OpenAll(); }
void GroupedRows::CloseAll() { impl_->CloseAll(); }
std::int64_t GroupedRows::SortBy(int column, bool ascending, std::int64_t row) {
  return impl_->SortBy(column, ascending, row);
}
std::int64_t GroupedRows::OpenNewest(std::int64_t count) { return impl_->OpenNewest(count); }
SumsRead GroupedRows::ReadSums(std::int64_t first, std::int64_t last, std::int64_t records) {
  return impl_->ReadSums(first, last, records);
}
void GroupedRows::SumColumns(std::vector<int> columns, bool compared) {
  impl_->SumColumns({.columns = std::move(columns), .compared = compared});
}
void GroupedRows::Find(const CellTest* test, std::vector<int> columns) {
  impl_->Find(test, std::move(columns));
}
FoundRows* GroupedRows::Found() const { return impl_->Found() ? &*impl_->Found() : nullptr; }
std::int64_t GroupedRows::OpenTo(const RowPlace& place, bool and_itself) {
  return impl_->OpenTo(place, and_itself);
}
RowPlace GroupedRows::PlaceOf(std::int64_t row) { return impl_->PlaceOf(row); }
std::int64_t GroupedRows::FirstGroupBeside(
    std::int64_t row, const std::function<bool(const CellValue&)>& condition) const {
  return impl_->Rows().FirstGroupBeside(row, condition);
}

}  // namespace vrx
