#include "presenter/recent_databases.h"

#include <string>
#include <utility>

#include "base/files.h"
#include "database/identity.h"

namespace vrx {

void RecentDatabases::Load() {
  autoload_recipe_pending_ = Recall(DatabaseKind::kRecipe, settings_.AutoloadRecipeDBOn());
  autoload_trans_pending_ = Recall(DatabaseKind::kTransaction, settings_.AutoloadTransDBOn());
  first_activate_ = true;
}

bool RecentDatabases::Recall(DatabaseKind kind, bool autoload_on) {
  const KindTexts& words = TextsOf(kind);
  const std::string path = store_.GetSetting(words.recent_path_key);
  const std::string name = store_.GetSetting(words.recent_name_key);
  databases_.Recall(kind, path, name);
  return !name.empty() && FileExists(path) && autoload_on;
}

void RecentDatabases::Activate() {
  if (!std::exchange(first_activate_, false)) {
    return;
  }
  if (autoload_recipe_pending_) {
    databases_.OpenRecipeDatabase(databases_.Recipe().path, databases_.Recipe().name);
    autoload_recipe_pending_ = false;
  }
  if (autoload_trans_pending_) {
    databases_.OpenTransactionDatabase(databases_.Transaction().path,
                                       databases_.Transaction().name);
    autoload_trans_pending_ = false;
  }
}

}  // namespace vrx
