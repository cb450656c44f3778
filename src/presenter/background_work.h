#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

namespace vrx {

// Work in a thread of its own, so that the window goes on meanwhile. The end of the object cancels
// the work.
class BackgroundWork {
 public:
  // Of `total`, which is 0 where it is not known.
  struct Progress {
    std::string doing = {};
    std::int64_t done = 0;
    std::int64_t total = 0;
  };

  // The thread's side of the work.
  class Control {
   public:
    [[nodiscard]] bool Cancelled() const { return cancelled_; }
    [[nodiscard]] const std::atomic<bool>& CancelledFlag() const { return cancelled_; }

    // Before the work opens a file: the end of the object waits from now on until the work has
    // ended. Returns false if the object has ended before; the work must then do nothing more.
    [[nodiscard]] bool Enter();

    void Show(const std::string& doing, std::int64_t done, std::int64_t total);

   private:
    friend class BackgroundWork;
    enum class Phase { kOutside, kInside, kAbandoned };

    std::atomic<bool> cancelled_ = false;
    std::atomic<bool> ended_ = false;
    std::atomic<Phase> phase_ = Phase::kOutside;
    std::mutex mutex_;
    std::condition_variable ending_;
    Progress progress_;           // with the mutex
    std::exception_ptr failure_;  // before `ended_`
  };

  // `work` must share nothing that another thread uses, and own what it writes to: outside of a
  // file it may outlive the object, as in the look-up of a host's name, which cannot be cancelled.
  using Work = std::function<void(Control&)>;
  explicit BackgroundWork(Work work);
  // Waits for a work that is inside, and for a moment for one that is not.
  ~BackgroundWork();
  BackgroundWork(const BackgroundWork&) = delete;
  BackgroundWork& operator=(const BackgroundWork&) = delete;

  [[nodiscard]] bool Ended() const { return control_->ended_; }
  [[nodiscard]] Progress Shown() const;
  // Only after the end: throws what the work threw.
  void Rethrow() const;

 private:
  static void Run(Control& control, const Work& work);

  std::shared_ptr<Control> control_;
  std::thread thread_;
};

}  // namespace vrx
