#include "ctl/recipe_file.h"

#include <SQLiteCpp/Transaction.h>

#include "ctl/command.h"
#include "ctl/session.h"
#include "database/connection.h"
#include "database/identity.h"
#include "feed/record_commit.h"
#include "feed/record_fields.h"

namespace vrx {
namespace {

EditOutcome EditInOneTransaction(Session& session, const std::string& file,
                                 const std::function<EditOutcome(SQLite::Database&)>& edit) {
  SQLite::Database database = OpenDatabase(file, Access::kWrite, session.Context().busy_timeout);
  SQLite::Transaction transaction(database, SQLite::TransactionBehavior::IMMEDIATE);
  EditOutcome outcome = edit(database);
  if (outcome.done) {
    TouchDatabase(database, session.Context().calendar);
    transaction.commit();
  }
  return outcome;
}

}  // namespace

int EditRecipeFile(Session& session, const std::string& file, std::string_view refusal_title,
                   const std::function<EditOutcome(SQLite::Database&)>& edit) {
  if (!session.IsUserDatabase(file, DatabaseKind::kRecipe)) {
    return kFailed;
  }
  return session.OnDatabase(file, DatabaseKind::kRecipe, [&] {
    try {
      const EditOutcome outcome = EditInOneTransaction(session, file, edit);
      if (!outcome.done) {
        return kFailed;
      }
      for (const std::string& note : outcome.notes) {
        session.Op().ShowNote(note);
      }
    } catch (const FieldRefusal& refusal) {
      session.Op().ShowMessage(
          {.icon = Icon::kCritical, .title = std::string(refusal_title), .text = refusal.what()});
      return kFailed;
    }
    return kDone;
  });
}

int ActOnRecipeFile(Session& session, const std::string& file,
                    const std::function<bool(SQLite::Database&)>& action) {
  if (!session.IsUserDatabase(file, DatabaseKind::kRecipe)) {
    return kFailed;
  }
  return session.OnDatabase(file, DatabaseKind::kRecipe, [&] {
    SQLite::Database database = OpenDatabase(file, Access::kWrite, session.Context().busy_timeout);
    return action(database) ? kDone : kFailed;
  });
}

int ReadRecipeFile(Session& session, const std::string& file,
                   const std::function<void(SQLite::Database&)>& show) {
  if (!session.IsUserDatabase(file, DatabaseKind::kRecipe)) {
    return kFailed;
  }
  return session.OnDatabase(file, DatabaseKind::kRecipe, [&] {
    SQLite::Database database = OpenDatabase(file, Access::kRead, session.Context().busy_timeout);
    show(database);
    return kDone;
  });
}

}  // namespace vrx
