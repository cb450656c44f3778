#pragma once

#include <QFocusEvent>
#include <QKeyEvent>

#include "desktop/filtered_edit.h"
#include "feed/auto_abbreviation.h"
#include "feed/record_fields.h"

namespace vrx {

// Whether a control that loses the focus is left for another one, as a form understands it. A menu,
// a list that drops down or another window in front leaves it on show with what stands in it.
bool LeavesField(const QFocusEvent& event);

// Ctrl+Tab, and back: from every control it goes up to the tab folder, which turns to another tab.
bool TurnsTabs(const QKeyEvent& key);

// Logical pixels for that many of the widest characters and what a box puts around them.
int WidthFor(const QWidget& box, std::size_t characters);

// A box of a form for a field, as wide as what it holds. The field's filter outlives it.
FilteredEdit* MakeFieldBox(const RecordField& field, const char* name, QWidget* parent);

// The boxes by which a description gives a record its name. The abbreviation outlives them.
FilteredEdit* MakeNameBox(const RecordField& field, const char* name,
                          AutoAbbreviation& abbreviation, QWidget* parent);
FilteredEdit* MakeDescriptionBox(const char* name, AutoAbbreviation& abbreviation, QWidget* parent);

}  // namespace vrx
