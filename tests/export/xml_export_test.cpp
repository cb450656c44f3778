#include "export/xml_export.h"

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/error.h"
#include "base/files.h"
#include "database/connection.h"
#include "export/export_fixture.h"
#include "support/fixed_system_info.h"
#include "support/golden.h"
#include "support/recording_operator.h"
#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;

using ::testing::HasSubstr;
using ::testing::Not;

constexpr std::size_t kLongestFile = std::size_t{16} * 1024 * 1024;

std::string ReadAll(const fs::path& path) { return ReadFileBytes(path, kLongestFile); }

class XmlExports : public ::testing::Test {
 protected:
  XmlExports() {
    fs::create_directories(data_ / "XSL");
    for (const char* name : {"TranByBatchFed.xsl", "UserByBatchFed.xsl"}) {
      WriteFileBytes(data_ / "XSL" / name, "<sheet/>");
    }
    system_.program_directory = data_.string();
  }

  bool Export(int group, const fs::path& file, std::string_view name = {}) {
    const StyleSheets sheets(data_, system_, op_);
    return XMLExport(site_.Names(), sheets)
        .ExportData(group, file, site_.Database(), VisibleColumnsOf(group), name);
  }

  std::string Exported(int group, std::string_view name = {}) {
    EXPECT_TRUE(Export(group, file_, name));
    return ReadAll(file_);
  }

  ExportFixture site_;
  fs::path file_ = site_.Folder() / "out.xml";
  fs::path data_ = site_.Folder() / "data";
  FixedSystemInfo system_;
  RecordingOperator op_;
};

class XmlOfEveryGroup : public XmlExports, public ::testing::WithParamInterface<int> {
 protected:
  // Below tests/.
  static std::string Golden() {
    const std::string number = (GetParam() < 10 ? "0" : "") + std::to_string(GetParam());
    return "export/golden/group_" + number + ".xml";
  }
};

TEST_P(XmlOfEveryGroup, IsTheGoldenFileByteForByte) {
  site_.StoreYard();
  EXPECT_TRUE(IsGolden(Exported(GetParam(), YardNameOf(GetParam())), Golden()));
}

TEST_P(XmlOfEveryGroup, IsWellFormed) {
  EXPECT_EQ(std::system(("xmllint --noout '" VRX_SOURCE_DIR "/tests/" + Golden() + "'").c_str()),
            0);
}

INSTANTIATE_TEST_SUITE_P(AllGroups, XmlOfEveryGroup, ::testing::Range(0, 13));

TEST_F(XmlExports, TwoRowsOfATransactionByBatchAndFeed) {
  site_.Store({{.transaction = 17, .target = 500, .batch = 500.5},
               {.transaction = 17,
                .type = "FEED",
                .pen = "PEN 1",
                .target = 255,
                .time = "06:40:00",
                .feed = 250}});
  EXPECT_EQ(
      Exported(1),
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>"
      "<?xml-stylesheet type='text/xsl' href='TranByBatchFed.xsl'?>"
      "<Transactions>"
      "<Columns><Column>Transaction</Column><Column>Type</Column><Column>Recipe</Column>"
      "<Column>Batch Wt</Column><Column>Ingredient</Column><Column>Feed Wt</Column>"
      "<Column>Pen</Column>"
      "<Column>Target Wt</Column><Column>User ID</Column><Column>Time</Column>"
      "<Column>Date</Column></Columns>"
      "<Transaction Value=\"17\">"
      "<Type Value=\"BATCH\" Batch_Weight=\"500.5\" Target_Weight=\"500\">"
      "<Record><Recipe>STARTER</Recipe><ActualBatch>500.5</ActualBatch><Ingredient></Ingredient>"
      "<ActualFeed>0</ActualFeed><Pen></Pen><Target>500</Target><UserID>7</UserID>"
      "<Time>6:10:00 AM</Time><Date>3/14/2011</Date></Record>"
      "</Type>"
      "<Type Value=\"FEED\" Feed_Weight=\"250\" Target_Weight=\"255\">"
      "<Record><Recipe>STARTER</Recipe><ActualBatch>0</ActualBatch><Ingredient></Ingredient>"
      "<ActualFeed>250</ActualFeed><Pen>PEN 1</Pen><Target>255</Target><UserID>7</UserID>"
      "<Time>6:40:00 AM</Time><Date>3/14/2011</Date></Record>"
      "</Type>"
      "</Transaction>"
      "</Transactions>");
}

TEST_F(XmlExports, TheSumsOfAUsersTypesCountTheRowsOfEither) {
  site_.Store({{.transaction = 1, .target = 600, .batch = 600.5},
               {.transaction = 2, .user = "", .target = 400, .batch = 400}});
  const std::string xml = Exported(12);
  EXPECT_THAT(xml, HasSubstr("</Columns><User_Id Value=\"(none)\">"
                             "<Type Value=\"BATCH\" Batch_Weight=\"1000.5\" "
                             "Target_Weight=\"1000\"><Record>"));
  EXPECT_THAT(xml, HasSubstr("</Type></User_Id><User_Id Value=\"7\">"
                             "<Type Value=\"BATCH\" Batch_Weight=\"1000.5\" "
                             "Target_Weight=\"1000\"><Record>"));
}

TEST_F(XmlExports, ATransactionOnTwoDatesIsCompleteUnderBoth) {
  site_.Store({{.transaction = 5, .batch = 10, .date = "2011-03-14"},
               {.transaction = 5, .batch = 20, .date = "2011-03-15"}});
  const std::string xml = Exported(2);
  const std::string whole = "<Transaction Value=\"5\"><Type Value=\"BATCH\" Batch_Weight=\"30\"";
  EXPECT_THAT(xml, HasSubstr("<Date Value=\"3/15/2011\">" + whole));
  EXPECT_THAT(xml, HasSubstr("<Date Value=\"3/14/2011\">" + whole));
}

TEST_F(XmlExports, ARecipesFeedsShowAFeedWeight) {
  site_.Store({{.type = "FEED", .pen = "PEN 1", .target = 90, .feed = 95}});
  EXPECT_THAT(Exported(3), HasSubstr("<Recipe Value=\"STARTER\"><Type Value=\"FEED\" "
                                     "Feed_Weight=\"95\" Target_Weight=\"90\">"));
}

TEST_F(XmlExports, AnyTypeExceptBatchIsTreatedAsFeed) {
  site_.Store({{.type = "WASTE", .target = 90, .batch = 4, .feed = 95}});
  EXPECT_THAT(Exported(1),
              HasSubstr("<Type Value=\"WASTE\" Feed_Weight=\"95\" Target_Weight=\"90\">"));
}

TEST_F(XmlExports, ARecipeOfNoNameHasAnEmptyValue) {
  site_.Store({{.recipe = "", .target = 5, .batch = 5}});
  EXPECT_THAT(Exported(3), HasSubstr("<Recipe Value=\"\"></Recipe>"));
}

TEST_F(XmlExports, ARowWithoutADateIsAnErrorByDateAndTheOldFileIsKept) {
  WriteFileBytes(file_, "old");
  site_.Store({{.transaction = 1}, {.transaction = 2, .date = ""}});
  EXPECT_THROW(Export(2, file_), Error);
  EXPECT_EQ(ReadAll(file_), "old");
}

TEST_F(XmlExports, AFailureInTheMiddleLeavesTheOldFileAndNothingBeside) {
  WriteFileBytes(file_, "old");
  site_.Store({{.transaction = 1}});
  site_.Alter("ALTER TABLE Transactions RENAME COLUMN Recipe TO Mixture");
  EXPECT_THROW(Export(1, file_), DatabaseError);
  EXPECT_EQ(ReadAll(file_), "old");
  for (const fs::directory_entry& entry : fs::directory_iterator(file_.parent_path())) {
    EXPECT_THAT(entry.path().string(), Not(HasSubstr(".tmp")));
  }
}

TEST_F(XmlExports, AFolderThatIsMissingIsNamed) {
  site_.Store({{.transaction = 1}});
  const fs::path nowhere = site_.Folder() / "gone/out.xml";
  try {
    Export(1, nowhere);
    FAIL() << "it was written";
  } catch (const FileError& error) {
    EXPECT_EQ(error.what(), "cannot write " + nowhere.string() + ": No such file or directory");
  }
}

TEST_F(XmlExports, StaysWellFormedWhateverTheNamesHold) {
  site_.Store({{.transaction = 1}});
  site_.Alter(
      "UPDATE Transactions SET Recipe = CAST(X'413C2642FF01C3282200' AS TEXT) || char(65534),"
      " Type = 'a\"b<c>' || char(10) || char(13)");
  for (const int group : {0, 1, 3}) {
    EXPECT_TRUE(Export(group, file_));
    EXPECT_EQ(std::system(("xmllint --noout '" + file_.string() + "'").c_str()), 0) << group;
  }
}

// More than is held back before it is written.
TEST_F(XmlExports, ALongExportHasEveryRecordOnce) {
  std::vector<SiteRow> rows;
  for (int row = 1; row <= 3000; ++row) {
    rows.push_back({.transaction = row, .batch = row + 0.5});
  }
  site_.Store(rows);
  const std::string xml = Exported(1);
  ASSERT_GT(xml.size(), std::size_t{600} * 1024);
  std::size_t from = 0;
  for (int row = 1; row <= 3000; ++row) {
    const std::string weight = "<ActualBatch>" + std::to_string(row) + ".5</ActualBatch>";
    from = xml.find(weight, from);
    ASSERT_NE(from, std::string::npos) << row;
  }
  EXPECT_EQ(xml.find("<ActualBatch>", from + 1), std::string::npos);
  EXPECT_EQ(xml.find("<Transactions>"), xml.rfind("<Transactions>"));
}

TEST_F(XmlExports, TheStylesheetIsCopiedBesideTheFile) {
  site_.Store({{.transaction = 1}});
  EXPECT_TRUE(Export(1, file_));
  EXPECT_EQ(ReadAll(file_.parent_path() / "TranByBatchFed.xsl"), "<sheet/>");
  EXPECT_TRUE(op_.boxes.empty());
  EXPECT_TRUE(fs::is_directory(data_ / "Export"));
}

TEST_F(XmlExports, TheStylesheetIsCopiedBesideAFileOfARelativePath) {
  site_.Store({{.transaction = 1}});
  const fs::path before = fs::current_path();
  fs::current_path(site_.Folder().Path());
  EXPECT_TRUE(Export(1, "out.xml"));
  fs::current_path(before);
  EXPECT_TRUE(FileExists(site_.Folder() / "out.xml"));
  EXPECT_EQ(ReadAll(site_.Folder() / "TranByBatchFed.xsl"), "<sheet/>");
}

TEST_F(XmlExports, AMissingStylesheetIsReportedAndTheExportIsStillASuccess) {
  site_.Store({{.transaction = 1}});
  EXPECT_TRUE(Export(11, file_));
  ASSERT_EQ(op_.boxes.size(), 1U);
  EXPECT_TRUE(FileExists(file_));
}

TEST_F(XmlExports, AnIndexThatIsNoGroupWritesNothing) {
  const StyleSheets sheets(data_, system_, op_);
  EXPECT_FALSE(XMLExport(site_.Names(), sheets).ExportData(13, file_, site_.Database(), {}));
  EXPECT_FALSE(FileExists(file_));
}

}  // namespace
}  // namespace vrx::testing
