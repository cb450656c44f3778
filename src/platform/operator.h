#pragma once

#include <string>
#include <string_view>

namespace vrx {

enum class Icon { kNone, kCritical, kQuestion, kWarning, kInformation };
enum class Buttons { kOk, kOkCancel, kYesNo, kTryDiscardStay, kNewAllNothing };
enum class Answer {
  kOk,
  kCancel,
  kYes,
  kNo,
  kTryAgain,
  kDiscard,
  kStay,
  kStoreNew,
  kStoreAll,
  kStoreNothing
};

// What a message about the serial port shows below its text: nothing, its cause, or its cause and a
// button that opens Setup at the port.
enum class PortHelp { kNone, kCause, kCauseAndSetup };

// A message to the operator. Texts are UTF-8; CR LF separates lines.
struct MessageBox {
  Icon icon = Icon::kNone;
  Buttons buttons = Buttons::kOk;
  std::string title;
  std::string text;
  // Technical cause in addition to the specified text, such as "is cut off: 8192 bytes instead of
  // 40960". Empty if the text is sufficient.
  std::string cause = {};
  // Makes the refusing button the default. For questions where the other answer overwrites, repeats
  // or relabels data.
  bool refuses_by_default = false;
  PortHelp port_help = PortHelp::kNone;
};

enum class StatusColor { kBlue, kRed, kGreen };  // busy, error, success

// The person at the machine: sees messages and answers questions.
class Operator {
 public:
  virtual ~Operator() = default;

  // Returns the pressed button; kOk for a box with OK only.
  virtual Answer ShowMessage(const MessageBox& box) = 0;

  // Ignores the beeper setting; see BeepIfEnabled.
  virtual void Beep() = 0;

  // Called by BusyCursor. Calls nest: the busy cursor is shown until every on has its off, and not
  // while a message is shown.
  virtual void SetBusy(bool busy) = 0;

  // The status line of transfers. An empty text clears it.
  virtual void SetStatusLine(std::string_view text) = 0;
  virtual void SetStatusColor(StatusColor color) = 0;
};

}  // namespace vrx
