#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "history/cell_value.h"
#include "history/group_query.h"
#include "history/outline.h"
#include "history/statements.h"

namespace vrx {

// What an outline is filled from. None of it reads a record: an index answers all. They throw
// SQLite::Exception.

// The values of the next level inside the group with the values `outer`, ascending, NULL first.
std::vector<CellValue> ReadLevelValues(Statements& statements, const GroupQuery& query,
                                       std::span<const CellValue> outer);

// Of an innermost group; without values of the whole table, as it is at the moment.
std::int64_t CountRecords(Statements& statements, const GroupQuery& query,
                          std::span<const CellValue> group);

// Every group with its number of records, all open.
Outline ReadWholeOutline(Statements& statements, const GroupQuery& query);

}  // namespace vrx
