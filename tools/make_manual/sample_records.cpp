#include "make_manual/sample_records.h"

#include <string>
#include <utility>

#include "base/application.h"
#include "base/error.h"
#include "base/files.h"
#include "database/identity.h"
#include "presenter/import.h"

namespace vrx::manual {
namespace {

namespace fs = std::filesystem;

// Shows nothing.
class NoProgress : public ProgressDisplay {
 public:
  void SetProgressMessage(std::string_view /*text*/) override {}
  void SetProgressRange(int /*maximum*/) override {}
  void SetProgressValue(int /*value*/) override {}
};

class NoWindow : public ImportView {
 public:
  explicit NoWindow(OpenDatabases databases) : databases_(std::move(databases)) {}

  [[nodiscard]] OpenDatabases Databases() const override { return databases_; }
  std::vector<IngredientRecord> GridIngredients() override { return {}; }
  void SelectImportTab() override {}
  void FocusControl(std::string_view /*name*/) override {}
  void SaveTransactionDatabase() override {}
  void ImportChanged() override {}

 private:
  OpenDatabases databases_;
};

}  // namespace

void MakeTransactionDatabase(const fs::path& target, const fs::path& recipes,
                             const std::vector<fs::path>& files, Services& services) {
  const fs::path blank = fs::path(services.system.ProgramDirectory()) / kTransactionTemplateName;
  if (!CopyFileNoOverwrite(blank, target)) {
    throw Error("cannot copy " + blank.string() + " to " + target.string());
  }
  services.identity.SetDatabaseType(target, kUserTransDb);
  services.identity.SetDatabaseUoM(target, services.settings.SystemUnits());
  services.identity.SetDatabaseDate(target, DateSelector::kCreated);
  NoProgress progress;
  NoWindow window({.recipe_db_path = recipes,
                   .trans_db_path = target,
                   .trans_db_uom = services.settings.SystemUnits()});
  for (const fs::path& file : files) {
    ImportPresenter import(services, progress, window);
    if (!import.ImportFile({file.string(), file.filename().string()}) ||
        !import.ClickImportStore().complete) {
      throw Error(file.string() + " could not be stored");
    }
  }
}

}  // namespace vrx::manual
