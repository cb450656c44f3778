#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <SQLiteCpp/Database.h>

namespace vrx {

// The ranges of transactions that have rows, ascending, each found by one search of an index.
// Nothing where no index of the table is led by a range and then `columns`, such as "Recipe, Type":
// a database of another making is read without ranges. Throws SQLite::Exception.
std::optional<std::vector<std::int64_t>> ReadTransactionRanges(SQLite::Database& database,
                                                               std::string_view columns);

// " AND ..." for a query of the rows in certain ranges, so that an index led by ranges is searched
// for each of them. `parameter`, such as "?2", is bound to a JsonArray of the ranges.
std::string InTransactionRanges(std::string_view parameter);

// "[1,2,3]", for the engine's json_each.
std::string JsonArray(std::span<const std::int64_t> numbers);

}  // namespace vrx
