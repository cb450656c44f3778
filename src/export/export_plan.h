#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vrx {

// What a user level shows for rows without a user. A stored user "-1" counts as none.
inline constexpr std::string_view kNoUserText = "(none)";

// The `Type` of a batched row; every other type counts as fed.
inline constexpr std::string_view kBatchType = "BATCH";

enum class ValueOrder { kAscending, kDescending };

// What a level does with rows that have no value for it. Whatever it does, nothing stands below:
// the inner levels and the records are asked by the value, and nothing equals NULL.
enum class NullValues {
  kShown,    // an empty value of its own
  kSkipped,  // not part of the level
  kNoUser,   // a value like any other, kNoUserText, with its rows below
  kRefused,  // an error
};

// A group level: one element per distinct value of a field.
struct ExportLevel {
  std::string_view field;    // of the table Transactions
  std::string_view element;  // its name in XML
  ValueOrder order;
  NullValues nulls;
};

// A weight that stands on the innermost level.
struct ExportWeight {
  std::string_view field;      // the summed one
  std::string_view attribute;  // its name in XML
};

// Which rows the sums of the innermost level take in.
enum class SummedRows {
  kOwn,                // the records below the group
  kWholeIfNoUser,      // the same; without a user the whole transaction
  kOfUserOrOfTheType,  // every row of the user and every row of the type; without a user the type
};

// How an export walks a data group: its levels from the outside in, the records below the last one,
// and the weights that stand there. XML and CSV go by the same table.
struct ExportPlan {
  int group;
  int column_group;  // the index that IntializeExportColumn gets
  std::vector<ExportLevel> levels;
  std::string_view excluded;  // from the fields of a record, for BuildFieldList
  std::string_view ordering;  // of the records below a group, an ORDER BY; equal ones as stored
  std::vector<ExportWeight> weights;
  std::vector<ExportWeight> fed_weights;  // instead, where the innermost level is a type but BATCH
  SummedRows summed;
  // A transaction on two dates stands under both, each time with all its rows.
  bool whole_transactions;
};

// By index, 0 to 12.
std::span<const ExportPlan> ExportPlans();

// nullptr for an index that is none.
const ExportPlan* FindExportPlan(int group);

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
