#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vrx::testing {

// A serial line without modem lines. The test holds the far end; the near end is a device with a
// path.
class PseudoTerminal {
 public:
  PseudoTerminal();
  ~PseudoTerminal();
  PseudoTerminal(const PseudoTerminal&) = delete;
  PseudoTerminal& operator=(const PseudoTerminal&) = delete;

  const std::string& Device() const { return device_; }
  int FarEnd() const { return far_end_; }
  int NearEnd() const { return near_end_; }  // for looking at the line's settings

  void Write(std::string_view bytes) const;

  // What has arrived at the far end; waits for at least one byte, at most the given time.
  std::string Read(int limit_ms) const;

  // The line is gone for every process that has the device open.
  void HangUp();

 private:
  int far_end_ = -1;
  int near_end_ = -1;
  std::string device_;
};

}  // namespace vrx::testing
