#include "export/csv_export.h"

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/error.h"
#include "base/files.h"
#include "database/connection.h"
#include "export/export_fixture.h"
#include "support/golden.h"
#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;

using ::testing::HasSubstr;
using ::testing::StartsWith;

class CsvExports : public ::testing::Test {
 protected:
  bool Export(int group, const fs::path& file, const std::vector<std::string>& visible,
              std::string_view name = {}) const {
    return CSVExport(site_.Names()).ExportData(group, file, site_.Database(), visible, name);
  }

  // The export with the columns in their initial order; does not check UTF-8.
  std::string Exported(int group, std::string_view name = {}) const {
    const fs::path file = site_.Folder() / "out.csv";
    EXPECT_TRUE(Export(group, file, VisibleColumnsOf(group), name));
    return ReadAll(file);
  }

  // The lines in the file after the export failed with that message.
  std::string LeftByFailure(int group, std::string_view message) const {
    const fs::path file = site_.Folder() / "out.csv";
    try {
      Export(group, file, VisibleColumnsOf(group));
      ADD_FAILURE() << "nothing failed";
    } catch (const Error& error) {
      EXPECT_EQ(error.what(), message);
    }
    return ReadAll(file);
  }

  ExportFixture site_;
};

class CsvOfEveryGroup : public CsvExports, public ::testing::WithParamInterface<int> {};

TEST_P(CsvOfEveryGroup, IsTheGoldenFileByteForByte) {
  const int group = GetParam();
  site_.StoreYard();
  const std::string number = (group < 10 ? "0" : "") + std::to_string(group);
  EXPECT_TRUE(
      IsGolden(Exported(group, YardNameOf(group)), "export/golden/group_" + number + ".csv"));
}

INSTANTIATE_TEST_SUITE_P(AllGroups, CsvOfEveryGroup, ::testing::Range(0, 13));

TEST_F(CsvExports, TwoRowsOfATransactionByBatchAndFeed) {
  site_.Store({{.transaction = 17, .target = 500, .batch = 500.5},
               {.transaction = 17,
                .type = "FEED",
                .pen = "PEN 1",
                .target = 255,
                .time = "06:40:00",
                .feed = 250}});
  EXPECT_EQ(
      Exported(1),
      "Transaction,Type,Recipe,Batch Wt,Ingredient,Feed Wt,Pen,Target Wt,User ID,Time,Date\r\n"
      "17,,,,,,,,,,,\r\n"
      ",BATCH,,,,,,,,,,\r\n"
      ",,STARTER,500.5,,0,,500,7,6:10:00 AM,3/14/2011,\r\n"
      " , ,Total:,500.5, , , ,500, , , ,\r\n"
      ",FEED,,,,,,,,,,\r\n"
      ",,STARTER,0,,250,PEN 1,255,7,6:40:00 AM,3/14/2011,\r\n"
      " , ,Total:, , ,250, ,255, , , ,\r\n");
}

TEST_F(CsvExports, TheRowsOfAPenFollowEachOtherWithNoGroupLine) {
  site_.Store({{.type = "FEED", .pen = "PEN 1", .target = 255, .feed = 250, .weights = {120.5}},
               {.type = "FEED", .pen = "PEN 1", .target = 255, .feed = 248, .weights = {119.5}}});
  const fs::path file = site_.Folder() / "out.csv";
  ASSERT_TRUE(Export(10, file, Slots({"Pen", "Recipe", "Target", "ActualFeed", "Ing01Wt"})));
  EXPECT_EQ(ReadAll(file),
            "Pen,Recipe,Target Wt,Feed Wt,CORN\r\n"
            "PEN 1,STARTER,255,250,120.5,\r\n"
            "PEN 1,STARTER,255,248,119.5,\r\n"
            "Total:, ,510,498, ,\r\n");
}

TEST_F(CsvExports, RunningAgainReplacesTheFileWithoutAQuestion) {
  site_.Store({{.transaction = 1}, {.transaction = 2}, {.transaction = 3}});
  const std::string first = Exported(1);
  site_.Alter("DELETE FROM Transactions WHERE [Transaction] > 1");
  const std::string second = Exported(1);
  EXPECT_LT(second.size(), first.size());
  EXPECT_THAT(first, StartsWith(second));
}

TEST_F(CsvExports, GroupZeroHasOneLinePerRowAndNoTotal) {
  site_.StoreYard();
  const std::string text = Exported(0);
  EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 1 + 9);
  EXPECT_EQ(text.find("Total"), std::string::npos);
}

TEST_F(CsvExports, ANullInTheFirstCellOfGroupZeroIsABlank) {
  site_.Store({{.transaction = 1}});
  site_.Alter("UPDATE Transactions SET [Transaction] = NULL");
  EXPECT_THAT(Exported(0), HasSubstr("\r\n ,STARTER,BATCH,"));
}

TEST_F(CsvExports, ARecipeWithoutNameIsAnErrorAfterTheHeader) {
  site_.Store({{.transaction = 1}, {.transaction = 2, .recipe = ""}});
  EXPECT_EQ(
      LeftByFailure(3,
                    "a row has no Recipe, which is the first column: it cannot be written as CSV"),
      "Recipe,Type,Transaction,Batch Wt,Ingredient,Feed Wt,Pen,Target Wt,User ID,Time,Date\r\n");
}

TEST_F(CsvExports, ARowWithoutADateIsAnErrorByDateAndTheLinesBeforeItStand) {
  site_.Store({{.transaction = 1}, {.transaction = 2, .date = ""}});
  const std::string left =
      LeftByFailure(2, "a row of Transaction 2 has no Date: it cannot be exported by it");
  EXPECT_THAT(left, HasSubstr("\r\n3/14/2011,,,,,,,,,,,\r\n,1,"));
  EXPECT_THAT(left, ::testing::EndsWith("Total:,0, , , ,0, , ,\r\n"));
}

TEST_F(CsvExports, ATypeOfNoNameHasALineWithoutRecordsOrSums) {
  site_.Store({{.transaction = 17, .type = "", .target = 5, .feed = 5}});
  EXPECT_THAT(Exported(1), ::testing::EndsWith("\r\n17,,,,,,,,,,,\r\n"
                                               ",,,,,,,,,,,\r\n"
                                               " , ,Total:, , ,, ,, , , ,\r\n"));
}

TEST_F(CsvExports, ARecipeWithoutIngredientsHasNothingBelowItsLine) {
  site_.Store({{.transaction = 17, .type = "FEED", .pen = "PEN 1", .feed = 5}});
  EXPECT_EQ(Exported(5), "Recipe,Ingredient,Batch Wt\r\nSTARTER,,,\r\n");
}

TEST_F(CsvExports, ASumOverNoValuesIsAnEmptyCell) {
  site_.Store({{.transaction = 17, .ingredient = "CORN", .target = 5}});
  site_.Alter("UPDATE Transactions SET ActualBatch = NULL");
  EXPECT_THAT(Exported(6), ::testing::EndsWith(" ,Total:, ,,5, , , ,\r\n"));
}

TEST_F(CsvExports, ATypeOtherThanBatchIsTreatedAsFeed) {
  site_.Store({{.transaction = 17, .type = "Batch", .target = 5, .batch = 1, .feed = 2}});
  EXPECT_THAT(Exported(1), ::testing::EndsWith(" , ,Total:, , ,2, ,5, , , ,\r\n"));
}

TEST_F(CsvExports, UsersStandInTheOrderOfTheirNumbersOnLinesWithoutCommas) {
  site_.Store({{.transaction = 1, .user = "10"},
               {.transaction = 2, .user = "9"},
               {.transaction = 3, .user = ""}});
  const std::string text = Exported(12);
  const std::size_t none = text.find("\r\n(none)\r\n");
  const std::size_t nine = text.find("\r\n9\r\n");
  const std::size_t ten = text.find("\r\n10\r\n");
  ASSERT_NE(ten, std::string::npos);
  EXPECT_LT(none, nine);
  EXPECT_LT(nine, ten);
}

TEST_F(CsvExports, AnIndexThatIsNoGroupDoesNothing) {
  const fs::path file = site_.Folder().Write("out.csv", "old");
  EXPECT_FALSE(Export(13, file, Slots({"Recipe"})));
  EXPECT_FALSE(Export(-1, file, Slots({"Recipe"})));
  EXPECT_EQ(ReadAll(file), "old");
}

TEST_F(CsvExports, ANameWithRecordsOnlyInOtherCaseIsNotFound) {
  site_.Store({{.recipe = "STARTER"}, {.recipe = "starter", .target = 3}});
  const std::string text = Exported(4, "starter");
  EXPECT_THAT(text, HasSubstr("\r\nstarter,,"));
  EXPECT_EQ(text.find("STARTER"), std::string::npos);
}

TEST_F(CsvExports, AFullDiskIsReported) {
  site_.StoreYard();
  try {
    Export(1, "/dev/full", VisibleColumnsOf(1));
    FAIL() << "the device cannot have taken it";
  } catch (const FileError& error) {
    EXPECT_STREQ(error.what(), "cannot write /dev/full: No space left on device");
  }
  EXPECT_TRUE(fs::exists("/dev/full"));
}

TEST_F(CsvExports, AFolderThatIsMissingIsReported) {
  site_.StoreYard();
  const fs::path file = site_.Folder() / "gone" / "out.csv";
  try {
    Export(1, file, VisibleColumnsOf(1));
    FAIL() << "there is no such folder";
  } catch (const FileError& error) {
    EXPECT_EQ(error.what(), "cannot write " + file.string() + ": No such file or directory");
  }
}

TEST_F(CsvExports, AFolderOfTheFilesNameIsLeftAlone) {
  site_.StoreYard();
  const fs::path file = site_.Folder() / "out.csv";
  fs::create_directory(file);
  EXPECT_THROW(Export(1, file, VisibleColumnsOf(1)), FileError);
  EXPECT_TRUE(fs::is_directory(file));
}

TEST_F(CsvExports, ALinkIsReplacedAndWhatItPointsToStays) {
  site_.StoreYard();
  const fs::path kept = site_.Folder().Write("kept.csv", "kept");
  fs::create_symlink(kept, site_.Folder() / "out.csv");
  EXPECT_THAT(Exported(1), StartsWith("Transaction,"));
  EXPECT_EQ(ReadAll(kept), "kept");
}

TEST_F(CsvExports, ADatabaseThatDoesNotOpenLeavesTheOldFile) {
  const fs::path file = site_.Folder().Write("out.csv", "old");
  fs::remove(site_.Database());
  EXPECT_THROW(Export(1, file, VisibleColumnsOf(1)), DatabaseError);
  EXPECT_EQ(ReadAll(file), "old");
}

TEST_F(CsvExports, ATableThatIsGoneIsAnErrorOfTheDatabase) {
  site_.Alter("DROP TABLE Transactions");
  EXPECT_THROW(Export(1, site_.Folder() / "out.csv", VisibleColumnsOf(1)), DatabaseError);
}

}  // namespace
}  // namespace vrx::testing
