#pragma once

#include <QPointer>
#include <QWidget>
#include <initializer_list>

namespace vrx {

// Turns controls of a form off for a while. One that has the focus then gets it back when it is on
// again, unless the focus has gone elsewhere by then.
class TurnedOff {
 public:
  // `resting` has the focus meanwhile; it outlives this.
  explicit TurnedOff(QWidget& resting) : resting_(resting) {}

  void Turn(std::initializer_list<QWidget*> controls, bool on);

 private:
  QWidget& resting_;
  QPointer<QWidget> kept_;
};

}  // namespace vrx
