#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace vrx {

// Flags for the three groups of inputs of a recipe besides its lines.
struct RecipeInputs {
  bool head_count = false;
  bool ration_target = false;
  bool adjust_batch = false;
  bool operator==(const RecipeInputs&) const = default;
};

// How the lines of a recipe are entered.
enum class LineEntry { kNone, kWeight, kPercent };

// What a batch is scaled to.
enum class BatchScale { kNone, kRationTarget, kHeadCount };

// One item of the list of batch types. The code is stored in the field `BatchType`.
struct BatchType {
  std::string_view code;
  std::string_view list_text;
  LineEntry entry;
  BatchScale scale;
  RecipeInputs shown;
};

// In the order of the list. The first, "!", is a recipe without type.
[[nodiscard]] std::span<const BatchType> BatchTypes();

// Code of a list index; empty if the list has no such item.
[[nodiscard]] std::string_view GetBatchTypeCode(int list_index);

// nullptr for an unknown code.
[[nodiscard]] const BatchType* FindBatchType(std::string_view code);

// The list for adjusting a batch, from "+20%" at index 0 to "-20%" at index 40. The field
// `AdjBatTotIndex` stores the index, not the percentage.
inline constexpr int kAdjustItemCount = 41;
inline constexpr int kNoAdjustIndex = 20;

// Value of an item in percent, 120 to 80. Throws Error for an index outside the list, as
// AdjustItemText does.
std::int32_t AdjustItemValue(int index);

// "+20%", "+ 9%", " 0%(no change)", "-10%".
std::string AdjustItemText(int index);

}  // namespace vrx
