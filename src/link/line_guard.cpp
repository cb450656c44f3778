#include "link/line_guard.h"

#include <utility>

namespace vrx {

LineGuard::Claim LineGuard::TakeForCommand() {
  return Free() ? std::make_unique<Hold>(*this, &LineGuard::command_) : nullptr;
}

LineGuard::Claim LineGuard::TakeForDirectConnection() {
  return Free() ? std::make_unique<Hold>(*this, &LineGuard::direct_) : nullptr;
}

LineGuard::Claim LineGuard::TakeForTransmission() {
  return AtWork() ? nullptr : std::make_unique<Hold>(*this, &LineGuard::transmission_);
}

LineGuard::Claim LineGuard::AllowCancel() {
  canceled_ = false;
  return std::make_unique<Hold>(*this, &LineGuard::cancelable_);
}

void LineGuard::Cancel() {
  if (cancelable_ && !canceled_) {
    Set(&LineGuard::canceled_, true);
  }
}

LineGuard::Watch LineGuard::OnChange(std::function<void()> changed) {
  auto watcher = std::make_shared<Watcher>(std::move(changed));
  watchers_.push_back(watcher);
  return watcher;
}

void LineGuard::Set(bool LineGuard::*flag, bool value) {
  this->*flag = value;
  std::erase_if(watchers_, [](const auto& watcher) { return watcher.expired(); });
  // Iterates over a copy, because a watcher may add another one.
  for (const auto& watcher : std::vector(watchers_)) {
    if (const auto call = watcher.lock()) {
      (*call)();
    }
  }
}

}  // namespace vrx
