#pragma once

#include <string>
#include <vector>

#include <SQLiteCpp/Database.h>

#include "feed/record_fields.h"
#include "platform/progress_display.h"
#include "presenter/report_failure.h"

namespace vrx {

// What the operator starts on the records: reset one, search where an ingredient is used, update
// all recipes. Questions are asked and failures are reported here.

enum class ResetOutcome {
  kReset,
  kInUse,     // the operator was told that a recipe holds the ingredient
  kNotReset,  // the operator said no, or was told what failed
};

// Puts a record back in its default state, after a question, and sets `Modified`: one transaction,
// begun when the operator has answered. An ingredient that a recipe in use holds is refused. A
// recipe loses its lines and its type; HeadCount, RationTarget and AdjBatTotIndex keep their
// values. Anything but kReset leaves the file as it was.
ResetOutcome AskAndReset(SQLite::Database& database, RecordKind kind, int id, Services& services);

// Recomputes every recipe that has a description and stores the lines that come out different, in
// one transaction; sets `Modified` if there are any. The bar runs from 1 to 100 with the recipes,
// and its message is cleared at the end.
//
// A recipe whose arithmetic fails keeps its lines as they were stored; the others are stored all
// the same, and the operator is told at the end which ones failed and why. Returns whether all were
// brought up to date. A failure of the storage is told and stores nothing.
bool UpdateRecipes(SQLite::Database& database, ProgressDisplay& progress, Services& services);

// The search as the operator starts it: what the list shows afterwards. Item 0 is the status,
// "Not Used" or "Done!"; behind it stand the recipes, "  3: STEERS". No item after a failure, which
// was told.
std::vector<std::string> SearchWhereUsed(SQLite::Database& database, int ingredient_id,
                                         Services& services);

}  // namespace vrx
