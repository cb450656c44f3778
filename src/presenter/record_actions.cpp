#include "presenter/record_actions.h"

#include <functional>
#include <string_view>

#include "base/text.h"
#include "base/translation.h"
#include "database/connection.h"
#include "database/records.h"
#include "feed/recipe_storage.h"
#include "feed/record_reset.h"
#include "feed/where_used.h"
#include "presenter/operation.h"
#include "presenter/report_failure.h"
#include "settings/settings.h"

namespace vrx {
namespace {

constexpr std::string_view kUpdateTitle = "Update Recipes";
constexpr std::string_view kScanning = "Scanning database...";
constexpr std::string_view kSearchTitle = "Where Used (in Recipes)";

std::string StoredName(SQLite::Database& database, RecordKind kind, int id) {
  switch (kind) {
    case RecordKind::kIngredient:
      return ReadIngredient(database, id).name;
    case RecordKind::kRecipe:
      return ReadRecipe(database, id).name;
    case RecordKind::kPen:
      break;
  }
  return ReadPen(database, id).name;
}

Answer Ask(Services& services, const RecordKindTraits& traits, const std::string& record) {
  return services.op.ShowMessage(
      {.icon = Icon::kQuestion,
       .buttons = Buttons::kYesNo,
       .title = std::string(traits.reset_title),
       .text = "Reset " + record + std::string(traits.reset_question_end)});
}

void ReportUsed(Services& services, const RecordKindTraits& traits, const std::string& record) {
  services.op.ShowMessage(
      {.icon = Icon::kWarning,
       .buttons = Buttons::kOkCancel,
       .title = std::string(traits.reset_title),
       .text = "Sorry, cannot reset " + record + std::string(traits.reset_refusal_end)});
}

void ReportFailures(Operator& op, const std::string& failures) {
  if (!failures.empty()) {
    op.ShowMessage(
        {.icon = Icon::kWarning,
         .title = std::string(kUpdateTitle),
         .text = Tr("These recipes could not be computed and stay as they were:") + failures});
  }
}

bool RunOnDatabase(const SQLite::Database& database, Services& services, std::string_view title,
                   const std::function<bool()>& action) {
  return RunReported(services.op, {.title = title, .text = FailureText::kDatabaseWords},
                     [&] { return WithDatabaseErrors(database, action); });
}

}  // namespace

ResetOutcome AskAndReset(SQLite::Database& database, RecordKind kind, int id, Services& services) {
  const RecordKindTraits& traits = TraitsOf(kind);
  ResetOutcome outcome = ResetOutcome::kNotReset;
  RunOnDatabase(database, services, traits.reset_title, [&] {
    const std::string record = std::string(traits.noun) + " #" + std::to_string(id) + " (" +
                               StoredName(database, kind, id) + ")";
    if (Ask(services, traits, record) != Answer::kYes) {
      return false;
    }
    const bool reset = [&] {
      const BusyCursor busy(services.op);
      return ResetRecord(database, kind, id, services.calendar);
    }();
    outcome = reset ? ResetOutcome::kReset : ResetOutcome::kInUse;
    if (!reset) {
      ReportUsed(services, traits, record);
    } else if (traits.reset_beeps) {
      BeepIfEnabled(services.op, services.settings);
    }
    return reset;
  });
  return outcome;
}

bool UpdateRecipes(SQLite::Database& database, ProgressDisplay& progress, Services& services) {
  progress.SetProgressMessage(kScanning);
  progress.SetProgressRange(kRecipeCount);
  std::string failures;
  const bool stored = RunOnDatabase(database, services, kUpdateTitle, [&] {
    const BusyCursor busy(services.op);
    failures = RecomputeAllRecipes(database, progress, services.calendar);
    return true;
  });
  progress.SetProgressMessage({});
  if (!stored) {
    return false;
  }
  ReportFailures(services.op, failures);
  BeepIfEnabled(services.op, services.settings);
  return failures.empty();
}

std::vector<std::string> SearchWhereUsed(SQLite::Database& database, int ingredient_id,
                                         Services& services) {
  std::vector<std::string> items;
  RunOnDatabase(database, services, kSearchTitle, [&] {
    const std::vector<WhereUsed> found = [&] {
      const BusyCursor busy(services.op);
      return FindWhereIngUsed(database, ingredient_id, false);
    }();
    items.emplace_back(found.empty() ? "Not Used" : "Done!");
    for (const WhereUsed& use : found) {
      items.push_back(FormatIdPrefix(use.recipe_id) + use.recipe_name);
    }
    BeepIfEnabled(services.op, services.settings);
    return true;
  });
  return items;
}

void RecipeMessages::ReportRefusedCommand(std::string_view title, std::string_view text) {
  BeepIfEnabled(op_, settings_);
  op_.ShowMessage(
      {.icon = Icon::kInformation, .title = std::string(title), .text = std::string(text)});
}

void RecipeMessages::ReportRefusedName(std::string_view text) { ReportFieldRefusal(op_, text); }

bool RecipeMessages::ConfirmDelete(const std::string& ingredient) {
  return op_.ShowMessage({.icon = Icon::kQuestion,
                          .buttons = Buttons::kYesNo,
                          .title = "Delete Ingredient",
                          .text = "Delete " + ingredient + " from this recipe?"}) == Answer::kYes;
}

}  // namespace vrx
