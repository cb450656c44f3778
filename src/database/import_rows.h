#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <vector>

#include <SQLiteCpp/Database.h>

namespace vrx {

// Which import has stored a row: the last rows of a transaction are those of its last import, as
// many as that import has stored of it. Built for some imports; memory grows with the number of
// runs of rows, which is small because an import appends its rows.
class ImportRows {
 public:
  ImportRows() = default;
  // Of the imports with these numbers. Throws SQLite::Exception.
  ImportRows(SQLite::Database& database, const std::vector<std::int64_t>& imports);

  // Fast for ascending rows. Nothing for a row of another import or of none.
  [[nodiscard]] std::optional<std::int64_t> ImportOf(std::int64_t row) const;
  // Rows that are there of an import.
  [[nodiscard]] std::int64_t CountOf(std::int64_t import) const;

 private:
  struct Run {
    std::int64_t first;
    std::int64_t last;
    std::int64_t import;
  };
  void Add(std::int64_t row, std::int64_t import);

  std::vector<Run> runs_;  // ascending
  std::map<std::int64_t, std::int64_t> counts_;
  mutable std::size_t next_ = 0;  // the run that the last row was in or before
};

}  // namespace vrx
