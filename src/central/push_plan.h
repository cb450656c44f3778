#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
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

// Which import has stored a row: the last rows of a transaction are those of its last import, as
// many as that import has stored of it. Built for some imports; memory grows with the number of
// runs of rows, which is small because an import appends its rows.
class RowImports {
 public:
  // For the imports above `after` up to `last`. Throws SQLite::Exception.
  RowImports(SQLite::Database& database, std::int64_t after, std::int64_t last);

  // Fast for ascending rows. Nothing for a row of another import or of none.
  [[nodiscard]] std::optional<std::int64_t> ImportOf(std::int64_t row);

 private:
  struct Run {
    std::int64_t first;
    std::int64_t last;
    std::int64_t import;
  };
  void Add(std::int64_t row, std::int64_t import);

  std::vector<Run> runs_;  // ascending
  std::size_t next_ = 0;
};

}  // namespace vrx
