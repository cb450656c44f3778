#include <sstream>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "ctl/ctl_fixture.h"
#include "exchange/transaction_texts.h"

namespace vrx::testing {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;
using Json = nlohmann::ordered_json;

class ImportCommands : public CtlTest {
 protected:
  int Store(const std::string& into, std::vector<std::string> more = {}) {
    more.insert(more.begin(), {"store", file, "--into", into, "--recipes", recipes});
    return Run(more);
  }
  Json Info(const std::string& path) {
    EXPECT_EQ(Run({"info", path, "--json"}), 0) << err;
    return Json::parse(out);
  }

  std::string file = folder.Write("DAY.QXT", kWorkedExample).string();
  std::string recipes = SitePath("SITE.RDB");
};

TEST_F(ImportCommands, ImportCountsBatchesAndRows) {
  EXPECT_EQ(Run({"import", file, "--json"}), 0) << err;
  EXPECT_EQ(Json::parse(out), Json::parse(R"({"units":"LB","batches":2,"rows":6,"notRead":0})"));
  EXPECT_EQ(Run({"import", file}), 0);
  EXPECT_EQ(out, "units\tbatches\trows\tnotRead\nLB\t2\t6\t0\n");
}

TEST_F(ImportCommands, ImportAsCsvShowsTheColumnsUnderTheirKeys) {
  ASSERT_EQ(Run({"import", file, "--csv"}), 0) << err;
  std::istringstream lines(out);
  std::string header;
  std::getline(lines, header);
  EXPECT_THAT(header, StartsWith("Imported_TransactionNumber,Imported_RecipeID,Imported_Type,"
                                 "Imported_Target,Imported_IngredientID,Imported_ActualBatch,"
                                 "Imported_PenID,Imported_ActualFeed,Imported_Time,Imported_Date,"
                                 "Imported_UserID,Calculated_Ing%OfBatch,Calculated_Ing01Wt,"));
  EXPECT_EQ(std::count(header.begin(), header.end(), ','), 111);
  std::string batch;
  std::getline(lines, batch);
  EXPECT_THAT(batch, StartsWith("1,3,BATCH,1000.0,4,998.0,,,0830,01152009,2,66.4"));
  int rows = 1;
  std::string feed;
  for (std::string line; std::getline(lines, line); ++rows) {
    EXPECT_EQ(std::count(line.begin(), line.end(), ','), 111);
    EXPECT_EQ(line.back(), '\r');
    feed = line;
  }
  EXPECT_EQ(rows, 6);
  EXPECT_THAT(feed, StartsWith("2,3,FEED,800.0,,,12,801.0,0958,01152009,2,,,,,801.0,,"));
}

TEST_F(ImportCommands, ImportShowsItsProgressOnATerminalUntilTheResultComes) {
  err_is_terminal = true;
  EXPECT_EQ(Run({"import", file, "--json"}), 0);
  EXPECT_THAT(err, HasSubstr("Extracting batch and feed data..."));
  EXPECT_EQ(Screen(), out);
}

TEST_F(ImportCommands, ImportShowsTheFeedsThatFitNoBatch) {
  file = folder
             .Write("ODD.QXT",
                    FileOf(OneIngredient{}.Record(), FeedOf("9", "6.0") + FeedOf("1", "5.0")))
             .string();
  EXPECT_EQ(Run({"import", file, "--json"}), 0) << err;
  EXPECT_EQ(Json::parse(out), Json::parse(R"({"units":"LB","batches":1,"rows":3,"notRead":1})"));
  EXPECT_EQ(err,
            "Import: 1 feed record fits no batch of the file and was not read:\n"
            "Transaction 9: B,9,12,2,0915,01152009,750.0,6.0\n");
}

TEST_F(ImportCommands, StoreStoresTheOtherRowsAndExitsWithOneForFeedsThatFitNoBatch) {
  file = folder
             .Write("ODD.QXT",
                    FileOf(OneIngredient{}.Record(), FeedOf("9", "6.0") + FeedOf("1", "5.0")))
             .string();
  const std::string into = NewTransactionDatabase();
  EXPECT_EQ(Store(into), 1);
  EXPECT_THAT(err, HasSubstr("Transaction Store: 1 feed record fits no batch of the file and was "
                             "not stored:\nTransaction 9: B,9,12,2,0915,01152009,750.0,6.0\n"));
  EXPECT_THAT(err, EndsWith("Successfully copied imported records to Transaction database.\n"
                            "rows read: 3, stored: 2, left out: 1, not read: 1\n"));
  EXPECT_EQ(Info(into)["rows"], 2);
}

TEST_F(ImportCommands, ImportReportsAMissingFile) {
  EXPECT_EQ(Run({"import", (folder / "NONE.QXT").string()}), 1);
  EXPECT_THAT(err, StartsWith("Import Error: Could not find transaction file.\n"));
  EXPECT_THAT(out, IsEmpty());
}

TEST_F(ImportCommands, ImportReportsWhatTheParserMissed) {
  file = folder.Write("BAD.QXT", "no transactions here").string();
  EXPECT_EQ(Run({"import", file}), 1);
  EXPECT_THAT(err, StartsWith("Import Error: No file-type identifier detected."));
}

TEST_F(ImportCommands, StoreCopiesAndCounts) {
  const std::string into = NewTransactionDatabase();
  EXPECT_EQ(Store(into), 0) << err;
  EXPECT_EQ(err,
            "Successfully copied imported records to Transaction database.\n"
            "rows read: 6, stored: 6, left out: 0\n");
  EXPECT_THAT(out, IsEmpty());
  EXPECT_EQ(Info(into), Json::parse(R"({"type":"transaction","units":"LB",
      "created":"2026-01-05","modified":"2026-01-05","rows":6,"transactions":2,
      "firstDate":"2009-01-15","lastDate":"2009-01-15"})"));
}

TEST_F(ImportCommands, InfoShowsTheFirstAndTheLastDate) {
  const std::string into = NewTransactionDatabase();
  ASSERT_EQ(Store(into), 0);
  OpenDatabase(into, Access::kWrite)
      .exec("UPDATE Transactions SET Date = '2009-02-03' WHERE rowid = 2");
  EXPECT_EQ(Info(into)["firstDate"], "2009-01-15");
  EXPECT_EQ(Info(into)["lastDate"], "2009-02-03");
}

TEST_F(ImportCommands, StoringAllAgainContinuesAfterTheHighestNumber) {
  const std::string into = NewTransactionDatabase();
  ASSERT_EQ(Store(into), 0);
  ASSERT_EQ(Store(into, {"--repeated", "all"}), 0) << err;
  EXPECT_EQ(Info(into)["rows"], 12);
  EXPECT_EQ(Info(into)["transactions"], 4);
}

TEST_F(ImportCommands, WithoutATerminalARepeatedFileIsNotStored) {
  const std::string into = NewTransactionDatabase();
  ASSERT_EQ(Store(into), 0);
  EXPECT_EQ(Store(into), 1);
  EXPECT_EQ(err,
            "Repeated Batches: The transaction database has batches of this import already.\n\n"
            "2 batches are there already, as transactions 1-2.\nNo batch is new.\n"
            "cause: Batches 1-2: the same as transactions 1-2\n"
            "answered with Nothing (--yes answers with New)\n");
  EXPECT_EQ(Info(into)["rows"], 6);
  EXPECT_EQ(Store(into, {"--repeated", "none"}), 1);
  EXPECT_THAT(err, HasSubstr("Nothing was stored."));
  EXPECT_EQ(Info(into)["rows"], 6);
}

TEST_F(ImportCommands, YesAndRepeatedNewStoreWhatIsNew) {
  const std::string into = NewTransactionDatabase();
  const std::string first =
      folder.Write("FIRST.QXT", FileOf(OneIngredient{}.Record(), "")).string();
  const std::string both =
      folder.Write("BOTH.QXT", FileOf(OneIngredient{}.Record(), FeedOf("1", "5.0"))).string();
  file = first;
  ASSERT_EQ(Store(into), 0) << err;
  file = both;
  EXPECT_EQ(Store(into, {"--repeated", "new"}), 0);
  EXPECT_EQ(err,
            "Successfully copied imported records to Transaction database.\n"
            "rows read: 2, stored: 1, left out: 0, repeated: 1\n");
  EXPECT_EQ(Store(into, {"--yes"}), 0);
  EXPECT_THAT(err, EndsWith("All imported records are in the Transaction database already.\n"
                            "rows read: 2, stored: 0, left out: 0, repeated: 2\n"));
  EXPECT_EQ(Info(into)["rows"], 2);
}

TEST_F(ImportCommands, TheQuestionAboutRepeatedBatchesIsAnsweredOnTheTerminal) {
  const std::string into = NewTransactionDatabase();
  ASSERT_EQ(Store(into), 0);
  in_is_terminal = true;
  typed = "\n";
  EXPECT_EQ(Store(into), 1);
  EXPECT_THAT(err, EndsWith("New, All or Nothing? "));
  typed = "a\n";
  EXPECT_EQ(Store(into), 0);
  EXPECT_EQ(Info(into)["rows"], 12);
}

TEST_F(ImportCommands, UndoTakesTheLastStoreBackOnce) {
  const std::string into = NewTransactionDatabase();
  ASSERT_EQ(Store(into), 0);
  EXPECT_EQ(Run({"store", "--undo", "--into", into}), 1);
  EXPECT_THAT(err, StartsWith("Undo the Last Store: Do you want to take the records of the last "
                              "store out of the database?\n\nDAY.QXT, stored on "));
  EXPECT_EQ(Info(into)["rows"], 6);
  EXPECT_EQ(Run({"--yes", "store", "--undo", "--into", into}), 0);
  EXPECT_THAT(err, EndsWith("The last store was undone: 6 rows taken out.\n"));
  EXPECT_EQ(Info(into)["rows"], 0);
  EXPECT_EQ(Run({"--yes", "store", "--undo", "--into", into}), 1);
}

TEST_F(ImportCommands, StoreNeedsAFileAndARecipeDatabaseUnlessItUndoes) {
  const std::string into = NewTransactionDatabase();
  EXPECT_EQ(Run({"store", "--into", into, "--recipes", recipes}), 2);
  EXPECT_EQ(Run({"store", file, "--into", into}), 2);
  EXPECT_EQ(Run({"store", file, "--undo", "--into", into}), 2);
  EXPECT_EQ(Run({"store", file, "--into", into, "--recipes", recipes, "--repeated", "some"}), 2);
}

TEST_F(ImportCommands, StoreAsksWhenTheUnitsDiffer) {
  const std::string into = (folder / "K.TDB").string();
  ASSERT_EQ(Run({"new", "transaction", into, "--units", "KG"}), 0);
  EXPECT_EQ(Store(into), 1);
  EXPECT_THAT(err, StartsWith("Weight Units Error: The units-of-measure of the imported "
                              "transaction file is not the same as the transaction database."));
  EXPECT_EQ(Info(into)["rows"], 0);
  EXPECT_EQ(Store(into, {"--yes"}), 0);
  EXPECT_EQ(Info(into)["rows"], 6);
}

TEST_F(ImportCommands, StoreRefusesDatabasesOfTheWrongKind) {
  const std::string into = NewTransactionDatabase();
  EXPECT_EQ(Store(recipes), 1);
  EXPECT_THAT(err, StartsWith("Invalid Database: The database file (SITE.RDB) that you specified, "
                              "is not a valid VRX-2260 transaction database.\n"));
  recipes = into;
  EXPECT_EQ(Store(into), 1);
  EXPECT_THAT(err, StartsWith("Invalid Database: The database file (YARD.TDB) that you specified, "
                              "is not a valid VRX-2260 recipe database.\n"));
  EXPECT_EQ(Info(into)["rows"], 0);
}

TEST_F(ImportCommands, StoreReportsTheRowThatStopsItAndKeepsThoseBefore) {
  std::string text(kWorkedExample);
  text.replace(text.find("B,1,14"), 6, "B,1,999");
  file = folder.Write("BAD.QXT", text).string();
  const std::string into = NewTransactionDatabase();
  EXPECT_EQ(Store(into), 1);
  EXPECT_THAT(err, HasSubstr("999"));
  EXPECT_THAT(err, HasSubstr("rows read: 6, stored: 3, left out: 0\n"));
  EXPECT_EQ(Info(into)["rows"], 3);
}

TEST_F(ImportCommands, AFailedParseStoresNothing) {
  file = folder.Write("BAD.QXT", kWorkedExample.substr(0, 100)).string();
  const std::string into = NewTransactionDatabase();
  EXPECT_EQ(Store(into), 1);
  EXPECT_THAT(err, StartsWith("Import Error: "));
  EXPECT_EQ(Info(into)["rows"], 0);
}

}  // namespace
}  // namespace vrx::testing
