#pragma once

#include <QRect>
#include <QString>
#include <QWidget>

namespace vrx {

// Shows for two seconds why a key was refused, below `place` of the widget, or above it at the edge
// of the screen. A new tip replaces the one before. Does nothing for an empty reason.
void ShowRefusal(QWidget& widget, const QRect& place, const QString& reason);

}  // namespace vrx
