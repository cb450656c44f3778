#include <QCheckBox>
#include <QScrollBar>
#include <QTimer>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "desktop/history/history_fixture.h"

namespace vrx::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::StartsWith;

class HistoryDifferences : public HistoryFixture {
 protected:
  void ShowDifferences() { Click(u"chkDifferences"_qs); }

  std::string TotalsOf(int row) {
    Grid().viewport()->repaint();
    while (Grid().findChild<QTimer*>(u"tmrReadSums"_qs)->isActive()) {
      RunEvents();
    }
    return Grid().Model().RowAt(row).totals;
  }
  // Whether any pixel of a row right of `left` differs from its background.
  bool IsDrawnIn(const QImage& picture, int row, int left, int right) {
    const int top = Grid().rowViewportPosition(row);
    const double scale = picture.devicePixelRatio();
    const auto at = [&](int x, int y) {
      return picture.pixelColor(static_cast<int>(x * scale), static_cast<int>(y * scale));
    };
    const QColor back = at(Grid().viewport()->width() - 3, top + 2);
    for (int x = left; x < right; ++x) {
      for (int y = top + 2; y < top + Grid().rowHeight(row) - 3; ++y) {
        if (at(x, y) != back) {
          return true;
        }
      }
    }
    return false;
  }
};

TEST_F(HistoryDifferences, AreShownWhileTheBoxIsChecked) {
  ShowTab();
  ChooseGroup(9);
  PickName(u"A02"_qs);
  ExpandAll(true);
  const std::vector<std::string> before = Lines();
  ShowDifferences();
  EXPECT_THAT(Captions(), ElementsAre("Recipe", "Target Wt", "Feed Wt", "Feed Diff", "Feed Diff %",
                                      "User ID", "Time", "Date"));
  EXPECT_THAT(Lines(), Contains("2: STEERS|800|780|-20|-2.5|2|02:20 PM|15-Mar-11"));
  ShowDifferences();
  EXPECT_EQ(Lines(), before);
}

TEST_F(HistoryDifferences, StayInTheNextDataGroup) {
  ShowTab();
  ShowDifferences();
  ChooseGroup(5);
  EXPECT_THAT(Captions(), ElementsAre("Ingredient", "Batch Wt", "Batch Diff", "Batch Diff %"));
}

TEST_F(HistoryDifferences, OfATotalAppearWhenTheyAreRead) {
  ShowTab();
  ChooseGroup(8);
  ExpandAll(true);
  ShowDifferences();
  TotalsOf(0);
  EXPECT_THAT(Lines(), Contains("=1: Total:||1305.75|+5.75|+0.4|1300|||"));
}

TEST_F(HistoryDifferences, BeyondTheToleranceOfTheSetupAreBold) {
  ShowTab();
  ChooseGroup(9);
  PickName(u"A02"_qs);
  ExpandAll(true);
  ShowDifferences();
  Grid().GoToTop();
  const QImage marked = Grid().viewport()->grab().toImage();
  EXPECT_TRUE(Grid().Model().RowAt(1).IsMarked(115));
  settings_.SetDifferenceTolerance("5");
  GoToTab(5);
  GoToTab(4);
  ChooseGroup(9);
  PickName(u"A02"_qs);
  Grid().GoToTop();
  EXPECT_FALSE(Grid().Model().RowAt(1).IsMarked(115));
  EXPECT_NE(Grid().viewport()->grab().toImage(), marked);
}

TEST_F(HistoryDifferences, AClickOnTheirHeaderSorts) {
  ShowTab();
  ShowDifferences();
  ChooseGroup(8);
  ExpandAll(true);
  ClickHeader(115);
  EXPECT_EQ(Grid().Model().Grid()->SortColumn(), 115);
  EXPECT_EQ(Cells(1), "2|HEIFER|495.25|-4.75|-1.0|500||09:30 AM|15-Mar-11");
}

TEST_F(HistoryDifferences, AClosedGroupHasItsTotalsBehindItsNameWithoutHeaders) {
  ShowTab();
  ChooseGroup(3);
  EXPECT_EQ(TotalsOf(2), "Batch Wt 1600.5, Feed Wt 1590.5");
  EXPECT_TRUE(Header().isHidden());
  const QModelIndex group = Grid().Model().index(2, 0);
  EXPECT_EQ(group.data().toString(), u"Recipe:STEERS"_qs);
  EXPECT_EQ(group.data(Qt::AccessibleTextRole).toString(),
            u"Recipe:STEERS, Batch Wt 1600.5, Feed Wt 1590.5"_qs);
  const int captioned =
      QFontMetrics(HistoryStyles::CellFont()).horizontalAdvance(u"Recipe:STEERS"_qs);
  EXPECT_TRUE(IsDrawnIn(Grid().viewport()->grab().toImage(), 2, captioned + 60, captioned + 200));
}

TEST_F(HistoryDifferences, AClosedGroupHasItsTotalsInTheirColumnsBelowHeaders) {
  ShowTab();
  ChooseGroup(8);
  ClickMark(0);
  RunEvents();
  ASSERT_FALSE(Header().isHidden());
  const int last = Grid().Model().rowCount() - 1;
  ASSERT_EQ(TotalsOf(last), "Feed Wt 780, Target Wt 1100");
  const QImage picture = Grid().viewport()->grab().toImage();
  int left = 0;
  for (const ShownColumn& shown : Header().Shown()) {
    const bool summed = shown.column == kActualFeedColumn || shown.column == kTargetColumn;
    if (left > 150) {
      EXPECT_EQ(IsDrawnIn(picture, last, left + 2, left + shown.width - 2), summed) << shown.column;
    }
    left += shown.width;
  }
}

TEST_F(HistoryDifferences, ATotalOfManyRecordsIsBlankUntilItIsRead) {
  ShowTab();
  Alter(Transactions(),
        "WITH RECURSIVE Listed (Number) AS (SELECT 1 UNION ALL SELECT Number + 1 FROM Listed WHERE "
        "Number < 6000) INSERT INTO Transactions ([Transaction], Recipe, Type, Pen, Target, "
        "ActualFeed) SELECT 1, 'STEERS', 'FEED', 'Z9', 0.2, 0.1 FROM Listed");
  ChooseGroup(8);
  ExpandAll(true);
  const int total = Grid().Model().rowCount() - 1;
  const auto text = [&](int column) {
    return Grid().Model().index(total, column - 1).data().toString().toStdString();
  };
  Grid().verticalScrollBar()->setValue(Grid().verticalScrollBar()->maximum());
  Grid().viewport()->repaint();
  EXPECT_THAT(Cells(total), StartsWith("Total:"));
  EXPECT_EQ(text(kActualFeedColumn), "") << "in the first picture";
  EXPECT_EQ(text(kTargetColumn), "");
  const QImage blank = Grid().viewport()->grab().toImage();
  TotalsOf(total);
  EXPECT_EQ(text(kActualFeedColumn), "600");
  EXPECT_EQ(text(kTargetColumn), "1200");
  EXPECT_NE(Grid().viewport()->grab().toImage(), blank);
}

TEST_F(HistoryDifferences, AFailureLeavesTheTotalsOutAndTheGroupsStay) {
  ShowTab();
  ChooseGroup(3);
  Alter(Transactions(), "ALTER TABLE Transactions RENAME TO Gone");
  ShowDifferences();
  EXPECT_EQ(TotalsOf(2), "");
  EXPECT_EQ(Grid().Model().RowAt(2).caption, "Recipe:STEERS");
  EXPECT_TRUE(operator_.boxes.empty());
  Alter(Transactions(), "ALTER TABLE Gone RENAME TO Transactions");
  ShowDifferences();
  EXPECT_EQ(TotalsOf(2), "Batch Wt 1600.5, Feed Wt 1590.5");
}

}  // namespace
}  // namespace vrx::testing
