#include "feed/recipe_comparison.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "base/error.h"
#include "base/number.h"
#include "base/translation.h"
#include "database/identity.h"
#include "feed/recipe_columns.h"

namespace vrx {
namespace {

constexpr std::string_view kIngredientCell = "Ingredient";

std::string IngredientName(const std::vector<IngredientRecord>& ingredients,
                           const std::string& number) {
  const auto found = std::find_if(
      ingredients.begin(), ingredients.end(),
      [&](const IngredientRecord& ingredient) { return ingredient.id == ParseLong(number); });
  return found == ingredients.end() ? "ingredient '" + number + "'" : found->name;
}

RecipeTotals RecalcCompared(Ration& ration, std::string_view file_title) {
  try {
    return RecalcRecipe(ration);
  } catch (const Error& error) {
    throw Error("Recipe " + std::to_string(ration.recipe.id) + " of " + std::string(file_title) +
                ": " + error.what());
  }
}

template <std::size_t kCount>
std::vector<std::string_view> Different(const std::array<FieldText, kCount>& a,
                                        const std::array<FieldText, kCount>& b) {
  std::vector<std::string_view> names;
  for (std::size_t each = 0; each < kCount; ++each) {
    if (a.at(each).text != b.at(each).text) {
      names.push_back(a.at(each).name);
    }
  }
  return names;
}

}  // namespace

std::array<FieldText, 6> FieldTexts(const RecipeRecord& recipe) {
  return {{{"Name", recipe.name},
           {"Description", recipe.description},
           {"BatchType", recipe.batch_type},
           {"HeadCount", std::to_string(recipe.head_count)},
           {"RationTarget", recipe.ration_target},
           {"AdjBatTotIndex", recipe.adjust_batch_index}}};
}

std::array<FieldText, 9> CellTexts(const RecipeLineRecord& line) {
  return {{{kIngredientCell, line.ingredient},
           {"Target", line.target},
           {"Ration%", line.ration_percent},
           {"DryMatter%", line.dry_matter_percent},
           {"DryMatter", line.dry_matter},
           {"BatchTarget", line.batch_target},
           {"Sequence", std::to_string(line.sequence)},
           {"HandAdd", line.hand_add ? "Yes" : "No"},
           {"Ingredient%", PercentText(line.ingredient_percent)}}};
}

ComparedRecipe ReadCompared(SQLite::Database& database, std::string_view file_title, int id) {
  Ration ration{.recipe = ReadRecipe(database, id), .lines = ReadRecipeLines(database, id)};
  RecipeTotals totals = RecalcCompared(ration, file_title);
  const std::vector<IngredientRecord> ingredients = ReadIngredients(database);
  ComparedRecipe compared{.head = std::move(ration.recipe),
                          .totals = std::move(totals.row),
                          .lines = {},
                          .unit = ReadField(database, kUnitField).value_or("")};
  int place = 0;
  for (RecipeLineRecord& line : ration.lines) {
    std::string ingredient = IngredientName(ingredients, line.ingredient);
    compared.lines.push_back(
        {.ingredient = std::move(ingredient), .place = ++place, .cells = std::move(line)});
  }
  return compared;
}

std::vector<ComparedPair> PairLines(const ComparedRecipe& a, const ComparedRecipe& b) {
  std::vector<const ComparedLine*> unpaired;
  for (const ComparedLine& line : b.lines) {
    unpaired.push_back(&line);
  }
  std::vector<ComparedPair> pairs;
  for (const ComparedLine& line : a.lines) {
    const auto match = std::find_if(
        unpaired.begin(), unpaired.end(),
        [&](const ComparedLine* other) { return other->ingredient == line.ingredient; });
    if (match == unpaired.end()) {
      pairs.push_back({.a = &line, .b = nullptr});
    } else {
      pairs.push_back({.a = &line, .b = *match});
      unpaired.erase(match);
    }
  }
  for (const ComparedLine* line : unpaired) {
    pairs.push_back({.a = nullptr, .b = line});
  }
  return pairs;
}

std::vector<std::string_view> DifferentFields(const RecipeRecord& a, const RecipeRecord& b) {
  return Different(FieldTexts(a), FieldTexts(b));
}

std::vector<std::string_view> DifferentTotals(const TotalsRow& a, const TotalsRow& b) {
  std::vector<std::string_view> labels;
  const auto of_a = a.Labels();
  const auto of_b = b.Labels();
  for (std::size_t each = 0; each < of_a.size(); ++each) {
    if (of_a.at(each).second != of_b.at(each).second) {
      labels.push_back(of_a.at(each).first);
    }
  }
  return labels;
}

std::vector<std::string_view> DifferentCells(const ComparedPair& pair, bool one_database) {
  std::vector<std::string_view> names;
  if (pair.a != nullptr && pair.b != nullptr) {
    names = Different(CellTexts(pair.a->cells), CellTexts(pair.b->cells));
    if (one_database) {
      return names;
    }
  } else {
    for (const FieldText& cell : CellTexts(pair.Any().cells)) {
      names.push_back(cell.name);
    }
  }
  std::erase(names, kIngredientCell);
  return names;
}

std::string UnitsDiffer(const ComparedRecipe& a, std::string_view title_of_a,
                        const ComparedRecipe& b, std::string_view title_of_b) {
  if (a.unit == b.unit) {
    return {};
  }
  return Tr("The weights of %1 are in %2, those of %3 in %4: they are compared as numbers.",
            {std::string(title_of_a), a.unit, std::string(title_of_b), b.unit});
}

}  // namespace vrx
