#pragma once

#include <optional>
#include <string_view>

#include <SQLiteCpp/Database.h>

#include "database/records.h"
#include "platform/calendar.h"

namespace vrx {

// Store what stands in a record's form: the commits of record_commit.h, each as one transaction
// that sets `Modified`. Return whether the file had to change; where it had not, nothing is
// written.
//
// Throw DatabaseError and what the commits throw, with the record and the file as they were.
bool StoreRecord(SQLite::Database& database, IngredientRecord& record,
                 std::optional<std::string_view> batch_type_on_show, const Calendar& calendar);
bool StoreRecord(SQLite::Database& database, PenRecord& record, const Calendar& calendar);

}  // namespace vrx
