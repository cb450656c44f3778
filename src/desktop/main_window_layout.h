#pragma once

#include "desktop/form_parts.h"

namespace vrx {

// Between groups of controls, in logical pixels.
inline constexpr int kGroupSpacing = 2 * kSpacing;

}  // namespace vrx
