#include "feed/record_kind.h"

#include <array>
#include <cstddef>

#include "base/number.h"

namespace vrx {
namespace {

constexpr std::array<RecordKindTraits, 3> kKinds = {{
    {.kind = RecordKind::kIngredient,
     .noun = "ingredient",
     .plural = "ingredients",
     .count = kIngredientCount,
     .default_name_prefix = "ING",
     .name_becomes_description = true,
     .reset_title = "Set Ingredient Defaults",
     .reset_question_end = " to its default values?",
     .reset_refusal_end = " to its default values because it is currently being used in recipe(s).",
     .reset_beeps = true},
    {.kind = RecordKind::kRecipe,
     .noun = "recipe",
     .plural = "recipes",
     .count = kRecipeCount,
     .default_name_prefix = "REC",
     .name_becomes_description = false,
     .reset_title = "Set Recipe Defaults",
     .reset_question_end = " to its default values and clear all ingredients in this recipe?",
     .reset_refusal_end = "",
     .reset_beeps = false},
    {.kind = RecordKind::kPen,
     .noun = "pen",
     .plural = "pens",
     .count = kPenCount,
     .default_name_prefix = "PEN",
     .name_becomes_description = true,
     .reset_title = "Set Pen Defaults",
     .reset_question_end = " to its default values?",
     .reset_refusal_end = "",
     .reset_beeps = false},
}};

}  // namespace

std::span<const RecordKindTraits> RecordKinds() { return kKinds; }

const RecordKindTraits& TraitsOf(RecordKind kind) {
  return kKinds.at(static_cast<std::size_t>(kind));
}

std::string DefaultName(RecordKind kind, int id) {
  return std::string(TraitsOf(kind).default_name_prefix) + Format(id, "000");
}

std::string FormatIdPrefix(int id) {
  constexpr std::size_t kWidth = 3;
  std::string digits = std::to_string(id);
  if (digits.size() < kWidth) {
    digits.insert(0, kWidth - digits.size(), ' ');
  }
  return digits + ": ";
}

}  // namespace vrx
