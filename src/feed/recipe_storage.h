#pragma once

#include <functional>

#include <SQLiteCpp/Database.h>

#include "feed/ration.h"

namespace vrx {

// Stores in what a recipe differs from `before`, which is what the database holds: head, changed,
// removed and added lines. A line that is added gets its row; entry rows are not stored. `changed`
// runs at the end of the step, where one is given; what it throws undoes the step.
//
// It is one step, inside the caller's transaction or by itself. Throws DatabaseError, with the
// database as it was. Writes nothing, and takes no lock, where nothing differs.
void StoreRecipe(SQLite::Database& database, const Ration& before, Ration& after,
                 const std::function<void()>& changed = {});

}  // namespace vrx
