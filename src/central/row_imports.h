#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include <SQLiteCpp/Database.h>

namespace vrx {

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
