#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/files.h"
#include "export/export_fixture.h"
#include "export/html_export.h"
#include "export/page_texts.h"
#include "export/xml_export.h"
#include "history/data_group.h"
#include "support/fixed_system_info.h"
#include "support/recording_operator.h"
#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;

using ::testing::ContainerEq;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

const fs::path kSheets = fs::path(VRX_BIN_DIR) / "XSL";

fs::path SheetOf(int group) { return kSheets / FindDataGroup(group)->stylesheet; }

std::string PageOf(int group, std::string_view xml) {
  const std::string sheet = ReadAll(SheetOf(group));
  return Transform({"sheet", sheet}, {"data", xml});
}

class EveryStyleSheet : public ::testing::TestWithParam<int> {
 protected:
  static fs::path Golden() {
    const std::string number = (GetParam() < 10 ? "0" : "") + std::to_string(GetParam());
    return fs::path(VRX_SOURCE_DIR) / "tests/export/golden" / ("group_" + number + ".xml");
  }

  TempFolder folder_;
};

TEST_P(EveryStyleSheet, IsWellFormed) {
  EXPECT_EQ(std::system(("xmllint --noout '" + SheetOf(GetParam()).string() + "'").c_str()), 0);
}

TEST_P(EveryStyleSheet, NeedsNoOtherFile) {
  const std::string sheet = ReadAll(SheetOf(GetParam()));
  for (const char* reference : {"xsl:include", "xsl:import", "document(", "url(", "@import",
                                "src=", "href=", "<script", "<!DOCTYPE", "@TITLE@"}) {
    EXPECT_THAT(sheet, Not(HasSubstr(reference)));
  }
}

TEST_P(EveryStyleSheet, TitlesThePageWithTheNameOfItsGroup) {
  const std::string page = PageOf(GetParam(), ReadAll(Golden()));
  const std::string item(FindDataGroup(GetParam())->item);
  EXPECT_THAT(page, HasSubstr("<title>" + item + "</title>"));
  EXPECT_THAT(page, HasSubstr("<h1 id=\"title\">" + item + "</h1>"));
}

TEST_P(EveryStyleSheet, MakesTheSamePageByXsltproc) {
  const fs::path page = folder_ / "page.html";
  ASSERT_EQ(std::system(("xsltproc -o '" + page.string() + "' '" + SheetOf(GetParam()).string() +
                         "' '" + Golden().string() + "'")
                            .c_str()),
            0);
  EXPECT_EQ(ReadAll(page), PageOf(GetParam(), ReadAll(Golden())));
}

TEST_P(EveryStyleSheet, ShowsEveryValueOfTheDocumentInItsOrder) {
  const std::string xml = ReadAll(Golden());
  EXPECT_THAT(TextsOfPage(PageOf(GetParam(), xml)), ContainerEq(TextsExpectedOf(xml)));
}

TEST_P(EveryStyleSheet, MakesAPageThatParsesWithoutAWord) {
  const fs::path page = folder_.Write("page.html", PageOf(GetParam(), ReadAll(Golden())));
  const fs::path words = folder_ / "words.txt";
  ASSERT_EQ(
      std::system(
          ("xmllint --html --noout '" + page.string() + "' 2>'" + words.string() + "'").c_str()),
      0);
  EXPECT_EQ(ReadAll(words), "");
}

TEST_P(EveryStyleSheet, ShowsRandomTablesWhole) {
  std::mt19937 random(2260U + static_cast<unsigned>(GetParam()));
  const auto below = [&](int limit) {
    return std::uniform_int_distribution<int>(0, limit - 1)(random);
  };
  const std::vector<std::string> names{"CORN", "A & B <b>", "\"Q\" 'S'",  "CAF\u00c9",
                                       "]]>",  "&amp;",     "two  blanks"};
  const auto name = [&] { return names[static_cast<std::size_t>(below(7))]; };
  std::vector<SiteRow> rows;
  for (int at = 0; at < 120; ++at) {
    const bool batch = below(2) == 0;
    rows.push_back({.transaction = 1 + below(12),
                    .recipe = name(),
                    .type = batch ? "BATCH" : "FEED",
                    .user = below(3) == 0 ? "" : std::to_string(below(3)),
                    .ingredient = batch ? name() : "",
                    .pen = batch ? "" : name(),
                    .target = below(20000) / 8.0,
                    .batch = batch ? below(20000) / 8.0 : 0,
                    .time = below(9) == 0 ? "" : "06:10:00",
                    .date = "2011-03-1" + std::to_string(below(4)),
                    .feed = batch ? 0 : below(20000) / 8.0,
                    .percent = below(2) == 0 ? std::optional(below(1000) / 10.0) : std::nullopt,
                    .weights = std::vector<double>(static_cast<std::size_t>(below(4)), 12.5)});
  }
  const ExportFixture site;
  site.Store(rows);
  FixedSystemInfo system;
  system.program_directory = VRX_BIN_DIR;
  RecordingOperator op;
  fs::create_directories(folder_ / "data");
  const StyleSheets sheets(folder_ / "data", system, op);
  const bool named = !FindDataGroup(GetParam())->named_column.empty();
  ASSERT_TRUE(XMLExport(site.Names(), sheets)
                  .ExportData(GetParam(), folder_ / "out.xml", site.Database(),
                              VisibleColumnsOf(GetParam()), named ? names[1] : ""));
  const std::string xml = ReadAll(folder_ / "out.xml");
  EXPECT_THAT(TextsOfPage(PageOf(GetParam(), xml)), ContainerEq(TextsExpectedOf(xml)));
}

INSTANTIATE_TEST_SUITE_P(AllGroups, EveryStyleSheet, ::testing::Range(0, kDataGroupCount));

TEST(StyleSheetFolder, HoldsOneForEachGroupAndNothingElse) {
  std::vector<std::string> expected;
  for (const DataGroup& group : DataGroups()) {
    expected.emplace_back(group.stylesheet);
  }
  std::vector<std::string> found;
  for (const auto& entry : fs::directory_iterator(kSheets)) {
    found.push_back(entry.path().filename().string());
  }
  EXPECT_THAT(found, ::testing::UnorderedElementsAreArray(expected));
}

TEST(StyleSheetPage, ShowsMarkupOfANameAsText) {
  const std::string page =
      PageOf(8,
             "<Transactions><Columns><Column>Pen</Column><Column>Feed Wt</Column></Columns>"
             "<Pen Value=\"&lt;script&gt;alert(1)&lt;/script&gt;\" Feed_Weight=\"1\">"
             "<Record><ActualFeed>&lt;b&gt;1&amp;lt;</ActualFeed></Record></Pen></Transactions>");
  EXPECT_THAT(page, Not(HasSubstr("<script")));
  EXPECT_THAT(page, HasSubstr("<b>&lt;script&gt;alert(1)&lt;/script&gt;</b>"));
  EXPECT_THAT(page, HasSubstr("<td>&lt;b&gt;1&amp;lt;</td>"));
}

TEST(StyleSheetPage, CallsAnEmptyNameNoName) {
  EXPECT_THAT(PageOf(3, "<Transactions><Columns/><Recipe Value=\"\"></Recipe></Transactions>"),
              HasSubstr("<i>(no name)</i>"));
}

TEST(StyleSheetPage, ShowsATotalWhoseColumnIsHidden) {
  const std::string xml =
      "<Transactions><Columns><Column>Pen</Column><Column>Target Wt</Column></Columns>"
      "<Pen Value=\"P\" Feed_Weight=\"77.5\" Target_Weight=\"80\">"
      "<Record><Target>80</Target></Record></Pen></Transactions>";
  EXPECT_THAT(TextsOfPage(PageOf(8, xml)),
              ElementsAre("Target Wt", "Pen P", "80", "Total: Feed 77.5", "Target 80"));
}

TEST(StyleSheetPage, PutsATotalUnderItsColumnWithItsLabel) {
  const std::string xml =
      "<Transactions><Columns><Column>Pen</Column><Column>Recipe</Column>"
      "<Column>Feed Wt</Column></Columns><Pen Value=\"P\" Feed_Weight=\"77.5\">"
      "<Record><Recipe>R</Recipe><ActualFeed>77.5</ActualFeed></Record></Pen></Transactions>";
  EXPECT_THAT(PageOf(8, xml), HasSubstr("<th colspan=\"1\" scope=\"row\"><span>Total:</span></th>"
                                        "<td><small>Feed</small> <b>77.5</b></td></tr>"));
}

// A document of one record with the first `count` ingredients, every other one without a weight.
std::string WithIngredients(int count) {
  std::string columns = "<Column>Recipe</Column>";
  std::string fields = "<Recipe>R</Recipe>";
  for (int slot = 1; slot <= count; ++slot) {
    const std::string number = (slot < 10 ? "0" : "") + std::to_string(slot);
    const std::string weight = slot % 2 == 0 ? "" : number + ".5";
    columns.append("<Column>FEED").append(number).append("</Column>");
    fields.append("<Ing").append(number).append("Wt>").append(weight);
    fields.append("</Ing").append(number).append("Wt>");
  }
  return "<Transactions><Columns>" + columns + "</Columns><Record>" + fields +
         "</Record></Transactions>";
}

TEST(StyleSheetPage, GivesSixteenIngredientsAColumnEach) {
  const std::vector<std::string> texts = TextsOfPage(PageOf(0, WithIngredients(16)));
  EXPECT_EQ(texts.size(), 34U);  // captions and cells of 17 columns
  EXPECT_EQ(texts[16], "FEED16");
  EXPECT_EQ(texts[18], "01.5");
}

TEST(StyleSheetPage, ListsMoreIngredientsBelowTheirRecord) {
  const std::vector<std::string> texts = TextsOfPage(PageOf(0, WithIngredients(17)));
  EXPECT_THAT(texts, ElementsAre("Recipe", "R",
                                 "FEED01 01.5 FEED03 03.5 FEED05 05.5 FEED07 07.5 FEED09 09.5 "
                                 "FEED11 11.5 FEED13 13.5 FEED15 15.5 FEED17 17.5"));
}

}  // namespace
}  // namespace vrx::testing
