#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "history/cell_value.h"
#include "history/group_query.h"
#include "history/statements.h"

namespace vrx {

// Where in the ranges of transactions the records of one group stand, for a ranged query. Reads the
// group's entries of the index once, and then, for a page, those of the ranges it touches. Throws
// SQLite::Exception.
class RecordRanges {
 public:
  RecordRanges(Statements& statements, const GroupQuery& query, std::vector<CellValue> group);

  // Whether all records of one range were stored ahead of all those of another: so it is unless
  // transactions were stored out of the order of their numbers. Only then can rowids be asked for.
  bool AreStoredInTurn() const { return stored_in_turn_; }

  // In stored order from the record at place `first`, from 0; fewer where there are not as many.
  std::vector<std::int64_t> Rowids(std::int64_t first, std::size_t length) const;

 private:
  struct Range {
    std::int64_t number;
    std::int64_t first_rowid;
    std::int64_t last_rowid;
    std::int64_t records;
    std::int64_t place;  // of its first record
  };

  void AppendRowids(const Range& range, std::int64_t offset, std::int64_t count,
                    std::vector<std::int64_t>& rowids) const;

  Statements& statements_;
  const GroupQuery& query_;
  std::vector<CellValue> group_;
  std::vector<Range> ranges_;  // those that hold records, in the order of their first ones
  bool stored_in_turn_;
};

}  // namespace vrx
