#pragma once

#include <string_view>

#include "platform/operator.h"
#include "platform/progress_display.h"

namespace vrx::testing {

// Services that record nothing, for programs that parse endlessly.
class SilentOperator : public Operator {
 public:
  Answer ShowMessage(const MessageBox& /*box*/) override { return Answer::kOk; }
  void Beep() override {}
  void SetBusy(bool /*busy*/) override {}
  void SetStatusLine(std::string_view /*text*/) override {}
  void SetStatusColor(StatusColor /*color*/) override {}
};

class SilentProgress : public ProgressDisplay {
 public:
  void SetProgressMessage(std::string_view /*text*/) override {}
  void SetProgressRange(int /*maximum*/) override {}
  void SetProgressValue(int /*value*/) override {}
};

}  // namespace vrx::testing
