#pragma once

#include <chrono>

struct sqlite3;

namespace vrx {

// How long a connection of the command line waits for a lock of another program, per statement.
inline constexpr std::chrono::milliseconds kBusyTimeout{5000};

// Waiting time that several connections share. What one statement waits is gone for the next one,
// of whatever connection, until Renew. So a database that another program holds delays an
// operator's action once, not once for each statement of it.
class WaitBudget {
 public:
  explicit WaitBudget(std::chrono::milliseconds limit) : limit_(limit), left_(limit) {}

  void Renew() { left_ = limit_; }
  std::chrono::milliseconds Left() const { return left_; }

  // Takes at most `wanted`, and returns what it took: 0 once nothing is left.
  std::chrono::milliseconds Take(std::chrono::milliseconds wanted);

 private:
  std::chrono::milliseconds limit_;
  std::chrono::milliseconds left_;
};

// How a connection waits for a lock of another program: up to a time of its own for each statement,
// or out of a budget, which then has to outlive the connection.
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
