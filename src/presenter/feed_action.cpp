#include "presenter/feed_action.h"

#include <exception>

#include "database/database_error.h"
#include "database/translated.h"

namespace vrx {

bool RunFeedAction(const SQLite::Database& database, const FeedPorts& ports, std::string_view title,
                   const std::function<bool()>& action) {
  try {
    return Translated(database, action);
  } catch (const std::exception& failure) {
    ports.op.SetBusy(false);
    ports.identity.ShowDatabaseError(FailureNumber(failure), title, failure.what());
    return false;
  }
}

}  // namespace vrx
