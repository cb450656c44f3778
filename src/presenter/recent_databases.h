#pragma once

#include "platform/user_settings.h"
#include "presenter/database_commands.h"
#include "settings/settings.h"

namespace vrx {

// The databases of the last run, kept in the per-user settings. All references outlive the object.
class RecentDatabases {
 public:
  RecentDatabases(const UserSettings& store, const PrivateINI& settings,
                  DatabaseCommands& databases)
      : store_(store), settings_(settings), databases_(databases) {}

  // The window's Load: recalls paths and names, even of missing files, and determines what to open
  // at the first Activate. Shows no messages.
  void Load();

  // The window's Activate. The first one after Load opens the pending databases, recipes first.
  void Activate();

  [[nodiscard]] bool AutoloadRecipePending() const { return autoload_recipe_pending_; }
  [[nodiscard]] bool AutoloadTransPending() const { return autoload_trans_pending_; }

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
