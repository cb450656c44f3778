#include "desktop/transfer/import_page.h"

#include <QHeaderView>
#include <QPushButton>
#include <QStyledItemDelegate>
#include <QTest>

#include <SQLiteCpp/Database.h>
#include <gmock/gmock.h>

#include "database/bound_database.h"
#include "database/records.h"
#include "desktop/main_window/main_window_fixture.h"
#include "exchange/imported_data.h"
#include "support/boxes.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::Ge;
using ::testing::IsSupersetOf;

// A batch of two ingredients that feeds pen 12: three rows.
constexpr const char* kImportedFile =
    "{BAT/FED},L\r\n"
    "[BAT],B,1,3,01152009,2,4,7,0,0,0;0830,0835,0,0,0;1000.0,500.0,0,0,0;998.0,503.5,0,0,0\r\n"
    "\r\n"
    "[FED],B,1,12,2,0915,01152009,750.0,748.5\r\n"
    "\r\n";

class ImportPageTest : public MainWindowFixture {
 protected:
  ImportPageTest() { settings_.SetEnableBeeperOn(false); }

  void Click(const QString& button) {
    QTest::mouseClick(&Find<QAbstractButton>(button), Qt::LeftButton);
  }
  void ImportText(const std::string& text, const std::string& name = "day.qxt") {
    chooser_.Choose(folder_.Write(name, text));
    Choose(u"mnuFileImportTransactionFile"_qs);
  }
  // A recipe database with two ingredients in use.
  void OpenRecipes() {
    const std::filesystem::path path = MakeUserFile("YARD.RDB", DatabaseKind::kRecipe);
    {
      SQLite::Database database(path.string(), SQLite::OPEN_READWRITE);
      WriteIngredient(database, {.id = 4, .name = "Corn", .description = "Corn Rolled"});
      WriteIngredient(database, {.id = 7, .name = "HAY", .description = "Hay"});
    }
    chooser_.Choose(path);
    Main();
    Choose(u"mnuFileOpenRecipeDB"_qs);
  }
  ImportGrid& Grid() { return Find<ImportGrid>(u"grdIMPORT"_qs); }
  std::string Cell(int row, int column) {
    return Grid().model()->index(row - 1, column - 1).data().toString().toStdString();
  }
  std::string Caption(int column) {
    return Grid().model()->headerData(column - 1, Qt::Horizontal).toString().toStdString();
  }
  std::vector<std::string> VisibleCaptions() {
    std::vector<std::string> captions;
    for (int column = 1; column <= kImportColumns; ++column) {
      if (!Grid().isColumnHidden(column - 1)) {
        captions.push_back(Caption(column));
      }
    }
    return captions;
  }
  int StoredRows() {
    SQLite::Database database(Main().Databases().Bound(DatabaseKind::kTransaction).path.string());
    return database.execAndGet("SELECT COUNT(*) FROM Transactions").getInt();
  }
  std::vector<int> StoredNumbers() {
    SQLite::Database database(Main().Databases().Bound(DatabaseKind::kTransaction).path.string());
    SQLite::Statement numbers(database, "SELECT \"Transaction\" FROM Transactions ORDER BY rowid");
    std::vector<int> stored;
    while (numbers.executeStep()) {
      stored.push_back(numbers.getColumn(0).getInt());
    }
    return stored;
  }
  // All that can be stored is there.
  void ShowWithBothDatabases(const std::string& file) {
    OpenRecipes();
    Open(DatabaseKind::kTransaction);
    Show();
    ImportText(file);
  }
  static std::string InKilograms() {
    std::string file = kImportedFile;
    return file.replace(file.find(",L"), 2, ",K");
  }
  void IsTheQuestionOfUnits() {
    EXPECT_THAT(LastBox(), IsBox(Icon::kCritical, "Weight Units Error",
                                 "The units-of-measure of the imported transaction file is not "
                                 "the same as the transaction database.\r\n\r\n"
                                 "Storing the current transactions will result in "
                                 "incorrect weight totals in the transaction database."
                                 "Do you wish to continue?",
                                 Buttons::kOkCancel));
  }
};

TEST_F(ImportPageTest, BeginsWithOneEmptyRowOf112Columns) {
  Main();
  EXPECT_EQ(Grid().model()->columnCount(), 112);
  EXPECT_EQ(Grid().model()->rowCount(), 1);
  EXPECT_FALSE(Grid().model()->data({}).isValid());  // as a copy to the clipboard asks
  EXPECT_EQ(Cell(1, 1), "");
  EXPECT_EQ(Caption(1), "Transaction");
  EXPECT_EQ(Caption(12), "Ing% Of Batch");
  EXPECT_FALSE(Find<QPushButton>(u"cmdImportStore"_qs).isEnabled());
}

TEST_F(ImportPageTest, EntersEmptyWithItsButtonsAndProgress) {
  Show();
  Window().Tabs().SelectTab(kTabImport);
  EXPECT_TRUE(Find<QWidget>(u"cmdImportFile"_qs).isVisible());
  EXPECT_TRUE(Find<QWidget>(u"cmdImportStore"_qs).isVisible());
  EXPECT_TRUE(Find<QWidget>(u"picImportProgress"_qs).isVisible());
  EXPECT_TRUE(Find<QWidget>(u"chkImpFitPage"_qs).isVisible());
  for (const QString& label : {u"lblProgressMsg"_qs, u"lblTransFilename"_qs, u"lblTransUoM"_qs,
                               u"lblRecords"_qs, u"lblTransactions"_qs}) {
    EXPECT_EQ(Text(label), QString());
  }
  EXPECT_EQ(Find<QProgressBar>(u"prgImport"_qs).value(), 0);
}

TEST_F(ImportPageTest, TheProgressShowsAsItsOptionSays) {
  settings_.SetShowImportProgressOn(false);
  Show();
  Window().Tabs().SelectTab(kTabImport);
  EXPECT_FALSE(Find<QWidget>(u"picImportProgress"_qs).isVisible());
  settings_.SetShowImportProgressOn(true);
  Grid().setFocus();
  QTest::mouseClick(Tabs().tabBar(), Qt::LeftButton, {},
                    Tabs().tabBar()->tabRect(kTabImport).center());
  EXPECT_TRUE(Find<QWidget>(u"picImportProgress"_qs).isVisible());
}

TEST_F(ImportPageTest, TheMenuImportsAFileAndShowsItsFacts) {
  Show();
  ImportText(kImportedFile);
  EXPECT_EQ(chooser_.dialogs.back().title, "Import Transaction File");
  EXPECT_EQ(Tabs().currentIndex(), kTabImport);
  EXPECT_EQ(Text(u"lblTransFilename"_qs), u"DAY.QXT"_qs);
  EXPECT_EQ(Text(u"lblTransUoM"_qs), u"LB"_qs);
  EXPECT_EQ(Text(u"lblRecords"_qs), u"3"_qs);
  EXPECT_EQ(Text(u"lblTransactions"_qs), u"1"_qs);
  EXPECT_EQ(Grid().model()->rowCount(), 3);
  EXPECT_EQ(Cell(1, kImportedType), "BATCH");
  EXPECT_EQ(Cell(2, kImportedActualBatch), "503.5");
  EXPECT_EQ(Cell(3, kImportedType), "FEED");
  EXPECT_EQ(Cell(3, kImportedPenID), "12");
  EXPECT_TRUE(Find<QPushButton>(u"cmdImportStore"_qs).isEnabled());
  EXPECT_TRUE(Find<QPushButton>(u"cmdImportStore"_qs).hasFocus());
  EXPECT_TRUE(Window().Commands().On("mnuFilePrint"));
}

TEST_F(ImportPageTest, CanceledItChangesNothing) {
  Show();
  chooser_.Cancel();
  Window().Tabs().SelectTab(kTabImport);
  Click(u"cmdImportFile"_qs);
  EXPECT_EQ(Grid().model()->rowCount(), 1);
  EXPECT_FALSE(Window().Commands().On("mnuFilePrint"));
  EXPECT_TRUE(operator_.boxes.empty());
}

TEST_F(ImportPageTest, TextsOfTheFileAreShownInTheirOwnCharacters) {
  Main();
  std::string file = kImportedFile;
  file.replace(file.find("998.0"), 5,
               "9\xE9"
               "8.0");
  ImportText(file);
  EXPECT_EQ(Cell(1, kImportedActualBatch),
            "9\xC3\xA9"
            "8.0");
}

TEST_F(ImportPageTest, NoIngredientColumnShowsWithoutARecipeDatabase) {
  Main();
  ImportText(kImportedFile);
  EXPECT_EQ(VisibleCaptions().size(), 12U);
}

TEST_F(ImportPageTest, IngredientColumnsBearTheNamesOfTheOpenRecipeDatabase) {
  OpenRecipes();
  Find<QCheckBox>(u"chkShowActiveIngsOnly"_qs).setChecked(true);
  ImportText(kImportedFile);
  std::vector<std::string> captions = VisibleCaptions();
  captions.erase(captions.begin(), captions.begin() + 12);
  EXPECT_THAT(captions, ElementsAre("CORN", "HAY"));
  EXPECT_NE(Cell(3, 12 + 4), "");
  EXPECT_NE(Cell(3, 12 + 7), "");
}

// The names come from the grid of the Ingredients tab, which lists all or only the active ones.
TEST_F(ImportPageTest, IngredientsThatAreNotInUseShowWhereTheirGridListsThem) {
  OpenRecipes();
  Find<QCheckBox>(u"chkShowActiveIngsOnly"_qs).setChecked(false);
  ImportText(kImportedFile);
  EXPECT_EQ(VisibleCaptions().size(), 112U);
}

TEST_F(ImportPageTest, EnteringAgainClearsTheFactsAndKeepsTheRows) {
  Show();
  ImportText(kImportedFile);
  Window().Tabs().SelectTab(kTabDataTransfer);
  Window().Tabs().SelectTab(kTabImport);
  EXPECT_EQ(Text(u"lblTransFilename"_qs), QString());
  EXPECT_EQ(Text(u"lblRecords"_qs), QString());
  EXPECT_EQ(Grid().model()->rowCount(), 3);
}

TEST_F(ImportPageTest, AFailedParseHidesTheFactsButTheRecords) {
  Show();
  ImportText(kImportedFile);
  ImportText("{BAT/FED},X\r\n", "bad.qxt");
  EXPECT_EQ(LastBox().title, "Import Error");
  EXPECT_EQ(LastBox().icon, Icon::kCritical);
  EXPECT_FALSE(Find<QWidget>(u"lblTransFilename"_qs).isVisible());
  EXPECT_FALSE(Find<QWidget>(u"lblTransUoM"_qs).isVisible());
  EXPECT_TRUE(Find<QWidget>(u"lblRecords"_qs).isVisible());
  EXPECT_FALSE(Find<QWidget>(u"lblTransactions"_qs).isVisible());
  EXPECT_FALSE(Find<QWidget>(u"cmdImportStore"_qs).isEnabled());
  EXPECT_EQ(Text(u"lblProgressMsg"_qs).toStdString(), LastBox().text);
}

TEST_F(ImportPageTest, ARefusedFileLeavesNothingThatAltSCouldStore) {
  ShowWithBothDatabases(kImportedFile);
  // An access key presses the button for a moment, then clicks it.
  QTest::keyClick(&Window(), Qt::Key_S, Qt::AltModifier);
  EXPECT_TRUE(Find<QPushButton>(u"cmdImportStore"_qs).isDown());
  ASSERT_TRUE(QTest::qWaitFor([this] { return StoredRows() == 3; }));
  for (const std::string& text : {std::string("{BAT/FED},X\r\n"), std::string(65536, 'x')}) {
    ImportText(kImportedFile);
    ImportText(text, "bad.qxt");
    EXPECT_EQ(Grid().model()->rowCount(), 1);
    EXPECT_EQ(Cell(1, 1), "");
    EXPECT_FALSE(Find<QWidget>(u"cmdImportStore"_qs).isEnabled());
    QTest::keyClick(&Window(), Qt::Key_S, Qt::AltModifier);
    EXPECT_FALSE(Find<QPushButton>(u"cmdImportStore"_qs).isDown());
  }
}

TEST_F(ImportPageTest, ColumnsAreMeasuredOnASampleOfRowsWithTheFirstAndTheLast) {
  std::string feeds = "[FED],";
  for (int i = 0; i < 3000; ++i) {
    feeds += "B,1,,,,,,\r\n";
  }
  std::string text = kImportedFile;
  text.replace(text.find("[FED],"), text.find("748.5") + 7 - text.find("[FED],"),
               feeds + "B,1,123456789012345,,,,,\r\n");
  Main();
  ImportText(text);
  ASSERT_EQ(Grid().model()->rowCount(), 3003);
  const int character = Grid().fontMetrics().horizontalAdvance(u'0');
  EXPECT_THAT(Grid().columnWidth(kImportedPenID - 1), Ge(15 * character));
}

// Laying out such a text would take longer than the rest of the screen.
TEST_F(ImportPageTest, ACellDrawsNoMoreOfALongTextThanAColumnCanShow) {
  std::string text = kImportedFile;
  text.replace(text.find(",2,4,7"), 3, "," + std::string(30000, 'u') + ",");
  Main();
  ImportText(text);
  EXPECT_EQ(Cell(1, kImportedUserID), std::string(30000, 'u'));
  const auto* const cells = dynamic_cast<QStyledItemDelegate*>(Grid().itemDelegate());
  ASSERT_NE(cells, nullptr);
  EXPECT_EQ(cells->displayText(QString(30000, u'u'), {}).size(), 257);
  EXPECT_EQ(cells->displayText(QString(256, u'u'), {}), QString(256, u'u'));
}

TEST_F(ImportPageTest, AFileThatIsTooLongIsRefused) {
  Show();
  ImportText(std::string(65536, 'x'), "long.qxt");
  EXPECT_EQ(LastBox().text, "Transaction file data exceeds maximum limit of 65535 characters.");
  EXPECT_EQ(LastBox().icon, Icon::kWarning);
}

TEST_F(ImportPageTest, StripesHaveTheSpecifiedColorsAndDarkText) {
  Main();
  ImportText(kImportedFile);
  const auto color = [&](int row, int role) {
    return Grid().model()->index(row - 1, 0).data(role).value<QColor>();
  };
  EXPECT_EQ(color(1, Qt::BackgroundRole), QColor(255, 255, 191));
  EXPECT_EQ(color(2, Qt::BackgroundRole), QColor(176, 215, 193));
  EXPECT_EQ(color(3, Qt::BackgroundRole), QColor(255, 255, 191));
  EXPECT_EQ(color(1, Qt::ForegroundRole), QColor(Qt::black));
  EXPECT_EQ(Grid().font().family(), u"Courier New"_qs);
}

TEST_F(ImportPageTest, ColumnsAreWideEnoughForCaptionAndTexts) {
  OpenRecipes();
  ImportText(kImportedFile);
  for (int column = 0; column < kImportColumns; ++column) {
    if (Grid().isColumnHidden(column)) {
      continue;
    }
    for (int row = 0; row < 3; ++row) {
      const QString text = Grid().model()->index(row, column).data().toString();
      EXPECT_THAT(Grid().columnWidth(column), Ge(Grid().fontMetrics().horizontalAdvance(text)));
    }
    const QString caption = Grid().model()->headerData(column, Qt::Horizontal).toString();
    EXPECT_THAT(Grid().columnWidth(column),
                Ge(Grid().horizontalHeader()->fontMetrics().horizontalAdvance(caption)));
  }
}

TEST_F(ImportPageTest, ColumnsFillTheWidth) {
  ImportText(kImportedFile);
  Show();
  for (int column = 2; column < kImportColumns; ++column) {
    Grid().setColumnHidden(column, true);
  }
  const int before = Grid().viewport()->width();
  Window().resize(Window().width() - 20, Window().height());
  RunEvents();
  EXPECT_LT(Grid().viewport()->width(), before);
  EXPECT_EQ(Grid().horizontalHeader()->length(), Grid().viewport()->width());
}

TEST_F(ImportPageTest, EnterGoesFromTheLastColumnToTheNextRow) {
  ImportText(kImportedFile);
  Grid().setFocus();
  const int columns = static_cast<int>(VisibleCaptions().size());
  QTest::keyClick(&Grid(), Qt::Key_Return);
  const QModelIndex first = Grid().currentIndex();
  EXPECT_EQ(first.row(), 0);
  for (int key = 1; key < columns; ++key) {
    QTest::keyClick(&Grid(), Qt::Key_Return);
  }
  EXPECT_EQ(Grid().currentIndex().row(), 0);
  QTest::keyClick(&Grid(), Qt::Key_Return);
  EXPECT_EQ(Grid().currentIndex(), first.siblingAtRow(1));
}

// Store.

TEST_F(ImportPageTest, StoreNeedsATransactionDatabase) {
  Show();
  ImportText(kImportedFile);
  Click(u"cmdImportStore"_qs);
  EXPECT_EQ(LastBox().title, "Transaction Store Error");
  EXPECT_EQ(LastBox().icon, Icon::kWarning);
  EXPECT_EQ(LastBox().text,
            "Please open the Transaction database where you want the imported data to be stored, "
            "...then click 'Store'.");
}

TEST_F(ImportPageTest, StoreNeedsARecipeDatabase) {
  Open(DatabaseKind::kTransaction);
  Show();
  ImportText(kImportedFile);
  Click(u"cmdImportStore"_qs);
  EXPECT_EQ(LastBox().title, "Transaction Store Error");
  EXPECT_EQ(LastBox().icon, Icon::kWarning);
  EXPECT_EQ(LastBox().text,
            "Please open a Recipe database associated with this imported transaction data so that "
            "proper ingredient, recipe and pen names can be assigned.");
}

TEST_F(ImportPageTest, StoreSavesTheDatabaseAndShowsItsGroups) {
  OpenRecipes();
  Open(DatabaseKind::kTransaction);
  Show();
  ImportText(kImportedFile);
  Click(u"cmdImportStore"_qs);
  EXPECT_EQ(StoredRows(), 3);
  EXPECT_TRUE(operator_.boxes.empty());
  EXPECT_EQ(Tabs().currentIndex(), kTabBatchedFed);
  EXPECT_EQ(Find<DatabaseStatusBar>(u"sbTrans"_qs).Panel(kPanelModified), u"1/5/2026"_qs);
  EXPECT_EQ(Find<QProgressBar>(u"prgImport"_qs).value(), 3);
  EXPECT_EQ(Text(u"lblProgressMsg"_qs),
            u"Successfully copied imported records to Transaction database."_qs);
}

TEST_F(ImportPageTest, AfterAStoreALineSaysWhatWasStoredAndTheGridSelectsTheFirstNewRow) {
  ShowWithBothDatabases(kImportedFile);
  Click(u"cmdImportStore"_qs);
  std::string later = kImportedFile;
  later.replace(later.find("998.0"), 5, "999.0");
  Window().Tabs().SelectTab(kTabImport);
  ImportText(later);
  Click(u"cmdImportStore"_qs);
  EXPECT_TRUE(Find<QWidget>(u"picResult"_qs).isVisible());
  EXPECT_EQ(Text(u"lblResult"_qs), u"Stored 3 records as transaction 2, of 15-Jan-09."_qs);
  EXPECT_FALSE(Find<QWidget>(u"cmdResultOpen"_qs).isVisible());
  const auto& grid = Find<QAbstractItemView>(u"grdTRANS"_qs);
  EXPECT_EQ(grid.currentIndex().row(), 3);
  EXPECT_EQ(grid.model()->index(3, 0).data().toString(), u"2"_qs);
  Window().Tabs().SelectTab(kTabPens);
  EXPECT_FALSE(Find<QWidget>(u"picResult"_qs).isVisible());
}

TEST_F(ImportPageTest, UndoIsOfTheDatabaseThatIsOpen) {
  ShowWithBothDatabases(kImportedFile);
  Click(u"cmdImportStore"_qs);
  const auto stored = Main().Databases().Bound(DatabaseKind::kTransaction).path;
  chooser_.Choose(MakeUserFile("OTHER.TDB", DatabaseKind::kTransaction));
  Choose(u"mnuFileOpenTransactionDB"_qs);
  EXPECT_FALSE(Find<QWidget>(u"cmdImportUndo"_qs).isEnabled());
  chooser_.Choose(stored);
  Choose(u"mnuFileOpenTransactionDB"_qs);
  EXPECT_TRUE(Find<QWidget>(u"cmdImportUndo"_qs).isEnabled());
}

TEST_F(ImportPageTest, TheLastStoreIsUndoneAfterAQuestion) {
  ShowWithBothDatabases(kImportedFile);
  EXPECT_FALSE(Find<QWidget>(u"cmdImportUndo"_qs).isEnabled());
  Click(u"cmdImportStore"_qs);
  Window().Tabs().SelectTab(kTabImport);
  operator_.answers = {Answer::kYes};
  Click(u"cmdImportUndo"_qs);
  EXPECT_EQ(StoredRows(), 0);
  EXPECT_EQ(Text(u"lblResult"_qs), u"The last store was undone: 3 rows taken out."_qs);
  EXPECT_FALSE(Find<QWidget>(u"cmdImportUndo"_qs).isEnabled());
}

TEST_F(ImportPageTest, StoredTwiceItAsksFirstAndNumbersOnFromTheHighest) {
  ShowWithBothDatabases(kImportedFile);
  Click(u"cmdImportStore"_qs);
  EXPECT_THAT(StoredNumbers(), ElementsAre(1, 1, 1));
  Window().Tabs().SelectTab(kTabImport);
  operator_.answers = {Answer::kNo};
  Click(u"cmdImportStore"_qs);
  EXPECT_EQ(LastBox().title, "Duplicate Data");
  EXPECT_EQ(LastBox().icon, Icon::kQuestion);
  EXPECT_EQ(LastBox().text,
            "The current transaction data has already been stored in the active transaction "
            "database. Are you sure you want to add the same data to the database again?");
  EXPECT_EQ(StoredRows(), 3);
  operator_.answers = {Answer::kYes};
  Click(u"cmdImportStore"_qs);
  EXPECT_THAT(StoredNumbers(), ElementsAre(1, 1, 1, 2, 2, 2));
}

TEST_F(ImportPageTest, UnitsThatAreNotTheDatabasesAreAskedAbout) {
  ShowWithBothDatabases(InKilograms());
  operator_.answers = {Answer::kCancel, Answer::kOk};
  Click(u"cmdImportStore"_qs);
  IsTheQuestionOfUnits();
  EXPECT_EQ(StoredRows(), 0);
  Click(u"cmdImportStore"_qs);
  EXPECT_EQ(StoredRows(), 3);
}

TEST_F(ImportPageTest, UnitsThatAreNotTheSystemsAreAskedAboutThoughTheDatabaseAgrees) {
  ShowWithBothDatabases(kImportedFile);
  settings_.SetSystemUnits("KG");
  operator_.answers = {Answer::kCancel};
  Click(u"cmdImportStore"_qs);
  IsTheQuestionOfUnits();
  EXPECT_EQ(StoredRows(), 0);
}

// The bar is drawn as it moves, with no event handled in between.
TEST_F(ImportPageTest, TheProgressOfAStoreMovesUnderItsWords) {
  ShowWithBothDatabases(kImportedFile);
  std::vector<std::pair<std::string, int>> shown;
  QObject::connect(
      &Find<QProgressBar>(u"prgImport"_qs), &QProgressBar::valueChanged,
      [&](int value) { shown.emplace_back(Text(u"lblProgressMsg"_qs).toStdString(), value); });
  const std::string scanning = "Scanning Transaction database for next insertion location.";
  const std::string copying = "Copying imported records to Transaction database.";
  Click(u"cmdImportStore"_qs);
  EXPECT_THAT(shown, IsSupersetOf({std::pair{copying, 1}, {copying, 2}, {copying, 3}}));
  shown.clear();
  Window().Tabs().SelectTab(kTabImport);
  operator_.answers = {Answer::kYes};
  Click(u"cmdImportStore"_qs);
  EXPECT_THAT(shown, IsSupersetOf({std::pair{scanning, 1}, {copying, 1}, {copying, 3}}));
}

TEST_F(ImportPageTest, AnEmptyGridSaysWhatFillsIt) {
  Show();
  Window().Tabs().SelectTab(kTabImport);
  const QImage empty = Grid().viewport()->grab().toImage();
  ImportText(kImportedFile);
  const QRect middle(Grid().viewport()->width() / 4, Grid().viewport()->height() / 2 - 10,
                     Grid().viewport()->width() / 2, 20);
  const QImage full = Grid().viewport()->grab().toImage();
  EXPECT_NE(empty.copy(middle), full.copy(middle));
}

TEST_F(ImportPageTest, StoreSaysWhyItIsOffForAReadOnlyDatabase) {
  Show();
  const QString meaning = Find<QPushButton>(u"cmdImportStore"_qs).toolTip();
  BoundDatabase database = BindBlankInMemory(DatabaseKind::kTransaction);
  database.read_only_note = "YARD.TDB may not be written";
  auto& page = Find<ImportPage>(u"pageImport"_qs);
  page.Rebind(DatabaseKind::kTransaction, database);
  EXPECT_EQ(Find<QPushButton>(u"cmdImportStore"_qs).toolTip(), u"YARD.TDB may not be written"_qs);
  EXPECT_FALSE(Find<QPushButton>(u"cmdImportStore"_qs).isEnabled());
  database.read_only_note.clear();
  page.Rebind(DatabaseKind::kTransaction, database);
  EXPECT_EQ(Find<QPushButton>(u"cmdImportStore"_qs).toolTip(), meaning);
}

}  // namespace
}  // namespace vrx::testing
