#include <QMenu>
#include <QMenuBar>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "desktop/main_window/commands_fixture.h"
#include "desktop/main_window/menus_and_toolbar.h"
#include "support/golden.h"

namespace vrx::testing {
namespace {

using ::testing::_;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::Pair;
using ::testing::SizeIs;
using enum MainCommand;

class MainMenusTest : public CommandsFixture {
 protected:
  // A line for each item below the menu, in the order of the screen.
  static std::string Lines(const QWidget& menu, const QString& name) {
    std::string lines;
    for (const QAction* action : menu.actions()) {
      const QString caption = action->isSeparator() ? u"-"_qs : action->text();
      lines += (action->objectName() + u" \""_qs + caption + u"\" in "_qs + name + u"\n"_qs)
                   .toStdString();
      if (action->menu() != nullptr) {
        lines += Lines(*action->menu(), action->objectName());
      }
    }
    return lines;
  }

  // The items that open no menu.
  static void AddItems(const QWidget& menu, std::vector<QAction*>& items) {
    for (QAction* const action : menu.actions()) {
      if (action->menu() != nullptr) {
        AddItems(*action->menu(), items);
      } else if (!action->isSeparator()) {
        items.push_back(action);
      }
    }
  }
  static std::vector<QAction*> ItemsOf(const QMenuBar& bar) {
    std::vector<QAction*> items;
    AddItems(bar, items);
    return items;
  }
};

TEST_F(MainMenusTest, AreTheGoldenOnes) {
  EXPECT_TRUE(IsGolden(Lines(*Window().menuBar(), u"the bar"_qs), "desktop/golden/menus.txt"));
}

// What the commands do is tested where they act.
TEST_F(MainMenusTest, EveryItemCallsOneCommandThatNoOtherItemCallsButTheTwoOfTheImport) {
  Main();
  RecordChosen();
  std::map<MainCommand, std::vector<std::string>> items;
  for (QAction* const item : ItemsOf(*Window().menuBar())) {
    const std::string name = item->objectName().toStdString();
    chosen_.clear();
    item->setEnabled(true);  // some commands are off without a database
    item->trigger();
    ASSERT_THAT(chosen_, SizeIs(1)) << name;
    items[chosen_.front()].push_back(name);
  }
  EXPECT_THAT(items[kImportTransactionFile],
              ElementsAre("mnuFileImportTransactionFile", "mnuTransferImport"));
  items.erase(kImportTransactionFile);
  EXPECT_THAT(items, Each(Pair(_, SizeIs(1))));
}

TEST_F(MainMenusTest, ACommandThatLeadsNowhereCannotBeChosen) {
  CommandActions actions;
  QMenuBar bar;
  BuildMenus(bar, actions);
  const std::vector<QAction*> items = ItemsOf(bar);
  EXPECT_THAT(items, Not(IsEmpty()));
  for (const QAction* const item : items) {
    EXPECT_FALSE(item->isEnabled()) << item->objectName().toStdString();
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
  EXPECT_THAT(names["F1"], ElementsAre("mnuHelpChapter"));
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
