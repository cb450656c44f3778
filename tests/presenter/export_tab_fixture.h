#pragma once

#include <deque>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <SQLiteCpp/Database.h>
#include <gtest/gtest.h>

#include "database/connection.h"
#include "database/records.h"
#include "database/schema.h"
#include "database/templates.h"
#include "export/export_fixture.h"
#include "presenter/export.h"
#include "presenter/history.h"
#include "support/boxes.h"
#include "support/test_services.h"

namespace vrx::testing {

// The Export tab above the `Batched/Fed` tab, on the site's transactions and a recipe database with
// the same ingredients, a recipe, and pens. The beeper is on.
class ExportTabTest : public ::testing::Test,
                      protected TestServices,
                      public ExportView,
                      public HistoryView {
 protected:
  ExportTabTest() {
    settings.SetEnableBeeperOn(true);
    system.program_directory = site.Folder().Path().string();
    std::filesystem::create_directories(site.Folder() / "XSL");
    std::filesystem::create_directories(data);
    CreateTemplate(recipes_path, DatabaseKind::kRecipe);
    recipes.emplace(OpenDatabase(recipes_path, Access::kWrite));
    int id = 0;
    for (const char* name : {"CORN", "HAY", "SALT"}) {
      NameIngredient(++id, name);
    }
    RecipeRecord recipe = ReadRecipe(*recipes, 1);
    recipe.name = recipe.description = "STARTER";
    WriteRecipe(*recipes, recipe);
    PenRecord pen = ReadPen(*recipes, 1);
    pen.name = pen.description = "PEN 1";
    WritePen(*recipes, pen);
  }

  void NameIngredient(int id, const std::string& name) {
    IngredientRecord record = ReadIngredient(*recipes, id);
    record.name = record.description = name;
    WriteIngredient(*recipes, record);
  }

  // Opens the site's databases and shows a data group.
  void Show(int group) {
    view.reset();
    transactions.emplace(OpenDatabase(site.Database(), Access::kRead));
    view.emplace(*transactions, services, *this);
    view->SetRecipeDatabase(&*recipes);
    view->TabEntered();
    view->SelectGroup(group);
  }

  // Enters the file name and clicks the button, like the operator.
  void Export(ExportFormat format, const std::string& name = "DAY") {
    tab.SetFName(name);
    tab.SetFPath(out.string());
    tab.SetFormat(format);
    tab.ClickExport();
  }

  OpenDatabases Databases() const override { return {recipes_path, site.Database(), "LB"}; }
  ExportSource DataGroup() override {
    ExportSource shown = Current(*view);
    shown.index = given_index.value_or(shown.index);
    shown.name = given_name.value_or(shown.name);
    return shown;
  }
  void ConfigureImportColumns() override { ++import_columns_configured; }
  void FocusControl(std::string_view name) override { focused.emplace_back(name); }
  void Exported(const std::filesystem::path& file) override { exported.push_back(file); }
  void ExportChanged() override {
    forms.push_back(tab.Form());
    if (on_change) {
      on_change();
    }
  }
  void HistoryChanged(HistoryPart /*part*/) override {}

  ExportFixture site;
  std::filesystem::path recipes_path = site.Folder() / "SITE.RDB";
  std::filesystem::path out = site.Folder() / "out";
  std::filesystem::path data = site.Folder() / "data";
  StyleSheets style_sheets{data, system, op};
  std::optional<SQLite::Database> recipes;
  std::optional<SQLite::Database> transactions;
  std::optional<HistoryPresenter> view;
  std::optional<int> given_index;         // in place of the view's
  std::optional<std::string> given_name;  // in place of the combo's text
  int import_columns_configured = 0;
  std::vector<std::string> focused;
  std::vector<std::filesystem::path> exported;
  std::vector<ExportForm> forms;  // at each change
  std::function<void()> on_change;
  ExportPresenter tab{services, style_sheets, *this};
};

}  // namespace vrx::testing
