#pragma once

#include <filesystem>
#include <span>
#include <string>
#include <string_view>

#include "database/lock_wait.h"
#include "history/ingredient_column_names.h"

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

}  // namespace vrx
