#pragma once

#include <functional>
#include <string>

#include "database/open_databases.h"
#include "history/history_grid.h"

namespace CLI {  // NOLINT(readability-identifier-naming): the library names it so
class App;
}

namespace vrx {

class Session;

// What a command shows of a transaction database: the database, a data group and, for a group by
// name, the name.
class HistorySource {
 public:
  enum class Recipes { kOptional, kRequired };

  void Register(CLI::App& app, Recipes recipes = Recipes::kOptional);

  // Sets up the grid of the group, all groups closed and the columns in their design order, and
  // runs `work` on it; passes its result on. Without a recipe database the ingredient columns are
  // hidden. Both databases are only read. Throws CLI::ParseError where a group by name lacks what
  // it needs, or another has a name; kFailed, the operator told, for a database that is none or
  // fails.
  int Run(Session& session, const std::function<int(HistoryGrid&)>& work) const;

  const std::string& Name() const { return name_; }
  OpenDatabases Databases(const Session& session) const;

 private:
  void CheckUsage() const;

  std::string transactions_;
  std::string recipes_;
  std::string name_;
  int group_ = 0;
};

}  // namespace vrx
