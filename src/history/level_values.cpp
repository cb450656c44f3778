#include "history/level_values.h"

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <utility>

#include "database/schema.h"

namespace vrx {

namespace {

// Finds one value of a level after the other, each by one search of the index.
class ValueFinder {
 public:
  ValueFinder(Statements& statements, const GroupQuery& query, std::span<const CellValue> outer)
      : statements_(statements),
        query_(query),
        outer_(outer),
        keys_(query.Levels()[outer.size()].keys) {}

  std::vector<CellValue> FindAll() {
    FindNextKey();
    return std::move(values_);
  }

 private:
  // The values of the key that follows those of `found_`, and in each of them those of the keys
  // behind it.
  void FindNextKey() {
    const LevelKey& key = keys_[found_.size()];
    std::string text = "SELECT " + key.expression + query_.From(outer_.size());
    for (std::size_t before = 0; before < found_.size(); ++before) {
      text += " AND " + keys_[before].expression + " IS " + Parameter(before);
    }
    text += " AND " + key.expression;
    const std::string bound = Parameter(found_.size()) + " ";
    const std::string next = bound + "ORDER BY " + key.expression + " LIMIT 1";
    if (Find(text + " IS " + bound + "LIMIT 1", CellValue())) {
      Take(CellValue());
    }
    const std::string above = text + " > " + next;
    std::optional<CellValue> value = Find(text + " >= " + next, key.lowest);
    while (value) {
      Take(*value);
      value = Find(above, *value);
    }
  }

  static std::string Parameter(std::size_t key) {
    return "?" + std::to_string(GroupQuery::kFirstOwnParameter + static_cast<int>(key));
  }

  std::optional<CellValue> Find(const std::string& text, const CellValue& bound) {
    Statements::InUse statement = statements_.Take(text);
    query_.Bind(*statement, outer_);
    int parameter = GroupQuery::kFirstOwnParameter;
    for (const CellValue& before : found_) {
      BindValue(*statement, parameter++, before);
    }
    BindValue(*statement, parameter, bound);
    return statement->executeStep() ? std::optional(ValueOf(statement->getColumn(0)))
                                    : std::nullopt;
  }

  void Take(const CellValue& value) {
    if (found_.size() + 1 == keys_.size()) {
      values_.push_back(value);
      return;
    }
    found_.push_back(value);
    FindNextKey();
    found_.pop_back();
  }

  Statements& statements_;
  const GroupQuery& query_;
  std::span<const CellValue> outer_;
  const std::vector<LevelKey>& keys_;
  std::vector<CellValue> found_;  // of the keys ahead
  std::vector<CellValue> values_;
};

std::vector<CellValue> ReadValues(Statements& statements, const GroupQuery& query,
                                  std::span<const CellValue> outer, const std::string& text) {
  Statements::InUse statement = statements.Take(text);
  query.Bind(*statement, outer);
  std::vector<CellValue> values;
  while (statement->executeStep()) {
    values.push_back(ValueOf(statement->getColumn(0)));
  }
  return values;
}

// Calls `take` with the values and the number of records of each row of an outline query.
template <typename Take>
void ReadCounts(SQLite::Statement& statement, std::size_t levels, const Take& take) {
  std::vector<CellValue> values(levels);
  while (statement.executeStep()) {
    int column = 0;
    for (CellValue& value : values) {
      value = ValueOf(statement.getColumn(column++));
    }
    take(values, statement.getColumn(column).getInt64());
  }
}

// The values of names, NULL or a text, compare as the engine orders them.
using Counts = std::map<std::vector<CellValue>, std::int64_t>;

Counts CountInRanges(Statements& statements, const GroupQuery& query) {
  Counts counts;
  for (const std::int64_t range : query.Ranges()) {
    Statements::InUse statement = statements.Take(query.WholeOutline());
    query.BindRange(*statement, {}, range);
    ReadCounts(*statement, query.Levels().size(),
               [&](const std::vector<CellValue>& values, std::int64_t records) {
                 counts[values] += records;
               });
  }
  return counts;
}

}  // namespace

std::vector<CellValue> ReadLevelValues(Statements& statements, const GroupQuery& query,
                                       std::span<const CellValue> outer) {
  const GroupLevel& level = query.Levels()[outer.size()];
  const std::string from = query.From(outer.size());
  if (outer.empty() && query.IsByName()) {
    return ReadValues(statements, query, outer, "SELECT " + level.field + from + " LIMIT 1");
  }
  if (level.many_values) {
    return ReadValues(statements, query, outer,
                      "SELECT DISTINCT " + level.field + from + " ORDER BY " + level.field);
  }
  if (query.IsRanged()) {
    return ReadValues(statements, query, outer, query.ValuesInRanges(outer.size()));
  }
  return ValueFinder(statements, query, outer).FindAll();
}

std::int64_t CountRecords(Statements& statements, const GroupQuery& query,
                          std::span<const CellValue> group) {
  if (group.empty()) {
    // Without a condition the engine counts by the pages of an index.
    Statements::InUse whole =
        statements.Take("SELECT count(*) FROM " + std::string(kTransactionsTable));
    whole->executeStep();
    return whole->getColumn(0).getInt64();
  }
  Statements::InUse statement = statements.Take("SELECT count(*)" + query.From(group.size()));
  query.Bind(*statement, group);
  statement->executeStep();
  return statement->getColumn(0).getInt64();
}

Outline ReadWholeOutline(Statements& statements, const GroupQuery& query) {
  const std::size_t levels = query.Levels().size();
  Outline outline(static_cast<int>(levels));
  bool any = false;
  const auto append = [&](std::span<const CellValue> values, std::int64_t records) {
    outline.Append(values, records);
    any = true;
  };
  if (query.IsRanged()) {
    for (const auto& [values, records] : CountInRanges(statements, query)) {
      append(values, records);
    }
  } else {
    Statements::InUse statement = statements.Take(query.WholeOutline());
    query.Bind(*statement, {});
    ReadCounts(*statement, levels, append);
  }
  if (!any) {
    outline.SetGroups({}, {});
  }
  outline.SetAllOpen(true);
  return outline;
}

}  // namespace vrx
