#pragma once

#include <functional>
#include <string_view>

#include <SQLiteCpp/Database.h>

#include "platform/calendar.h"
#include "platform/operator.h"
#include "presenter/database_identity.h"
#include "settings/settings.h"

namespace vrx {

// What an action on the records asks of its surroundings. Everything referred to outlives it.
struct FeedPorts {
  Operator& op;
  const PrivateINI& settings;
  const Calendar& calendar;
  DatabaseIdentity& identity;  // tells failures
};

// Runs an action that the operator started and returns what it returns; where it throws, tells the
// operator under `title` and returns false. The pointer is a normal one afterwards.
bool RunFeedAction(const SQLite::Database& database, const FeedPorts& ports, std::string_view title,
                   const std::function<bool()>& action);

}  // namespace vrx
