#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/device.h"
#include "simulator/feed_plan.h"
#include "simulator/indicator_script.h"
#include "simulator/pty_line.h"

namespace vrx::simulator {

struct WorkOptions {
  Day first_day;
  int days = 1;                                 // fed by each download
  std::optional<std::filesystem::path> ledger;  // what was weighed is written behind its end
};

// The indicator to which the module is carried: it takes the recipes of a download, feeds the next
// days by them and leaves their records in the module.
class WorkingIndicator {
 public:
  using Tell = std::function<void(const std::string& message)>;

  WorkingIndicator(WorkOptions options, Tell tell)
      : options_(std::move(options)), tell_(std::move(tell)), day_(options_.first_day) {}

  // The module's memory as it comes back; nothing where it holds no download, or one that cannot be
  // fed by, which is told. Throws std::system_error when the ledger cannot be written.
  std::optional<std::string> Visit(const std::string& memory);

 private:
  void Enter(const FeedingWork& work) const;

  WorkOptions options_;
  Tell tell_;
  Day day_;
};

// Of the form 2026-01-05. Throws std::invalid_argument.
Day ReadDay(const std::string& text);

// Listens to what arrives and picks the data of the next dump: NAK or FS, US, data, US. Anything
// ahead of it, as the reply to a clear, is passed over.
class ReplyTap {
 public:
  // Returns how many of the bytes belong to the reply or are ahead of it.
  std::size_t Listen(std::string_view bytes);

  bool Complete() const { return state_ == State::kComplete; }
  const std::string& Data() const { return data_; }

 private:
  enum class State { kCommand, kFirstTerminator, kData, kComplete };

  void Listen(char byte);

  State state_ = State::kCommand;
  std::string data_;
};

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
