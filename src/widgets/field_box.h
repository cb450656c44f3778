#pragma once

#include <QFocusEvent>
#include <QKeyEvent>

#include "widgets/fields.h"

namespace vrx {

// Whether a control that loses the focus is left for another one, as a form understands it. A menu,
// a list that drops down or another window in front leaves it on show with what stands in it.
bool LeavesField(const QFocusEvent& event);

// Ctrl+Tab, and back: from every control it goes up to the tab folder, which turns to another tab.
bool TurnsTabs(const QKeyEvent& key);

// Logical pixels for that many of the widest characters and what a box puts around them.
int WidthFor(const QWidget& box, std::size_t characters);

// A box that is as wide as `limit` of the widest characters and gives way in a narrow window.
FilteredEdit* MakeBox(FilteredEdit::Filter filter, std::size_t limit, const char* name,
                      QWidget* parent);

}  // namespace vrx
