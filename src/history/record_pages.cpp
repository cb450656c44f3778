#include "history/record_pages.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <string>
#include <utility>

#include "database/schema.h"
#include "database/transaction_ranges.h"
#include "history/history_column.h"

namespace vrx {

namespace {

constexpr std::int64_t kPageLength = 32;
// A record takes about 5 kB.
constexpr std::size_t kRecordsHeld = 1024;
constexpr std::size_t kLargeGroupsHeld = 64;

constexpr int kFirst = GroupQuery::kFirstOwnParameter;

std::uint32_t GroupOf(const OutlinePlace& place) {
  return place.path.empty() ? 0 : place.path.back();
}

std::string Select() { return "SELECT rowid, " + RecordColumns(""); }

std::string SelectListed() {
  return "SELECT t.rowid, " + RecordColumns("t.") + " FROM json_each(?) AS listed LEFT JOIN " +
         std::string(kTransactionsTable) + " AS t ON t.rowid = listed.value ORDER BY listed.key";
}

}  // namespace

void RecordPages::SortBy(int column, bool ascending) {
  const auto& levels = query_.Levels();
  // The value of a level is the same all through a group.
  const bool is_level = std::any_of(levels.begin(), levels.end(), [&](const GroupLevel& level) {
    return level.column == column;
  });
  sort_column_ = is_level ? 0 : column;
  ascending_ = ascending;
  Forget();
}

void RecordPages::Forget() {
  pages_.clear();
  held_ = 0;
  large_groups_.clear();
}

const RecordPages::Record* RecordPages::Find(const OutlinePlace& place) {
  const std::uint32_t group = GroupOf(place);
  const std::int64_t number = place.record / kPageLength;
  const auto page = std::find_if(pages_.begin(), pages_.end(), [&](const Page& held) {
    return held.group == group && held.number == number;
  });
  if (page == pages_.end()) {
    return nullptr;
  }
  pages_.splice(pages_.begin(), pages_, page);
  return &page->records[static_cast<std::size_t>(place.record % kPageLength)];
}

const RecordPages::Record& RecordPages::Load(const Outline& outline, const OutlinePlace& place) {
  Page page{.group = GroupOf(place), .number = place.record / kPageLength, .records = {}};
  const std::vector<CellValue> values = outline.Values(place.path);
  const std::int64_t count = outline.RecordCount(place.path);
  const auto length =
      static_cast<std::size_t>(std::min(kPageLength, count - page.number * kPageLength));
  if (count <= kPageLength) {
    ReadSmall(page, values, length);
  } else if (LargeGroup& large = Large(page.group, values, count); IsReordered()) {
    ReadOrdered(page, large, length);
  } else if (query_.IsRanged()) {
    ReadRanged(page, large, length);
  } else {
    ReadStored(page, large, length);
  }
  page.records.resize(length, Record(kHistoryColumnCount));
  return Hold(std::move(page), place.record);
}

RecordPages::LargeGroup& RecordPages::Large(std::uint32_t group,
                                            const std::vector<CellValue>& values,
                                            std::int64_t count) {
  const auto known = std::find_if(large_groups_.begin(), large_groups_.end(),
                                  [&](const LargeGroup& large) { return large.group == group; });
  if (known != large_groups_.end()) {
    large_groups_.splice(large_groups_.begin(), large_groups_, known);
    return large_groups_.front();
  }
  large_groups_.push_front(
      {.group = group, .values = values, .places = {statements_, query_, values, count}});
  if (large_groups_.size() > kLargeGroupsHeld) {
    large_groups_.pop_back();
  }
  return large_groups_.front();
}

const RecordPages::Record& RecordPages::Hold(Page page, std::int64_t record) {
  held_ += page.records.size();
  pages_.push_front(std::move(page));
  while (held_ > kRecordsHeld && pages_.size() > 1) {
    held_ -= pages_.back().records.size();
    pages_.pop_back();
  }
  return pages_.front().records[static_cast<std::size_t>(record % kPageLength)];
}

namespace {

// The records of a query that selects the rowid ahead of all columns. `last_rowid` is left alone
// where there is none.
std::vector<RecordPages::Record> ReadRecords(SQLite::Statement& statement,
                                             std::int64_t& last_rowid) {
  std::vector<RecordPages::Record> records;
  while (statement.executeStep()) {
    last_rowid = statement.getColumn(0).getInt64();
    RecordPages::Record& record = records.emplace_back(kHistoryColumnCount);
    for (int column = 1; column <= kHistoryColumnCount; ++column) {
      record[static_cast<std::size_t>(column) - 1] = ValueOf(statement.getColumn(column));
    }
  }
  return records;
}

}  // namespace

void RecordPages::ReadSmall(Page& page, std::span<const CellValue> values, std::size_t length) {
  const std::string order = IsReordered() || query_.IsRanged()
                                ? RecordOrderText(sort_column_, ascending_)
                                : std::string(" ORDER BY rowid");
  Statements::InUse statement =
      statements_.Take(Select() + query_.From(values.size()) + order + " LIMIT ?5");
  query_.Bind(*statement, values);
  statement->bind(kFirst, static_cast<std::int64_t>(length));
  page.records = ReadRecords(*statement, page.last_rowid);
}

void RecordPages::ReadStored(Page& page, LargeGroup& large, std::size_t length) {
  const std::int64_t first = page.number * kPageLength;
  const std::optional<std::int64_t> lowest = large.places.LowestRowid(first);
  if (!lowest) {
    return;
  }
  Statements::InUse statement = statements_.Take(Select() + query_.From(large.values.size()) +
                                                 " AND rowid >= ?5 ORDER BY rowid LIMIT ?6");
  query_.Bind(*statement, large.values);
  statement->bind(kFirst, *lowest);
  statement->bind(kFirst + 1, static_cast<std::int64_t>(length));
  page.records = ReadRecords(*statement, page.last_rowid);
  if (page.records.size() == length && page.last_rowid < std::numeric_limits<std::int64_t>::max()) {
    large.places.Note(first + kPageLength, page.last_rowid + 1);
  }
}

void RecordPages::ReadRanged(Page& page, LargeGroup& large, std::size_t length) {
  if (!large.ranges) {
    large.ranges.emplace(statements_, query_, large.values);
  }
  if (large.ranges->AreStoredInTurn()) {
    ReadListed(page, large.ranges->Rowids(page.number * kPageLength, length));
  } else {
    ReadOrdered(page, large, length);
  }
}

void RecordPages::ReadOrdered(Page& page, LargeGroup& large, std::size_t length) {
  if (!large.order) {
    large.order = ReadOrder(large.values);
  }
  ReadListed(page, large.order->Slice(page.number * kPageLength, length));
}

void RecordPages::ReadListed(Page& page, std::span<const std::int64_t> rowids) {
  Statements::InUse statement = statements_.Take(SelectListed());
  statement->bind(1, JsonArray(rowids));
  page.records = ReadRecords(*statement, page.last_rowid);
}

std::unique_ptr<RecordOrder> RecordPages::ReadOrder(std::span<const CellValue> values) {
  Statements::InUse statement = statements_.Take("SELECT rowid" + query_.From(values.size()) +
                                                 RecordOrderText(sort_column_, ascending_));
  query_.Bind(*statement, values);
  auto order = std::make_unique<RecordOrder>();
  while (statement->executeStep()) {
    order->Append(statement->getColumn(0).getInt64());
  }
  return order;
}

}  // namespace vrx
