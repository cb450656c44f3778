#include "presenter/setup.h"

#include <utility>

#include "base/number.h"
#include "presenter/transfer_status.h"

namespace vrx {
namespace {

constexpr std::string_view kTestTitle = "KRM Test";
constexpr std::string_view kClearTitle = "Clear KRM";
constexpr std::string_view kBaudTitle = "KRM Baud Setting";

}  // namespace

// While a command runs: the hourglass and `lblStandby`.
class ModuleSetup::Work {
 public:
  explicit Work(ModuleSetup& setup) : setup_(setup), hourglass_(setup.op_) {
    setup_.running_ = true;
    setup_.standby_(true);
  }
  ~Work() {
    setup_.running_ = false;
    setup_.standby_(false);
  }
  Work(const Work&) = delete;
  Work& operator=(const Work&) = delete;

 private:
  ModuleSetup& setup_;
  Hourglass hourglass_;
};

ModuleSetup::ModuleSetup(KRMCOMM& krm, PrivateINI& settings, Operator& op,
                         std::function<void(bool)> standby)
    : krm_(krm), settings_(settings), op_(op), standby_(std::move(standby)) {}

void ModuleSetup::Tell(Icon icon, std::string_view title, std::string_view text, bool with_cause) {
  if (!abandoned_) {
    op_.ShowMessage({.icon = icon,
                     .title = std::string(title),
                     .text = std::string(text),
                     .cause = with_cause ? krm_.KRM_FailureCause() : std::string()});
  }
}

void ModuleSetup::TestKRM(std::string_view port, std::string_view baud) {
  const LineGuard::Claim line = krm_.Guard().TakeForCommand();
  if (!line) {
    return;
  }
  bool detected = false;
  {
    const Work work(*this);
    settings_.SetSerialPort(port);
    settings_.SetKRMBaudRate(baud);
    detected = krm_.KRM_OnlineCheck();
  }
  if (detected) {
    Tell(Icon::kInformation, kTestTitle, "KRM Successfully Detected.");
  } else {
    Tell(Icon::kWarning, kTestTitle,
         "KRM Not Detected.  (Communication Error)\r\n"
         "Please check KRM module connection, cable and serial port selection.",
         true);
  }
}

void ModuleSetup::ClearKRM(std::string_view port, std::string_view baud) {
  const LineGuard::Claim line = krm_.Guard().TakeForCommand();
  if (!line) {
    return;
  }
  settings_.SetSerialPort(port);
  settings_.SetKRMBaudRate(baud);
  if (op_.ShowMessage({.icon = Icon::kQuestion,
                       .buttons = Buttons::kYesNo,
                       .title = std::string(kClearTitle),
                       .text = "Are you sure you want to clear all data in the KRM?"}) !=
      Answer::kYes) {
    return;
  }
  const Work work(*this);
  if (!krm_.KRM_OnlineCheck()) {
    Tell(Icon::kWarning, kClearTitle,
         "The 'Clear' operation failed. (Could not connect to the KRM)", true);
  } else if (abandoned_) {
    return;
  } else if (!krm_.KRM_Clear()) {
    Tell(Icon::kWarning, kClearTitle, "The 'Clear' operation failed.", true);
  } else {
    Tell(Icon::kInformation, kClearTitle, "The 'Clear' operation was successful.");
  }
}

void ModuleSetup::SetBaud(std::string_view baud) {
  const LineGuard::Claim line = krm_.Guard().TakeForCommand();
  if (!line) {
    return;
  }
  settings_.SetKRMBaudRate(baud);
  if (baud.empty()) {
    Tell(Icon::kNone, kBaudTitle, "Please select a baudrate setting.");
    return;
  }
  const Work work(*this);
  krm_.KRM_Close();
  if (abandoned_) {
    return;
  }
  if (krm_.KRM_SetBaud(TextToInt(baud))) {
    Tell(Icon::kInformation, kBaudTitle,
         "Successfully set the KRM baudrate.\r\n\r\n"
         "This new baudrate setting will only be in effect when the KRM module is connected to an "
         "K-2260 or some other indicator.");
  } else {
    Tell(Icon::kWarning, kBaudTitle,
         "Failed to set the KRM baudrate.\r\n\r\n"
         "Please check KRM module connection, cable and serial port selection.",
         true);
  }
}

void ModuleSetup::Abandon() {
  abandoned_ = true;
  if (running_) {
    krm_.KRM_ImmediateClose();
    krm_.GB_KRM_DelayComplete(true);
  }
}

}  // namespace vrx
