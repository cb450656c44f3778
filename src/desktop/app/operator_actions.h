#pragma once

#include <QObject>
#include <functional>

namespace vrx {

// Tells when the operator begins an action anywhere in the program: a key or a button of the mouse
// goes down, the wheel turns, a window is closed by its frame. What follows from it belongs to the
// same action, the release of the key or button as well.
class OperatorActions : public QObject {
 public:
  explicit OperatorActions(std::function<void()> begun);
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  std::function<void()> begun_;
};

}  // namespace vrx
