#pragma once

#include <iosfwd>
#include <string>
#include <string_view>

#include "ctl/progress_line.h"
#include "platform/operator.h"

namespace vrx {

// The person who runs the tool. Messages go to the error stream as "TITLE: text", what lies behind
// them as a line "cause: ...". A question is answered with its going-on button by `yes`, else from
// the terminal if there is one, else with its refusing button.
class TerminalOperator : public Operator {
 public:
  struct Settings {
    bool yes = false;
    bool in_is_terminal = false;
    bool err_is_terminal = false;
  };

  TerminalOperator(std::istream& in, std::ostream& err, ProgressLine& line, Settings settings);

  Answer ShowMessage(const MessageBox& box) override;
  void Beep() override;  // on a terminal only
  void SetBusy(bool /*busy*/) override {}

  // Busy texts are progress; texts in the colours of an error or a success are messages.
  void SetStatusLine(std::string_view text) override;
  void SetStatusColor(StatusColor color) override { color_ = color; }

  bool StatusIsError() const { return color_ == StatusColor::kRed; }

  // A line "cause: ..." for the message before; nothing for a cause that is empty or was told with
  // that message.
  void TellCause(std::string_view cause);

  // A message of the tool itself, without a title.
  void Tell(std::string_view text);

 private:
  Answer Ask(const MessageBox& box);

  std::istream& in_;
  std::ostream& err_;
  ProgressLine& line_;
  Settings settings_;
  StatusColor color_ = StatusColor::kBlue;
  std::string last_cause_;
};

}  // namespace vrx
