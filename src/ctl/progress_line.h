#pragma once

#include <iosfwd>
#include <string>
#include <string_view>

#include "platform/progress_display.h"

namespace vrx {

// One line of progress, drawn over itself. Draws on a terminal only.
class ProgressLine : public ProgressDisplay {
 public:
  ProgressLine(std::ostream& err, bool on_terminal) : err_(err), on_terminal_(on_terminal) {}
  ~ProgressLine() override { Clear(); }
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;

  void SetProgressMessage(std::string_view text) override;
  void SetProgressRange(int maximum) override;
  void SetProgressValue(int value) override;

  // Takes the line away, so that something else can be written.
  void Clear();

  const std::string& Message() const { return message_; }

 private:
  void Draw();
  int Percent() const;

  std::ostream& err_;
  bool on_terminal_;
  bool drawn_ = false;
  std::string message_;
  int maximum_ = 0;
  int value_ = 0;
};

}  // namespace vrx
