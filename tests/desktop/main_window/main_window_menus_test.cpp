#include <QMenu>
#include <QMenuBar>
#include <array>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "desktop/main_window/main_window_fixture.h"
#include "desktop/main_window/menus_and_toolbar.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using enum MainCommand;

struct Specified {
  const char* name;
  const char* caption;  // "-" for a separator
  const char* menu;     // the menu that contains it
  MainCommand command;
};

// In the order of the screen.
constexpr auto kSpecified = std::to_array<Specified>({
    {"mnuFile", "&File", "", kNone},
    {"mnuFileNew", "&New...", "mnuFile", kNone},
    {"mnuFileNewRecipeDB", "Recipe Database", "mnuFileNew", kNewRecipeDatabase},
    {"mnuFileNewTransactionDB", "Transaction Database", "mnuFileNew", kNewTransactionDatabase},
    {"mnuFileOpen", "&Open...", "mnuFile", kNone},
    {"mnuFileOpenRecipeDB", "Recipe Database", "mnuFileOpen", kBrowseRecipeDatabase},
    {"mnuFileOpenTransactionDB", "Transaction Database", "mnuFileOpen", kBrowseTransactionDatabase},
    {"mnuFileClose", "&Close...", "mnuFile", kNone},
    {"mnuFileCloseRecipeDB", "Recipe Database", "mnuFileClose", kCloseRecipeDatabase},
    {"mnuFileCloseTransactionDB", "Transaction Database", "mnuFileClose",
     kCloseTransactionDatabase},
    {"mnuFileBar0", "-", "mnuFile", kNone},
    {"mnuFileSave", "&Save...", "mnuFile", kNone},
    {"mnuFileSaveRecipeDB", "Recipe Database", "mnuFileSave", kSaveRecipeDatabase},
    {"mnuFileSaveTransactionDB", "Transaction Database", "mnuFileSave", kSaveTransactionDatabase},
    {"mnuFileSaveAs", "Save &As...", "mnuFile", kNone},
    {"mnuFileSaveAsRecipeDB", "Recipe Database", "mnuFileSaveAs", kSaveAsRecipeDatabase},
    {"mnuFileSaveAsTransactionDB", "Transaction Database", "mnuFileSaveAs",
     kSaveAsTransactionDatabase},
    {"mnuFileBar3", "-", "mnuFile", kNone},
    {"mnuFileImportTransactionFile", "&Import Transaction File...", "mnuFile",
     kImportTransactionFile},
    {"mnuFileBar1", "-", "mnuFile", kNone},
    {"mnuFilePrintSetup", "Print Set&up...", "mnuFile", kPrintSetup},
    {"mnuFilePrint", "&Print", "mnuFile", kPrint},
    {"mnuFileBar2", "-", "mnuFile", kNone},
    {"mnuFileExit", "E&xit", "mnuFile", kExit},
    {"mnuEdit", "&Edit", "", kNone},
    {"mnuEditIngredient", "&Ingredients", "mnuEdit", kEditIngredients},
    {"mnuEditRecipe", "&Recipes", "mnuEdit", kEditRecipes},
    {"mnuEditPen", "&Pens", "mnuEdit", kEditPens},
    {"mnuEditBar1", "-", "mnuEdit", kNone},
    {"mnuEditAutoAbbrev", "Auto-Abbreviate Names", "mnuEdit", kAutoAbbreviate},
    {"mnuTransfer", "&Transfer", "", kNone},
    {"mnuTransferUpload", "&Upload Data...", "mnuTransfer", kTransferUpload},
    {"mnuTransferDownload", "&Download Data...", "mnuTransfer", kTransferDownload},
    {"mnuTransferBar1", "-", "mnuTransfer", kNone},
    {"mnuTransferImport", "&Import Transaction File...", "mnuTransfer", kImportTransactionFile},
    {"mnuView", "&View", "", kNone},
    {"mnuViewTransactionFile", "Transaction Database", "mnuView", kViewTransactions},
    {"mnuTools", "&Tools", "", kNone},
    {"mnuToolsSetup", "&Setup/Test...", "mnuTools", kSetup},
    {"mnuHelp", "&Help", "", kNone},
    {"mnuHelpManual", "&Users Manual", "mnuHelp", kManual},
    {"mnuHelpBar1", "-", "mnuHelp", kNone},
    {"mnuHelpReadme", "Read&me", "mnuHelp", kReadme},
    {"mnuHelpBar2", "-", "mnuHelp", kNone},
    {"mnuHelpAbout", "&About...", "mnuHelp", kAbout},
});

class MainMenusTest : public MainWindowFixture {
 protected:
  // Lets every command be chosen, and keeps which one was.
  void KeepChosen() {
    for (const Specified& told : kSpecified) {
      if (told.command != kNone) {
        Window().SetHandler(told.command,
                            [this, command = told.command] { chosen_.push_back(command); });
      }
    }
    Window().Commands().EnableRecipeCommands();
    Window().Commands().EnableTransactionCommands();
    Window().Commands().TurnPrintCommands(true);
  }

  static void Walk(const QWidget& menu, const QString& name, std::vector<std::string>& rows) {
    for (const QAction* action : menu.actions()) {
      rows.push_back((action->objectName() + u" "_qs +
                      (action->isSeparator() ? u"-"_qs : action->text()) + u" in "_qs + name)
                         .toStdString());
      if (action->menu() != nullptr) {
        Walk(*action->menu(), action->objectName(), rows);
      }
    }
  }

  std::vector<MainCommand> chosen_;
};

TEST_F(MainMenusTest, AreAsSpecified) {
  std::vector<std::string> told;
  told.reserve(kSpecified.size());
  for (const Specified& row : kSpecified) {
    told.push_back(std::string(row.name) + " " + row.caption + " in " + row.menu);
  }
  std::vector<std::string> rows;
  Walk(*Window().menuBar(), {}, rows);
  EXPECT_EQ(rows, told);
}

TEST_F(MainMenusTest, EveryItemCallsItsCommandOnce) {
  Main();
  KeepChosen();
  for (const Specified& told : kSpecified) {
    if (told.command != kNone) {
      SCOPED_TRACE(told.name);
      chosen_.clear();
      Choose(QLatin1String(told.name));
      EXPECT_THAT(chosen_, ElementsAre(told.command));
    }
  }
}

TEST_F(MainMenusTest, ACommandThatLeadsNowhereCannotBeChosen) {
  CommandActions actions;
  QMenuBar bar;
  BuildMenus(bar, actions);
  for (const Specified& told : kSpecified) {
    if (told.command != kNone) {
      EXPECT_FALSE(bar.findChild<QAction*>(QLatin1String(told.name))->isEnabled()) << told.name;
    }
  }
}

// The letter that the Alt key goes by.
std::optional<QChar> Mnemonic(const QString& text) {
  const qsizetype mark = text.indexOf(u'&');
  return mark < 0 ? std::nullopt : std::optional(text.at(mark + 1).toUpper());
}

std::vector<std::string> Clashes(const QWidget& menu) {
  std::vector<std::string> clashes;
  std::map<QChar, QString> taken;
  for (const QAction* action : menu.actions()) {
    if (const std::optional<QChar> letter = Mnemonic(action->text())) {
      const auto [place, is_new] = taken.emplace(*letter, action->objectName());
      if (!is_new) {
        clashes.push_back((place->second + u" and "_qs + action->objectName()).toStdString());
      }
    }
    if (action->menu() != nullptr) {
      for (const std::string& clash : Clashes(*action->menu())) {
        clashes.push_back(clash);
      }
    }
  }
  return clashes;
}

TEST_F(MainMenusTest, OnlyTheTwoSpecifiedMenusShareAMnemonic) {
  EXPECT_THAT(Clashes(*Window().menuBar()), ElementsAre("mnuTransfer and mnuTools"));
}

TEST_F(MainMenusTest, NoTwoCommandsShareAShortcut) {
  std::map<std::string, std::set<std::string>> names;
  for (const QAction* action : Window().findChildren<QAction*>()) {
    for (const QKeySequence& shortcut : action->shortcuts()) {
      names[shortcut.toString().toStdString()].insert(action->objectName().toStdString());
    }
  }
  EXPECT_THAT(names["Ctrl+P"], ElementsAre("mnuFilePrint"));
  EXPECT_THAT(names["Ctrl+Q"], ElementsAre("mnuFileExit"));
  EXPECT_THAT(names["F1"], ElementsAre("mnuHelpManual"));
  EXPECT_THAT(names["Ctrl+D"], ElementsAre("Calendar"));
  for (const auto& [shortcut, holders] : names) {
    EXPECT_EQ(holders.size(), 1U) << shortcut;
  }
}

TEST_F(MainMenusTest, SubmenusFollowTheirState) {
  Main();
  for (const char* const menu : {"mnuFileClose", "mnuFileSave", "mnuFileSaveAs"}) {
    EXPECT_FALSE(On(QLatin1String(menu))) << menu;
  }
  for (const char* const menu : {"mnuFileNew", "mnuFileOpen"}) {
    EXPECT_TRUE(On(QLatin1String(menu))) << menu;
  }
}

}  // namespace
}  // namespace vrx::testing
