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

// The tables of a recipe database that are sent to the indicator.
struct RecipeTables {
  std::string unit = {};  // "LB" or "KG"
  std::vector<IngredientRecord> ingredients = {};
  std::vector<RecipeRecord> recipes = {};
  std::vector<RecipeLineRecord> lines = {};  // of all recipes, each in the order of the grid
  std::vector<PenRecord> pens = {};
};

// Runs one query for each table; the caller's transaction makes them consistent.
[[nodiscard]] RecipeTables ReadRecipeTables(SQLite::Database& database);

// A record cannot be written to the text. what() gives its number and name.
class RecipeTextError : public Error {
 public:
  using Error::Error;
};

struct RecipeDownload {
  std::string text;  // the {DATA_IN} file: Windows-1252, CR LF

  // Changes that must be stored when the text is sent: lines whose computed fields differ from the
  // stored ones, and recipes whose head count is reset, already with 0.
  std::vector<RecipeLineRecord> recomputed_lines;
  std::vector<RecipeRecord> emptied_head_counts;

  int highest_in_use = 0;  // highest ID of a recipe with a description; 0 if there is none
};

using ReportProgress = std::function<void(std::string_view line)>;

// Writes the text after recomputing its recipes. It has the ingredients with a description, the
// recipes with a description and a batch type, and the pens with a feed amount or a name other than
// the default. `batch_target` is the setting BatchTargetWtIsRecTarget. A recipe without lines ends
// without CR LF, so the next recipe follows in the same line.
//
// Throws RecipeTextError for a recipe that cannot be computed, and for a character that is not in
// Windows-1252: names must not change, because recipes refer to ingredients by name.
RecipeDownload BuildRecipeDownload(const RecipeTables& tables, bool batch_target,
                                   const ReportProgress& report = {});

// Builds the download of a recipe database and stores its changes in one transaction on a separate
// connection, so text and database are consistent. Sets `Modified` if a head count was reset.
//
// Throws RecipeTextError, and DatabaseError, also if the database is write-protected; the database
// is then unchanged.
RecipeDownload TakeRecipeDownload(const std::filesystem::path& recipe_db_path, bool batch_target,
                                  const Calendar& calendar, const ReportProgress& report = {},
                                  LockWait wait = kBusyTimeout);

// What the operator should think of before these recipes are sent, a line for each kind: recipes
// without ration target, percentages that do not total 100, recipes without ingredients,
// ingredients without dry matter, pens that need a larger table of the indicator. A long list is
// cut with a count.
[[nodiscard]] std::vector<std::string> FindOddities(const RecipeTables& tables);
// The same for a database. Throws DatabaseError.
[[nodiscard]] std::vector<std::string> FindOddities(const std::filesystem::path& recipe_db_path,
                                                    LockWait wait = kBusyTimeout);
// The same as far as the text of a backup shows it: recipes without target or ingredients, and
// pens.
[[nodiscard]] std::vector<std::string> FindOdditiesOfBackup(std::string_view text);

// Reads a recipe backup. Throws FileError, also for a file longer than 16 MiB, far more than any
// backup.
std::string ReadRecipeBackup(const std::filesystem::path& path);

// Returns false after a message if the text does not start like a recipe backup; it cannot be
// downloaded then.
[[nodiscard]] bool HasBackupHeader(std::string_view text, Operator& op, const PrivateINI& settings);

}  // namespace vrx
