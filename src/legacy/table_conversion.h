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

// Stores the rows of one table of the old file in the table of the same name, whose fixed records
// stand there with their defaults. What is repaired, refused or left out goes to the notices. The
// caller's transaction encloses it. Throws DatabaseError when the storage fails.
class TableConversion {
 public:
  TableConversion(SQLite::Database& database, const TableRule& rule, LegacyTable table,
                  NoticeList& notices);

  void Row(const LegacyRow& row);
  void DamagedRow(const std::string& place);

  // After the last row: what is missing, the counts and the sums.
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
  const LegacyValue& ValueOf(const Source& source, const LegacyRow& row) const;
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
  std::vector<FieldValue> values_;  // of the row at hand
  std::vector<int> ids_;            // of the row at hand, as many as the rule has
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
