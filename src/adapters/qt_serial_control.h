#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "platform/serial_control.h"

namespace vrx {

enum class Parity { kNone, kEven, kOdd, kMark, kSpace };

// The parts of "19200,n,8,1".
struct LineSettings {
  int baud = 9600;
  Parity parity = Parity::kNone;
  int data_bits = 8;
  int stop_bits = 1;

  bool operator==(const LineSettings&) const = default;
};

// Throws SerialError for a text of another form.
[[nodiscard]] LineSettings ParseLineSettings(std::string_view text);

// A serial port of this machine: UART, USB adapter or pseudo-terminal. It lives in the event loop
// of the thread that creates it, where a QtEventPump waits for it.
//
// All properties but DTREnable take effect at the next opening. Buffers are at least as large as
// requested: no arriving byte is lost for lack of space here. One program at a time can have a
// device open. SerialError distinguishes a missing device, one in use, a forbidden one and one that
// is not a serial device. Closing discards what has not been sent.
class QtSerialControl : public SerialControl {
 public:
  // Returns the path of a port number's device; may throw SerialError.
  using DeviceOfPort = std::function<std::string(int)>;

  explicit QtSerialControl(DeviceOfPort device_of_port);
  ~QtSerialControl() override;

  void SetDTREnable(bool on) override;
  void SetInBufferSize(int bytes) override;
  void SetOutBufferSize(int bytes) override;
  void SetHandshaking(Handshaking mode) override;
  void SetCommPort(int number) override;
  void SetSettings(std::string_view settings) override;

  [[nodiscard]] bool PortOpen() const override;
  void SetPortOpen(bool open) override;

  // What arrived before the loss of a line can still be read; then the count throws.
  [[nodiscard]] int InBufferCount() override;
  void DiscardInput() override;
  [[nodiscard]] int OutBufferCount() override;
  void DiscardOutput() override;
  [[nodiscard]] std::string Input() override;
  void Output(std::string_view bytes) override;

 private:
  class Line;
  struct Properties;

  DeviceOfPort device_of_port_;
  std::unique_ptr<Properties> properties_;
  std::unique_ptr<Line> line_;  // null while closed
};

}  // namespace vrx
