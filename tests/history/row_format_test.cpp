#include "history/row_format.h"

#include <algorithm>
#include <limits>
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

const DataGroup& Group(int index) { return *FindDataGroup(index); }

std::string Shown(std::string_view key, const CellValue& value) {
  return ShownValue(HistoryColumnAt(HistoryColumnOfKey(key)), value);
}

// A total row whose sums are 1 in every summed column.
HistoryRow TotalRow(int depth, double sum = 1) {
  HistoryRow row{.kind = HistoryRowKind::kTotal, .depth = depth};
  for (const HistoryColumn& column : HistoryColumnTable()) {
    row.cells.emplace_back(column.summed ? CellValue(sum) : CellValue());
  }
  return row;
}

HistoryColumns ColumnsOf(int group) {
  HistoryColumns columns;
  columns.SetUp(Group(group));
  return columns;
}

TEST(ShownValue, ANumberHasItsDefaultTextForm) {
  EXPECT_EQ(Shown("Target", 500.5), "500.5");
  EXPECT_EQ(Shown("Target", 500.0), "500");
  EXPECT_EQ(Shown("ActualFeed", 0.0), "0");
  EXPECT_EQ(Shown("Transaction", std::int64_t{17}), "17");
  EXPECT_EQ(Shown("Calculated_Ing%OfBatch", 66.4), "66.4");
  EXPECT_EQ(Shown("Calculated_Ing01Wt", 12.25), "12.25");
}

TEST(ShownValue, NullIsEmptyAlsoInTransaction) {
  for (const HistoryColumn& column : HistoryColumnTable()) {
    EXPECT_EQ(ShownValue(column, {}), "");
  }
}

TEST(ShownValue, AUserIsShownAsItWasWritten) {
  EXPECT_EQ(Shown("UserID", "007"), "007");
  EXPECT_EQ(Shown("UserID", "-1"), "-1");
}

TEST(ShownValue, ADateIsAMediumDate) {
  EXPECT_EQ(Shown("Date", "2011-03-14"), "14-Mar-11");
  EXPECT_EQ(Shown("Date", "2009-12-05"), "05-Dec-09");
  EXPECT_EQ(Shown("Date", "2000-02-29"), "29-Feb-00");
}

TEST(ShownValue, EveryMonthHasItsEnglishName) {
  const std::vector<std::string> names{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                       "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  for (int month = 1; month <= 12; ++month) {
    const std::string digits = std::to_string(100 + month).substr(1);
    EXPECT_EQ(Shown("Date", "2026-" + digits + "-01"),
              "01-" + names[static_cast<std::size_t>(month) - 1] + "-26");
  }
}

TEST(ShownValue, ATimeIsAMediumTimeWithATwoDigitHour) {
  EXPECT_EQ(Shown("Time", "14:05:00"), "02:05 PM");
  EXPECT_EQ(Shown("Time", "00:10:59"), "12:10 AM");
  EXPECT_EQ(Shown("Time", "12:00:00"), "12:00 PM");
  EXPECT_EQ(Shown("Time", "09:58:00"), "09:58 AM");
  EXPECT_EQ(Shown("Time", "23:59:00"), "11:59 PM");
}

TEST(ShownValue, AValueOfAWrongKindIsShownUnchanged) {
  EXPECT_EQ(Shown("Date", "yesterday"), "yesterday");
  EXPECT_EQ(Shown("Date", "2011-02-30"), "2011-02-30");
  EXPECT_EQ(Shown("Date", std::int64_t{20110314}), "20110314");
  EXPECT_EQ(Shown("Time", "25:00:00"), "25:00:00");
  EXPECT_EQ(Shown("Time", 0.5), "0.5");
  EXPECT_EQ(Shown("Target", "heavy"), "heavy");
  EXPECT_EQ(Shown("Recipe", std::int64_t{3}), "3");
  EXPECT_EQ(Shown("Recipe", "2011-03-14"), "2011-03-14");
}

TEST(ShownValue, AnInfiniteNumberIsShownRatherThanFailing) {
  EXPECT_EQ(Shown("Target", std::numeric_limits<double>::infinity()), "Inf");
  EXPECT_EQ(Shown("Target", -std::numeric_limits<double>::infinity()), "-Inf");
}

TEST(GroupCaption, IsThePrefixDirectlyFollowedByTheValueAsItsColumnShowsIt) {
  EXPECT_EQ(GroupCaption(Group(1), 1, std::int64_t{17}), "Trans:17");
  EXPECT_EQ(GroupCaption(Group(2), 1, "2011-03-14"), "Date:14-Mar-11");
  EXPECT_EQ(GroupCaption(Group(3), 1, "STEERS"), "Recipe:STEERS");
  EXPECT_EQ(GroupCaption(Group(6), 1, "CORN"), "Ingred:  CORN");
  EXPECT_EQ(GroupCaption(Group(8), 1, "A01"), "Pen:A01");
  EXPECT_EQ(GroupCaption(Group(11), 1, "2"), "User ID:2");
}

TEST(GroupCaption, OfATypeIsTheBareWord) {
  EXPECT_EQ(GroupCaption(Group(1), 2, "BATCH"), "BATCH");
  EXPECT_EQ(GroupCaption(Group(12), 2, "FEED"), "FEED");
}

TEST(GroupCaption, OfNullIsThePrefixAlone) {
  EXPECT_EQ(GroupCaption(Group(11), 1, {}), "User ID:");
  EXPECT_EQ(GroupCaption(Group(6), 1, {}), "Ingred:  ");
}

TEST(Blanking, GoesByGroupAndDepth) {
  struct Case {
    int group;
    int depth;
    std::set<int> columns;
    bool ingredient_columns;
  };
  const std::vector<Case> cases{
      {1, 1, {7, 8, 11, 2}, true},
      {2, 1, {7, 8, 11, 2}, true},
      {2, 2, {7, 8, 11, 2}, true},
      {3, 1, {7, 11, 1, 8, 5}, true},
      {4, 1, {7, 8, 11, 1}, true},
      {5, 1, {8, 5}, true},
      {6, 1, {}, true},
      {7, 1, {}, true},
      {11, 1, {7, 11, 2, 8, 5, 6}, false},
      {11, 2, {7}, false},
      {12, 1, {7, 11, 1, 8}, false},
  };
  for (int group = 0; group < kDataGroupCount; ++group) {
    for (int depth = 1; depth <= 4; ++depth) {
      const auto found = std::find_if(cases.begin(), cases.end(), [&](const Case& entry) {
        return entry.group == group && entry.depth == depth;
      });
      for (int column = 1; column <= kHistoryColumnCount; ++column) {
        const bool expected = found != cases.end() &&
                              (column >= kFirstIngredientColumn ? found->ingredient_columns
                                                                : found->columns.contains(column));
        EXPECT_EQ(IsBlanked(Group(group), depth, column), expected)
            << group << ", depth " << depth << ", column " << column;
      }
    }
  }
}

TEST(Blanking, NeverTouchesARecord) {
  for (const DataGroup& group : DataGroups()) {
    HistoryRow record{.depth = static_cast<int>(group.levels.size()) + 1};
    record.cells.assign(kHistoryColumnCount, std::string("x"));
    for (int column = 1; column <= kHistoryColumnCount; ++column) {
      EXPECT_EQ(ShownCell(record, group, ColumnsOf(group.index), column), "x") << group.item;
    }
  }
}

TEST(TotalRow, SumsOfIngredientColumnsHaveOneDecimal) {
  HistoryRow row = TotalRow(1, 12.25);
  const HistoryColumns columns = ColumnsOf(10);
  EXPECT_EQ(ShownCell(row, Group(10), columns, 13), "12.3");
  EXPECT_EQ(ShownCell(row, Group(10), columns, 112), "12.3");
  row.cells[12] = CellValue();
  EXPECT_EQ(ShownCell(row, Group(10), columns, 13), "0.0");
}

TEST(TotalRow, OtherSumsHaveTheDefaultForm) {
  const HistoryRow row = TotalRow(1, 2253.25);
  const HistoryColumns columns = ColumnsOf(8);
  for (const int column : {kTargetColumn, kActualBatchColumn, kActualFeedColumn}) {
    EXPECT_EQ(ShownCell(row, Group(8), columns, column), "2253.25");
  }
  EXPECT_EQ(ShownCell(TotalRow(1, 0.1 + 0.2), Group(8), columns, kTargetColumn), "0.3");
}

TEST(TotalRow, ABatchOrFeedWeightOfZeroIsEmptyATargetIsNot) {
  const HistoryColumns columns = ColumnsOf(8);
  for (const CellValue& zero :
       {CellValue(0.0), CellValue(-0.0), CellValue(std::int64_t{0}), CellValue()}) {
    HistoryRow row = TotalRow(1);
    row.cells.assign(kHistoryColumnCount, zero);
    EXPECT_EQ(ShownCell(row, Group(8), columns, kTargetColumn), "0");
    EXPECT_EQ(ShownCell(row, Group(8), columns, kActualBatchColumn), "");
    EXPECT_EQ(ShownCell(row, Group(8), columns, kActualFeedColumn), "");
  }
}

TEST(TotalRow, ARecordsWeightOfZeroIsShown) {
  HistoryRow record{.depth = 2};
  record.cells.assign(kHistoryColumnCount, 0.0);
  EXPECT_EQ(ShownCell(record, Group(8), ColumnsOf(8), kActualBatchColumn), "0");
}

TEST(TotalRow, SaysTotalInTheColumnOfItsGroupUnlessBlanked) {
  const HistoryColumns columns = ColumnsOf(2);
  EXPECT_EQ(ShownCell(TotalRow(1), Group(2), columns, 2), "");
  EXPECT_EQ(ShownCell(TotalRow(2), Group(2), columns, 2), "");
  EXPECT_EQ(ShownCell(TotalRow(3), Group(2), columns, 2), "Total:");
  EXPECT_EQ(ShownCell(TotalRow(3), Group(2), columns, 3), "");
}

TEST(TotalRow, OfAUserKeepsItsIngredientSumsThoughTheyAreHidden) {
  HistoryColumns columns = ColumnsOf(11);
  columns.ApplyIngredientColumnVisibility(Group(11));
  EXPECT_EQ(ShownCell(TotalRow(1), Group(11), columns, 13), "1.0");
  EXPECT_THAT(FormatRow(TotalRow(1), Group(11), columns).cells, ::testing::Each(IsEmpty()));
}

TEST(FormatRow, OfAGroupRowIsItsCaptionAlone) {
  const HistoryRow row{
      .kind = HistoryRowKind::kGroup, .depth = 2, .group = std::string("FEED"), .open = true};
  const ShownRow shown = FormatRow(row, Group(1), ColumnsOf(1));
  EXPECT_EQ(shown.kind, HistoryRowKind::kGroup);
  EXPECT_EQ(shown.depth, 2);
  EXPECT_TRUE(shown.open);
  EXPECT_EQ(shown.caption, "FEED");
  EXPECT_THAT(shown.cells, IsEmpty());
}

TEST(FormatRow, ShowsTheVisibleColumnsByIndex) {
  HistoryRow record{.depth = 2};
  record.cells.assign(kHistoryColumnCount, std::string("x"));
  HistoryColumns columns = ColumnsOf(6);
  const ShownRow shown = FormatRow(record, Group(6), columns);
  ASSERT_EQ(shown.cells.size(), std::size_t{kGridColumnCount});
  for (int column = 1; column <= kHistoryColumnCount; ++column) {
    EXPECT_EQ(shown.cells[static_cast<std::size_t>(column) - 1],
              columns.IsVisible(column) ? "x" : "");
  }
}

// A record of a kind with those weights, in a grid that shows both pairs.
HistoryRow Weighed(const CellValue& type, const CellValue& target, const CellValue& batch,
                   const CellValue& feed) {
  HistoryRow record{.depth = 3};
  record.cells.resize(kHistoryColumnCount);
  record.cells[kTypeColumn - 1] = type;
  record.cells[kTargetColumn - 1] = target;
  record.cells[kActualBatchColumn - 1] = batch;
  record.cells[kActualFeedColumn - 1] = feed;
  return record;
}

std::vector<std::string> DifferencesOf(const HistoryRow& row) {
  HistoryColumns columns = ColumnsOf(1);
  columns.ShowDifferences(true);
  const ShownRow shown = FormatRow(row, Group(1), columns);
  std::vector<std::string> texts;
  for (const DifferenceColumn& difference : kDifferenceColumns) {
    texts.push_back(shown.cells.at(static_cast<std::size_t>(difference.column) - 1) +
                    (shown.IsMarked(difference.column) ? "!" : ""));
  }
  return texts;
}

TEST(Differences, OfARecordAreThoseOfItsKind) {
  const std::string batch = "BATCH";
  const std::string feed = "FEED";
  EXPECT_THAT(DifferencesOf(Weighed(batch, 1000.0, 998.0, 0.0)), ElementsAre("-2", "-0.2", "", ""));
  EXPECT_THAT(DifferencesOf(Weighed(feed, 800.0, 0.0, 780.0)),
              ElementsAre("", "", "-20!", "-2.5!"));
  EXPECT_THAT(DifferencesOf(Weighed(std::string("RETURN"), 800.0, 5.0, 810.5)),
              ElementsAre("", "", "+10.5", "+1.3"));
  EXPECT_THAT(DifferencesOf(Weighed({}, 800.0, 810.0, 810.0)), ElementsAre("", "", "", ""));
  EXPECT_THAT(DifferencesOf(Weighed(batch, std::int64_t{500}, std::int64_t{500}, {})),
              ElementsAre("0", "0.0", "", ""));
}

TEST(Differences, OfATotalAreThoseOfBothKindsApart) {
  HistoryRow total = TotalRow(1);
  total.comparisons = {{{.target = 1600, .actual = 1600.5}, {.target = 1600, .actual = 1500}}};
  EXPECT_THAT(DifferencesOf(total), ElementsAre("+0.5", "0.0", "-100!", "-6.3!"));
  total.comparisons = {};
  EXPECT_THAT(DifferencesOf(total), ElementsAre("", "", "", ""));
}

TEST(ClosedGroup, HasItsSumsAndTheirCaptions) {
  HistoryRow group{.kind = HistoryRowKind::kGroup, .group = std::string("2011-03-14")};
  group.cells.resize(kHistoryColumnCount);
  group.cells[kActualBatchColumn - 1] = 5180.5;
  group.cells[kActualFeedColumn - 1] = 0.0;
  const ShownRow shown = FormatRow(group, Group(2), ColumnsOf(2));
  EXPECT_EQ(shown.caption, "Date:14-Mar-11");
  EXPECT_EQ(shown.cells.at(kActualBatchColumn - 1), "5180.5");
  EXPECT_EQ(shown.cells.at(kActualFeedColumn - 1), "");
  EXPECT_EQ(shown.cells.at(kTargetColumn - 1), "");
  EXPECT_EQ(shown.cells.at(1), "") << "Total:";
  EXPECT_EQ(shown.totals, "Batch Wt 5180.5");
}

TEST(ClosedGroup, NamesItsSumsInTheOrderOfTheColumns) {
  HistoryRow group{.kind = HistoryRowKind::kGroup, .group = std::string("FEED")};
  group.cells.resize(kHistoryColumnCount);
  group.cells[kTargetColumn - 1] = 1600.0;
  group.cells[kActualFeedColumn - 1] = 1590.5;
  group.comparisons = {{{}, {.target = 1600, .actual = 1590.5}}};
  HistoryColumns columns = ColumnsOf(8);
  EXPECT_EQ(FormatRow(group, Group(8), columns).totals, "Feed Wt 1590.5, Target Wt 1600");
  columns.ShowDifferences(true);
  EXPECT_EQ(FormatRow(group, Group(8), columns).totals,
            "Feed Wt 1590.5, Feed Diff -9.5, Feed Diff % -0.6, Target Wt 1600");
}

TEST(FormatStyle, WeightsOfATotalRowHaveTheirStyles) {
  EXPECT_EQ(CellStyle(HistoryRowKind::kTotal, 7), FormatStyle::kTargetStyle);
  EXPECT_EQ(CellStyle(HistoryRowKind::kTotal, 8), FormatStyle::kBatchStyle);
  EXPECT_EQ(CellStyle(HistoryRowKind::kTotal, 11), FormatStyle::kFeedStyle);
  EXPECT_EQ(CellStyle(HistoryRowKind::kTotal, 13), std::nullopt);
  EXPECT_EQ(CellStyle(HistoryRowKind::kRecord, 7), std::nullopt);
  EXPECT_EQ(CellStyle(HistoryRowKind::kGroup, 7), std::nullopt);
}

TEST(FormatStyle, RecordsAreStriped) {
  EXPECT_EQ(RowStyle(HistoryRowKind::kRecord, 1), FormatStyle::kOddRow);
  EXPECT_EQ(RowStyle(HistoryRowKind::kRecord, 2), FormatStyle::kEvenRow);
  EXPECT_EQ(RowStyle(HistoryRowKind::kGroup, 2), FormatStyle::kRowGroup);
  EXPECT_EQ(RowStyle(HistoryRowKind::kTotal, 3), FormatStyle::kDefault);
}

TEST(FormatStyle, HasTheNamesAndColorsOfTheDesign) {
  EXPECT_EQ(LookOf(FormatStyle::kTargetStyle).name, "TargetStyle");
  EXPECT_EQ(LookOf(FormatStyle::kTargetStyle).text->rgb, 0x008000U);
  EXPECT_EQ(LookOf(FormatStyle::kBatchStyle).name, "BatchStyle");
  EXPECT_EQ(LookOf(FormatStyle::kBatchStyle).text->rgb, 0x0000FFU);
  EXPECT_EQ(LookOf(FormatStyle::kFeedStyle).name, "FeedStyle");
  EXPECT_EQ(LookOf(FormatStyle::kFeedStyle).text->rgb, 0xFF0000U);
  EXPECT_EQ(LookOf(FormatStyle::kFeedStyle).back->system, SystemColor::kWindow);
  EXPECT_EQ(LookOf(FormatStyle::kEvenRow).back->rgb, 0xB0D7C1U);
  for (const auto style :
       {FormatStyle::kDefault, FormatStyle::kSelectedRow, FormatStyle::kOddRow,
        FormatStyle::kEvenRow, FormatStyle::kRowGroup, FormatStyle::kPreviewRow,
        FormatStyle::kFeedStyle, FormatStyle::kBatchStyle, FormatStyle::kTargetStyle}) {
    EXPECT_EQ(LookOf(style).style, style);
  }
}

}  // namespace
}  // namespace vrx::testing
