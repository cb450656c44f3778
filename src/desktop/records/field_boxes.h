#pragma once

#include "feed/key_filters.h"
#include "feed/record_fields.h"
#include "widgets/fields.h"

namespace vrx {

// An edit box for a field of a form, as wide as its longest text. The field outlives it.
FilteredEdit* MakeFieldBox(const RecordField& field, const char* name, QWidget* parent);

// A key that the box drops shows the reason of that field.
void ExplainKeys(FilteredEdit& box, const RecordField& field);

// The boxes of a name and of the description that abbreviates to it. The abbreviation outlives
// them.
FilteredEdit* MakeNameBox(const RecordField& field, const char* name,
                          AutoAbbreviation& abbreviation, QWidget* parent);
FilteredEdit* MakeDescriptionBox(const char* name, AutoAbbreviation& abbreviation, QWidget* parent);

}  // namespace vrx
