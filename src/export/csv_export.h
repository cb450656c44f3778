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

namespace vrx {

// Writes a data group to a text file of comma-separated values: a header line, then the groups with
// a line for each value, the records and a total line. Windows-1252, CR LF.
class CSVExport {
 public:
  // The names outlive the object.
  explicit CSVExport(const IngredientColumnNames& ingredients) : ingredients_(ingredients) {}

  // `visible_columns` is the grid's GetVisibleColumnList; `name` that of a group by name, which
  // every other group takes no notice of. True when the file is written; false, with nothing done,
  // for an index that is no group.
  //
  // The file is deleted first and written in its place: what fails leaves the lines before it.
  // Throws DatabaseError (the old file stands if the database does not open), FileError, and Error
  // for a row that has no value in the first column.
  bool ExportData(int group, const std::filesystem::path& file,
                  const std::filesystem::path& transaction_database,
                  std::span<const std::string> visible_columns, std::string_view name = {},
                  LockWait wait = kBusyTimeout) const;

 private:
  const IngredientColumnNames& ingredients_;
};

// The lines of a CSV export, without their line ends: one byte per character (Windows-1252; a
// character that it lacks is a "?"), nothing quoted or escaped. Values come in their default text
// form.

// The captions joined by ",", but for those found anywhere in the exclude text.
std::string BuildCsvHeader(const ColumnDictionary& dictionary, std::string_view exclude);

// Where the cells of a list of fields stand among the columns of a dictionary.
class CsvColumns {
 public:
  CsvColumns(const ColumnDictionary& dictionary, std::span<const WalkedField> list);

  struct Place {
    std::optional<std::size_t> cell;  // nothing for a column that is not in the list
    ColumnContent content;
  };
  std::span<const Place> Places() const { return places_; }
  const std::string& FirstCaption() const { return first_caption_; }

 private:
  std::vector<Place> places_;
  std::string first_caption_;
};

// Each appends its line. `cells` are those of the list that the columns were made for.
//
// A data row has a "," behind every cell; the cells of other columns and of NULL are empty. The
// first column has no way to be NULL: throws Error.
void BuildCsvDataRow(const CsvColumns& columns, std::span<const CellView> cells, std::string& line);

// A row without groups has no "," behind its last cell, and a blank for a NULL in the first.
void BuildCsvPlainRow(const CsvColumns& columns, std::span<const CellView> cells,
                      std::string& line);

// A value on a line of its own, without any commas.
void BuildCsvValueLine(const CellView& value, ColumnContent content, std::string& line);

struct CsvTotal {
  std::string_view key;  // a field
  std::string value;
};

// The values in the columns of their keys, a blank in every other one; a "," behind every cell.
void BuildCsvTotalRow(const ColumnDictionary& dictionary, std::span<const CsvTotal> totals,
                      std::string& line);

}  // namespace vrx
