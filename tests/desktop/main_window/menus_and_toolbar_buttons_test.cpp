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

#include "desktop/main_window/commands_fixture.h"
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
  static const std::vector<Specified> buttons{
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
  return buttons;
}

class MainToolBarTest : public CommandsFixture {
 protected:
  QToolButton& Button(const char* key) { return Find<QToolButton>(QLatin1String(key)); }

  void ShowAndRecordChosen() {
    RecordChosen();
    Window().Commands().Turn("Abbreviate", true);
    Show();
  }
};

TEST_F(MainToolBarTest, HasTheSpecifiedButtonsInOrderWithTheirTooltips) {
  Window();
  std::vector<std::string> keys;
  for (const QAction* action : Find<QToolBar>(u"tbToolBar"_qs).actions()) {
    if (!action->objectName().isEmpty()) {
      keys.push_back(action->objectName().toStdString());
    }
  }
  std::vector<std::string> specified_keys;
  for (const Specified& specified : SpecifiedButtons()) {
    specified_keys.emplace_back(specified.key);
    EXPECT_EQ(Button(specified.key).toolTip(), QLatin1String(specified.tool_tip));
    EXPECT_FALSE(Button(specified.key).icon().isNull()) << specified.key;
  }
  EXPECT_EQ(keys, specified_keys);
}

TEST_F(MainToolBarTest, EveryButtonCallsItsCommandAndADropDownNothing) {
  Main();
  ShowAndRecordChosen();
  for (const Specified& specified : SpecifiedButtons()) {
    SCOPED_TRACE(specified.key);
    chosen_.clear();
    QToolButton& button = Button(specified.key);
    QTest::mouseClick(&button, Qt::LeftButton, {},
                      QPoint(button.height() / 4, button.height() / 2));
    if (specified.command == kNone) {
      EXPECT_THAT(chosen_, IsEmpty());
      EXPECT_FALSE(button.defaultAction()->menu()->isVisible());
    } else {
      EXPECT_THAT(chosen_, ElementsAre(specified.command));
    }
  }
}

TEST_F(MainToolBarTest, DropDownItemsCarryTheWork) {
  Main();
  ShowAndRecordChosen();
  for (const Specified& specified : SpecifiedButtons()) {
    const QMenu* const menu = Button(specified.key).defaultAction()->menu();
    const QList<QAction*> items = menu == nullptr ? QList<QAction*>() : menu->actions();
    ASSERT_EQ(static_cast<std::size_t>(items.size()), specified.items.size()) << specified.key;
    for (std::size_t index = 0; index < specified.items.size(); ++index) {
      QAction* const item = items.at(static_cast<qsizetype>(index));
      chosen_.clear();
      item->trigger();
      EXPECT_EQ(item->text(), QLatin1String(specified.items[index].text));
      EXPECT_THAT(chosen_, ElementsAre(specified.items[index].command));
    }
  }
}

TEST_F(MainToolBarTest, ButtonNoticesThatThePointerLeftWhileItsListWasOpen) {
  Main();
  ShowAndRecordChosen();
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
  ShowAndRecordChosen();
  Tabs().tabBar()->setFocus();
  for (const Specified& specified : SpecifiedButtons()) {
    EXPECT_EQ(Button(specified.key).focusPolicy(), Qt::NoFocus);
    QTest::mouseClick(&Button(specified.key), Qt::LeftButton, {}, QPoint(8, 8));
    EXPECT_TRUE(Tabs().tabBar()->hasFocus()) << specified.key;
  }
}

TEST_F(MainToolBarTest, AScreenReaderSaysWhatEachButtonDoes) {
  Main();
  for (const Specified& specified : SpecifiedButtons()) {
    QAccessibleInterface* const heard =
        QAccessible::queryAccessibleInterface(&Button(specified.key));
    ASSERT_NE(heard, nullptr);
    EXPECT_EQ(heard->text(QAccessible::Name), QLatin1String(specified.tool_tip));
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
