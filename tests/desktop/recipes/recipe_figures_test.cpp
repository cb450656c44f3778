// The figures of a recipe after keys and clicks in any order: those on the screen, those in the
// file and those of the printed page agree with a computation of their own.

#include <QTest>
#include <QToolButton>
#include <random>

#include "desktop/recipes/recipes_fixture.h"
#include "feed/ration_model.h"
#include "feed/recipe_columns.h"
#include "report/reports.h"

namespace vrx::testing {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

class RecipeFigures : public RecipesFixture {
 protected:
  // A recipe by weight, two lines entered by keys: the grid rests on its idle entry row.
  void EnterTwoLines() {
    Enter();
    Show(kByWeight);
    Grid().setFocus();
    AddByKeys("1", "1000");
    AddByKeys("2", "800");
    ASSERT_EQ(CurrentRow(), 2);
  }
  void EnterTarget(std::string_view target) {
    LeaveTo("txtRecRationTarget");
    TypeInto("txtRecRationTarget", target);
    LeaveTo("txtRecDesc");
  }
  void ClickButton(const char* name) { QTest::mouseClick(&Find<QWidget>(name), Qt::LeftButton); }

  // A batch of 6000 from 1136 and 889 as fed.
  void ExpectBatchOf6000() {
    EXPECT_THAT(StoredBatchTargets(kByWeight), ElementsAre("3366", "2634"));
    EXPECT_EQ(Label("lblBatchTargetTotal"), "6000");
    EXPECT_EQ(Cell(0, kColumnBatchTarget), "3366");
    ExpectStored();
    ExpectPrinted(kByWeight);
  }
  std::vector<std::string> StoredBatchTargets(int recipe) {
    std::vector<std::string> targets;
    for (const RecipeLineRecord& line : ReadRecipeLines(Database(), recipe)) {
      targets.push_back(line.batch_target);
    }
    return targets;
  }

  // The page of the file's recipe, and the one of the tab: what was entered, computed anew.
  void ExpectPrinted(int recipe) {
    ExpectPage(ReadRecipeToPrint(Database(), recipe), recipe);
    if (page_->Position() == recipe) {
      ExpectPage(*page_->Current(), recipe);
    }
  }
  void ExpectPage(const CurrentRecipe& printed, int recipe) {
    const auto expected = Expected(recipe);
    ASSERT_TRUE(expected.has_value());
    const Report page = RecipeReport(printed, {}, {});
    ASSERT_EQ(page.rows->Count(), static_cast<int>(expected->batch_target.size()));
    const std::size_t column = page.design.columns.size() - 2;
    ASSERT_EQ(page.design.columns[column].caption, "Batch Target");
    for (std::size_t line = 0; line < expected->batch_target.size(); ++line) {
      EXPECT_EQ(page.rows->Row(static_cast<std::int64_t>(line) + 1).cells.at(column),
                expected->batch_target[line]);
    }
    if (!expected->batch_target.empty()) {
      EXPECT_THAT(page.design.texts.header_center,
                  HasSubstr("Batch Target = " + expected->row.batch_target));
    }
  }
  std::optional<ModelOutcome> Expected(int recipe) {
    return ModelRation({.recipe = Stored(recipe), .lines = ReadRecipeLines(Database(), recipe)});
  }
};

TEST_F(RecipeFigures, AreRightWhileTheKeysRestOnTheIdleEntryRow) {
  EnterTwoLines();
  EnterTarget("5000");
  Choose("lstAdjustBatchTotal", 0);
  ExpectBatchOf6000();
}

TEST_F(RecipeFigures, AreRightAfterDeleteWithNothingSelected) {
  EnterTwoLines();
  ClickButton("cmdDeleteIng");
  EXPECT_THAT(LastBox(op_.boxes), IsBox(Icon::kInformation, "Delete (Error)",
                                        "There is no ingredient selected to delete."));
  EnterTarget("6000");
  ExpectBatchOf6000();
  ClickButton("cmdDeleteIng");
  ExpectBatchOf6000();
}

TEST_F(RecipeFigures, AreRightAfterEscapeOnTheIdleEntryRow) {
  EnterTwoLines();
  EnterTarget("6000");
  Grid().setFocus();
  Press(Qt::Key_Escape);
  ExpectBatchOf6000();
  Type("CO");
  Press(Qt::Key_Escape);
  Press(Qt::Key_Escape);
  ExpectBatchOf6000();
}

TEST_F(RecipeFigures, AreRightAfterUpdateAndARepaintOnTheIdleEntryRow) {
  EnterTwoLines();
  EnterTarget("6000");
  Grid().setFocus();
  page_->UpdateRecord();
  ExpectBatchOf6000();
  page_->CancelRecord();
  page_->Activated();
  page_->StripFocused();
  ExpectBatchOf6000();
}

TEST_F(RecipeFigures, AreRightAfterALineInCompositionIsGivenUp) {
  EnterTwoLines();
  Type("SUPP");
  Press(Qt::Key_Return);
  EnterTarget("6000");
  EXPECT_EQ(Cell(2, kColumnIngredient), "SUPP");
  Grid().setFocus();
  Press(Qt::Key_Escape);
  ExpectBatchOf6000();
}

TEST_F(RecipeFigures, AreRightInARecipeThatIsLeftWithALineInComposition) {
  EnterTwoLines();
  Type("SUPP");
  Press(Qt::Key_Return);
  EnterTarget("6000");
  Show(kByHeadCount);
  EXPECT_THAT(StoredBatchTargets(kByWeight), ElementsAre("3366", "2634"));
  Show(kByWeight);
  ExpectBatchOf6000();
}

TEST_F(RecipeFigures, AreRightInAFileThatIsClosedWithALineInComposition) {
  EnterTwoLines();
  Type("SUPP");
  Press(Qt::Key_Return);
  EnterTarget("6000");
  page_->ReleaseViews();
  EXPECT_THAT(StoredBatchTargets(kByWeight), ElementsAre("3366", "2634"));
}

// The inputs.

TEST_F(RecipeFigures, TabGoesFromTheDescriptionToTheTargetAfterTheLastLineWasAdded) {
  EnterTwoLines();
  EXPECT_TRUE(Enabled("txtRecRationTarget"));
  EXPECT_TRUE(Enabled("lstAdjustBatchTotal"));
  LeaveTo("txtRecDesc");
  Type("Steers");
  Press(Qt::Key_Tab);
  if (Focused() == "lstRecBatchType") {
    Press(Qt::Key_Tab);
  }
  EXPECT_EQ(Focused(), "txtRecRationTarget");
  Type("6000");
  Press(Qt::Key_Tab);
  ExpectBatchOf6000();
}

TEST_F(RecipeFigures, TabReachesTheTargetFromALineWhoseWeightIsStillOpen) {
  EnterTwoLines();
  Type("OATS");
  Press(Qt::Key_Return);
  Type("10");
  ASSERT_TRUE(Grid().IsEditing());
  LeaveTo("txtRecDesc");
  EXPECT_TRUE(Enabled("txtRecRationTarget"));
  EXPECT_EQ(StoredBatchTargets(kByWeight).size(), 3U);
}

TEST_F(RecipeFigures, TheInputsStayClosedAfterALineWithoutWeightWasCommitted) {
  Enter();
  Show(kByWeight);
  Grid().setFocus();
  AddByKeys("1", "0");
  ASSERT_EQ(ReadRecipeLines(Database(), kByWeight).size(), 1U);
  EXPECT_FALSE(Enabled("txtRecRationTarget"));
  EXPECT_FALSE(Enabled("lstAdjustBatchTotal"));
  Click(0, kColumnTarget);
  Type("7");
  Press(Qt::Key_Return);
  EXPECT_TRUE(Enabled("txtRecRationTarget"));
  Click(0, kColumnTarget);
  Type("0");
  Press(Qt::Key_Return);
  EXPECT_FALSE(Enabled("txtRecRationTarget"));
  Click(0, kColumnTarget);
  LeaveTo("txtRecDesc");
  EXPECT_FALSE(Enabled("txtRecRationTarget"));
  EXPECT_FALSE(Enabled("lstAdjustBatchTotal"));
}

// The ID list.

TEST_F(RecipeFigures, TheFirstLineListsTheRecipeByItsName) {
  Enter();
  Show(kByWeight);
  EXPECT_EQ(Item(kByWeight), "  1: ");
  Grid().setFocus();
  AddByKeys("1", "1000");
  EXPECT_EQ(Stored(kByWeight).description, "REC001");
  EXPECT_EQ(Item(kByWeight), "  1: REC001");
  EXPECT_EQ(Find<QComboBox>("cboRecID").currentText(), u"  1: REC001"_qs);
}

TEST_F(RecipeFigures, AFirstLineThatIsAddedByLeavingTheRecipeListsItToo) {
  Enter();
  Show(kByWeight);
  Grid().setFocus();
  Type("1");
  Press(Qt::Key_Return);
  Type("1000");
  Show(kByHeadCount);
  EXPECT_EQ(Item(kByWeight), "  1: REC001");
  EXPECT_EQ(Item(kByHeadCount), "  2: ");
  EXPECT_EQ(Index("cboRecID"), kByHeadCount);
}

// The share of a line.

TEST_F(RecipeFigures, AShareShowsTwoDecimalsHoweverItIsStored) {
  AddStoredLine(kByPercent, kCorn, "0", "60");
  AddStoredLine(kByPercent, kHay, "0", "7.5");
  Enter();
  Show(kByPercent);
  EXPECT_THAT(Column(kColumnIngredientPercent), ElementsAre("60.00", "7.50", ""));
  Grid().setFocus();
  Grid().GoTo(2, kColumnIngredient);
  AddByKeys("OATS", "32.5");
  EXPECT_EQ(Cell(2, kColumnIngredientPercent), "32.50");
  EXPECT_EQ(ReadRecipeLines(Database(), kByPercent).at(2).ingredient_percent, "32.50");
  EXPECT_EQ(RecipeReport(*page_->Current(), {}, {}).rows->Row(1).cells.at(1), "60.00");
}

// Any order.

class AnyOrderOfEvents : public RecipeFigures, public ::testing::WithParamInterface<unsigned> {
 protected:
  int Number(int low, int high) { return std::uniform_int_distribution<int>(low, high)(random_); }

  std::string Amount() {
    return page_->CurrentBatchType() == "P"
               ? std::to_string(Number(0, 99)) + "." + std::to_string(Number(0, 99))
               : std::to_string(Number(0, 99999));
  }
  RecipeColumn Entered() {
    return page_->CurrentBatchType() == "P" ? kColumnIngredientPercent : kColumnTarget;
  }

  void InTheGrid() {
    if (!Grid().hasFocus() && !Grid().IsEditing()) {
      Grid().setFocus();
    }
    constexpr std::array kKeys = {Qt::Key_Escape, Qt::Key_Tab,  Qt::Key_Down,     Qt::Key_Up,
                                  Qt::Key_Return, Qt::Key_Home, Qt::Key_PageDown, Qt::Key_Backtab};
    switch (Number(0, 5)) {
      case 0:
        return Click(Number(0, Rows() - 1), Number(0, 1) == 0 ? kColumnIngredient : Entered());
      case 1:
        return Type(std::to_string(Number(1, 4)));
      case 2:
        return Type(Amount());
      case 3:
        if (Rows() < kMaxRecipeLines && Grid().GoTo(Rows() - 1, kColumnIngredient)) {
          AddByKeys(std::to_string(Number(1, 4)), Amount());
        }
        return;
      default:
        Press(kKeys.at(static_cast<std::size_t>(Number(0, static_cast<int>(kKeys.size()) - 1))));
    }
  }

  void InTheHead() {
    switch (Number(0, 4)) {
      case 0:
        return Choose("lstAdjustBatchTotal", Number(0, 40));
      case 1:
        return TypeAndLeave("txtRecRationTarget", std::to_string(Number(0, 999999)));
      case 2:
        return TypeAndLeave("txtRecHeadCount", std::to_string(Number(0, 1200)));
      case 3:
        return TypeAndLeave("txtRecDesc", "Fed daily");
      default:
        return LeaveTo("txtRecName");
    }
  }
  void TypeAndLeave(const char* box, const std::string& text) {
    if (Visible(box) && Enabled(box)) {
      TypeInto(box, text);
      LeaveTo("txtRecName");
    }
  }

  void OnThePage() {
    op_.answers = {Number(0, 2) == 0 ? Answer::kYes : Answer::kNo};
    switch (Number(0, 7)) {
      case 0:
        return ClickButton("cmdDeleteIng");
      case 1:
        // A moved share stays at its place, and the as-fed weights no longer follow from it.
        return page_->CurrentBatchType() == "P" ? ClickButton("cmdDeleteIng")
                                                : ClickButton("UpDown1.Up");
      case 2:
        return page_->UpdateRecord();
      case 3:
        return page_->CancelRecord();
      case 4:
        return page_->Activated();
      case 5:
        return page_->StripFocused();
      case 6:
        page_->TabChanged(kTab, 0);
        return page_->Prepare();
      default:
        return Show(Number(kByWeight, kByPercent));
    }
  }

  void Step() {
    switch (Number(0, 3)) {
      case 0:
        InTheHead();
        break;
      case 1:
        OnThePage();
        break;
      default:
        InTheGrid();
    }
    op_.answers.clear();
  }

  void ExpectFigures(int recipe) {
    const auto expected = Expected(recipe);
    ASSERT_TRUE(expected.has_value());
    EXPECT_EQ(StoredBatchTargets(recipe), expected->batch_target);
    ExpectPrinted(recipe);
    const bool with_lines = !expected->batch_target.empty();
    if (page_->Position() == recipe && with_lines) {
      ExpectStored();
      EXPECT_EQ(Label("lblBatchTargetTotal"), expected->row.batch_target);
      EXPECT_EQ(Label("lblDryMatTotal"), expected->row.dry_matter);
    }
  }

 private:
  std::mt19937 random_{GetParam()};
};

TEST_P(AnyOrderOfEvents, LeavesTheFiguresOnTheScreenInTheFileAndOnPaperAlike) {
  for (int recipe = kByWeight; recipe <= kByPercent; ++recipe) {
    AddCornHaySupplement(recipe);
    SetHeadCount(recipe, 250);
  }
  Enter();
  for (int recipe = kByPercent; recipe >= kByWeight; --recipe) {
    Show(recipe);
  }
  int compared = 0;
  for (int step = 0; step < 120; ++step) {
    Step();
    for (int recipe = kByWeight; recipe <= kByPercent; ++recipe) {
      const bool composed = page_->Position() == recipe && page_->Current()->EntryPending();
      if (!composed) {
        ExpectFigures(recipe);
        ++compared;
      }
    }
    ASSERT_FALSE(HasFailure()) << "step " << step;
  }
  EXPECT_GT(compared, 300);
}

INSTANTIATE_TEST_SUITE_P(Seeds, AnyOrderOfEvents, ::testing::Range(1U, 7U));

}  // namespace
}  // namespace vrx::testing
