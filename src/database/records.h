#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include <SQLiteCpp/Database.h>

namespace vrx {

// Records of a recipe database; texts are UTF-8. The three fixed tables always have all their rows,
// with IDs from 1 to the count.
inline constexpr int kIngredientCount = 100;
inline constexpr int kRecipeCount = 100;
inline constexpr int kPenCount = 400;
inline constexpr int kMaxRecipeLines = 32;

struct IngredientRecord {
  int id = 0;
  std::string name = {};
  std::string description = {};  // empty: not in use
  int dry_matter_percent = 100;
  bool hand_add = false;
};

struct RecipeRecord {
  int id = 0;
  std::string name = {};
  std::string description = {};  // empty: not in use
  std::string batch_type = "!";  // "!", "W", "H", "%", "P"
  int head_count = 0;
  std::string ration_target = {};       // digits
  std::string adjust_batch_index = {};  // AdjBatTotIndex: 0 to 40 as text, 20 is unchanged
};

// One line of a recipe. The names of two fields are swapped, which the file format fixes: Target is
// the dry-matter weight and DryMatter the as-fed weight.
struct RecipeLineRecord {
  std::int64_t row = 0;  // rowid; 0 for a line not stored yet
  std::string recipe_id = {};
  std::string ingredient = {};  // ingredient ID as text
  std::string target = "0";
  std::string ration_percent = "0";
  std::string dry_matter_percent = "0";
  std::string dry_matter = "0";
  std::string batch_target = {};
  int sequence = 0;
  bool hand_add = false;
  std::string ingredient_percent = "0";
  bool operator==(const RecipeLineRecord&) const = default;
};

struct PenRecord {
  int id = 0;
  std::string name = {};
  std::string description = {};
  std::string feed_amount = "0";  // in use: not "0", or a description
};

// All functions below throw DatabaseError, with kNoRecordError if there is no row to read or write.
// Writers leave `Modified` to the caller (TouchDatabase).

// Whole tables in ID order.
std::vector<IngredientRecord> ReadIngredients(SQLite::Database& database);
std::vector<RecipeRecord> ReadRecipes(SQLite::Database& database);
std::vector<PenRecord> ReadPens(SQLite::Database& database);

IngredientRecord ReadIngredient(SQLite::Database& database, int id);
RecipeRecord ReadRecipe(SQLite::Database& database, int id);
PenRecord ReadPen(SQLite::Database& database, int id);

// Write every field of the record with that ID.
void WriteIngredient(SQLite::Database& database, const IngredientRecord& record);
void WriteRecipe(SQLite::Database& database, const RecipeRecord& record);
void WritePen(SQLite::Database& database, const PenRecord& record);

// The lines of a recipe by Sequence.
std::vector<RecipeLineRecord> ReadRecipeLines(SQLite::Database& database, int recipe_id);
// The lines of all recipes that use an ingredient, in stored order.
std::vector<RecipeLineRecord> ReadLinesWithIngredient(SQLite::Database& database,
                                                      int ingredient_id);
// The lines of every recipe in one query, by recipe number and then by Sequence. A recipe ID that
// is not a whole number sorts as 0.
std::vector<RecipeLineRecord> ReadAllRecipeLines(SQLite::Database& database);

// Writes all fields of a line. A line with row 0 is inserted and gets its rowid.
void WriteRecipeLine(SQLite::Database& database, RecipeLineRecord& line);
// Writes many stored lines with one prepared statement, inside the caller's transaction.
void WriteStoredLines(SQLite::Database& database, std::span<const RecipeLineRecord> lines);
void DeleteRecipeLine(SQLite::Database& database, std::int64_t row);

}  // namespace vrx
