#pragma once

#include <SQLiteCpp/Database.h>

#include "feed/record_fields.h"
#include "platform/calendar.h"

namespace vrx {

// Puts a record back in its default state and sets `Modified`, in one transaction. Returns false,
// with the file unchanged, for an ingredient that a recipe in use holds. A recipe loses its lines
// and its type; HeadCount, RationTarget and AdjBatTotIndex keep their values. Throws DatabaseError.
bool ResetRecord(SQLite::Database& database, RecordKind kind, int id, const Calendar& calendar);

}  // namespace vrx
