#include "history/record_pages.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <limits>
#include <optional>
#include <string>
#include <utility>

#include <SQLiteCpp/Column.h>
#include <SQLiteCpp/Statement.h>

#include "database/schema.h"
#include "database/transactions.h"
#include "history/columns.h"

namespace vrx {
namespace {

constexpr std::size_t kBlockLength = 8192;

// Number of records between two marks of a scan.
constexpr std::int64_t kStride = 4096;

constexpr std::int64_t kLowest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kHighest = std::numeric_limits<std::int64_t>::max();

// Unsigned, because the distance of two rowids can exceed the range of a signed number.
std::uint64_t Distance(std::int64_t from, std::int64_t to) {
  return static_cast<std::uint64_t>(to) - static_cast<std::uint64_t>(from);
}

constexpr std::int64_t kPageLength = 32;
// A record takes about 5 kB.
constexpr std::size_t kRecordsHeld = 1024;
constexpr std::size_t kLargeGroupsHeld = 64;

constexpr int kFirst = GroupQuery::kFirstOwnParameter;

std::uint32_t GroupOf(const OutlinePlace& place) {
  return place.path.empty() ? 0 : place.path.back();
}

// Rowids of the table start at 1.
constexpr std::int64_t kNoRowid = 0;

std::size_t IndexOf(const OutlinePlace& place) {
  return static_cast<std::size_t>(place.record % kPageLength);
}

std::string Select() { return "SELECT rowid, " + RecordColumns(""); }

std::string SelectListed() {
  return "SELECT t.rowid, " + RecordColumns("t.") + " FROM json_each(?) AS listed LEFT JOIN " +
         std::string(kTransactionsTable) + " AS t ON t.rowid = listed.value ORDER BY listed.key";
}

// Reads records of a query that selects the rowid and then all columns. The rowid of a deleted
// record is NULL and becomes kNoRowid.
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

void RecordOrder::Append(std::int64_t rowid) {
  if (last_.rowids.size() == kBlockLength) {
    StoreLast();
  }
  last_.rowids.push_back(rowid);
}

void RecordOrder::StoreLast() {
  if (!file_) {
    // Without a name SQLite creates a temporary file, which it deletes when the database is closed.
    file_.emplace("", SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE);
    file_->exec("PRAGMA journal_mode=OFF; PRAGMA cache_size=-256");  // kB
    file_->exec("CREATE TABLE Block (Number INTEGER PRIMARY KEY, Rowids BLOB)");
  }
  SQLite::Statement insert(*file_, "INSERT INTO Block VALUES (?, ?)");
  insert.bind(1, last_.number);
  insert.bindNoCopy(2, last_.rowids.data(),
                    static_cast<int>(last_.rowids.size() * sizeof(std::int64_t)));
  insert.exec();
  ++last_.number;
  last_.rowids.clear();
}

const RecordOrder::Block& RecordOrder::BlockOf(std::int64_t number) {
  if (number >= last_.number) {
    return last_;
  }
  if (number != loaded_.number) {
    SQLite::Statement query(*file_, "SELECT Rowids FROM Block WHERE Number = ?");
    query.bind(1, number);
    query.executeStep();
    const SQLite::Column rowids = query.getColumn(0);
    Block block{.number = number, .rowids = {}};
    block.rowids.resize(static_cast<std::size_t>(rowids.getBytes()) / sizeof(std::int64_t));
    std::memcpy(block.rowids.data(), rowids.getBlob(), block.rowids.size() * sizeof(std::int64_t));
    loaded_ = std::move(block);
  }
  return loaded_;
}

std::optional<std::int64_t> RecordOrder::Find(std::int64_t rowid) {
  for (std::int64_t number = 0; number <= last_.number; ++number) {
    const std::vector<std::int64_t>& rowids = BlockOf(number).rowids;
    const auto found = std::find(rowids.begin(), rowids.end(), rowid);
    if (found != rowids.end()) {
      return number * static_cast<std::int64_t>(kBlockLength) + (found - rowids.begin());
    }
  }
  return std::nullopt;
}

std::vector<std::int64_t> RecordOrder::Slice(std::int64_t first, std::size_t length) {
  std::vector<std::int64_t> slice;
  while (slice.size() < length) {
    const auto place = static_cast<std::size_t>(first) + slice.size();
    const Block& block = BlockOf(static_cast<std::int64_t>(place / kBlockLength));
    const std::size_t offset = place - static_cast<std::size_t>(block.number) * kBlockLength;
    if (offset >= block.rowids.size()) {
      break;
    }
    slice.push_back(block.rowids[offset]);
  }
  return slice;
}

RecordPlaces::RecordPlaces(Statements& statements, const GroupQuery& query,
                           std::vector<CellValue> group, std::int64_t count)
    : statements_(statements), query_(query), group_(std::move(group)), count_(count) {}

std::optional<std::int64_t> RecordPlaces::LowestRowid(std::int64_t place) {
  if (place == 0) {
    return kLowest;
  }
  if (place == noted_.first) {
    return noted_.second;
  }
  if (marks_.empty()) {
    MarkEnds();
  }
  const auto above = marks_.lower_bound(place);
  if (above == marks_.begin() || above == marks_.end()) {
    return std::nullopt;
  }
  const Mark below = Below(place);
  if (Distance(below.second, above->second) == Distance(below.first, above->first)) {
    return below.second + (place - below.first);  // no gap between them
  }
  return place - below.first <= above->first - place ? Walk(below, place, Direction::kUp)
                                                     : Walk(*above, place, Direction::kDown);
}

void RecordPlaces::MarkEnds() {
  const PeriodRows* const period = query_.Within();
  const std::int64_t lowest = period == nullptr ? kLowest : period->rows.Lowest();
  const std::int64_t highest = period == nullptr ? kHighest : period->rows.Highest();
  const std::optional<std::int64_t> first = Skip(lowest, 0, Direction::kUp);
  const std::optional<std::int64_t> last = Skip(highest, 0, Direction::kDown);
  if (first && last) {
    marks_.emplace(0, *first);
    marks_.emplace(count_ - 1, *last);
  }
}

RecordPlaces::Mark RecordPlaces::Below(std::int64_t place) const {
  const Mark below = *std::prev(marks_.lower_bound(place));
  return noted_.first > below.first && noted_.first < place ? Mark(noted_) : below;
}

std::optional<std::int64_t> RecordPlaces::Walk(Mark from, std::int64_t place, Direction direction) {
  std::int64_t at = from.first;
  std::optional<std::int64_t> rowid = from.second;
  while (rowid && at != place) {
    const std::int64_t records = std::min(kStride, std::abs(place - at));
    rowid = Skip(*rowid, records, direction);
    at += direction == Direction::kUp ? records : -records;
    if (rowid && records == kStride) {
      marks_.emplace(at, *rowid);
    }
  }
  return rowid;
}

// Skips a number of records from the first one at or after `rowid` and returns the rowid there.
std::optional<std::int64_t> RecordPlaces::Skip(std::int64_t rowid, std::int64_t records,
                                               Direction direction) {
  const std::string order = direction == Direction::kUp ? " AND rowid >= ?5 ORDER BY rowid"
                                                        : " AND rowid <= ?5 ORDER BY rowid DESC";
  Statements::InUse statement =
      statements_.Take("SELECT rowid" + query_.From(group_.size()) + order + " LIMIT 1 OFFSET ?6");
  query_.Bind(*statement, group_);
  statement->bind(GroupQuery::kFirstOwnParameter, rowid);
  statement->bind(GroupQuery::kFirstOwnParameter + 1, records);
  return statement->executeStep() ? std::optional(statement->getColumn(0).getInt64())
                                  : std::nullopt;
}

RecordRanges::RecordRanges(Statements& statements, const GroupQuery& query,
                           std::vector<CellValue> group)
    : statements_(statements), query_(query), group_(std::move(group)) {
  for (const std::int64_t number : query_.Ranges()) {
    const std::optional<std::int64_t> first = RowidAt(End::kFirst, number);
    const std::optional<std::int64_t> last = first ? RowidAt(End::kLast, number) : std::nullopt;
    if (last) {
      ranges_.push_back({.number = number, .first_rowid = *first, .last_rowid = *last});
    }
  }
  std::sort(ranges_.begin(), ranges_.end(), [](const Range& one, const Range& other) {
    return one.first_rowid < other.first_rowid;
  });
  const auto overlap = std::adjacent_find(
      ranges_.begin(), ranges_.end(),
      [](const Range& one, const Range& next) { return next.first_rowid < one.last_rowid; });
  stored_in_turn_ = overlap == ranges_.end();
}

// One search of an index.
std::optional<std::int64_t> RecordRanges::RowidAt(End end, std::int64_t range) const {
  Statements::InUse statement =
      statements_.Take("SELECT rowid" + query_.FromRange(group_.size()) + " ORDER BY rowid" +
                       (end == End::kFirst ? "" : " DESC") + " LIMIT 1");
  query_.BindRange(*statement, group_, range);
  return statement->executeStep() ? std::optional(statement->getColumn(0).getInt64())
                                  : std::nullopt;
}

std::int64_t RecordRanges::CountOf(Range& range) const {
  if (!range.records) {
    Statements::InUse statement =
        statements_.Take("SELECT count(*)" + query_.FromRange(group_.size()));
    query_.BindRange(*statement, group_, range.number);
    statement->executeStep();
    range.records = statement->getColumn(0).getInt64();
  }
  return *range.records;
}

std::vector<std::int64_t> RecordRanges::Rowids(std::int64_t first, std::size_t length) {
  std::vector<std::int64_t> rowids;
  const std::int64_t end = first + static_cast<std::int64_t>(length);
  std::int64_t place = 0;  // of the range's first record
  for (Range& range : ranges_) {
    if (place >= end) {
      break;
    }
    const std::int64_t records = CountOf(range);
    const std::int64_t offset = std::max<std::int64_t>(first - place, 0);
    if (const std::int64_t count = std::min(records, end - place) - offset; count > 0) {
      AppendRowids(range, offset, count, rowids);
    }
    place += records;
  }
  return rowids;
}

void RecordRanges::AppendRowids(const Range& range, std::int64_t offset, std::int64_t count,
                                std::vector<std::int64_t>& rowids) const {
  Statements::InUse statement = statements_.Take("SELECT rowid" + query_.FromRange(group_.size()) +
                                                 " ORDER BY rowid LIMIT ?5 OFFSET ?6");
  query_.BindRange(*statement, group_, range.number);
  statement->bind(GroupQuery::kFirstOwnParameter, count);
  statement->bind(GroupQuery::kFirstOwnParameter + 1, offset);
  while (statement->executeStep()) {
    rowids.push_back(statement->getColumn(0).getInt64());
  }
}

void RecordPages::SortBy(RecordSort sort) {
  const auto& levels = query_.Levels();
  // The value of a level is equal within a group.
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
  } else if (values.empty() && query_.Within() != nullptr) {
    ReadListed(page, query_.Within()->rows.Slice(page.number * kPageLength, length));
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
