#pragma once

#include <exception>
#include <functional>
#include <string>
#include <string_view>

#include <SQLiteCpp/Database.h>

#include "platform/operator.h"
#include "presenter/services.h"

namespace vrx {

// Runs what an event of the recipe's form or grid does. An Error that it throws ends here, told to
// the operator, and false comes back: a failure of the storage is a data error and beeps, whatever
// the beeper setting says; all else beeps as well and says in a box what it is.
bool HandleEditEvent(Operator& op, const std::function<void()>& event);

// Beeps and says in a box why an edit failed, a failure of the storage included.
void ReportEditFailure(Operator& op, const std::exception& failure);

// The same for a field that may not be left as it is.
void ReportFieldRefusal(Operator& op, std::string_view refusal);

enum class EditEnd { kStored, kDiscarded, kStays };

// Asks what becomes of an edit that could not be stored for that cause, and again when another try
// fails. `store` throws Error. `what` names the edit within a sentence: "'Name' field".
EditEnd AskAboutEdit(Operator& op, std::string_view what, std::string cause,
                     const std::function<void()>& store);

// Says that an edit which could not be stored is given up.
void ReportEditGivenUp(Operator& op, std::string_view what, std::string_view cause);

// Runs an action that the operator started and returns what it returns; where it throws, tells the
// operator under `title` and returns false. The pointer is a normal one afterwards.
bool RunFeedAction(const SQLite::Database& database, Services& services, std::string_view title,
                   const std::function<bool()>& action);

// The box of a routine that has trapped a failure: "Error: " and its number under the routine's
// title, with what() as the cause.
void ReportFailure(Operator& op, std::string_view title, const std::exception& failure);

}  // namespace vrx
