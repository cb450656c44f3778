#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "export/export_plan.h"

namespace vrx {

// What a level query gives for rows without a user.
inline constexpr std::string_view kNoUserKey = "-1";

// How the rows of a group by name are found: by the ranges of transactions, where an index is led
// by them, else in the table. It is all the same for other groups.
enum class NameSearch { kInTable, kInRanges };

// The fields that the sums of a plan need, in the order in which LevelSumQuery gives them.
std::vector<std::string_view> SummedFields(const ExportPlan& plan);

// Both queries give one column per level, the level's value, and then what they are asked for:
// the fields of each record, or the sums of each innermost group. Both come in the order of the
// levels, so that they can be read side by side. Parameter 1 is the name of a group by name; for
// kInRanges parameter 2 is a JsonArray of the ranges of transactions.
//
// A record's row may be NULL in an inner level that skips such rows: the group around it is there
// without anything below.
std::string LevelRecordQuery(const ExportPlan& plan, std::span<const std::string> fields,
                             NameSearch search);
std::string LevelSumQuery(const ExportPlan& plan, NameSearch search);

}  // namespace vrx
