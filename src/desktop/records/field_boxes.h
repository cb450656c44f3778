#pragma once

#include "feed/key_filters.h"
#include "feed/record_fields.h"
#include "widgets/fields.h"

namespace vrx {

// A box of a form for a field, as wide as what it holds. The field's filter outlives it.
FilteredEdit* MakeFieldBox(const RecordField& field, const char* name, QWidget* parent);

// The boxes by which a description gives a record its name. The abbreviation outlives them.
FilteredEdit* MakeNameBox(const RecordField& field, const char* name,
                          AutoAbbreviation& abbreviation, QWidget* parent);
FilteredEdit* MakeDescriptionBox(const char* name, AutoAbbreviation& abbreviation, QWidget* parent);

}  // namespace vrx
