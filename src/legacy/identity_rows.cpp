#include "legacy/identity_rows.h"

#include <algorithm>
#include <initializer_list>
#include <string_view>

#include "base/date.h"
#include "base/text.h"
#include "database/identity.h"
#include "legacy/field_value.h"

namespace vrx {
namespace {

std::string TextOrEmpty(const LegacyValue& value) {
  const auto* const text = std::get_if<std::string>(&value);
  return text == nullptr ? std::string() : *text;
}

}  // namespace

bool IdentityRows::Begin(const LegacyTable& table) {
  current_ = nullptr;
  for (Part* const part : {&marker_, &units_, &history_}) {
    if (EqualsIgnoringCase(part->table, table.name)) {
      current_ = part;
      part->there = true;
      part->described = table;
      part->counts.name = part->table;
    }
  }
  return current_ != nullptr;
}

void IdentityRows::Row(const LegacyRow& row) {
  ConvertedTable& counts = current_->counts;
  ++counts.read;
  if (counts.stored == 0) {
    ++counts.stored;
    current_->row = row;
    return;
  }
  ++counts.refused;
  notices_.AddRow(counts.name, "refused: the table holds one row only", counts.read);
}

void IdentityRows::DamagedRow(const std::string& place) {
  ConvertedTable& counts = current_->counts;
  ++counts.read;
  ++counts.refused;
  notices_.AddRow(counts.name, "refused: it is damaged (" + place + ")", counts.read);
}

LegacyValue IdentityRows::Value(const Part& part, std::string_view column) const {
  for (std::size_t index = 0; index < part.row.size(); ++index) {
    if (EqualsIgnoringCase(part.described.columns[index].name, column)) {
      return part.row[index];
    }
  }
  return {};
}

std::optional<DatabaseKind> IdentityRows::MarkedKind() const {
  const std::string type = TextOrEmpty(Value(marker_, kTypeField.column));
  for (const DatabaseKind kind : {DatabaseKind::kRecipe, DatabaseKind::kTransaction}) {
    if (type == TextsOf(kind).user_type || type == TextsOf(kind).blank_type) {
      return kind;
    }
  }
  return std::nullopt;
}

// Counts a row as repaired only once.
void IdentityRows::Repaired(Part& part, const std::string& text) {
  const std::string table(part.table);
  if (part.counts.stored == 0) {
    notices_.Add(table, text);
    return;
  }
  part.counts.repaired = 1;
  notices_.AddRow(table, text, 1);
}

void IdentityRows::Store(SQLite::Database& database, DatabaseKind kind,
                         const std::string& default_unit) {
  StoreMarker(database, kind);
  StoreUnit(database, default_unit);
  StoreDates(database);
}

void IdentityRows::StoreMarker(SQLite::Database& database, DatabaseKind kind) {
  const std::string wanted(TextsOf(kind).user_type);
  const LegacyValue found = Value(marker_, kTypeField.column);
  if (TextOrEmpty(found) != wanted) {
    Repaired(marker_, std::string(kTypeField.column) + " was " + Shown(found) +
                          ", which is not the mark of such a file; " + wanted + " was stored");
  }
  WriteField(database, kTypeField, wanted);
}

void IdentityRows::StoreUnit(SQLite::Database& database, const std::string& default_unit) {
  const LegacyValue found = Value(units_, kUnitField.column);
  unit_ = UpperCase(TrimBlanks(TextOrEmpty(found)));
  if (unit_ != "LB" && unit_ != "KG") {
    unit_ = default_unit;
  }
  if (TextOrEmpty(found) != unit_) {
    Repaired(units_, std::string(kUnitField.column) + " was " + Shown(found) + "; " + unit_ +
                         " was stored");
  }
  WriteField(database, kUnitField, unit_);
}

void IdentityRows::StoreDates(SQLite::Database& database) {
  for (const OneRowField& field : {kCreatedField, kModifiedField}) {
    const FieldRule rule{.column = std::string(field.column), .kind = FieldKind::kDate};
    const LegacyValue found = Value(history_, field.column);
    Repairs repairs;
    const FieldValue value = ConvertField(rule, found, {}, repairs);
    if (const auto* const date = std::get_if<std::string>(&value)) {
      WriteField(database, field, *date);
    }
    for (const std::string& repair : repairs) {
      Repaired(history_, repair);
    }
    const auto* const stored = std::get_if<JetDate>(&found);
    const auto moment = stored == nullptr ? std::nullopt : ToMoment(*stored);
    if (moment && !(moment->time == TimeOfDay{})) {
      Repaired(history_, rule.column + " held the time " + StoredText(moment->time) +
                             " as well; only its day was stored");
    }
  }
}

void IdentityRows::Report(ConversionReport& report) const {
  for (const Part* const part : {&units_, &history_, &marker_}) {
    if (part->there) {
      report.tables.push_back(part->counts);
    }
  }
}

}  // namespace vrx
