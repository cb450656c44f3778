#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <SQLiteCpp/Database.h>

#include "database/records.h"
#include "platform/calendar.h"

namespace vrx {

// The commits run when a field of a record's form loses the focus. They run inside the caller's
// transaction, and the caller sets `Modified`. If they throw anything but DatabaseError, nothing is
// written and the record is unchanged.

// An ingredient or pen with a name other than the default and without description gets its name as
// description, which puts it in use. Hand-add mark and dry matter of an ingredient are copied to
// all lines that use it, as by the two functions below.
void CommitIngredientRecord(SQLite::Database& database, IngredientRecord& record,
                            std::optional<std::string_view> current_batch_type = std::nullopt);
void CommitPenRecord(SQLite::Database& database, PenRecord& record);

// Also recomputes the lines of the recipe, because the batch targets depend on its inputs. Throws
// Error if they cannot be computed. But if they could not be computed before either, stores the
// recipe without its lines and returns the reason; otherwise returns an empty text.
std::string CommitRecipeRecord(SQLite::Database& database, RecipeRecord& record);

// Write a value to every line that uses the ingredient, in all recipes. A new `DryMatter%` also
// recomputes `DryMatter` with RecalcLineDryMatter, by the given batch type or else by the type of
// the line's recipe; an unknown recipe or type leaves it unchanged. `Ration%` and `BatchTarget` are
// not updated until their recipe is recomputed.
//
// Throw Error, which names the recipe, for a weight outside 32 bits or a percentage that is not a
// number.
void SetRecipesHandAdd(SQLite::Database& database, int ingredient_id, bool hand_add);
void SetRecipesDryMatterPct(SQLite::Database& database, int ingredient_id,
                            std::string_view dry_matter_percent,
                            std::optional<std::string_view> current_batch_type = std::nullopt);

// Run a commit in one transaction that also sets `Modified`. Return whether the file was changed.
// Throw DatabaseError and the exceptions of the commits; record and file are then unchanged.
bool StoreRecord(SQLite::Database& database, IngredientRecord& record,
                 std::optional<std::string_view> current_batch_type, const Calendar& calendar);
bool StoreRecord(SQLite::Database& database, PenRecord& record, const Calendar& calendar);

// What was typed into a record's form; nothing for an unchanged control. Texts are UTF-8.
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

// Apply an edit to the record as its form would, without committing it. Return notes for the
// operator. If they throw FieldRefusal, the record is unchanged.
//
// The description is typed first and, with `auto_abbreviate`, determines the name; then the name is
// typed.
//
// Which inputs of a recipe are enabled depends on its batch type, after the edit, and on the sums
// of its stored lines. Sums that cannot be computed (ration.h) throw if an input was typed.
std::vector<std::string> ApplyEdit(const IngredientEdit& edit, bool auto_abbreviate,
                                   IngredientRecord& record);
std::vector<std::string> ApplyEdit(const RecipeEdit& edit,
                                   const std::vector<RecipeLineRecord>& lines, bool auto_abbreviate,
                                   RecipeRecord& record);
std::vector<std::string> ApplyEdit(const PenEdit& edit, bool auto_abbreviate, PenRecord& record);

}  // namespace vrx
