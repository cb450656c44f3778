#pragma once

#include <optional>
#include <string>
#include <string_view>

#include <SQLiteCpp/Database.h>

#include "database/records.h"
#include "platform/calendar.h"

// What a record's form does when a field is left. The caller's transaction encloses each routine,
// and the caller keeps `Modified`. What throws has written nothing and left the record as it was,
// unless it is the storage that fails.
namespace vrx {

// An ingredient or pen that bears a name of its own and no description takes the name as
// description, which puts it in use. An ingredient's hand-add mark and dry matter go into the lines
// that hold it, as by the two routines below.
void CommitIngredientRecord(SQLite::Database& database, IngredientRecord& record,
                            std::optional<std::string_view> batch_type_on_show = std::nullopt);
void CommitPenRecord(SQLite::Database& database, PenRecord& record);

// The lines of a recipe are recomputed with it, so that their batch targets follow its inputs.
// Throws Error where they cannot be computed; but a recipe that could not be computed beforehand is
// not held to it: its lines stay, and the result says why. The result is empty otherwise.
std::string CommitRecipeRecord(SQLite::Database& database, RecipeRecord& record);

// Write a value into every line that holds the ingredient, in whatever recipe, and nothing else of
// the line but `DryMatter`, which follows `DryMatter%` as RecalcLineDryMatter works it out: by the
// batch type that is on show, or without one by the type of the line's own recipe. A recipe that is
// not there, or of an unknown type, leaves `DryMatter` alone. `Ration%` and `BatchTarget` wait for
// the next recomputation of their recipe.
//
// Throws Error, naming the recipe, for a weight outside 32 bits or a percentage that is no number.
void SetRecipesHandAdd(SQLite::Database& database, int ingredient_id, bool hand_add);
void SetRecipesDryMatterPct(SQLite::Database& database, int ingredient_id,
                            std::string_view dry_matter_percent,
                            std::optional<std::string_view> batch_type_on_show = std::nullopt);

}  // namespace vrx
