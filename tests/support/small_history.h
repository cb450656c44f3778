#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <SQLiteCpp/Database.h>

#include "history/history_grid.h"
#include "support/temp_folder.h"

namespace vrx::testing {

// A transaction database of eight rows: two dates in transaction 1, no user in transaction 2, a
// feed without a batch in transaction 3, and a batch row of nothing but NULLs.
SQLite::Database SmallHistory(const TempFolder& folder, std::string_view name = "SMALL.TDB");

// A recipe database: CORN and hAY in ingredients 1 and 2; recipes HEIFER and STEERS; pens A01 and
// A02, and pen 3 with feed alone; all else as the template has it.
SQLite::Database SmallRecipes(const TempFolder& folder, std::string_view name = "SMALL.RDB");

// The rows as they are shown: "[1] Recipe:STEERS" for a group at depth 1, "3: 17|STEERS" for a
// record and "=2: Total:|500" for a total, with the visible columns in their order.
std::vector<std::string> ShownLines(HistoryGrid& grid);

// The captions of the visible columns.
std::vector<std::string> VisibleCaptions(const HistoryGrid& grid);

}  // namespace vrx::testing
