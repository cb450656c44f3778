#include "ctl/recipe_file.h"

#include <SQLiteCpp/Transaction.h>

#include "ctl/command.h"
#include "ctl/session.h"
#include "database/connection.h"
#include "database/identity.h"
#include "feed/record_commit.h"
#include "feed/record_fields.h"
#include "presenter/report_failure.h"

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
    const FailureReport refusal{.title = refusal_title, .text = FailureText::kMessage};
    const bool done = RunReported<FieldRefusal>(session.Op(), refusal, [&] {
      const EditOutcome outcome = EditInOneTransaction(session, file, edit);
      if (outcome.done) {
        for (const std::string& note : outcome.notes) {
          session.Op().ShowNote(note);
        }
      }
      return outcome.done;
    });
    return done ? kDone : kFailed;
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
