#pragma once

#include <functional>
#include <string>

#include <SQLiteCpp/Database.h>

#include "feed/ration.h"
#include "platform/calendar.h"
#include "platform/progress_display.h"

namespace vrx {

// Stores in what a recipe differs from `before`, which is what the database holds: head, changed,
// removed and added lines. A line that is added gets its row; entry rows are not stored. `changed`
// runs at the end of the step, where one is given; what it throws undoes the step.
//
// It is one step, inside the caller's transaction or by itself. Throws DatabaseError, with the
// database as it was. Writes nothing, and takes no lock, where nothing differs.
void StoreRecipe(SQLite::Database& database, const Ration& before, Ration& after,
                 const std::function<void()>& changed = {});

// Recomputes every recipe that has a description and stores the lines that come out different, in
// one transaction; sets `Modified` if there are any. The bar runs from 1 to 100 with the recipes.
//
// A recipe whose arithmetic fails keeps its lines; the others are stored all the same. Returns a
// line for each recipe that failed, with the reason; empty when none did. Throws DatabaseError with
// nothing stored.
std::string RecomputeAllRecipes(SQLite::Database& database, ProgressDisplay& progress,
                                const Calendar& calendar);

}  // namespace vrx
