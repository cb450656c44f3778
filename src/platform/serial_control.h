#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

namespace vrx {

// A property that cannot be set, a port that cannot be opened, a line that is gone. what() says
// what the platform said, with the device's name, and is fit for a `cause:` line.
class SerialError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

enum class Handshaking { kNone = 0, kXOnXOff = 1 };

// The serial control by the names of its properties. One byte per character, any byte value.
//
// Arrivals and drained output end a wait of the EventPump that this control was made with.
class SerialControl {
 public:
  virtual ~SerialControl() = default;

  // Drives the DTR line while the port is open, and from the next opening on while it is closed. A
  // line that cannot drive DTR ignores it.
  virtual void SetDTREnable(bool on) = 0;

  virtual void SetInBufferSize(int bytes) = 0;
  virtual void SetOutBufferSize(int bytes) = 0;
  virtual void SetHandshaking(Handshaking mode) = 0;
  virtual void SetCommPort(int number) = 0;
  virtual void SetSettings(std::string_view settings) = 0;  // "19200,n,8,1"

  virtual bool PortOpen() const = 0;

  // Opening throws SerialError; closing never does.
  virtual void SetPortOpen(bool open) = 0;

  // Bytes waiting to be read. 0 on a closed port. Throws SerialError when the line is gone.
  virtual int InBufferCount() = 0;
  virtual void DiscardInput() = 0;  // InBufferCount = 0

  // Bytes handed over that have not left the port yet. 0 on a closed port. Throws SerialError when
  // the line is gone.
  virtual int OutBufferCount() = 0;
  virtual void DiscardOutput() = 0;  // OutBufferCount = 0

  // Takes all bytes waiting; empty on a closed port.
  virtual std::string Input() = 0;

  // Queues bytes for sending. Throws SerialError when the port is closed or the line is gone.
  virtual void Output(std::string_view bytes) = 0;
};

}  // namespace vrx
