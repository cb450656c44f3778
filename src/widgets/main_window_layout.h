#pragma once

#include <QFont>
#include <QWidget>

namespace vrx {

// Between controls, in logical pixels.
inline constexpr int kSpacing = 8;

// Between groups of controls, in logical pixels.
inline constexpr int kGroupSpacing = 2 * kSpacing;

// What is told stands out from the caption ahead of it; all else of the font stays the form's.
inline void MakeDemiBold(QWidget& widget) {
  QFont font;
  font.setWeight(QFont::DemiBold);
  widget.setFont(font);
}

}  // namespace vrx
