#pragma once

#include <optional>
#include <string>

#include <SQLiteCpp/Database.h>

#include "database/schema.h"
#include "legacy/conversion_report.h"
#include "legacy/row_stream.h"

namespace vrx {

// The identity of the old file: marker, unit and two dates, one row in each of three tables.
class IdentityRows {
 public:
  explicit IdentityRows(NoticeList& notices) : notices_(notices) {}

  // Returns whether the table is one of the three; if so, the next rows belong to it.
  [[nodiscard]] bool Begin(const LegacyTable& table);
  void Row(const LegacyRow& row);
  void DamagedRow(const std::string& place);

  // The kind that the marker specifies; the marker may be that of a blank template.
  [[nodiscard]] std::optional<DatabaseKind> MarkedKind() const;

  // Writes the identity of the new file. Throws DatabaseError.
  void Store(SQLite::Database& database, DatabaseKind kind, const std::string& default_unit);
  [[nodiscard]] const std::string& Unit() const { return unit_; }

  void Report(ConversionReport& report) const;

 private:
  struct Part {
    std::string_view table;
    bool there = false;  // the file has the table
    LegacyTable described = {};
    LegacyRow row = {};  // the first row
    ConvertedTable counts = {};
  };

  [[nodiscard]] LegacyValue Value(const Part& part, std::string_view column) const;
  void StoreMarker(SQLite::Database& database, DatabaseKind kind);
  void StoreUnit(SQLite::Database& database, const std::string& default_unit);
  void StoreDates(SQLite::Database& database);
  void Repaired(Part& part, const std::string& text);

  NoticeList& notices_;
  Part marker_{.table = kMarkerTable};
  Part units_{.table = kUnitsTable};
  Part history_{.table = kHistoryTable};
  Part* current_ = nullptr;
  std::string unit_;
};

}  // namespace vrx
