#pragma once

#include <cstdint>
#include <string>

namespace vrx {

// The list by which a batch is adjusted, from "+20%" at index 0 to "-20%" at index 40.
// `AdjBatTotIndex` stores the index, not the percentage.
inline constexpr int kAdjustItemCount = 41;
inline constexpr int kNoAdjustIndex = 20;

// The whole-number value of an item, percent: 120 to 80. Throws Error for an index that the list
// does not have.
std::int32_t AdjustItemValue(int index);

// "+20%", "+ 9%", " 0%(no change)", "-10%". Throws as AdjustItemValue.
std::string AdjustItemText(int index);

}  // namespace vrx
