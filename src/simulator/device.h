#pragma once

#include <optional>

#include "simulator/transmission.h"

namespace vrx::simulator {

// What is played at the far end of the line.
class Device {
 public:
  Device() = default;
  virtual ~Device() = default;
  Device(const Device&) = delete;
  Device& operator=(const Device&) = delete;

  // A byte that arrived, flow control taken out, and what it makes the device send. A command that
  // stays unanswered gives an empty transmission: it still ends one that gives way.
  virtual std::optional<Transmission> Receive(char byte) = 0;
};

}  // namespace vrx::simulator
