#include <algorithm>
#include <array>

#include "base/number.h"
#include "link/krmcomm.h"
#include "settings/settings.h"

namespace vrx {
namespace {

struct BaudCommand {
  std::int32_t baud;
  char code;
};

constexpr std::array kBaudCommands{
    BaudCommand{1200, KRMConst::SYN}, BaudCommand{2400, KRMConst::ETB},
    BaudCommand{9600, KRMConst::CAN}, BaudCommand{19200, KRMConst::EM}};

// How long bytes after a complete reply are collected.
constexpr Milliseconds kStrayTime{250};

}  // namespace

bool KRMCOMM::KRM_OnlineCheck() { return KRM_SetBaud(TextToLong(settings_.KRMBaudRate())); }

bool KRMCOMM::KRM_Clear() {
  const bool cleared = KRM_Open() && AskForEcho(KRMConst::DC4);
  KRM_DeAssertDTR();
  return cleared;
}

bool KRMCOMM::KRM_SetBaud(std::int32_t baud) {
  bool confirmed = false;
  if (KRM_Open()) {
    const auto* const command = std::find_if(kBaudCommands.begin(), kBaudCommands.end(),
                                             [baud](const auto& c) { return c.baud == baud; });
    if (command == kBaudCommands.end()) {
      SetFailure(LinkError::kRefused, "the module has no baud rate " + std::to_string(baud));
      return false;
    }
    confirmed = AskForEcho(command->code);
  }
  KRM_DeAssertDTR();
  return confirmed;
}

bool KRMCOMM::KRM_Dump() {
  bool dumped = false;
  std::string_view message;
  if (!KRM_Open()) {
    message = "Open failed";
  } else if (!KRM_SendByte(KRMConst::NAK)) {
    message = "<NAK> command failed";
  } else if (!KRM_WaitForTerminators(2)) {
    message = "Command response failed";
  } else {
    dumped = TakeDump(KRMConst::NAK);
  }
  // An interruption has set its own message.
  if (!message.empty() && !interrupted_) {
    err_msg_ = message;
  }
  KRM_DeAssertDTR();
  return dumped;
}

bool KRMCOMM::KRM_DumpAll() {
  const bool dumped = KRM_Open() && KRM_SendByte(KRMConst::FS) && KRM_WaitForTerminators(2) &&
                      TakeDump(KRMConst::FS);
  KRM_DeAssertDTR();
  return dumped;
}

bool KRMCOMM::TakeDump(char code) {
  if (!ReplyBeginsWith(code)) {
    return false;
  }
  TakeStrays();
  return true;
}

// Waits for stray bytes: only their number distinguishes data from noise on the line.
void KRMCOMM::TakeStrays() {
  OneShotTimer window(kStrayTime);
  window.Enable(pump_.Now());
  // The reply is complete even if the line is lost.
  InterruptIfLost([&] {
    while (serial_.PortOpen() && GoesOn()) {
      rxd_buffer_ += serial_.InBufferCount() >= 1 ? serial_.Input() : std::string();
      const Milliseconds now = pump_.Now();
      if (window.Due(now)) {
        return;
      }
      pump_.Pump(window.Left(now));
    }
  });
}

void KRMCOMM::KRM_TakeUnread() {
  // A lost line has no more bytes.
  SerialFailure([this] {
    if (serial_.InBufferCount() >= 1) {
      rxd_buffer_ += serial_.Input();
    }
  });
}

bool KRMCOMM::KRM_Download(std::string_view text) { return KRM_Open() && KRM_SendString(text); }

bool KRMCOMM::AskForEcho(char code) {
  if (!KRM_SendByte(code) || !KRM_WaitForTerminators(1)) {
    return false;
  }
  if (rxd_buffer_ != std::string{code, KRMConst::US}) {
    SetFailure(LinkError::kProtocol, "unexpected reply");
    return false;
  }
  return true;
}

bool KRMCOMM::ReplyBeginsWith(char code) {
  if (rxd_buffer_.front() != code) {
    SetFailure(LinkError::kProtocol, "unexpected reply");
    return false;
  }
  return true;
}

}  // namespace vrx
