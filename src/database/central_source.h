#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <SQLiteCpp/Database.h>

namespace vrx {

// What a transaction database knows of itself as a source of the central database. It is in the
// file only after the first push: a file that is never pushed has no table and no trigger for it.
struct CentralSource {
  std::string source = {};      // UUID
  std::string generation = {};  // UUID; a copy made by Save As or Restore has one of its own
  std::string parent = {};      // the generation that it was copied from; "" for the first
  std::string machine = {};     // that pushed the file last
  // Rows up to this number can be in the central database: triggers note what happens to them.
  std::int64_t watched_to = 0;
  std::int64_t pushed_to = 0;  // rows up to this number are there, as far as this file knows
  std::string pushed_at = {};  // server time of the last push, ISO 8601; "" before
  // The unit of the weights when the first row was pushed: "LB", "KG" or another text of the file.
  std::string unit = {};

  friend bool operator==(const CentralSource& one, const CentralSource& other) = default;
};

// A row up to CentralSource::watched_to that was added, changed or deleted.
struct CentralChange {
  std::int64_t row = 0;
  std::string what = {};  // "added", "changed" or "deleted"
};

// All functions below throw DatabaseError.

// Nothing if the file was never pushed.
[[nodiscard]] std::optional<CentralSource> ReadCentralSource(SQLite::Database& database);

// Adds the row numbers, the tables and the triggers, and a source of its own with new UUIDs. Does
// nothing if the file is a source. An import becomes slower by less than a tenth.
CentralSource MakeCentralSource(SQLite::Database& database, std::string_view machine);

// Replaces the stored source; its tables must be there.
void WriteCentralSource(SQLite::Database& database, const CentralSource& source);

// The file becomes a generation of its own, with the present one as parent. Does nothing if it is
// no source.
void RenewGeneration(SQLite::Database& database);

// The first `limit` noted changes, by row.
[[nodiscard]] std::vector<CentralChange> ReadCentralChanges(SQLite::Database& database,
                                                            std::size_t limit);
[[nodiscard]] std::int64_t CountCentralChanges(SQLite::Database& database);

// Forgets the notes of the rows, because the central database has the same rows.
void ForgetCentralChanges(SQLite::Database& database, const std::vector<std::int64_t>& rows);
void ForgetAllCentralChanges(SQLite::Database& database);

// Number of rows above `row`, which takes time in proportion, and the highest row number (0 without
// rows), one search.
[[nodiscard]] std::int64_t CountRowsAbove(SQLite::Database& database, std::int64_t row);
[[nodiscard]] std::int64_t HighestRow(SQLite::Database& database);

// Databases made by earlier versions have no row numbers, and VACUUM may change their row IDs.
[[nodiscard]] bool HasRowNumbers(SQLite::Database& database);

// Adds the column RowNumber to `Transactions`; each row keeps its row ID as its number. Does
// nothing if the column is there. Rewrites no row, only the definition of the table, in a
// transaction of its own: a few milliseconds, whatever the size of the file. An older program reads
// and writes the file as before. Throws DatabaseError and leaves the file unchanged if the table
// has another key.
void AddRowNumbers(SQLite::Database& database);

}  // namespace vrx
