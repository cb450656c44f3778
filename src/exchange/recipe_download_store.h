#pragma once

#include <filesystem>

#include "database/connection.h"
#include "exchange/recipe_text.h"
#include "platform/calendar.h"

namespace vrx {

// Builds the download of a recipe database and stores what sending it changes, in one SQLite
// transaction on a connection of its own: the database is as before, or the text and the database
// go together. `Modified` becomes today's date when a head count was emptied.
//
// Throws RecipeTextError, and DatabaseError, also for a database that may not be written.
RecipeDownload TakeRecipeDownload(const std::filesystem::path& recipe_db_path, bool batch_target,
                                  const Calendar& calendar, const TellProgress& tell = {},
                                  LockWait wait = kBusyTimeout);

}  // namespace vrx
