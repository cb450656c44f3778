// What is recomputed when, and what stays as it was until then: the figures on the screen and those
// in the file, after each event of the three record tabs.

#include <QLabel>
#include <QTabBar>
#include <QTest>

#include <gmock/gmock.h>

#include "database/connection.h"
#include "desktop/recipes/recipe_grid.h"
#include "desktop/records/record_pages_fixture.h"
#include "feed/recipe_columns.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::SizeIs;

constexpr int kByWeight = 1;
constexpr int kRecipeByPercent = 2;
constexpr int kByHead = 3;

// "Target", "Ration%", "DryMatter%", "DryMatter" and "BatchTarget" of a stored line.
std::vector<std::string> Figures(const RecipeLineRecord& line) {
  return {line.target, line.ration_percent, line.dry_matter_percent, line.dry_matter,
          line.batch_target};
}

// Corn 1200 and hay 800 of 88 %, with made-up figures: 11.111, 4321 and 1234.
class RecipeTriggers : public RecordPagesFixture {
 protected:
  RecipeGrid& Lines() { return Find<RecipeGrid>(u"grdREC"_qs); }
  void ClickTab(int tab) {
    QTabBar& strip = *Tabs().tabBar();
    QTest::mouseClick(&strip, Qt::LeftButton, {}, strip.tabRect(tab).center());
    RunEvents();
  }
  void ClickLine(int row, RecipeColumn column) {
    const QRect cell = Lines().visualRect(Lines().model()->index(row, column));
    QTest::mouseClick(Lines().viewport(), Qt::LeftButton, {},
                      QPoint(cell.left() + 4, cell.center().y()));
  }
  std::vector<std::string> Shown(int row) {
    std::vector<std::string> cells;
    for (int column = kColumnTarget; column <= kColumnBatchTarget; ++column) {
      cells.push_back(Lines().model()->index(row, column).data().toString().toStdString());
    }
    return cells;
  }
  // Shown and stored are one.
  void ExpectFigures(int recipe, int line, const std::vector<std::string>& figures) {
    EXPECT_EQ(Shown(line), figures);
    EXPECT_EQ(Figures(Line(recipe, static_cast<std::size_t>(line))), figures);
  }
  std::string Total(const char* label) { return Text(QLatin1String(label)).toStdString(); }
  // Recipes as another program leaves them, without notifying the tab.
  void OnTabWithStaleFigures() {
    Enter(kTabRecipes);
    ChooseIn("cboRecID", kRecipeByPercent);
    MakeStale();
    ChooseIn("cboRecID", kByWeight);
  }
};

TEST_F(RecipeTriggers, ASelectedRecipeGetsSharesAndTotalsAndKeepsItsAsFedWeights) {
  OnTabWithStaleFigures();
  ExpectFigures(kByWeight, 0, {"1200", "60.000", "88", "4321", "2500"});
  ExpectFigures(kByWeight, 1, {"800", "40.000", "88", "4321", "2500"});
  EXPECT_EQ(Total("lblTargetTotal"), "2000");
  EXPECT_EQ(Total("lblRationPctTotal"), "100.000");
  EXPECT_EQ(Total("lblDryMatTotal"), "8642");
  EXPECT_EQ(Total("lblDryMatPercent"), "23.1");
  EXPECT_EQ(Total("lblBatchTargetTotal"), "5000");
  EXPECT_THAT(Figures(Line(kByHead)), ElementsAre("1200", "11.111", "88", "4321", "1234"));
}

TEST_F(RecipeTriggers, EnteringTheTabByTheMenuRecomputesAllCellsOfTheFirstRecipe) {
  Enter(kTabPens);
  MakeStale();
  Choose(u"mnuEditRecipe"_qs);
  ExpectFigures(kByWeight, 0, {"1200", "60.000", "88", "1364", "3000"});
  EXPECT_THAT(Figures(Line(kByHead)), ElementsAre("1200", "11.111", "88", "4321", "1234"));
}

TEST_F(RecipeTriggers, CtrlTabRecomputesAllCellsAndRelabelsTheColumns) {
  Enter(kTabIngredients);
  MakeStale();
  settings_.SetSystemUnits("KG");
  operator_.answers = {Answer::kYes};
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab, Qt::ControlModifier);
  RunEvents();
  ASSERT_EQ(Tabs().currentIndex(), kTabRecipes);
  ExpectFigures(kByWeight, 0, {"1200", "60.000", "88", "1364", "3000"});
  EXPECT_EQ(Lines().model()->headerData(kColumnTarget, Qt::Horizontal).toString(),
            u"Dry Matter (kg)"_qs);
}

TEST_F(RecipeTriggers, AClickRecomputesThoughTheStripHasTheFocusSinceTheStart) {
  Enter(kTabPens);
  MakeStale();
  Tabs().tabBar()->setFocus(Qt::ActiveWindowFocusReason);
  ClickTab(kTabRecipes);
  ExpectFigures(kByWeight, 0, {"1200", "60.000", "88", "1364", "3000"});
  EXPECT_TRUE(Lines().hasFocus());
}

TEST_F(RecipeTriggers, AClickIntoACellWhileTheTabComesKeepsItsEditorTyping) {
  Enter(kTabPens);
  pump_.After(Milliseconds{175}, [this] { ClickLine(0, kColumnTarget); });
  ClickTab(kTabRecipes);
  ASSERT_TRUE(Lines().IsEditing());
  EXPECT_EQ(QApplication::focusWidget(), Lines().indexWidget(Lines().currentIndex()));
}

TEST_F(RecipeTriggers, AnArrowOnTheStripRecomputesAndStaysOnTheStrip) {
  Enter(kTabIngredients);
  MakeStale();
  Tabs().tabBar()->setFocus(Qt::ActiveWindowFocusReason);
  PressKey(Qt::Key_Right);
  ASSERT_EQ(Tabs().currentIndex(), kTabRecipes);
  ExpectFigures(kByWeight, 0, {"1200", "60.000", "88", "1364", "3000"});
  EXPECT_TRUE(Tabs().tabBar()->hasFocus());
}

TEST_F(RecipeTriggers, AClickOnTheTabShownGoesToTheGridAndRecomputesAllCells) {
  OnTabWithStaleFigures();
  ClickTab(kTabRecipes);
  EXPECT_TRUE(Lines().hasFocus());
  ExpectFigures(kByWeight, 0, {"1200", "60.000", "88", "1364", "3000"});
  ExpectFigures(kByWeight, 1, {"800", "40.000", "88", "909", "2000"});
  EXPECT_EQ(Total("lblDryMatTotal"), "2273");
  EXPECT_EQ(Total("lblDryMatPercent"), "88.0");
}

TEST_F(RecipeTriggers, AWeightRecomputesItsLineAndTheSharesOfAll) {
  OnTabWithStaleFigures();
  ClickLine(0, kColumnTarget);
  EXPECT_FALSE(Box("txtRecRationTarget").isEnabled());
  Type("3200");
  PressKey(Qt::Key_Return);
  EXPECT_TRUE(Box("txtRecRationTarget").isEnabled());
  ExpectFigures(kByWeight, 0, {"3200", "80.000", "88", "3636", "2285"});
  ExpectFigures(kByWeight, 1, {"800", "20.000", "88", "4321", "2715"});
  EXPECT_EQ(Total("lblTargetTotal"), "4000");
}

TEST_F(RecipeTriggers, AShareRecomputesItsLineAndTheTotals) {
  Enter(kTabRecipes);
  ChooseIn("cboRecID", kRecipeByPercent);
  ClickLine(0, kColumnIngredientPercent);
  Type("59.99");
  PressKey(Qt::Key_Return);
  EXPECT_EQ(Line(kRecipeByPercent).ingredient_percent, "59.99");
  EXPECT_EQ(Line(kRecipeByPercent).dry_matter, "6817");
  EXPECT_EQ(Line(kRecipeByPercent, 1).dry_matter, "4321");
  EXPECT_EQ(Total("lblIngPctTotal"), "99.99");
  EXPECT_FALSE(Box("txtRecRationTarget").isEnabled());
  EXPECT_FALSE(List("lstAdjustBatchTotal").isEnabled());
  EXPECT_TRUE(Find<QLabel>(u"lblMustTotal100Pct"_qs).isVisible());
  ClickLine(0, kColumnIngredientPercent);
  Type("60");
  PressKey(Qt::Key_Return);
  EXPECT_EQ(Total("lblIngPctTotal"), "100.00");
  EXPECT_TRUE(Box("txtRecRationTarget").isEnabled());
  EXPECT_FALSE(Find<QLabel>(u"lblMustTotal100Pct"_qs).isVisible());
}

TEST_F(RecipeTriggers, AChosenIngredientRecomputesAllCellsOfTheRecipe) {
  OnTabWithStaleFigures();
  Lines().setFocus();
  Type("HAY");
  PressKey(Qt::Key_Return);
  ExpectFigures(kByWeight, 0, {"1200", "60.000", "90", "1333", "2973"});
  ExpectFigures(kByWeight, 1, {"800", "40.000", "88", "909", "2027"});
  EXPECT_EQ(Line(kByWeight).ingredient, "7");
}

TEST_F(RecipeTriggers, ADeletedLineLeavesSharesAndTotalsOfTheOthers) {
  OnTabWithStaleFigures();
  operator_.answers = {Answer::kYes};
  Press("cmdDeleteIng");
  EXPECT_EQ(operator_.boxes.back().text, "Delete CORN from this recipe?");
  ExpectFigures(kByWeight, 0, {"800", "100.000", "88", "4321", "5000"});
  EXPECT_EQ(ReadRecipeLines(Database(), kByWeight).size(), 1U);
}

TEST_F(RecipeTriggers, AMovedLineLeavesSharesAndTotals) {
  OnTabWithStaleFigures();
  QTest::mouseClick(&Find<QToolButton>(u"UpDown1.Down"_qs), Qt::LeftButton);
  ExpectFigures(kByWeight, 0, {"800", "40.000", "88", "4321", "2500"});
  ExpectFigures(kByWeight, 1, {"1200", "60.000", "88", "4321", "2500"});
  EXPECT_EQ(Lines().currentIndex().row(), 1);
}

TEST_F(RecipeTriggers, UpdateOfARecipeWithoutLinesSumsUpToNothing) {
  Enter(kTabRecipes);
  Database().exec("DELETE FROM RecipeRation WHERE RecipeID = '1'");
  ChooseIn("cboRecID", kByWeight);
  Press("cmdAction(0)");
  EXPECT_EQ(Total("lblTargetTotal"), "0");
  EXPECT_EQ(Total("lblRationPctTotal"), "0.000");
  EXPECT_EQ(Total("lblDryMatPercent"), "0.0");
  EXPECT_EQ(Total("lblDryMatTotal"), "0");
  EXPECT_EQ(Total("lblHandAddTotal"), "0");
  EXPECT_FALSE(Box("txtRecRationTarget").isEnabled());
  EXPECT_FALSE(List("lstAdjustBatchTotal").isEnabled());
}

TEST_F(RecipeTriggers, ABatchOf100HeadIsTheRecipeItself) {
  Enter(kTabRecipes);
  ChooseIn("cboRecID", kByHead);
  Fill("txtRecHeadCount", "100");
  EXPECT_THAT(Figures(Line(kByHead)), ElementsAre("1200", "60.000", "88", "4321", "4321"));
  EXPECT_EQ(Shown(0).back(), "4321");
}

// Half of 4447 and of 4445.
TEST_F(RecipeTriggers, AnExactHalfGoesToTheEvenNeighbour) {
  Database();
  Enter(kTabRecipes);
  ChooseIn("cboRecID", kByHead);
  Database().exec("UPDATE RecipeRation SET DryMatter = '4447' WHERE Sequence = 1");
  Database().exec("UPDATE RecipeRation SET DryMatter = '4445' WHERE Sequence = 2");
  Fill("txtRecHeadCount", "50");
  EXPECT_EQ(Line(kByHead, 0).batch_target, "2224");
  EXPECT_EQ(Line(kByHead, 1).batch_target, "2222");
}

// The dry matter of an ingredient.

TEST_F(RecipeTriggers, ANewDryMatterIsWorkedOutByTheTypeShownUntilEachRecipeIsRecomputed) {
  Enter(kTabRecipes);
  ChooseIn("cboRecID", kRecipeByPercent);
  MakeStale();
  ClickTab(kTabIngredients);
  ChooseIn("cboIngID", kCorn);
  Fill("txtIngDryMatter", "75");
  for (int recipe = kByWeight; recipe <= kByHead; ++recipe) {
    EXPECT_THAT(Figures(Line(recipe, 0)), ElementsAre("1200", "11.111", "75", "8000", "1234"))
        << "60.00 x 10000 / 75 and nothing else, in recipe " << recipe;
    EXPECT_THAT(Figures(Line(recipe, 1)), ElementsAre("800", "11.111", "88", "4321", "1234"));
  }
  ClickTab(kTabRecipes);
  EXPECT_EQ(List("cboRecID").currentIndex(), kByWeight);
  EXPECT_THAT(Figures(Line(kByHead, 0)), ElementsAre("1200", "11.111", "75", "8000", "1234"))
      << "not shown yet";
  ClickTab(kTabRecipes);
  ExpectFigures(kByWeight, 0, {"1200", "60.000", "75", "1600", "3189"});
  ExpectFigures(kByWeight, 1, {"800", "40.000", "88", "909", "1811"});
  EXPECT_THAT(Figures(Line(kRecipeByPercent, 0)),
              ElementsAre("1200", "11.111", "75", "8000", "1234"));
}

TEST_F(RecipeTriggers, ALeftHandAddMarkCountsInTheTotalsOfTheNextRecipeShown) {
  Enter(kTabIngredients);
  ChooseIn("cboIngID", kHay);
  Tick("chkIngHandAdd");
  ClickTab(kTabRecipes);
  EXPECT_EQ(Total("lblHandAddTotal"), "1");
  EXPECT_EQ(Lines().model()->index(1, kColumnHandAdd).data().toString(), u"Yes"_qs);
  EXPECT_TRUE(Line(kRecipeByPercent, 1).hand_add);
}

// Keys of the whole window.

TEST_F(RecipeTriggers, CtrlTabTurnsFromEveryFieldAndCellToTheNextTab) {
  Enter(kTabIngredients);
  const auto turn = [this] {
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab, Qt::ControlModifier);
    RunEvents();
    return Tabs().currentIndex();
  };
  for (const char* control :
       {"txtIngName", "cboIngID", "grdING", "chkIngHandAdd", "cboWhereUsed", "cmdSearch"}) {
    ClickTab(kTabIngredients);
    Find<QWidget>(QLatin1String(control)).setFocus();
    EXPECT_EQ(turn(), kTabRecipes) << control;
  }
  ClickTab(kTabIngredients);
  EditCell("grdING", kCorn, "Name", "MAIZE");
  EXPECT_EQ(turn(), kTabRecipes) << "a cell";
  EXPECT_EQ(ReadIngredient(Database(), kCorn).name, "MAIZE");
  for (const char* control : {"txtRecName", "cboRecID", "lstRecBatchType", "grdREC"}) {
    ClickTab(kTabRecipes);
    Find<QWidget>(QLatin1String(control)).setFocus();
    EXPECT_EQ(turn(), kTabPens) << control;
  }
  for (const char* control : {"txtPenFeed", "cboPenID", "grdPEN"}) {
    ClickTab(kTabPens);
    Find<QWidget>(QLatin1String(control)).setFocus();
    EXPECT_EQ(turn(), kTabDataTransfer) << control;
  }
}

TEST_F(RecipeTriggers, CtrlTabFromAnOpenCellStoresItAndTurns) {
  Enter(kTabRecipes);
  ClickLine(0, kColumnTarget);
  Type("1300");
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab, Qt::ControlModifier);
  RunEvents();
  EXPECT_EQ(Tabs().currentIndex(), kTabPens);
  EXPECT_EQ(Line(kByWeight).target, "1300");
}

// A database of the other unit.

TEST_F(RecipeTriggers, TheFileGetsTheSystemsUnitAfterAYesAndNoWeightIsConverted) {
  Enter(kTabPens);
  const std::vector<RecipeLineRecord> lines = ReadRecipeLines(Database(), kByWeight);
  const auto unit = [this] {
    return Database().execAndGet("SELECT UoM FROM UnitsOfMeasure").getString();
  };
  settings_.SetSystemUnits("KG");
  Box("txtPenName").setFocus();
  operator_.boxes.clear();
  operator_.answers = {Answer::kYes};
  ClickTab(kTabPens);
  EXPECT_EQ(unit(), "KG");
  EXPECT_EQ(ReadRecipeLines(Database(), kByWeight), lines);
  EXPECT_THAT(operator_.boxes, SizeIs(1));
}

}  // namespace
}  // namespace vrx::testing
