#include "desktop/app/operator_actions.h"

#include <QApplication>
#include <QKeyEvent>
#include <utility>

namespace vrx {
namespace {

// Looks at what reaches a window of the platform. The toolkit moves the focus, and with that stores
// what a field holds, before the widget gets the same press.
bool BeginsAction(const QObject& receiver, const QEvent& event) {
  switch (event.type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::Wheel:
    case QEvent::TouchBegin:
    case QEvent::Close:
      return receiver.isWindowType();
    case QEvent::KeyPress:
      return receiver.isWindowType() && !static_cast<const QKeyEvent&>(event).isAutoRepeat();
    // All that comes of a key that acts as a shortcut; it comes first, and to the focus.
    case QEvent::ShortcutOverride:
      return !static_cast<const QKeyEvent&>(event).isAutoRepeat();
    default:
      return false;
  }
}

}  // namespace

OperatorActions::OperatorActions(std::function<void()> begun) : begun_(std::move(begun)) {
  qApp->installEventFilter(this);
}

bool OperatorActions::eventFilter(QObject* watched, QEvent* event) {
  if (BeginsAction(*watched, *event)) {
    begun_();
  }
  return QObject::eventFilter(watched, event);
}

}  // namespace vrx
