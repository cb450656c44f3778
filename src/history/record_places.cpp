#include "history/record_places.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <limits>
#include <string>

namespace vrx {

namespace {

// How many records lie between two marks of a walk.
constexpr std::int64_t kStride = 4096;

constexpr std::int64_t kLowest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kHighest = std::numeric_limits<std::int64_t>::max();

// Without a sign: two rowids can lie further apart than the largest of them.
std::uint64_t Distance(std::int64_t from, std::int64_t to) {
  return static_cast<std::uint64_t>(to) - static_cast<std::uint64_t>(from);
}

}  // namespace

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
    return below.second + (place - below.first);  // no gap between
  }
  return place - below.first <= above->first - place ? Walk(below, place, Direction::kUp)
                                                     : Walk(*above, place, Direction::kDown);
}

void RecordPlaces::MarkEnds() {
  const std::optional<std::int64_t> first = Skip(kLowest, 0, Direction::kUp);
  const std::optional<std::int64_t> last = Skip(kHighest, 0, Direction::kDown);
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

// The rowid that many records past the first one that is not ahead of `rowid`.
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

}  // namespace vrx
