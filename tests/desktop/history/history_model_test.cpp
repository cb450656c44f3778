#include "desktop/history/history_model.h"

#include <QSignalSpy>
#include <limits>
#include <optional>

#include <gmock/gmock.h>

#include "history/data_group.h"
#include "support/small_history.h"

namespace vrx::testing {
namespace {

class HistoryTableModelTest : public ::testing::Test {
 protected:
  void Show(int group, bool open) {
    grid_.SetUp(*FindDataGroup(group), "");
    grid_.ApplyExpandState(open);
    model_.SetGrid(&grid_);
  }
  std::string Text(int row, const char* key) {
    return model_.index(row, HistoryColumnOfKey(key) - 1).data().toString().toStdString();
  }

  TempFolder folder_;
  SQLite::Database database_ = SmallHistory(folder_);
  HistoryGrid grid_{database_};
  HistoryTableModel model_;
};

TEST_F(HistoryTableModelTest, HasNoRowsWithoutAGrid) {
  EXPECT_EQ(model_.rowCount(), 0);
  EXPECT_EQ(model_.columnCount(), kGridColumnCount);
}

TEST_F(HistoryTableModelTest, HasTheRowsThatCanBeSeen) {
  Show(8, false);
  EXPECT_EQ(model_.rowCount(), 2);
  grid_.OpenGroup(1);
  model_.Refresh();
  EXPECT_EQ(model_.rowCount(), 5);
  EXPECT_EQ(model_.rowCount(model_.index(0, 0)), 0);
}

TEST_F(HistoryTableModelTest, AGroupRowSaysItsCaptionInEveryColumn) {
  Show(8, false);
  EXPECT_EQ(Text(1, "Pen"), "Pen:A02");
  EXPECT_EQ(Text(1, "Date"), "Pen:A02");
}

TEST_F(HistoryTableModelTest, ACellIsWhatTheGridShows) {
  Show(8, true);
  EXPECT_EQ(Text(1, "ActualFeed"), "810.5");
  EXPECT_EQ(Text(1, "Time"), "02:05 PM");
  EXPECT_EQ(Text(3, "Transaction"), "Total:");
}

TEST_F(HistoryTableModelTest, ATotalIsBlankUntilItIsRead) {
  Show(8, true);
  EXPECT_EQ(Text(3, "ActualFeed"), "");
  EXPECT_TRUE(model_.ReadSums(3, 3, 1).more);
  EXPECT_EQ(Text(3, "ActualFeed"), "");
  EXPECT_TRUE(model_.ReadSums(3, 3, 1000).any);
  EXPECT_EQ(Text(3, "ActualFeed"), "1305.75");
}

// A copy to the clipboard asks for the current cell, also where there is none.
TEST_F(HistoryTableModelTest, ThereIsNothingInNoCell) {
  Show(8, true);
  EXPECT_FALSE(model_.data({}, Qt::DisplayRole).isValid());
  EXPECT_FALSE(model_.data({}, Qt::TextAlignmentRole).isValid());
}

TEST_F(HistoryTableModelTest, NumbersAreRightAligned) {
  Show(0, true);
  const auto side = [this](const char* key) {
    return model_.index(0, HistoryColumnOfKey(key) - 1).data(Qt::TextAlignmentRole).toInt();
  };
  EXPECT_TRUE((side("Target") & Qt::AlignRight) != 0);
  EXPECT_TRUE((side("Transaction") & Qt::AlignLeft) != 0);
}

TEST_F(HistoryTableModelTest, RowsComeAndGoAtTheEndWithTheirSignals) {
  Show(8, false);
  QSignalSpy inserted(&model_, &QAbstractItemModel::rowsInserted);
  QSignalSpy removed(&model_, &QAbstractItemModel::rowsRemoved);
  grid_.ApplyExpandState(true);
  model_.Refresh();
  ASSERT_EQ(inserted.count(), 1);
  EXPECT_EQ(inserted[0][1].toInt(), 2);
  EXPECT_EQ(inserted[0][2].toInt(), 7);
  model_.SetGrid(nullptr);
  ASSERT_EQ(removed.count(), 1);
  EXPECT_EQ(removed[0][1].toInt(), 0);
}

// 9 million rows of ten years, each with a pixel position of 32 bits.
TEST_F(HistoryTableModelTest, AsManyRowsAsItTakesHavePixelPositions) {
  constexpr std::int64_t kTallestRow = 50;
  EXPECT_GE(HistoryTableModel::kMostRows, 9'000'000);
  EXPECT_LE(HistoryTableModel::kMostRows * kTallestRow, std::numeric_limits<int>::max());
}

TEST_F(HistoryTableModelTest, ARowThatCannotBeReadIsBlankAndReportedOnceUntilTheNextRefresh) {
  Show(0, true);
  database_.exec("ALTER TABLE Transactions RENAME TO Elsewhere");
  grid_.SortByColumn(kTargetColumn);
  QSignalSpy failed(&model_, &HistoryTableModel::Failed);
  model_.Refresh();
  EXPECT_EQ(Text(0, "Target"), "");
  EXPECT_EQ(Text(1, "Target"), "");
  EXPECT_EQ(failed.count(), 1);
  model_.Refresh();
  EXPECT_EQ(Text(0, "Target"), "");
  EXPECT_EQ(failed.count(), 2);
  database_.exec("ALTER TABLE Elsewhere RENAME TO Transactions");
  EXPECT_EQ(Text(0, "Target"), "0");
}

}  // namespace
}  // namespace vrx::testing
