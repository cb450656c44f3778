#pragma once

#include <optional>
#include <string>
#include <string_view>

#include <SQLiteCpp/Database.h>

#include "database/identity.h"
#include "database/schema.h"
#include "platform/calendar.h"

namespace vrx {

// A field of a table of one row: what a file says of itself.
struct OneRowField {
  std::string_view table;
  std::string_view column;
};

inline constexpr OneRowField kTypeField{kMarkerTable, "dBType"};
inline constexpr OneRowField kCreatedField{kHistoryTable, "Created"};
inline constexpr OneRowField kModifiedField{kHistoryTable, "Modified"};
inline constexpr OneRowField kUnitField{kUnitsTable, "UoM"};

constexpr OneRowField DateField(DateSelector selector) {
  return selector == DateSelector::kCreated ? kCreatedField : kModifiedField;
}

// The field of the first row, nothing for NULL; DatabaseError (no record) without a row.
std::optional<std::string> ReadField(SQLite::Database& database, const OneRowField& field);
void WriteField(SQLite::Database& database, const OneRowField& field, std::string_view value);

// Throws DatabaseError for a text that is no date.
std::optional<Date> ReadDateField(SQLite::Database& database, const OneRowField& field);

}  // namespace vrx
