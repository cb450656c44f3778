#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "database/connection.h"
#include "database/missing_records.h"
#include "database/schema.h"
#include "platform/calendar.h"

namespace vrx {

// Records in use.
struct RecipeCounts {
  std::int64_t ingredients = 0;
  std::int64_t recipes = 0;
  std::int64_t pens = 0;
};

struct TransactionCounts {
  std::int64_t rows = 0;
  std::int64_t transactions = 0;  // distinct numbers
  std::optional<Date> first_date;
  std::optional<Date> last_date;
};

// Overview of a database file.
struct DatabaseSummary {
  DatabaseKind kind = DatabaseKind::kRecipe;
  bool blank = false;  // a template or a fresh copy of one
  std::string unit;    // "" if it has none
  std::optional<Date> created;
  std::optional<Date> modified;
  RecipeCounts recipe;            // of a recipe database
  MissingRecords missing;         // of a recipe database
  TransactionCounts transaction;  // of a transaction database
};

// Reads everything in one read transaction and scans the table at most once. Throws DatabaseError,
// also for a file with an unknown type in its marker table.
DatabaseSummary ReadDatabaseSummary(const std::filesystem::path& path,
                                    LockWait wait = kBusyTimeout);

}  // namespace vrx
