#pragma once

#include <exception>
#include <functional>
#include <string>
#include <string_view>

#include <SQLiteCpp/Database.h>

#include "platform/operator.h"
#include "presenter/services.h"

namespace vrx {

// Runs an event of the recipe's form or grid. Reports an Error and returns false. A database
// failure is reported as a data error with a beep, whatever the beeper setting is; any other Error
// also beeps and is shown in a message box.
bool HandleEditEvent(Operator& op, const std::function<void()>& event);

// Beeps and shows why an edit failed, including database failures.
void ReportEditFailure(Operator& op, const std::exception& failure);

// The same for a refused field value.
void ReportFieldRefusal(Operator& op, std::string_view refusal);

enum class EditEnd { kStored, kDiscarded, kStays };

// Asks what to do with an edit that could not be stored, and asks again if a retry fails. `store`
// throws Error. `what` names the edit within a sentence: "'Name' field".
EditEnd AskAboutEdit(Operator& op, std::string_view what, std::string cause,
                     const std::function<void()>& store);

// Reports that an edit which could not be stored is given up.
void ReportEditGivenUp(Operator& op, std::string_view what, std::string_view cause);

// Runs an action of the operator and returns its result. If it throws, reports it under `title` and
// returns false.
bool RunFeedAction(const SQLite::Database& database, Services& services, std::string_view title,
                   const std::function<bool()>& action);

// Shows "Error: " and the number of a caught failure under the routine's title, with what() as the
// cause.
void ReportFailure(Operator& op, std::string_view title, const std::exception& failure);

}  // namespace vrx
