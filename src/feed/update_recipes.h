#pragma once

#include <string>

#include <SQLiteCpp/Database.h>

#include "platform/calendar.h"
#include "platform/progress_display.h"

namespace vrx {

// Recomputes every recipe that has a description and stores the lines that come out different, in
// one transaction; sets `Modified` if there are any. The bar runs from 1 to 100 with the recipes.
//
// A recipe whose arithmetic fails keeps its lines; the others are stored all the same. Returns a
// line for each recipe that failed, with the reason; empty when none did. Throws DatabaseError with
// nothing stored.
std::string RecomputeAllRecipes(SQLite::Database& database, ProgressDisplay& progress,
                                const Calendar& calendar);

}  // namespace vrx
