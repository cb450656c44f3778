#include "presenter/direct_connection.h"

#include <algorithm>
#include <string>

#include "base/text.h"
#include "base/translation.h"
#include "link/krmcomm.h"
#include "presenter/upload.h"
#include "settings/settings.h"

namespace vrx {

namespace {

constexpr Milliseconds kUpdatesInterval{200};

// The two wordings differ intentionally.
constexpr std::string_view kWaiting = "Waiting to receive commands/data from K-2260 indicator.";
constexpr std::string_view kWaitingAfterLoad =
    "Waiting to receive commands/data from K2260 indicator.";

}  // namespace

DirectConnection::DirectConnection(KRMCOMM& krm, TransferState& transfer, EventPump& pump,
                                   Operator& op, const PrivateINI& settings)
    : krm_(krm), transfer_(transfer), pump_(pump), op_(op), settings_(settings) {}

void DirectConnection::ConnectModule() {
  krm_.KRM_Close();
  krm_.GB_KRM_AbortDirectConnect(true);
  tim_direct_rxd_updates_.reset();
  transfer_.data_window.clear();
  op_.SetStatusLine("");
  op_.SetStatusColor(StatusColor::kBlue);
  ShowTab(Connection::kModule);
}

bool DirectConnection::ConnectIndicator() {
  const LineGuard::Claim line = krm_.Guard().TakeForDirectConnection();
  return line && Enter() && DirectConnectLoop();
}

bool DirectConnection::Enter() {
  answer_failed_ = false;
  krm_.KRM_Close();
  if (!krm_.GS_KRM_VirtualMemory().empty()) {
    BeepIfEnabled(op_, settings_);
    const Answer answer =
        op_.ShowMessage({.icon = Icon::kQuestion,
                         .buttons = Buttons::kYesNo,
                         .title = "Clear Memory",
                         .text = "Do you want to clear the current data in memory?",
                         .refuses_by_default = true});
    if (answer == Answer::kYes) {
      krm_.GS_KRM_VirtualMemory({});
      transfer_.received.Discarded();
    }
  }
  krm_.GB_KRM_AbortDirectConnect(false);
  if (!OpenPort()) {
    return false;
  }
  transfer_.data_window.clear();
  transfer_.file_path.clear();
  ReportNeutral(op_, kWaiting);
  ShowTab(Connection::kIndicator);
  return true;
}

bool DirectConnection::Resume() {
  if (transfer_.connection == Connection::kModule) {
    return true;
  }
  krm_.KRM_ImmediateClose();
  return OpenPort();
}

bool DirectConnection::OpenPort() {
  if (krm_.KRM_DirectOpen()) {
    return true;
  }
  op_.Beep();
  op_.ShowMessage({.icon = Icon::kCritical,
                   .title = "Error",
                   .text = "Could not open serial port for direct-connection.",
                   .cause = krm_.KRM_FailureCause(),
                   .port_help = PortHelp::kCauseAndSetup});
  ConnectModule();
  return false;
}

void DirectConnection::ShowTab(Connection connection) {
  const bool direct = connection == Connection::kIndicator;
  transfer_.connection = connection;
  transfer_.memory_label_visible = direct;
  transfer_.memory_size_visible = direct;
  transfer_.memory_bar_visible = false;
  transfer_.recipe_frames_visible = false;
  transfer_.data_files_frame_visible = false;
  transfer_.open_caption = direct ? "Load Memory..." : "Open...";
  transfer_.download_buttons_visible = !direct;
}

bool DirectConnection::DirectConnectLoop() {
  bool connected = true;
  while (connected && !krm_.GB_KRM_AbortDirectConnect()) {
    krm_.GL_KRM_RxDCount(0);
    krm_.GS_KRM_RxDBuffer({});
    StartUpdates();
    connected = krm_.KRM_DirectRxD();
    // A copy, because a handler that runs during an answer may receive too.
    const std::string burst = krm_.GS_KRM_RxDBuffer();
    Handle(burst);
    if (krm_.KRM_LineHeld()) {
      connected = ReopenHeldLine();
    }
  }
  if (connected) {
    return true;
  }
  tim_direct_rxd_updates_.reset();
  if (pump_.Closing()) {
    return true;
  }
  op_.Beep();
  op_.ShowMessage({.icon = Icon::kCritical,
                   .title = "Error",
                   .text = Tr("The direct-connection has ended: %1.", {krm_.GS_KRM_ErrMsg()}),
                   .cause = krm_.KRM_FailureCause(),
                   .port_help = PortHelp::kCauseAndSetup});
  ConnectModule();
  return false;
}

// Ignores the rest of a burst after an abort, because the port is closed or used by another
// routine.
void DirectConnection::Handle(std::string_view burst) {
  for (const char byte : burst) {
    if (krm_.GB_KRM_AbortDirectConnect()) {
      return;
    }
    HandleByte(byte);
  }
}

void DirectConnection::HandleByte(char byte) {
  const auto answer = [this](bool (KRMCOMM::*transmit)()) {
    const LineGuard::Claim line = krm_.Guard().TakeForTransmission();
    return (krm_.*transmit)();
  };
  switch (byte) {
    case KRMConst::DC4: {
      const bool answered = answer(&KRMCOMM::KRM_ClearVirtualMemory);
      transfer_.received.Discarded();
      transfer_.file_path.clear();
      transfer_.data_window.clear();
      ShowReply(answered, "Received <DC4>, cleared memory.",
                Tr("Received <DC4>, the answer failed."));
      break;
    }
    case KRMConst::NAK:
      ShowReply(answer(&KRMCOMM::KRM_DumpVirtualMemory), "Received <NAK>, transmitted memory.",
                Tr("Received <NAK>, the answer failed."));
      break;
    case KRMConst::FS:
      ShowReply(answer(&KRMCOMM::KRM_DumpAllVirtualMemory), "Received <FS>, transmitted memory.",
                Tr("Received <FS>, the answer failed."));
      break;
    default:
      krm_.KRM_AppendToVirtualMemory({&byte, 1});
      transfer_.received.Arrived();
  }
}

void DirectConnection::ShowReply(bool answered, std::string_view done, std::string_view failed) {
  if (answered) {
    ReportNeutral(op_, done);
    return;
  }
  // Not a failure if the operator or the end of the program has aborted it.
  if (!krm_.GB_KRM_AbortDirectConnect() && !pump_.Closing()) {
    answer_failed_ = true;
    ReportFailed(op_, failed);
  }
}

// An indicator that did not accept an answer may still send its next command.
bool DirectConnection::ReopenHeldLine() {
  return krm_.GB_KRM_AbortDirectConnect() || pump_.Closing() || krm_.KRM_DirectOpen();
}

bool DirectConnection::LoadMemory(std::string_view text) {
  const bool answered = krm_.KRM_ClearVirtualMemory();
  transfer_.received.Discarded();
  krm_.KRM_AppendToVirtualMemory(text);
  ShowReply(answered, kWaitingAfterLoad, Tr("The memory is loaded, the answer failed."));
  return answered;
}

void DirectConnection::StartUpdates() {
  if (!tim_direct_rxd_updates_) {
    tim_direct_rxd_updates_ = pump_.StartTicker(kUpdatesInterval, [this] { Update(); });
  }
}

void DirectConnection::Update() {
  const std::size_t bytes = krm_.GS_KRM_VirtualMemory().size();
  if (bytes == 0) {
    ReportNeutral(op_, kWaiting);
  }
  SetMemorySize(bytes);
  transfer_.memory_bar = static_cast<int>(std::min<std::size_t>(bytes, kModuleMemory));
}

// A changed caption means that the listed files no longer match the memory.
void DirectConnection::SetMemorySize(std::size_t bytes) {
  std::string caption = std::to_string(bytes);
  if (caption == transfer_.memory_size) {
    return;
  }
  transfer_.memory_size = std::move(caption);
  if (transfer_.data_files_frame_visible) {
    transfer_.reload_enabled = true;
    if (bytes == 0) {
      transfer_.data_files.clear();
      transfer_.selected_row = -1;
    }
  }
  op_.SetStatusLine("");
}

}  // namespace vrx
