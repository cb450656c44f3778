#pragma once

#include <functional>
#include <string>

#include <SQLiteCpp/Database.h>

#include "feed/ration.h"
#include "platform/calendar.h"
#include "platform/progress_display.h"

namespace vrx {

// Writes only the differences from `before`, the stored recipe: head, changed, removed and added
// lines. Added lines get their rowid; entry rows are not stored. `changed`, if given, runs at the
// end of the transaction, and its exception undoes the step.
//
// Runs as one step, inside the caller's transaction or in its own. Throws DatabaseError and leaves
// the database unchanged. Without differences it neither writes nor locks.
void StoreRecipe(SQLite::Database& database, const Ration& before, Ration& after,
                 const std::function<void()>& changed = {});

// Recomputes every recipe with a description and stores the changed lines in one transaction, which
// also sets `Modified` if there are any. The progress bar runs from 1 to 100 with the recipes.
//
// A recipe that cannot be computed keeps its lines; the others are still stored. Returns one line
// with the reason for each such recipe. Throws DatabaseError and stores nothing.
[[nodiscard]] std::string RecomputeAllRecipes(SQLite::Database& database, ProgressDisplay& progress,
                                              const Calendar& calendar);

}  // namespace vrx
