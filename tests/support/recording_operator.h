#pragma once

#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "platform/operator.h"

namespace vrx::testing {

// Records everything shown to the operator, and answers from a prepared queue. A question
// with no answer queued throws: a test that did not expect it fails.
class RecordingOperator : public Operator {
 public:
  Answer ShowMessage(const MessageBox& box) override;
  void Beep() override { ++beeps; }
  void SetBusy(bool on) override;
  void SetStatusLine(std::string_view text) override;
  void SetStatusColor(StatusColor color) override { status_color = color; }

  std::deque<Answer> answers;  // for questions; a box with OK only takes none
  std::function<void(const MessageBox&)> on_message;  // while the box is up; may be empty

  std::vector<MessageBox> boxes;
  int beeps = 0;
  bool busy = false;
  int busy_changes = 0;
  std::vector<std::string> status_lines;  // every text set, clears included
  StatusColor status_color = StatusColor::kBlue;

  // The last status text; empty if there was none.
  std::string Status() const { return status_lines.empty() ? std::string() : status_lines.back(); }

 private:
  int busy_depth_ = 0;
};

}  // namespace vrx::testing
