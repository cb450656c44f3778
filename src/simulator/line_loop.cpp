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

// No PC keeps more than its receive buffer: bytes of earlier replies beyond that are lost to it.
constexpr std::size_t kReceiveBuffer = 2048;
constexpr milliseconds kHangUpGrace{500};
constexpr milliseconds kHangUpStep{5};
// The system hands a client's bytes over a moment after its write has returned. A client that never
// stops sending is not waited for.
constexpr milliseconds kHandOver{20};
constexpr int kMostReadsAhead = 32;

// Sleeps until one of them is ready or the time is over; without a time, until one is ready.
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

// False when one says stop.
bool LineLoop::HeedSignals(const std::function<void()>& save) {
  const Signals::Specified told = signals_.Take();
  if (told == Signals::Specified::kNothing) {
    return true;
  }
  ReceiveSentAhead();
  if (told == Signals::Specified::kSave) {
    save();
  }
  return told != Signals::Specified::kStop;
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

// False when no bytes were there.
bool LineLoop::HeedLine() {
  // In this order: the coming of a client is known before what it sent is obeyed.
  const std::string bytes = Deaf() ? std::string() : line_.Read();
  const PtyLine::Clients clients = line_.TakeClients();
  const Time now = Clock::now();
  if (clients.came && (transmitter_.HeldForLine() || line_.Untaken() > kReceiveBuffer)) {
    // It does not find what an earlier one never read.
    transmitter_.GiveWay(now);
    line_.DiscardUntaken();
  }
  Receive(bytes, now);
  if (clients.went) {
    // Nobody is left who could send the XON.
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

// False when the line is to be hung up.
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

// After the reply: some clients take any byte that follows an XOFF for an XON.
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

// A hang-up takes away what the client has not read yet; the line gave it that much.
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
