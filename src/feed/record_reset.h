#pragma once

#include <SQLiteCpp/Database.h>

#include "feed/feed_action.h"
#include "feed/record_kind.h"

namespace vrx {

// Puts a record back in its default state, after a question, and sets `Modified`: one transaction,
// begun when the operator has answered. An ingredient that a recipe in use holds is refused. A
// recipe loses its lines and its type; HeadCount, RationTarget and AdjBatTotIndex keep their
// values.
//
// True when it was reset. False when the operator said no, or was told why it was not: the file is
// then as it was.
bool ResetRecord(SQLite::Database& database, RecordKind kind, int id, const FeedPorts& ports);

}  // namespace vrx
