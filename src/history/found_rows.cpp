#include "history/found_rows.h"

#include <algorithm>
#include <array>
#include <exception>
#include <tuple>
#include <utility>
#include <variant>

#include <SQLiteCpp/Column.h>
#include <sqlite3.h>

#include "database/connection.h"
#include "database/schema.h"
#include "history/difference.h"

namespace vrx {
namespace {

constexpr std::uint64_t kSlice = 4096;  // rowids
// Texts of a column that are remembered: names, users, dates, times of day.
constexpr std::size_t kTextsKnown = 100000;
constexpr int kScanFlags = SQLITE_UTF8 | SQLITE_DIRECTONLY;

std::string_view TextIn(sqlite3_value* value) {
  const auto* const bytes = reinterpret_cast<const char*>(sqlite3_value_text(value));
  return {bytes == nullptr ? "" : bytes, static_cast<std::size_t>(sqlite3_value_bytes(value))};
}

CellValue CellIn(sqlite3_value* value) {
  switch (sqlite3_value_type(value)) {
    case SQLITE_NULL:
      return std::monostate();
    case SQLITE_INTEGER:
      return sqlite3_value_int64(value);
    case SQLITE_FLOAT:
      return sqlite3_value_double(value);
    default:
      return std::string(TextIn(value));
  }
}

}  // namespace

bool CellTest::IsIn(const HistoryColumn& column, const CellValue& value) const {
  if (const auto* const text = std::get_if<std::string>(&value)) {
    return IsInText(column, *text);
  }
  if (const auto* const whole = std::get_if<std::int64_t>(&value)) {
    return IsInNumber(static_cast<double>(*whole));
  }
  const auto* const number = std::get_if<double>(&value);
  return number != nullptr && IsInNumber(*number);
}

FoundRows::FoundRows(SQLite::Database& database, const GroupQuery& query, const CellTest& test,
                     std::vector<int> columns, RecordSort order)
    : database_(database),
      query_(query),
      test_(test),
      columns_(std::move(columns)),
      order_(order),
      function_("find_row_" + std::to_string(reinterpret_cast<std::uintptr_t>(this))) {
  for (const GroupLevel& level : query.Levels()) {
    levels_.push_back(level.column);
  }
  // Called from C code, which no exception may cross.
  const auto take = [](sqlite3_context* context, int /*count*/, sqlite3_value** values) {
    try {
      static_cast<FoundRows*>(sqlite3_user_data(context))->Take(values);
    } catch (const std::exception&) {
      sqlite3_result_error_nomem(context);
    }
  };
  RegisterDifferences(database);
  WithDatabaseErrors(database, [&] {
    database.check(sqlite3_create_function_v2(database.getHandle(), function_.c_str(), -1,
                                              kScanFlags, this, take, nullptr, nullptr, nullptr));
  });
}

FoundRows::~FoundRows() {
  scan_.reset();
  sqlite3_create_function_v2(database_.getHandle(), function_.c_str(), -1, kScanFlags, nullptr,
                             nullptr, nullptr, nullptr, nullptr);
}

// The scan.

std::string FoundRows::ScanText() const {
  std::string text = "SELECT " + function_ + "(rowid";
  const auto add = [&text](int column) { text += ", " + CellExpression(column); };
  std::for_each(levels_.begin(), levels_.end(), add);
  if (order_.column != 0) {
    text += ", " + SortExpression(order_.column);
  }
  std::for_each(columns_.begin(), columns_.end(), add);
  return text + ")" + query_.Scan();
}

void FoundRows::FindEnds() {
  SQLite::Statement ends(database_, "SELECT min(rowid), (SELECT max(rowid) FROM " +
                                        std::string(kTransactionsTable) + ") FROM " +
                                        std::string(kTransactionsTable));
  ends.executeStep();
  first_ = ends.getColumn(0).getInt64();
  last_ = ends.getColumn(1).getInt64();
  last_ = std::min(last_, query_.LastRow().value_or(last_));
  if (const PeriodRows* const period = query_.Within(); period != nullptr) {
    const bool any = period->rows.Count() > 0;
    first_ = any ? std::max(first_, period->rows.Lowest()) : 1;
    last_ = any ? std::min(last_, period->rows.Highest()) : 0;
  }
  next_ = first_;
  scan_.emplace(database_, ScanText());
}

std::optional<std::int64_t> FoundRows::NextRowid(std::int64_t from) {
  SQLite::Statement next(database_, "SELECT rowid FROM " + std::string(kTransactionsTable) +
                                        " WHERE rowid BETWEEN ? AND ? ORDER BY rowid LIMIT 1");
  next.bind(1, from);
  next.bind(2, last_);
  return next.executeStep() ? std::optional(next.getColumn(0).getInt64()) : std::nullopt;
}

void FoundRows::Scan() {
  if (!complete_) {
    WithDatabaseErrors(database_, [this] { ScanSlice(); });
  }
}

void FoundRows::ScanSlice() {
  if (!scan_) {
    FindEnds();
  }
  const std::optional<std::int64_t> from = NextRowid(next_);
  if (!from) {
    Complete();
    return;
  }
  // Unsigned, because the distance of two rowids can exceed the range of a signed number.
  const std::uint64_t left = static_cast<std::uint64_t>(last_) - static_cast<std::uint64_t>(*from);
  const std::int64_t to = left < kSlice ? last_ : *from + static_cast<std::int64_t>(kSlice) - 1;
  query_.BindScan(*scan_, *from, to);
  {
    Statements::InUse rows(*scan_);
    while (rows->executeStep()) {
    }
  }
  if (to == last_) {
    Complete();
  } else {
    next_ = to + 1;
  }
}

int FoundRows::Percent() const {
  if (complete_) {
    return 100;
  }
  const double all = static_cast<double>(last_) - static_cast<double>(first_) + 1;
  return static_cast<int>((static_cast<double>(next_) - static_cast<double>(first_)) / all * 100);
}

std::int64_t FoundRows::Count() const {
  // A complete list has the groups too.
  return static_cast<std::int64_t>(hits_.size()) + (complete_ ? 0 : found_groups_);
}

// `row` has the rowid, the levels, the sort column and the columns of the record.
void FoundRows::Take(sqlite3_value** row) {
  sqlite3_value** const levels = row + 1;
  sqlite3_value** const sorted = levels + levels_.size();
  sqlite3_value** const cells = sorted + (order_.column != 0 ? 1 : 0);
  const std::uint32_t record = seen_++;
  bool found = false;
  for (std::size_t i = 0; i < columns_.size() && !found; ++i) {
    found = Matches(columns_[i], cells[i]);
  }
  std::size_t found_levels = 0;  // the innermost one that is found, from 1
  std::array<bool, 3> is_found{};
  for (std::size_t level = 0; level < levels_.size(); ++level) {
    is_found.at(level) = Matches(levels_[level], levels[level]);
    found_levels = is_found.at(level) ? level + 1 : found_levels;
  }
  std::uint32_t group = kNone;
  for (std::size_t level = 0; level < (found ? levels_.size() : found_levels); ++level) {
    group = GroupOf(group, level, levels[level]);
    if (is_found.at(level) && !std::exchange(groups_[group].found, true)) {
      ++found_groups_;
    }
  }
  if (!found) {
    return;
  }
  std::uint32_t number = 1;
  if (order_.column != 0) {
    const auto [value, is_new] =
        sorted_.try_emplace(CellIn(*sorted), static_cast<std::uint32_t>(sorted_values_.size() + 1));
    if (is_new) {
      sorted_values_.push_back(&value->first);
    }
    number = value->second;
  }
  hits_.push_back(
      {.group = group, .sorted = number, .rowid = sqlite3_value_int64(row[0]), .record = record});
}

bool FoundRows::Matches(int column, sqlite3_value* value) {
  switch (sqlite3_value_type(value)) {
    case SQLITE_NULL:
      return false;
    case SQLITE_INTEGER:
    case SQLITE_FLOAT:
      return test_.IsInNumber(sqlite3_value_double(value));
    default:
      break;
  }
  const HistoryColumn& traits = HistoryColumnAt(column);
  KnownTexts& known = known_[traits.content];
  const std::string_view text = TextIn(value);
  const auto found = known.find(text);
  if (found != known.end()) {
    return found->second;
  }
  if (known.size() >= kTextsKnown) {
    known.clear();
  }
  return known.emplace(text, test_.IsInText(traits, text)).first->second;
}

std::uint32_t FoundRows::GroupOf(std::uint32_t outer, std::size_t level, sqlite3_value* value) {
  auto& inside = inside_.try_emplace(outer, ByLevel{levels_[level]}).first->second;
  const auto [group, is_new] =
      inside.try_emplace(CellIn(value), static_cast<std::uint32_t>(groups_.size()));
  if (is_new) {
    groups_.push_back({.outer = outer, .level = level, .value = group->first});
  }
  return group->second;
}

// The order.

void FoundRows::Complete() {
  scan_.reset();
  for (std::uint32_t group = 0; group < groups_.size(); ++group) {
    if (groups_[group].found) {
      hits_.push_back({.group = group, .sorted = 0, .rowid = 0, .record = 0});
    }
  }
  std::uint32_t rank = 0;
  RankGroups(kNone, rank);
  if (!FindsInOrder()) {
    SortHits();
  }
  inside_.clear();
  complete_ = true;
}

void FoundRows::RankGroups(std::uint32_t outer, std::uint32_t& next) {
  const auto inside = inside_.find(outer);
  if (inside == inside_.end()) {
    return;
  }
  for (const auto& [value, group] : inside->second) {
    groups_[group].rank = next++;
    RankGroups(group, next);
  }
}

void FoundRows::SortHits() {
  std::vector<std::uint32_t> ranks(sorted_.size() + 1);
  std::uint32_t rank = order_.ascending ? 0 : static_cast<std::uint32_t>(sorted_.size()) + 1;
  for (const auto& [value, number] : sorted_) {
    ranks[number] = order_.ascending ? ++rank : --rank;
  }
  const auto key = [&](const Hit& hit) {
    const std::uint32_t sorted =
        hit.sorted == 0 || order_.column == 0 ? hit.sorted : ranks[hit.sorted];
    return std::tuple(hit.group == kNone ? 0 : groups_[hit.group].rank, sorted, hit.rowid);
  };
  std::sort(hits_.begin(), hits_.end(),
            [&](const Hit& one, const Hit& other) { return key(one) < key(other); });
}

RowPlace FoundRows::At(std::int64_t index) const {
  const Hit& hit = hits_.at(static_cast<std::size_t>(index));
  RowPlace place{.kind = hit.sorted == 0 ? HistoryRowKind::kGroup : HistoryRowKind::kRecord,
                 .rowid = hit.rowid,
                 .record = FindsInOrder() ? std::int64_t{hit.record} : -1};
  for (std::uint32_t group = hit.group; group != kNone; group = groups_[group].outer) {
    place.groups.insert(place.groups.begin(), groups_[group].value);
  }
  if (hit.sorted != 0 && order_.column != 0) {
    place.sorted = *sorted_values_[hit.sorted - 1];
  }
  return place;
}

// A group row is above and a total row below everything in the group.
int FoundRows::Compare(const RowPlace& left, const RowPlace& right) const {
  const std::size_t common = std::min(left.groups.size(), right.groups.size());
  for (std::size_t level = 0; level < common; ++level) {
    if (const int order =
            CompareLevelValues(levels_[level], left.groups[level], right.groups[level]);
        order != 0) {
      return order;
    }
  }
  if (left.groups.size() != right.groups.size()) {
    const bool left_is_outer = left.groups.size() == common;
    const bool is_group = (left_is_outer ? left : right).kind == HistoryRowKind::kGroup;
    return left_is_outer == is_group ? -1 : 1;
  }
  const auto part = [](HistoryRowKind kind) {
    return kind == HistoryRowKind::kGroup ? 0 : kind == HistoryRowKind::kRecord ? 1 : 2;
  };
  if (const int order = part(left.kind) - part(right.kind);
      order != 0 || left.kind != HistoryRowKind::kRecord) {
    return order;
  }
  if (const int order = CompareValues(left.sorted, right.sorted); order != 0) {
    return order_.ascending ? order : -order;
  }
  return left.rowid < right.rowid ? -1 : left.rowid > right.rowid ? 1 : 0;
}

std::int64_t FoundRows::FirstFrom(const RowPlace& place, bool itself) const {
  std::int64_t from = 0;
  std::int64_t to = static_cast<std::int64_t>(hits_.size());
  while (from < to) {
    const std::int64_t middle = from + (to - from) / 2;
    const int order = Compare(At(middle), place);
    if (order < 0 || (order == 0 && !itself)) {
      from = middle + 1;
    } else {
      to = middle;
    }
  }
  return from;
}

}  // namespace vrx
