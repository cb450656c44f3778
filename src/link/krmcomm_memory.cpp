#include <algorithm>
#include <array>

#include "link/krmcomm.h"
#include "settings/settings.h"

namespace vrx {
namespace {

struct TypeOfFile {
  DataFileType type;
  std::string_view mark;
  std::string_view name;
};

constexpr std::array kTypesOfFile{
    TypeOfFile{DataFileType::kTransaction, kTransactionMark, "Transaction File"},
    TypeOfFile{DataFileType::kRecipeBackup, kRecipeMark, "Recipe Backup File"},
    TypeOfFile{DataFileType::kReport, kReportMark, "Text Report"},
};

// More bytes than this after a reply are data, not noise on the line.
constexpr std::size_t kMostStrays = 16;

DataFileType TypeAt(std::string_view text) {
  if (text.front() == KRMConst::FF) {
    return DataFileType::kReport;
  }
  const auto* const found =
      std::find_if(kTypesOfFile.begin(), kTypesOfFile.end(),
                   [text](const auto& t) { return text.starts_with(t.mark); });
  return found == kTypesOfFile.end() ? DataFileType::kUnknown : found->type;
}

// Ends a burst of the direct connection.
constexpr Milliseconds kSilence{250};
// Pump needs a limit; the wait for the first byte has none and repeats this one.
constexpr Milliseconds kLongWait = std::chrono::hours{1};

}  // namespace

bool KRMCOMM::KRM_ClearVirtualMemory() {
  virtual_memory_.clear();
  return Answer(std::string{KRMConst::DC4, KRMConst::US}, "<DC4>");
}

void KRMCOMM::KRM_AppendToVirtualMemory(std::string_view text) { virtual_memory_ += text; }

bool KRMCOMM::KRM_DumpVirtualMemory() {
  return Answer(std::string{KRMConst::NAK, KRMConst::US} + virtual_memory_ + KRMConst::US, "<NAK>");
}

bool KRMCOMM::KRM_DumpAllVirtualMemory() {
  return Answer(std::string{KRMConst::FS, KRMConst::US} + virtual_memory_ + KRMConst::US, "<FS>");
}

bool KRMCOMM::Answer(std::string_view frame, std::string_view command_name) {
  if (KRM_SendString(frame)) {
    BeepIfEnabled(op_, settings_);
    return true;
  }
  if (pump_.Closing()) {
    return false;
  }
  op_.Beep();
  op_.ShowMessage(
      {.icon = Icon::kCritical,
       .title = "Error",
       .text = "Transmission of response to " + std::string(command_name) + " command failed!",
       .cause = failure_cause_});
  return false;
}

std::string_view DataFileTypeName(DataFileType type) {
  const auto* const found = std::find_if(kTypesOfFile.begin(), kTypesOfFile.end(),
                                         [type](const auto& t) { return t.type == type; });
  return found == kTypesOfFile.end() ? std::string_view{} : found->name;
}

std::string KRMCOMM::KRM_ExtractData(std::string_view reply) {
  const std::size_t first = reply.find(KRMConst::US);
  const std::size_t second = reply.rfind(KRMConst::US);
  if (std::count(reply.begin(), reply.end(), KRMConst::US) != 2 ||
      reply.size() - second - 1 > kMostStrays) {
    err_msg_ = "Invalid terminators";
    return {};
  }
  const std::string_view data = reply.substr(first + 1, second - first - 1);
  err_msg_ = data.empty() ? "The KRM buffer is empty" : "";
  return std::string(data);
}

int KRMCOMM::KRM_ExtractFiles(std::string_view block) {
  constexpr std::string_view kFirstOfMark{"{\x0C", 2};
  KRM_ClearFileAttributes();
  int count = 0;
  const auto end_last_file = [&](std::size_t end) {
    if (count > 0) {
      FileAttributes& last = file_attributes_.at(count - 1);
      last.length = static_cast<int>(end) + 1 - last.position;
    }
  };
  for (std::size_t i = block.find_first_of(kFirstOfMark); i != std::string_view::npos;
       i = block.find_first_of(kFirstOfMark, i + 1)) {
    const DataFileType type = TypeAt(block.substr(i));
    if (type == DataFileType::kUnknown) {
      continue;
    }
    end_last_file(i);
    if (count == kMaxDataFiles) {
      throw TooManyFilesError("more than " + std::to_string(kMaxDataFiles) + " data files");
    }
    file_attributes_.at(count).type = type;
    file_attributes_.at(count).position = static_cast<int>(i) + 1;
    ++count;
  }
  end_last_file(block.size());
  return count;
}

void KRMCOMM::KRM_ClearFileAttributes() { file_attributes_.fill({}); }

const FileAttributes& KRMCOMM::GL_KRM_FileAttributes(int file) const {
  if (file < 1 || file > kMaxDataFiles) {
    throw Error("there is no data file " + std::to_string(file));
  }
  return file_attributes_.at(static_cast<std::size_t>(file) - 1);
}

std::int32_t KRMCOMM::GL_KRM_FileAttributes(int file, int attribute) const {
  const FileAttributes& attributes = GL_KRM_FileAttributes(file);
  switch (attribute) {
    case 1:
      return static_cast<std::int32_t>(attributes.type);
    case 2:
      return attributes.position;
    case 3:
      return attributes.length;
    default:
      throw Error("a data file has no attribute " + std::to_string(attribute));
  }
}

bool KRMCOMM::KRM_DirectOpen() { return OpenPort(Handshaking::kNone); }

bool KRMCOMM::KRM_DirectRxD() {
  std::string burst;
  rxd_waiting_ = true;
  message_received_ = false;
  abort_direct_connect_ = false;
  tim_rxd_timeout_.Disable();
  InterruptIfLost([&] { ReceiveBurst(burst); });
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

// The interval of 250 ms remains for all later receptions; it is never reset.
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
