#include "desktop/records/record_id_list.h"

#include <QAbstractItemView>
#include <QKeyEvent>
#include <QWheelEvent>
#include <string>

#include "feed/record_kind.h"
#include "widgets/field_box.h"
#include "widgets/qt_text.h"

namespace vrx {

RecordIdList::RecordIdList(const QString& name, int records, QWidget* parent) : QComboBox(parent) {
  setObjectName(name);
  setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  constexpr int kCharacters = 14;
  setMinimumContentsLength(kCharacters);
  constexpr int kItemsInView = 20;
  setMaxVisibleItems(kItemsInView);
  view()->setAccessibleName(QStringLiteral("ID Number"));
  addItem(QString());
  for (int id = 1; id <= records; ++id) {
    addItem(ToQString(FormatIdPrefix(id)));
  }
}

void RecordIdList::SetItem(int id, std::string_view name) {
  setItemText(id, ToQString(FormatIdPrefix(id) + std::string(name)));
}

void RecordIdList::keyPressEvent(QKeyEvent* event) {
  event->setAccepted(!TurnsTabs(*event));
  const bool command = (event->modifiers() & (Qt::ControlModifier | Qt::AltModifier)) != 0;
  if (!command && !event->text().isEmpty() && event->text().front().isPrint()) {
    Q_EMIT Typed();
  }
}

void RecordIdList::wheelEvent(QWheelEvent* event) { event->ignore(); }

}  // namespace vrx
