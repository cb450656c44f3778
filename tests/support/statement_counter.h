#pragma once

namespace vrx::testing {

// Counts the statements that SQLite begins to run, on connections opened while it lives. One at a
// time.
class StatementCounter {
 public:
  StatementCounter();
  ~StatementCounter();
  StatementCounter(const StatementCounter&) = delete;
  StatementCounter& operator=(const StatementCounter&) = delete;

  int Count() const;
};

}  // namespace vrx::testing
