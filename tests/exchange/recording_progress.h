#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/progress_display.h"

namespace vrx::testing {

// Records the values of the import's message and progress bar.
class RecordingProgress : public ProgressDisplay {
 public:
  void SetProgressMessage(std::string_view text) override { messages.emplace_back(text); }
  void SetProgressRange(int maximum) override { ranges.push_back(maximum); }
  void SetProgressValue(int value) override { values.push_back(value); }

  // The last message; empty if there was none.
  std::string Message() const { return messages.empty() ? std::string() : messages.back(); }

  std::vector<std::string> messages;
  std::vector<int> ranges;
  std::vector<int> values;
};

}  // namespace vrx::testing
