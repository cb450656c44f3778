#include "legacy/conversion_report.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vrx::testing {
namespace {

TEST(NoticeList, MakesRangesOfNeighbours) {
  NoticeList list;
  for (const std::uint64_t row : {3, 4, 4, 5, 9, 11, 12}) {
    list.AddRow("Pen", "x", row);
  }
  list.AddId("Pen", "y", 7);
  list.Add("Pen", "z");
  ConversionReport report;
  list.MoveInto(report);
  ASSERT_EQ(report.notices.size(), 3U);
  EXPECT_EQ(RowsText(report.notices[0]), "rows 3-5, 9, 11-12");
  EXPECT_EQ(RowsText(report.notices[1]), "ID 7");
  EXPECT_EQ(RowsText(report.notices[2]), "");
}

TEST(RowsText, OfOneRangeIsInThePlural) {
  EXPECT_EQ(RowsText({.table = "Pen", .text = "x", .rows = {{3, 5}}}), "rows 3-5");
  EXPECT_EQ(RowsText({.table = "Pen", .text = "x", .rows = {{7, 8}}, .are_ids = true}), "IDs 7-8");
}

ConversionReport Moved(NoticeList& list) {
  ConversionReport report;
  list.MoveInto(report);
  return report;
}

TEST(NoticeList, Holds5000NoticesAndCountsTheOthers) {
  NoticeList list;
  for (int index = 0; index < 5000; ++index) {
    list.AddRow("Pen", std::to_string(index), 1);
  }
  list.AddRow("Pen", "0", 2);  // known already
  NoticeList one_more = list;
  EXPECT_EQ(Moved(list).further_notices, 0U);
  one_more.AddId("Pen", "new", 1);
  one_more.Add("Pen", "newer");
  const ConversionReport report = Moved(one_more);
  EXPECT_EQ(report.notices.size(), 5000U);
  EXPECT_EQ(report.further_notices, 2U);
}

TEST(NoticeList, Holds200000RangesOfRowsAndCountsTheOthers) {
  NoticeList list;
  for (std::uint64_t row = 1; row < 400'000; row += 2) {
    list.AddRow("Pen", "x", row);
  }
  list.AddRow("Pen", "x", 400'000);  // makes the last range longer
  NoticeList one_more = list;
  const ConversionReport whole = Moved(list);
  ASSERT_EQ(whole.notices.size(), 1U);
  EXPECT_EQ(whole.notices[0].rows.size(), 200'000U);
  EXPECT_EQ(whole.further_notices, 0U);
  one_more.AddRow("Pen", "x", 400'002);
  EXPECT_EQ(Moved(one_more).further_notices, 1U);
}

TEST(ReportText, ReadsAsAPage) {
  ConversionReport report;
  report.old_file = "/yard/OLD.TDB";
  report.old_size = 4096;
  report.sha256 = "ab12";
  report.new_file = "/yard/NEW.TDB";
  report.kind = DatabaseKind::kTransaction;
  report.unit = "KG";
  report.tables = {{.name = "Transactions", .read = 12, .stored = 11, .repaired = 2, .refused = 1},
                   {.name = "History", .read = 1, .stored = 1}};
  report.sums = {{.table = "Transactions", .column = "Target", .old_file = 500.5, .new_file = 500}};
  report.notices = {{.table = "Transactions", .text = "refused", .rows = {{4, 4}}},
                    {.table = "Pen", .text = "left out"}};
  EXPECT_EQ(ReportText(report),
            "Conversion of OLD.TDB\n"
            "\n"
            "Old file: /yard/OLD.TDB\n"
            "          4096 bytes, left as it was\n"
            "SHA-256:  ab12\n"
            "New file: /yard/NEW.TDB\n"
            "          transaction database, weights in KG\n"
            "\n"
            "Table                           Read    Stored  Repaired   Refused\n"
            "Transactions                      12        11         2         1\n"
            "History                            1         1         0         0\n"
            "All tables                        13        12         2         1\n"
            "\n"
            "Sum of                                Old file            New file\n"
            "Transactions Target                      500.5                 500\n"
            "\n"
            "What was found and done:\n"
            "- Transactions, row 4: refused\n"
            "- Pen: left out\n");
}

TEST(ReportText, CountsTheNoticesThatItLeavesOut) {
  ConversionReport report;
  report.notices = {{.table = "Pen", .text = "left out"}};
  report.further_notices = 3;
  EXPECT_THAT(ReportText(report),
              ::testing::EndsWith("- Pen: left out\n- 3 further such lines are left out here.\n"));
}

TEST(ReportText, SaysWhenNothingHadToBeDone) {
  EXPECT_THAT(ReportText({}), ::testing::EndsWith("\nEvery value was stored as it stood.\n"));
}

}  // namespace
}  // namespace vrx::testing
