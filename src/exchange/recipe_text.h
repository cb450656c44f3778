#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <SQLiteCpp/Database.h>

#include "base/error.h"
#include "database/connection.h"
#include "database/records.h"
#include "platform/calendar.h"
#include "platform/operator.h"
#include "settings/settings.h"

namespace vrx {

// The tables of a recipe database that the indicator is told of.
struct RecipeTables {
  std::string unit = {};  // "LB" or "KG"
  std::vector<IngredientRecord> ingredients = {};
  std::vector<RecipeRecord> recipes = {};
  std::vector<RecipeLineRecord> lines = {};  // of all recipes, those of each in its grid's order
  std::vector<PenRecord> pens = {};
};

// One query for each table; the caller's transaction makes them fit each other.
RecipeTables ReadRecipeTables(SQLite::Database& database);

// A record that the text cannot be made of. what() names it by number and name.
class RecipeTextError : public Error {
 public:
  using Error::Error;
};

struct RecipeDownload {
  std::string text;  // the {DATA_IN} file: one byte per character, lines by CR LF

  // What sending it has to store: lines whose computed fields are stored otherwise, and recipes
  // whose head count goes to 0, with that 0 in them.
  std::vector<RecipeLineRecord> recomputed_lines;
  std::vector<RecipeRecord> emptied_head_counts;

  int highest_in_use = 0;  // ID of the last recipe with a description; 0 where there is none
};

using ReportProgress = std::function<void(std::string_view line)>;

// Recomputes the recipes that are written and writes the text: ingredients with a description,
// recipes with a description and a batch type, pens with a feed amount or a name of their own.
// `batch_target` is the setting BatchTargetWtIsRecTarget. A recipe without lines ends without CR
// LF, and the next one runs on in its line.
//
// Throws RecipeTextError for a recipe that does not compute, and for a text with a character that
// Windows-1252 lacks: a name must reach the indicator as it is, for a recipe finds its ingredients
// by their names.
RecipeDownload BuildRecipeDownload(const RecipeTables& tables, bool batch_target,
                                   const ReportProgress& tell = {});

// Builds the download of a recipe database and stores what sending it changes, in one SQLite
// transaction on a connection of its own: the database is as before, or the text and the database
// go together. `Modified` becomes today's date when a head count was emptied.
//
// Throws RecipeTextError, and DatabaseError, also for a database that may not be written.
RecipeDownload TakeRecipeDownload(const std::filesystem::path& recipe_db_path, bool batch_target,
                                  const Calendar& calendar, const ReportProgress& tell = {},
                                  LockWait wait = kBusyTimeout);

// The bytes of a recipe backup. Throws FileError, also for a file far longer than any backup.
std::string ReadRecipeBackup(const std::filesystem::path& path);

// False, the operator told, for a text that does not begin as a recipe backup and so cannot be
// downloaded.
bool HasBackupHeader(std::string_view text, Operator& op, const PrivateINI& settings);

}  // namespace vrx
