#include "ctl/terminal_operator.h"

#include <istream>
#include <ostream>

#include "base/text.h"

namespace vrx {
namespace {

// CR LF becomes a line break; a break at the end of the text goes.
std::string Lines(std::string_view text) {
  std::string lines;
  for (const char character : text) {
    if (character != '\r') {
      lines.push_back(character);
    }
  }
  while (!lines.empty() && (lines.back() == '\n' || lines.back() == ' ')) {
    lines.pop_back();
  }
  return lines;
}

}  // namespace

TerminalOperator::TerminalOperator(std::istream& in, std::ostream& err, ProgressLine& line,
                                   Settings settings)
    : in_(in), err_(err), line_(line), settings_(settings) {}

Answer TerminalOperator::ShowMessage(const MessageBox& box) {
  line_.Clear();
  err_ << Lines(box.title) << ": " << Lines(box.text) << '\n';
  last_cause_.clear();
  TellCause(box.cause);
  return box.buttons == Buttons::kOk ? Answer::kOk : Ask(box);
}

void TerminalOperator::TellCause(std::string_view cause) {
  if (!cause.empty() && cause != last_cause_) {
    line_.Clear();
    err_ << "cause: " << Lines(cause) << '\n';
    last_cause_ = cause;
  }
}

Answer TerminalOperator::Ask(const MessageBox& box) {
  const bool yes_no = box.buttons == Buttons::kYesNo;
  const Answer going_on = yes_no ? Answer::kYes : Answer::kOk;
  const Answer refusing = yes_no ? Answer::kNo : Answer::kCancel;
  if (settings_.yes) {
    return going_on;
  }
  const std::string_view going_on_word = yes_no ? "Yes" : "OK";
  const std::string_view refusing_word = yes_no ? "No" : "Cancel";
  if (!settings_.in_is_terminal) {
    err_ << "answered with " << refusing_word << " (--yes answers with " << going_on_word << ")\n";
    return refusing;
  }
  err_ << going_on_word << " or " << refusing_word << "? ";
  err_.flush();
  std::string typed;
  std::getline(in_, typed);
  typed = TrimBlanks(typed);
  const bool goes_on =
      EqualsIgnoringCase(typed, going_on_word) || (yes_no && EqualsIgnoringCase(typed, "y"));
  return goes_on ? going_on : refusing;
}

void TerminalOperator::Beep() {
  if (settings_.err_is_terminal) {
    err_ << '\a';
    err_.flush();
  }
}

void TerminalOperator::SetStatusLine(std::string_view text) {
  if (color_ == StatusColor::kBlue || text.empty()) {
    line_.SetProgressMessage(text);
  } else {
    Tell(text);
  }
}

void TerminalOperator::Tell(std::string_view text) {
  line_.Clear();
  err_ << Lines(text) << '\n';
}

}  // namespace vrx
