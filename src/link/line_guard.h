#pragma once

#include <functional>
#include <memory>
#include <vector>

namespace vrx {

// Records who uses the serial line. Only one operation may use it at a time: a command (upload,
// download, test, clear, baud rate) or the direct connection with its transmissions.
class LineGuard {
 public:
  // The owner of a Hold has the line until the Hold is destroyed. The guard must outlive it.
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

  // These return null if the line is in use; the caller must not use it then.
  [[nodiscard]] Claim TakeForCommand();
  [[nodiscard]] Claim TakeForDirectConnection();
  // For a transmission inside a direct connection.
  [[nodiscard]] Claim TakeForTransmission();

  [[nodiscard]] bool Free() const { return !command_ && !direct_ && !transmission_; }
  [[nodiscard]] bool Direct() const { return direct_; }
  // A command or a transmission is running. It ends by itself within seconds or minutes.
  [[nodiscard]] bool AtWork() const { return command_ || transmission_; }

  // The running command can be canceled during the lifetime of the result. One at a time.
  [[nodiscard]] Claim AllowCancel();
  [[nodiscard]] bool Cancelable() const { return cancelable_; }
  // Ends the command at its next wait. Does nothing if it cannot be canceled.
  void Cancel();
  [[nodiscard]] bool Canceled() const { return cancelable_ && canceled_; }

  // Calls `changed` after each change until the returned object is destroyed. The guard may be
  // destroyed first.
  using Watch = std::shared_ptr<void>;
  [[nodiscard]] Watch OnChange(std::function<void()> changed);

 private:
  using Watcher = std::function<void()>;

  void Set(bool LineGuard::*flag, bool value);

  bool command_ = false;
  bool direct_ = false;
  bool transmission_ = false;
  bool cancelable_ = false;
  bool canceled_ = false;
  std::vector<std::weak_ptr<Watcher>> watchers_;
};

}  // namespace vrx
