#include "database/lock_wait.h"

#include <algorithm>

#include <sqlite3.h>

namespace vrx {
namespace {

constexpr std::chrono::milliseconds kNap{10};

// Busy handler of SQLite. Returns 0 to fail the statement as locked.
int SpendBudget(void* budget, int /*calls*/) {
  const std::chrono::milliseconds nap = static_cast<WaitBudget*>(budget)->Take(kNap);
  if (nap.count() == 0) {
    return 0;
  }
  sqlite3_sleep(static_cast<int>(nap.count()));
  return 1;
}

}  // namespace

std::chrono::milliseconds WaitBudget::Take(std::chrono::milliseconds wanted) {
  const std::chrono::milliseconds taken = std::min(wanted, left_);
  left_ -= taken;
  return taken;
}

void LockWait::ApplyTo(sqlite3* connection) const {
  if (budget_ != nullptr) {
    sqlite3_busy_handler(connection, SpendBudget, budget_);
  } else {
    sqlite3_busy_timeout(connection, static_cast<int>(per_statement_.count()));
  }
}

}  // namespace vrx
