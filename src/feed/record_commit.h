#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

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
                            std::optional<std::string_view> current_batch_type = std::nullopt);
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
                            std::optional<std::string_view> current_batch_type = std::nullopt);

// Store what stands in a record's form: the commits of record_commit.h, each as one transaction
// that sets `Modified`. Return whether the file had to change; where it had not, nothing is
// written.
//
// Throw DatabaseError and what the commits throw, with the record and the file as they were.
bool StoreRecord(SQLite::Database& database, IngredientRecord& record,
                 std::optional<std::string_view> current_batch_type, const Calendar& calendar);
bool StoreRecord(SQLite::Database& database, PenRecord& record, const Calendar& calendar);

// What was typed into a record's form; nothing for a control that was left alone. Texts UTF-8.
struct IngredientEdit {
  std::optional<std::string> name = std::nullopt;
  std::optional<std::string> description = std::nullopt;
  std::optional<std::string> dry_matter_percent = std::nullopt;
  std::optional<bool> hand_add = std::nullopt;
};

struct RecipeEdit {
  std::optional<std::string> name = std::nullopt;
  std::optional<std::string> description = std::nullopt;
  std::optional<std::string> batch_type = std::nullopt;  // "W", "H", "%", "P"
  std::optional<std::string> head_count = std::nullopt;
  std::optional<std::string> ration_target = std::nullopt;
  std::optional<int> adjust_batch_index = std::nullopt;  // 0 to 40
};

struct PenEdit {
  std::optional<std::string> name = std::nullopt;
  std::optional<std::string> description = std::nullopt;
  std::optional<std::string> feed_amount = std::nullopt;
};

// Bring an edit into the record as its form would, up to the commit (record_commit.h): the record
// is changed as a whole, or not at all when this throws FieldRefusal. Return what the operator is
// told.
//
// The description comes first and, with `auto_abbreviate`, gives the name; a name that was typed as
// well is typed after it.
//
// A recipe's inputs are open as its batch type, that of the same edit included, and the sums of its
// stored lines leave them. Sums that fail (ration.h) throw when an input was typed.
std::vector<std::string> ApplyEdit(const IngredientEdit& edit, bool auto_abbreviate,
                                   IngredientRecord& record);
std::vector<std::string> ApplyEdit(const RecipeEdit& edit,
                                   const std::vector<RecipeLineRecord>& lines, bool auto_abbreviate,
                                   RecipeRecord& record);
std::vector<std::string> ApplyEdit(const PenEdit& edit, bool auto_abbreviate, PenRecord& record);

}  // namespace vrx
