#include "exchange/ingredient_column_names.h"

#include <optional>

#include "frame/text.h"

namespace vrx {

namespace {

constexpr std::size_t kMissingIngredient = 33;

std::optional<std::size_t> Place(std::string_view key, std::size_t places) {
  if (key.size() != 7 || !key.starts_with("Ing") || !key.ends_with("Wt") || !IsDigitChar(key[3]) ||
      !IsDigitChar(key[4])) {
    return std::nullopt;
  }
  const auto ingredient = static_cast<std::size_t>((key[3] - '0') * 10 + (key[4] - '0'));
  if (ingredient < 1 || ingredient > places || ingredient == kMissingIngredient) {
    return std::nullopt;
  }
  return ingredient - 1;
}

}  // namespace

void IngredientColumnNames::SetIngredientColumnName(std::string_view column_key,
                                                    std::string_view name) {
  if (const auto place = Place(column_key, names_.size())) {
    names_[*place] = name;
  }
}

std::string IngredientColumnNames::GetIngredientColumnName(std::string_view column_key) const {
  const auto place = Place(column_key, names_.size());
  return place ? names_[*place] : std::string();
}

}  // namespace vrx
