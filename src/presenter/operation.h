#pragma once

#include <utility>

#include "platform/operator.h"

namespace vrx {

// Shows the busy cursor during its lifetime. They nest: the cursor is shown until the last one
// ends.
class BusyCursor {
 public:
  explicit BusyCursor(Operator& op) : op_(op) { op_.SetBusy(true); }
  ~BusyCursor() { op_.SetBusy(false); }
  BusyCursor(const BusyCursor&) = delete;
  BusyCursor& operator=(const BusyCursor&) = delete;

 private:
  Operator& op_;
};

// Lets one operation run at a time: events that run meanwhile may try to start it again.
class OperationLock {
 public:
  // True for the operation that entered, which has the lock until the end of this object. The lock
  // outlives it.
  class Scope {
   public:
    Scope(Scope&& other) noexcept : lock_(std::exchange(other.lock_, nullptr)) {}
    Scope& operator=(Scope&&) = delete;
    ~Scope() {
      if (lock_ != nullptr) {
        lock_->running_ = false;
      }
    }

    explicit operator bool() const { return lock_ != nullptr; }

   private:
    friend class OperationLock;
    explicit Scope(OperationLock* lock) : lock_(lock) {}

    OperationLock* lock_;
  };

  // False while another operation runs.
  [[nodiscard]] Scope TryEnter() { return Scope(std::exchange(running_, true) ? nullptr : this); }

  [[nodiscard]] bool Running() const { return running_; }

 private:
  bool running_ = false;
};

}  // namespace vrx
