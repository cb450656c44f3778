#include "desktop/recipes/recipe_totals_row.h"

#include <QHeaderView>
#include <QScrollBar>
#include <QTest>

#include "desktop/recipes/recipe_grid_cells.h"
#include "desktop/recipes/recipes_fixture.h"
#include "feed/recipe_columns.h"
#include "widgets/drawing.h"

namespace vrx::testing {
namespace {

class RecipeTotals : public RecipesFixture {
 protected:
  // Each total has the edges of its column, in the coordinates of the form.
  void ExpectBelowTheColumns() {
    RunEvents();
    for (int column = kColumnTarget; column < kRecipeColumnCount; ++column) {
      const auto& label =
          Find<QLabel>(RecipeColumns()[static_cast<std::size_t>(column)].total_label);
      EXPECT_EQ(label.isVisible(), !Grid().isColumnHidden(column)) << column;
      if (label.isVisible()) {
        const int left = Grid().columnViewportPosition(column);
        EXPECT_EQ(label.mapTo(form_.get(), QPoint(0, 0)).x(),
                  Grid().viewport()->mapTo(form_.get(), QPoint(left, 0)).x())
            << column;
        EXPECT_EQ(label.width(), Grid().columnWidth(column)) << column;
      }
    }
  }
  QColor Background() { return Find<QLabel>("lblIngPctTotal").palette().color(QPalette::Window); }
  void Tick() { QMetaObject::invokeMethod(&Find<QTimer>("timPercentTotalError"), "timeout"); }
  void AddPercents(const std::string& last) {
    AddStoredLine(kByPercent, kCorn, "0", "62.50");
    AddStoredLine(kByPercent, kHay, "0", "30.00");
    AddStoredLine(kByPercent, kOats, "0", last);
  }
};

TEST_F(RecipeTotals, AreExactlyBelowTheirColumns) {
  AddCornHaySupplement(kByWeight);
  AddCornHaySupplement(kByPercent);
  Enter();
  ExpectBelowTheColumns();
  Grid().setColumnWidth(kColumnRationPercent, 300);
  ExpectBelowTheColumns();
  Grid().horizontalHeader()->moveSection(5, 1);
  ExpectBelowTheColumns();
  Grid().setColumnWidth(kColumnIngredient, 700);
  Grid().horizontalScrollBar()->setValue(100);
  ASSERT_EQ(Grid().horizontalScrollBar()->value(), 100);
  ExpectBelowTheColumns();
  Show(kByPercent);
  ExpectBelowTheColumns();
}

TEST_F(RecipeTotals, OfTenDigitsFitTheirColumnsAndTheNextRecipeGetsTheSpaceBack) {
  AddCornHaySupplement(kByHeadCount);
  SetHeadCount(kByHeadCount, 100);
  AddCornHaySupplement(kByWeight);
  Enter();
  Show(kByWeight);
  const int usual = Grid().columnWidth(kColumnBatchTarget);
  Database().exec(
      "UPDATE RecipeRation SET DryMatter = '2147482000', Target = '1073741800' "
      "WHERE RecipeID = '2' AND Sequence = 1");
  Show(kByHeadCount);
  EXPECT_EQ(Label("lblBatchTargetTotal"), "2147482989");
  EXPECT_EQ(Label("lblDryMatTotal"), "2147482989");
  for (const char* const total : {"lblTargetTotal", "lblDryMatTotal", "lblBatchTargetTotal"}) {
    const auto& label = Find<QLabel>(total);
    ASSERT_EQ(label.text().size(), 10) << total;
    EXPECT_LE(label.fontMetrics().horizontalAdvance(label.text()) + 2 * kCellMargin, label.width())
        << total;
  }
  ExpectBelowTheColumns();
  Show(kByWeight);
  EXPECT_EQ(Grid().columnWidth(kColumnBatchTarget), usual);
}

// What the label draws differs in the first digit alone.
TEST_F(RecipeTotals, ShowTheirFirstDigitInAColumnThatTheOperatorNarrowed) {
  AddCornHaySupplement(kByWeight);
  Enter();
  auto& total = Find<QLabel>("lblBatchTargetTotal");
  Grid().setColumnWidth(kColumnBatchTarget, total.fontMetrics().horizontalAdvance(u"00000"_qs));
  RunEvents();
  total.setText(u"1234567890"_qs);
  const QImage one = total.grab().toImage();
  total.setText(u"7234567890"_qs);
  EXPECT_NE(total.grab().toImage(), one);
}

TEST_F(RecipeTotals, AColumnByPercentFollowsTheIngredient) {
  AddPercents("7.50");
  Enter();
  Show(kByPercent);
  EXPECT_EQ(Grid().horizontalHeader()->visualIndex(kColumnIngredientPercent), 1);
  EXPECT_TRUE(Grid().isColumnHidden(kColumnTarget));
  EXPECT_TRUE(Grid().isColumnHidden(kColumnRationPercent));
  Show(kByWeight);
  EXPECT_TRUE(Grid().isColumnHidden(kColumnIngredientPercent));
  EXPECT_FALSE(Grid().isColumnHidden(kColumnTarget));
}

TEST_F(RecipeTotals, AShareThatIsNot100Flashes) {
  AddPercents("7.49");
  Enter();
  Show(kByPercent);
  EXPECT_EQ(Label("lblIngPctTotal"), "99.99");
  EXPECT_TRUE(Visible("lblMustTotal100Pct"));
  EXPECT_EQ(Label("lblMustTotal100Pct"), "Ingredients must total 100% to set Ration Target");
  EXPECT_FALSE(Enabled("txtRecRationTarget"));
  EXPECT_FALSE(Enabled("lstAdjustBatchTotal"));
  const auto& timer = Find<QTimer>("timPercentTotalError");
  EXPECT_TRUE(timer.isActive());
  EXPECT_EQ(timer.interval(), 600);
  EXPECT_EQ(Background(), QColor(0xFF, 0x80, 0x80));
  Tick();
  EXPECT_EQ(Background(), form_->palette().color(QPalette::ToolTipBase));
  Tick();
  EXPECT_EQ(Background(), QColor(0xFF, 0x80, 0x80));
}

TEST_F(RecipeTotals, AShareOf100StopsTheFlashing) {
  AddPercents("7.49");
  Enter();
  Show(kByPercent);
  Click(2, kColumnIngredientPercent);
  Type("7.50");
  Press(Qt::Key_Return);
  Press(Qt::Key_Up);
  EXPECT_FALSE(Find<QTimer>("timPercentTotalError").isActive());
  EXPECT_FALSE(Visible("lblMustTotal100Pct"));
  EXPECT_EQ(Background(), form_->palette().color(QPalette::ToolTipBase));
  EXPECT_TRUE(Enabled("txtRecRationTarget"));
}

TEST_F(RecipeTotals, AClickOnTheShareAppliesTheRuleAnew) {
  AddPercents("7.49");
  Enter();
  Show(kByPercent);
  Tick();
  QTest::mouseClick(&Find<QLabel>("lblIngPctTotal"), Qt::LeftButton);
  EXPECT_EQ(Background(), QColor(0xFF, 0x80, 0x80));
  EXPECT_TRUE(Find<QTimer>("timPercentTotalError").isActive());
}

TEST_F(RecipeTotals, ARecipeByWeightDoesNotFlash) {
  AddPercents("7.49");
  Enter();
  Show(kByPercent);
  Show(kByWeight);
  EXPECT_FALSE(Find<QTimer>("timPercentTotalError").isActive());
  EXPECT_FALSE(Visible("lblMustTotal100Pct"));
}

TEST_F(RecipeTotals, AnotherTabHidesTheMessage) {
  AddPercents("7.49");
  Enter();
  Show(kByPercent);
  page_->TabChanged(3, kTab);
  EXPECT_FALSE(Visible("lblMustTotal100Pct"));
}

TEST(RecipeCellLook, EveryCellCanBeReadInALightAndADarkPalette) {
  QPalette dark(Qt::black);
  dark.setColor(QPalette::ToolTipBase, QColor(60, 60, 60));
  for (const QPalette& palette : {QPalette(QColor(240, 240, 240)), dark}) {
    for (const CellRole role : {CellRole::kEntered, CellRole::kReadOnly, CellRole::kComputed}) {
      for (const bool current : {false, true}) {
        const auto look = LookOfCell(role, current, palette);
        EXPECT_GE(ContrastRatio(look.text, look.background), kTextContrast);
      }
    }
  }
}

TEST(RecipeCellLook, WhatIsComputedIsBlueOnTheTooltipBackground) {
  const QPalette palette(QColor(240, 240, 240));
  const auto look = LookOfCell(CellRole::kComputed, false, palette);
  EXPECT_EQ(look.text, QColor(Qt::blue));
  EXPECT_EQ(look.background, palette.color(QPalette::ToolTipBase));
}

}  // namespace
}  // namespace vrx::testing
