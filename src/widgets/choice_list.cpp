#include "widgets/choice_list.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QKeyEvent>
#include <QWheelEvent>

#include "widgets/field_box.h"

namespace vrx {

void ChoiceList::keyPressEvent(QKeyEvent* event) {
  if (TurnsTabs(*event)) {
    event->ignore();
    return;
  }
  const bool typed = !event->text().isEmpty() && event->text().front().isPrint() &&
                     (event->modifiers() & (Qt::ControlModifier | Qt::AltModifier)) == 0;
  switch (event->key()) {
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
    case Qt::Key_Home:
    case Qt::Key_End:
      showPopup();
      event->accept();
      return;
    default:
      break;
  }
  if (!typed) {
    QComboBox::keyPressEvent(event);
    return;
  }
  showPopup();
  event->accept();
  if (event->key() != Qt::Key_Space) {
    QApplication::sendEvent(view(), event);
  }
}

void ChoiceList::wheelEvent(QWheelEvent* event) { event->ignore(); }

}  // namespace vrx
