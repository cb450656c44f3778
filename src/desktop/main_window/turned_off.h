#pragma once

#include <QPointer>
#include <QWidget>
#include <initializer_list>

namespace vrx {

// Disables controls of a form during its lifetime. Afterwards the control that had the focus gets
// it back, unless the focus has moved elsewhere.
class TurnedOff {
 public:
  // `resting` has the focus in the meantime; it outlives the object.
  explicit TurnedOff(QWidget& resting) : resting_(resting) {}

  void Turn(std::initializer_list<QWidget*> controls, bool on);

 private:
  QWidget& resting_;
  QPointer<QWidget> kept_;
};

}  // namespace vrx
