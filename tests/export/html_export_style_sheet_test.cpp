#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/files.h"
#include "export/html_export.h"
#include "support/fixed_system_info.h"
#include "support/recording_operator.h"
#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kLimit = 1000;
constexpr std::string_view kTampered =
    "Style sheet file has been tampered, Please contact to Administrator.";

class StyleSheetTest : public ::testing::Test {
 protected:
  StyleSheetTest() {
    fs::create_directories(folder_ / "program/XSL");
    fs::create_directories(folder_ / "data");
    fs::create_directories(folder_ / "out");
    system_.program_directory = (folder_ / "program").string();
    WriteFileBytes(folder_ / "program/XSL/RecipesAll.xsl", "<new/>");
  }

  TempFolder folder_;
  FixedSystemInfo system_;
  RecordingOperator op_;
  StyleSheets sheets_{folder_ / "data", system_, op_};
};

TEST_F(StyleSheetTest, IsCopiedBesideTheExportAndReplacesAnEarlierOne) {
  WriteFileBytes(folder_ / "out/RecipesAll.xsl", "<old/>");
  EXPECT_TRUE(sheets_.CopyStyleSheet(3, folder_ / "out"));
  EXPECT_EQ(ReadFileBytes(folder_ / "out/RecipesAll.xsl", kLimit), "<new/>");
  EXPECT_TRUE(op_.boxes.empty());
}

TEST_F(StyleSheetTest, ChangedInPlaceIsCopiedAsItIs) {
  WriteFileBytes(folder_ / "program/XSL/RecipesAll.xsl", "no stylesheet at all");
  EXPECT_TRUE(sheets_.CopyStyleSheet(3, folder_ / "out"));
  EXPECT_EQ(ReadFileBytes(folder_ / "out/RecipesAll.xsl", kLimit), "no stylesheet at all");
}

TEST_F(StyleSheetTest, MissingIsReportedAsTampered) {
  EXPECT_FALSE(sheets_.CopyStyleSheet(8, folder_ / "out"));
  ASSERT_EQ(op_.boxes.size(), 1U);
  EXPECT_EQ(op_.boxes.front().text, kTampered);
  EXPECT_EQ(op_.boxes.front().icon, Icon::kInformation);
  EXPECT_FALSE(FileExists(folder_ / "out/PensFedAll.xsl"));
}

TEST_F(StyleSheetTest, OfAnInvalidGroupIsReportedAsTampered) {
  EXPECT_FALSE(sheets_.CopyStyleSheet(13, folder_ / "out"));
  EXPECT_FALSE(sheets_.CopyStyleSheet(-1, folder_ / "out"));
  EXPECT_EQ(op_.boxes.size(), 2U);
}

TEST_F(StyleSheetTest, AMissingDestinationIsNotReported) {
  EXPECT_TRUE(sheets_.CopyStyleSheet(3, folder_ / "gone"));
  EXPECT_TRUE(op_.boxes.empty());
}

TEST_F(StyleSheetTest, TheExportFolderIsMadeInTheDataFolder) {
  sheets_.MakeExportFolder();
  sheets_.MakeExportFolder();
  EXPECT_TRUE(fs::is_directory(folder_ / "data/Export"));
}

}  // namespace
}  // namespace vrx::testing
