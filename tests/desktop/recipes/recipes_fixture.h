#pragma once

#include <QComboBox>
#include <QLabel>
#include <QWidget>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "database/bound_database.h"
#include "database/records.h"
#include "database/schema.h"
#include "desktop/recipes/recipes_page.h"
#include "feed/key_filters.h"
#include "feed/recipe_columns.h"
#include "presenter/command_states.h"
#include "presenter/database_identity.h"
#include "settings/settings.h"
#include "support/boxes.h"
#include "support/fixed_calendar.h"
#include "support/manual_pump.h"
#include "support/recording_operator.h"
#include "support/temp_folder.h"
#include "support/test_services.h"

namespace vrx::testing {

// The Recipes tab in a separate window, on a recipe database with four ingredients in use: CORN of
// 88 % dry matter, HAY of 90, SUPP without a figure and added by hand, OATS of 100. The recipes 1
// to 4 have the types W, H, % and P and an adjust item of +0 %; the others have none. No recipe has
// lines.
class RecipesFixture : public ::testing::Test {
 protected:
  static constexpr int kCorn = 1;
  static constexpr int kHay = 2;
  static constexpr int kSupp = 3;
  static constexpr int kOats = 4;
  static constexpr int kByWeight = 1;
  static constexpr int kByHeadCount = 2;
  static constexpr int kSelfAdjusting = 3;
  static constexpr int kByPercent = 4;
  static constexpr int kUntyped = 5;
  static constexpr int kTab = 1;

  RecipesFixture();
  ~RecipesFixture() override;

  // Shows the tab with recipe 1, like a click on the tab.
  void Enter();
  // Shows a recipe like the navigator.
  void Show(int recipe) { page_->GoTo(recipe); }
  static void RunEvents();
  // After a drop-down list closes: without a window manager nothing else reactivates the window.
  void ComeBack();

  SQLite::Database& Database() { return *bound_.connection; }
  RecipeRecord Stored(int recipe) { return ReadRecipe(Database(), recipe); }
  // Changes the database directly.
  void SetRecipe(int recipe, std::string RecipeRecord::*field, const std::string& text);
  void SetHeadCount(int recipe, int head_count);
  void AddStoredLine(int recipe, int ingredient, const std::string& target,
                     const std::string& percent = "0");
  void AddCornHaySupplement(int recipe);

  // Finds a control by its name; fails the test if there is none.
  template <typename Control>
  Control& Find(const char* name) {
    auto* const control = form_->findChild<Control*>(QLatin1String(name));
    if (control == nullptr) {
      throw std::logic_error(std::string("no control ") + name);
    }
    return *control;
  }
  std::string Label(const char* name) { return Find<QLabel>(name).text().toStdString(); }
  std::string Box(const char* name) { return Find<FilteredEdit>(name).Text(); }
  bool Visible(const char* name) { return Find<QWidget>(name).isVisible(); }
  bool Enabled(const char* name) { return Find<QWidget>(name).isEnabled(); }
  RecipeGrid& Grid() { return Find<RecipeGrid>("grdREC"); }

  // Sends keys to the focused control.
  static void Press(Qt::Key key, Qt::KeyboardModifiers held = Qt::NoModifier);
  static void Type(std::string_view text);
  void TypeInto(const char* box, std::string_view text);
  static std::string Focused();

  // Rows and columns as the grid shows them, rows from 0; a cell's text.
  int Rows() { return Grid().model()->rowCount(); }
  std::string Cell(int row, RecipeColumn column);
  std::vector<std::string> Column(RecipeColumn column);
  void Click(int row, RecipeColumn column);
  int CurrentRow() { return Grid().currentIndex().row(); }
  int CurrentColumn() { return Grid().currentIndex().column(); }

  // Selects an item of a list like the operator with the mouse.
  void Choose(const char* list, int index);
  int Index(const char* list) { return Find<QComboBox>(list).currentIndex(); }
  // Of `cboRecID`.
  std::string Item(int id) { return Find<QComboBox>("cboRecID").itemText(id).toStdString(); }
  void LeaveTo(const char* control) { Find<QWidget>(control).setFocus(); }

  // Adds a line after the last one with keys: the name of the ingredient, then the amount.
  void AddByKeys(std::string_view ingredient, std::string_view amount);

  // Checks that the stored values are those in the grid.
  void ExpectStored();

  TempFolder folder_;
  ManualPump pump_;
  RecordingOperator op_;
  FixedCalendar calendar_;
  PrivateINI settings_;
  DatabaseIdentity identity_{op_, calendar_, settings_};
  TestServices rest_;
  Services services_{.op = op_,
                     .files = rest_.files,
                     .pump = pump_,
                     .programs = rest_.programs,
                     .calendar = calendar_,
                     .system = rest_.system,
                     .settings = settings_,
                     .folder = rest_.folder,
                     .identity = identity_};
  GeneralDelay delay_{pump_};
  AutoAbbreviation abbreviation_;
  UndoCommands undo_{services_};
  BoundDatabase bound_;
  std::unique_ptr<QWidget> form_;
  RecipesPage* page_;
  std::vector<int> moved_;            // from Moved
  std::vector<bool> cancel_allowed_;  // from CancelAllowed
  int changes_ = 0;                   // of records, from RecordChanged
};

}  // namespace vrx::testing
