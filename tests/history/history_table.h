#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include <SQLiteCpp/Database.h>

#include "history/group_query.h"
#include "history/grouped_rows.h"
#include "support/temp_folder.h"

namespace vrx::testing {

// Cells of a transaction by column index; missing ones are NULL.
using Cells = std::map<int, CellValue>;

// A transaction database with given rows.
class HistoryTable {
 public:
  HistoryTable();

  // Inserts in the given order; rowids continue after the last one.
  void Store(const std::vector<Cells>& rows);
  void StoreAt(std::int64_t rowid, const Cells& cells);
  // Uses a separate connection, like another program.
  void Exec(const std::string& statements) const;

  const std::filesystem::path& Path() const { return path_; }
  SQLite::Database& Database() { return database_; }

 private:
  TempFolder folder_;
  std::filesystem::path path_;
  SQLite::Database database_;  // for reading, as the grid opens it
};

// One line a row: a group as "+ VALUE" (closed) or "- VALUE", a total row as "= VALUE" and its sums
// as "INDEX:SUM", a record as the text of its column 9; indented by two blanks for each
// level.
std::vector<std::string> Lines(GroupedRows& rows);

std::string TextOf(const CellValue& value);

}  // namespace vrx::testing
