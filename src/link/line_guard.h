#pragma once

#include <functional>
#include <memory>
#include <vector>

namespace vrx {

// Says who uses the serial line. Only one command may use it at a time: an upload, a download, a
// test, a clear, a baud rate, or the direct connection with the transmissions inside it.
class LineGuard {
 public:
  // The line belongs to the owner of a Hold until the Hold is destroyed. The guard outlives it.
  class Hold {
   public:
    Hold(LineGuard& guard, bool LineGuard::*flag) : guard_(guard), flag_(flag) {
      guard_.Set(flag_, true);
    }
    ~Hold() { guard_.Set(flag_, false); }
    Hold(const Hold&) = delete;
    Hold& operator=(const Hold&) = delete;

   private:
    LineGuard& guard_;
    bool LineGuard::*flag_;
  };
  using Claim = std::unique_ptr<Hold>;

  // Each returns null while the line is in use, and the caller then does nothing.
  [[nodiscard]] Claim TakeForCommand();
  [[nodiscard]] Claim TakeForDirectConnection();
  // For what the PC transmits inside a direct connection.
  [[nodiscard]] Claim TakeForTransmission();

  bool Free() const { return !command_ && !direct_ && !transmission_; }
  bool Direct() const { return direct_; }
  // A command or a transmission runs: it ends by itself within seconds, or within minutes.
  bool AtWork() const { return command_ || transmission_; }

  // Calls `changed` after each change, until the returned object is destroyed. The guard may be
  // destroyed first.
  using Watch = std::shared_ptr<void>;
  [[nodiscard]] Watch OnChange(std::function<void()> changed);

 private:
  using Watcher = std::function<void()>;

  void Set(bool LineGuard::*flag, bool value);

  bool command_ = false;
  bool direct_ = false;
  bool transmission_ = false;
  std::vector<std::weak_ptr<Watcher>> watchers_;
};

}  // namespace vrx
