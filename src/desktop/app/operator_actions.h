#pragma once

#include <QObject>
#include <functional>

namespace vrx {

// Calls back when the operator begins an action anywhere in the program: a key or mouse button goes
// down, the wheel turns, a window is closed by its frame. The release of the key or button belongs
// to the same action.
class OperatorActions : public QObject {
 public:
  explicit OperatorActions(std::function<void()> begun);
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  std::function<void()> begun_;
};

}  // namespace vrx
