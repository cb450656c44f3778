#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>

#include <SQLiteCpp/Column.h>
#include <SQLiteCpp/Statement.h>

#include "database/connection.h"
#include "insight/days.h"
#include "insight/record_parts.h"

namespace vrx {
namespace {

struct Part {
  Question question = {};
  BatchChoice choice = BatchChoice::kAll;
};

bool IsLong(SQLite::Database& database, const Question& question) {
  // Two queries: of both in one, SQLite reads the whole table.
  const auto end = [&](const std::string& function) {
    return database.execAndGet("SELECT ifnull(" + function + "(rowid), 0) FROM Transactions")
        .getInt64();
  };
  return end("max") - end("min") >= question.rows_at_once;
}

std::vector<Part> PartsOf(SQLite::Database& database, const Question& question,
                          const MayPart& may_part) {
  if (!IsLong(database, question)) {
    return {{.question = question}};
  }
  const DayRanges days = ReadDayRanges(database, question, may_part);
  std::vector<Part> parts;
  if (days.has_undated) {
    parts.push_back({.question = question, .choice = BatchChoice::kUndated});
  }
  for (const auto& [from, to] : days.ranges) {
    parts.push_back({.question = question});
    parts.back().question.from = from;
    parts.back().question.to = to;
  }
  if (parts.empty()) {
    parts.push_back({.question = question});
  }
  return parts;
}

void AddNames(Names& all, const Names& of_part) {
  for (NameId id = kNoName; id < of_part.Count(); ++id) {
    all.Intern(of_part.Text(id));
  }
}

}  // namespace

DayRanges ReadDayRanges(SQLite::Database& database, const Question& question,
                        const MayPart& may_part) {
  DayRanges days;
  std::int64_t rows = 0;  // of the last range
  const std::string period =
      question.HasPeriod() ? " WHERE " + DayCondition(question.from, question.to) : "";
  SQLite::Statement query(
      database, "SELECT [Date], count(*) FROM Transactions" + period + " GROUP BY [Date]");
  while (query.executeStep()) {
    const std::optional<Date> day = ParseStoredDate(query.getColumn(0).getString());
    if (!day) {
      days.has_undated = !question.HasPeriod();
      continue;
    }
    const std::int64_t of_day = query.getColumn(1).getInt64();
    if (days.ranges.empty() || (rows + of_day > question.rows_at_once &&
                                (!may_part || may_part(days.ranges.back().to, *day)))) {
      days.ranges.push_back({*day, *day});
      rows = 0;
    }
    days.ranges.back().to = *day;
    rows += of_day;
  }
  return days;
}

InsightNotes BatchParts::Read(const std::function<void(RecordReader&)>& work) {
  return WithDatabaseErrors(database_, [&] {
    const ReadTransaction all_parts(database_);
    const std::vector<Part> parts = PartsOf(database_, question_, may_part_);
    NamesOfKinds names;
    InsightNotes notes;
    for (std::size_t i = 0; i < parts.size(); ++i) {
      const InsightProgress progress = [&](int percent) {
        return !progress_ || progress_((static_cast<int>(i) * kAllPercent + percent) /
                                       static_cast<int>(parts.size()));
      };
      RecordReader reader(database_, parts[i].question, progress, parts[i].choice);
      work(reader);
      notes = reader.Notes();
      for (std::size_t kind = 0; kind < names.size(); ++kind) {
        AddNames(names.at(kind), reader.NamesOf(static_cast<NameKind>(kind)));
      }
    }
    notes.undated = question_.HasPeriod() ? notes.undated : 0;
    notes.alike = AlikeOf(names);
    return notes;
  });
}

}  // namespace vrx
