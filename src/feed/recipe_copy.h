#pragma once

#include <vector>

#include <SQLiteCpp/Database.h>

#include "base/error.h"
#include "database/records.h"
#include "platform/calendar.h"

namespace vrx {

// Why a recipe is not copied. what() is shown to the operator.
class CopyRefusal : public Error {
 public:
  using Error::Error;
};

struct RecipeCopy {
  RecipeRecord source;
  RecipeRecord copy;  // as stored
  int line_count = 0;
};

// The recipes that have neither description nor lines, by their numbers.
std::vector<RecipeRecord> FreeRecipes(SQLite::Database& database);

// Copies a recipe with its lines to a free record and sets `Modified`, in one transaction. The
// fields of the lines are copied as they are stored, nothing is recomputed. Name and description
// stay the same, except a default name: the copy of "REC004" to recipe 9 is "REC009".
//
// Throws CopyRefusal or DatabaseError and stores nothing.
RecipeCopy CopyRecipe(SQLite::Database& database, int from, int to, const Calendar& calendar);

}  // namespace vrx
