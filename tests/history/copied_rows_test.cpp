#include "history/copied_rows.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "history/history_grid.h"
#include "history/history_table.h"
#include "support/small_history.h"

namespace vrx::testing {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

CopiedRows Copy(HistoryGrid& grid, const std::vector<CopiedRange>& ranges) {
  return CopyRows(grid, ranges);
}

TEST(CopiedRows, AreTheCaptionsAndTheCellsAsTheyAreShown) {
  const TempFolder folder;
  SQLite::Database transactions = SmallHistory(folder);
  HistoryGrid grid(transactions);
  grid.SetUp(*FindDataGroup(8), "");
  grid.ExpandAll();
  const std::string captions = "Transaction\tRecipe\tFeed Wt\tTarget Wt\tUser ID\tTime\tDate\n";
  EXPECT_EQ(Copy(grid, {{1, 4}}).text, captions +
                                           "Pen:A01\n"
                                           "1\tSTEERS\t810.5\t800\t2\t02:05 PM\t15-Mar-11\n"
                                           "2\tHEIFER\t495.25\t500\t\t09:30 AM\t15-Mar-11\n"
                                           "Total:\t\t1305.75\t1300\t\t\t\n");
  EXPECT_EQ(Copy(grid, {{2, 2}, {6, 6}}).text, captions +
                                                   "1\tSTEERS\t810.5\t800\t2\t02:05 PM\t15-Mar-11\n"
                                                   "1\tSTEERS\t780\t800\t2\t02:20 PM\t15-Mar-11\n");
}

TEST(CopiedRows, AreATableInHtml) {
  const TempFolder folder;
  SQLite::Database transactions = SmallHistory(folder);
  HistoryGrid grid(transactions);
  grid.SetUp(*FindDataGroup(8), "");
  grid.ExpandAll();
  const std::string html = Copy(grid, {{1, 2}}).html;
  EXPECT_THAT(html, HasSubstr("<meta charset=\"utf-8\">"));
  EXPECT_THAT(html, HasSubstr("<th align=\"left\">Transaction</th>"));
  EXPECT_THAT(html, HasSubstr("<tr><th align=\"left\" colspan=\"7\">Pen:A01</th></tr>"));
  EXPECT_THAT(html, HasSubstr("<td align=\"left\">STEERS</td><td align=\"right\">810.5</td>"));
  EXPECT_TRUE(html.ends_with("</table></body></html>\n"));
}

TEST(CopiedRows, FollowTheOrderOfTheColumns) {
  const TempFolder folder;
  SQLite::Database transactions = SmallHistory(folder);
  HistoryGrid grid(transactions);
  grid.SetUp(*FindDataGroup(8), "");
  grid.ExpandAll();
  grid.MoveColumn(HistoryColumnOfKey("Date"), 1);
  EXPECT_TRUE(Copy(grid, {{2, 2}}).text.starts_with("Date\tTransaction\tRecipe\t"));
}

TEST(CopiedRows, AreSafeWhateverTheirCellsHave) {
  HistoryTable table;
  table.Store({{{2, std::string("A\tB\r\nC\nD")}, {3, std::string("<b>&\"x\"</b>")}}});
  HistoryGrid grid(table.Database());
  grid.SetUp(*FindDataGroup(0), "");
  const CopiedRows rows = Copy(grid, {{1, 1}});
  EXPECT_THAT(rows.text, HasSubstr("\tA B C D\t<b>&\"x\"</b>\t"));
  EXPECT_THAT(rows.html, HasSubstr(">A B C D</td>"));
  EXPECT_THAT(rows.html, HasSubstr(">&lt;b&gt;&amp;&quot;x&quot;&lt;/b&gt;</td>"));
  EXPECT_THAT(rows.html, Not(HasSubstr("<b>")));
  grid.SetUp(*FindDataGroup(3), "");
  EXPECT_THAT(Copy(grid, {{1, 1}}).text, HasSubstr("\nRecipe:A B C D\n"));
}

TEST(CopiedRows, AreCounted) {
  EXPECT_EQ(CountRows({}), 0);
  const std::vector<CopiedRange> ranges{{1, 1}, {4, 1'000'003}};
  EXPECT_EQ(CountRows(ranges), 1'000'001);
}

}  // namespace
}  // namespace vrx::testing
