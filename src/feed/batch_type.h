#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace vrx {

// The three groups of inputs that a recipe has beside its lines.
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

// One item of the list of batch types. The list index is its place in the list; the code is what
// `BatchType` stores.
struct BatchType {
  std::string_view code;
  std::string_view list_text;
  LineEntry entry;
  BatchScale scale;
  RecipeInputs shown;
};

// In the order of the list. The first is no type yet: "!".
std::span<const BatchType> BatchTypes();

// The code of a list index; empty where the list has no such item.
std::string_view GetBatchTypeCode(int list_index);

// nullptr for an unknown code.
const BatchType* FindBatchType(std::string_view code);

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
