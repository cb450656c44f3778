#include <gmock/gmock.h>

#include "desktop/history/history_fixture.h"

namespace vrx::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

class HistoryPageGrid : public HistoryFixture {};

// Groups that open and close, and the strip of headers.

TEST_F(HistoryPageGrid, WithAllGroupsClosedThereIsNoHeaderStripUntilRecordsShow) {
  ShowTab();
  ChooseGroup(3);
  EXPECT_FALSE(Header().isVisible());
  ClickMark(2);
  EXPECT_FALSE(Header().isVisible());  // BATCH and FEED of STEERS, no record yet
  EXPECT_THAT(Lines(), ElementsAre("[1] Recipe:", "[1] Recipe:HEIFER", "[1] Recipe:STEERS",
                                   "[2] BATCH", "[2] FEED", "=1: ||||||||"));
  ClickMark(3);
  EXPECT_TRUE(Header().isVisible());
  ClickMark(3);
  EXPECT_FALSE(Header().isVisible());
}

TEST_F(HistoryPageGrid, TransactionsAllAlwaysHaveTheHeaderStrip) {
  ShowTab();
  EXPECT_TRUE(Header().isVisible());
  ExpandAll(true);
  ExpandAll(false);
  EXPECT_TRUE(Header().isVisible());
}

TEST_F(HistoryPageGrid, AClickBesideTheMarkOnlySelectsTheGroup) {
  ShowTab();
  ChooseGroup(8);
  ClickRow(1);
  EXPECT_EQ(Grid().currentIndex().row(), 1);
  EXPECT_EQ(Lines().size(), 2U);
}

TEST_F(HistoryPageGrid, ADoubleClickOpensAndClosesAGroup) {
  ShowTab();
  ChooseGroup(8);
  QTest::mouseDClick(Grid().viewport(), Qt::LeftButton, {}, RowPoint(0));
  EXPECT_EQ(Lines().size(), 5U);  // two records and their total
  QTest::mouseDClick(Grid().viewport(), Qt::LeftButton, {}, RowPoint(0));
  EXPECT_EQ(Lines().size(), 2U);
}

TEST_F(HistoryPageGrid, KeysOpenAndCloseTheGroup) {
  ShowTab();
  ChooseGroup(8);
  Grid().setFocus();
  ClickRow(1);
  for (const auto& [open, close] : {std::pair<int, int>{Qt::Key_Right, Qt::Key_Left},
                                    {Qt::Key_Plus, Qt::Key_Minus},
                                    {Qt::Key_Space, Qt::Key_Space}}) {
    Press(open);
    EXPECT_THAT(Lines(), ElementsAre("[1] Pen:A01", "[1] Pen:A02", ::testing::_, ::testing::_,
                                     StartsWith("=1: Total:")));
    Press(close);
    EXPECT_EQ(Lines().size(), 2U);
  }
  Press(Qt::Key_Left);  // closed already
  EXPECT_EQ(Lines().size(), 2U);
  EXPECT_EQ(Grid().currentIndex().row(), 1);
}

TEST_F(HistoryPageGrid, ExpandAllOpensEveryGroupAndHoldsForTheNextOne) {
  ShowTab();
  ChooseGroup(8);
  ExpandAll(true);
  EXPECT_EQ(Lines().size(), 8U);
  ChooseGroup(12);
  EXPECT_THAT(Lines(), Contains(StartsWith("3: ")));
  ExpandAll(false);
  EXPECT_THAT(Lines(), ElementsAre("[1] User ID:", "[1] User ID:2", "[1] User ID:10"));
}

TEST_F(HistoryPageGrid, EveryChangeOfTheTabClosesAllGroups) {
  ShowTab();
  ChooseGroup(8);
  ClickMark(0);
  ASSERT_EQ(Lines().size(), 5U);
  GoToTab(kTabExport);
  GoToTab(kTabBatchedFed);
  EXPECT_EQ(Lines().size(), 2U);
}

TEST_F(HistoryPageGrid, CtrlEndGoesToTheLastRowAndCtrlHomeBack) {
  ShowTab();
  ExpandAll(true);
  ChooseGroup(3);
  Grid().setFocus();
  ClickRow(0);
  const int column = Grid().currentIndex().column();
  Press(Qt::Key_End, Qt::ControlModifier);
  EXPECT_EQ(Grid().currentIndex().row(), Grid().Model().rowCount() - 1);
  EXPECT_EQ(Grid().currentIndex().column(), column);
  Press(Qt::Key_Home, Qt::ControlModifier);
  EXPECT_EQ(Grid().currentIndex().row(), 0);
}

// Columns.

TEST_F(HistoryPageGrid, AClickOnAHeaderSortsAndTheNextTurnsTheOrder) {
  ShowTab();
  ClickHeader(kTargetColumn);
  EXPECT_THAT(Lines().front(), HasSubstr("||BATCH|0||0||0"));
  EXPECT_TRUE(Header().isSortIndicatorShown());
  EXPECT_EQ(Header().sortIndicatorSection(), kTargetColumn - 1);
  EXPECT_EQ(Header().sortIndicatorOrder(), Qt::AscendingOrder);
  ClickHeader(kTargetColumn);
  EXPECT_THAT(Lines().front(), HasSubstr("|1000|"));
  EXPECT_EQ(Header().sortIndicatorOrder(), Qt::DescendingOrder);
  ChooseGroup(0);
  EXPECT_FALSE(Header().isSortIndicatorShown());
  EXPECT_THAT(Lines().front(), StartsWith("1: 1|STEERS|BATCH|998"));
}

TEST_F(HistoryPageGrid, ASortKeepsTheRecordSelected) {
  ShowTab();
  Click(u"chkUseHistoryNavigator"_qs);
  ClickRow(0);
  const std::string record = Cells(0);
  ClickHeader(kTargetColumn);
  ClickHeader(kTargetColumn);
  const int row = Grid().currentIndex().row();
  EXPECT_EQ(Cells(row), record);
  ClickHeader(kTargetColumn);
  EXPECT_NE(Grid().currentIndex().row(), row);
  EXPECT_EQ(Cells(Grid().currentIndex().row()), record);
  EXPECT_EQ(Find<QLineEdit>(u"txtHistoryRow"_qs).text(),
            QString::number(Grid().currentIndex().row() + 1));
}

TEST_F(HistoryPageGrid, ASortWithoutASelectionSelectsNothing) {
  ShowTab();
  ClickHeader(kTargetColumn);
  EXPECT_FALSE(Grid().currentIndex().isValid());
}

TEST_F(HistoryPageGrid, AClickOnTheCaptionOfALevelKeepsTheSortMark) {
  ShowTab();
  ChooseGroup(10);
  ExpandAll(true);
  const int pen = HistoryColumnOfKey("Pen");
  ClickHeader(pen);
  EXPECT_FALSE(Header().isSortIndicatorShown());
  ClickHeader(kTargetColumn);
  const std::vector<std::string> sorted = Lines();
  ClickHeader(pen);
  EXPECT_TRUE(Header().isSortIndicatorShown());
  EXPECT_EQ(Header().sortIndicatorSection(), kTargetColumn - 1);
  EXPECT_EQ(Header().sortIndicatorOrder(), Qt::AscendingOrder);
  EXPECT_EQ(Lines(), sorted);
}

// Ink of the caption in the picture of a section, left of the sort mark.
int InkOf(const QImage& section) {
  const QColor ink = HistoryStyles::HeaderColor(QPalette());
  int dots = 0;
  for (int y = 0; y < section.height(); ++y) {
    for (int x = 0; x < section.width(); ++x) {
      const QColor dot = section.pixelColor(x, y);
      dots += dot.blue() - dot.red() > 100 && ink.blue() > ink.red() ? 1 : 0;
    }
  }
  return dots;
}

TEST_F(HistoryPageGrid, TheSortMarkLeavesTheCaptionWhole) {
  ShowTab();
  for (const char* const key : {"Target", "ActualBatch", "Transaction", "UserID", "Date"}) {
    const int column = HistoryColumnOfKey(key);
    Grid().scrollTo(Grid().model()->index(0, column - 1));
    const auto picture = [&] {
      QTest::mouseMove(Grid().viewport());
      RunEvents();
      return Header()
          .grab({Header().sectionViewportPosition(column - 1), 0, Header().sectionSize(column - 1),
                 Header().height()})
          .toImage();
    };
    const int whole = InkOf(picture());
    ASSERT_GT(whole, 50) << key;
    ClickHeader(column);
    EXPECT_GE(InkOf(picture()), whole) << key;
  }
}

// A column that the operator made narrow shows the beginning of its caption, never its end alone.
TEST_F(HistoryPageGrid, ANarrowSortedColumnShortensItsCaption) {
  ShowTab();
  class Strip : public HistoryHeader {
   public:
    using HistoryHeader::initStyleOptionForIndex;
  };
  ClickHeader(kTargetColumn);
  Header().resizeSection(kTargetColumn - 1, 70);
  QStyleOptionHeader option;
  option.initFrom(&Header());
  (Header().*(&Strip::initStyleOptionForIndex))(&option, kTargetColumn - 1);
  EXPECT_TRUE(option.text.startsWith(u'T')) << option.text.toStdString();
  EXPECT_TRUE(option.text.endsWith(u'…')) << option.text.toStdString();
}

TEST_F(HistoryPageGrid, DatesSortAsDates) {
  Alter(Transactions(), "UPDATE Transactions SET Date = '2011-02-28' WHERE Pen = 'A02'");
  ShowTab();
  const int date = HistoryColumnOfKey("Date");
  ClickHeader(date);
  EXPECT_THAT(Lines()[1], HasSubstr("28-Feb-11"));  // after the record without one
  EXPECT_THAT(Lines().back(), HasSubstr("15-Mar-11"));
}

TEST_F(HistoryPageGrid, AColumnIsMovedWithTheMouse) {
  ShowTab();
  ASSERT_EQ(Captions()[2], "Type");
  QWidget* const strip = Header().viewport();
  const QPoint from = SectionPoint(HistoryColumnOfKey("Type"));
  const QPoint to = SectionPoint(HistoryColumnOfKey("Transaction")) - QPoint(20, 0);
  QTest::mousePress(strip, Qt::LeftButton, {}, from);
  QTest::mouseMove(strip, from - QPoint(30, 0));
  QTest::mouseMove(strip, to);
  QTest::mouseRelease(strip, Qt::LeftButton, {}, to);
  RunEvents();
  EXPECT_THAT(Captions(), ::testing::Contains("Transaction"));
  EXPECT_EQ(Captions().front(), "Type");
  EXPECT_THAT(Lines().front(), StartsWith("1: BATCH|1|STEERS|"));
}

TEST_F(HistoryPageGrid, AWidthThatTheOperatorGaveStaysWithItsColumn) {
  ShowTab();
  const int column = HistoryColumnOfKey("Recipe");
  const int wider = Header().sectionSize(column - 1) + 60;
  Header().resizeSection(column - 1, wider);
  ChooseGroup(1);
  ChooseGroup(0);
  EXPECT_EQ(Header().sectionSize(column - 1), wider);
}

TEST_F(HistoryPageGrid, ColumnsFillTheWidthButForThoseThatTheOperatorSized) {
  ShowTab();
  ChooseGroup(8);
  ExpandAll(true);
  ASSERT_EQ(Header().length(), Grid().viewport()->width());
  const int column = HistoryColumnOfKey("Recipe");
  const int wider = Header().sectionSize(column - 1) + 20;
  Header().resizeSection(column - 1, wider);
  Window().resize(Window().width() - 30, Window().height());
  RunEvents();
  EXPECT_EQ(Header().length(), Grid().viewport()->width());
  EXPECT_EQ(Header().sectionSize(column - 1), wider);
}

TEST_F(HistoryPageGrid, EnterGoesToTheNextRowAndFromTheLastOneOut) {
  ShowTab();
  const int rows = Grid().model()->rowCount();
  Grid().setFocus();
  Grid().GoToRow(rows - 2);
  Press(Qt::Key_Return);
  EXPECT_EQ(Grid().currentIndex().row(), rows - 1);
  Press(Qt::Key_Return);
  EXPECT_FALSE(Grid().hasFocus());
}

TEST_F(HistoryPageGrid, IngredientColumnsBearTheNamesOfTheOpenRecipeDatabase) {
  ShowTab();
  EXPECT_THAT(Captions(), Contains("HAY"));
  Alter(Recipes(), "UPDATE Ingredient SET Name = 'Milo' WHERE ID = 1");
  GoToTab(kTabDataTransfer);
  GoToTab(kTabBatchedFed);
  EXPECT_THAT(Captions(), Contains("MILO"));
  EXPECT_THAT(Captions(), Not(Contains("CORN")));
}

TEST_F(HistoryPageGrid, ASlotOfItsDefaultNameHasNoColumnThoughItsWeightsAreStored) {
  Alter(Recipes(), "UPDATE Ingredient SET Name = 'ING002', Description = 'Hay' WHERE ID = 2");
  Alter(Recipes(), "UPDATE Ingredient SET Name = 'SALT', Description = 'Salt' WHERE ID = 100");
  Alter(Transactions(), "UPDATE Transactions SET Ing100Wt = 7 WHERE Pen = 'A01'");
  ShowTab();
  EXPECT_EQ(Captions().back(), "SALT");
  EXPECT_THAT(Captions(), Not(Contains("ING002")));
  EXPECT_THAT(Captions(), Not(Contains("HAY")));
}

TEST_F(HistoryPageGrid, WithoutRecipeDatabaseNoIngredientHasAColumn) {
  Show();
  OpenTransactions();
  EXPECT_EQ(Captions().back(), "Ing% Of Batch");
  OpenRecipes();
  GoToTab(kTabBatchedFed);
  EXPECT_EQ(Captions().back(), "HAY");
  Choose(u"mnuFileCloseRecipeDB"_qs);
  GoToTab(kTabBatchedFed);
  EXPECT_EQ(Captions().back(), "Ing% Of Batch");
}

// An operator of two databases need not leave the tab to see other names.
TEST_F(HistoryPageGrid, AnotherRecipeDatabaseRelabelsTheColumnsAtOnce) {
  ShowTab();
  const SQLite::Database other = SmallRecipes(folder_, "OTHER.RDB");
  Alter(folder_ / "OTHER.RDB", "UPDATE Ingredient SET Name = 'OATS' WHERE ID = 1");
  const BoundDatabase bound =
      BindUserDatabase(folder_ / "OTHER.RDB", std::chrono::milliseconds{100});
  Window().Rebind(DatabaseKind::kRecipe, bound);
  EXPECT_THAT(Captions(), Contains("OATS"));
  Window().Rebind(DatabaseKind::kRecipe, Main().Databases().Bound(DatabaseKind::kRecipe));
  EXPECT_THAT(Captions(), Contains("CORN"));
}

// The navigator.

TEST_F(HistoryPageGrid, TheNavigatorShowsWhileItsBoxIsTicked) {
  ShowTab();
  EXPECT_FALSE(Visible(u"navHistory"_qs));
  Click(u"chkUseHistoryNavigator"_qs);
  EXPECT_TRUE(Visible(u"navHistory"_qs));
  EXPECT_EQ(LabelText(u"lblHistoryNavigator"_qs), "Transaction:");
  EXPECT_EQ(LabelText(u"lblHistoryCount"_qs), "of 8");
  Click(u"chkUseHistoryNavigator"_qs);
  EXPECT_FALSE(Visible(u"navHistory"_qs));
}

TEST_F(HistoryPageGrid, TheNavigatorMovesThroughTheRowsAndStopsAtBothEnds) {
  ShowTab();
  Click(u"chkUseHistoryNavigator"_qs);
  auto& number = Find<QLineEdit>(u"txtHistoryRow"_qs);
  Click(u"cmdHistoryNavigate(3)"_qs);
  EXPECT_EQ(Grid().currentIndex().row(), 7);
  EXPECT_EQ(number.text(), u"8"_qs);
  EXPECT_FALSE(Find<QWidget>(u"cmdHistoryNavigate(2)"_qs).isEnabled());
  Click(u"cmdHistoryNavigate(1)"_qs);
  EXPECT_EQ(number.text(), u"7"_qs);
  Click(u"cmdHistoryNavigate(0)"_qs);
  EXPECT_EQ(number.text(), u"1"_qs);
  EXPECT_FALSE(Find<QWidget>(u"cmdHistoryNavigate(1)"_qs).isEnabled());
  Click(u"cmdHistoryNavigate(2)"_qs);
  EXPECT_EQ(Grid().currentIndex().row(), 1);
}

TEST_F(HistoryPageGrid, ATypedNumberGoesToThatRowOrTheNearest) {
  ShowTab();
  Click(u"chkUseHistoryNavigator"_qs);
  auto& number = Find<QLineEdit>(u"txtHistoryRow"_qs);
  for (const auto& [typed, row] : {std::pair{"5", 4}, {"900", 7}, {"0", 0}}) {
    number.setFocus();
    number.selectAll();
    QTest::keyClicks(&number, typed);
    QTest::keyClick(&number, Qt::Key_Return);
    EXPECT_EQ(Grid().currentIndex().row(), row) << typed;
  }
}

}  // namespace
}  // namespace vrx::testing
