#include "link/krmcomm.h"

namespace vrx {

namespace {

constexpr Milliseconds kSilence{250};
// A wait for the first byte is made of these.
constexpr Milliseconds kLongWait = std::chrono::hours{1};

}  // namespace

bool KRMCOMM::KRM_DirectOpen() { return OpenPort(Handshaking::kNone); }

bool KRMCOMM::KRM_DirectRxD() {
  std::string burst;
  rxd_waiting_ = true;
  message_received_ = false;
  abort_direct_connect_ = false;
  tim_rxd_timeout_.Disable();
  try {
    ReceiveBurst(burst);
  } catch (const SerialError& error) {
    Interrupt("Serial line lost", error.what());
  }
  tim_rxd_timeout_.Disable();
  if (abort_direct_connect_) {
    burst.clear();
  }
  if (!interrupted_) {
    err_msg_ = burst.empty() ? "Receive aborted" : "";
  }
  rxd_count_ = static_cast<std::int32_t>(burst.size());
  rxd_buffer_ = std::move(burst);
  return !interrupted_;
}

// The interval of 250 ms stays for the receptions to come: it is never set back.
void KRMCOMM::ReceiveBurst(std::string& burst) {
  while (!abort_direct_connect_) {
    const Milliseconds now = pump_.Now();
    if (serial_.InBufferCount() >= 1) {
      tim_rxd_timeout_.SetInterval(kSilence);
      tim_rxd_timeout_.Enable(now);
      burst += serial_.Input();
      rxd_count_ = static_cast<std::int32_t>(burst.size());
    }
    if (tim_rxd_timeout_.Due(now)) {
      rxd_waiting_ = false;
    }
    if ((!rxd_waiting_ && !burst.empty()) || !GoesOn()) {
      return;
    }
    pump_.Pump(tim_rxd_timeout_.Enabled() ? tim_rxd_timeout_.Left(now) : kLongWait);
  }
}

}  // namespace vrx
