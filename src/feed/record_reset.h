#pragma once

#include <SQLiteCpp/Database.h>

#include "feed/feed_action.h"
#include "feed/record_kind.h"

namespace vrx {

enum class ResetOutcome {
  kReset,
  kInUse,     // the operator was told that a recipe holds the ingredient
  kNotReset,  // the operator said no, or was told what failed
};

// Puts a record back in its default state, after a question, and sets `Modified`: one transaction,
// begun when the operator has answered. An ingredient that a recipe in use holds is refused. A
// recipe loses its lines and its type; HeadCount, RationTarget and AdjBatTotIndex keep their
// values. Anything but kReset leaves the file as it was.
ResetOutcome AskAndReset(SQLite::Database& database, RecordKind kind, int id,
                         const FeedPorts& ports);

// The same for who asks only whether it was reset.
inline bool ResetRecord(SQLite::Database& database, RecordKind kind, int id,
                        const FeedPorts& ports) {
  return AskAndReset(database, kind, id, ports) == ResetOutcome::kReset;
}

}  // namespace vrx
