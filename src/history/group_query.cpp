#include "history/group_query.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <limits>
#include <system_error>
#include <type_traits>
#include <utility>
#include <variant>

#include <sqlite3.h>

#include "database/schema.h"
#include "database/transactions.h"
#include "history/columns.h"
#include "history/difference.h"

namespace vrx {
namespace {

constexpr int kLastRowParameter = 1;
constexpr int kFirstLevelParameter = 2;
// A ranged query has two levels at most.
constexpr int kRangeParameter = 4;

// A column with numbers stored as texts.
std::string NumberOf(const std::string& operand) { return "CAST(" + operand + " AS INTEGER)"; }

// A column with names: its indexes start with the range of transactions.
bool IsRangedColumn(int column) {
  const std::string_view key = HistoryColumnAt(column).key;
  return key == "Recipe" || key == "Ingredient" || key == "Pen";
}

bool IsNumberAsText(int column) { return HistoryColumnAt(column).key == "UserID"; }

GroupLevel LevelOf(std::string_view key) {
  const int column = HistoryColumnOfKey(key);
  GroupLevel level{.column = column,
                   .field = Bracketed(HistoryColumnAt(column).field),
                   .keys = {},
                   .many_values = key == "Transaction"};
  if (IsNumberAsText(column)) {
    level.keys.push_back({NumberOf(level.field), std::numeric_limits<std::int64_t>::min()});
  }
  level.keys.push_back({level.field, std::string()});
  return level;
}

std::string Parameter(int number) { return "?" + std::to_string(number); }

// NULL, numbers, texts.
int KindOrder(const CellValue& value) {
  return IsNull(value) ? 0 : std::holds_alternative<std::string>(value) ? 2 : 1;
}

template <typename Value>
int Compare(const Value& left, const Value& right) {
  return left < right ? -1 : left > right ? 1 : 0;
}

// Has 64 bits of precision where it can, so that it holds every whole number and every double.
long double NumberIn(const CellValue& value) {
  const auto* const whole = std::get_if<std::int64_t>(&value);
  return whole != nullptr ? static_cast<long double>(*whole) : std::get<double>(value);
}

// The value of SQLite's CAST(value AS INTEGER): of the number that a text begins with, limited to
// 64 bits.
CellValue AsInteger(const CellValue& value) {
  const auto* const text = std::get_if<std::string>(&value);
  if (text == nullptr) {
    return value;
  }
  std::string_view digits = *text;
  digits.remove_prefix(std::min(digits.find_first_not_of(" \t\n\v\f\r"), digits.size()));
  const bool negative = digits.starts_with('-');
  if (negative || digits.starts_with('+')) {
    digits.remove_prefix(1);
  }
  digits = digits.substr(0, digits.find_first_not_of("0123456789"));
  using Limits = std::numeric_limits<std::int64_t>;
  std::int64_t number = 0;
  const std::string signed_digits = (negative ? "-" : "") + std::string(digits);
  const std::from_chars_result read =
      std::from_chars(signed_digits.data(), signed_digits.data() + signed_digits.size(), number);
  if (read.ec == std::errc::result_out_of_range) {
    return negative ? Limits::min() : Limits::max();
  }
  return number;
}

// One condition for each key of the level, so that SQLite uses an index on them.
std::string LevelCondition(const GroupLevel& level, int parameter) {
  const std::string value = Parameter(parameter);
  std::string condition = level.field + " IS " + value;
  if (level.keys.size() > 1) {
    condition += " AND " + level.keys.front().expression + " IS " + NumberOf(value);
  }
  return condition;
}

}  // namespace

Statements::InUse::~InUse() {
  // The result repeats the error of the last step, which was already thrown.
  statement_.tryReset();
}

Statements::InUse Statements::Take(const std::string& text) {
  return InUse(prepared_.try_emplace(text, database_, text).first->second);
}

CellValue ValueOf(const SQLite::Column& column) {
  switch (column.getType()) {
    case SQLITE_NULL:
      return std::monostate();
    case SQLITE_INTEGER:
      return column.getInt64();
    case SQLITE_FLOAT:
      return column.getDouble();
    default:
      return column.getString();
  }
}

void BindValue(SQLite::Statement& statement, int parameter, const CellValue& value) {
  std::visit(
      [&](const auto& stored) {
        if constexpr (std::is_same_v<std::decay_t<decltype(stored)>, std::monostate>) {
          statement.bind(parameter);
        } else {
          statement.bind(parameter, stored);
        }
      },
      value);
}

GroupQuery::GroupQuery(const DataGroup& group, std::string_view name)
    : by_name_(!group.named_column.empty()),
      // An index on one level has `Type` after it.
      stored_order_is_indexed_(group.levels.size() != 1 || !group.type.empty()),
      name_(name) {
  for (const std::string_view key : group.levels) {
    levels_.push_back(LevelOf(key));
  }
  if (!group.type.empty()) {
    // Not a parameter: only a literal allows SQLite to use a partial index on that type.
    filter_ = " AND Type = '" + std::string(group.type) + "'";
  }
}

std::string GroupQuery::RangedColumns() const {
  if (levels_.empty() || !IsRangedColumn(levels_.front().column)) {
    return {};
  }
  std::string columns;
  for (const GroupLevel& level : levels_) {
    columns += (columns.empty() ? "" : ", ") + std::string(HistoryColumnAt(level.column).field);
  }
  return columns;
}

void GroupQuery::LimitTo(std::shared_ptr<const PeriodRows> period, std::string filter) {
  period_ = std::move(period);
  period_filter_ = std::move(filter);
  if (StartsByDate() && period_->period.from) {
    levels_.front().keys.front().lowest = StoredText(*period_->period.from);
  }
}

void GroupQuery::SearchBy(std::vector<std::int64_t> ranges) {
  if (period_) {
    std::vector<std::int64_t> inside;
    std::set_intersection(ranges.begin(), ranges.end(), period_->ranges.begin(),
                          period_->ranges.end(), std::back_inserter(inside));
    ranges = std::move(inside);
  }
  ranges_text_ = JsonArray(ranges);
  ranges_ = std::move(ranges);
}

void GroupQuery::Bind(SQLite::Statement& statement, std::span<const CellValue> values) const {
  BindRows(statement, values);
  if (ranges_) {
    statement.bindNoCopy(kRangeParameter, ranges_text_);
  }
}

void GroupQuery::BindRange(SQLite::Statement& statement, std::span<const CellValue> values,
                           std::int64_t range) const {
  BindRows(statement, values);
  statement.bind(kRangeParameter, range);
}

void GroupQuery::BindRows(SQLite::Statement& statement, std::span<const CellValue> values) const {
  if (last_row_) {
    statement.bind(kLastRowParameter, *last_row_);
  }
  if (by_name_ && values.empty()) {
    statement.bind(kFirstLevelParameter, name_);
  }
  int parameter = kFirstLevelParameter;
  for (const CellValue& value : values) {
    BindValue(statement, parameter++, value);
  }
}

std::string GroupQuery::From(std::size_t levels) const {
  return Rows(levels) + (ranges_ ? InTransactionRanges(Parameter(kRangeParameter)) : "");
}

std::string GroupQuery::FirstAfter() const {
  std::string fields;
  for (const GroupLevel& level : levels_) {
    fields += ", " + level.field;
  }
  return "SELECT rowid" + fields + Rows(0) + " AND rowid > " + Parameter(kFirstOwnParameter) +
         " ORDER BY rowid LIMIT 1";
}

void GroupQuery::BindFirstAfter(SQLite::Statement& statement, std::int64_t rowid) const {
  BindRows(statement, {});
  statement.bind(kFirstOwnParameter, rowid);
}

std::string GroupQuery::FromRange(std::size_t levels) const {
  return RowsOfRange(levels, Parameter(kRangeParameter));
}

std::string GroupQuery::RowsOfRange(std::size_t levels, std::string_view range) const {
  return Rows(levels) + " AND " + std::string(kTransactionRange) + " = " + std::string(range);
}

std::string GroupQuery::Scan() const {
  return " FROM " + std::string(kTransactionsTable) + " NOT INDEXED WHERE rowid BETWEEN " +
         Parameter(kFirstOwnParameter) + " AND " + Parameter(kFirstOwnParameter + 1) + " AND " +
         Conditions(0) + " ORDER BY rowid";
}

void GroupQuery::BindScan(SQLite::Statement& statement, std::int64_t first,
                          std::int64_t last) const {
  BindRows(statement, {});
  statement.bind(kFirstOwnParameter, first);
  statement.bind(kFirstOwnParameter + 1, last);
}

std::string GroupQuery::Rows(std::size_t levels) const {
  return " FROM " + std::string(kTransactionsTable) + " WHERE " + Conditions(levels);
}

std::string GroupQuery::Conditions(std::size_t levels) const {
  // The `+` prevents SQLite from scanning the table for this order.
  std::string text = last_row_ ? "+rowid <= " + Parameter(kLastRowParameter) : "1";
  text += filter_ + RowsOfPeriod(levels);
  if (by_name_ && levels == 0) {
    text += " AND " + levels_.front().field + " = " + Parameter(kFirstLevelParameter);
  }
  for (std::size_t level = 0; level < levels; ++level) {
    text +=
        " AND " + LevelCondition(levels_[level], kFirstLevelParameter + static_cast<int>(level));
  }
  return text;
}

// The filter selects the rows; the limits keep a search of an index from going beyond them. Each is
// only given for a column that the index can search at this depth.
std::string GroupQuery::RowsOfPeriod(std::size_t levels) const {
  if (!period_) {
    return {};
  }
  std::string text = period_filter_;
  if (levels_.empty()) {
    text += PeriodCondition(period_->period);
  } else if (levels == 0 && StartsByDate()) {
    // Without the first day: SQLite would begin each search for a next date there.
    text += PeriodCondition({.from = {}, .to = period_->period.to});
  }
  const bool transaction_is_open =
      std::any_of(levels_.begin() + static_cast<std::ptrdiff_t>(levels), levels_.end(),
                  [](const GroupLevel& level) { return level.many_values; });
  if (transaction_is_open && period_->transactions) {
    text += " AND [Transaction] BETWEEN " + std::to_string(period_->transactions->first) + " AND " +
            std::to_string(period_->transactions->second);
  }
  return text;
}

bool GroupQuery::StartsByDate() const {
  return !levels_.empty() && HistoryColumnAt(levels_.front().column).key == "Date";
}

std::string GroupQuery::ValuesInRanges(std::size_t levels) const {
  const std::string& field = levels_[levels].field;
  const std::string lowest = "(SELECT min(" + field + ")";
  return "WITH RECURSIVE Found (InRange, Name) AS (SELECT value, " + lowest +
         RowsOfRange(levels, "listed.value") + ") FROM json_each(" + Parameter(kRangeParameter) +
         ") AS listed UNION ALL SELECT InRange, " + lowest + RowsOfRange(levels, "InRange") +
         " AND " + field + " > Name) FROM Found WHERE Name IS NOT NULL) " +
         "SELECT NULL WHERE EXISTS (SELECT 1" + From(levels) + " AND " + field +
         " IS NULL) UNION SELECT Name FROM Found WHERE Name IS NOT NULL ORDER BY 1";
}

std::string GroupQuery::WholeOutline() const {
  std::string fields;
  std::string keys;
  for (const GroupLevel& level : levels_) {
    fields += level.field + ", ";
    for (const LevelKey& key : level.keys) {
      keys += (keys.empty() ? "" : ", ") + key.expression;
    }
  }
  return "SELECT " + fields + "count(*)" + (ranges_ ? FromRange(0) : From(0)) + " GROUP BY " +
         keys + " ORDER BY " + keys;
}

int CompareValues(const CellValue& left, const CellValue& right) {
  if (const int kinds = Compare(KindOrder(left), KindOrder(right)); kinds != 0 || IsNull(left)) {
    return kinds;
  }
  if (const auto* const text = std::get_if<std::string>(&left)) {
    return Compare(*text, std::get<std::string>(right));
  }
  return Compare(NumberIn(left), NumberIn(right));
}

int CompareLevelValues(int column, const CellValue& left, const CellValue& right) {
  const int numbers = IsNumberAsText(column) ? CompareValues(AsInteger(left), AsInteger(right)) : 0;
  return numbers != 0 ? numbers : CompareValues(left, right);
}

std::string CellExpression(int column) {
  const DifferenceColumn* const difference = FindDifferenceColumn(column);
  if (difference == nullptr) {
    return Bracketed(HistoryColumnAt(column).field);
  }
  return OfKind(
      difference->kind,
      std::string(difference->percent ? kDifferencePercentFunction : kDifferenceFunction) +
          "([Target], " + Bracketed(HistoryColumnAt(difference->actual_column).field) + ")");
}

std::string SortExpression(int column) {
  if (column == 0) {
    return "NULL";
  }
  if (const DifferenceColumn* const difference = FindDifferenceColumn(column)) {
    return DifferenceOrder(difference->kind, difference->percent);
  }
  const std::string field = Bracketed(HistoryColumnAt(column).field);
  return IsNumberAsText(column) ? NumberOf(field) : field;
}

std::string RecordOrderText(int column, bool ascending) {
  if (column == 0) {
    return " ORDER BY +rowid";
  }
  return " ORDER BY " + SortExpression(column) + (ascending ? "" : " DESC") + ", rowid";
}

std::string RecordColumns(std::string_view prefix) {
  std::string columns;
  for (const HistoryColumn& column : StoredColumns()) {
    columns += (columns.empty() ? "" : ", ") + std::string(prefix) + Bracketed(column.field);
  }
  return columns;
}

}  // namespace vrx
