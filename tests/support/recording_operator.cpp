#include "support/recording_operator.h"

#include <stdexcept>

namespace vrx::testing {

Answer RecordingOperator::ShowMessage(const MessageBox& box) {
  boxes.push_back(box);
  if (on_message) {
    on_message(box);
  }
  if (box.buttons == Buttons::kOk) {
    return Answer::kOk;
  }
  if (answers.empty()) {
    throw std::logic_error("unexpected question: " + box.title + ": " + box.text);
  }
  const Answer answer = answers.front();
  answers.pop_front();
  return answer;
}

void RecordingOperator::SetBusy(bool on) {
  busy_depth_ += on ? 1 : -1;
  busy = busy_depth_ > 0;
  ++busy_changes;
}

void RecordingOperator::SetStatusLine(std::string_view text) { status_lines.emplace_back(text); }

}  // namespace vrx::testing
