#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "history/period.h"

namespace vrx {

// Shown by a user level for rows without a user. A stored user "-1" is treated as no user.
inline constexpr std::string_view kNoUserText = "(none)";

enum class ValueOrder { kAscending, kDescending };

// How a level treats rows that have no value for it. Except with kNoUser they have no inner levels
// and no records below: those are selected by the value, and nothing equals NULL.
enum class NullValues {
  kShown,    // an empty value of its own
  kSkipped,  // not part of the level
  kNoUser,   // the value kNoUserText, with its rows below
  kRefused,  // an error
};

// A group level: one element per distinct value of a field.
struct ExportLevel {
  std::string_view field;    // of the table Transactions
  std::string_view element;  // its name in XML
  ValueOrder order;
  NullValues nulls;
};

// A weight summed on the innermost level.
struct ExportWeight {
  std::string_view field;      // to sum
  std::string_view attribute;  // its name in XML
};

// The rows that the sums of the innermost level include.
enum class SummedRows {
  kOwn,                // the records below the group
  kWholeIfNoUser,      // the same; without a user the whole transaction
  kOfUserOrOfTheType,  // every row of the user and every row of the type; without a user the type
};

// How an export walks a data group: its levels from the outermost in, the records below the
// innermost, and the weights summed there. XML and CSV use the same plans.
struct ExportPlan {
  int group;
  int column_group;  // for IntializeExportColumn
  std::vector<ExportLevel> levels;
  std::string_view excluded;  // fields that records do not repeat, for BuildFieldList
  std::string_view ordering;  // ORDER BY of the records below a group; ties in stored order
  std::vector<ExportWeight> weights;
  std::vector<ExportWeight> fed_weights;  // instead of `weights`, for a type other than BATCH
  SummedRows summed;
  // A transaction on two dates is listed under both, each time with all its rows.
  bool whole_transactions;
};

// By index, 0 to 12.
[[nodiscard]] std::span<const ExportPlan> ExportPlans();

// nullptr for an index that is not a group.
[[nodiscard]] const ExportPlan* FindExportPlan(int group);

// The key that a level query returns for rows without a user.
inline constexpr std::string_view kNoUserKey = "-1";

// How the rows of a group by name are found: by ranges of transactions if an index begins with
// them, otherwise by scanning the table. Has no effect on other groups.
enum class NameSearch { kInTable, kInRanges };

// The fields that the sums of a plan need, in the column order of LevelSumQuery.
[[nodiscard]] std::vector<std::string_view> SummedFields(const ExportPlan& plan);

// The rows and the records that the queries of an export take.
struct ExportRows {
  NameSearch search = NameSearch::kInTable;
  Period period = {};
};

// Both queries return one column per level with its value, followed by the fields of each record or
// the sums of each innermost group. Both are sorted by the levels, so they can be read in parallel.
// Parameter 1 is the name of a group by name; for kInRanges parameter 2 is a JsonArray of the
// ranges of transactions. A period needs RegisterStoredDates.
//
// A field that is a difference is a text; it needs RegisterDifferences.
//
// A row may be NULL in an inner level that skips such rows: then the outer group is empty.
[[nodiscard]] std::string LevelRecordQuery(const ExportPlan& plan,
                                           std::span<const std::string> fields,
                                           const ExportRows& rows);
[[nodiscard]] std::string LevelSumQuery(const ExportPlan& plan, const ExportRows& rows);

// Like LevelSumQuery, but with the ComparisonTerms of the records below each innermost group.
[[nodiscard]] std::string LevelComparisonQuery(const ExportPlan& plan, const ExportRows& rows);

}  // namespace vrx
