#include "presenter/lifecycle_fixture.h"

#include <array>

#include <SQLiteCpp/Statement.h>

#include "database/connection.h"

namespace vrx::testing {

namespace fs = std::filesystem;

namespace {

std::string NameOf(DatabaseKind kind) {
  return kind == DatabaseKind::kRecipe ? "recipe" : "transaction";
}

}  // namespace

void DiaryWindow::Rebind(DatabaseKind kind, const BoundDatabase& database) {
  diary_.push_back("bind " + NameOf(kind) + " " + database.path.filename().string());
  views[kind] = database.connection.get();
  if (on_rebind) {
    on_rebind(kind, database);
  }
  WithDatabaseErrors(*database.connection, [&] {
    SQLite::Statement(*database.connection, kind == DatabaseKind::kRecipe
                                                ? "SELECT count(*) FROM Ingredient"
                                                : "SELECT count(*) FROM Transactions")
        .executeStep();
  });
}

void DiaryWindow::EndReads(DatabaseKind kind) {
  diary_.push_back("end reads " + NameOf(kind));
  if (on_end_reads) {
    on_end_reads();
  }
}

void DiaryWindow::ReleaseViews() {
  diary_.emplace_back("release views");
  views.clear();
}

void DiaryWindow::ShowUnit(DatabaseKind kind, std::string_view unit) {
  diary_.push_back("unit " + NameOf(kind) + " [" + std::string(unit) + "]");
  units[kind] = unit;
}

void DiaryWindow::SetStatusPanel(DatabaseKind kind, StatusPanel panel, std::string_view text) {
  diary_.push_back("panel " + NameOf(kind) + " " + std::to_string(panel) + " [" +
                   std::string(text) + "]");
  panels_[{kind, panel}] = text;
}

void DiaryWindow::LoadIdLists() {
  diary_.emplace_back("load id lists");
  if (on_load_id_lists) {
    on_load_id_lists();
  }
}

void DiaryWindow::PrepareTab(int tab, int /*previous*/) {
  diary_.push_back("click tab " + std::to_string(tab));
  if (on_prepare_tab) {
    on_prepare_tab();
  }
}

void DiaryWindow::CommandChanged(std::string_view name, bool on) {
  const std::string state = on ? " commands on" : " commands off";
  if (name == "mnuFileCloseRecipeDB") {
    diary_.push_back("recipe" + state);
  } else if (name == "mnuFileCloseTransactionDB") {
    diary_.push_back("transaction" + state);
  }
}

void DiaryWindow::TabChanged(int tab, bool on) {
  diary_.push_back("tab " + std::to_string(tab) + (on ? " on" : " off"));
}

std::vector<std::string> DiaryWindow::Panels(DatabaseKind kind) const {
  std::vector<std::string> texts;
  for (const StatusPanel panel : {kPanelName, kPanelUnit, kPanelCreated, kPanelModified}) {
    texts.push_back(panels_.at({kind, panel}));
  }
  return texts;
}

LifecycleFixture::LifecycleFixture() {
  fs::create_directory(program_);
  fs::create_directory(common_);
  for (const DatabaseKind kind : {DatabaseKind::kRecipe, DatabaseKind::kTransaction}) {
    fs::copy_file(TemplatePath(kind), Template(kind));
  }
  system_.program_directory = program_;
  system_.common_app_data_folder = common_;
  app_folder_.CheckAppDefaultDir();
  databases_.CloseRecipeDatabase();
  databases_.CloseTransactionDatabase();
  commands_.AddObserver(window_);
  diary_.clear();
}

fs::path LifecycleFixture::Template(DatabaseKind kind) const {
  return program_ / TemplatePath(kind).filename();
}

fs::path LifecycleFixture::MakeUserFile(const std::string& name, DatabaseKind kind,
                                        const std::string& unit,
                                        const std::string& modified) const {
  fs::path path = app_folder_.DefaultAppPath() / name;
  fs::copy_file(TemplatePath(kind), path);
  fs::permissions(path, fs::perms::owner_write, fs::perm_options::add);
  Alter(path, std::string("UPDATE BrantockDatabase SET dBType = '") +
                  (kind == DatabaseKind::kRecipe ? "USER_RECIPE_DB" : "USER_TRANS_DB") +
                  "'; UPDATE UnitsOfMeasure SET UoM = '" + unit +
                  "'; UPDATE History SET Created = '2025-03-01', Modified = " + modified);
  return path;
}

std::vector<std::string> LifecycleFixture::BoxTitles() const {
  std::vector<std::string> titles;
  for (const MessageBox& box : operator_.boxes) {
    titles.push_back(box.title);
  }
  return titles;
}

}  // namespace vrx::testing
