#include <filesystem>
#include <string>

#include <gmock/gmock.h>

#include "base/files.h"
#include "base/translation.h"
#include "database/connection.h"
#include "database/keep_database.h"
#include "report/period_page.h"
#include "support/html_tables.h"
#include "support/small_history.h"
#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;

class HtmlPages : public ::testing::Test {
 protected:
  std::string Html(const std::string& database_name = "SMALL.TDB") {
    return HtmlText(ReadPeriodPage(database, {.period = *ParsePeriod(PeriodKind::kWeek, "2011-W11"),
                                              .database = database_name}));
  }
  static std::size_t Count(const std::string& text, const std::string& what) {
    std::size_t count = 0;
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) {
      ++count;
    }
    return count;
  }

  TempFolder folder;
  SQLite::Database database = SmallHistory(folder);
};

TEST_F(HtmlPages, AreWellFormedWithTheirTablesAndTotals) {
  const std::string html = Html();
  EXPECT_THAT(html, ::testing::StartsWith("<!DOCTYPE html>\n<html "));
  EXPECT_THAT(HtmlTables(html), SizeIs(8));
  const HtmlTable loaded = HtmlTableBelow(html, "Loaded by ingredient");
  EXPECT_THAT(loaded.Column("Ingredient"), ElementsAre("CORN", "HAY", "Total"));
  EXPECT_THAT(loaded.Column("Actual"), ElementsAre("1498", "602.5", "2100.5"));
}

TEST_F(HtmlPages, FetchNothingAndRunNothing) {
  std::string html = Html();
  for (const std::string space : {"http://www.w3.org/1999/xhtml", "http://www.w3.org/2000/svg"}) {
    for (std::size_t at = html.find(space); at != std::string::npos; at = html.find(space)) {
      html.erase(at, space.size());
    }
  }
  for (const char* const fetched : {"<script", "http", "//", "href", "src=", "url(", "@import",
                                    "<link", "<iframe", "onload", "javascript:"}) {
    EXPECT_THAT(html, Not(HasSubstr(fetched)));
  }
}

TEST_F(HtmlPages, HaveEachPictureForWideAndForNarrowScreens) {
  const std::string html = Html();
  EXPECT_EQ(Count(html, "<figure>"), 3U);
  EXPECT_EQ(Count(html, "<div class=\"wide\">\n<svg "), 3U);
  EXPECT_EQ(Count(html, "<div class=\"narrow\">\n<svg "), 3U);
  EXPECT_EQ(Count(html, "width=\"928\" height="), 3U);
  EXPECT_EQ(Count(html, "width=\"340\" height="), 3U);
  EXPECT_EQ(Count(html, "prefers-color-scheme:dark"), 2U);  // of the page and of the pictures
  EXPECT_THAT(html, HasSubstr("@media print"));
  EXPECT_THAT(html, HasSubstr("<meta name=\"viewport\""));
}

TEST_F(HtmlPages, TellNamesOfRowsAndColumnsToReaders) {
  const std::string html = Html();
  EXPECT_THAT(html, HasSubstr("<th scope=\"col\">Ingredient</th>"));
  EXPECT_THAT(html, HasSubstr("<tr><th scope=\"row\">CORN</th><td class=\"number\">2</td>"));
  EXPECT_THAT(html, HasSubstr("lang=\"en\""));
  EXPECT_EQ(Count(html, "tabindex=\"0\" aria-label="), 8U);
}

TEST_F(HtmlPages, KeepNamesThatLookLikeMarkup) {
  const std::string name = "<b>&\"'</td><script>";
  SQLite::Statement rename(database,
                           "UPDATE Transactions SET Ingredient = ? WHERE Ingredient = 'HAY'");
  rename.bind(1, name);
  rename.exec();
  const std::string html = Html("</title><script>.TDB");
  EXPECT_THAT(html, Not(HasSubstr("<script")));
  EXPECT_THAT(HtmlTableBelow(html, "Loaded by ingredient").Column("Ingredient"),
              ElementsAre(name, "CORN", "Total"));
}

TEST_F(HtmlPages, ReplaceCharactersThatXmlDoesNotHave) {
  database.exec(
      "UPDATE Transactions SET Ingredient = 'A' || char(1, 27, 65534) || 'Ü' || "
      "CAST(x'FF' AS TEXT) WHERE Ingredient = 'HAY'");
  EXPECT_THAT(HtmlTableBelow(Html(), "Loaded by ingredient").Column("Ingredient"),
              ElementsAre("A\uFFFD\uFFFD\uFFFD\u00DC\uFFFD", "CORN", "Total"));
}

TEST_F(HtmlPages, AreEnglishInEveryLanguageOfTheWindow) {
  const std::string english = Html();
  SetTranslator([](std::string_view text) { return "fremd " + std::string(text); });
  const std::string html = Html();
  SetTranslator({});
  EXPECT_EQ(html, english);
}

TEST_F(HtmlPages, OfAnEmptyPeriodHaveNoTable) {
  const std::string html =
      HtmlText(ReadPeriodPage(database, {.period = *ParsePeriod(PeriodKind::kDay, "2012-01-01")}));
  EXPECT_THAT(HtmlTables(html), IsEmpty());
  EXPECT_THAT(html, HasSubstr("<p class=\"note\">The database has no record of this period.</p>"));
}

TEST_F(HtmlPages, AreWrittenWholeOrNotAtAll) {
  const PeriodPage page =
      ReadPeriodPage(database, {.period = *ParsePeriod(PeriodKind::kWeek, "2011-W11")});
  const std::filesystem::path file = folder / "week.html";
  WriteFileBytes(file, "older");
  WriteHtml(page, file);
  EXPECT_EQ(ReadFileBytes(file, 1U << 24U), HtmlText(page));
  EXPECT_THROW(WriteHtml(page, folder / "none/week.html"), FileError);
  EXPECT_THROW(WriteHtml(page, folder / "SMALL.TDB"), DatabaseInTheWay);
}

}  // namespace
}  // namespace vrx::testing
