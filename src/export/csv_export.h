#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "database/lock_wait.h"
#include "export/export_columns.h"
#include "export/level_walk.h"
#include "history/columns.h"
#include "history/period.h"

namespace vrx {

// Writes a data group as comma-separated values: a header line, then for each group a line with its
// value, its records and a total line. Windows-1252, CR LF.
class CSVExport {
 public:
  // The names outlive the object.
  explicit CSVExport(const IngredientColumnNames& ingredients) : ingredients_(ingredients) {}

  // `visible_columns` is the grid's GetVisibleColumnList. `name` selects the rows of a group by
  // name; other groups ignore it. Only rows whose own date is in the period. Returns false and
  // writes nothing for an index that is not a group.
  //
  // Deletes an existing file first and writes in place: a failure leaves the lines written so far.
  // Throws DatabaseError (an existing file is kept if the database does not open), FileError, and
  // Error for a row that has no value in the first column.
  [[nodiscard]] bool ExportData(int group, const std::filesystem::path& file,
                                const std::filesystem::path& transaction_database,
                                std::span<const std::string> visible_columns,
                                std::string_view name = {}, LockWait wait = kBusyTimeout,
                                const Period& period = {}) const;

 private:
  const IngredientColumnNames& ingredients_;
};

// The lines of a CSV export, without line ends: Windows-1252 ("?" for a character that it lacks),
// nothing quoted or escaped. Values have their default text form.

// The captions joined by ",", except those found anywhere in the exclude text.
[[nodiscard]] std::string BuildCsvHeader(const ColumnDictionary& dictionary,
                                         std::string_view exclude);

// Maps the columns of a dictionary to the cells of a list of fields.
class CsvColumns {
 public:
  CsvColumns(const ColumnDictionary& dictionary, std::span<const WalkedField> list);

  struct Place {
    std::optional<std::size_t> cell;  // empty for a column that is not in the list
    ColumnContent content;
  };
  [[nodiscard]] std::span<const Place> Places() const { return places_; }
  [[nodiscard]] const std::string& FirstCaption() const { return first_caption_; }

 private:
  std::vector<Place> places_;
  std::string first_caption_;
};

// The functions below append a line. `cells` match the list of fields that `columns` was made from.

// A data row has a "," after every cell; NULL and columns outside the list are empty. Throws Error
// if the first column is NULL.
void BuildCsvDataRow(const CsvColumns& columns, std::span<const CellView> cells, std::string& line);

// A row without groups has no "," after its last cell, and a blank for a NULL in the first.
void BuildCsvPlainRow(const CsvColumns& columns, std::span<const CellView> cells,
                      std::string& line);

// A single value without commas.
void BuildCsvValueLine(const CellView& value, ColumnContent content, std::string& line);

struct CsvTotal {
  std::string_view key;  // a field
  std::string value;
};

// The totals in the columns of their keys, a blank in every other column; a "," after every cell.
void BuildCsvTotalRow(const ColumnDictionary& dictionary, std::span<const CsvTotal> totals,
                      std::string& line);

}  // namespace vrx
