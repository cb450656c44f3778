#include "support/recipe_tables.h"

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Transaction.h>

#include "base/number.h"
#include "database/connection.h"
#include "database/identity.h"
#include "database/schema.h"
#include "database/templates.h"

namespace vrx::testing {
namespace {

std::string NumberedName(std::string_view prefix, int number) {
  return std::string(prefix) + Format(number, "000");
}

RecipeLineRecord& AddLine(RecipeTables& tables, int recipe, int ingredient) {
  const IngredientRecord& fed = Ingredient(tables, ingredient);
  const int sequence = static_cast<int>(tables.lines.size()) + 1;
  return tables.lines.emplace_back(
      RecipeLineRecord{.recipe_id = std::to_string(recipe),
                       .ingredient = std::to_string(ingredient),
                       .dry_matter_percent = std::to_string(fed.dry_matter_percent),
                       .sequence = sequence,
                       .hand_add = fed.hand_add});
}

}  // namespace

const std::string kSmallYardFile =
    "{DATA_IN},L\r\n"
    "\r\n"
    "[ING]\r\n"
    "\r\n"
    "1,CORN,0\r\n"
    "2,HAY,0\r\n"
    "5,MINERAL,1\r\n"
    "\r\n"
    "[REC]\r\n"
    "\r\n"
    "1,STEERS,0,2500,0,CORN,HAY;2000,500\r\n"
    "2,HEIFERS,1,1800,120,CORN,MINERAL;1750,50\r\n"
    "\r\n"
    "[PEN]\r\n"
    "\r\n"
    "1,PEN001,150\r\n"
    "3,NORTH,0\r\n"
    "\r\n";

RecipeTables NewTables() {
  RecipeTables tables{.unit = "LB"};
  for (int id = 1; id <= kIngredientCount; ++id) {
    tables.ingredients.push_back({.id = id, .name = NumberedName("ING", id)});
  }
  for (int id = 1; id <= kRecipeCount; ++id) {
    tables.recipes.push_back(
        {.id = id, .name = NumberedName("REC", id), .adjust_batch_index = "20"});
  }
  for (int id = 1; id <= kPenCount; ++id) {
    tables.pens.push_back({.id = id, .name = NumberedName("PEN", id)});
  }
  return tables;
}

IngredientRecord& Ingredient(RecipeTables& tables, int id) {
  return tables.ingredients.at(static_cast<std::size_t>(id) - 1);
}

RecipeRecord& Recipe(RecipeTables& tables, int id) {
  return tables.recipes.at(static_cast<std::size_t>(id) - 1);
}

PenRecord& Pen(RecipeTables& tables, int id) {
  return tables.pens.at(static_cast<std::size_t>(id) - 1);
}

void UseIngredient(RecipeTables& tables, int id, std::string_view name, int dry_matter_percent) {
  IngredientRecord& ingredient = Ingredient(tables, id);
  ingredient.name = name;
  ingredient.description = name;
  ingredient.dry_matter_percent = dry_matter_percent;
}

void UseRecipe(RecipeTables& tables, int id, std::string_view name, std::string_view batch_type) {
  RecipeRecord& recipe = Recipe(tables, id);
  recipe.name = name;
  recipe.description = name;
  recipe.batch_type = batch_type;
}

void AddWeightLine(RecipeTables& tables, int recipe, int ingredient, std::string_view target) {
  AddLine(tables, recipe, ingredient).target = target;
}

void AddPercentLine(RecipeTables& tables, int recipe, int ingredient, std::string_view percent) {
  AddLine(tables, recipe, ingredient).ingredient_percent = percent;
}

RecipeTables SmallYard() {
  RecipeTables tables = NewTables();
  UseIngredient(tables, 1, "CORN", 88);
  UseIngredient(tables, 2, "HAY", 90);
  UseIngredient(tables, 5, "MINERAL", 0);
  Ingredient(tables, 5).hand_add = true;
  UseRecipe(tables, 1, "STEERS", "W");
  AddWeightLine(tables, 1, 1, "2000");
  AddWeightLine(tables, 1, 2, "500");
  UseRecipe(tables, 2, "HEIFERS", "H");
  Recipe(tables, 2).head_count = 120;
  AddWeightLine(tables, 2, 1, "1540");
  AddWeightLine(tables, 2, 5, "50");
  Pen(tables, 1).feed_amount = "150";
  Pen(tables, 3).name = "NORTH";
  return tables;
}

void CreateRecipeDatabase(const std::filesystem::path& path, RecipeTables& tables) {
  CreateTemplate(path, DatabaseKind::kRecipe);
  SQLite::Database database = OpenDatabase(path, Access::kWrite);
  SQLite::Transaction transaction(database);
  WriteField(database, kTypeField, kUserRecipeDb);
  WriteField(database, kUnitField, tables.unit);
  for (const IngredientRecord& ingredient : tables.ingredients) {
    WriteIngredient(database, ingredient);
  }
  for (const RecipeRecord& recipe : tables.recipes) {
    WriteRecipe(database, recipe);
  }
  for (RecipeLineRecord& line : tables.lines) {
    WriteRecipeLine(database, line);
  }
  for (const PenRecord& pen : tables.pens) {
    WritePen(database, pen);
  }
  transaction.commit();
}

RecipeTables ReadTables(const std::filesystem::path& path) {
  SQLite::Database database = OpenDatabase(path, Access::kRead);
  return ReadRecipeTables(database);
}

std::string Section(const std::string& file, const std::string& header) {
  const std::string begin = header + "\r\n\r\n";
  const std::size_t start = file.find(begin);
  if (start == std::string::npos) {
    return "no " + header;
  }
  const std::size_t end = file.find("\r\n[", start + begin.size());
  return file.substr(start + begin.size(),
                     (end == std::string::npos ? file.size() - 2 : end) - start - begin.size());
}

}  // namespace vrx::testing
