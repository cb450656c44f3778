#pragma once

#include <string_view>

#include "platform/operator.h"

namespace vrx {

// The hourglass, for as long as the object lives.
class Hourglass {
 public:
  explicit Hourglass(Operator& op) : op_(op) { op_.SetBusy(true); }
  ~Hourglass() { op_.SetBusy(false); }
  Hourglass(const Hourglass&) = delete;
  Hourglass& operator=(const Hourglass&) = delete;

 private:
  Operator& op_;
};

// The status line of a transfer, always with the color of its words: blue and "Standby..." at its
// start, blue for what is neither success nor failure, green at a good end, red at a bad one.
void TellStandby(Operator& op);
void TellNeutral(Operator& op, std::string_view words);
void TellComplete(Operator& op, std::string_view words);
void TellFailed(Operator& op, std::string_view words);

}  // namespace vrx
