#include "feed/recipe_copy.h"

#include <set>
#include <string>
#include <utility>

#include <SQLiteCpp/Statement.h>
#include <SQLiteCpp/Transaction.h>

#include "base/translation.h"
#include "database/connection.h"
#include "database/identity.h"
#include "feed/record_fields.h"

namespace vrx {
namespace {

// Copied by SQLite: a record does not hold every value that a file of another origin may have.
constexpr const char* kCopyLines =
    "INSERT INTO RecipeRation (RecipeID, Ingredient, Target, [Ration%], [DryMatter%], DryMatter, "
    "BatchTarget, Sequence, HandAdd, [Ingredient%]) "
    "SELECT ?1, Ingredient, Target, [Ration%], [DryMatter%], DryMatter, "
    "BatchTarget, Sequence, HandAdd, [Ingredient%] "
    "FROM RecipeRation WHERE RecipeID = ?2 ORDER BY rowid";

std::string NumberAndName(const RecipeRecord& recipe) {
  return Tr("Recipe %1 (%2)", {std::to_string(recipe.id), recipe.name});
}

void RequireRecipeNumber(int id) {
  if (id < 1 || id > kRecipeCount) {
    throw CopyRefusal("There is no recipe " + std::to_string(id) + ", they are numbered 1 to " +
                      std::to_string(kRecipeCount) + ".");
  }
}

bool HasLines(SQLite::Database& database, const RecipeRecord& recipe) {
  return !ReadRecipeLines(database, recipe.id).empty();
}

void RequireContents(SQLite::Database& database, const RecipeRecord& source) {
  if (!IsActive(source) && !HasLines(database, source)) {
    throw CopyRefusal(
        Tr("%1 cannot be copied: it has neither description nor lines.", {NumberAndName(source)}));
  }
}

void RequireFree(SQLite::Database& database, const RecipeRecord& recipe) {
  if (IsActive(recipe)) {
    throw CopyRefusal(Tr("%1 is not free: it has a description.", {NumberAndName(recipe)}));
  }
  if (HasLines(database, recipe)) {
    throw CopyRefusal(Tr("%1 is not free: it has lines.", {NumberAndName(recipe)}));
  }
}

RecipeRecord WithNumber(RecipeRecord recipe, int id) {
  const std::string default_name = DefaultName(RecordKind::kRecipe, recipe.id);
  for (std::string* const text : {&recipe.name, &recipe.description}) {
    if (*text == default_name) {
      *text = DefaultName(RecordKind::kRecipe, id);
    }
  }
  recipe.id = id;
  return recipe;
}

int CopyLines(SQLite::Database& database, int from, int to) {
  SQLite::Statement copy(database, kCopyLines);
  copy.bind(1, std::to_string(to));
  copy.bind(2, std::to_string(from));
  return copy.exec();
}

}  // namespace

std::vector<RecipeRecord> FreeRecipes(SQLite::Database& database) {
  std::set<std::string> with_lines;
  for (RecipeLineRecord& line : ReadAllRecipeLines(database)) {
    with_lines.insert(std::move(line.recipe_id));
  }
  std::vector<RecipeRecord> free = ReadRecipes(database);
  std::erase_if(free, [&](const RecipeRecord& recipe) {
    return IsActive(recipe) || with_lines.contains(std::to_string(recipe.id));
  });
  return free;
}

RecipeCopy CopyRecipe(SQLite::Database& database, int from, int to, const Calendar& calendar) {
  RequireRecipeNumber(from);
  RequireRecipeNumber(to);
  if (from == to) {
    throw CopyRefusal("Recipe " + std::to_string(from) + " cannot be copied to itself.");
  }
  return WithDatabaseErrors(database, [&] {
    SQLite::Transaction transaction(database, SQLite::TransactionBehavior::IMMEDIATE);
    const RecipeRecord source = ReadRecipe(database, from);
    RequireContents(database, source);
    RequireFree(database, ReadRecipe(database, to));
    RecipeCopy copied{.source = source, .copy = WithNumber(source, to)};
    WriteRecipe(database, copied.copy);
    copied.line_count = CopyLines(database, from, to);
    TouchDatabase(database, calendar);
    transaction.commit();
    return copied;
  });
}

}  // namespace vrx
