#pragma once

#include <SQLiteCpp/Database.h>

#include "feed/feed_action.h"
#include "platform/progress_display.h"

namespace vrx {

// Recomputes every recipe that has a description and stores the lines that come out different, in
// one transaction; sets `Modified` if there are any. The bar runs from 1 to 100 with the recipes,
// and its message is cleared at the end.
//
// A recipe whose arithmetic fails keeps its lines as they were stored; the others are stored all
// the same, and the operator is told at the end which ones failed and why. Returns whether all were
// brought up to date. A failure of the storage is told and stores nothing.
bool UpdateRecipes(SQLite::Database& database, ProgressDisplay& progress, const FeedPorts& ports);

}  // namespace vrx
