#include "link/krmcomm.h"

#include <algorithm>

#include "base/error.h"
#include "base/number.h"
#include "settings/settings.h"

namespace vrx {
namespace {

constexpr int kInBufferSize = 2048;
constexpr int kOutBufferSize = 1024;
constexpr std::string_view kPortSettings = "19200,n,8,1";

constexpr Milliseconds kFirstReceiveLimit{1000};
constexpr Milliseconds kReceiveLimit{5000};
constexpr Milliseconds kWakeTime{1000};
constexpr Milliseconds kReleaseTime{500};
constexpr Milliseconds kAfterTransmission{100};

// Interval for polling the output counter; no event reports that the last byte has left the port.
constexpr Milliseconds kDrainInterval{5};

// A module that sends pauses less than this.
constexpr Milliseconds kSilenceAfterCancel{250};

// Limit for a line that is held by an XOFF or a device that stopped reading.
constexpr Milliseconds kHeldLimit = std::chrono::seconds{10};

}  // namespace

KRMCOMM::KRMCOMM(SerialControl& serial, EventPump& pump, Operator& op, const PrivateINI& settings)
    : serial_(serial),
      pump_(pump),
      op_(op),
      settings_(settings),
      tim_rxd_timeout_(kFirstReceiveLimit),
      tim_krm_general_delay_(Milliseconds{0}),
      tim_reset_delay_(kWakeTime) {}

std::optional<std::string> KRMCOMM::SerialFailure(const std::function<void()>& step) {
  try {
    step();
    return std::nullopt;
  } catch (const SerialError& error) {
    return error.what();
  }
}

bool KRMCOMM::Try(const std::function<void()>& step) {
  std::optional<std::string> cause = SerialFailure(step);
  if (cause) {
    SetFailure(!serial_.PortOpen() || LineGone() ? LinkError::kLost : LinkError::kRefused,
               std::move(*cause));
  }
  return !cause;
}

void KRMCOMM::InterruptIfLost(const std::function<void()>& step) {
  if (std::optional<std::string> cause = SerialFailure(step)) {
    Interrupt(LinkError::kLost, "Serial line lost", std::move(*cause));
  }
}

// The kind of an interruption remains until the next opening, although closing the port may fail
// too.
void KRMCOMM::SetFailure(LinkError error, std::string cause) {
  failure_cause_ = std::move(cause);
  if (!interrupted_) {
    error_ = error;
  }
}

bool KRMCOMM::KRM_Open() { return OpenPort(Handshaking::kXOnXOff); }

bool KRMCOMM::OpenPort(Handshaking mode) {
  interrupted_ = false;
  SetFailure(LinkError::kNone, {});
  if (comm_port_open_ && serial_.PortOpen() && !LineGone()) {
    err_msg_ = "Serial port already open";
    return true;
  }
  comm_port_open_ = false;
  std::string_view stage = "Open error";
  const auto refuse = [&](std::string cause) {
    err_msg_ = stage;
    SetFailure(LinkError::kRefused, std::move(cause));
    serial_.SetPortOpen(false);
    return false;
  };
  try {
    serial_.SetDTREnable(false);
    serial_.SetInBufferSize(kInBufferSize);
    serial_.SetOutBufferSize(kOutBufferSize);
    serial_.SetHandshaking(mode);
    serial_.SetCommPort(TextToInt(settings_.SerialPort()));
    serial_.SetSettings(kPortSettings);
    stage = "Serial port not available";
    if (serial_.PortOpen()) {
      serial_.SetPortOpen(false);
    }
    serial_.SetPortOpen(true);
    serial_.DiscardOutput();
  } catch (const SerialError& error) {
    return refuse(error.what());
  } catch (const ConversionError& error) {
    return refuse(std::string("SerialPort: ") + error.what());
  }
  comm_port_open_ = true;
  return true;
}

void KRMCOMM::KRM_Close() {
  if (serial_.PortOpen()) {
    serial_.SetPortOpen(false);
  }
  KRM_DeAssertDTR();
  comm_port_open_ = false;
}

void KRMCOMM::KRM_ImmediateClose() {
  if (serial_.PortOpen()) {
    serial_.SetPortOpen(false);
  }
  Try([this] { serial_.SetDTREnable(false); });
  comm_port_open_ = false;
}

bool KRMCOMM::KRM_AssertDTR() {
  return Try([this] { serial_.SetDTREnable(true); }) && WaitOut(tim_reset_delay_);
}

void KRMCOMM::KRM_DeAssertDTR() {
  Try([this] { serial_.SetDTREnable(false); });
  KRM_Delay(kReleaseTime);
}

bool KRMCOMM::KRM_Delay(Milliseconds delay) {
  tim_krm_general_delay_.SetInterval(delay);
  return WaitOut(tim_krm_general_delay_);
}

// A delay that a handler starts inside this one ends both.
bool KRMCOMM::WaitOut(OneShotTimer& timer) {
  delay_complete_ = false;
  timer.Enable(pump_.Now());
  while (!delay_complete_ && timer.Enabled() && BytesToSend().has_value()) {
    const Milliseconds now = pump_.Now();
    if (timer.Due(now)) {
      delay_complete_ = true;
    } else {
      pump_.Pump(timer.Left(now));
    }
  }
  timer.Disable();
  return !interrupted_;
}

bool KRMCOMM::KRM_SendByte(char code) {
  const bool sent = KRM_AssertDTR() && PurgeBuffers() && HandOver({&code, 1}) && Drain();
  if (!sent) {
    KRM_DeAssertDTR();
  }
  return sent;
}

bool KRMCOMM::KRM_SendString(std::string_view text) {
  // A copy, because a handler inside the waits may change the text that the view refers to.
  const std::string bytes(text);
  bool sent = KRM_AssertDTR() && PurgeBuffers();
  txd_count_ = 0;
  for (std::size_t start = 0; sent && start < bytes.size(); start += kOutBufferSize) {
    const std::string_view block = std::string_view(bytes).substr(start, kOutBufferSize);
    sent = HandOver(block);
    if (sent) {
      txd_count_ += static_cast<std::int32_t>(block.size());
      sent = Drain();
    }
  }
  sent = sent && KRM_Delay(kAfterTransmission);
  KRM_DeAssertDTR();
  return sent;
}

bool KRMCOMM::PurgeBuffers() {
  return AwaitSilence() && Try([this] {
           serial_.DiscardInput();
           serial_.DiscardOutput();
         });
}

// The reply of a canceled command must not be taken for the reply of the next one.
bool KRMCOMM::AwaitSilence() {
  if (!may_still_send_) {
    return true;
  }
  OneShotTimer silence(kSilenceAfterCancel);
  silence.Enable(pump_.Now());
  InterruptIfLost([&] {
    while (GoesOn() && !silence.Due(pump_.Now())) {
      if (serial_.InBufferCount() >= 1) {
        serial_.DiscardInput();
        silence.Enable(pump_.Now());
      } else {
        pump_.Pump(silence.Left(pump_.Now()));
      }
    }
  });
  may_still_send_ = interrupted_;
  return !interrupted_;
}

bool KRMCOMM::HandOver(std::string_view bytes) {
  return Try([this, bytes] { serial_.Output(bytes); });
}

bool KRMCOMM::Drain() {
  OneShotTimer held(kHeldLimit);
  int before = 0;
  for (auto left = BytesToSend(); left.has_value(); left = BytesToSend()) {
    if (!serial_.PortOpen()) {
      SetFailure(LinkError::kLost, "the port was closed during the transmission");
      return false;
    }
    if (*left == 0) {
      return true;
    }
    const Milliseconds now = pump_.Now();
    if (*left != before) {
      before = *left;
      held.Enable(now);
    } else if (held.Due(now)) {
      Interrupt(LinkError::kHeld, "Serial line held",
                "Serial line held: it took no byte for 10 seconds");
      return false;
    }
    pump_.Pump(kDrainInterval);
  }
  return false;
}

bool KRMCOMM::KRM_WaitForTerminators(int count) {
  std::string buffer;
  bool complete = false;
  broken_off_.clear();
  InterruptIfLost([&] { complete = Receive(count, buffer); });
  tim_rxd_timeout_.Disable();
  if (complete) {
    rxd_buffer_ = std::move(buffer);
    err_msg_.clear();
    return true;
  }
  rxd_buffer_.clear();
  if (!interrupted_) {
    err_msg_ = "Receiver timeout";
    SetFailure(LinkError::kTimeout, buffer.empty() ? "no reply"
                                                   : "the reply broke off after " +
                                                         std::to_string(buffer.size()) + " bytes");
  }
  broken_off_ = std::move(buffer);
  return false;
}

// The limit of 5000 ms remains for all later receptions; it is never reset.
bool KRMCOMM::Receive(int count, std::string& buffer) {
  rxd_waiting_ = true;
  message_received_ = false;
  std::ptrdiff_t terminators = 0;
  tim_rxd_timeout_.Enable(pump_.Now());
  while (rxd_waiting_ && !message_received_ && GoesOn()) {
    const Milliseconds now = pump_.Now();
    if (serial_.InBufferCount() >= 1) {
      tim_rxd_timeout_.SetInterval(kReceiveLimit);
      tim_rxd_timeout_.Enable(now);
      const std::string chunk = serial_.Input();
      buffer += chunk;
      rxd_count_ = static_cast<std::int32_t>(buffer.size());
      terminators += std::count(chunk.begin(), chunk.end(), KRMConst::US);
      message_received_ = terminators >= count;
    } else if (!serial_.PortOpen()) {
      Interrupt(LinkError::kLost, "Serial line lost", "the port was closed during the reception");
    } else if (tim_rxd_timeout_.Due(now)) {
      tim_rxd_timeout_.Disable();
      rxd_waiting_ = false;
    } else {
      pump_.Pump(tim_rxd_timeout_.Left(now));
    }
  }
  return terminators >= count;
}

bool KRMCOMM::GoesOn() {
  if (!interrupted_ && pump_.Closing()) {
    Interrupt(LinkError::kNone, "The program is closing", {});
  }
  if (!interrupted_ && guard_.Canceled()) {
    may_still_send_ = true;
    SerialFailure([this] { serial_.DiscardOutput(); });
    Interrupt(LinkError::kCanceled, "Canceled", {});
  }
  return !interrupted_;
}

std::optional<int> KRMCOMM::BytesToSend() {
  std::optional<int> bytes;
  InterruptIfLost([&] {
    if (GoesOn()) {
      bytes = serial_.OutBufferCount();
    }
  });
  return bytes;
}

void KRMCOMM::Interrupt(LinkError error, std::string_view message, std::string cause) {
  interrupted_ = true;
  KRM_ImmediateClose();
  err_msg_ = message;
  error_ = error;
  failure_cause_ = std::move(cause);
}

bool KRMCOMM::LineGone() {
  return SerialFailure([this] { serial_.OutBufferCount(); }).has_value();
}

}  // namespace vrx
