#pragma once

#include <cstdint>
#include <vector>

#include <SQLiteCpp/Database.h>

namespace vrx {

// What one transaction of a push takes to the central database: whole batches and the imports that
// stored them, so that no row is there without its unit.
struct PushPortion {
  std::int64_t first_row = 0;
  std::int64_t last_row = 0;  // 0 for imports that stored no row
  std::int64_t rows = 0;
  std::int64_t last_import = 0;  // all imports up to this number
};

// A portion grows until it has this many rows; its last batch or import is added whole.
inline constexpr std::int64_t kRowsOfPortion = 50000;

// Divides the rows above `after_row` and the imports above `after_import`. The rows of an import
// are the last ones before those of the next import. If the file has fewer rows than its imports
// have stored, all imports go with the first portion. One scan of the rows that wait. Throws
// DatabaseError.
[[nodiscard]] std::vector<PushPortion> PlanPush(SQLite::Database& database, std::int64_t after_row,
                                                std::int64_t after_import,
                                                std::int64_t rows_of_portion = kRowsOfPortion);

}  // namespace vrx
