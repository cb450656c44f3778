#pragma once

#include <functional>

namespace vrx::testing {

// Counts the statements that SQLite begins to run, on connections opened while it lives. One at a
// time. `at_each`, if given, is called as each of them begins.
class StatementCounter {
 public:
  explicit StatementCounter(std::function<void()> at_each = {});
  ~StatementCounter();
  StatementCounter(const StatementCounter&) = delete;
  StatementCounter& operator=(const StatementCounter&) = delete;

  int Count() const;
};

}  // namespace vrx::testing
