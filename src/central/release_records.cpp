#include "central/release_records.h"

#include <string_view>

#include <SQLiteCpp/Transaction.h>
#include <nlohmann/json.hpp>

#include "base/translation.h"
#include "central/row_encoder.h"
#include "central/server.h"
#include "central/server_source.h"
#include "database/connection.h"

namespace vrx {
namespace {

using Json = nlohmann::json;

constexpr std::string_view kAddIngredients = R"(
INSERT INTO vrx.ingredient (release, id, name, description, dry_matter, hand_add)
SELECT $1::integer, r.* FROM json_to_recordset($2::json)
  AS r (id bigint, name text, description text, dry_matter bigint, hand_add bigint))";
constexpr std::string_view kAddRecipes = R"(
INSERT INTO vrx.recipe (release, id, name, description, batch_type, head_count, ration_target,
  adj_bat_tot_index)
SELECT $1::integer, r.* FROM json_to_recordset($2::json)
  AS r (id bigint, name text, description text, batch_type text, head_count bigint,
        ration_target text, adj_bat_tot_index text))";
constexpr std::string_view kAddLines = R"(
INSERT INTO vrx.recipe_line (release, position, recipe_id, ingredient, target, ration_percent,
  dry_matter_percent, dry_matter, batch_target, sequence, hand_add, ingredient_percent)
SELECT $1::integer, r.* FROM json_to_recordset($2::json)
  AS r (position bigint, recipe_id text, ingredient text, target text, ration_percent text,
        dry_matter_percent text, dry_matter text, batch_target text, sequence bigint,
        hand_add bigint, ingredient_percent text))";
constexpr std::string_view kAddPens = R"(
INSERT INTO vrx.pen (release, id, name, description, feed_amount)
SELECT $1::integer, r.* FROM json_to_recordset($2::json)
  AS r (id bigint, name text, description text, feed_amount text))";

Json ToJson(const IngredientRecord& record) {
  return {{"id", record.id},
          {"name", record.name},
          {"description", record.description},
          {"dry_matter", record.dry_matter_percent},
          {"hand_add", record.hand_add ? 1 : 0}};
}

Json ToJson(const RecipeRecord& record) {
  return {{"id", record.id},
          {"name", record.name},
          {"description", record.description},
          {"batch_type", record.batch_type},
          {"head_count", record.head_count},
          {"ration_target", record.ration_target},
          {"adj_bat_tot_index", record.adjust_batch_index}};
}

Json ToJson(const RecipeLineRecord& line) {
  return {{"position", line.row},
          {"recipe_id", line.recipe_id},
          {"ingredient", line.ingredient},
          {"target", line.target},
          {"ration_percent", line.ration_percent},
          {"dry_matter_percent", line.dry_matter_percent},
          {"dry_matter", line.dry_matter},
          {"batch_target", line.batch_target},
          {"sequence", line.sequence},
          {"hand_add", line.hand_add ? 1 : 0},
          {"ingredient_percent", line.ingredient_percent}};
}

Json ToJson(const PenRecord& record) {
  return {{"id", record.id},
          {"name", record.name},
          {"description", record.description},
          {"feed_amount", record.feed_amount}};
}

template <typename Record>
void Add(CentralConnection& server, std::string_view insert, int release,
         const std::vector<Record>& records) {
  Json rows = Json::array();
  for (const Record& record : records) {
    rows.push_back(ToJson(record));
    for (const Json& field : rows.back()) {
      if (field.is_string() && !IsCentralText(field.get_ref<const std::string&>())) {
        throw CentralRefused(Tr("a text has a character that the central database cannot store"));
      }
    }
  }
  server.Query(std::string(insert), {std::to_string(release), rows.dump()});
}

int WholeOf(const CentralRows& rows, int row, int column) {
  return static_cast<int>(rows.Number(row, column));
}

void ReadLines(CentralConnection& server, const std::string& release, RecipeTables& records) {
  const CentralRows rows = server.Query(
      "SELECT recipe_id, ingredient, target, ration_percent, dry_matter_percent, dry_matter, "
      "batch_target, sequence, hand_add, ingredient_percent FROM vrx.recipe_line WHERE release = "
      "$1 ORDER BY position",
      {release});
  for (int row = 0; row < rows.Count(); ++row) {
    records.lines.push_back({.recipe_id = rows.Text(row, 0),
                             .ingredient = rows.Text(row, 1),
                             .target = rows.Text(row, 2),
                             .ration_percent = rows.Text(row, 3),
                             .dry_matter_percent = rows.Text(row, 4),
                             .dry_matter = rows.Text(row, 5),
                             .batch_target = rows.Text(row, 6),
                             .sequence = WholeOf(rows, row, 7),
                             .hand_add = rows.Number(row, 8) != 0,
                             .ingredient_percent = rows.Text(row, 9)});
  }
}

}  // namespace

RecipeTables ReadSnapshot(SQLite::Database& database) {
  return WithDatabaseErrors(database, [&] {
    const SQLite::Transaction snapshot(database);
    return ReadRecipeTables(database);
  });
}

void WriteReleaseRecords(CentralConnection& server, int release, const RecipeTables& records) {
  Add(server, kAddIngredients, release, records.ingredients);
  Add(server, kAddRecipes, release, records.recipes);
  Add(server, kAddLines, release, records.lines);
  Add(server, kAddPens, release, records.pens);
}

RecipeTables ReadReleaseRecords(CentralConnection& server, int release, const std::string& unit) {
  const std::string number = std::to_string(release);
  RecipeTables records{.unit = unit};
  const CentralRows ingredients = server.Query(
      "SELECT id, name, description, dry_matter, hand_add FROM vrx.ingredient WHERE release = $1 "
      "ORDER BY id",
      {number});
  for (int row = 0; row < ingredients.Count(); ++row) {
    records.ingredients.push_back({.id = WholeOf(ingredients, row, 0),
                                   .name = ingredients.Text(row, 1),
                                   .description = ingredients.Text(row, 2),
                                   .dry_matter_percent = WholeOf(ingredients, row, 3),
                                   .hand_add = ingredients.Number(row, 4) != 0});
  }
  const CentralRows recipes = server.Query(
      "SELECT id, name, description, batch_type, head_count, ration_target, adj_bat_tot_index FROM "
      "vrx.recipe WHERE release = $1 ORDER BY id",
      {number});
  for (int row = 0; row < recipes.Count(); ++row) {
    records.recipes.push_back({.id = WholeOf(recipes, row, 0),
                               .name = recipes.Text(row, 1),
                               .description = recipes.Text(row, 2),
                               .batch_type = recipes.Text(row, 3),
                               .head_count = WholeOf(recipes, row, 4),
                               .ration_target = recipes.Text(row, 5),
                               .adjust_batch_index = recipes.Text(row, 6)});
  }
  ReadLines(server, number, records);
  const CentralRows pens = server.Query(
      "SELECT id, name, description, feed_amount FROM vrx.pen WHERE release = $1 ORDER BY id",
      {number});
  for (int row = 0; row < pens.Count(); ++row) {
    records.pens.push_back({.id = WholeOf(pens, row, 0),
                            .name = pens.Text(row, 1),
                            .description = pens.Text(row, 2),
                            .feed_amount = pens.Text(row, 3)});
  }
  return records;
}

}  // namespace vrx
