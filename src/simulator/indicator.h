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
  std::optional<std::filesystem::path> ledger;  // the weighings are appended to it
};

// The indicator to which the module is taken: reads the recipes of a download, feeds the next days
// with them and writes the records to the module.
class WorkingIndicator {
 public:
  using LogMessage = std::function<void(const std::string& message)>;

  WorkingIndicator(WorkOptions options, LogMessage log)
      : options_(std::move(options)), log_(std::move(log)), day_(options_.first_day) {}

  // Returns the module's new memory, or nothing if it does not hold a usable download, which is
  // logged. Throws std::system_error if the ledger cannot be written.
  std::optional<std::string> Visit(const std::string& memory);

 private:
  void Enter(const FeedingWork& work) const;

  WorkOptions options_;
  LogMessage log_;
  Day day_;
};

// Extracts the data of the next dump from the received bytes: NAK or FS, US, data, US. Skips
// anything before it, such as the reply to a clear.
class ReplyTap {
 public:
  // Returns how many of the bytes belong to the reply or come before it.
  std::size_t Listen(std::string_view bytes);

  [[nodiscard]] bool Complete() const { return state_ == State::kComplete; }
  [[nodiscard]] const std::string& Data() const { return data_; }

 private:
  enum class State { kCommand, kFirstTerminator, kData, kComplete };

  void Listen(char byte);

  State state_ = State::kCommand;
  std::string data_;
};

// The PC did not do what the script expects. The text names the line, the expected and the received
// bytes.
class Mismatch : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Plays a script on a line at 19200 baud. The direct connection has no flow control: every byte is
// data.
//
// A save reads the bytes that the following steps receive, until a whole reply has arrived. If the
// reply was requested before the save, the script waits for it before sending anything else;
// otherwise it waits at its end.
class Indicator {
 public:
  Indicator(PtyLine& line, Signals& signals) : line_(line), signals_(signals) {}

  // Returns false if a signal stopped the script before its end. Throws Mismatch, and
  // std::system_error with a text for the user.
  [[nodiscard]] bool Play(const std::vector<Step>& steps);

 private:
  struct Save {
    Step step;
    bool asked;  // its reply was requested
    ReplyTap tap = {};
  };

  bool Play(const Step& step);
  bool Send(std::string_view bytes);
  bool Expect(const Step& step, std::string_view bytes);
  bool FinishSave();
  bool AwaitTaken();

  // Sleeps until bytes arrive or until the given time; returns false if a signal stops the script.
  bool Receive(Time until);
  void Take(std::size_t count);

  PtyLine& line_;
  Signals& signals_;
  std::string received_;  // not consumed by a step yet
  std::optional<Save> save_;
  bool asked_ = false;  // something was sent, and its reply was not examined
};

// Parses the form 2026-01-05. Throws std::invalid_argument.
Day ReadDay(const std::string& text);

}  // namespace vrx::simulator
