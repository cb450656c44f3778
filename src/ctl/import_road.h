#pragma once

#include <filesystem>
#include <vector>

#include "ctl/scripted_file_choice.h"
#include "ctl/session.h"
#include "presenter/import.h"

namespace vrx {

// The Import tab without its window: a session of the import on the databases that a command names.
class ImportRoad : public ImportHost {
 public:
  ImportRoad(Session& session, OpenDatabases databases);

  // False after a failure that the operator was told.
  bool Import(const std::filesystem::path& file);
  StoreOutcome Store() { return import_.ClickImportStore(); }
  const TransFile& File() const { return import_.File(); }

  OpenDatabases Databases() const override { return databases_; }
  // The columns of the grid are nobody's concern here.
  std::vector<IngredientRecord> GridIngredients() override { return {}; }
  void SelectTab(int /*tab*/) override {}
  void FocusControl(std::string_view /*name*/) override {}
  // A command opens its databases for one store only.
  void SaveTransactionDatabase() override {}
  void ImportChanged() override {}

 private:
  OpenDatabases databases_;
  ScriptedFileChoice chooser_;
  ImportSession import_;
};

}  // namespace vrx
