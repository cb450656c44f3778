#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/indicator_script.h"
#include "simulator/pty_line.h"
#include "simulator/reply_tap.h"
#include "simulator/signals.h"
#include "simulator/transmission.h"

namespace vrx::simulator {

// The PC did not do what the script expects; the text tells the line, what was expected and what
// came.
class Mismatch : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Plays a script on a line, at the pace of 19200 baud. Every byte is data: there is no flow control
// in the direct connection.
//
// A save listens to the bytes that the steps behind it take, and is done when a whole reply has
// come. A reply that was asked for ahead of the save is waited for before anything else is sent,
// and any reply before the script ends.
class Indicator {
 public:
  Indicator(PtyLine& line, Signals& signals) : line_(line), signals_(signals) {}

  // True at the end of the script, false when a signal said stop before. Throws Mismatch, and
  // std::system_error with a text for the user.
  bool Play(const std::vector<Step>& steps);

 private:
  struct Save {
    Step step;
    bool asked;  // for its reply
    ReplyTap tap = {};
  };

  bool Play(const Step& step);
  bool Send(std::string_view bytes);
  bool Expect(const Step& step, std::string_view bytes);
  bool FinishSave();
  bool AwaitTaken();

  // Sleeps until bytes have come or the time is reached; false when a signal says stop.
  bool Receive(Time until);
  void Take(std::size_t count);

  PtyLine& line_;
  Signals& signals_;
  std::string received_;  // and not taken by a step yet
  std::optional<Save> save_;
  bool asked_ = false;  // something was sent, and no reply to it was looked at
};

}  // namespace vrx::simulator
