#include "exchange/transaction_parser.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "exchange/parsed_text.h"
#include "exchange/transaction_texts.h"
#include "support/boxes.h"
#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

// Batch 1 weighs 998 + 504 = 1502 in whole units: 503.5 is rounded to the even 504.
//   998 / 1502 = 0.66444740..., in single * 100 = 66.44474, so 66.4447
//   504 / 1502 = 0.33555259..., in single * 100 = 33.55526, so 33.5553
// Its feeds, by the percentages as written:
//   748.5 * 0.664447 = 497.3386, so 497.3;  748.5 * 0.335553 = 251.1614, so 251.2
//   752.0 * 0.664447 = 499.6641, so 499.7;  752.0 * 0.335553 = 252.3359, so 252.3
// Batch 2 is one ingredient: 801 / 801 = 100 %, and 801.0 * 1 = 801.0.
TEST(ParseTransactionFile, ReadsTheWorkedExample) {
  const ParsedText parsed(kWorkedExample);

  ASSERT_EQ(parsed.error, "");
  EXPECT_EQ(parsed.file.FileUnits(), "LB");
  EXPECT_EQ(parsed.file.FileTransactionCount(), 2);
  EXPECT_EQ(parsed.file.FileRecordCount(), 6);
  ASSERT_EQ(parsed.file.Imported().RowCount(), 6U);
  EXPECT_EQ(parsed.Row(1), "1|3|BATCH|1000.0|4|998.0|||0830|01152009|2|66.4447|");
  EXPECT_EQ(parsed.Row(2), "1|3|BATCH|500.0|7|503.5|||0835|01152009|2|33.5553|");
  EXPECT_EQ(parsed.Row(3), "1|3|FEED|750.0|||12|748.5|0915|01152009|2||");
  EXPECT_EQ(parsed.Row(4), "1|3|FEED|750.0|||14|752.0|0921|01152009|2||");
  EXPECT_EQ(parsed.Row(5), "2|3|BATCH|800.0|4|801.0|||0910|01152009|2|100.0000|");
  EXPECT_EQ(parsed.Row(6), "2|3|FEED|800.0|||12|801.0|0958|01152009|2||");
  EXPECT_EQ(parsed.Weights(1), "");
  EXPECT_EQ(parsed.Weights(2), "");
  EXPECT_EQ(parsed.Weights(3), "4=497.3 7=251.2 ");
  EXPECT_EQ(parsed.Weights(4), "4=499.7 7=252.3 ");
  EXPECT_EQ(parsed.Weights(5), "");
  EXPECT_EQ(parsed.Weights(6), "4=801.0 ");
}

TEST(ParseTransactionFile, ReadsSuffixedTimes) {
  std::string text(kWorkedExample);
  text.replace(text.find("0830"), 4, "0830am");
  text.replace(text.find("0835"), 4, "0835AM");
  const ParsedText parsed(text);
  ASSERT_EQ(parsed.error, "");
  EXPECT_EQ(parsed.file.FileRecordCount(), 6);
  EXPECT_EQ(parsed.Cell(1, kImportedTime), "0830am");
  EXPECT_EQ(parsed.Cell(2, kImportedTime), "0835AM");
}

TEST(ParseTransactionFile, ShowsTheGridAndBeepsAtItsEnd) {
  const ParsedText parsed(kWorkedExample);
  EXPECT_EQ(parsed.columns_configured, 1);
  EXPECT_EQ(parsed.shown, std::vector<int>{6});
  EXPECT_EQ(parsed.op.beeps, 1);
  EXPECT_EQ(parsed.progress.messages.front(), "Initializing...");
  EXPECT_EQ(parsed.progress.messages.at(1), "Extracting batch and feed data...");
  EXPECT_EQ(parsed.progress.Message(), "Transaction file import completed! Ready to store.");
}

TEST(ParseTransactionFile, DoesNotBeepWithTheBeeperOff) {
  TransFile file;
  file.SetText(std::string(kWorkedExample));
  RecordingProgress progress;
  RecordingOperator op;
  PrivateINI settings;
  settings.SetEnableBeeperOn(false);
  EXPECT_EQ(file.ParseTransactionFile(progress, {}, op, settings), "");
  EXPECT_EQ(op.beeps, 0);
}

TEST(ParseTransactionFile, WritesAnErrorToTheProgressMessageAndShowsNoGrid) {
  const ParsedText parsed("no such file");
  EXPECT_EQ(parsed.error, "No file-type identifier detected.");
  EXPECT_EQ(parsed.progress.Message(), parsed.error);
  EXPECT_TRUE(parsed.shown.empty());
  EXPECT_EQ(parsed.op.beeps, 0);
}

TEST(ParseTransactionFile, ReplacesThePreviousParse) {
  TransFile file;
  RecordingProgress progress;
  RecordingOperator op;
  const PrivateINI settings;
  file.SetText(std::string(kWorkedExample));
  ASSERT_EQ(file.ParseTransactionFile(progress, {}, op, settings), "");

  std::string other = FileOf(OneIngredient{.transaction = "9"}.Record(), "");
  other[other.find(",L") + 1] = 'k';
  file.SetText(other);
  ASSERT_EQ(file.ParseTransactionFile(progress, {}, op, settings), "");
  EXPECT_EQ(file.FileUnits(), "KG");
  EXPECT_EQ(file.FileTransactionCount(), 1);
  EXPECT_EQ(file.FileRecordCount(), 1);
  EXPECT_EQ(file.Imported().RowCount(), 1U);
  EXPECT_EQ(file.Imported().Cell(1, kImportedTransactionNumber), "9");
}

TEST(ParseTransactionFile, KeepsTheTextAsBytes) {
  std::string text(kWorkedExample);
  text.replace(text.find(",12,2,0915"), 5, ",12,\xC4");
  const ParsedText parsed(text);
  ASSERT_EQ(parsed.error, "");
  EXPECT_EQ(parsed.Cell(3, kImportedUserID), "\xC4");
}

TEST(ParseTransactionFile, DropsTextBeforeTheIdentifier) {
  // Seven characters before the identifier: the unit is read seven characters too late.
  std::string text(kWorkedExample);
  text.replace(text.find("L\r\n[BAT]"), 1, "L123456K");
  const ParsedText parsed("garbage" + text);
  ASSERT_EQ(parsed.error, "");
  EXPECT_EQ(parsed.file.FileRecordCount(), 6);
  EXPECT_EQ(parsed.file.FileUnits(), "KG");
}

TEST(ParseTransactionFile, ReadsTheUnitShiftedByTheTextBeforeTheIdentifier) {
  EXPECT_EQ(ParsedText("x" + std::string(kWorkedExample)).error, "No units-of-measure detected.");
}

TEST(ParseTransactionFile, AcceptsEitherUnitInEitherCase) {
  const std::map<char, std::string> units = {{'L', "LB"}, {'l', "LB"}, {'K', "KG"}, {'k', "KG"}};
  for (const auto& [letter, unit] : units) {
    std::string text(kWorkedExample);
    text[10] = letter;
    const ParsedText parsed(text);
    EXPECT_EQ(parsed.error, "") << letter;
    EXPECT_EQ(parsed.file.FileUnits(), unit) << letter;
  }
}

TEST(ParseTransactionFile, AcceptsAnEmptyFeedSection) {
  const ParsedText parsed(FileOf(OneIngredient{}.Record(), ""));
  ASSERT_EQ(parsed.error, "");
  EXPECT_EQ(parsed.file.FileRecordCount(), 1);
  EXPECT_EQ(parsed.Cell(1, kCalculatedIngPercentOfBatch), "100.0000");
}

TEST(ParseTransactionFile, DoesNotNeedTheLineFeedOfTheLastEmptyLine) {
  std::string text(kWorkedExample);
  text.pop_back();
  EXPECT_EQ(ParsedText(text).error, "");
  text.pop_back();
  EXPECT_EQ(ParsedText(text).error, "No feed section terminator detected.");
}

TEST(ParseTransactionFile, TreatsAWeightUnderOneHalfAsZero) {
  // 0.4 is rounded to 0 and 1.5 to 2: 0 of 2 and 2 of 2.
  const ParsedText parsed(FileOf("B,1,3,01152009,2,4,7,0,0;0830,0835,0,0;1,1,0,0;0.4,1.5,0,0\r\n",
                                 FeedOf("1", "10.0")));
  ASSERT_EQ(parsed.error, "");
  EXPECT_EQ(parsed.Cell(1, kCalculatedIngPercentOfBatch), "0.0000");
  EXPECT_EQ(parsed.Cell(2, kCalculatedIngPercentOfBatch), "100.0000");
  EXPECT_EQ(parsed.Weights(3), "7=10.0 ");
}

TEST(ParseTransactionFile, GivesABatchOfNoWeightNoPercentagesAndItsFeedsNoShares) {
  const ParsedText parsed(FileOf(OneIngredient{.actual = "0.5"}.Record(), FeedOf("1", "10.0")));
  ASSERT_EQ(parsed.error, "");
  EXPECT_EQ(parsed.Cell(1, kCalculatedIngPercentOfBatch), "0.0000");
  EXPECT_EQ(parsed.Row(2), "1|3|FEED|750.0|||12|10.0|0915|01152009|2||");
  EXPECT_EQ(parsed.Weights(2), "");
}

TEST(ParseTransactionFile, TreatsAWeightThatIsNotANumberAsZero) {
  const ParsedText parsed(
      FileOf("B,1,3,01152009,2,4,7,0,0;0830,0835,0,0;1,1,0,0;x,50,0,0\r\n", ""));
  ASSERT_EQ(parsed.error, "");
  EXPECT_EQ(parsed.Cell(1, kImportedActualBatch), "x");
  EXPECT_EQ(parsed.Cell(1, kCalculatedIngPercentOfBatch), "0.0000");
  EXPECT_EQ(parsed.Cell(2, kCalculatedIngPercentOfBatch), "100.0000");
}

TEST(ParseTransactionFile, SizesRowsForEveryBOfTheFeeds) {
  std::string feed = FeedOf("1", "5.0");
  feed.replace(feed.find(",12,"), 4, ",BB,");
  const ParsedText parsed(FileOf(OneIngredient{}.Record(), feed));
  ASSERT_EQ(parsed.error, "");
  EXPECT_EQ(parsed.file.FileRecordCount(), 4);
  EXPECT_EQ(parsed.Cell(2, kImportedPenID), "BB");
  EXPECT_FALSE(parsed.file.Imported().Filled(3));
}

TEST(ParseTransactionFile, ReadsNoFeedsIfNoneIsCounted) {
  std::string feed = FeedOf("1", "5.0");
  feed[0] = 'b';
  const ParsedText parsed(FileOf(OneIngredient{}.Record(), feed));
  ASSERT_EQ(parsed.error, "");
  EXPECT_EQ(parsed.file.FileRecordCount(), 1);
}

TEST(ParseTransactionFile, LeavesTheFieldsEmptyThatTheLastFeedRecordLacks) {
  const ParsedText parsed(FileOf(OneIngredient{}.Record(), "B,1,12,2\r\n"));
  ASSERT_EQ(parsed.error, "");
  ASSERT_EQ(parsed.file.FileRecordCount(), 2);
  EXPECT_EQ(parsed.Row(2), "1|3|FEED||||12||||2||");
  EXPECT_EQ(parsed.Weights(2), "");
}

TEST(ParseTransactionFile, GivesNoShareOfAnEmptyFeedWeight) {
  const ParsedText parsed(FileOf(OneIngredient{}.Record(), FeedOf("1", "")));
  ASSERT_EQ(parsed.error, "");
  EXPECT_EQ(parsed.Weights(2), "");
}

TEST(ParseTransactionFile, LeavesTheWeightOfAnIngredientBeyondTheColumnsOut) {
  for (const char* id : {"101", "99999999999", "1e300"}) {
    const ParsedText parsed(FileOf(OneIngredient{.ingredient = id}.Record(), FeedOf("1", "5.0")));
    ASSERT_EQ(parsed.error, "") << id;
    EXPECT_EQ(parsed.Cell(1, kCalculatedIngPercentOfBatch), "100.0000");
    EXPECT_EQ(parsed.Weights(2), "") << id;
  }
}

TEST(ParseTransactionFile, FillsTheFirstAndTheLastIngredientColumn) {
  const ParsedText parsed(
      FileOf("B,1,3,01152009,2,1,100,0,0;0830,0835,0,0;1,1,0,0;1,1,0,0\r\n", FeedOf("1", "5.0")));
  ASSERT_EQ(parsed.error, "");
  EXPECT_EQ(parsed.Cell(3, kFirstIngredientWeight), "2.5");
  EXPECT_EQ(parsed.Cell(3, kImportColumns), "2.5");
}

TEST(ParseTransactionFile, StopsTheSharesAtAnIngredientOfZero) {
  // A list of ingredients has at least one entry, "0" or not.
  const ParsedText parsed(
      FileOf("B,1,3,01152009,2,0,0,0;0830,0,0;1,0,0;1,0,0\r\n" + OneIngredient{}.Record(),
             FeedOf("1", "5.0")));
  ASSERT_EQ(parsed.error, "");
  EXPECT_EQ(parsed.Cell(1, kImportedIngredientID), "0");
  EXPECT_EQ(parsed.Weights(2), "");
}

TEST(ParseTransactionFile, SharesByAllRecordsOfANumber) {
  // Two records of number 1: 30 and 10 of 40.
  const ParsedText parsed(FileOf(OneIngredient{.actual = "30"}.Record() +
                                     OneIngredient{.ingredient = "7", .actual = "10"}.Record(),
                                 FeedOf("1", "8.0")));
  ASSERT_EQ(parsed.error, "");
  EXPECT_EQ(parsed.Cell(1, kCalculatedIngPercentOfBatch), "75.0000");
  EXPECT_EQ(parsed.Weights(2), "4=6.0 7=2.0 ");
  EXPECT_EQ(parsed.Cell(3, kCalculatedIngPercentOfBatch), "25.0000");
}

TEST(ParseTransactionFile, TakesHighAndScatteredTransactionNumbers) {
  const ParsedText parsed(FileOf(OneIngredient{.transaction = "2147483646"}.Record() +
                                     OneIngredient{.transaction = "5"}.Record(),
                                 FeedOf("2147483646", "5.0") + FeedOf("5", "6.0")));
  ASSERT_EQ(parsed.error, "");
  EXPECT_EQ(parsed.Weights(2), "4=5.0 ");
  EXPECT_EQ(parsed.Weights(4), "4=6.0 ");
}

class LoadTransactionFile : public ::testing::Test {
 protected:
  bool Load() {
    return file_.LoadTransactionFile(op_, [this] { ++focused_; });
  }

  TempFolder folder_;
  RecordingOperator op_;
  TransFile file_;
  int focused_ = 0;
};

TEST_F(LoadTransactionFile, AsksForAFileIfNoneIsSet) {
  EXPECT_FALSE(Load());
  EXPECT_THAT(OnlyBox(op_.boxes), IsBox(Icon::kWarning, "Import Error",
                                        "Please select a transaction (.QXT) file to import."));
  EXPECT_EQ(focused_, 1);
}

TEST_F(LoadTransactionFile, ReportsAMissingFile) {
  file_.SetFilePath((folder_ / "GONE.QXT").string());
  EXPECT_FALSE(Load());
  EXPECT_THAT(OnlyBox(op_.boxes),
              IsBox(Icon::kWarning, "Import Error", "Could not find transaction file."));
  EXPECT_EQ(focused_, 0);
}

TEST_F(LoadTransactionFile, ReportsAFileThatCannotBeRead) {
  std::filesystem::create_directory(folder_ / "FOLDER.QXT");
  file_.SetFilePath((folder_ / "FOLDER.QXT").string());
  EXPECT_FALSE(Load());
  EXPECT_THAT(OnlyBox(op_.boxes),
              IsBox(Icon::kWarning, "Import Error", "Could not read transaction file."));
  EXPECT_NE(op_.boxes[0].cause, "");
}

TEST_F(LoadTransactionFile, AcceptsTheLongestFile) {
  std::string text(kWorkedExample);
  text.resize(65535, ' ');
  file_.SetFilePath(folder_.Write("MAX.QXT", text).string());
  EXPECT_TRUE(Load());
  EXPECT_TRUE(op_.boxes.empty());
  RecordingProgress progress;
  EXPECT_EQ(file_.ParseTransactionFile(progress, {}, op_, PrivateINI()), "");
  EXPECT_EQ(file_.FileRecordCount(), 6);
}

TEST_F(LoadTransactionFile, RefusesALongerFile) {
  file_.SetFilePath(folder_.Write("LONG.QXT", std::string(65536, ' ')).string());
  EXPECT_FALSE(Load());
  EXPECT_THAT(OnlyBox(op_.boxes),
              IsBox(Icon::kWarning, "Import Error",
                    "Transaction file data exceeds maximum limit of 65535 characters."));
}

TEST_F(LoadTransactionFile, ReadsOnlyTheBeginningOfAHugeFile) {
  // A sparse file of 1 TB: reading it whole would end the test by memory or by time.
  const std::filesystem::path path = folder_.Write("HUGE.QXT", "");
  std::filesystem::resize_file(path, std::uintmax_t{1} << 40);
  file_.SetFilePath(path.string());
  EXPECT_FALSE(Load());
  EXPECT_THAT(OnlyBox(op_.boxes),
              IsBox(Icon::kWarning, "Import Error",
                    "Transaction file data exceeds maximum limit of 65535 characters."));
}

TEST(TransFile, HoldsItsWorkingValues) {
  TransFile file;
  EXPECT_EQ(file.FileRecordCount(), 0);
  EXPECT_EQ(file.FileUnits(), "");
  file.SetFileRecordCount(7);
  file.SetFileTransactionCount(2);
  file.SetFileUnits("KG");
  file.SetFileName("MAY.QXT");
  file.SetFilePath("/data/may.qxt");
  EXPECT_EQ(file.FileRecordCount(), 7);
  EXPECT_EQ(file.FileTransactionCount(), 2);
  EXPECT_EQ(file.FileUnits(), "KG");
  EXPECT_EQ(file.FileName(), "MAY.QXT");
  EXPECT_EQ(file.FilePath(), "/data/may.qxt");
}

}  // namespace
}  // namespace vrx::testing
