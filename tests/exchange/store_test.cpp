#include "exchange/store.h"

#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/encoding.h"
#include "exchange/store_fixture.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

// Column indexes of a stored row.
enum StoredColumn : std::size_t {
  kTransaction = 0,
  kRecipe = 1,
  kUserID = 3,
  kIngredient = 4,
  kPen = 5,
  kTarget = 6,
  kActualBatch = 7,
  kTime = 8,
  kDate = 9,
  kActualFeed = 10,
  kIngPercent = 11,
  kIng01Wt = 12,
};

RowCells With(RowCells cells, int column, std::string text) {
  cells[column] = std::move(text);
  return cells;
}

std::vector<std::string> ColumnOf(const StoreFixture& site, std::size_t column) {
  std::vector<std::string> values;
  for (const StoredRow& row : site.Stored()) {
    values.push_back(row[column]);
  }
  return values;
}

std::vector<RowCells> ThreeTransactions() {
  return {BatchCells(1, 3, 4, "998.0"), FeedCells(1, 3, 12, "748.5"), BatchCells(2, 3, 4, "801.0"),
          BatchCells(3, 5, 7, "600.0"), FeedCells(3, 5, 14, "600.0")};
}

TEST(StoreImportedTransactions, NumbersFollowTheHighestInTheDatabase) {
  StoreFixture site;
  Execute(site.databases.trans_db_path,
          "INSERT INTO Transactions ([Transaction]) VALUES (12), (40), (7)");
  EXPECT_TRUE(site.Store(MakeImport(ThreeTransactions())).complete);
  EXPECT_THAT(ColumnOf(site, kTransaction),
              ElementsAre("12", "40", "7", "41", "41", "42", "43", "43"));
}

TEST(StoreImportedTransactions, AnEmptyDatabaseGetsTheNumbersOfTheFile) {
  StoreFixture site;
  EXPECT_TRUE(site.Store(MakeImport(ThreeTransactions())).complete);
  EXPECT_THAT(ColumnOf(site, kTransaction), ElementsAre("1", "1", "2", "3", "3"));
}

TEST(StoreImportedTransactions, ANullNumberInTheDatabaseIsZero) {
  StoreFixture site;
  Execute(site.databases.trans_db_path,
          "INSERT INTO Transactions ([Transaction]) VALUES (NULL), (NULL)");
  EXPECT_TRUE(site.Store(MakeImport({BatchCells(1, 3, 4, "1")})).complete);
  EXPECT_THAT(ColumnOf(site, kTransaction), ElementsAre("NULL", "NULL", "1"));
}

TEST(StoreImportedTransactions, ANegativeNumberInTheDatabaseDoesNotLowerTheBase) {
  StoreFixture site;
  Execute(site.databases.trans_db_path, "INSERT INTO Transactions ([Transaction]) VALUES (-5)");
  EXPECT_TRUE(site.Store(MakeImport({BatchCells(1, 3, 4, "1")})).complete);
  EXPECT_THAT(ColumnOf(site, kTransaction), ElementsAre("-5", "1"));
}

TEST(StoreImportedTransactions, ABatchRowIsStoredColumnByColumn) {
  StoreFixture site;
  ASSERT_TRUE(site.Store(MakeImport({BatchCells(1, 3, 4, "998.5")})).complete);
  StoredRow expected = {"1",      "REC003", "BATCH",    "2",          "ING004", "NULL",
                        "1000.0", "998.5",  "08:30:00", "2009-01-15", "0.0",    "66.5"};
  expected.resize(112, "NULL");
  expected.emplace_back("1");  // the row number
  EXPECT_THAT(site.Stored(), ElementsAre(expected));
}

TEST(StoreImportedTransactions, AFeedRowIsStoredColumnByColumn) {
  StoreFixture site;
  RowCells cells = With(FeedCells(1, 3, 400, "748.5"), kImportedTime, "0915pm");
  for (int ingredient = 1; ingredient <= 32; ++ingredient) {
    cells[kFirstIngredientWeight - 1 + ingredient] = IdText(ingredient) + ".5";
  }
  ASSERT_TRUE(site.Store(MakeImport({cells})).complete);
  StoredRow expected = {"1",     "REC003", "FEED",     "2",          "NULL",  "PEN400",
                        "750.0", "0.0",    "21:15:00", "2009-01-15", "748.5", "NULL"};
  for (int ingredient = 1; ingredient <= 32; ++ingredient) {
    expected.push_back(IdText(ingredient) + ".5");
  }
  expected.resize(112, "NULL");
  expected.emplace_back("1");  // the row number
  EXPECT_THAT(site.Stored(), ElementsAre(expected));
}

TEST(StoreImportedTransactions, WeightsOfIngredientsAbove32AreNotStored) {
  StoreFixture site;
  RowCells cells = FeedCells(1, 3, 12, "748.5");
  cells[kFirstIngredientWeight + 31] = "32.5";
  cells[kFirstIngredientWeight + 32] = "33.5";
  cells[kImportColumns] = "100.5";
  ASSERT_TRUE(site.Store(MakeImport({cells})).complete);
  const StoredRow row = site.Stored().at(0);
  EXPECT_EQ(row[kIng01Wt + 31], "32.5");
  EXPECT_EQ(row[kIng01Wt + 32], "NULL");
  EXPECT_EQ(row[kIng01Wt + 99], "NULL");
}

TEST(StoreImportedTransactions, EmptyWeightsAreZeroAndOtherEmptyCellsNull) {
  StoreFixture site;
  ASSERT_TRUE(site.Store(MakeImport({{{kImportedTransactionNumber, "1"},
                                      {kImportedRecipeID, "3"},
                                      {kImportedType, "BATCH"}}}))
                  .complete);
  StoredRow expected = {"1",   "REC003", "BATCH", "NULL", "NULL", "NULL",
                        "0.0", "0.0",    "NULL",  "NULL", "0.0",  "NULL"};
  expected.resize(112, "NULL");
  expected.emplace_back("1");  // the row number
  EXPECT_THAT(site.Stored(), ElementsAre(expected));
}

TEST(StoreImportedTransactions, NamesWithApostrophesAreJustNames) {
  StoreFixture site;
  Execute(site.databases.recipe_db_path, "UPDATE Recipe SET Name = 'O''NEIL' WHERE ID = 3");
  Execute(site.databases.recipe_db_path, "UPDATE Ingredient SET Name = '''' WHERE ID = 4");
  Execute(site.databases.recipe_db_path, "UPDATE Pen SET Name = 'P''12' WHERE ID = 12");
  RowCells cells = With(BatchCells(1, 3, 4, "1"), kImportedPenID, "12");
  ASSERT_TRUE(site.Store(MakeImport({With(cells, kImportedUserID, "D'A")})).complete);
  const StoredRow row = site.Stored().at(0);
  EXPECT_EQ(row[kRecipe], "O'NEIL");
  EXPECT_EQ(row[kIngredient], "'");
  EXPECT_EQ(row[kPen], "P'12");
  EXPECT_EQ(row[kUserID], "D'A");
}

TEST(StoreImportedTransactions, TheNameOfARecordNotInUseIsStoredToo) {
  StoreFixture site;
  Execute(site.databases.recipe_db_path, "UPDATE Ingredient SET Description = 'Corn' WHERE ID = 1");
  ASSERT_TRUE(site.Store(MakeImport({BatchCells(1, 100, 100, "1")})).complete);
  EXPECT_EQ(site.Stored().at(0)[kRecipe], "REC100");
  EXPECT_EQ(site.Stored().at(0)[kIngredient], "ING100");
}

TEST(StoreImportedTransactions, AUserIdIsConvertedToUtf8) {
  StoreFixture site;
  ASSERT_TRUE(
      site.Store(MakeImport({With(BatchCells(1, 3, 4, "1"), kImportedUserID, "J\xFCrg \x80")}))
          .complete);
  EXPECT_EQ(site.Stored().at(0)[kUserID], "J\u00FCrg \u20AC");
}

TEST(StoreImportedTransactions, RowsNeverFilledAreLeftOutAndCounted) {
  StoreFixture site;
  const StoreOutcome outcome =
      site.Store(MakeImport({BatchCells(1, 3, 4, "1"), FeedCells(1, 3, 12, "1"), {}, {}}));
  EXPECT_TRUE(outcome.complete);
  EXPECT_EQ(outcome.stored, 2U);
  EXPECT_EQ(outcome.left_out, 2U);
  EXPECT_THAT(site.Stored(), SizeIs(2));
  ASSERT_THAT(site.op.boxes, SizeIs(1));
  EXPECT_EQ(site.op.boxes[0].icon, Icon::kInformation);
  EXPECT_EQ(
      site.op.boxes[0].text,
      "2 rows of the import hold no data (they were counted in the file but never filled) and "
      "were not stored.");
  EXPECT_EQ(site.progress.values.back(), 4);
}

TEST(StoreImportedTransactions, OneRowNeverFilledIsReportedInTheSingular) {
  StoreFixture site;
  EXPECT_TRUE(site.Store(MakeImport({BatchCells(1, 3, 4, "1"), {}})).complete);
  EXPECT_EQ(LastBox(site.op.boxes).text,
            "1 row of the import holds no data (it was counted in the file but never filled) and "
            "was not stored.");
}

// A row counted for a feed record has data in the file.
TEST(StoreImportedTransactions, RowsOfUnreadFeedsAreNotCalledEmpty) {
  StoreFixture site;
  ImportedData rows = MakeImport({BatchCells(1, 3, 4, "1"), {}, {}, {}});
  rows.AddUnreadFeed({.transaction = "9", .text = "B,9,BB", .rows = 2});
  const StoreOutcome outcome = site.Store(rows);
  EXPECT_EQ(outcome.left_out, 3U);
  EXPECT_EQ(outcome.not_read, 1U);
  ASSERT_THAT(site.op.boxes, SizeIs(1));
  EXPECT_EQ(site.op.boxes[0].icon, Icon::kWarning);
  EXPECT_EQ(site.op.boxes[0].text,
            "1 feed record fits no batch of the file and was not stored:\r\n"
            "Transaction 9: B,9,BB\r\n\r\n"
            "1 row of the import holds no data (it was counted in the file but never filled) and "
            "was not stored.");
}

TEST(StoreImportedTransactions, UnreadFeedsAreShownAlsoWhenABadRowStopsTheCopy) {
  StoreFixture site;
  ImportedData rows = MakeImport({BatchCells(1, 3, 4, "1"), BatchCells(1, 3, 101, "1")});
  rows.AddUnreadFeed({.transaction = "9", .text = "B,9", .rows = 1});
  EXPECT_EQ(site.Store(rows).stored, 1U);
  ASSERT_THAT(site.op.boxes, SizeIs(2));
  EXPECT_THAT(site.op.boxes[0].text, HasSubstr("1 row before it is stored."));
  EXPECT_THAT(site.op.boxes[1].text, HasSubstr("Transaction 9: B,9"));
}

TEST(StoreImportedTransactions, ReportsScanAndCopyAsItGoes) {
  StoreFixture site;
  Execute(site.databases.trans_db_path, "INSERT INTO Transactions ([Transaction]) VALUES (40)");
  site.Store(MakeImport({BatchCells(1, 3, 4, "1"), BatchCells(1, 3, 5, "1")}));
  EXPECT_THAT(site.progress.messages,
              ElementsAre("Scanning Transaction database for next insertion location.",
                          "Copying imported records to Transaction database.",
                          "Successfully copied imported records to Transaction database."));
  EXPECT_THAT(site.progress.ranges, ElementsAre(1, 2));
  EXPECT_THAT(site.progress.values, ElementsAre(1, 1, 2));
}

TEST(StoreImportedTransactions, AnEmptyTableIsNotScanned) {
  StoreFixture site;
  site.Store(MakeImport({BatchCells(1, 3, 4, "1")}));
  EXPECT_THAT(site.progress.messages,
              ElementsAre("Copying imported records to Transaction database.",
                          "Successfully copied imported records to Transaction database."));
  EXPECT_THAT(site.progress.values, ElementsAre(1, 1));
}

TEST(StoreImportedTransactions, EndsWithDateBeepFlagAndSave) {
  StoreFixture site;
  EXPECT_EQ(QueryText(site.databases.trans_db_path, "SELECT Modified FROM History"), "NULL");
  site.Store(MakeImport({BatchCells(1, 3, 4, "1")}));
  EXPECT_EQ(QueryText(site.databases.trans_db_path, "SELECT Modified FROM History"), "2026-01-05");
  EXPECT_EQ(site.op.beeps, 1);
  EXPECT_TRUE(site.stored_flag);
  EXPECT_EQ(site.saves, 1);
  EXPECT_THAT(site.op.boxes, IsEmpty());
}

TEST(StoreImportedTransactions, IsSilentWithTheBeeperOff) {
  StoreFixture site;
  site.settings.SetEnableBeeperOn(false);
  site.Store(MakeImport({BatchCells(1, 3, 4, "1")}));
  EXPECT_EQ(site.op.beeps, 0);
}

TEST(StoreImportedTransactions, TheFlagIsSetBeforeTheDatabaseIsSaved) {
  StoreFixture site;
  bool flag_at_save = false;
  TransactionStore store(site.op, site.settings, site.calendar, site.progress,
                         [&] { flag_at_save = site.stored_flag; });
  store.StoreImportedTransactions(MakeImport({BatchCells(1, 3, 4, "1")}), site.source,
                                  site.databases, site.stored_flag);
  EXPECT_TRUE(flag_at_save);
}

TEST(StoreImportedTransactions, TheSecondPressAsksAndYesAddsAboveTheHighestOfThatTime) {
  StoreFixture site;
  const ImportedData rows = MakeImport(ThreeTransactions());
  site.Store(rows);
  Execute(site.databases.trans_db_path, "INSERT INTO Transactions ([Transaction]) VALUES (90)");
  site.op.answers = {Answer::kYes};
  EXPECT_TRUE(site.Store(rows).complete);
  ASSERT_THAT(site.op.boxes, SizeIs(1));
  EXPECT_EQ(site.op.boxes[0].title, "Duplicate Data");
  EXPECT_TRUE(site.op.boxes[0].refuses_by_default);
  EXPECT_EQ(site.op.boxes[0].icon, Icon::kQuestion);
  EXPECT_EQ(site.op.boxes[0].buttons, Buttons::kYesNo);
  EXPECT_EQ(site.op.boxes[0].text,
            "The current transaction data has already been stored in the active transaction "
            "database. Are you sure you want to add the same data to the database again?");
  EXPECT_THAT(ColumnOf(site, kTransaction),
              ElementsAre("1", "1", "2", "3", "3", "90", "91", "91", "92", "93", "93"));
}

TEST(StoreImportedTransactions, NoToTheSecondPressChangesNothing) {
  StoreFixture site;
  const ImportedData rows = MakeImport(ThreeTransactions());
  site.Store(rows);
  const std::string before = ReadAll(site.databases.trans_db_path);
  site.op.answers = {Answer::kNo};
  const StoreOutcome outcome = site.Store(rows);
  EXPECT_FALSE(outcome.complete);
  EXPECT_EQ(outcome.stored, 0U);
  EXPECT_EQ(ReadAll(site.databases.trans_db_path), before);
  EXPECT_EQ(site.saves, 1);
  EXPECT_TRUE(site.stored_flag);
}

TEST(StoreImportedTransactions, ANumberAtTheLimitIsStoredAndOneBeyondRefusesTheWholeImport) {
  StoreFixture site;
  Execute(site.databases.trans_db_path,
          "INSERT INTO Transactions ([Transaction]) VALUES (2147483645)");
  EXPECT_FALSE(
      site.Store(MakeImport({BatchCells(1, 3, 4, "1"), BatchCells(3, 3, 4, "1")})).complete);
  EXPECT_THAT(site.Stored(), SizeIs(1));
  EXPECT_FALSE(site.stored_flag);
  EXPECT_EQ(site.saves, 0);
  EXPECT_EQ(LastBox(site.op.boxes).title, "Transaction Store Error");
  EXPECT_EQ(LastBox(site.op.boxes).icon, Icon::kCritical);
  EXPECT_EQ(LastBox(site.op.boxes).text,
            "Row 2, Transaction: 3 after the database's highest number 2147483645 is beyond "
            "2147483647.\r\n\r\nNothing of this import was stored.");

  EXPECT_TRUE(site.Store(MakeImport({BatchCells(2, 3, 4, "1")})).complete);
  EXPECT_THAT(ColumnOf(site, kTransaction), ElementsAre("2147483645", "2147483647"));
}

struct BadCell {
  const char* name;
  int column;
  std::string value;
  std::string reported;
};

class StoreStopsAt : public ::testing::TestWithParam<BadCell> {};

TEST_P(StoreStopsAt, TheCellAndKeepsTheRowsBefore) {
  StoreFixture site;
  const BadCell& bad = GetParam();
  const StoreOutcome outcome = site.Store(
      MakeImport({BatchCells(1, 3, 4, "1"), FeedCells(1, 3, 12, "1"),
                  With(FeedCells(2, 3, 12, "1"), bad.column, bad.value), FeedCells(3, 3, 1, "1")}));
  EXPECT_FALSE(outcome.complete);
  EXPECT_EQ(outcome.stored, 2U);
  EXPECT_THAT(ColumnOf(site, kTransaction), ElementsAre("1", "1"));
  ASSERT_THAT(site.op.boxes, SizeIs(1));
  EXPECT_EQ(site.op.boxes[0].icon, Icon::kCritical);
  EXPECT_EQ(site.op.boxes[0].title, "Transaction Store Error");
  EXPECT_EQ(
      site.op.boxes[0].text,
      "Row 3, " + bad.reported + ".\r\n\r\nThe copy stopped there; 2 rows before it are stored.");
  EXPECT_EQ(site.op.beeps, 0);
}

INSTANTIATE_TEST_SUITE_P(
    Cells, StoreStopsAt,
    ::testing::Values(
        BadCell{"RecipeZero", kImportedRecipeID, "0",
                "Recipe ID: found '0', expected an ID from 1 to 100"},
        BadCell{"RecipeBeyond", kImportedRecipeID, "101",
                "Recipe ID: found '101', expected an ID from 1 to 100"},
        BadCell{"RecipeEmpty", kImportedRecipeID, "",
                "Recipe ID: found '', expected an ID from 1 to 100"},
        BadCell{"IngredientZero", kImportedIngredientID, "0",
                "Ingredient ID: found '0', expected an ID from 1 to 100"},
        BadCell{"IngredientBeyond", kImportedIngredientID, "101",
                "Ingredient ID: found '101', expected an ID from 1 to 100"},
        BadCell{"PenZero", kImportedPenID, "0", "Pen ID: found '0', expected an ID from 1 to 400"},
        BadCell{"PenBeyond", kImportedPenID, "401",
                "Pen ID: found '401', expected an ID from 1 to 400"},
        BadCell{"PenNegative", kImportedPenID, "-1",
                "Pen ID: found '-1', expected an ID from 1 to 400"},
        BadCell{"PenNoNumber", kImportedPenID, "PEN\xA0X",
                "Pen ID: found 'PEN\u00A0X', expected an ID from 1 to 400"},
        BadCell{"PenHuge", kImportedPenID, "4294967297",
                "Pen ID: found '4294967297', expected an ID from 1 to 400"},
        BadCell{"NumberZero", kImportedTransactionNumber, "0",
                "Transaction: found '0', expected a whole number from 1"},
        BadCell{"NumberNone", kImportedTransactionNumber, "one",
                "Transaction: found 'one', expected a whole number from 1"},
        BadCell{"Target", kImportedTarget, "12,5", "Target Wt: found '12,5', expected a number"},
        BadCell{"ActualBatch", kImportedActualBatch, "a lot",
                "Batch Wt: found 'a lot', expected a number"},
        BadCell{"ActualFeed", kImportedActualFeed, "1.2.3",
                "Feed Wt: found '1.2.3', expected a number"},
        BadCell{"Percent", kCalculatedIngPercentOfBatch, "%",
                "Ing% Of Batch: found '%', expected a number"},
        BadCell{"IngredientWeight", kFirstIngredientWeight + 31, "x",
                "Ing32 Wt: found 'x', expected a number"},
        BadCell{"ValueOf40Bytes", kImportedTarget, std::string(40, 'x'),
                "Target Wt: found '" + std::string(40, 'x') + "', expected a number"},
        BadCell{"LongValue", kImportedTarget, std::string(60, 'x'),
                "Target Wt: found '" + std::string(40, 'x') + "...', expected a number"}),
    [](const auto& tested) { return tested.param.name; });

class StoreReadsNoTime : public ::testing::TestWithParam<const char*> {};

TEST_P(StoreReadsNoTime, AndStopsThere) {
  StoreFixture site;
  const StoreOutcome outcome = site.Store(MakeImport(
      {BatchCells(1, 3, 4, "1"), With(BatchCells(1, 3, 5, "1"), kImportedTime, GetParam())}));
  EXPECT_FALSE(outcome.complete);
  EXPECT_THAT(site.Stored(), SizeIs(1));
  EXPECT_EQ(LastBox(site.op.boxes).text,
            "Row 2, Time: found '" + std::string(GetParam()) +
                "', expected four digits, hours and minutes, or these with am or pm.\r\n\r\n"
                "The copy stopped there; 1 row before it is stored.");
}

INSTANTIATE_TEST_SUITE_P(Times, StoreReadsNoTime,
                         ::testing::Values("2400", "0860", "083", "08+1", "8", "0830xm", "0030pm",
                                           "1330pm", "0830p"));

class StoreReadsNoDate : public ::testing::TestWithParam<const char*> {};

TEST_P(StoreReadsNoDate, AndStopsThere) {
  StoreFixture site;
  const StoreOutcome outcome = site.Store(MakeImport(
      {BatchCells(1, 3, 4, "1"), With(BatchCells(1, 3, 5, "1"), kImportedDate, GetParam())}));
  EXPECT_FALSE(outcome.complete);
  EXPECT_THAT(site.Stored(), SizeIs(1));
  EXPECT_EQ(LastBox(site.op.boxes).text,
            "Row 2, Date: found '" + std::string(GetParam()) +
                "', expected eight digits: month, day and year.\r\n\r\n"
                "The copy stopped there; 1 row before it is stored.");
}

INSTANTIATE_TEST_SUITE_P(Dates, StoreReadsNoDate,
                         ::testing::Values("13012009", "00012009", "02292009", "01322009",
                                           "01002009", "xx012009", "01xx2009", "0115xxxx",
                                           "01150000", "0115", "011509", "1", "011520091"));

TEST(StoreImportedTransactions, ReadsTheTimesOfADay) {
  StoreFixture site;
  std::vector<RowCells> rows;
  for (const char* time : {"0000", "0010", "1159", "1200", "1405", "2359", "1205am", "0130PM"}) {
    rows.push_back(With(BatchCells(1, 3, 4, "1"), kImportedTime, time));
  }
  ASSERT_TRUE(site.Store(MakeImport(rows)).complete);
  EXPECT_THAT(ColumnOf(site, kTime), ElementsAre("00:00:00", "00:10:00", "11:59:00", "12:00:00",
                                                 "14:05:00", "23:59:00", "00:05:00", "13:30:00"));
}

TEST(StoreImportedTransactions, HoursThatAreNoNumberReadAsMidnight) {
  StoreFixture site;
  ASSERT_TRUE(
      site.Store(MakeImport({With(BatchCells(1, 3, 4, "1"), kImportedTime, "xx30")})).complete);
  EXPECT_THAT(ColumnOf(site, kTime), ElementsAre("00:30:00"));
}

TEST(StoreImportedTransactions, ReadsALeapDay) {
  StoreFixture site;
  ASSERT_TRUE(
      site.Store(MakeImport({With(BatchCells(1, 3, 4, "1"), kImportedDate, "02292024")})).complete);
  EXPECT_THAT(ColumnOf(site, kDate), ElementsAre("2024-02-29"));
}

TEST(StoreImportedTransactions, RowsBeforeABadOneAreStoredSoASecondPressAsks) {
  StoreFixture site;
  const ImportedData rows = MakeImport({BatchCells(1, 3, 4, "1"), BatchCells(1, 3, 101, "1")});
  site.Store(rows);
  EXPECT_TRUE(site.stored_flag);
  EXPECT_EQ(site.saves, 1);
  EXPECT_EQ(QueryText(site.databases.trans_db_path, "SELECT Modified FROM History"), "2026-01-05");
  site.op.answers = {Answer::kNo};
  site.Store(rows);
  EXPECT_EQ(LastBox(site.op.boxes).title, "Duplicate Data");
  EXPECT_THAT(site.Stored(), SizeIs(1));
}

TEST(StoreImportedTransactions, ABadFirstRowStoresNothingAndASecondPressDoesNotAsk) {
  StoreFixture site;
  const ImportedData rows = MakeImport({BatchCells(1, 3, 101, "1"), BatchCells(1, 3, 4, "1")});
  EXPECT_EQ(site.Store(rows).stored, 0U);
  EXPECT_FALSE(site.stored_flag);
  EXPECT_EQ(site.saves, 0);
  EXPECT_EQ(QueryText(site.databases.trans_db_path, "SELECT Modified FROM History"), "NULL");
  EXPECT_EQ(LastBox(site.op.boxes).text,
            "Row 1, Ingredient ID: found '101', expected an ID from 1 to 100.\r\n\r\n"
            "Nothing of this import was stored.");
  site.Store(rows);
  EXPECT_EQ(LastBox(site.op.boxes).title, "Transaction Store Error");
}

TEST(StoreImportedTransactions, LeavesNoStatementOpen) {
  StoreFixture site;
  site.Store(MakeImport(ThreeTransactions()));
  Execute(site.databases.trans_db_path, "BEGIN EXCLUSIVE; DELETE FROM Transactions; COMMIT");
  EXPECT_THAT(site.Stored(), IsEmpty());
}

}  // namespace
}  // namespace vrx::testing
