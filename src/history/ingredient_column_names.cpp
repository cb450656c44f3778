#include "history/ingredient_column_names.h"

#include "base/text.h"

namespace vrx {

namespace {

constexpr int kMissingIngredient = 33;

}  // namespace

std::optional<std::size_t> IngredientColumnNames::Place(std::string_view key) {
  if (key.size() != 7 || !key.starts_with("Ing") || !key.ends_with("Wt") || !IsDigitChar(key[3]) ||
      !IsDigitChar(key[4])) {
    return std::nullopt;
  }
  const int ingredient = (key[3] - '0') * 10 + (key[4] - '0');
  if (ingredient < 1 || ingredient > kPlaces || ingredient == kMissingIngredient) {
    return std::nullopt;
  }
  return static_cast<std::size_t>(ingredient - 1);
}

void IngredientColumnNames::SetIngredientColumnName(std::string_view column_key,
                                                    std::string_view name) {
  if (const auto place = Place(column_key)) {
    names_[*place] = name;
  }
}

std::string IngredientColumnNames::GetIngredientColumnName(std::string_view column_key) const {
  const auto place = Place(column_key);
  return place ? names_[*place] : std::string();
}

}  // namespace vrx
