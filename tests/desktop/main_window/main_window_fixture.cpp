#include "desktop/main_window/main_window_fixture.h"

#include <QApplication>

#include "base/application.h"
#include "database/identity.h"
#include "database/schema.h"
#include "database/templates.h"
#include "presenter/database_identity.h"

namespace vrx::testing {

namespace fs = std::filesystem;

MainWindowFixture::MainWindowFixture() {
  fs::create_directory(program_);
  fs::create_directory(common_);
  CreateTemplate(program_ / kRecipeTemplateName, DatabaseKind::kRecipe);
  CreateTemplate(program_ / kTransactionTemplateName, DatabaseKind::kTransaction);
  system_.program_directory = program_;
  system_.common_app_data_folder = common_;
  app_folder_ = std::make_unique<Folder>(system_);
  app_folder_->CheckAppDefaultDir();
  ini_ = std::make_unique<CPrivateINI>(app_folder_->IniFilePath(), system_, operator_);
  static_cast<void>(PrivateINI::EnsureIniFile(*ini_, operator_));
  settings_.ReadIniSettings(*ini_);
  services_.emplace(Services{.op = operator_,
                             .files = chooser_,
                             .pump = pump_,
                             .programs = programs_,
                             .calendar = calendar_,
                             .system = system_,
                             .settings = settings_,
                             .folder = *app_folder_,
                             .identity = identity_});
  operator_.boxes.clear();  // a new INI file is reported
}

MainWindowFixture::~MainWindowFixture() = default;

MainForm& MainWindowFixture::Main() {
  if (!main_) {
    main_ = std::make_unique<MainForm>(*services_, lock_waits_, user_settings_, serial_, *ini_,
                                       RecordExit());
  }
  return *main_;
}

void MainWindowFixture::Show() {
  Window().show();
  Window().activateWindow();
  RunEvents();
}

// A queued call may post another one.
void MainWindowFixture::RunEvents() {
  constexpr int kRounds = 3;
  for (int round = 0; round < kRounds; ++round) {
    QApplication::processEvents();
  }
}

fs::path MainWindowFixture::MakeUserFile(const std::string& name, DatabaseKind kind,
                                         const std::string& unit) {
  const bool recipe = kind == DatabaseKind::kRecipe;
  fs::path path = app_folder_->DefaultAppPath() / name;
  fs::copy_file(program_ / (recipe ? kRecipeTemplateName : kTransactionTemplateName), path);
  DatabaseIdentity identity(operator_, calendar_, settings_);
  identity.SetDatabaseType(path, recipe ? kUserRecipeDb : kUserTransDb);
  identity.SetDatabaseUoM(path, unit);
  identity.SetDatabaseDate(path, DateSelector::kCreated);
  return path;
}

void MainWindowFixture::Open(DatabaseKind kind) {
  const bool recipe = kind == DatabaseKind::kRecipe;
  const std::string name = recipe ? "YARD.RDB" : "Y2026.TDB";
  const fs::path path = MakeUserFile(name, kind);
  chooser_.Choose(path);
  Main();
  Choose(recipe ? u"mnuFileOpenRecipeDB"_qs : u"mnuFileOpenTransactionDB"_qs);
}

std::vector<int> MainWindowFixture::TabsOn() {
  std::vector<int> tabs;
  for (int tab = 0; tab < Tabs().count(); ++tab) {
    if (Tabs().isTabEnabled(tab)) {
      tabs.push_back(tab);
    }
  }
  return tabs;
}

}  // namespace vrx::testing
