#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <SQLiteCpp/Database.h>

#include "feed/recipe_editor.h"
#include "feed/record_fields.h"
#include "platform/progress_display.h"
#include "presenter/services.h"

namespace vrx {

// The operator's actions on records, with their questions and messages: reset a record, search
// where an ingredient is used, update all recipes.

enum class ResetOutcome {
  kReset,
  kInUse,     // a recipe uses the ingredient, which was reported
  kNotReset,  // the operator refused, or a failure was reported
};

// Resets a record to its defaults, after a question, and sets `Modified`, in one transaction that
// begins after the answer. Refuses an ingredient that a recipe in use contains. A recipe loses its
// lines and its type but keeps HeadCount, RationTarget and AdjBatTotIndex. Any result except kReset
// leaves the file unchanged.
ResetOutcome AskAndReset(SQLite::Database& database, RecordKind kind, int id, Services& services);

// Recomputes every recipe that has a description and stores the changed lines in one transaction;
// sets `Modified` if there are any. The bar runs from 1 to 100 with the recipes, and its message is
// cleared at the end.
//
// A recipe whose arithmetic fails keeps its stored lines; the others are stored anyway, and the
// failures are reported at the end. A database failure is reported and nothing is stored. Returns
// whether all recipes are up to date.
bool UpdateRecipes(SQLite::Database& database, ProgressDisplay& progress, Services& services);

// The items of the list after the operator's search. Item 0 is the status, "Not Used" or "Done!",
// followed by the recipes, "  3: STEERS". Empty after reporting a failure.
std::vector<std::string> SearchWhereUsed(SQLite::Database& database, int ingredient_id,
                                         Services& services);

// The messages and the question of the recipe's lines. A refused command beeps.
class RecipeMessages final : public RecipeDialogs {
 public:
  // Both outlive it.
  RecipeMessages(Operator& op, const PrivateINI& settings) : op_(op), settings_(settings) {}

  void ReportRefusedCommand(std::string_view title, std::string_view text) override;
  void ReportRefusedName(std::string_view text) override;
  bool ConfirmDelete(const std::string& ingredient) override;

 private:
  Operator& op_;
  const PrivateINI& settings_;
};

}  // namespace vrx
