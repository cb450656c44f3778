#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <SQLiteCpp/Database.h>

namespace vrx {

class Session;

// What an edit of a recipe database came to.
struct EditOutcome {
  bool done = true;                     // false: nothing is to stay, the operator was told why
  std::vector<std::string> notes = {};  // told once the edit stands
};

// Runs `edit` on a user's recipe database and sets its `Modified`, in one transaction. A
// FieldRefusal that it throws is told under `refusal_title`. Whatever fails leaves the file as it
// was. Returns kDone or kFailed.
int EditRecipeFile(Session& session, const std::string& file, std::string_view refusal_title,
                   const std::function<EditOutcome(SQLite::Database&)>& edit);

// Runs an action that makes its own transactions, and keeps `Modified`, on a user's recipe
// database. Returns kDone where it returns true; else kFailed, the operator told.
int ActOnRecipeFile(Session& session, const std::string& file,
                    const std::function<bool(SQLite::Database&)>& action);

// Runs `show` on a user's recipe database that is only read, and returns kDone, or kFailed with the
// operator told.
int ReadRecipeFile(Session& session, const std::string& file,
                   const std::function<void(SQLite::Database&)>& show);

}  // namespace vrx
