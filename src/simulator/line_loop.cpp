#include "simulator/line_loop.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <ctime>
#include <string>
#include <system_error>
#include <utility>

#include <poll.h>

#include "simulator/device.h"

namespace vrx::simulator {
namespace {

using std::chrono::milliseconds;

// Like a PC's receive buffer: bytes of earlier replies beyond it are lost.
constexpr std::size_t kReceiveBuffer = 2048;
constexpr milliseconds kHangUpGrace{500};
constexpr milliseconds kHangUpStep{5};
// The system delivers a client's bytes a moment after its write has returned. The loop does not
// wait longer for a client that never stops sending.
constexpr milliseconds kHandOver{20};
constexpr int kMostReadsAhead = 32;

// Sleeps until one of the handles is ready, or until the given time, if any.
template <std::size_t kCount>
void Poll(std::array<pollfd, kCount>& watched, std::optional<Duration> limit) {
  timespec time{};
  if (limit) {
    const auto whole = std::chrono::duration_cast<std::chrono::seconds>(*limit);
    time.tv_sec = whole.count();
    time.tv_nsec = (*limit - whole).count();
  }
  if (::ppoll(watched.data(), watched.size(), limit ? &time : nullptr, nullptr) < 0 &&
      errno != EINTR) {
    throw std::system_error(errno, std::generic_category(), "cannot wait for the line");
  }
}

}  // namespace

LineLoop::LineLoop(PtyLine& line, Transmitter& transmitter, Device& device, Signals& signals)
    : line_(line), transmitter_(transmitter), device_(device), signals_(signals) {}

void LineLoop::Run(const std::function<void()>& save) {
  while (HeedSignals(save)) {
    HeedLine();
    if (!Send()) {
      AwaitTaken();
      return;
    }
    Wait();
  }
}

// Returns false if a signal stops the loop.
bool LineLoop::HeedSignals(const std::function<void()>& save) {
  const Signals::Request request = signals_.Take();
  if (request == Signals::Request::kNone) {
    return true;
  }
  ReceiveSentAhead();
  if (request == Signals::Request::kSave) {
    save();
  }
  return request != Signals::Request::kStop;
}

void LineLoop::ReceiveSentAhead() {
  for (int reads = 0; reads < kMostReadsAhead; ++reads) {
    std::array<pollfd, 1> watched{{{.fd = line_.Handle(), .events = POLLIN, .revents = 0}}};
    Poll(watched, kHandOver);
    if (!HeedLine()) {
      return;
    }
  }
}

// Returns false if there were no bytes.
bool LineLoop::HeedLine() {
  // Read first, so that a new client is known before its bytes are handled.
  const std::string bytes = Deaf() ? std::string() : line_.Read();
  const PtyLine::Clients clients = line_.TakeClients();
  const Time now = Clock::now();
  if (clients.came && (transmitter_.HeldForLine() || line_.Untaken() > kReceiveBuffer)) {
    // A new client does not get bytes that an earlier one never read.
    transmitter_.GiveWay(now);
    line_.DiscardUntaken();
  }
  Receive(bytes, now);
  if (clients.went) {
    // No client is left that could send the XON.
    transmitter_.HoldForFlowControl(false, now);
  }
  return !bytes.empty();
}

void LineLoop::Receive(std::string_view bytes, Time now) {
  received_ += bytes.size();
  for (const char byte : bytes) {
    if (byte == kXoff || byte == kXon) {
      transmitter_.HoldForFlowControl(byte == kXoff, now);
    } else if (std::optional<Transmission> transmission = device_.Receive(byte)) {
      Begin(std::move(*transmission), now);
    }
  }
}

void LineLoop::Begin(Transmission transmission, Time now) {
  const bool cut = transmitter_.Start(std::move(transmission), now);
  if (cut || line_.Untaken() > kReceiveBuffer) {
    line_.DiscardUntaken();
  }
}

// Returns false if the line must be hung up.
bool LineLoop::Send() {
  const Time now = Clock::now();
  for (auto due = transmitter_.Due(now); !due.empty(); due = transmitter_.Due(now)) {
    if (hang_up_after_) {
      due = due.substr(0, *hang_up_after_ - sent_);
    }
    const std::size_t taken = line_.Write(due);
    sent_ += taken;
    transmitter_.Sent(taken, now);
    if (hang_up_after_ && sent_ == *hang_up_after_) {
      return false;
    }
    if (taken < due.size()) {
      transmitter_.HoldForLine(true, now);
    }
  }
  SendXoff();
  return true;
}

// Called after the reply: some clients treat any byte after an XOFF as an XON.
void LineLoop::SendXoff() {
  if (xoff_after_ && received_ >= *xoff_after_ && !transmitter_.HeldForLine() &&
      !transmitter_.NextPortion()) {
    line_.Write({&kXoff, 1});
    xoff_after_.reset();
  }
}

void LineLoop::Wait() {
  const bool refused = transmitter_.HeldForLine();
  std::array<pollfd, 3> watched{{
      {.fd = signals_.Handle(), .events = POLLIN, .revents = 0},
      {.fd = line_.Handle(), .events = POLLIN, .revents = 0},
      {.fd = line_.ClientsHandle(), .events = POLLIN, .revents = 0},
  }};
  if (Deaf()) {
    watched[1].events = 0;
  }
  if (refused) {
    watched[1].events |= POLLOUT;
  }
  std::optional<Duration> limit;
  if (const auto next = transmitter_.NextPortion()) {
    limit = std::max(Duration{*next - Clock::now()}, Duration{0});
  }
  Poll(watched, limit);
  if (refused && (watched[1].revents & POLLOUT) != 0) {
    transmitter_.HoldForLine(false, Clock::now());
  }
}

// A hang-up discards what the client has not read yet, so waits until it has.
void LineLoop::AwaitTaken() {
  for (auto left = kHangUpGrace; left > milliseconds{0}; left -= kHangUpStep) {
    std::array<pollfd, 1> watched{{{.fd = signals_.Handle(), .events = POLLIN, .revents = 0}}};
    Poll(watched, kHangUpStep);
    if (line_.Untaken() == 0 || watched[0].revents != 0) {
      return;
    }
  }
}

}  // namespace vrx::simulator
