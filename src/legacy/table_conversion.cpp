#include "legacy/table_conversion.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <type_traits>
#include <utility>

#include <SQLiteCpp/Column.h>

#include "base/date.h"
#include "base/number.h"
#include "base/text.h"
#include "database/connection.h"
#include "database/records.h"
#include "legacy/field_value.h"

namespace vrx {
namespace {

struct SumColumn {
  std::string_view table;
  std::string_view column;
};

constexpr std::array<SumColumn, 4> kSumColumns = {{
    {kRecipeRationTable, "Target"},
    {kTransactionsTable, "Target"},
    {kTransactionsTable, "ActualBatch"},
    {kTransactionsTable, "ActualFeed"},
}};

bool IsId(const FieldRule& rule) {
  return rule.kind == FieldKind::kId || rule.kind == FieldKind::kIdText;
}

bool HoldsNumber(FieldKind kind) {
  return kind == FieldKind::kId || kind == FieldKind::kWhole || kind == FieldKind::kYesNo ||
         kind == FieldKind::kReal;
}

std::string StatementText(const TableRule& rule) {
  std::string columns;
  std::string marks;
  std::string settings;
  for (const FieldRule& field : rule.fields) {
    columns += Bracketed(field.column) + ", ";
    marks += "?, ";
    settings += Bracketed(field.column) + " = ?, ";
  }
  for (std::string* const list : {&columns, &marks, &settings}) {
    list->erase(list->size() - 2);
  }
  const std::string table = Bracketed(rule.name);
  return rule.records > 0 ? "UPDATE " + table + " SET " + settings + " WHERE ID = ?"
                          : "INSERT INTO " + table + " (" + columns + ") VALUES (" + marks + ")";
}

void Bind(SQLite::Statement& statement, int index, const FieldValue& value) {
  std::visit(
      [&statement, index](const auto& held) {
        if constexpr (std::is_same_v<std::decay_t<decltype(held)>, std::monostate>) {
          statement.bind(index);
        } else {
          statement.bind(index, held);
        }
      },
      value);
}

std::string OutOfRange(const FieldRule& rule, const LegacyValue& value) {
  return "refused: " + rule.column + " is " + Shown(value) + "; expected a whole number from " +
         std::to_string(rule.smallest) + " to " + std::to_string(rule.largest);
}

std::optional<JetMoment> DateMoment(const LegacyValue& value) {
  const auto* const stored = std::get_if<JetDate>(&value);
  return stored == nullptr ? std::nullopt : ToMoment(*stored);
}

}  // namespace

TableConversion::TableConversion(SQLite::Database& database, const TableRule& rule,
                                 LegacyTable table, NoticeList& notices)
    : database_(database),
      rule_(rule),
      table_(std::move(table)),
      notices_(notices),
      values_(rule.fields.size()),
      seen_(static_cast<std::size_t>(rule.records) + 1),
      line_counts_(kRecipeCount + 1),
      statement_(WithDatabaseErrors(database, [&] {
        return std::make_unique<SQLite::Statement>(database, StatementText(rule));
      })) {
  counts_.name = rule.name;
  FindColumns();
}

void TableConversion::FindColumns() {
  std::vector<bool> used(table_.columns.size());
  for (const FieldRule& field : rule_.fields) {
    const auto found = std::ranges::find_if(table_.columns, [&field](const LegacyColumn& column) {
      return EqualsIgnoringCase(column.name, field.column);
    });
    Source source{.rule = &field, .column = std::nullopt};
    if (found != table_.columns.end()) {
      source.column = static_cast<std::size_t>(found - table_.columns.begin());
      used[*source.column] = true;
    }
    ReportColumn(source);
    const std::size_t place = sources_.size();
    if (field.kind == FieldKind::kDate) {
      date_ = place;
    }
    if (field.kind == FieldKind::kTime) {
      time_ = place;
    }
    for (const SumColumn& sum : kSumColumns) {
      if (sum.table == rule_.name && sum.column == field.column) {
        sums_.push_back({.field = place, .old_file = {}});
      }
    }
    sources_.push_back(source);
  }
  for (std::size_t index = 0; index < used.size(); ++index) {
    if (!used[index]) {
      notices_.Add(counts_.name, "the column " + table_.columns[index].name +
                                     " has no place in the new file and was left out");
    }
  }
}

void TableConversion::ReportColumn(const Source& source) {
  const FieldRule& field = *source.rule;
  if (!source.column) {
    notices_.Add(counts_.name, "the column " + field.column +
                                   " is missing; every row got the default for a missing value");
    return;
  }
  const LegacyType type = table_.columns[*source.column].type;
  const bool number = HoldsNumber(field.kind);
  if (type == LegacyType::kUnread) {
    notices_.Add(counts_.name, "the column " + field.column +
                                   " is of a kind that is not read; its values count as missing");
  } else if (number && type == LegacyType::kText) {
    notices_.Add(counts_.name,
                 "the column " + field.column + " holds texts; the numbers in them were read");
  } else if (!number && type != LegacyType::kText && type != LegacyType::kDate) {
    notices_.Add(counts_.name, "the column " + field.column + " holds numbers in place of texts");
  }
}

const LegacyValue& TableConversion::ValueOf(const Source& source, const LegacyRow& row) const {
  static const LegacyValue nothing;
  return source.column ? row[*source.column] : nothing;
}

void TableConversion::Row(const LegacyRow& row) {
  ++counts_.read;
  for (Sum& sum : sums_) {
    sum.old_file.Add(NumberOf(ValueOf(sources_[sum.field], row)).value_or(0));
  }
  if (const std::optional<std::string> refusal = RefusalOf(row)) {
    ++counts_.refused;
    notices_.AddRow(counts_.name, *refusal, counts_.read);
    return;
  }
  Convert(row);
  Store(ids_.empty() ? 0 : ids_.front());
  ++counts_.stored;
  if (!repairs_.empty()) {
    ++counts_.repaired;
  }
  for (const std::string& repair : repairs_) {
    notices_.AddRow(counts_.name, repair, counts_.read);
  }
}

void TableConversion::DamagedRow(const std::string& place) {
  ++counts_.read;
  ++counts_.refused;
  notices_.AddRow(counts_.name, "refused: it is damaged (" + place + ")", counts_.read);
}

// The reason why a row is refused. Also reads its IDs.
std::optional<std::string> TableConversion::RefusalOf(const LegacyRow& row) {
  ids_.clear();
  for (const Source& source : sources_) {
    if (IsId(*source.rule)) {
      const LegacyValue& value = ValueOf(source, row);
      const std::optional<int> id = ReadId(*source.rule, value);
      if (!id) {
        return OutOfRange(*source.rule, value);
      }
      ids_.push_back(*id);
    }
  }
  if (ids_.empty()) {
    return std::nullopt;
  }
  const int id = ids_.front();
  const auto place = static_cast<std::size_t>(id);
  if (rule_.records == 0) {
    if (line_counts_[place] >= kMaxRecipeLines) {
      return "refused: recipe " + std::to_string(id) + " has " + std::to_string(kMaxRecipeLines) +
             " lines already";
    }
    ++line_counts_[place];
    return std::nullopt;
  }
  if (seen_[place]) {
    return "refused: a row with ID " + std::to_string(id) + " came before";
  }
  seen_[place] = true;
  return std::nullopt;
}

void TableConversion::Convert(const LegacyRow& row) {
  repairs_.clear();
  const std::string default_name =
      rule_.records > 0 ? std::string(rule_.default_name) + Format(ids_.front(), "000")
                        : std::string();
  Repairs of_missing_columns;  // discarded: reported once for the whole table
  for (std::size_t index = 0; index < sources_.size(); ++index) {
    const Source& source = sources_[index];
    const bool missing =
        !source.column || table_.columns[*source.column].type == LegacyType::kUnread;
    values_[index] = ConvertField(*source.rule, ValueOf(source, row), default_name,
                                  missing ? of_missing_columns : repairs_);
  }
  SettleIds();
  if (date_ && time_) {
    SettleMoment(row);
  }
}

// Normalizes IDs: an ID stored as text becomes its plain number.
void TableConversion::SettleIds() {
  std::size_t next = 0;
  for (std::size_t index = 0; index < sources_.size(); ++index) {
    const FieldRule& field = *sources_[index].rule;
    if (!IsId(field)) {
      continue;
    }
    const int id = ids_[next++];
    const std::string text = std::to_string(id);
    if (field.kind == FieldKind::kId) {
      values_[index] = std::int64_t{id};
    } else if (const auto* const stored = std::get_if<std::string>(&values_[index]);
               stored == nullptr || *stored != text) {
      repairs_.push_back(field.column + " was not written as a plain number; " + text +
                         " was stored");
      values_[index] = text;
    }
  }
}

// Date or Time may hold a full moment. Its other part replaces a missing value.
void TableConversion::SettleMoment(const LegacyRow& row) {
  const std::optional<JetMoment> date = DateMoment(ValueOf(sources_[*date_], row));
  const std::optional<JetMoment> time = DateMoment(ValueOf(sources_[*time_], row));
  if (time && !IsDayZero(time->date)) {
    const std::string day = StoredText(time->date);
    if (std::holds_alternative<std::monostate>(values_[*date_])) {
      values_[*date_] = day;
      repairs_.emplace_back("Date was NULL; the day in Time was stored");
    } else if (std::get<std::string>(values_[*date_]) != day) {
      repairs_.push_back("Time held the day " + day + " as well, which was left out");
    }
  }
  if (date && !(date->time == TimeOfDay{})) {
    const std::string moment = StoredText(date->time);
    if (std::holds_alternative<std::monostate>(values_[*time_])) {
      values_[*time_] = moment;
      repairs_.emplace_back("Time was NULL; the time of day in Date was stored");
    } else if (std::get<std::string>(values_[*time_]) != moment) {
      repairs_.push_back("Date held the time " + moment + " as well, which was left out");
    }
  }
}

void TableConversion::Store(int id) {
  WithDatabaseErrors(database_, [&] {
    int index = 0;
    for (const FieldValue& value : values_) {
      Bind(*statement_, ++index, value);
    }
    if (rule_.records > 0) {
      statement_->bind(++index, id);
    }
    statement_->exec();
    statement_->reset();
  });
}

void TableConversion::Finish(ConversionReport& report) {
  statement_.reset();
  if (table_.announced_rows != counts_.read) {
    notices_.Add(counts_.name, "the table should have " + std::to_string(table_.announced_rows) +
                                   " rows; " + std::to_string(counts_.read) + " were found");
  }
  ReportMissingRecords();
  CheckStored();
  report.tables.push_back(counts_);
  for (const Sum& sum : sums_) {
    const std::string& column = rule_.fields[sum.field].column;
    report.sums.push_back({.table = counts_.name,
                           .column = column,
                           .old_file = sum.old_file.Value(),
                           .new_file = StoredSum(column)});
  }
}

void TableConversion::ReportMissingRecords() {
  for (int id = 1; id <= rule_.records; ++id) {
    if (!seen_[static_cast<std::size_t>(id)]) {
      notices_.AddId(counts_.name, "no such row was read; the record has its defaults",
                     static_cast<std::uint64_t>(id));
    }
  }
}

void TableConversion::CheckStored() {
  const std::int64_t expected =
      rule_.records > 0 ? rule_.records : static_cast<std::int64_t>(counts_.stored);
  const std::int64_t rows = WithDatabaseErrors(database_, [this] {
    return database_.execAndGet("SELECT count(*) FROM " + Bracketed(rule_.name)).getInt64();
  });
  if (rows != expected) {
    throw Error("the new table " + counts_.name + " has " + std::to_string(rows) +
                " rows; expected " + std::to_string(expected));
  }
}

double TableConversion::StoredSum(const std::string& column) {
  return WithDatabaseErrors(database_, [&] {
    SQLite::Statement query(database_,
                            "SELECT " + Bracketed(column) + " FROM " + Bracketed(rule_.name));
    ExactSum sum;
    while (query.executeStep()) {
      const SQLite::Column value = query.getColumn(0);
      sum.Add(value.isText() ? ParseNumber(value.getString()).value_or(0) : value.getDouble());
    }
    return sum.Value();
  });
}

}  // namespace vrx
