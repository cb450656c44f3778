#pragma once

#include <SQLiteCpp/Database.h>

namespace vrx {

// Databases made by earlier versions have no row numbers, and VACUUM may change their row IDs.
[[nodiscard]] bool HasRowNumbers(SQLite::Database& database);

// Adds the column RowNumber to `Transactions`; each row keeps its row ID as its number. Does
// nothing if the column is there. Rewrites no row, only the definition of the table, in a
// transaction of its own: a few milliseconds, whatever the size of the file. An older program reads
// and writes the file as before. Throws DatabaseError and leaves the file unchanged if the table
// has another key.
void AddRowNumbers(SQLite::Database& database);

}  // namespace vrx
