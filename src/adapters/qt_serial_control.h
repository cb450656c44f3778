#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/serial_control.h"

namespace vrx {

// A serial port of this machine: UART, USB adapter or pseudo-terminal. It lives in the event loop
// of the thread it is made in, where a QtEventPump waits for it.
//
// All properties but DTREnable take effect at the next opening. Buffers are at least as large as
// asked for: nothing that arrives is lost for want of room here. A device is in one program's hands
// only; SerialError tells a missing device, one in use, a forbidden one and one that is no serial
// device apart. Closing throws away what has not been sent.
class QtSerialControl : public SerialControl {
 public:
  // Gives the device's path of a port number; may throw SerialError.
  using DeviceOfPort = std::function<std::string(int)>;

  explicit QtSerialControl(DeviceOfPort device_of_port);
  ~QtSerialControl() override;

  void SetDTREnable(bool on) override;
  void SetInBufferSize(int bytes) override;
  void SetOutBufferSize(int bytes) override;
  void SetHandshaking(Handshaking mode) override;
  void SetCommPort(int number) override;
  void SetSettings(std::string_view settings) override;

  bool PortOpen() const override;
  void SetPortOpen(bool open) override;

  // What arrived ahead of the loss of a line can still be read; the count after that throws.
  int InBufferCount() override;
  void DiscardInput() override;
  int OutBufferCount() override;
  void DiscardOutput() override;
  std::string Input() override;
  void Output(std::string_view bytes) override;

 private:
  class Line;
  struct Properties;

  DeviceOfPort device_of_port_;
  std::unique_ptr<Properties> properties_;
  std::unique_ptr<Line> line_;  // null while closed
};

}  // namespace vrx
