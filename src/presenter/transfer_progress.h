#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/event_pump.h"

namespace vrx {

// What the status line of a running transfer consists of.
struct TransferTexts {
  std::string_view begins;     // "Uploading from KRM....  "
  std::string_view percent;    // "%1% of the memory"
  std::string_view time_left;  // "at most %1 left", as a module may hold less than its memory
};

// The status line of a running transfer: the bytes so far, their share of the whole, and the time
// left at the pace measured so far.
class TransferProgress {
 public:
  TransferProgress(TransferTexts texts, std::int64_t whole) : texts_(texts), whole_(whole) {}

  // Call it at intervals. The pace is measured from the first arrival on, so the wait for it does
  // not count; the time left is shown after a second of it.
  [[nodiscard]] std::string Text(std::int64_t bytes, Milliseconds now);

 private:
  [[nodiscard]] std::string TimeLeft(std::int64_t bytes, Milliseconds now) const;

  TransferTexts texts_;
  std::int64_t whole_;  // bytes
  std::int64_t bytes_at_start_ = -1;
  Milliseconds start_{0};
};

}  // namespace vrx
