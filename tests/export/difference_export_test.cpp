#include <filesystem>
#include <regex>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/files.h"
#include "export/csv_export.h"
#include "export/export_fixture.h"
#include "export/html_export.h"
#include "export/page_texts.h"
#include "export/xml_export.h"
#include "history/columns.h"
#include "history/data_group.h"
#include "support/fixed_system_info.h"
#include "support/recording_operator.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::Not;

std::vector<std::string> ColumnsWithDifferences(int group, bool on) {
  std::vector<IngredientRecord> ingredients;
  for (const char* const name : {"CORN", "HAY", "SALT"}) {
    ingredients.push_back({.id = static_cast<int>(ingredients.size()) + 1, .name = name});
  }
  HistoryColumns columns;
  columns.RefreshIngredientColumns(ingredients);
  columns.SetUp(*FindDataGroup(group));
  columns.ShowDifferences(on);
  return columns.GetVisibleColumnList();
}

class ExportOfDifferences : public ::testing::Test {
 protected:
  ExportOfDifferences() {
    site_.StoreYard();
    system_.program_directory = fs::path(VRX_BIN_DIR).string();
  }

  std::string Csv(int group, bool on) const {
    const fs::path file = site_.Folder() / "out.csv";
    EXPECT_TRUE(CSVExport(site_.Names())
                    .ExportData(group, file, site_.Database(), ColumnsWithDifferences(group, on),
                                YardNameOf(group)));
    return ReadFileBytes(file, kLongest);
  }
  std::string Xml(int group, bool on) {
    const fs::path file = site_.Folder() / "out.xml";
    EXPECT_TRUE(XMLExport(site_.Names(), style_sheets_)
                    .ExportData(group, file, site_.Database(), ColumnsWithDifferences(group, on),
                                YardNameOf(group)));
    return ReadFileBytes(file, kLongest);
  }
  std::string Page(int group, bool on) {
    Xml(group, on);
    const fs::path page = site_.Folder() / "out.html";
    EXPECT_TRUE(WriteHtmlPage(style_sheets_, group, site_.Folder() / "out.xml", page));
    return ReadFileBytes(page, kLongest);
  }

  static constexpr std::size_t kLongest = 1'000'000;
  ExportFixture site_;
  FixedSystemInfo system_;
  RecordingOperator op_;
  StyleSheets style_sheets_{site_.Folder().Path(), system_, op_};
};

TEST_F(ExportOfDifferences, CsvHasThemBehindTheirWeightsWithTotalsByKind) {
  const std::string csv = Csv(1, true);
  EXPECT_THAT(csv, HasSubstr("Transaction,Type,Recipe,Batch Wt,Batch Diff,Batch Diff %,Ingredient,"
                             "Feed Wt,Feed Diff,Feed Diff %,Pen,Target Wt,User ID,Time,Date\r\n"));
  EXPECT_THAT(csv, HasSubstr(",,STARTER,500.5,+0.5,+0.1,CORN,0,,,,500,7,6:10:00 AM,3/14/2011,\r\n"
                             ",,STARTER,499.25,-0.75,-0.2,HAY,0,,,,500,7,6:12:00 AM,3/14/2011,\r\n"
                             " , ,Total:,999.75,-0.25,0.0, , ,,, ,1000, , , ,\r\n"));
  EXPECT_THAT(csv, HasSubstr(",,STARTER,0,,,,250,-5,-2.0,PEN 1,255,7,6:40:00 AM,3/14/2011,\r\n"
                             " , ,Total:, ,,, ,999.75,-0.25,0.0, ,1000, , , ,\r\n"));
}

TEST_F(ExportOfDifferences, TheTotalsOfAUserAreThoseOfTheUsersOwnRecords) {
  const std::string csv = Csv(12, true);
  EXPECT_THAT(csv, HasSubstr("Total:, ,1108.875,-0.25,0.0, , ,,, ,1365, , ,\r\n"))
      << "the specified weights of all rows, the differences of the user's";
  EXPECT_THAT(Csv(11, true), HasSubstr("Total:, ,999.75,-0.25,0.0, ,250,-5,-2.0, , , , ,\r\n"));
}

TEST_F(ExportOfDifferences, XmlHasThemAsElementsAndTheirTotalsAsAttributes) {
  const std::string xml = Xml(1, true);
  EXPECT_THAT(xml, HasSubstr("<Type Value=\"BATCH\" Batch_Weight=\"999.75\" "
                             "Target_Weight=\"1000\" BatchDifference=\"-0.25\" "
                             "BatchDiffPercent=\"0.0\" FeedDifference=\"\" "
                             "FeedDiffPercent=\"\">"));
  EXPECT_THAT(xml, HasSubstr("<ActualBatch>500.5</ActualBatch><BatchDifference>+0.5"
                             "</BatchDifference><BatchDiffPercent>+0.1</BatchDiffPercent>"));
}

TEST_F(ExportOfDifferences, APageHasTheirTotalsBelowThem) {
  const std::vector<std::string> texts = TextsOfPage(Page(8, true));
  EXPECT_THAT(texts, Contains("Feed Diff %"));
  const std::string page = Page(8, true);
  EXPECT_THAT(page, HasSubstr("<td>250</td><td>-5</td><td>-2.0</td>"));
  EXPECT_THAT(page, HasSubstr("<b>553.525</b></td><td><b>-7.475</b></td><td><b>-1.3</b></td>"));
  EXPECT_THAT(Page(5, true), HasSubstr("<td>-0.75</td><td>-0.2</td>"));
}

// What is left of an export without the fields and totals of differences.
std::string WithoutDifferences(const std::string& xml) {
  std::string text =
      std::regex_replace(xml, std::regex("<Column>(Batch|Feed) Diff( %)?</Column>"), "");
  text = std::regex_replace(
      text, std::regex("<((Batch|Feed)Diff[a-zA-Z]*)>[-+.0-9]*</(Batch|Feed)Diff[a-zA-Z]*>"), "");
  return std::regex_replace(text, std::regex(" (Batch|Feed)Diff[a-zA-Z]*=\"[-+.0-9]*\""), "");
}

class ExportOfDifferencesIn : public ExportOfDifferences,
                              public ::testing::WithParamInterface<int> {};

TEST_P(ExportOfDifferencesIn, LeavesAllElseUnchanged) {
  const std::string with = Xml(GetParam(), true);
  const std::string without = Xml(GetParam(), false);
  EXPECT_NE(with, without);
  EXPECT_EQ(WithoutDifferences(with), without);
  EXPECT_THAT(without, Not(HasSubstr("Diff")));
  EXPECT_THAT(Csv(GetParam(), false), Not(HasSubstr("Diff")));
  EXPECT_THAT(Csv(GetParam(), true), HasSubstr(" Diff %"));
}

INSTANTIATE_TEST_SUITE_P(Group, ExportOfDifferencesIn, ::testing::Range(0, kDataGroupCount));

}  // namespace
}  // namespace vrx::testing
