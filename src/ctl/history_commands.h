#pragma once

#include <functional>
#include <string>

#include "database/open_databases.h"
#include "history/history_grid.h"
#include "history/period.h"

namespace CLI {  // NOLINT(readability-identifier-naming): named by the library
class App;
}

namespace vrx {

class Session;

// The options that select the history of a command: the transaction database, a data group and, for
// a group by name, the name.
class HistorySource {
 public:
  enum class Recipes { kOptional, kRequired };

  void Register(CLI::App& app, Recipes recipes = Recipes::kOptional);

  // Sets up the grid of the group and period with all groups closed and the columns in their
  // initial order, runs `work` on it and returns its result. Reports records that are left out.
  // Without a recipe database the ingredient columns are hidden. Both databases are only read.
  // Throws CLI::ParseError if a group by name lacks its name or recipe database, or another group
  // has a name. Reports an unusable database and returns kFailed.
  int Run(Session& session, const std::function<int(HistoryGrid&)>& work) const;

  [[nodiscard]] const std::string& Name() const { return name_; }
  [[nodiscard]] OpenDatabases Databases(const Session& session) const;

 private:
  void CheckUsage() const;
  [[nodiscard]] Period ShownPeriod() const;

  std::string transactions_;
  std::string recipes_;
  std::string name_;
  std::string from_;  // days in stored form; empty: no limit on that side
  std::string to_;
  int group_ = 0;
  bool differences_ = false;
};

}  // namespace vrx
