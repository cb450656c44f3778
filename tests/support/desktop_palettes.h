#pragma once

#include <QPalette>
#include <string>
#include <utility>
#include <vector>

namespace vrx::testing {

// The colors of a light and of a dark desktop, before the program makes them readable.

inline QPalette LightDesktop() {
  QPalette palette(Qt::black, QColor(239, 239, 239), Qt::white, QColor(159, 159, 159),
                   QColor(184, 184, 184), Qt::black, Qt::white, Qt::white, QColor(239, 239, 239));
  palette.setColor(QPalette::AlternateBase, QColor(247, 247, 247));
  palette.setColor(QPalette::ToolTipBase, QColor(255, 255, 220));
  palette.setColor(QPalette::ToolTipText, Qt::black);
  palette.setColor(QPalette::Highlight, QColor(48, 140, 198));
  palette.setColor(QPalette::HighlightedText, Qt::white);
  palette.setColor(QPalette::PlaceholderText, QColor(0, 0, 0, 128));
  return palette;
}

inline QPalette DarkDesktop() {
  const QColor text(252, 252, 252);
  QPalette palette(text, QColor(49, 54, 59), Qt::white, Qt::black, Qt::gray, text, Qt::white,
                   QColor(27, 30, 32), QColor(42, 46, 50));
  palette.setColor(QPalette::AlternateBase, QColor(35, 38, 41));
  palette.setColor(QPalette::Highlight, QColor(61, 174, 233));
  palette.setColor(QPalette::HighlightedText, text);
  palette.setColor(QPalette::ToolTipBase, QColor(49, 54, 59));
  palette.setColor(QPalette::ToolTipText, text);
  palette.setColor(QPalette::Link, QColor(0, 0, 255));
  palette.setColor(QPalette::PlaceholderText, QColor(0, 0, 0, 128));
  return palette;
}

inline std::vector<std::pair<std::string, QPalette>> Desktops() {
  return {{"light", LightDesktop()}, {"dark", DarkDesktop()}};
}

}  // namespace vrx::testing
