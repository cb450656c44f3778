#include "feed/record_commit.h"

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "base/error.h"
#include "feed/ration.h"
#include "feed/ration_totals.h"
#include "feed/record_kind.h"

namespace vrx {
namespace {

template <typename Record>
Record WithDefaultDescription(Record record) {
  const RecordKind kind = KindOf(record);
  if (TraitsOf(kind).name_becomes_description && record.description.empty() &&
      record.name != DefaultName(kind, record.id)) {
    record.description = record.name;
  }
  return record;
}

bool IsStored(SQLite::Database& database, const IngredientRecord& record) {
  const IngredientRecord stored = ReadIngredient(database, record.id);
  return stored.name == record.name && stored.description == record.description &&
         stored.dry_matter_percent == record.dry_matter_percent &&
         stored.hand_add == record.hand_add;
}

bool IsStored(SQLite::Database& database, const PenRecord& record) {
  const PenRecord stored = ReadPen(database, record.id);
  return stored.name == record.name && stored.description == record.description &&
         stored.feed_amount == record.feed_amount;
}

void WriteChangedLines(SQLite::Database& database, const std::vector<RecipeLineRecord>& stored,
                       const std::vector<RecipeLineRecord>& lines) {
  std::vector<RecipeLineRecord> changed;
  for (std::size_t line = 0; line < lines.size(); ++line) {
    if (lines[line] != stored[line]) {
      changed.push_back(lines[line]);
    }
  }
  WriteStoredLines(database, changed);
}

void ChangeLines(SQLite::Database& database, int ingredient_id,
                 const std::function<void(RecipeLineRecord&)>& change) {
  const std::vector<RecipeLineRecord> stored = ReadLinesWithIngredient(database, ingredient_id);
  std::vector<RecipeLineRecord> lines = stored;
  for (RecipeLineRecord& line : lines) {
    change(line);
  }
  WriteChangedLines(database, stored, lines);
}

// By the text that a line holds as its RecipeID.
std::map<std::string, std::string> BatchTypes(SQLite::Database& database) {
  std::map<std::string, std::string> types;
  for (RecipeRecord& recipe : ReadRecipes(database)) {
    types.emplace(std::to_string(recipe.id), std::move(recipe.batch_type));
  }
  return types;
}

void RecalcNamingTheRecipe(std::string_view batch_type, RecipeLineRecord& line) {
  try {
    RecalcLineDryMatter(batch_type, line);
  } catch (const Error& error) {
    throw Error("Recipe " + line.recipe_id + ": " + error.what());
  }
}

// Why the lines cannot be computed, which leaves them as they are; empty where they are computed.
std::string RecalcFailure(Ration& ration) {
  try {
    RecalcRecipe(ration);
  } catch (const Error& error) {
    return error.what();
  }
  return {};
}

}  // namespace

void CommitIngredientRecord(SQLite::Database& database, IngredientRecord& record,
                            std::optional<std::string_view> batch_type_on_show) {
  IngredientRecord committed = WithDefaultDescription(record);
  // First what may fail by what the lines hold.
  SetRecipesDryMatterPct(database, committed.id, std::to_string(committed.dry_matter_percent),
                         batch_type_on_show);
  SetRecipesHandAdd(database, committed.id, committed.hand_add);
  if (!IsStored(database, committed)) {
    WriteIngredient(database, committed);
  }
  record = std::move(committed);
}

std::string CommitRecipeRecord(SQLite::Database& database, RecipeRecord& record) {
  RecipeRecord committed = WithDefaultDescription(record);
  const std::vector<RecipeLineRecord> stored = ReadRecipeLines(database, record.id);
  Ration ration{.recipe = committed, .lines = stored};
  std::string failure = RecalcFailure(ration);
  if (!failure.empty()) {
    Ration before{.recipe = ReadRecipe(database, record.id), .lines = stored};
    if (RecalcFailure(before).empty()) {
      throw Error("Recipe " + std::to_string(record.id) + ": " + failure);
    }
  }
  WriteRecipe(database, committed);
  WriteChangedLines(database, stored, ration.lines);
  record = std::move(committed);
  return failure;
}

void CommitPenRecord(SQLite::Database& database, PenRecord& record) {
  PenRecord committed = WithDefaultDescription(record);
  if (!IsStored(database, committed)) {
    WritePen(database, committed);
  }
  record = std::move(committed);
}

void SetRecipesHandAdd(SQLite::Database& database, int ingredient_id, bool hand_add) {
  ChangeLines(database, ingredient_id, [&](RecipeLineRecord& line) { line.hand_add = hand_add; });
}

void SetRecipesDryMatterPct(SQLite::Database& database, int ingredient_id,
                            std::string_view dry_matter_percent,
                            std::optional<std::string_view> batch_type_on_show) {
  const auto types =
      batch_type_on_show ? std::map<std::string, std::string>() : BatchTypes(database);
  const auto type_of = [&](const RecipeLineRecord& line) -> std::string_view {
    if (batch_type_on_show) {
      return *batch_type_on_show;
    }
    const auto own = types.find(line.recipe_id);
    return own == types.end() ? std::string_view() : own->second;
  };
  ChangeLines(database, ingredient_id, [&](RecipeLineRecord& line) {
    line.dry_matter_percent = dry_matter_percent;
    RecalcNamingTheRecipe(type_of(line), line);
  });
}

}  // namespace vrx
