#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>

#include "simulator/device.h"
#include "simulator/pty_line.h"
#include "simulator/transmitter.h"

namespace vrx::simulator {

// Connects a device to a line: passes on received bytes, sends its transmissions at their pace, and
// obeys XON and XOFF. Sleeps while there is nothing to do.
class LineLoop {
 public:
  LineLoop(PtyLine& line, Transmitter& transmitter, Device& device, Signals& signals);

  // Hangs up after sending that many bytes in total.
  void HangUpAfter(std::uint32_t bytes) { hang_up_after_ = bytes; }
  // After that many bytes have arrived and are answered, sends an XOFF or stops reading.
  void SendXoffAfter(std::uint32_t bytes) { xoff_after_ = bytes; }
  void StopReadingAfter(std::uint32_t bytes) { deaf_after_ = bytes; }

  // Runs until a signal stops it or the line is hung up; then waits until a reading client has
  // taken the last bytes. Calls `save` when a signal requests it. Bytes that a client sent before a
  // signal are received before the signal takes effect.
  void Run(const std::function<void()>& save);

 private:
  bool HeedSignals(const std::function<void()>& save);
  bool HeedLine();
  void Receive(std::string_view bytes, Time now);
  void ReceiveSentAhead();
  void Begin(Transmission transmission, Time now);
  bool Send();
  void SendXoff();
  void Wait();
  void AwaitTaken();
  [[nodiscard]] bool Deaf() const { return deaf_after_ && received_ >= *deaf_after_; }

  PtyLine& line_;
  Transmitter& transmitter_;
  Device& device_;
  Signals& signals_;
  std::optional<std::uint32_t> hang_up_after_;
  std::optional<std::uint32_t> xoff_after_;
  std::optional<std::uint32_t> deaf_after_;
  std::uint64_t sent_ = 0;  // bytes of all transmissions
  std::uint64_t received_ = 0;
};

}  // namespace vrx::simulator
