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

// The cells of a transaction by column index, those left out NULL.
using Cells = std::map<int, CellValue>;

// A transaction database with rows of one's own.
class HistoryTable {
 public:
  HistoryTable();

  // In the order given; rowids go on from the last one.
  void Store(const std::vector<Cells>& rows);
  void StoreAt(std::int64_t rowid, const Cells& cells);
  // By a connection of its own, as another program would.
  void Exec(const std::string& statements) const;

  const std::filesystem::path& Path() const { return path_; }
  SQLite::Database& Database() { return database_; }

 private:
  TempFolder folder_;
  std::filesystem::path path_;
  SQLite::Database database_;  // for reading, as the grid opens it
};

// One line a row: a group as "+ VALUE" (closed) or "- VALUE", a total row as "= VALUE" and its sums
// as "INDEX:SUM", a record as the text of its column 9; each behind two blanks for a level of
// depth.
std::vector<std::string> Lines(GroupedRows& rows);

std::string TextOf(const CellValue& value);

}  // namespace vrx::testing
