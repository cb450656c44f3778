#include "simulator/indicator.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <ctime>
#include <fstream>
#include <stdexcept>
#include <system_error>
#include <utility>

#include <poll.h>

#include "simulator/data_module.h"
#include "simulator/device.h"
#include "simulator/feed_plan.h"
#include "simulator/transmitter.h"

namespace vrx::simulator {

namespace {

constexpr std::size_t kLargestFile = 65535;  // bytes; the limit of readers of transaction files

using std::chrono::milliseconds;

constexpr std::size_t kMostShown = 32;  // bytes of one side of a mismatch
constexpr milliseconds kTakeGrace{500};
constexpr milliseconds kLook{5};

std::string InHex(std::string_view bytes) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  constexpr unsigned kBase = 16;
  if (bytes.empty()) {
    return "nothing";
  }
  std::string text;
  for (const char byte : bytes.substr(0, kMostShown)) {
    const unsigned value = static_cast<unsigned char>(byte);
    text += text.empty() ? "" : " ";
    text += kDigits[value / kBase];
    text += kDigits[value % kBase];
  }
  return bytes.size() > kMostShown ? text + " ..." : text;
}

// Omits a long common beginning of the two texts.
[[noreturn]] void ThrowMismatch(int line, std::string_view expected, std::string_view got,
                                std::size_t alike, const std::string& why) {
  const std::size_t from = alike < kMostShown ? 0 : alike;
  std::string where;
  if (from > 0) {
    where = " (from byte " + std::to_string(from + 1) + " of " + std::to_string(expected.size()) +
            " on)";
  }
  throw Mismatch("line " + std::to_string(line) + ": expected " + InHex(expected.substr(from)) +
                 ", got " + InHex(got.substr(from)) + where + why);
}

std::string After(milliseconds limit) { return " within " + std::to_string(limit.count()) + " ms"; }

}  // namespace

std::optional<std::string> WorkingIndicator::Visit(const std::string& memory) {
  if (!IsDownload(memory)) {
    return std::nullopt;
  }
  try {
    FeedingWork work(ReadFeedPlan(memory),
                     static_cast<std::uint32_t>(day_.time_since_epoch().count()));
    int fed = 0;
    for (; fed < options_.days && work.FeedDay(day_, kLargestFile); ++fed) {
      day_ += std::chrono::days(1);
    }
    if (work.Weighings().empty()) {
      throw std::invalid_argument("no recipe or no pen to feed");
    }
    log_("the indicator fed by the download: days " + std::to_string(fed) + ", weighings " +
         std::to_string(work.Weighings().size()));
    if (fed < options_.days) {
      log_("memory is full, days not fed: " + std::to_string(options_.days - fed));
    }
    Enter(work);
    return work.Records();
  } catch (const std::invalid_argument& error) {
    log_(std::string("the indicator cannot feed by the download: ") + error.what());
    return std::nullopt;
  }
}

void WorkingIndicator::Enter(const FeedingWork& work) const {
  if (!options_.ledger) {
    return;
  }
  std::ofstream ledger(*options_.ledger, std::ios::binary | std::ios::app);
  ledger << LedgerOf(work.Weighings());
  if (!ledger.flush()) {
    throw std::system_error(errno, std::generic_category(),
                            "cannot write " + options_.ledger->string());
  }
}

Day ReadDay(const std::string& text) {
  int year = 0;
  unsigned month = 0;
  unsigned day = 0;
  const char* const begin = text.data();
  const auto number = [&](std::size_t from, std::size_t length, auto& value) {
    const auto [end, error] = std::from_chars(begin + from, begin + from + length, value);
    return error == std::errc() && end == begin + from + length;
  };
  const bool read = text.size() == 10 && text[4] == '-' && text[7] == '-' && number(0, 4, year) &&
                    number(5, 2, month) && number(8, 2, day);
  const std::chrono::year_month_day date{std::chrono::year(year), std::chrono::month(month),
                                         std::chrono::day(day)};
  if (!read || !date.ok()) {
    throw std::invalid_argument("no date of the form 2026-01-05: " + text);
  }
  return date;
}

std::size_t ReplyTap::Listen(std::string_view bytes) {
  std::size_t heard = 0;
  while (heard < bytes.size() && !Complete()) {
    Listen(bytes[heard++]);
  }
  return heard;
}

void ReplyTap::Listen(char byte) {
  const bool command = byte == kNak || byte == kFs;
  switch (state_) {
    case State::kCommand:
      state_ = command ? State::kFirstTerminator : State::kCommand;
      break;
    case State::kFirstTerminator:
      if (byte == kUs) {
        state_ = State::kData;
      } else if (!command) {
        state_ = State::kCommand;
      }
      break;
    case State::kData:
      if (byte == kUs) {
        state_ = State::kComplete;
      } else {
        data_ += byte;
      }
      break;
    case State::kComplete:
      break;
  }
}

bool Indicator::Play(const std::vector<Step>& steps) {
  const bool played =
      std::all_of(steps.begin(), steps.end(), [this](const Step& step) { return Play(step); });
  return played && FinishSave() && AwaitTaken();
}

bool Indicator::Play(const Step& step) {
  switch (step.kind) {
    case Step::Kind::kSend:
      return Send(step.bytes);
    case Step::Kind::kSendFile:
      return Send(ReadFile(step.path));
    case Step::Kind::kExpect:
      return Expect(step, step.bytes);
    case Step::Kind::kExpectFile:
      return Expect(step, ReadFile(step.path));
    case Step::Kind::kSave:
      if (!FinishSave()) {
        return false;
      }
      save_.emplace(Save{.step = step, .asked = asked_});
      return true;
    case Step::Kind::kWait:
      break;
  }
  for (const Time end = Clock::now() + step.time; Clock::now() < end;) {
    if (!Receive(end)) {
      return false;
    }
  }
  return true;
}

bool Indicator::Send(std::string_view bytes) {
  if (save_ && save_->asked && !FinishSave()) {
    return false;
  }
  asked_ = true;
  if (save_) {
    save_->asked = true;
  }
  Transmitter transmitter(kLineBaud);
  transmitter.Start({.segments = {{std::string(bytes)}}}, Clock::now());
  while (const auto next = transmitter.NextPortion()) {
    if (!Receive(*next)) {
      return false;
    }
    const Time now = Clock::now();
    const std::string_view due = transmitter.Due(now);
    const std::size_t written = due.empty() ? 0 : line_.Write(due);
    if (written < due.size() && !Receive(now + kLook)) {
      return false;
    }
    transmitter.Sent(written, Clock::now());
  }
  return true;
}

bool Indicator::Expect(const Step& step, std::string_view bytes) {
  const Time end = Clock::now() + step.time;
  asked_ = false;
  for (;;) {
    const std::size_t both = std::min(bytes.size(), received_.size());
    const std::string_view got = std::string_view(received_).substr(0, both);
    const auto alike = static_cast<std::size_t>(
        std::mismatch(got.begin(), got.end(), bytes.begin()).first - got.begin());
    if (alike < both) {
      ThrowMismatch(step.line, bytes, received_, alike, "");
    }
    if (alike == bytes.size()) {
      Take(alike);
      return true;
    }
    if (Clock::now() >= end) {
      ThrowMismatch(step.line, bytes, received_, alike, After(step.time));
    }
    if (!Receive(end)) {
      return false;
    }
  }
}

bool Indicator::FinishSave() {
  const Time end = Clock::now() + kExpectLimit;
  while (save_) {
    asked_ = false;
    ReplyTap ahead = save_->tap;
    Take(ahead.Listen(received_));
    if (!save_) {
      break;
    }
    if (Clock::now() >= end) {
      throw Mismatch("line " + std::to_string(save_->step.line) +
                     ": expected a reply to save, got " + InHex(save_->tap.Data()) +
                     After(kExpectLimit));
    }
    if (!Receive(end)) {
      return false;
    }
  }
  return true;
}

// The end of the script closes the line, and bytes that the PC has not read would be lost. Waits
// before the first check, because the system delivers written bytes a moment later.
bool Indicator::AwaitTaken() {
  const Time end = Clock::now() + kTakeGrace;
  do {
    if (!Receive(std::min(end, Clock::now() + kLook))) {
      return false;
    }
  } while (line_.Untaken() > 0 && Clock::now() < end);
  return true;
}

bool Indicator::Receive(Time until) {
  std::array<pollfd, 2> watched{{{.fd = signals_.Handle(), .events = POLLIN, .revents = 0},
                                 {.fd = line_.Handle(), .events = POLLIN, .revents = 0}}};
  const Duration left = std::max(Duration{until - Clock::now()}, Duration{0});
  const auto whole = std::chrono::duration_cast<std::chrono::seconds>(left);
  const timespec time{.tv_sec = whole.count(), .tv_nsec = (left - whole).count()};
  if (::ppoll(watched.data(), watched.size(), &time, nullptr) < 0 && errno != EINTR) {
    throw std::system_error(errno, std::generic_category(), "cannot wait for the line");
  }
  received_ += line_.Read();
  line_.TakeClients();
  return signals_.Take() != Signals::Request::kStop;
}

void Indicator::Take(std::size_t count) {
  if (save_) {
    save_->tap.Listen(std::string_view(received_).substr(0, count));
    if (save_->tap.Complete()) {
      WriteFile(save_->step.path, save_->tap.Data());
      save_.reset();
    }
  }
  received_.erase(0, count);
}

}  // namespace vrx::simulator
