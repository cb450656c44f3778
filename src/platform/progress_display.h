#pragma once

#include <string_view>

namespace vrx {

// Message and progress bar of a long operation; of the import `lblProgressMsg` and `prgImport`.
class ProgressDisplay {
 public:
  virtual ~ProgressDisplay() = default;
  virtual void SetProgressMessage(std::string_view text) = 0;
  virtual void SetProgressRange(int maximum) = 0;  // also sets the bar to 0
  virtual void SetProgressValue(int value) = 0;
};

}  // namespace vrx
