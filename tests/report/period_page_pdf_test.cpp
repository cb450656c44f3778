#include <algorithm>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "database/connection.h"
#include "report/period_page.h"
#include "support/printed_pages.h"
#include "support/small_history.h"
#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

using ::testing::AllOf;
using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::SizeIs;

class PdfPages : public ::testing::Test {
 protected:
  int Print(const PeriodPage& page) { return PrintPeriodPage(page, *MakePdfFile(pdf, page.title)); }
  // A table of this many rows, each with a text of several lines.
  static PeriodPage LongPage(int rows) {
    AnswerTable table{.columns = {{"n", "Number", CellKind::kCount},
                                  {"text", "Words", CellKind::kText},
                                  {"end", "End", CellKind::kCount}},
                      .total = {std::string("All"), std::string(), std::int64_t{rows}}};
    for (int row = 1; row <= rows; ++row) {
      std::string words;
      for (int word = 1; word <= 40; ++word) {
        words += "w" + std::to_string(row) + (word == 40 ? "end" : "word") + ' ';
      }
      table.rows.push_back({std::int64_t{row}, words, std::int64_t{row}});
    }
    return {.title = "Feeding report, day 2011-03-15",
            .facts = {"SMALL.TDB"},
            .figures = {{"Loaded", "12 LB"}},
            .sections = {{.heading = "Long", .how = "Of rows.", .tables = {table}},
                         {.heading = "Last", .how = "Nothing.", .sentences = {"The end."}}}};
  }

  TempFolder folder;
  std::filesystem::path pdf = folder / "page.pdf";
};

TEST_F(PdfPages, HaveTheTextsOfThePageAndTheirNumbers) {
  SQLite::Database database = SmallHistory(folder);
  const PeriodPage page = ReadPeriodPage(
      database, {.period = *ParsePeriod(PeriodKind::kWeek, "2011-W11"), .database = "SMALL.TDB"});
  const int sheets = Print(page);
  const auto pages = LinesOf(pdf);
  ASSERT_THAT(pages, SizeIs(sheets));
  EXPECT_EQ(pages[0].at(0), "Feeding report, week 2011-W11");
  EXPECT_THAT(pages[0], Contains("CORN 2 1500 1498 -2 -0.1 2"));
  EXPECT_THAT(pages[0], Contains("Total 3 2100 2100.5 0.5 0.0 4.5"));
  for (std::size_t i = 0; i < pages.size(); ++i) {
    EXPECT_EQ(pages[i].back(), "Feeding report, week 2011-W11 Page " + std::to_string(i + 1) +
                                   " of " + std::to_string(sheets));
  }
  std::string all;
  for (const auto& lines : pages) {
    for (const std::string& line : lines) {
      all += line + '\n';
    }
  }
  for (const PageSection& section : page.sections) {
    EXPECT_THAT(all, HasSubstr("\n" + section.heading + "\n"));
  }
  EXPECT_THAT(all, HasSubstr("Where the weight goes"));
  EXPECT_THAT(all, HasSubstr("Deviation over time"));
  EXPECT_THAT(all, HasSubstr("What was left of each batch"));
}

TEST_F(PdfPages, NeverCutARowAndRepeatTheCaptions) {
  const int sheets = Print(LongPage(60));
  ASSERT_GT(sheets, 3);
  const std::vector<PrintedPage> pages = TextsOf(pdf);
  ASSERT_THAT(pages, SizeIs(sheets));
  std::map<std::string, std::map<std::size_t, int>> words;  // of a row by page
  for (std::size_t i = 0; i < pages.size(); ++i) {
    int captions = 0;
    for (const PrintedWord& word : pages[i].words) {
      EXPECT_LT(word.bottom, pages[i].height - 30) << word.text;
      EXPECT_LT(word.right, pages[i].width - 30) << word.text;
      captions += word.text == "Words" ? 1 : 0;
      if (word.text.starts_with('w') && word.text != "will") {
        ++words[word.text.substr(0, word.text.find_first_of("we", 1))][i];
      }
    }
    const bool has_rows = std::ranges::any_of(
        pages[i].words, [](const PrintedWord& word) { return word.text.ends_with("word"); });
    EXPECT_EQ(captions, has_rows ? 1 : 0) << "page " << i + 1;
  }
  ASSERT_THAT(words, SizeIs(60));
  for (const auto& [row, by_page] : words) {
    ASSERT_THAT(by_page, SizeIs(1)) << row;
    EXPECT_EQ(by_page.begin()->second, 40) << row;
  }
}

TEST_F(PdfPages, KeepAHeadingWithItsFirstRowAndATotalWithTheLast) {
  for (int rows = 1; rows < 30; ++rows) {
    Print(LongPage(rows));
    for (const std::vector<std::string>& page : LinesOf(pdf)) {
      ASSERT_GE(page.size(), 2U);
      EXPECT_NE(page[page.size() - 2], "Long") << rows;
      EXPECT_NE(page[page.size() - 2], "Last") << rows;
      EXPECT_NE(page[page.size() - 2], "Number Words End") << rows;
      const auto total = std::ranges::find(page, "All " + std::to_string(rows));
      EXPECT_TRUE(total == page.end() || total - page.begin() > 2) << rows;
    }
  }
}

TEST_F(PdfPages, CutATextThatIsLongerThanASheet) {
  PeriodPage page = LongPage(1);
  page.sections[0].tables[0].rows[0][1] = std::string(100'000, 'x');
  EXPECT_LE(Print(page), 2);
  const std::vector<PrintedPage> pages = TextsOf(pdf);
  for (const PrintedWord& word : pages[0].words) {
    EXPECT_LT(word.bottom, pages[0].height - 30);
    EXPECT_LT(word.right, pages[0].width - 30);
  }
}

TEST_F(PdfPages, ShrinkATableThatIsTooWide) {
  AnswerTable table;
  table.rows.emplace_back();
  for (int column = 0; column < 24; ++column) {
    table.columns.push_back({"n", "Caption", CellKind::kWeight});
    table.rows[0].emplace_back(1234567.5 + column);
  }
  Print({.title = "Wide", .sections = {{.heading = "Wide", .tables = {table}}}});
  const std::vector<PrintedPage> pages = TextsOf(pdf);
  int cells = 0;
  for (const PrintedWord& word : pages.at(0).words) {
    EXPECT_LT(word.right, pages[0].width - 30) << word.text;
    cells += word.text.ends_with(".5") ? 1 : 0;
  }
  EXPECT_EQ(cells, 24);
}

}  // namespace
}  // namespace vrx::testing
