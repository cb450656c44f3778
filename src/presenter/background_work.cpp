#include "presenter/background_work.h"

#include <utility>

namespace vrx {
namespace {

// Work that is not in a look-up notices a cancel sooner.
constexpr std::chrono::milliseconds kPatience{500};

}  // namespace

bool BackgroundWork::Control::Enter() {
  Phase outside = Phase::kOutside;
  return phase_.compare_exchange_strong(outside, Phase::kInside) || outside == Phase::kInside;
}

void BackgroundWork::Control::Show(const std::string& doing, std::int64_t done,
                                   std::int64_t total) {
  const std::lock_guard lock(mutex_);
  progress_ = {.doing = doing, .done = done, .total = total};
}

BackgroundWork::BackgroundWork(Work work)
    : control_(std::make_shared<Control>()),
      thread_([control = control_, work = std::move(work)] { Run(*control, work); }) {}

BackgroundWork::~BackgroundWork() {
  Control& control = *control_;
  control.cancelled_ = true;
  auto outside = Control::Phase::kOutside;
  {
    std::unique_lock lock(control.mutex_);
    control.ending_.wait_for(lock, kPatience, [&] {
      return control.ended_ || control.phase_ == Control::Phase::kInside;
    });
  }
  if (!control.ended_ &&
      control.phase_.compare_exchange_strong(outside, Control::Phase::kAbandoned)) {
    thread_.detach();
  } else {
    thread_.join();
  }
}

BackgroundWork::Progress BackgroundWork::Shown() const {
  const std::lock_guard lock(control_->mutex_);
  return control_->progress_;
}

void BackgroundWork::Rethrow() const {
  if (control_->failure_) {
    std::rethrow_exception(control_->failure_);
  }
}

void BackgroundWork::Run(Control& control, const Work& work) {
  try {
    work(control);
  } catch (...) {
    control.failure_ = std::current_exception();
  }
  const std::lock_guard lock(control.mutex_);
  control.ended_ = true;
  control.ending_.notify_all();
}

}  // namespace vrx
