#include "feed/record_fields.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <stdexcept>

#include "base/encoding.h"
#include "base/number.h"
#include "base/text.h"
#include "base/translation.h"

namespace vrx {
namespace {

constexpr std::array<RecordKindTraits, 3> kKinds = {{
    {.kind = RecordKind::kIngredient,
     .noun = TrMark("ingredient"),
     .plural = "ingredients",
     .count = kIngredientCount,
     .default_name_prefix = "ING",
     .name_becomes_description = true,
     .reset_title = "Set Ingredient Defaults",
     .reset_question_end = " to its default values?",
     .reset_refusal_end = " to its default values because it is currently being used in recipe(s).",
     .reset_beeps = true},
    {.kind = RecordKind::kRecipe,
     .noun = TrMark("recipe"),
     .plural = "recipes",
     .count = kRecipeCount,
     .default_name_prefix = "REC",
     .name_becomes_description = false,
     .reset_title = "Set Recipe Defaults",
     .reset_question_end = " to its default values and clear all ingredients in this recipe?",
     .reset_refusal_end = "",
     .reset_beeps = false},
    {.kind = RecordKind::kPen,
     .noun = TrMark("pen"),
     .plural = "pens",
     .count = kPenCount,
     .default_name_prefix = "PEN",
     .name_becomes_description = true,
     .reset_title = "Set Pen Defaults",
     .reset_question_end = " to its default values?",
     .reset_refusal_end = "",
     .reset_beeps = false},
}};

constexpr std::size_t kRange = 100;  // pens by which the indicator's table grows

std::string LeaveText(std::string_view text) {
  const std::size_t last = text.find_last_not_of(' ');
  return std::string(last == std::string_view::npos ? "" : text.substr(0, last + 1));
}

std::string LeaveName(std::string_view text) {
  std::string name = LeaveText(text);
  if (name.empty()) {
    throw FieldRefusal("The 'Name' field is mandatory.");
  }
  return name;
}

std::string LeaveDryMatter(std::string_view text) {
  return Format(std::clamp(TextToLong(text), 0, 100) * 1.0, "#0");
}

// A count out of range becomes 100, the number of head that a recipe is written for.
std::string LeaveHeadCount(std::string_view text) {
  const std::int32_t value = TextToLong(text);
  return Format((value > 1000 ? 100 : std::max(value, 0)) * 1.0, "#0");
}

std::string LeaveRationTarget(std::string_view text) { return std::string(text); }

std::string LeaveFeed(std::string_view text) { return std::to_string(TextToLong(text)); }

constexpr std::size_t kNameLimit = 6;

constexpr std::array<RecordField, 10> kFields = {{
    {RecordKind::kIngredient, "Name", kNameLimit, FilterNameKey, false, LeaveName},
    {RecordKind::kIngredient, "Description", kDescriptionLimit, FilterDescriptionKey, false,
     LeaveText},
    {RecordKind::kIngredient, "DryMatter%", 3, FilterDigitKey2, true, LeaveDryMatter},
    {RecordKind::kRecipe, "Name", kNameLimit, FilterNameKey, false, LeaveName},
    {RecordKind::kRecipe, "Description", kDescriptionLimit, FilterDescriptionKey, false, LeaveText},
    {RecordKind::kRecipe, "HeadCount", 4, FilterDigitKey2, true, LeaveHeadCount},
    {RecordKind::kRecipe, "RationTarget", 6, FilterDigitKey, true, LeaveRationTarget},
    {RecordKind::kPen, "Name", kNameLimit, FilterNameKey, false, LeaveName},
    {RecordKind::kPen, "Description", kDescriptionLimit, FilterDescriptionKey, false, LeaveText},
    {RecordKind::kPen, "FeedAmount", 6, FilterDigitKey, true, LeaveFeed},
}};

// The character of a key, or its number if it is not printable.
std::string Shown(std::string_view character) {
  const auto code = static_cast<unsigned char>(character.front());
  if (code < 0x20 || code == 0x7F) {
    return "with the code " + std::to_string(code);
  }
  return "'" + std::string(character) + "'";
}

std::string Quoted(const RecordField& field) {
  return "The '" + std::string(field.name) + "' field";
}

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

std::optional<int> CheckPenCapacity(std::span<const PenRecord> rows) {
  const std::size_t end = std::min(rows.size(), static_cast<std::size_t>(kPenCount));
  for (std::size_t row = end; row > kRange; --row) {
    if (TextToLong(rows[row - 1].feed_amount) > 0) {
      return static_cast<int>((row + kRange - 1) / kRange * kRange);
    }
  }
  return std::nullopt;
}

std::string PenCapacityWarning(int size) {
  return " This recipe requires a " + std::to_string(size) +
         "-pen capacity option in the K2260 indicator.";
}

const RecordField& FieldOf(RecordKind kind, std::string_view name) {
  const auto* const field = std::find_if(
      kFields.begin(), kFields.end(),
      [&](const RecordField& entry) { return entry.kind == kind && entry.name == name; });
  if (field == kFields.end()) {
    throw std::out_of_range("no typed field " + std::string(name));
  }
  return *field;
}

std::string KeyRefusal(const RecordField& field, std::string_view text, int key) {
  if (text.size() >= field.limit) {
    return FullRefusal(field.limit);
  }
  if (field.number) {
    return std::string(DigitRefusal(key));
  }
  return std::string(field.name == "Name" ? kTakesName : kTakesDescription);
}

LeftField LeaveField(const RecordField& field, std::string_view text) {
  try {
    return {.text = field.leave(text), .refusal = {}};
  } catch (const FieldRefusal& refusal) {
    return {.text = {}, .refusal = refusal.what()};
  }
}

FieldEntry EnterText(const RecordField& field, std::string_view typed) {
  std::string box;
  for (std::string_view rest = typed; !rest.empty();) {
    const std::string_view character = rest.substr(0, DecodeUtf8(rest).length);
    rest.remove_prefix(character.size());
    const int key = character.size() == 1 ? static_cast<unsigned char>(character.front()) : 0;
    const int passed = key > 0 && key < 0x80 ? field.filter(key) : 0;
    if (passed == 0) {
      throw FieldRefusal(Quoted(field) + " does not take the character " + Shown(character) + ".");
    }
    if (box.size() == field.limit) {
      throw FieldRefusal(Quoted(field) + " holds at most " + std::to_string(field.limit) +
                         " characters: '" + std::string(typed) + "' is too long.");
    }
    box.push_back(static_cast<char>(passed));
  }
  FieldEntry entry{.text = field.leave(box), .note = {}};
  const auto number = ParseLong(entry.text);
  if (field.number && !entry.text.empty() && number != ParseLong(box)) {
    entry.note = std::string(field.name) + ": " +
                 (box.empty() ? "nothing was typed" : box + " is out of range") + ", " +
                 entry.text + " is stored.";
  }
  return entry;
}

}  // namespace vrx
