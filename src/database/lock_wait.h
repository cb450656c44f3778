#pragma once

#include <chrono>

struct sqlite3;

namespace vrx {

// Default wait of a statement for a lock of another program; used by the command line.
inline constexpr std::chrono::milliseconds kBusyTimeout{5000};

// Waiting time shared by several connections: each wait reduces it until Renew. So a locked
// database delays an action of the operator once, not once for each of its statements.
class WaitBudget {
 public:
  explicit WaitBudget(std::chrono::milliseconds limit) : limit_(limit), left_(limit) {}
  virtual ~WaitBudget() = default;

  void Renew() { left_ = limit_; }
  [[nodiscard]] std::chrono::milliseconds Left() const { return left_; }

  // Takes at most `wanted` and returns the time taken: 0 if nothing is left.
  [[nodiscard]] virtual std::chrono::milliseconds Take(std::chrono::milliseconds wanted);

 private:
  std::chrono::milliseconds limit_;
  std::chrono::milliseconds left_;
};

// How a connection waits for locks of other programs: a fixed time for each statement, or a shared
// budget, which must outlive the connection.
class LockWait {
 public:
  LockWait(std::chrono::milliseconds per_statement) : per_statement_(per_statement) {}
  LockWait(WaitBudget& budget) : budget_(&budget) {}

  void ApplyTo(sqlite3* connection) const;

 private:
  std::chrono::milliseconds per_statement_{0};
  WaitBudget* budget_ = nullptr;
};

}  // namespace vrx
