#pragma once

#include "platform/user_settings.h"
#include "presenter/database_commands.h"
#include "settings/settings.h"

namespace vrx {

// The databases of the last run, kept in the per-user settings. Whatever is referred to outlives
// this.
class RecentDatabases {
 public:
  RecentDatabases(const UserSettings& store, const PrivateINI& settings,
                  DatabaseCommands& databases)
      : store_(store), settings_(settings), databases_(databases) {}

  // The window's Load: recalls paths and names, also of files that are gone, and works out what is
  // to be opened at the first Activate. Nothing is told.
  void Load();

  // The window's Activate. The first one after a Load opens what is pending, recipes first.
  void Activate();

  bool AutoloadRecipePending() const { return autoload_recipe_pending_; }
  bool AutoloadTransPending() const { return autoload_trans_pending_; }

 private:
  bool Recall(DatabaseKind kind, bool autoload_on);

  const UserSettings& store_;
  const PrivateINI& settings_;
  DatabaseCommands& databases_;
  bool first_activate_ = false;
  bool autoload_recipe_pending_ = false;
  bool autoload_trans_pending_ = false;
};

}  // namespace vrx
