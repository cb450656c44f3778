#pragma once

#include <SQLiteCpp/Database.h>

#include "feed/record_fields.h"
#include "platform/calendar.h"

namespace vrx {

// Resets a record to its defaults and sets `Modified`, in one transaction. Returns false and
// changes nothing for an ingredient that is used in a recipe in use. A recipe loses its lines and
// its type but keeps HeadCount, RationTarget and AdjBatTotIndex. Throws DatabaseError.
[[nodiscard]] bool ResetRecord(SQLite::Database& database, RecordKind kind, int id,
                               const Calendar& calendar);

}  // namespace vrx
