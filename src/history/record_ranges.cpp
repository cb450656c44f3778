#include "history/record_ranges.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <utility>

namespace vrx {

RecordRanges::RecordRanges(Statements& statements, const GroupQuery& query,
                           std::vector<CellValue> group)
    : statements_(statements), query_(query), group_(std::move(group)) {
  const std::string text =
      "SELECT count(*), min(rowid), max(rowid)" + query_.FromRange(group_.size());
  for (const std::int64_t number : query_.Ranges()) {
    Statements::InUse statement = statements_.Take(text);
    query_.BindRange(*statement, group_, number);
    statement->executeStep();
    if (const std::int64_t records = statement->getColumn(0).getInt64(); records > 0) {
      ranges_.push_back({.number = number,
                         .first_rowid = statement->getColumn(1).getInt64(),
                         .last_rowid = statement->getColumn(2).getInt64(),
                         .records = records,
                         .place = 0});
    }
  }
  std::sort(ranges_.begin(), ranges_.end(), [](const Range& one, const Range& other) {
    return one.first_rowid < other.first_rowid;
  });
  const auto overlap = std::adjacent_find(
      ranges_.begin(), ranges_.end(),
      [](const Range& one, const Range& next) { return next.first_rowid < one.last_rowid; });
  stored_in_turn_ = overlap == ranges_.end();
  std::int64_t place = 0;
  for (Range& range : ranges_) {
    range.place = std::exchange(place, place + range.records);
  }
}

std::vector<std::int64_t> RecordRanges::Rowids(std::int64_t first, std::size_t length) const {
  std::vector<std::int64_t> rowids;
  auto range =
      std::upper_bound(ranges_.begin(), ranges_.end(), first,
                       [](std::int64_t place, const Range& other) { return place < other.place; });
  if (range != ranges_.begin()) {
    --range;
  }
  const std::int64_t end = first + static_cast<std::int64_t>(length);
  for (; range != ranges_.end() && range->place < end; ++range) {
    const std::int64_t offset = std::max<std::int64_t>(first - range->place, 0);
    const std::int64_t count = std::min(range->records, end - range->place) - offset;
    if (count > 0) {
      AppendRowids(*range, offset, count, rowids);
    }
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

}  // namespace vrx
