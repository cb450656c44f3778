#pragma once

#include <string_view>

#include "make_manual/manual_text.h"

namespace vrx::manual {

// The marks of one text. Throws Error with what is wrong, without a place.
Spans ParseSpans(std::string_view text);

}  // namespace vrx::manual
