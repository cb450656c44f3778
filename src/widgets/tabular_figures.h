#pragma once

#include <QFont>

namespace vrx {

// The font for weights and counts that stand below each other: the font itself where its digits are
// of equal width, else the system's font of fixed width in its size and weight.
QFont TabularFigures(const QFont& font);

}  // namespace vrx
