#include <algorithm>
#include <utility>
#include <vector>

#include <SQLiteCpp/Transaction.h>
#include <sqlite3.h>

#include "base/files.h"
#include "base/translation.h"
#include "base/uuid.h"
#include "central/administration.h"
#include "central/push_plan.h"
#include "central/push_steps.h"
#include "central/server.h"
#include "central/server_source.h"
#include "central/transfer.h"
#include "database/central_source.h"
#include "database/connection.h"
#include "database/identity.h"
#include "database/imports.h"

namespace vrx {
namespace {

namespace fs = std::filesystem;

constexpr int kStepsBetween = 10000;  // of the virtual machine, below a millisecond

// Ends any statement of the file, such as the scan of a large one, when the caller stops the work.
int StopIfAsked(void* progress) {
  return static_cast<const CentralProgress*>(progress)->go_on() ? 0 : 1;
}

class PushRun {
 public:
  PushRun(CentralConnection& server, const PushOrder& order, const CentralProgress& progress)
      : server_(server),
        order_(order),
        progress_(progress),
        yard_(FindYard(server, order.yard)),
        database_(OpenDatabase(order.file, Access::kWrite, order.lock_wait)),
        unit_(ReadField(database_, kUnitField).value_or("")),
        here_(MakeCentralSource(database_, order.machine)),
        stored_(here_) {}

  PushOutcome Run() {
    sqlite3_progress_handler(database_.getHandle(), kStepsBetween, StopIfAsked,
                             const_cast<CentralProgress*>(&progress_));
    progress_.Report(Tr("Comparing with the central database"), 0, 0);
    RequireUnit();
    NoteMachine();
    FindThere();
    PushMarks(server_, yard_, there_, database_, unit_);
    const std::vector<PushPortion> portions =
        PlanPush(database_, there_.last_row, there_.last_import, order_.rows_of_portion);
    std::int64_t total = 0;
    for (const PushPortion& portion : portions) {
      total += portion.rows;
    }
    for (const PushPortion& portion : portions) {
      PushOne(portion, total);
    }
    NotePushed(there_.last_row, outcome_.at.empty() ? there_.pushed_at : outcome_.at);
    outcome_.source = here_.source;
    outcome_.last_row = std::max<std::int64_t>(there_.last_row, 0);
    outcome_.at = here_.pushed_at;
    return std::move(outcome_);
  }

 private:
  void RequireUnit() const {
    if (unit_ != "LB" && unit_ != "KG") {
      throw CentralRefused(
          Tr("the weights of %1 have no unit that the central database knows: LB or KG",
             {FileTitle(order_.file)}));
    }
  }

  // A file that was pushed from another computer is a copy of its own from now on.
  void NoteMachine() {
    if (here_.machine == order_.machine || order_.machine.empty()) {
      return;
    }
    if (here_.watched_to > 0 && !here_.machine.empty()) {
      here_.parent = std::exchange(here_.generation, NewUuid());
    }
    here_.machine = order_.machine;
    Store();
  }

  void FindThere() {
    std::optional<ServerSource> there = FindSource(server_, yard_, here_.source);
    if (!there) {
      there = FindOriginal(database_, server_, yard_);
    }
    if (!there) {
      MakeThere({.source = here_.source});
      return;
    }
    if (there->generation != here_.generation && order_.as_new_source) {
      Fork(*there);
      return;
    }
    CheckContinues(database_, server_, yard_, *there, here_, progress_);
    there_ = std::move(*there);
  }

  // Becomes a source of its own, which begins after the last row that it has in common with the
  // source that it is a copy of. The server learns of it first: a source without its parent would
  // push the parent's rows once more.
  void Fork(const ServerSource& origin) {
    const std::int64_t common =
        FindCommonRows(database_, server_, yard_, ReadParts(server_, yard_, origin), progress_);
    ServerSource fork{.source = NewUuid()};
    if (common != kBeforeFirstRow) {
      fork.parent = origin.source;
      fork.parent_last_row = common;
      fork.last_row = common;
    }
    MakeThere(fork, origin.generation);
    SQLite::Transaction transaction(database_, SQLite::TransactionBehavior::IMMEDIATE);
    here_.source = fork.source;
    here_.parent = origin.generation;
    here_.watched_to = std::max<std::int64_t>(common, 0);
    here_.pushed_to = here_.watched_to;
    here_.pushed_at = {};
    Store();
    ForgetAllCentralChanges(database_);
    transaction.commit();
  }

  void MakeThere(const ServerSource& source, const std::string& parent_generation = {}) {
    MakeServerSource(server_, yard_,
                     {.source = source,
                      .generation = here_.generation,
                      .parent_generation = source.parent.empty() ? "" : parent_generation,
                      .unit = unit_,
                      .file = FileTitle(order_.file)});
    there_ = source;
    there_.generation = here_.generation;
    there_.unit = unit_;
  }

  // The triggers watch the rows from before they are sent.
  void PushOne(const PushPortion& portion, std::int64_t total) {
    here_.watched_to = std::max(here_.watched_to, portion.last_row);
    Store();
    const PortionOrder order{.yard = yard_,
                             .source = here_.source,
                             .generation = here_.generation,
                             .unit = unit_,
                             .after_row = there_.last_row,
                             .after_import = there_.last_import,
                             .pushed_before = outcome_.rows + outcome_.skipped,
                             .total = total};
    const PortionResult result = PushPortionRows(server_, database_, portion, order, progress_);
    outcome_.rows += result.rows;
    outcome_.skipped += result.skipped;
    outcome_.imports += result.imports;
    ++outcome_.portions;
    there_.last_import = portion.last_import;
    if (portion.rows > 0) {
      there_.last_row = portion.last_row;
      outcome_.at = result.at;
      NotePushed(portion.last_row, result.at);
    }
  }

  void NotePushed(std::int64_t last_row, const std::string& at) {
    here_.pushed_to = std::max<std::int64_t>(last_row, 0);
    here_.watched_to = std::max(here_.watched_to, here_.pushed_to);
    here_.pushed_at = at;
    Store();
  }

  // Each write waits for the disk.
  void Store() {
    if (here_ != stored_) {
      WriteCentralSource(database_, here_);
      stored_ = here_;
    }
  }

  CentralConnection& server_;
  const PushOrder& order_;
  const CentralProgress& progress_;
  std::string yard_;  // its ID
  SQLite::Database database_;
  std::string unit_;
  CentralSource here_;
  CentralSource stored_;  // as the file has it
  ServerSource there_;
  PushOutcome outcome_;
};

}  // namespace

PushOutcome Push(CentralConnection& server, const PushOrder& order,
                 const CentralProgress& progress) {
  CheckCentralSchema(server);
  try {
    return WithDatabaseErrors(order.file, [&] { return PushRun(server, order, progress).Run(); });
  } catch (const DatabaseError&) {
    progress.Check();
    throw;
  }
}

}  // namespace vrx
