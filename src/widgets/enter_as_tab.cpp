#include "widgets/enter_as_tab.h"

#include <QApplication>
#include <QKeyEvent>

namespace vrx {
namespace {

bool IsEnter(const QKeyEvent& key) {
  const Qt::KeyboardModifiers others = key.modifiers() & ~(Qt::KeypadModifier | Qt::ShiftModifier);
  return (key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter) && others == Qt::NoModifier;
}

}  // namespace

EnterAsTab::EnterAsTab(QWidget* form) : QObject(form), form_(form) {
  qApp->installEventFilter(this);
}

bool EnterAsTab::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() != QEvent::KeyPress) {
    return false;
  }
  const auto* const widget = qobject_cast<QWidget*>(watched);
  if (widget == nullptr || widget->window() != form_ || !IsEnter(*static_cast<QKeyEvent*>(event))) {
    return false;
  }
  QKeyEvent tab(QEvent::KeyPress, Qt::Key_Tab, Qt::NoModifier, QStringLiteral("\t"));
  QApplication::sendEvent(watched, &tab);
  return true;
}

}  // namespace vrx
