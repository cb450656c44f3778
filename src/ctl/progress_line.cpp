#include "ctl/progress_line.h"

#include <cstdint>
#include <ostream>

namespace vrx {
namespace {

constexpr std::string_view kToLineStartAndErase = "\r\x1B[K";

}  // namespace

void ProgressLine::SetProgressMessage(std::string_view text) {
  message_ = text;
  maximum_ = 0;
  Draw();
}

void ProgressLine::SetProgressRange(int maximum) {
  maximum_ = maximum;
  value_ = 0;
  Draw();
}

void ProgressLine::SetProgressValue(int value) {
  const int before = Percent();
  value_ = value;
  if (Percent() != before) {
    Draw();
  }
}

int ProgressLine::Percent() const {
  constexpr std::int64_t kWhole = 100;
  return maximum_ > 0 ? static_cast<int>(kWhole * value_ / maximum_) : 0;
}

void ProgressLine::Draw() {
  if (!on_terminal_) {
    return;
  }
  Clear();
  if (message_.empty()) {
    return;
  }
  err_ << message_;
  if (maximum_ > 0) {
    err_ << "  " << Percent() << '%';
  }
  err_.flush();
  drawn_ = true;
}

void ProgressLine::Clear() {
  if (drawn_) {
    err_ << kToLineStartAndErase;
    err_.flush();
    drawn_ = false;
  }
}

}  // namespace vrx
