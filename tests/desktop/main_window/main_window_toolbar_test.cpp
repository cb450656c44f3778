#include <QAccessible>
#include <QApplication>
#include <QCursor>
#include <QEnterEvent>
#include <QMenu>
#include <QTabBar>
#include <QTest>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "desktop/main_window/main_window_fixture.h"
#include "desktop/main_window/menus_and_toolbar.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using enum MainCommand;

struct SpecifiedItem {
  const char* text;
  MainCommand command;
};

struct Specified {
  const char* key;
  const char* tool_tip;
  MainCommand command;
  std::vector<SpecifiedItem> items = {};
};

// In the order of the screen.
const std::vector<Specified>& SpecifiedButtons() {
  static const std::vector<Specified> told{
      {"New dB",
       "New Database",
       kNone,
       {{"New Recipe", kNewRecipeDatabase}, {"New Transaction", kNewTransactionDatabase}}},
      {"Open dB",
       "Open Database",
       kNone,
       {{"Open Recipe", kBrowseRecipeDatabase}, {"Open Transaction", kBrowseTransactionDatabase}}},
      {"Save",
       "Save",
       kNone,
       {{"Save Recipe", kSaveRecipeDatabase}, {"Save Transaction", kSaveTransactionDatabase}}},
      {"Import Transaction", "Import Transaction File", kImportTransactionFile},
      {"Print", "Print", kPrint},
      {"Abbreviate", "Auto-Abbreviate Names", kAutoAbbreviate},
      {"Calendar", "Calendar", kCalendar},
      {"Setup", "Setup", kSetup},
  };
  return told;
}

class MainToolBarTest : public MainWindowFixture {
 protected:
  QToolButton& Button(const char* key) { return Find<QToolButton>(QLatin1String(key)); }

  void KeepChosen() {
    for (int command = static_cast<int>(kNewRecipeDatabase); command <= static_cast<int>(kCalendar);
         ++command) {
      Window().SetHandler(static_cast<MainCommand>(command), [this, command] {
        chosen_.push_back(static_cast<MainCommand>(command));
      });
    }
    Window().Commands().EnableRecipeCommands();
    Window().Commands().EnableTransactionCommands();
    Window().Commands().TurnPrintCommands(true);
    Window().Commands().Turn("Abbreviate", true);
    Show();
  }

  std::vector<MainCommand> chosen_;
};

TEST_F(MainToolBarTest, HasTheSpecifiedButtonsInOrderWithTheirTooltips) {
  Window();
  std::vector<std::string> keys;
  for (const QAction* action : Find<QToolBar>(u"tbToolBar"_qs).actions()) {
    if (!action->objectName().isEmpty()) {
      keys.push_back(action->objectName().toStdString());
    }
  }
  std::vector<std::string> told_keys;
  for (const Specified& told : SpecifiedButtons()) {
    told_keys.emplace_back(told.key);
    EXPECT_EQ(Button(told.key).toolTip(), QLatin1String(told.tool_tip));
    EXPECT_FALSE(Button(told.key).icon().isNull()) << told.key;
  }
  EXPECT_EQ(keys, told_keys);
}

TEST_F(MainToolBarTest, EveryButtonCallsItsCommandAndADropDownNothing) {
  Main();
  KeepChosen();
  for (const Specified& told : SpecifiedButtons()) {
    SCOPED_TRACE(told.key);
    chosen_.clear();
    QToolButton& button = Button(told.key);
    QTest::mouseClick(&button, Qt::LeftButton, {},
                      QPoint(button.height() / 4, button.height() / 2));
    if (told.command == kNone) {
      EXPECT_THAT(chosen_, IsEmpty());
      EXPECT_FALSE(button.defaultAction()->menu()->isVisible());
    } else {
      EXPECT_THAT(chosen_, ElementsAre(told.command));
    }
  }
}

TEST_F(MainToolBarTest, DropDownItemsCarryTheWork) {
  Main();
  KeepChosen();
  for (const Specified& told : SpecifiedButtons()) {
    const QMenu* const menu = Button(told.key).defaultAction()->menu();
    const QList<QAction*> items = menu == nullptr ? QList<QAction*>() : menu->actions();
    ASSERT_EQ(static_cast<std::size_t>(items.size()), told.items.size()) << told.key;
    for (std::size_t index = 0; index < told.items.size(); ++index) {
      QAction* const item = items.at(static_cast<qsizetype>(index));
      chosen_.clear();
      item->trigger();
      EXPECT_EQ(item->text(), QLatin1String(told.items[index].text));
      EXPECT_THAT(chosen_, ElementsAre(told.items[index].command));
    }
  }
}

TEST_F(MainToolBarTest, ButtonNoticesThatThePointerLeftWhileItsListWasOpen) {
  Main();
  KeepChosen();
  QToolButton& button = Button("New dB");
  QMenu& items = *button.defaultAction()->menu();
  const QPoint over = button.mapToGlobal(button.rect().center());
  for (const bool stays : {false, true}) {
    QEnterEvent enter(button.rect().center(), over, over);
    QApplication::sendEvent(&button, &enter);
    items.popup(button.mapToGlobal(button.rect().bottomLeft()));
    QCursor::setPos(stays ? over : button.mapToGlobal(button.rect().bottomRight() * 3));
    QTest::keyClick(&items, Qt::Key_Escape);
    EXPECT_EQ(button.underMouse(), stays);
  }
}

TEST_F(MainToolBarTest, TakesNoFocusByAClick) {
  Main();
  KeepChosen();
  Tabs().tabBar()->setFocus();
  for (const Specified& told : SpecifiedButtons()) {
    EXPECT_EQ(Button(told.key).focusPolicy(), Qt::NoFocus);
    QTest::mouseClick(&Button(told.key), Qt::LeftButton, {}, QPoint(8, 8));
    EXPECT_TRUE(Tabs().tabBar()->hasFocus()) << told.key;
  }
}

TEST_F(MainToolBarTest, AScreenReaderSaysWhatEachButtonDoes) {
  Main();
  for (const Specified& told : SpecifiedButtons()) {
    QAccessibleInterface* const heard = QAccessible::queryAccessibleInterface(&Button(told.key));
    ASSERT_NE(heard, nullptr);
    EXPECT_EQ(heard->text(QAccessible::Name), QLatin1String(told.tool_tip));
  }
}

TEST_F(MainToolBarTest, AbbreviateIsPressedAsTheSettingIsOn) {
  settings_.SetAutoAbbreviateOn(true);
  Main();
  EXPECT_TRUE(Button("Abbreviate").isChecked());
  EXPECT_TRUE(Item(u"mnuEditAutoAbbrev"_qs).isChecked());
}

TEST_F(MainToolBarTest, TogglingAbbreviateWritesTheSettingAtOnce) {
  settings_.SetAutoAbbreviateOn(true);
  Main();
  Choose(u"mnuEditAutoAbbrev"_qs);
  EXPECT_FALSE(settings_.AutoAbbreviateOn());
  EXPECT_FALSE(Button("Abbreviate").isChecked());
  EXPECT_FALSE(Item(u"mnuEditAutoAbbrev"_qs).isChecked());
  std::string value;
  EXPECT_TRUE(ini_->ReadKey("Configuration", "AutoAbbreviate", value));
  EXPECT_EQ(value, "NO");

  Window().Tabs().SelectTab(kTabIngredients);
  Button("Abbreviate").click();
  EXPECT_TRUE(settings_.AutoAbbreviateOn());
  EXPECT_TRUE(Button("Abbreviate").isChecked());
  EXPECT_TRUE(Item(u"mnuEditAutoAbbrev"_qs).isChecked());
  EXPECT_TRUE(ini_->ReadKey("Configuration", "AutoAbbreviate", value));
  EXPECT_EQ(value, "YES");
}

TEST_F(MainToolBarTest, ASettingThatCannotBeWrittenIsReported) {
  Main();
  std::filesystem::remove_all(app_folder_->DefaultAppPath());
  Choose(u"mnuEditAutoAbbrev"_qs);
  ASSERT_EQ(operator_.boxes.size(), 1U);
  EXPECT_EQ(operator_.boxes[0].title, "INI File Error");
  EXPECT_FALSE(operator_.boxes[0].cause.empty());
  EXPECT_EQ(settings_.AutoAbbreviateOn(), Button("Abbreviate").isChecked());
}

TEST_F(MainToolBarTest, ReportsOfTheTransferAtItsRightEnd) {
  settings_.SetBatchTargetWtIsRecTargetOn(true);
  Show();
  EXPECT_EQ(Text(u"lblXfr"_qs), u"Transfer"_qs);
  EXPECT_EQ(Text(u"lblTransfer"_qs), u"Batch Target"_qs);
  EXPECT_EQ(Text(u"lblSystemUoM"_qs), u"LB"_qs);
  settings_.SetBatchTargetWtIsRecTargetOn(false);
  Window().ShowTransferOption();
  EXPECT_EQ(Text(u"lblTransfer"_qs), u"Dry Matter"_qs);
  EXPECT_TRUE(Find<QLabel>(u"lblXfr"_qs).isVisible());
  EXPECT_TRUE(Find<QLabel>(u"lblTransfer"_qs).isVisible());
}

}  // namespace
}  // namespace vrx::testing
