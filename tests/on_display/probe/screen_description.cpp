#include "on_display/probe/screen_description.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QHeaderView>
#include <QJsonArray>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QTabBar>
#include <QVariant>
#include <algorithm>

namespace vrx::testing {
namespace {

// What a screen reader reads, where that is more than the text.
QString TextOf(const QModelIndex& index) {
  const QVariant read = index.data(Qt::AccessibleTextRole);
  return (read.isValid() ? read : index.data()).toString();
}

void PutPlace(QJsonObject& to, const QWidget& widget, const QRect& part) {
  const double scale = widget.devicePixelRatioF();
  const QPoint corner = widget.mapToGlobal(part.topLeft());
  to[QStringLiteral("x")] = qRound(corner.x() * scale);
  to[QStringLiteral("y")] = qRound(corner.y() * scale);
  to[QStringLiteral("width")] = qRound(part.width() * scale);
  to[QStringLiteral("height")] = qRound(part.height() * scale);
}

QJsonObject Item(const QWidget& widget, const QString& text, const QRect& place, bool enabled,
                 bool checked) {
  QJsonObject item{{QStringLiteral("text"), text},
                   {QStringLiteral("enabled"), enabled},
                   {QStringLiteral("checked"), checked}};
  PutPlace(item, widget, place);
  return item;
}

template <typename Menu>
QJsonArray ActionsOf(const Menu& menu) {
  QJsonArray items;
  for (QAction* const action : menu.actions()) {
    if (action->isVisible() && !action->isSeparator()) {
      items << Item(menu, action->text(), menu.actionGeometry(action), action->isEnabled(),
                    action->isChecked());
    }
  }
  return items;
}

QJsonArray TabsOf(const QTabBar& strip) {
  QJsonArray items;
  for (int tab = 0; tab < strip.count(); ++tab) {
    items << Item(strip, strip.tabText(tab), strip.tabRect(tab), strip.isTabEnabled(tab),
                  strip.currentIndex() == tab);
  }
  return items;
}

QJsonArray SectionsOf(const QHeaderView& header) {
  QJsonArray items;
  const bool across = header.orientation() == Qt::Horizontal;
  for (int section = 0; across && section < header.count(); ++section) {
    if (header.isSectionHidden(section)) {
      continue;
    }
    const QRect place(header.sectionViewportPosition(section), 0, header.sectionSize(section),
                      header.height());
    if (header.viewport()->rect().intersects(place)) {
      const QString text = header.model()->headerData(section, header.orientation()).toString();
      items << Item(*header.viewport(), text.simplified(), place, true, false);
    }
  }
  return items;
}

QJsonArray ChoicesOf(const QComboBox& box) {
  QJsonArray items;
  for (int i = 0; i < box.count(); ++i) {
    items << Item(box, box.itemText(i), box.rect(), true, box.currentIndex() == i);
  }
  return items;
}

// Walks over the visible area from cell to cell.
QJsonArray CellsOf(const QAbstractItemView& view) {
  constexpr int kStep = 4;
  QJsonArray cells;
  const QRect area = view.viewport()->rect();
  for (int y = 1; y < area.height();) {
    int below = y + kStep;
    for (int x = 1; x < area.width();) {
      const QModelIndex index = view.indexAt({x, y});
      const QRect place = view.visualRect(index);
      if (!index.isValid() || place.isEmpty()) {
        x += kStep;
        continue;
      }
      QJsonObject cell{{QStringLiteral("row"), index.row()},
                       {QStringLiteral("column"), index.column()},
                       {QStringLiteral("text"), TextOf(index)},
                       {QStringLiteral("current"), index == view.currentIndex()}};
      PutPlace(cell, *view.viewport(), place & area);
      cells << cell;
      x = std::max(x + kStep, place.right() + 1);
      below = std::max(below, place.bottom() + 1);
    }
    y = below;
  }
  return cells;
}

QString TextOf(const QWidget& widget) {
  for (const char* const name : {"plainText", "currentText", "text", "title"}) {
    const QVariant text = widget.property(name);
    if (text.isValid()) {
      return text.toString();
    }
  }
  return {};
}

// An entry of a menu that is open itself opened this one.
int DepthOf(const QMenu& menu) {
  for (const QObject* const opener : menu.menuAction()->associatedObjects()) {
    const auto* const above = qobject_cast<const QMenu*>(opener);
    if (above != nullptr && above->isVisible()) {
      return DepthOf(*above) + 1;
    }
  }
  return 1;
}

void PutParts(QJsonObject& to, const QWidget& widget) {
  QJsonArray items;
  if (const auto* const menu = qobject_cast<const QMenu*>(&widget)) {
    items = ActionsOf(*menu);
    to[QStringLiteral("menuDepth")] = DepthOf(*menu);
  } else if (const auto* const bar = qobject_cast<const QMenuBar*>(&widget)) {
    items = ActionsOf(*bar);
    to[QStringLiteral("menuDepth")] = 0;
  } else if (const auto* const strip = qobject_cast<const QTabBar*>(&widget)) {
    items = TabsOf(*strip);
  } else if (const auto* const header = qobject_cast<const QHeaderView*>(&widget)) {
    items = SectionsOf(*header);
  } else if (const auto* const box = qobject_cast<const QComboBox*>(&widget)) {
    items = ChoicesOf(*box);
  } else if (const auto* const view = qobject_cast<const QAbstractItemView*>(&widget);
             view != nullptr && view->model() != nullptr) {
    to[QStringLiteral("cells")] = CellsOf(*view);
    to[QStringLiteral("rows")] = view->model()->rowCount(view->rootIndex());
    to[QStringLiteral("columns")] = view->model()->columnCount(view->rootIndex());
  }
  if (!items.isEmpty()) {
    to[QStringLiteral("items")] = items;
  }
}

QJsonObject Described(const QWidget& widget) {
  const QWidget* const modal = QApplication::activeModalWidget();
  const auto* const button = qobject_cast<const QAbstractButton*>(&widget);
  QJsonObject described{
      {QStringLiteral("name"), widget.objectName()},
      {QStringLiteral("class"), QString::fromLatin1(widget.metaObject()->className())},
      {QStringLiteral("text"), TextOf(widget)},
      {QStringLiteral("window"), widget.window()->windowTitle()},
      {QStringLiteral("modal"), modal != nullptr && widget.window() != modal},
      {QStringLiteral("enabled"), widget.isEnabled()},
      {QStringLiteral("focus"), &widget == QApplication::focusWidget()},  // not its proxies
      {QStringLiteral("checked"), button != nullptr && button->isChecked()}};
  PutPlace(described, widget, widget.rect());
  PutParts(described, widget);
  return described;
}

}  // namespace

QJsonObject DescribeScreen() {
  QJsonArray widgets;
  for (const QWidget* const widget : QApplication::allWidgets()) {
    if (widget->isVisible()) {
      widgets << Described(*widget);
    }
  }
  return {{QStringLiteral("widgets"), widgets}};
}

}  // namespace vrx::testing
