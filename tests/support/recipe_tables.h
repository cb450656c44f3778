#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "database/records.h"
#include "exchange/recipe_text.h"

namespace vrx::testing {

// As a new database holds them: default names, nothing in use, no lines; unit LB.
RecipeTables NewTables();

IngredientRecord& Ingredient(RecipeTables& tables, int id);
RecipeRecord& Recipe(RecipeTables& tables, int id);
PenRecord& Pen(RecipeTables& tables, int id);

// Puts a record in use.
void UseIngredient(RecipeTables& tables, int id, std::string_view name,
                   int dry_matter_percent = 100);
void UseRecipe(RecipeTables& tables, int id, std::string_view name, std::string_view batch_type);

// Adds a line as the editor would enter it, its computed fields not computed.
void AddWeightLine(RecipeTables& tables, int recipe, int ingredient, std::string_view target);
void AddPercentLine(RecipeTables& tables, int recipe, int ingredient, std::string_view percent);

// Three ingredients, two recipes and two pens, and the file that they give.
RecipeTables SmallYard();
extern const std::string kSmallYardFile;

// A user's recipe database that holds the tables. Lines get their storage identity.
void CreateRecipeDatabase(const std::filesystem::path& path, RecipeTables& tables);

// The contents of the database, with its unit.
RecipeTables ReadTables(const std::filesystem::path& path);

// The lines between two section headers of a file, or after the last header.
std::string Section(const std::string& file, const std::string& header);

}  // namespace vrx::testing
