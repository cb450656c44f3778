#pragma once

#include <string>
#include <string_view>

#include "platform/progress_display.h"

namespace vrx {

// Shows how far the conversion of a database has come, and its report.
class ConversionDisplay : public ProgressDisplay {
 public:
  // The progress is on show from the one to the other, and nothing else can be done meanwhile.
  virtual void BeginProgress() = 0;
  virtual void EndProgress() = 0;
  // The operator wants no more of it.
  virtual bool Cancelled() const = 0;

  // Returns when the operator has closed the report. UTF-8, lines by LF; `file_name` is what it is
  // saved as unless the operator says otherwise.
  virtual void ShowReport(std::string_view text, const std::string& file_name) = 0;
};

}  // namespace vrx
