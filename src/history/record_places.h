#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "history/cell_value.h"
#include "history/group_query.h"
#include "history/statements.h"

namespace vrx {

// Where in the table the records of one group stand, in the order they were stored. Knows the rowid
// of its ends and of some places between, more of them with every question, and walks the index
// from the nearest: a gap in the rowids costs a walk once, and none costs nothing.
class RecordPlaces {
 public:
  RecordPlaces(Statements& statements, const GroupQuery& query, std::vector<CellValue> group,
               std::int64_t count);

  // The lowest rowid that the record at that place, from 0, can have: no record ahead of it has
  // one that high. Nothing where there are fewer records by now. Throws SQLite::Exception.
  std::optional<std::int64_t> LowestRowid(std::int64_t place);

  // A place whose lowest rowid is known, as at the end of a page.
  void Note(std::int64_t place, std::int64_t lowest_rowid) { noted_ = {place, lowest_rowid}; }

 private:
  using Mark = std::pair<const std::int64_t, std::int64_t>;  // place, rowid

  enum class Direction { kUp, kDown };

  void MarkEnds();
  Mark Below(std::int64_t place) const;
  std::optional<std::int64_t> Walk(Mark from, std::int64_t place, Direction direction);
  std::optional<std::int64_t> Skip(std::int64_t rowid, std::int64_t records, Direction direction);

  Statements& statements_;
  const GroupQuery& query_;
  std::vector<CellValue> group_;
  std::int64_t count_;
  std::map<std::int64_t, std::int64_t> marks_;
  std::pair<std::int64_t, std::int64_t> noted_{-1, 0};
};

}  // namespace vrx
