#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace vrx {

// The names of the ingredient columns, kept for the headings of an export. The table knows the keys
// `Ing01Wt` to `Ing50Wt` without `Ing33Wt`, which never had a place in it.
class IngredientColumnNames {
 public:
  void SetIngredientColumnName(std::string_view column_key, std::string_view name);

  // "" for a key that the table does not know.
  std::string GetIngredientColumnName(std::string_view column_key) const;

 private:
  static constexpr int kPlaces = 50;
  static std::optional<std::size_t> Place(std::string_view column_key);

  std::array<std::string, kPlaces> names_;
};

}  // namespace vrx
