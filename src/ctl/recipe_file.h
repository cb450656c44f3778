#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <SQLiteCpp/Database.h>

namespace vrx {

class Session;

// The result of an edit of a recipe database.
struct EditOutcome {
  bool done = true;                     // false rolls back; the edit has reported the reason
  std::vector<std::string> notes = {};  // shown after the commit
};

// Runs `edit` on a user's recipe database and sets its `Modified`, in one transaction. Reports a
// FieldRefusal under `refusal_title`. A failure leaves the file unchanged. Returns kDone or
// kFailed.
int EditRecipeFile(Session& session, const std::string& file, std::string_view refusal_title,
                   const std::function<EditOutcome(SQLite::Database&)>& edit);

// Runs an action on a user's recipe database. The action uses its own transactions and updates
// `Modified`. Returns kDone if it returns true, otherwise kFailed after a message.
int ActOnRecipeFile(Session& session, const std::string& file,
                    const std::function<bool(SQLite::Database&)>& action);

// Runs `show` on a user's recipe database, which is only read. Returns kDone, or kFailed after a
// message.
int ReadRecipeFile(Session& session, const std::string& file,
                   const std::function<void(SQLite::Database&)>& show);

}  // namespace vrx
