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

// The table counts its rows from 1.
constexpr std::int64_t kNoRowid = 0;

std::size_t IndexOf(const OutlinePlace& place) {
  return static_cast<std::size_t>(place.record % kPageLength);
}

std::string Select() { return "SELECT rowid, " + RecordColumns(""); }

std::string SelectListed() {
  return "SELECT t.rowid, " + RecordColumns("t.") + " FROM json_each(?) AS listed LEFT JOIN " +
         std::string(kTransactionsTable) + " AS t ON t.rowid = listed.value ORDER BY listed.key";
}

}  // namespace

void RecordPages::SortBy(RecordSort sort) {
  const auto& levels = query_.Levels();
  // The value of a level is the same all through a group.
  const bool is_level = std::any_of(levels.begin(), levels.end(), [&](const GroupLevel& level) {
    return level.column == sort.column;
  });
  sort_ = {.column = is_level ? 0 : sort.column, .ascending = sort.ascending};
  Forget();
}

void RecordPages::Forget() {
  pages_.clear();
  held_ = 0;
  large_groups_.clear();
}

const RecordPages::Record* RecordPages::Find(const OutlinePlace& place) {
  const Page* const page = FindPage(place);
  return page == nullptr ? nullptr : &page->records[IndexOf(place)];
}

const RecordPages::Record& RecordPages::Load(const Outline& outline, const OutlinePlace& place) {
  return LoadPage(outline, place).records[IndexOf(place)];
}

std::optional<std::int64_t> RecordPages::RowidAt(const Outline& outline,
                                                 const OutlinePlace& place) {
  const Page* const held = FindPage(place);
  const Page& page = held != nullptr ? *held : LoadPage(outline, place);
  const std::int64_t rowid = page.rowids[IndexOf(place)];
  return rowid == kNoRowid ? std::nullopt : std::optional(rowid);
}

std::optional<std::int64_t> RecordPages::PlaceOf(const Outline& outline, const GroupPath& path,
                                                 std::int64_t rowid) {
  const std::int64_t count = outline.RecordCount(path);
  if (count > kPageLength) {
    const OutlinePlace first{.path = path};
    return OrderOf(Large(GroupOf(first), outline.Values(path), count)).Find(rowid);
  }
  const std::vector<std::int64_t>& rowids = LoadPage(outline, {.path = path}).rowids;
  const auto found = std::find(rowids.begin(), rowids.end(), rowid);
  return found == rowids.end() ? std::nullopt : std::optional(found - rowids.begin());
}

const RecordPages::Page* RecordPages::FindPage(const OutlinePlace& place) {
  const std::uint32_t group = GroupOf(place);
  const std::int64_t number = place.record / kPageLength;
  const auto page = std::find_if(pages_.begin(), pages_.end(), [&](const Page& held) {
    return held.group == group && held.number == number;
  });
  if (page == pages_.end()) {
    return nullptr;
  }
  pages_.splice(pages_.begin(), pages_, page);
  return &*page;
}

const RecordPages::Page& RecordPages::LoadPage(const Outline& outline, const OutlinePlace& place) {
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
  page.rowids.resize(length, kNoRowid);
  return Hold(std::move(page));
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

const RecordPages::Page& RecordPages::Hold(Page page) {
  held_ += page.records.size();
  pages_.push_front(std::move(page));
  while (held_ > kRecordsHeld && pages_.size() > 1) {
    held_ -= pages_.back().records.size();
    pages_.pop_back();
  }
  return pages_.front();
}

namespace {

// The records of a query that selects the rowid before all columns, with their rowids: NULL, of a
// record that is listed and gone, reads as kNoRowid.
std::vector<RecordPages::Record> ReadRecords(SQLite::Statement& statement,
                                             std::vector<std::int64_t>& rowids) {
  std::vector<RecordPages::Record> records;
  while (statement.executeStep()) {
    rowids.push_back(statement.getColumn(0).getInt64());
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
                                ? RecordOrderText(sort_.column, sort_.ascending)
                                : std::string(" ORDER BY rowid");
  Statements::InUse statement =
      statements_.Take(Select() + query_.From(values.size()) + order + " LIMIT ?5");
  query_.Bind(*statement, values);
  statement->bind(kFirst, static_cast<std::int64_t>(length));
  page.records = ReadRecords(*statement, page.rowids);
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
  page.records = ReadRecords(*statement, page.rowids);
  if (page.records.size() == length &&
      page.rowids.back() < std::numeric_limits<std::int64_t>::max()) {
    large.places.Note(first + kPageLength, page.rowids.back() + 1);
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
  ReadListed(page, OrderOf(large).Slice(page.number * kPageLength, length));
}

RecordOrder& RecordPages::OrderOf(LargeGroup& large) {
  if (!large.order) {
    large.order = ReadOrder(large.values);
  }
  return *large.order;
}

void RecordPages::ReadListed(Page& page, std::span<const std::int64_t> rowids) {
  Statements::InUse statement = statements_.Take(SelectListed());
  statement->bind(1, JsonArray(rowids));
  page.records = ReadRecords(*statement, page.rowids);
}

std::unique_ptr<RecordOrder> RecordPages::ReadOrder(std::span<const CellValue> values) {
  Statements::InUse statement = statements_.Take("SELECT rowid" + query_.From(values.size()) +
                                                 RecordOrderText(sort_.column, sort_.ascending));
  query_.Bind(*statement, values);
  auto order = std::make_unique<RecordOrder>();
  while (statement->executeStep()) {
    order->Append(statement->getColumn(0).getInt64());
  }
  return order;
}

}  // namespace vrx
