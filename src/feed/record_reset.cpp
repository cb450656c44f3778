#include "feed/record_reset.h"

#include <string>

#include <SQLiteCpp/Statement.h>
#include <SQLiteCpp/Transaction.h>

#include "database/records.h"
#include "feed/record_commit.h"
#include "feed/where_used.h"
#include "frame/text.h"

namespace vrx {
namespace {

constexpr const char* kDeleteLines = "DELETE FROM RecipeRation WHERE (RecipeID = ?)";

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

void ResetRecipe(SQLite::Database& database, int id) {
  RecipeRecord recipe = ReadRecipe(database, id);
  recipe.name = DefaultName(RecordKind::kRecipe, id);
  recipe.description.clear();
  recipe.batch_type = "!";
  WriteRecipe(database, recipe);
  SQLite::Statement remove(database, kDeleteLines);
  remove.bind(1, std::to_string(id));
  remove.exec();
}

void WriteDefaults(SQLite::Database& database, RecordKind kind, int id) {
  const std::string name = DefaultName(kind, id);
  switch (kind) {
    case RecordKind::kIngredient:
      WriteIngredient(database, {.id = id, .name = name});
      break;
    case RecordKind::kRecipe:
      ResetRecipe(database, id);
      break;
    case RecordKind::kPen:
      WritePen(database, {.id = id, .name = name});
      break;
  }
}

bool IsUsed(SQLite::Database& database, RecordKind kind, int id) {
  return kind == RecordKind::kIngredient && !FindWhereIngUsed(database, id, true).empty();
}

// False for a record that is in use.
bool ResetInOneTransaction(SQLite::Database& database, RecordKind kind, int id,
                           const Calendar& calendar) {
  SQLite::Transaction transaction(database, SQLite::TransactionBehavior::IMMEDIATE);
  if (IsUsed(database, kind, id)) {
    return false;
  }
  WriteDefaults(database, kind, id);
  TouchDatabase(database, calendar);
  transaction.commit();
  return true;
}

Answer Ask(const FeedPorts& ports, const RecordKindTraits& traits, const std::string& record) {
  return ports.op.ShowMessage({.icon = Icon::kQuestion,
                               .buttons = Buttons::kYesNo,
                               .title = std::string(traits.reset_title),
                               .text = "Reset " + record + std::string(traits.reset_question_end)});
}

void TellUsed(const FeedPorts& ports, const RecordKindTraits& traits, const std::string& record) {
  ports.op.ShowMessage(
      {.icon = Icon::kWarning,
       .buttons = Buttons::kOkCancel,
       .title = std::string(traits.reset_title),
       .text = "Sorry, cannot reset " + record + std::string(traits.reset_refusal_end)});
}

}  // namespace

ResetOutcome AskAndReset(SQLite::Database& database, RecordKind kind, int id,
                         const FeedPorts& ports) {
  const RecordKindTraits& traits = TraitsOf(kind);
  ResetOutcome outcome = ResetOutcome::kNotReset;
  RunFeedAction(database, ports, traits.reset_title, [&] {
    const std::string record = std::string(traits.noun) + " #" + std::to_string(id) + " (" +
                               StoredName(database, kind, id) + ")";
    if (Ask(ports, traits, record) != Answer::kYes) {
      return false;
    }
    ports.op.SetBusy(true);
    const bool reset = ResetInOneTransaction(database, kind, id, ports.calendar);
    ports.op.SetBusy(false);
    outcome = reset ? ResetOutcome::kReset : ResetOutcome::kInUse;
    if (!reset) {
      TellUsed(ports, traits, record);
    } else if (traits.reset_beeps) {
      BeepIfEnabled(ports.op, ports.settings);
    }
    return reset;
  });
  return outcome;
}

}  // namespace vrx
