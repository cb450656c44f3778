#include <QAbstractButton>
#include <QGroupBox>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QTabBar>
#include <QTest>
#include <map>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "desktop/main_window/main_window_fixture.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;
using ::testing::UnorderedElementsAre;

using Owners = std::vector<std::string>;
using KeyOwners = std::map<std::string, Owners>;

void Add(KeyOwners& keys, const QKeySequence& key, const QObject& owner) {
  if (!key.isEmpty()) {
    keys[key.toString().toStdString()].push_back(owner.objectName().toStdString());
  }
}

void AddActions(KeyOwners& keys, const QWidget& menu) {
  for (const QAction* const action : menu.actions()) {
    Add(keys, QKeySequence::mnemonic(action->text()), *action);
  }
}

// The access keys of all controls in a part of the window, also of those that are hidden or off.
void AddControls(KeyOwners& keys, const QWidget& part) {
  for (const QAbstractButton* const button : part.findChildren<QAbstractButton*>()) {
    Add(keys, button->shortcut(), *button);
  }
  for (const QLabel* const label : part.findChildren<QLabel*>()) {
    if (label->buddy() != nullptr) {
      Add(keys, QKeySequence::mnemonic(label->text()), *label);
    }
  }
  for (const QGroupBox* const group : part.findChildren<QGroupBox*>()) {
    Add(keys, QKeySequence::mnemonic(group->title()), *group);
  }
}

KeyOwners Clashes(KeyOwners keys) {
  std::erase_if(keys, [](const auto& key) { return key.second.size() < 2; });
  return keys;
}

class AccessKeys : public MainWindowFixture {
 protected:
  AccessKeys() { settings_.SetEnableBeeperOn(false); }

  // Of the menu bar, the toolbar, the strip, the tab and the panels that show with it.
  KeyOwners OnTab(int tab) {
    Window().Tabs().SelectTab(tab);
    RunEvents();
    KeyOwners keys;
    AddActions(keys, *Window().menuBar());
    for (int i = 0; i < Tabs().count(); ++i) {
      Add(keys, QKeySequence::mnemonic(Tabs().tabText(i)), Tabs());
    }
    AddControls(keys, *Tabs().currentWidget());
    for (const char* const panel : {"picAction", "picNavigate", "picTransferStatus", "picImport"}) {
      auto& shown = Find<QWidget>(QString::fromLatin1(panel));
      if (shown.isVisible()) {
        AddControls(keys, shown);
      }
    }
    AddControls(keys, Find<QWidget>(u"tbToolBar"_qs));
    return keys;
  }
};

// The menus' captions are fixed by the system, the two with the same letter among them.
TEST_F(AccessKeys, OpenOneControlOrMenuOnEachTab) {
  Open(DatabaseKind::kRecipe);
  Open(DatabaseKind::kTransaction);
  Show();
  for (int tab = 0; tab < kTabCount; ++tab) {
    SCOPED_TRACE(Tabs().tabText(tab).toStdString());
    const KeyOwners keys = OnTab(tab);
    EXPECT_EQ(keys.at("Alt+F"), Owners{"mnuFile"});
    EXPECT_THAT(Clashes(keys),
                ElementsAre(Pair("Alt+T", UnorderedElementsAre("mnuTransfer", "mnuTools"))));
  }
}

TEST_F(AccessKeys, ChooseOneItemInEachMenu) {
  Main();
  int menus = 0;
  for (const QMenu* const menu : Window().menuBar()->findChildren<QMenu*>()) {
    SCOPED_TRACE(menu->title().toStdString());
    KeyOwners keys;
    AddActions(keys, *menu);
    EXPECT_THAT(Clashes(keys), IsEmpty());
    ++menus;
  }
  EXPECT_GE(menus, 6);
}

// The walk finds what it looks for.
TEST_F(AccessKeys, AreFoundOnTheImportTab) {
  Show();
  const KeyOwners keys = OnTab(kTabImport);
  EXPECT_EQ(keys.at("Alt+I"), Owners{"cmdImportFile"});
  EXPECT_EQ(keys.at("Alt+S"), Owners{"cmdImportStore"});
  EXPECT_EQ(keys.at("Alt+P"), Owners{"chkImpFitPage"});
}

class ImportTabOrder : public MainWindowFixture {
 protected:
  ImportTabOrder() { settings_.SetEnableBeeperOn(false); }

  std::vector<std::string> Walk(Qt::Key key) {
    Tabs().tabBar()->setFocus(Qt::TabFocusReason);
    std::vector<std::string> names;
    for (int step = 0; step < 5; ++step) {
      QTest::keyClick(Window().focusWidget(), key);
      names.push_back(Window().focusWidget() == Tabs().tabBar()
                          ? "strip"
                          : Window().focusWidget()->objectName().toStdString());
    }
    return names;
  }
};

TEST_F(ImportTabOrder, FollowsTheWorkFromImportToStore) {
  Show();
  chooser_.Choose(folder_.Write(
      "day.qxt",
      "{BAT/FED},L\r\n[BAT],B,1,3,01152009,2,4,0,0;0830,0,0;1,0,0;1,0,0\r\n\r\n[FED],\r\n\r\n"));
  Choose(u"mnuFileImportTransactionFile"_qs);
  EXPECT_THAT(Walk(Qt::Key_Tab), ElementsAre("cmdImportFile", "chkImpFitPage", "grdIMPORT",
                                             "cmdImportStore", "strip"));
  EXPECT_THAT(Walk(Qt::Key_Backtab), ElementsAre("cmdImportStore", "grdIMPORT", "chkImpFitPage",
                                                 "cmdImportFile", "strip"));
}

}  // namespace
}  // namespace vrx::testing
