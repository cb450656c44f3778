#pragma once

#include <string>
#include <string_view>

#include "platform/progress_display.h"

namespace vrx {

// Shows the progress of a database conversion, and its report.
class ConversionDisplay : public ProgressDisplay {
 public:
  // Show and hide the progress, which blocks all other input.
  virtual void BeginProgress() = 0;
  virtual void EndProgress() = 0;
  // True once the operator has canceled the conversion.
  [[nodiscard]] virtual bool Cancelled() const = 0;

  // Returns when the operator has closed the report. `text` is UTF-8 with LF line ends; `file_name`
  // is the default name for saving it.
  virtual void ShowReport(std::string_view text, const std::string& file_name) = 0;
};

}  // namespace vrx
