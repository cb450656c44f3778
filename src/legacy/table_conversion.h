#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>

#include "database/exact_sum.h"
#include "legacy/conversion_report.h"
#include "legacy/field_rule.h"
#include "legacy/field_value.h"
#include "legacy/row_stream.h"

namespace vrx {

// Stores the rows of one table of the old file in the table of the same name, which already holds
// its fixed records with their defaults. Adds a notice for everything repaired, refused or left
// out. Runs within the caller's transaction. Throws DatabaseError.
class TableConversion {
 public:
  TableConversion(SQLite::Database& database, const TableRule& rule, LegacyTable table,
                  NoticeList& notices);

  void Row(const LegacyRow& row);
  void DamagedRow(const std::string& place);

  // Call it after the last row: reports missing records, counts and sums.
  void Finish(ConversionReport& report);

 private:
  struct Source {
    const FieldRule* rule;
    std::optional<std::size_t> column;  // of the old table
  };
  struct Sum {
    std::size_t field;
    ExactSum old_file;
  };

  void FindColumns();
  void ReportColumn(const Source& source);
  [[nodiscard]] const LegacyValue& ValueOf(const Source& source, const LegacyRow& row) const;
  std::optional<std::string> RefusalOf(const LegacyRow& row);
  void Convert(const LegacyRow& row);
  void SettleIds();
  void SettleMoment(const LegacyRow& row);
  void Store(int id);
  void ReportMissingRecords();
  void CheckStored();
  double StoredSum(const std::string& column);

  SQLite::Database& database_;
  const TableRule& rule_;
  LegacyTable table_;
  NoticeList& notices_;
  std::vector<Source> sources_;
  std::vector<FieldValue> values_;  // of the current row
  std::vector<int> ids_;            // of the current row, as many as the rule has
  Repairs repairs_;
  std::vector<bool> seen_;        // records by ID
  std::vector<int> line_counts_;  // lines by recipe
  std::vector<Sum> sums_;
  std::optional<std::size_t> date_;  // fields of a moment
  std::optional<std::size_t> time_;
  std::unique_ptr<SQLite::Statement> statement_;
  ConvertedTable counts_;
};

}  // namespace vrx
