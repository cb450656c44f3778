#include "presenter/upload.h"

#include <array>
#include <utility>

#include "base/text.h"
#include "base/translation.h"
#include "exchange/unread_feeds.h"
#include "link/krmcomm.h"
#include "link/rescue_file.h"
#include "presenter/operation.h"
#include "presenter/transfer_progress.h"
#include "settings/settings.h"

namespace vrx {

namespace {

constexpr Milliseconds kUploadingInterval{500};
// A module does not say how much it holds.
constexpr TransferTexts kUploading{.begins = "Uploading from KRM....  ",
                                   .percent = TrMark("%1% of the memory"),
                                   .time_left = TrMark("at most %1 left")};

// A dump is NAK US data US.
constexpr std::string_view kReplyBegins{"\x15\x1F"};
constexpr std::string_view kEmptyReply{"\x15\x1F\x1F"};

// By DataFileType.
constexpr std::array<std::string_view, 4> kListNames{"", "Transaction file", "Recipe backup file",
                                                     "Text report"};

void ShowStatus(Operator& op, StatusColor color, std::string_view words) {
  op.SetStatusColor(color);
  op.SetStatusLine(words);
}

}  // namespace

Upload::Upload(KRMCOMM& krm, TransferState& transfer, EventPump& pump, Operator& op,
               const PrivateINI& settings)
    : krm_(krm), transfer_(transfer), pump_(pump), op_(op), settings_(settings) {}

void Upload::UploadDataFromKRM() {
  if (transfer_.connection == Connection::kModule) {
    const LineGuard::Claim line = krm_.Guard().TakeForCommand();
    if (line) {
      ClearTab();
      ListDataFiles(UploadFromModule());
      transfer_.reload_enabled = true;
    }
    return;
  }
  ClearTab();
  const int count = ReadDirectMemory();
  ListDataFiles(count);
  if (count < 1) {
    op_.SetStatusLine("No data files in memory!");
  } else {
    transfer_.reload_enabled = false;
  }
}

void Upload::ClearTab() {
  transfer_.data_window.clear();
  transfer_.file_path.clear();
  op_.SetStatusLine("");
  transfer_.recipe_frames_visible = false;
}

int Upload::UploadFromModule() {
  transfer_.data_window.clear();
  canceled_part_.clear();
  ReportStandby(op_);
  const BusyCursor busy(op_);
  return Dump() ? TakeReply() : 0;
}

// The failures are reported when the command can no longer be canceled.
bool Upload::Dump() {
  LineGuard::Claim cancelable = krm_.Guard().AllowCancel();
  const bool detected = krm_.KRM_OnlineCheck();
  bool dumped = false;
  if (detected) {
    TransferProgress progress(kUploading, kModuleMemory);
    const auto tim_uploading = pump_.StartTicker(kUploadingInterval, [&] {
      op_.SetStatusLine(progress.Text(krm_.GL_KRM_RxDCount(), pump_.Now()));
    });
    dumped = krm_.KRM_Dump();
  }
  cancelable.reset();
  if (krm_.KRM_Error() == LinkError::kCanceled && !dumped) {
    ReportCanceled();
  } else if (!detected) {
    ReportNotDetected();
  } else if (!dumped) {
    ReportNotDumped();
  }
  return dumped;
}

void Upload::ReportCanceled() {
  const std::string& reply = krm_.KRM_BrokenOff();
  if (reply.starts_with(kReplyBegins)) {
    canceled_part_ = reply.substr(kReplyBegins.size());
  }
  ReportFailed(
      op_, Tr("Upload canceled after %1 bytes.", {std::to_string(krm_.KRM_BrokenOff().size())}));
}

void Upload::ReportNotDumped() {
  ReportPortFailure(op_, krm_, settings_);
  ReportFailed(op_, "Error: " + (krm_.GS_KRM_ErrMsg().empty() ? krm_.KRM_FailureCause()
                                                              : krm_.GS_KRM_ErrMsg()));
}

void Upload::ReportNotDetected() {
  if (pump_.Closing()) {
    ReportFailed(op_, "Error: " + krm_.GS_KRM_ErrMsg());
    return;
  }
  BeepIfEnabled(op_, settings_);
  op_.ShowMessage({.icon = Icon::kWarning,
                   .title = "KRM Error",
                   .text = "The KRM was not detected. Please verify that the module is connected. "
                           "Check cable and connector and then try again.",
                   .cause = krm_.KRM_FailureCause(),
                   .port_help = PortHelp::kCauseAndSetup});
  ReportFailed(op_, krm_.KRM_LineHeld() ? "Error: Serial line held" : "Error: KRM not detected");
}

int Upload::TakeReply() {
  krm_.KRM_TakeUnread();
  transfer_.received.OtherIntoBlock();
  transfer_.transfer_block = krm_.KRM_ExtractData(krm_.GS_KRM_RxDBuffer());
  if (!transfer_.transfer_block.empty() || krm_.GS_KRM_RxDBuffer().starts_with(kEmptyReply)) {
    transfer_.uploaded_at = pump_.Now();
  }
  if (transfer_.transfer_block.empty()) {
    transfer_.data_window.clear();
    ReportFailed(op_, krm_.GS_KRM_ErrMsg());
    return 0;
  }
  // Includes the framing, excludes the bytes after it.
  return CutFiles("Upload complete!", krm_.GS_KRM_RxDBuffer().rfind(KRMConst::US) + 1);
}

void Upload::UploadFromFile(const std::filesystem::path& file) {
  std::string bytes = ReadRescueFile(file);
  ClearTab();
  transfer_.file_path = file.string();
  transfer_.received.OtherIntoBlock();
  transfer_.transfer_block = std::move(bytes);
  int count = 0;
  if (transfer_.transfer_block.empty()) {
    ReportFailed(op_, Tr("The file is empty"));
  } else {
    count = CutFiles("Memory read complete!", transfer_.transfer_block.size());
  }
  ListDataFiles(count);
  transfer_.reload_enabled = true;
}

int Upload::ReadDirectMemory() {
  transfer_.data_window.clear();
  op_.SetStatusColor(StatusColor::kBlue);
  transfer_.received.ImageIntoBlock();
  transfer_.transfer_block = krm_.GS_KRM_VirtualMemory();
  if (transfer_.transfer_block.empty()) {
    op_.Beep();
    op_.ShowMessage({.icon = Icon::kWarning,
                     .title = "KRM Error",
                     .text = "There is no file data in the KRM memory. "});
    return 0;
  }
  op_.SetStatusLine("Standby...");
  const BusyCursor busy(op_);
  return CutFiles("Memory read complete!", transfer_.transfer_block.size());
}

int Upload::CutFiles(std::string_view done_words, std::size_t received_bytes) {
  transfer_.block_is_cut = false;
  try {
    const int count = krm_.KRM_ExtractFiles(transfer_.transfer_block);
    transfer_.block_is_cut = count > 0;
    if (count == 0) {
      transfer_.data_window = transfer_.transfer_block;
      krm_.GS_KRM_ErrMsg("No recognized data file!");
      ReportFailed(op_, krm_.GS_KRM_ErrMsg());
      return 0;
    }
    ReportComplete(op_, std::string(done_words) + "  (" + std::to_string(received_bytes) +
                            " bytes, " + std::to_string(count) +
                            (count > 1 ? " files)" : " file)"));
    return count;
  } catch (const TooManyFilesError& error) {
    transfer_.data_window = transfer_.transfer_block;
    krm_.GS_KRM_ErrMsg(Tr("Error: %1, the rest is not listed", {error.what()}));
    ReportFailed(op_, krm_.GS_KRM_ErrMsg());
    return kMaxDataFiles;
  }
}

void Upload::ListDataFiles(int count) {
  transfer_.data_files.clear();
  transfer_.selected_row = -1;
  for (int file = 1; file <= count; ++file) {
    transfer_.data_files.push_back(DescribeFile(file));
  }
  if (count > 0) {
    transfer_.data_files_frame_visible = true;
  }
}

// "Transaction file 1: 11-Jan-26, 19 batches"
DataFileRow Upload::DescribeFile(int file) const {
  const DataFileType type = krm_.GL_KRM_FileAttributes(file).type;
  DataFileFacts facts = ReadDataFileFacts(PartOf(file));
  return {.file = file,
          .text = std::string(kListNames.at(static_cast<std::size_t>(type))) + " " +
                  std::to_string(file) + ": " + facts.summary,
          .type = type,
          .first_record = facts.first_record};
}

void Upload::DataFilesClick(int row) {
  ShowDataFile(row + 1);
  DataFileRow& clicked = transfer_.data_files.at(static_cast<std::size_t>(row));
  clicked.checked = !clicked.checked || transfer_.data_files.size() == 1;
  transfer_.selected_row = row;
  BeepIfEnabled(op_, settings_);
}

void Upload::ShowDataFile(int file) { transfer_.data_window = PartOf(file); }

std::string Upload::PartOf(int file) const {
  const FileAttributes& attributes = krm_.GL_KRM_FileAttributes(file);
  const int end = attributes.position - 1 + attributes.length;
  if (attributes.position < 1 || end > static_cast<int>(transfer_.transfer_block.size())) {
    throw Error("there is no data file " + std::to_string(file));
  }
  return transfer_.transfer_block.substr(static_cast<std::size_t>(attributes.position) - 1,
                                         static_cast<std::size_t>(attributes.length));
}

void ReportStandby(Operator& op) { ShowStatus(op, StatusColor::kBlue, "Standby..."); }

void ReportNeutral(Operator& op, std::string_view words) {
  ShowStatus(op, StatusColor::kBlue, words);
}

void ReportComplete(Operator& op, std::string_view words) {
  ShowStatus(op, StatusColor::kGreen, words);
}

void ReportFailed(Operator& op, std::string_view words) {
  ShowStatus(op, StatusColor::kRed, words);
}

void ReportPortFailure(Operator& op, const KRMCOMM& krm, const PrivateINI& settings) {
  const bool lost = krm.KRM_Error() == LinkError::kLost;
  if (!lost && krm.KRM_Error() != LinkError::kRefused) {
    return;
  }
  BeepIfEnabled(op, settings);
  op.ShowMessage({.icon = Icon::kWarning,
                  .title = "KRM Error",
                  .text = lost ? Tr("The connection to the serial port was lost.")
                               : Tr("The serial port cannot be used."),
                  .cause = krm.KRM_FailureCause(),
                  .port_help = PortHelp::kCauseAndSetup});
}

}  // namespace vrx
