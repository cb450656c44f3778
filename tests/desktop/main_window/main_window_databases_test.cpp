#include <QTabBar>
#include <QTest>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "desktop/main_window/main_window_fixture.h"
#include "desktop/main_window/status_bar.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;

class MainWindowDatabasesTest : public MainWindowFixture {
 protected:
  std::vector<std::string> Panels(const QString& bar) {
    std::vector<std::string> panels;
    for (int panel = 1; panel <= DatabaseStatusBar::kPanelCount; ++panel) {
      panels.push_back(Find<DatabaseStatusBar>(bar).Panel(panel).toStdString());
    }
    return panels;
  }
  std::vector<std::string> PanelTips(const QString& bar) {
    std::vector<std::string> tips;
    for (int panel = 1; panel <= DatabaseStatusBar::kPanelCount; ++panel) {
      tips.push_back(Find<QLabel>(u"%1.Panels(%2)"_qs.arg(bar).arg(panel)).toolTip().toStdString());
    }
    return tips;
  }
  void ExpectOn(std::initializer_list<const char*> names, bool on) {
    for (const char* const name : names) {
      EXPECT_EQ(On(QLatin1String(name)), on) << name;
    }
  }
  void AskToPrint() {
    Window().SetHandler(MainCommand::kPrint, [] {});
  }
};

TEST_F(MainWindowDatabasesTest, TheStatusBarsHaveTheSpecifiedPanels) {
  Main();
  EXPECT_THAT(Panels(u"sbRecipe"_qs),
              ElementsAre("Recipe dB:", "", "Units:", "", "Created:", "", "Modified:", ""));
  EXPECT_THAT(Panels(u"sbTrans"_qs),
              ElementsAre("Transaction dB:", "", "Units:", "", "Created:", "", "Modified:", ""));
  EXPECT_THAT(
      PanelTips(u"sbRecipe"_qs),
      ElementsAre("", "Recipe Database Filename", "", "Recipe Database Weight Units", "",
                  "Recipe Database Creation Date", "", "Recipe Database Last Modified Date"));
  EXPECT_THAT(PanelTips(u"sbTrans"_qs), ElementsAre("", "Transaction Database Filename", "",
                                                    "Transaction Database Weight Units", "",
                                                    "Transaction Database Creation Date", "",
                                                    "Transaction Database Last Modified Date"));
}

TEST_F(MainWindowDatabasesTest, WithBothClosedNothingCanBeClosedOrSaved) {
  Main();
  ExpectOn(
      {"mnuFileClose", "mnuFileSave", "mnuFileSaveAs", "Save", "mnuFileCloseRecipeDB",
       "mnuFileCloseTransactionDB", "mnuFileSaveRecipeDB", "mnuFileSaveTransactionDB",
       "mnuFileSaveAsRecipeDB", "mnuFileSaveAsTransactionDB", "Save Recipe", "Save Transaction",
       "mnuEditIngredient", "mnuEditRecipe", "mnuEditPen", "mnuViewTransactionFile"},
      false);
  EXPECT_THAT(TabsOn(), ElementsAre(kTabDataTransfer, kTabImport));
}

TEST_F(MainWindowDatabasesTest, WithTheTransactionDatabaseAloneSaveIsOnForItsItemOnly) {
  Open(DatabaseKind::kTransaction);
  ExpectOn({"mnuFileSave", "Save", "Save Transaction", "mnuFileClose", "mnuFileSaveAs",
            "mnuViewTransactionFile"},
           true);
  ExpectOn({"Save Recipe", "mnuFileSaveRecipeDB", "mnuFileCloseRecipeDB", "mnuEditRecipe"}, false);
  EXPECT_THAT(TabsOn(),
              ElementsAre(kTabDataTransfer, kTabBatchedFed, kTabImport, kTabExport, kTabInsight));
  EXPECT_EQ(Tabs().currentIndex(), kTabBatchedFed);
}

TEST_F(MainWindowDatabasesTest, WithTheRecipeDatabaseAloneTheRecordTabsCanBeChosen) {
  Open(DatabaseKind::kRecipe);
  ExpectOn(
      {"mnuFileSave", "Save", "Save Recipe", "mnuEditIngredient", "mnuEditRecipe", "mnuEditPen"},
      true);
  ExpectOn({"Save Transaction", "mnuViewTransactionFile"}, false);
  EXPECT_THAT(TabsOn(),
              ElementsAre(kTabIngredients, kTabRecipes, kTabPens, kTabDataTransfer, kTabImport));
}

TEST_F(MainWindowDatabasesTest, AnOpenedDatabaseShowsInItsStatusBarAndGoesWithTheClose) {
  Open(DatabaseKind::kRecipe);
  EXPECT_THAT(Panels(u"sbRecipe"_qs), ElementsAre("Recipe dB:", "YARD.RDB", "Units:", "LB",
                                                  "Created:", "1/5/2026", "Modified:", ""));
  EXPECT_EQ(Text(u"lblDatabaseUoM"_qs), u"LB"_qs);
  Choose(u"mnuFileCloseRecipeDB"_qs);
  EXPECT_THAT(Panels(u"sbRecipe"_qs),
              ElementsAre("Recipe dB:", "", "Units:", "", "Created:", "", "Modified:", ""));
  EXPECT_EQ(Tabs().currentIndex(), kTabDataTransfer);
}

TEST_F(MainWindowDatabasesTest, ThePanelsOfBothBarsAreAligned) {
  Show();
  for (int panel = 1; panel <= DatabaseStatusBar::kPanelCount; ++panel) {
    const QRect above = Find<QLabel>(u"sbRecipe.Panels(%1)"_qs.arg(panel)).geometry();
    const QRect below = Find<QLabel>(u"sbTrans.Panels(%1)"_qs.arg(panel)).geometry();
    EXPECT_EQ(above.left(), below.left()) << panel;
    EXPECT_EQ(above.width(), below.width()) << panel;
  }
}

TEST_F(MainWindowDatabasesTest, ANewDatabaseIsMadeFromTheToolbar) {
  Main();
  chooser_.Choose(app_folder_->DefaultAppPath() / "NEW.RDB");
  Choose(u"New Recipe"_qs);
  EXPECT_EQ(chooser_.dialogs.back().title, "Create New Recipe Database File");
  EXPECT_EQ(Panels(u"sbRecipe"_qs)[1], "NEW.RDB");
  EXPECT_EQ(Tabs().currentIndex(), kTabIngredients);
  chooser_.Choose(app_folder_->DefaultAppPath() / "NEW.TDB");
  Choose(u"New Transaction"_qs);
  EXPECT_EQ(chooser_.dialogs.back().title, "Create New Transaction Database File");
  EXPECT_EQ(Panels(u"sbTrans"_qs)[1], "NEW.TDB");
  EXPECT_EQ(Tabs().currentIndex(), kTabBatchedFed);
  EXPECT_FALSE(operator_.busy);
}

// Each command as the menu and as the toolbar have it, by the dialog that it shows.
TEST_F(MainWindowDatabasesTest, EveryDatabaseCommandRunsItsFlow) {
  Open(DatabaseKind::kRecipe);
  Open(DatabaseKind::kTransaction);
  const std::vector<std::pair<const char*, const char*>> expected{
      {"mnuFileSaveAsRecipeDB", "Save Recipe Database As..."},
      {"mnuFileSaveAsTransactionDB", "Save Transaction Database As..."},
      {"mnuFileNewTransactionDB", "Create New Transaction Database File"},
      {"New Transaction", "Create New Transaction Database File"},
      {"mnuFileOpenTransactionDB", "Open Transaction Database File"},
      {"Open Transaction", "Open Transaction Database File"},
      {"mnuFileNewRecipeDB", "Create New Recipe Database File"},
      {"New Recipe", "Create New Recipe Database File"},
      {"mnuFileOpenRecipeDB", "Open Recipe Database File"},
      {"Open Recipe", "Open Recipe Database File"},
  };
  for (const auto& [name, title] : expected) {
    chooser_.dialogs.clear();
    chooser_.Cancel();
    Choose(QLatin1String(name));
    ASSERT_EQ(chooser_.dialogs.size(), 1U) << name;
    EXPECT_EQ(chooser_.dialogs[0].title, title) << name;
  }
}

TEST_F(MainWindowDatabasesTest, SaveClosesAndOpensTheSameFileAgain) {
  for (const QString& item : {u"mnuFileSaveRecipeDB"_qs, u"Save Recipe"_qs}) {
    if (item == u"mnuFileSaveRecipeDB"_qs) {
      Open(DatabaseKind::kRecipe);
    }
    Window().SetStatusPanel(DatabaseKind::kRecipe, kPanelModified, "stale");
    Choose(item);
    EXPECT_EQ(Panels(u"sbRecipe"_qs)[1], "YARD.RDB");
    EXPECT_EQ(Panels(u"sbRecipe"_qs)[7], "");
  }
  Open(DatabaseKind::kTransaction);
  Window().SetStatusPanel(DatabaseKind::kTransaction, kPanelModified, "stale");
  Choose(u"Save Transaction"_qs);
  EXPECT_EQ(Panels(u"sbTrans"_qs)[7], "");
}

TEST_F(MainWindowDatabasesTest, ACanceledOpenLeavesTheCommandsAndTabsOfBothOn) {
  Open(DatabaseKind::kRecipe);
  Open(DatabaseKind::kTransaction);
  chooser_.Cancel();
  Choose(u"Open Recipe"_qs);
  ExpectOn({"mnuFileSave", "mnuFileCloseRecipeDB", "mnuFileCloseTransactionDB"}, true);
  EXPECT_EQ(TabsOn().size(), static_cast<std::size_t>(kTabCount));
}

TEST_F(MainWindowDatabasesTest, ARecipeDatabaseOpenedLaterLeavesTheTransactionTabsOn) {
  Open(DatabaseKind::kTransaction);
  Open(DatabaseKind::kRecipe);
  EXPECT_EQ(TabsOn().size(), static_cast<std::size_t>(kTabCount));
}

TEST_F(MainWindowDatabasesTest, PrintIsOnForTheCopyThatASaveAsHasOpened) {
  Open(DatabaseKind::kRecipe);
  AskToPrint();
  chooser_.Choose(app_folder_->DefaultAppPath() / "COPY.RDB");
  Choose(u"mnuFileSaveAsRecipeDB"_qs);
  Window().Tabs().SelectTab(kTabPens);
  ExpectOn({"mnuFilePrint", "mnuFilePrintPreview", "Print"}, true);
}

TEST_F(MainWindowDatabasesTest, ARecipeDatabaseThatMayNotBeWrittenClosesWhatWrites) {
  BoundDatabase bound = BindUserDatabase(MakeUserFile("PROT.RDB", DatabaseKind::kRecipe),
                                         std::chrono::milliseconds{20});
  bound.read_only_note = "it is write-protected";
  Open(DatabaseKind::kRecipe);
  Show();
  EXPECT_TRUE(Find<QWidget>(u"cmdDeleteIng"_qs).isEnabled());
  Window().Rebind(DatabaseKind::kRecipe, bound);
  for (const char* const box : {"txtIngName", "txtPenFeed", "txtRecName", "txtRecHeadCount"}) {
    EXPECT_TRUE(Find<QLineEdit>(QLatin1String(box)).isReadOnly()) << box;
  }
  for (const char* const control : {"chkIngHandAdd", "lstRecBatchType", "lstAdjustBatchTotal",
                                    "cmdDeleteIng", "UpDown1", "cmdAction(0)", "cmdAction(2)"}) {
    EXPECT_FALSE(Find<QWidget>(QLatin1String(control)).isEnabled()) << control;
  }
  EXPECT_TRUE(Find<QWidget>(u"cboRecID"_qs).isEnabled());
  Window().Rebind(DatabaseKind::kRecipe, Main().Databases().Bound(DatabaseKind::kRecipe));
  EXPECT_FALSE(Find<QLineEdit>(u"txtRecName"_qs).isReadOnly());
  EXPECT_TRUE(Find<QWidget>(u"cmdAction(2)"_qs).isEnabled());
  EXPECT_TRUE(Find<QWidget>(u"lstRecBatchType"_qs).isEnabled());
}

TEST_F(MainWindowDatabasesTest, EditAndViewGoToTheirTabs) {
  Open(DatabaseKind::kRecipe);
  Open(DatabaseKind::kTransaction);
  const std::vector<std::pair<const char*, int>> expected{
      {"mnuEditIngredient", kTabIngredients},
      {"mnuEditRecipe", kTabRecipes},
      {"mnuEditPen", kTabPens},
      {"mnuViewTransactionFile", kTabBatchedFed},
      {"mnuTransferUpload", kTabDataTransfer},
      {"mnuEditPen", kTabPens},
      {"mnuTransferDownload", kTabDataTransfer}};
  for (const auto& [name, tab] : expected) {
    Choose(QLatin1String(name));
    EXPECT_EQ(Tabs().currentIndex(), tab) << name;
  }
}

TEST_F(MainWindowDatabasesTest, TransferCommandsGiveTheirButtonTheFocus) {
  auto& upload = Find<QPushButton>(u"cmdUploadDataFromKRM"_qs);
  auto& download = Find<QPushButton>(u"cmdDownloadRecipeToKRM"_qs);
  Show();
  Choose(u"mnuTransferUpload"_qs);
  EXPECT_TRUE(upload.hasFocus());
  Choose(u"mnuTransferDownload"_qs);
  EXPECT_TRUE(download.hasFocus());
  upload.setEnabled(false);
  Choose(u"mnuTransferUpload"_qs);
  EXPECT_TRUE(download.hasFocus());
}

TEST_F(MainWindowDatabasesTest, PrintIsOffOnTheDataTransferTabWhateverIsOpen) {
  Open(DatabaseKind::kRecipe);
  Open(DatabaseKind::kTransaction);
  AskToPrint();
  Window().Tabs().SelectTab(kTabDataTransfer);
  ExpectOn({"mnuFilePrint", "mnuFilePrintPreview", "Print"}, false);
}

TEST_F(MainWindowDatabasesTest, PrintIsOnOnTheTabsOfAnOpenDatabase) {
  Open(DatabaseKind::kRecipe);
  AskToPrint();
  for (const int tab : {kTabIngredients, kTabRecipes, kTabPens}) {
    Window().Tabs().SelectTab(tab);
    ExpectOn({"mnuFilePrint", "mnuFilePrintPreview", "Print"}, true);
  }
  Window().Tabs().SelectTab(kTabImport);
  ExpectOn({"mnuFilePrint", "mnuFilePrintPreview", "Print"},
           false);  // no transaction file is loaded
  Open(DatabaseKind::kTransaction);
  ExpectOn({"mnuFilePrint", "mnuFilePrintPreview", "Print"}, true);
}

TEST_F(MainWindowDatabasesTest, PrintFollowsAClickOnATabAsWell) {
  Open(DatabaseKind::kRecipe);
  AskToPrint();
  Show();
  Window().Tabs().SelectTab(kTabDataTransfer);
  QTabBar& strip = *Tabs().tabBar();
  QTest::mouseClick(&strip, Qt::LeftButton, {}, strip.tabRect(kTabPens).center());
  ExpectOn({"mnuFilePrint", "mnuFilePrintPreview", "Print"}, true);
  QTest::mouseClick(&strip, Qt::LeftButton, {}, strip.tabRect(kTabDataTransfer).center());
  ExpectOn({"mnuFilePrint", "mnuFilePrintPreview", "Print"}, false);
}

TEST_F(MainWindowDatabasesTest, AClickOnATabAsksAboutTheUnitOfTheFile) {
  chooser_.Choose(MakeUserFile("METRIC.RDB", DatabaseKind::kRecipe, "KG"));
  Show();
  Choose(u"mnuFileOpenRecipeDB"_qs);
  ASSERT_EQ(operator_.boxes.size(), 1U);
  EXPECT_EQ(operator_.boxes[0].title, "Weight Units Error");
  operator_.answers = {Answer::kYes};
  QTabBar& strip = *Tabs().tabBar();
  strip.clearFocus();
  QTest::mouseClick(&strip, Qt::LeftButton, {}, strip.tabRect(kTabPens).center());
  ASSERT_EQ(operator_.boxes.size(), 2U);
  EXPECT_EQ(operator_.boxes[1].text,
            "The weights of METRIC.RDB are labelled KG; this system works in LB. Label them LB "
            "from now on? No figure is converted.");
  EXPECT_EQ(Panels(u"sbRecipe"_qs)[3], "LB");
  EXPECT_EQ(Text(u"lblDatabaseUoM"_qs), u"LB"_qs);
}

TEST_F(MainWindowDatabasesTest, ALongFileNameIsShortenedOnTheScreenOnly) {
  Show();
  const QString name(200, u'W');
  Window().SetStatusPanel(DatabaseKind::kRecipe, kPanelName, name.toStdString());
  RunEvents();
  EXPECT_EQ(Window().width(), 1024);
  EXPECT_EQ(Panels(u"sbRecipe"_qs)[1], name.toStdString());
}

}  // namespace
}  // namespace vrx::testing
