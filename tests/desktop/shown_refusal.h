#pragma once

#include <QApplication>
#include <QLabel>
#include <string>

namespace vrx::testing {

// The reason of a refused key that is on the screen; empty for none.
inline std::string ShownRefusal() {
  for (const QWidget* const widget : QApplication::topLevelWidgets()) {
    if (widget->objectName() == QLatin1String("lblRefusal") && widget->isVisible()) {
      return static_cast<const QLabel*>(widget)->text().toStdString();
    }
  }
  return {};
}

}  // namespace vrx::testing
