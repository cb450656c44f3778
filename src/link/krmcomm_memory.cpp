#include "base/text.h"
#include "link/control_characters.h"
#include "link/krmcomm.h"
#include "settings/settings.h"

namespace vrx {

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

}  // namespace vrx
