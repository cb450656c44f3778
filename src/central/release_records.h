#pragma once

#include <string>

#include <SQLiteCpp/Database.h>

#include "exchange/recipe_text.h"

namespace vrx {

class CentralConnection;

// The tables of one state of a recipe database. Throws DatabaseError.
[[nodiscard]] RecipeTables ReadSnapshot(SQLite::Database& database);

// Both throw CentralError. The first one also throws CentralRefused for a text that the central
// database cannot store; it has to run in the transaction that makes the release.
void WriteReleaseRecords(CentralConnection& server, int release, const RecipeTables& records);
[[nodiscard]] RecipeTables ReadReleaseRecords(CentralConnection& server, int release,
                                              const std::string& unit);

}  // namespace vrx
