#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>

#include "simulator/device.h"
#include "simulator/pty_line.h"
#include "simulator/transmitter.h"

namespace vrx::simulator {

// Plays a device on a line: hands it what arrives, lets its transmissions leave at their pace,
// heeds XON and XOFF. Sleeps while there is nothing to do.
class LineLoop {
 public:
  LineLoop(PtyLine& line, Transmitter& transmitter, Device& device, Signals& signals);

  // The line is given up after that many bytes of all transmissions together.
  void HangUpAfter(std::uint32_t bytes) { hang_up_after_ = bytes; }
  // Once so many bytes have arrived and are answered, an XOFF tells the client to stop; or nothing
  // more is read.
  void SendXoffAfter(std::uint32_t bytes) { xoff_after_ = bytes; }
  void StopReadingAfter(std::uint32_t bytes) { deaf_after_ = bytes; }

  // Until a signal says stop or the line is to be hung up; the last bytes are then taken by the
  // client, if one reads. `save` runs whenever a signal says so. What a client sent ahead of a
  // signal has arrived when the signal takes effect.
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
  bool Deaf() const { return deaf_after_ && received_ >= *deaf_after_; }

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
