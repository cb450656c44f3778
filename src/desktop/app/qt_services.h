#pragma once

#include <QObject>
#include <QString>
#include <string_view>

#include "platform/operator.h"

namespace vrx {

// The operator in front of the screen. Boxes belong to whatever window is active and block all
// others; what lies behind one is its details.
//
// The status line is the main window's: it connects to the signals.
class QtOperator : public QObject, public Operator {
  Q_OBJECT

 public:
  // A box without a title bears the application's. The pointer is no hourglass while it is up.
  Answer ShowMessage(const MessageBox& box) override;
  void Beep() override;
  void SetBusy(bool busy) override;
  void SetStatusLine(std::string_view text) override;
  void SetStatusColor(StatusColor color) override;

 Q_SIGNALS:
  void StatusLineChanged(const QString& text);
  void StatusColorChanged(vrx::StatusColor color);

 private:
  bool busy_ = false;
};

}  // namespace vrx
