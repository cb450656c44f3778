#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

namespace vrx {

// A property that cannot be set, a port that cannot be opened, or a lost line. what() is the
// platform's error with the device's name, fit for a `cause:` line.
class SerialError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

enum class Handshaking { kNone = 0, kXOnXOff = 1 };

// The serial control with its properties. Texts are bytes of any value.
//
// Arriving input and drained output end a wait of the EventPump that this control was created with.
class SerialControl {
 public:
  virtual ~SerialControl() = default;

  // Takes effect at once on an open port, otherwise when the port is opened. Ignored by a line that
  // has no DTR.
  virtual void SetDTREnable(bool on) = 0;

  virtual void SetInBufferSize(int bytes) = 0;
  virtual void SetOutBufferSize(int bytes) = 0;
  virtual void SetHandshaking(Handshaking mode) = 0;
  virtual void SetCommPort(int number) = 0;
  virtual void SetSettings(std::string_view settings) = 0;  // "19200,n,8,1"

  [[nodiscard]] virtual bool PortOpen() const = 0;

  // Opening throws SerialError; closing never does.
  virtual void SetPortOpen(bool open) = 0;

  // Bytes waiting to be read; 0 on a closed port. Throws SerialError if the line is lost.
  virtual int InBufferCount() = 0;
  virtual void DiscardInput() = 0;  // InBufferCount = 0

  // Bytes passed to Output that have not left the port yet; 0 on a closed port. Throws SerialError
  // if the line is lost.
  virtual int OutBufferCount() = 0;
  virtual void DiscardOutput() = 0;  // OutBufferCount = 0

  // Removes and returns all waiting bytes; empty on a closed port.
  [[nodiscard]] virtual std::string Input() = 0;

  // Queues bytes for sending. Throws SerialError if the port is closed or the line is lost.
  virtual void Output(std::string_view bytes) = 0;
};

}  // namespace vrx
