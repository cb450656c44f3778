#pragma once

#include <optional>
#include <span>
#include <string>

#include "database/records.h"

namespace vrx {

// The size of the indicator's pen table that the feed calls for: 200, 300 or 400, or nothing where
// no row above 100 is fed. The rows are those of the pen grid as it is filtered, so a row's place
// counts and not its pen's ID.
std::optional<int> CheckPenCapacity(std::span<const PenRecord> rows);

// " This recipe requires a 400-pen capacity option in the K2260 indicator."
std::string PenCapacityWarning(int size);

}  // namespace vrx
