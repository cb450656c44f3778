#include "desktop/main_window/turned_off.h"

namespace vrx {

void TurnedOff::Turn(std::initializer_list<QWidget*> controls, bool on) {
  const QWidget& form = *resting_.window();
  for (QWidget* const control : controls) {
    if (!on && control == form.focusWidget()) {
      kept_ = control;
      resting_.setFocus(Qt::OtherFocusReason);
    }
    control->setEnabled(on);
  }
  if (kept_ && kept_->isEnabled()) {
    if (form.focusWidget() == &resting_) {
      kept_->setFocus(Qt::OtherFocusReason);
    }
    kept_.clear();
  }
}

}  // namespace vrx
