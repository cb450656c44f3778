#include "desktop/app/main_form.h"

#include <QAccessible>
#include <QCloseEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QTabBar>
#include <QTest>
#include <QVBoxLayout>
#include <algorithm>

#include <gmock/gmock.h>

#include "desktop/main_window/main_window_fixture.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class MainFormTest : public MainWindowFixture {
 protected:
  // Both options on, and the files of the last run.
  void KeepRecent() {
    settings_.SetAutoloadRecipeDBOn(true);
    settings_.SetAutoloadTransDBOn(true);
    user_settings_.values = {
        {"MRU_RecipePathName", MakeUserFile("YARD.RDB", DatabaseKind::kRecipe).string()},
        {"MRU_RecipeFileName", "YARD.RDB"},
        {"MRU_TransPathName", MakeUserFile("Y2026.TDB", DatabaseKind::kTransaction).string()},
        {"MRU_TransFileName", "Y2026.TDB"}};
  }
  std::string Opened(const QString& bar) {
    return Find<DatabaseStatusBar>(bar).Panel(kPanelName).toStdString();
  }
};

TEST_F(MainFormTest, LoadOpensNothing) {
  KeepRecent();
  Main();
  EXPECT_EQ(Opened(u"sbRecipe"_qs), "");
  EXPECT_EQ(Opened(u"sbTrans"_qs), "");
}

TEST_F(MainFormTest, TheFirstActivateOpensTheDatabasesOfTheLastRun) {
  KeepRecent();
  Show();
  EXPECT_EQ(Opened(u"sbRecipe"_qs), "YARD.RDB");
  EXPECT_EQ(Opened(u"sbTrans"_qs), "Y2026.TDB");
  EXPECT_EQ(Tabs().currentIndex(), kTabBatchedFed);
}

TEST_F(MainFormTest, ALaterActivateOpensNothing) {
  KeepRecent();
  Show();
  Choose(u"mnuFileCloseRecipeDB"_qs);
  QEvent again(QEvent::WindowActivate);
  QApplication::sendEvent(&Window(), &again);
  RunEvents();
  EXPECT_EQ(Opened(u"sbRecipe"_qs), "");
}

TEST_F(MainFormTest, ADeletedRecentFileIsNotOpenedAndItsNameStays) {
  KeepRecent();
  std::filesystem::remove(app_folder_->DefaultAppPath() / "YARD.RDB");
  Show();
  EXPECT_EQ(Opened(u"sbRecipe"_qs), "");
  EXPECT_EQ(Opened(u"sbTrans"_qs), "Y2026.TDB");
  EXPECT_THAT(operator_.boxes, IsEmpty());
  EXPECT_EQ(Main().Recent(DatabaseKind::kRecipe).name, "YARD.RDB");
}

TEST_F(MainFormTest, UnreadableSettingsAreReportedOnLoad) {
  std::filesystem::remove(app_folder_->IniFilePath());
  std::filesystem::create_directory(app_folder_->IniFilePath());
  settings_.ReadIniSettings(*ini_);
  Main();
  ASSERT_EQ(operator_.boxes.size(), 1U);
  EXPECT_EQ(operator_.boxes[0].icon, Icon::kWarning);
  EXPECT_EQ(operator_.boxes[0].title, "INI File Error");
  EXPECT_EQ(operator_.boxes[0].text,
            "Unable to read some or all of the application settings from the applications INI "
            "file. Please check all settings.");
}

TEST_F(MainFormTest, TheFirstPaintBeepsWhereTheBeeperIsOn) {
  settings_.SetEnableBeeperOn(true);
  Show();
  EXPECT_EQ(operator_.beeps, 1);
  Window().repaint();
  EXPECT_EQ(operator_.beeps, 1);
}

TEST_F(MainFormTest, NoPaintBeepsWhereTheBeeperIsOff) {
  settings_.SetEnableBeeperOn(false);
  Show();
  EXPECT_EQ(operator_.beeps, 0);
}

TEST_F(MainFormTest, APaintShowsTheSystemsUnit) {
  Show();
  settings_.SetSystemUnits("KG");
  Window().repaint();
  EXPECT_EQ(Text(u"lblSystemUoM"_qs), u"KG"_qs);
}

TEST_F(MainFormTest, EnterGoesOnToTheNextField) {
  auto* const page = new MainTabPage;
  auto* const column = new QVBoxLayout(page);
  auto* const name = new QLineEdit;
  auto* const save = new QPushButton;
  auto* const last = new QLineEdit;
  for (QWidget* field :
       {static_cast<QWidget*>(name), static_cast<QWidget*>(save), static_cast<QWidget*>(last)}) {
    column->addWidget(field);
  }
  int saved = 0;
  QObject::connect(save, &QPushButton::clicked, [&] { ++saved; });
  ReplacePage(kTabDataTransfer, page);
  Show();
  name->setFocus();
  QTest::keyClick(name, Qt::Key_Return);
  EXPECT_TRUE(save->hasFocus());
  QTest::keyClick(save, Qt::Key_Enter, Qt::KeypadModifier);
  EXPECT_TRUE(last->hasFocus());
  EXPECT_EQ(saved, 0);
  EXPECT_EQ(name->text(), QString());
}

TEST_F(MainFormTest, TheCloseBoxAndFileExitGiveTheirExitReasons) {
  Show();
  QCloseEvent close;
  QApplication::sendEvent(&Window(), &close);
  EXPECT_FALSE(close.isAccepted());
  EXPECT_TRUE(Window().isVisible());
  Choose(u"mnuFileExit"_qs);
  EXPECT_THAT(exits_, ElementsAre(ExitReason::kCloseBox, ExitReason::kFileExit));
}

TEST_F(MainFormTest, ThePlaceIsInTwipsAndNothingWhileMinimised) {
  Show();
  const std::optional<WindowPlace> place = Main().Place();
  ASSERT_TRUE(place.has_value());
  EXPECT_EQ(place->width, Window().frameGeometry().width() * 15);
  EXPECT_EQ(place->height, Window().frameGeometry().height() * 15);
  Window().showMinimized();
  EXPECT_FALSE(Main().Place().has_value());
}

TEST_F(MainFormTest, TheEndReleasesBothDatabases) {
  Open(DatabaseKind::kRecipe);
  Open(DatabaseKind::kTransaction);
  EXPECT_EQ(Main().Recent(DatabaseKind::kRecipe).name, "YARD.RDB");
  Main().CloseDatabase(DatabaseKind::kRecipe);
  Main().CloseDatabase(DatabaseKind::kTransaction);
  Main().ReleaseDataControls();
  EXPECT_EQ(Main().Databases().Bound(DatabaseKind::kRecipe).connection, nullptr);
  EXPECT_EQ(Main().Databases().Bound(DatabaseKind::kTransaction).connection, nullptr);
  EXPECT_EQ(Main().Recent(DatabaseKind::kRecipe).name, "");
}

TEST_F(MainFormTest, TheEndClosesOtherFormsAndTakesTheWindowFromTheScreen) {
  Show();
  QWidget other;
  other.show();
  Main().UnloadOpenForms();
  EXPECT_FALSE(other.isVisible());
  EXPECT_TRUE(Window().isVisible());
  Main().Unload();
  EXPECT_FALSE(Window().isVisible());
}

TEST_F(MainFormTest, AClosingProgramEndsAnOpenThatWaits) {
  const std::filesystem::path file = MakeUserFile("YARD.RDB", DatabaseKind::kRecipe);
  chooser_.Choose(file);
  pump_.After(Milliseconds{100}, [this] { pump_.closing = true; });
  Main();
  Choose(u"mnuFileOpenRecipeDB"_qs);
  EXPECT_LT(pump_.Now(), Milliseconds{500});
  EXPECT_EQ(Opened(u"sbRecipe"_qs), "");
}

// What can be reached by the Tab key, from the strip on.
TEST_F(MainFormTest, TheTabKeyGoesThroughTheWindowInTheOrderOfTheScreen) {
  Open(DatabaseKind::kRecipe);
  Show();
  Window().Tabs().SelectTab(kTabIngredients);
  Window().Panels().PicAction().SetHandler([](int) {});
  Window().Panels().PicNavigate().SetHandler([](int) {});
  Tabs().tabBar()->setFocus();
  std::vector<std::string> order;
  for (int step = 0; step < 7; ++step) {
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    order.push_back(QApplication::focusWidget()->objectName().toStdString());
  }
  EXPECT_THAT(order, ElementsAre("cmdAction(0)", "cmdAction(1)", "cmdAction(2)", "cmdNavigate(0)",
                                 "cmdNavigate(1)", "cmdNavigate(2)", "cmdNavigate(3)"));
}

TEST_F(MainFormTest, EverythingThatTakesTheFocusHasAName) {
  Main();
  // The toolkit's own, out of reach of the Tab key.
  const auto in_month_bar = [&](QWidget* widget) {
    const auto bars = Window().findChildren<QWidget*>(u"qt_calendar_navigationbar"_qs);
    return std::any_of(bars.begin(), bars.end(),
                       [&](QWidget* bar) { return bar->isAncestorOf(widget); });
  };
  for (QWidget* widget : Window().findChildren<QWidget*>()) {
    // The list that a box drops down is a window, and bears the name of its box.
    const bool dropped = widget->window() != &Window();
    if (widget->focusPolicy() != Qt::NoFocus && !dropped && !in_month_bar(widget)) {
      QAccessibleInterface* const heard = QAccessible::queryAccessibleInterface(widget);
      ASSERT_NE(heard, nullptr);
      EXPECT_FALSE(heard->text(QAccessible::Name).isEmpty())
          << widget->metaObject()->className() << " " << widget->objectName().toStdString();
    }
  }
}

TEST_F(MainFormTest, AScreenReaderReadsTheTextsOfTheLabels) {
  Main();
  Window().SetStatusLine(u"Upload complete!"_qs);
  Window().Panels().ShowRecordNumber(7);
  Window().SetStatusPanel(DatabaseKind::kRecipe, kPanelName, "YARD.RDB");
  const std::vector<std::pair<QString, QString>> texts{
      {u"lblStatusWindow"_qs, u"Upload complete!"_qs},
      {u"lblRecordNumber"_qs, u"7"_qs},
      {u"sbRecipe.Panels(2)"_qs, u"YARD.RDB"_qs}};
  for (const auto& [name, text] : texts) {
    QAccessibleInterface* const heard = QAccessible::queryAccessibleInterface(&Find<QLabel>(name));
    EXPECT_EQ(heard->text(QAccessible::Name), text);
    EXPECT_FALSE(heard->text(QAccessible::Description).isEmpty());
  }
}

}  // namespace
}  // namespace vrx::testing
