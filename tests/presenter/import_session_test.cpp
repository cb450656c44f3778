#include <string>
#include <utility>

#include <gmock/gmock.h>

#include "presenter/import_session_fixture.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

IngredientRecord Ingredient(int id, std::string name) {
  IngredientRecord record;
  record.id = id;
  record.name = std::move(name);
  return record;
}

TEST_F(ImportSessionTest, AsksForATransactionFile) {
  files_.Cancel();
  session_.ImportXFile();
  ASSERT_THAT(files_.dialogs, SizeIs(1));
  const FileDialog& dialog = files_.dialogs[0];
  EXPECT_EQ(dialog.title, "Import Transaction File");
  EXPECT_EQ(dialog.filter, "Transactions (*.QXT)|*.QXT");
  EXPECT_EQ(dialog.default_extension, "QXT");
  EXPECT_EQ(dialog.start_folder, "/var/common");
  EXPECT_EQ(dialog.flags, 0x1004U);
}

TEST_F(ImportSessionTest, ACancelChangesNothing) {
  ASSERT_TRUE(Import(kWorkedExample));
  files_.Cancel();
  EXPECT_FALSE(session_.ImportXFile());
  EXPECT_EQ(tab_selections_, 1);
  EXPECT_EQ(session_.File().FileName(), "LOAD1.QXT");
  EXPECT_EQ(session_.Form().lbl_records.caption, "6");
  EXPECT_TRUE(session_.Form().cmd_import_store_enabled);
  EXPECT_TRUE(session_.Form().grd_import_visible);
}

TEST_F(ImportSessionTest, AGoodFileIsShownWithItsFactsAndReadyToStore) {
  EXPECT_FALSE(session_.Form().cmd_import_store_enabled);
  EXPECT_EQ(session_.Form().grd_import_rows, 1);
  ASSERT_TRUE(Import(kWorkedExample));
  const ImportForm& form = session_.Form();
  EXPECT_EQ(form.lbl_trans_filename.caption, "LOAD1.QXT");
  EXPECT_EQ(form.lbl_trans_uom.caption, "LB");
  EXPECT_EQ(form.lbl_records.caption, "6");
  EXPECT_EQ(form.lbl_transactions.caption, "2");
  EXPECT_TRUE(form.lbl_trans_filename.visible && form.lbl_trans_uom.visible &&
              form.lbl_records.visible && form.lbl_transactions.visible);
  EXPECT_TRUE(form.cmd_import_store_enabled);
  EXPECT_EQ(form.grd_import_rows, 6);
  EXPECT_EQ(session_.File().FilePath(), (site_.folder / "load1.qxt").string());
  EXPECT_EQ(tab_selections_, 1);
  EXPECT_THAT(focused_, ElementsAre("cmdImportStore"));
  EXPECT_FALSE(session_.StoredFlag());
  EXPECT_GT(changes_, 0);
  EXPECT_EQ(site_.progress.Message(), "Transaction file import completed! Ready to store.");
}

TEST_F(ImportSessionTest, AFailedParseHidesAllFactsButTheRecordsAndDisablesStore) {
  ASSERT_TRUE(Import(kWorkedExample));
  EXPECT_FALSE(Import("{BAT/FED},L\r\n"));
  const ImportForm& form = session_.Form();
  EXPECT_FALSE(form.lbl_trans_filename.visible);
  EXPECT_FALSE(form.lbl_trans_uom.visible);
  EXPECT_FALSE(form.lbl_transactions.visible);
  EXPECT_TRUE(form.lbl_records.visible);
  EXPECT_FALSE(form.cmd_import_store_enabled);
  ASSERT_THAT(site_.op.boxes, SizeIs(1));
  EXPECT_EQ(site_.op.boxes[0].title, "Import Error");
  EXPECT_EQ(site_.op.boxes[0].icon, Icon::kCritical);
  EXPECT_EQ(site_.op.boxes[0].text, "No batch section identifier detected.");
}

// After a refused file nothing can be stored, neither from it nor from the previous file.
TEST_F(ImportSessionTest, ARefusedFileEmptiesTheGridAndTurnsStoreOff) {
  const std::vector<std::string> refused = {
      "no transactions", "{BAT/FED},L\r\n", std::string(65536, 'x'),  // too long
      FileOf(OneIngredient{}.Record() + OneIngredient{.transaction = "x"}.Record(), "")};
  for (const std::string& text : refused) {
    ASSERT_TRUE(Import(kWorkedExample));
    EXPECT_FALSE(Import(text));
    EXPECT_EQ(session_.Form().grd_import_rows, 1);
    EXPECT_EQ(session_.File().Imported().RowCount(), 0U);
    EXPECT_FALSE(session_.Form().cmd_import_store_enabled);
  }
}

TEST_F(ImportSessionTest, AFileThatIsGoneEmptiesTheGridAndTurnsStoreOff) {
  OpenBoth();
  ASSERT_TRUE(Import(kWorkedExample));
  session_.ClickImportStore();
  files_.Choose(site_.folder / "gone.qxt");
  EXPECT_FALSE(session_.ImportXFile());
  EXPECT_EQ(session_.Form().grd_import_rows, 1);
  EXPECT_EQ(session_.File().Imported().RowCount(), 0U);
  EXPECT_FALSE(session_.Form().cmd_import_store_enabled);
}

TEST_F(ImportSessionTest, FeedsThatFitNoBatchAreShownAtTheImportAndAtTheStore) {
  OpenBoth();
  ASSERT_TRUE(Import(FileOf(OneIngredient{}.Record(), FeedOf("9", "6.0") + FeedOf("1", "5.0"))));
  ASSERT_THAT(site_.op.boxes, SizeIs(1));
  EXPECT_EQ(site_.op.boxes[0].title, "Import");
  EXPECT_EQ(site_.op.boxes[0].icon, Icon::kWarning);
  EXPECT_EQ(site_.op.boxes[0].text,
            "1 feed record fits no batch of the file and was not read:\r\n"
            "Transaction 9: B,9,12,2,0915,01152009,750.0,6.0");
  EXPECT_TRUE(session_.Form().cmd_import_store_enabled);
  EXPECT_THAT(focused_, ElementsAre("cmdImportStore"));

  const StoreOutcome outcome = session_.ClickImportStore();
  EXPECT_TRUE(outcome.complete);
  EXPECT_EQ(outcome.stored, 2U);
  EXPECT_EQ(outcome.left_out, 1U);
  EXPECT_EQ(outcome.not_read, 1U);
  ASSERT_THAT(site_.op.boxes, SizeIs(2));
  EXPECT_EQ(site_.op.boxes[1].title, "Transaction Store");
  EXPECT_EQ(site_.op.boxes[1].icon, Icon::kWarning);
  EXPECT_EQ(site_.op.boxes[1].text,
            "1 feed record fits no batch of the file and was not stored:\r\n"
            "Transaction 9: B,9,12,2,0915,01152009,750.0,6.0");
  EXPECT_THAT(site_.Stored(), SizeIs(2));
}

TEST_F(ImportSessionTest, AnImportAfterAFailedOneShowsTheFactsAgain) {
  EXPECT_FALSE(Import("{BAT/FED},L\r\n"));
  ASSERT_TRUE(Import(kWorkedExample));
  EXPECT_TRUE(session_.Form().lbl_trans_filename.visible);
  EXPECT_TRUE(session_.Form().lbl_trans_uom.visible);
  EXPECT_TRUE(session_.Form().lbl_transactions.visible);
  EXPECT_TRUE(session_.Form().cmd_import_store_enabled);
}

TEST_F(ImportSessionTest, AFileThatCannotBeLoadedClearsTheStoredFlag) {
  OpenBoth();
  ASSERT_TRUE(Import(kWorkedExample));
  site_.op.answers = {Answer::kStoreAll};
  session_.ClickImportStore();
  ASSERT_TRUE(session_.StoredFlag());
  files_.Choose(site_.folder / "gone.qxt");
  EXPECT_FALSE(session_.ImportXFile());
  EXPECT_EQ(site_.op.boxes.back().text, "Could not find transaction file.");
  EXPECT_FALSE(session_.StoredFlag());
  EXPECT_EQ(session_.File().FileName(), "GONE.QXT");
}

TEST_F(ImportSessionTest, AFailedParseAndANewImportClearTheStoredFlag) {
  OpenBoth();
  ASSERT_TRUE(Import(kWorkedExample));
  session_.ClickImportStore();
  EXPECT_FALSE(Import("nothing"));
  EXPECT_FALSE(session_.StoredFlag());

  ASSERT_TRUE(Import(kWorkedExample));
  site_.op.answers = {Answer::kStoreAll};
  session_.ClickImportStore();
  ASSERT_TRUE(session_.StoredFlag());
  ASSERT_TRUE(Import(kWorkedExample));
  EXPECT_FALSE(session_.StoredFlag());
}

TEST_F(ImportSessionTest, WithoutAPathTheImportButtonGetsTheFocus) {
  EXPECT_FALSE(session_.ImportFile({}));
  EXPECT_EQ(site_.op.boxes.back().text, "Please select a transaction (.QXT) file to import.");
  EXPECT_THAT(focused_, ElementsAre("cmdImportFile"));
}

TEST_F(ImportSessionTest, ColumnsBearTheDesignCaptionsAtFirst) {
  const std::vector<std::string> leading = {
      "Transaction", "Recipe ID", "Type", "Target Wt", "Ingredient ID", "Batch Wt",
      "Pen ID",      "Feed Wt",   "Time", "Date",      "User ID",       "Ing% Of Batch"};
  for (int column = 1; column <= 12; ++column) {
    EXPECT_EQ(Caption(column), leading[static_cast<std::size_t>(column - 1)]);
  }
  EXPECT_EQ(Caption(13), "Ing01 Wt");
  EXPECT_EQ(Caption(111), "Ing99 Wt");
  EXPECT_EQ(Caption(112), "Ing100 Wt");
}

TEST_F(ImportSessionTest, IngredientColumnsShowUnderTheNamesOfTheOpenRecipeDatabase) {
  grid_ingredients_ = {Ingredient(1, "CORN"),  Ingredient(7, "MINbd"), Ingredient(8, ""),
                       Ingredient(100, "HAY"), Ingredient(0, "X"),     Ingredient(101, "Y")};
  session_.ConfigureImportColumns();
  EXPECT_EQ(Caption(13), "CORN");
  EXPECT_EQ(Caption(19), "MINBD");
  EXPECT_EQ(Caption(112), "HAY");
  std::vector<int> shown;
  for (int column = 13; column <= 112; ++column) {
    if (Column(column).visible) {
      shown.push_back(column);
    }
  }
  EXPECT_THAT(shown, ElementsAre(13, 19, 112));
  EXPECT_EQ(Caption(12), "Ing% Of Batch");
  EXPECT_TRUE(Column(12).visible);
}

TEST_F(ImportSessionTest, AllIngredientColumnsAreHiddenWithNoRecipeDatabase) {
  grid_ingredients_ = {Ingredient(1, "CORN")};
  session_.ConfigureImportColumns();
  grid_ingredients_.clear();
  session_.ConfigureImportColumns();
  for (int column = 13; column <= 112; ++column) {
    EXPECT_FALSE(Column(column).visible) << column;
    EXPECT_EQ(Caption(column), "") << column;
  }
}

TEST_F(ImportSessionTest, NamesThatCannotBeReadAreReportedAndHideTheColumns) {
  grid_fails_ = true;
  session_.ConfigureImportColumns();
  ASSERT_THAT(site_.op.boxes, SizeIs(1));
  EXPECT_EQ(site_.op.boxes[0].title, "Import Error");
  EXPECT_EQ(site_.op.boxes[0].text, "A table in the specified database is locked.");
  EXPECT_FALSE(Column(13).visible);
}

TEST_F(ImportSessionTest, AParseConfiguresTheColumns) {
  grid_ingredients_ = {Ingredient(4, "CORN")};
  ASSERT_TRUE(Import(kWorkedExample));
  EXPECT_EQ(Caption(16), "CORN");
  EXPECT_FALSE(Column(13).visible);
}

TEST_F(ImportSessionTest, EnteringTheTabEmptiesTheFactsAndKeepsTheRows) {
  ASSERT_TRUE(Import(kWorkedExample));
  session_.EnterImportTab();
  const ImportForm& form = session_.Form();
  EXPECT_EQ(form.lbl_trans_filename.caption + form.lbl_trans_uom.caption +
                form.lbl_records.caption + form.lbl_transactions.caption,
            "");
  EXPECT_EQ(site_.progress.Message(), "");
  EXPECT_EQ(form.grd_import_rows, 6);
  EXPECT_EQ(session_.File().Imported().RowCount(), 6U);
  EXPECT_TRUE(form.cmd_import_store_enabled);
}

TEST_F(ImportSessionTest, TheProgressPanelFollowsItsSetting) {
  site_.settings.SetShowImportProgressOn(true);
  session_.EnterImportTab();
  EXPECT_TRUE(session_.Form().pic_import_progress_visible);
  EXPECT_THAT(site_.progress.values, ElementsAre(0));
  site_.settings.SetShowImportProgressOn(false);
  session_.ShowOrHideProgress();
  EXPECT_FALSE(session_.Form().pic_import_progress_visible);
  site_.settings.SetShowImportProgressOn(true);
  session_.ShowOrHideProgress();
  EXPECT_TRUE(session_.Form().pic_import_progress_visible);
  site_.settings.SetShowImportProgressOn(false);
  session_.EnterImportTab();
  EXPECT_FALSE(session_.Form().pic_import_progress_visible);
  EXPECT_THAT(site_.progress.values, ElementsAre(0));
}

TEST_F(ImportSessionTest, StoreNeedsATransactionDatabaseFirst) {
  ASSERT_TRUE(Import(kWorkedExample));
  EXPECT_FALSE(session_.ClickImportStore().complete);
  ASSERT_THAT(site_.op.boxes, SizeIs(1));
  EXPECT_EQ(site_.op.boxes[0].title, "Transaction Store Error");
  EXPECT_EQ(site_.op.boxes[0].icon, Icon::kWarning);
  EXPECT_EQ(site_.op.boxes[0].text,
            "Please open the Transaction database where you want the imported data to be stored, "
            "...then click 'Store'.");
}

TEST_F(ImportSessionTest, StoreNeedsARecipeDatabaseNext) {
  ASSERT_TRUE(Import(kWorkedExample));
  databases_.trans_db_path = site_.databases.trans_db_path;
  EXPECT_FALSE(session_.ClickImportStore().complete);
  ASSERT_THAT(site_.op.boxes, SizeIs(1));
  EXPECT_EQ(site_.op.boxes[0].title, "Transaction Store Error");
  EXPECT_EQ(site_.op.boxes[0].icon, Icon::kWarning);
  EXPECT_EQ(site_.op.boxes[0].text,
            "Please open a Recipe database associated with this imported transaction data so that "
            "proper ingredient, recipe and pen names can be assigned.");
  EXPECT_THAT(site_.Stored(), IsEmpty());
}

TEST_F(ImportSessionTest, StoresTheWorkedExampleAndSavesTheDatabase) {
  OpenBoth();
  ASSERT_TRUE(Import(kWorkedExample));
  const StoreOutcome outcome = session_.ClickImportStore();
  EXPECT_TRUE(outcome.complete);
  EXPECT_EQ(outcome.stored, 6U);
  EXPECT_TRUE(session_.StoredFlag());
  EXPECT_EQ(site_.saves, 1);
  const std::vector<StoredRow> rows = site_.Stored();
  ASSERT_THAT(rows, SizeIs(6));
  const StoredRow first(rows[0].begin(), rows[0].begin() + 11);
  EXPECT_THAT(first, ElementsAre("1", "REC003", "BATCH", "2", "ING004", "NULL", "1000.0", "998.0",
                                 "08:30:00", "2009-01-15", "0.0"));
  const StoredRow third(rows[2].begin(), rows[2].begin() + 12);
  EXPECT_THAT(third, ElementsAre("1", "REC003", "FEED", "2", "NULL", "PEN012", "750.0", "0.0",
                                 "09:15:00", "2009-01-15", "748.5", "NULL"));
}

TEST_F(ImportSessionTest, TheSecondPressAsksForDuplicateData) {
  OpenBoth();
  ASSERT_TRUE(Import(kWorkedExample));
  session_.ClickImportStore();
  site_.op.answers = {Answer::kNo};
  EXPECT_FALSE(session_.ClickImportStore().complete);
  EXPECT_EQ(site_.op.boxes.back().title, "Duplicate Data");
  EXPECT_THAT(site_.Stored(), SizeIs(6));
}

constexpr const char* kUnitsQuestion =
    "The units-of-measure of the imported transaction file is not the same as the transaction "
    "database.\r\n\r\nStoring the current transactions will result in incorrect weight totals in "
    "the transaction database.Do you wish to continue?";

TEST_F(ImportSessionTest, AStoreCanBeUndoneAndThenMadeAgainWithoutTheDuplicateQuestion) {
  OpenBoth();
  ASSERT_TRUE(Import(kWorkedExample));
  EXPECT_FALSE(session_.Form().cmd_import_undo_enabled);
  session_.ClickImportStore();
  EXPECT_TRUE(session_.Form().cmd_import_undo_enabled);
  site_.op.answers = {Answer::kYes};
  EXPECT_TRUE(session_.ClickImportUndo());
  EXPECT_THAT(site_.Stored(), IsEmpty());
  EXPECT_FALSE(session_.Form().cmd_import_undo_enabled);
  EXPECT_EQ(site_.saves, 2);
  site_.op.boxes.clear();
  EXPECT_TRUE(session_.ClickImportStore().complete);
  EXPECT_THAT(site_.op.boxes, IsEmpty());
}

TEST_F(ImportSessionTest, UndoIsOffWithoutADatabaseAndInOneThatMayNotBeWritten) {
  OpenBoth();
  ASSERT_TRUE(Import(kWorkedExample));
  session_.ClickImportStore();
  databases_.trans_db_read_only_note = "it is on a read-only medium";
  session_.UpdateUndo(databases_);
  EXPECT_FALSE(session_.Form().cmd_import_undo_enabled);
  EXPECT_FALSE(session_.ClickImportUndo());
  databases_ = {};
  session_.UpdateUndo(databases_);
  EXPECT_FALSE(session_.Form().cmd_import_undo_enabled);
  EXPECT_FALSE(session_.ClickImportUndo());
  EXPECT_THAT(site_.Stored(), SizeIs(6));
}

TEST_F(ImportSessionTest, TheImportIsRecordedUnderItsFile) {
  OpenBoth();
  ASSERT_TRUE(Import(kWorkedExample));
  session_.ClickImportStore();
  EXPECT_EQ(QueryText(site_.databases.trans_db_path,
                      "SELECT File || ' ' || SHA256 || ' ' || Units FROM Imports"),
            "LOAD1.QXT " + Sha256(kWorkedExample) + " LB");
}

TEST_F(ImportSessionTest, NothingIsStoredInADatabaseThatMayNotBeWritten) {
  OpenBoth();
  databases_.trans_db_read_only_note = "it is write-protected";
  ASSERT_TRUE(Import(kWorkedExample));
  EXPECT_FALSE(session_.ClickImportStore().complete);
  ASSERT_THAT(site_.op.boxes, SizeIs(1));
  EXPECT_EQ(site_.op.boxes[0].text,
            "The Transaction database is read-only, so that nothing can be stored in it: it is "
            "write-protected");
  EXPECT_THAT(site_.Stored(), IsEmpty());
}

TEST_F(ImportSessionTest, OtherUnitsThanTheDatabasesAreAskedAboutAndCancelStops) {
  OpenBoth();
  databases_.trans_db_uom = "KG";
  ASSERT_TRUE(Import(kWorkedExample));
  site_.op.answers = {Answer::kCancel};
  EXPECT_FALSE(session_.ClickImportStore().complete);
  ASSERT_THAT(site_.op.boxes, SizeIs(1));
  EXPECT_EQ(site_.op.boxes[0].title, "Weight Units Error");
  EXPECT_TRUE(site_.op.boxes[0].refuses_by_default);
  EXPECT_EQ(site_.op.boxes[0].icon, Icon::kCritical);
  EXPECT_EQ(site_.op.boxes[0].buttons, Buttons::kOkCancel);
  EXPECT_EQ(site_.op.boxes[0].text, kUnitsQuestion);
  EXPECT_THAT(site_.Stored(), IsEmpty());
  EXPECT_FALSE(session_.StoredFlag());
}

TEST_F(ImportSessionTest, OtherUnitsThanTheSystemsAreAskedAboutThoughTheDatabaseAgrees) {
  OpenBoth();
  site_.settings.SetSystemUnits("KG");
  ASSERT_TRUE(Import(kWorkedExample));
  site_.op.answers = {Answer::kOk};
  EXPECT_TRUE(session_.ClickImportStore().complete);
  ASSERT_THAT(site_.op.boxes, SizeIs(1));
  EXPECT_EQ(site_.op.boxes[0].text, kUnitsQuestion);
  EXPECT_THAT(site_.Stored(), SizeIs(6));
}

TEST_F(ImportSessionTest, UnitsThatDifferFromBothAreAskedAboutOnce) {
  OpenBoth();
  databases_.trans_db_uom = "KG";
  site_.settings.SetSystemUnits("KG");
  ASSERT_TRUE(Import(kWorkedExample));
  site_.op.answers = {Answer::kOk};
  EXPECT_TRUE(session_.ClickImportStore().complete);
  EXPECT_THAT(site_.op.boxes, SizeIs(1));
}

TEST_F(ImportSessionTest, AStopInTheMiddleStillSavesSoThatTheRowsShow) {
  OpenBoth();
  ASSERT_TRUE(Import(FileOf("B,1,3,01152009,2,4,101,0,0;0830,0835,0,0;1,1,0,0;1,1,0,0\r\n", "")));
  const StoreOutcome outcome = session_.ClickImportStore();
  EXPECT_FALSE(outcome.complete);
  EXPECT_EQ(outcome.stored, 1U);
  EXPECT_TRUE(session_.StoredFlag());
  EXPECT_EQ(site_.saves, 1);
}

}  // namespace
}  // namespace vrx::testing
