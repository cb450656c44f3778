#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QTabBar>
#include <QTest>
#include <QUrl>
#include <filesystem>
#include <string>
#include <vector>

#include <SQLiteCpp/Database.h>
#include <gmock/gmock.h>

#include "desktop/main_window/main_window_fixture.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class WindowFiles : public MainWindowFixture {
 protected:
  WindowFiles() { settings_.SetEnableBeeperOn(false); }

  std::string Opened(const QString& bar) {
    return Find<DatabaseStatusBar>(bar).Panel(kPanelName).toStdString();
  }

  // The names of the recent files as the opened menu shows them.
  std::vector<std::string> Entries() {
    auto& menu = Find<QMenu>(u"mnuFileOpen"_qs);
    Q_EMIT menu.aboutToShow();
    std::vector<std::string> entries;
    for (const QAction* const action : menu.actions()) {
      if (action->objectName().startsWith(u"mnuFileOpenRecent"_qs)) {
        entries.push_back(action->text().section(u'\t', 0, 0).toStdString());
      }
    }
    return entries;
  }

  static QMimeData* Dragged(const std::vector<fs::path>& files) {
    auto* const data = new QMimeData;
    QList<QUrl> urls;
    for (const fs::path& file : files) {
      urls << QUrl::fromLocalFile(QString::fromStdString(file.string()));
    }
    data->setUrls(urls);
    return data;
  }

  // Returns whether the drop was taken. Opens what it opens.
  bool Drop(QWidget& target, const std::vector<fs::path>& files) {
    const std::unique_ptr<QMimeData> data(Dragged(files));
    const auto actions = Qt::CopyAction | Qt::MoveAction;
    QDragEnterEvent enter({2, 2}, actions, data.get(), Qt::LeftButton, {});
    QApplication::sendEvent(&target, &enter);
    if (!enter.isAccepted()) {
      return false;
    }
    QDropEvent drop({2, 2}, actions, data.get(), Qt::LeftButton, {});
    drop.setDropAction(Qt::MoveAction);
    QApplication::sendEvent(&target, &drop);
    EXPECT_EQ(drop.dropAction(), Qt::CopyAction);
    RunEvents();
    return drop.isAccepted();
  }
};

TEST_F(WindowFiles, TheTitleNamesTheOpenDatabasesAfterTheSpecifiedWords) {
  Show();
  EXPECT_EQ(Window().windowTitle(), u"VRX-2260 Transfer Data Software"_qs);
  Open(DatabaseKind::kTransaction);
  EXPECT_EQ(Window().windowTitle(), u"VRX-2260 Transfer Data Software - Y2026.TDB"_qs);
  Open(DatabaseKind::kRecipe);
  EXPECT_EQ(Window().windowTitle(), u"VRX-2260 Transfer Data Software - YARD.RDB, Y2026.TDB"_qs);
  Choose(u"mnuFileCloseTransactionDB"_qs);
  EXPECT_EQ(Window().windowTitle(), u"VRX-2260 Transfer Data Software - YARD.RDB"_qs);
}

TEST_F(WindowFiles, RecentOnesAreInFileOpenAfterTheSpecifiedEntries) {
  Show();
  EXPECT_THAT(Entries(), IsEmpty());
  EXPECT_EQ(Find<QMenu>(u"mnuFileOpen"_qs).actions().size(), 2);
  Open(DatabaseKind::kRecipe);
  Open(DatabaseKind::kTransaction);
  EXPECT_THAT(Entries(), ElementsAre("&1 YARD.RDB", "&2 Y2026.TDB"));
  const auto actions = Find<QMenu>(u"mnuFileOpen"_qs).actions();
  EXPECT_EQ(actions.at(0)->objectName(), u"mnuFileOpenRecipeDB"_qs);
  EXPECT_EQ(actions.at(1)->objectName(), u"mnuFileOpenTransactionDB"_qs);
  EXPECT_TRUE(actions.at(2)->isSeparator());
  EXPECT_EQ(actions.at(3)->toolTip().toStdString(),
            (app_folder_->DefaultAppPath() / "YARD.RDB").string());
}

TEST_F(WindowFiles, ARecentOneIsOpenedFromTheMenu) {
  Show();
  Open(DatabaseKind::kRecipe);
  Choose(u"mnuFileCloseRecipeDB"_qs);
  Entries();
  Choose(u"mnuFileOpenRecent(1)"_qs);
  RunEvents();
  EXPECT_EQ(Opened(u"sbRecipe"_qs), "YARD.RDB");
}

TEST_F(WindowFiles, AMissingRecentOneIsReportedAndLeavesTheMenu) {
  Show();
  Open(DatabaseKind::kRecipe);
  Choose(u"mnuFileCloseRecipeDB"_qs);
  fs::remove(app_folder_->DefaultAppPath() / "YARD.RDB");
  Entries();
  Choose(u"mnuFileOpenRecent(1)"_qs);
  RunEvents();
  EXPECT_THAT(LastBox().text, HasSubstr("any more"));
  EXPECT_THAT(Entries(), IsEmpty());
}

TEST_F(WindowFiles, AnAmpersandInANameIsShown) {
  Show();
  chooser_.Choose(MakeUserFile("A&B.TDB", DatabaseKind::kTransaction));
  Choose(u"mnuFileOpenTransactionDB"_qs);
  EXPECT_THAT(Entries(), ElementsAre("&1 A&&B.TDB"));
}

TEST_F(WindowFiles, TransactionFilesAndBackupsAreAmongThem) {
  Show();
  chooser_.Choose(folder_.Write(
      "day.qxt",
      "{BAT/FED},L\r\n[BAT],B,1,3,01152009,2,4,0,0;0830,0,0;1,0,0;1,0,0\r\n\r\n[FED],\r\n\r\n"));
  Choose(u"mnuFileImportTransactionFile"_qs);
  chooser_.Choose(folder_.Write("02.rbu", "{DATA_IN}\r\n"));
  Window().Tabs().SelectTab(kTabDataTransfer);
  Find<QAbstractButton>(u"cmdDownloadRecipeToKRM"_qs).click();
  Find<QAbstractButton>(u"cmdOpenRecipeBU"_qs).click();
  EXPECT_THAT(Entries(), ElementsAre("&1 02.rbu", "&2 day.qxt"));
}

TEST_F(WindowFiles, ADropOpensDatabasesAnywhereOnTheWindowAndNeverMovesThem) {
  Show();
  const fs::path recipes = MakeUserFile("DROP.RDB", DatabaseKind::kRecipe);
  const fs::path transactions = MakeUserFile("DROP.TDB", DatabaseKind::kTransaction);
  EXPECT_TRUE(Drop(Find<QPlainTextEdit>(u"txtDataWindow"_qs), {recipes}));
  EXPECT_TRUE(Drop(*Tabs().tabBar(), {transactions}));
  EXPECT_EQ(Opened(u"sbRecipe"_qs), "DROP.RDB");
  EXPECT_EQ(Opened(u"sbTrans"_qs), "DROP.TDB");
  EXPECT_EQ(Find<QPlainTextEdit>(u"txtDataWindow"_qs).toPlainText(), QString());
}

TEST_F(WindowFiles, ADroppedTransactionFileIsImportedAndABackupIsReadyToBeSent) {
  Show();
  const fs::path backup = folder_.Write("02.RBU", "{DATA_IN}\r\n[ING]");
  const fs::path day = folder_.Write(
      "day.qxt",
      "{BAT/FED},L\r\n[BAT],B,1,3,01152009,2,4,0,0;0830,0,0;1,0,0;1,0,0\r\n\r\n[FED],\r\n\r\n");
  EXPECT_TRUE(Drop(Window(), {backup}));
  EXPECT_EQ(Find<QLineEdit>(u"txtFilePath"_qs).text().toStdString(), backup.string());
  EXPECT_TRUE(Find<QWidget>(u"cmdDownloadRecipeBU"_qs).isVisible());
  EXPECT_TRUE(Drop(Window(), {day}));
  EXPECT_EQ(Tabs().currentIndex(), kTabImport);
  EXPECT_TRUE(Find<QWidget>(u"cmdImportStore"_qs).isEnabled());
}

TEST_F(WindowFiles, ADropOfAForeignFileIsReported) {
  Show();
  EXPECT_TRUE(Drop(Window(), {folder_.Write("photo.jpg", "no data of ours")}));
  EXPECT_EQ(LastBox().title, "Open File Error");
}

TEST_F(WindowFiles, ADragOfTextIsLeftToTheWidgetBelowIt) {
  Show();
  QMimeData text;
  text.setText(u"SITE"_qs);
  QDragEnterEvent enter({2, 2}, Qt::CopyAction, &text, Qt::LeftButton, {});
  QApplication::sendEvent(&Find<QWidget>(u"tbToolBar"_qs), &enter);
  EXPECT_FALSE(enter.isAccepted());
}

TEST_F(WindowFiles, FilesThatComeBeforeTheFirstActivationAreOpenedAfterTheRecentDatabases) {
  settings_.SetAutoloadRecipeDBOn(true);
  user_settings_.values = {
      {"MRU_RecipePathName", MakeUserFile("OLD.RDB", DatabaseKind::kRecipe).string()},
      {"MRU_RecipeFileName", "OLD.RDB"}};
  Main().OpenFilesLater({MakeUserFile("NEW.RDB", DatabaseKind::kRecipe)});
  RunEvents();
  EXPECT_EQ(Opened(u"sbRecipe"_qs), "");
  Show();
  EXPECT_EQ(Opened(u"sbRecipe"_qs), "NEW.RDB");
  EXPECT_THAT(Entries(), ElementsAre("&1 NEW.RDB", "&2 OLD.RDB"));
}

TEST_F(WindowFiles, FilesThatComeDuringADialogWaitForItsEnd) {
  Show();
  QDialog dialog(&Window());
  dialog.setModal(true);
  dialog.show();
  Main().OpenFilesLater({MakeUserFile("NEW.RDB", DatabaseKind::kRecipe)});
  RunEvents();
  EXPECT_EQ(Opened(u"sbRecipe"_qs), "");
  dialog.close();
  EXPECT_TRUE(QTest::qWaitFor([&] { return Opened(u"sbRecipe"_qs) == "NEW.RDB"; }));
}

class TabKeys : public MainWindowFixture {
 protected:
  TabKeys() { settings_.SetEnableBeeperOn(false); }
};

TEST_F(TabKeys, AltAndADigitChooseATabThatIsOn) {
  Open(DatabaseKind::kRecipe);
  Show();
  for (const int tab : {kTabPens, kTabIngredients, kTabImport, kTabRecipes, kTabDataTransfer}) {
    QTest::keyClick(&Window(), static_cast<Qt::Key>(Qt::Key_1 + tab), Qt::AltModifier);
    EXPECT_EQ(Tabs().currentIndex(), tab);
  }
  QTest::keyClick(&Window(), Qt::Key_5, Qt::AltModifier);
  EXPECT_EQ(Tabs().currentIndex(), kTabDataTransfer);
  EXPECT_FALSE(Tabs().isTabEnabled(kTabBatchedFed));
}

TEST_F(TabKeys, F5ReadsTheDatabaseAgainAndKeepsTheRecord) {
  Open(DatabaseKind::kRecipe);
  Show();
  Window().ChooseTab(kTabIngredients);
  auto& ids = Find<QComboBox>(u"cboIngID"_qs);
  ids.setCurrentIndex(7);
  Q_EMIT ids.activated(7);
  SQLite::Database(Main().Databases().Bound(DatabaseKind::kRecipe).path, SQLite::OPEN_READWRITE)
      .exec("UPDATE Ingredient SET Name = 'FRESH', Description = 'Fresh' WHERE ID = 7");
  QTest::keyClick(&Window(), Qt::Key_F5);
  EXPECT_EQ(Find<QLineEdit>(u"txtIngName"_qs).text(), u"FRESH"_qs);
  EXPECT_EQ(Text(u"lblRecordNumber"_qs), u"7"_qs);
  EXPECT_EQ(Tabs().currentIndex(), kTabIngredients);
}

}  // namespace
}  // namespace vrx::testing
