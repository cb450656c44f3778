#include "desktop/records/where_used_list.h"

#include <QAbstractItemView>
#include <QEvent>

#include "widgets/field_box.h"
#include "widgets/qt_text.h"

namespace vrx {

WhereUsedList::WhereUsedList(QWidget* parent) : QComboBox(parent) {
  setObjectName(QStringLiteral("cboWhereUsed"));
  setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  constexpr int kCharacters = 14;
  setMinimumContentsLength(kCharacters);
  constexpr int kItemsInView = 20;
  setMaxVisibleItems(kItemsInView);
  view()->setAccessibleName(QStringLiteral("Where Used (in Recipes)"));
  connect(this, &QComboBox::currentIndexChanged, this, [this](int index) {
    if (index > 0) {
      setCurrentIndex(0);
    }
  });
}

void WhereUsedList::ShowItems(const std::vector<std::string>& items) {
  clear();
  status_.clear();
  for (const std::string& item : items) {
    addItem(ToQString(item));
  }
  if (!items.empty()) {
    status_ = itemText(0);
    setCurrentIndex(0);
  }
}

void WhereUsedList::showPopup() {
  if (count() > 0) {
    setItemText(0, QString());
    view()->window()->removeEventFilter(this);
    view()->window()->installEventFilter(this);
  }
  QComboBox::showPopup();
}

void WhereUsedList::keyPressEvent(QKeyEvent* event) {
  if (TurnsTabs(*event)) {
    event->ignore();
  } else {
    QComboBox::keyPressEvent(event);
  }
}

// However the list is closed.
bool WhereUsedList::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::Hide && count() > 0) {
    setItemText(0, status_);
  }
  return QComboBox::eventFilter(watched, event);
}

}  // namespace vrx
