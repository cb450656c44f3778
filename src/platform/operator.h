#pragma once

#include <string>
#include <string_view>

namespace vrx {

enum class Icon { kNone, kCritical, kQuestion, kWarning, kInformation };
enum class Buttons { kOk, kOkCancel, kYesNo, kTryDiscardStay };
enum class Answer { kOk, kCancel, kYes, kNo, kTryAgain, kDiscard, kStay };

// A message to the operator. Texts are UTF-8; CR LF separates lines.
struct MessageBox {
  Icon icon = Icon::kNone;
  Buttons buttons = Buttons::kOk;
  std::string title;
  std::string text;
  // What lies behind the told words, for whoever looks closer ("is cut off: 8192 bytes instead of
  // 40960"). Empty where the text says it all.
  std::string cause = {};
  // Enter presses the button that refuses. For a question whose other answer overwrites, repeats or
  // relabels data.
  bool refuses_by_default = false;
};

enum class StatusColor { kBlue, kRed, kGreen };  // busy, error, success

// The person at the machine: is told things, answers questions.
class Operator {
 public:
  virtual ~Operator() = default;

  // Returns the button pressed; kOk for a box that has only OK.
  virtual Answer ShowMessage(const MessageBox& box) = 0;

  // Sounds at once, whatever the beeper setting says; see BeepIfEnabled for the gated beep.
  virtual void Beep() = 0;

  // Hourglass on or off. Not counted: off ends every on.
  virtual void SetBusy(bool busy) = 0;

  // The one-line status of transfers. An empty text clears it.
  virtual void SetStatusLine(std::string_view text) = 0;
  virtual void SetStatusColor(StatusColor color) = 0;
};

}  // namespace vrx
