#include "desktop/recipes/recipes_page.h"

#include "desktop/recipes/recipe_lines.h"
#include "desktop/recipes/recipes_fixture.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class RecipesPageTest : public RecipesFixture {
 protected:
  std::string Modified() {
    return Database().execAndGet("SELECT coalesce(Modified, '') FROM History").getString();
  }
};

// What is shown.

TEST_F(RecipesPageTest, EnteringTheTabLandsOnRecipe1) {
  Enter();
  Show(7);
  moved_.clear();
  page_->TabChanged(kTab, 0);
  page_->Prepare();
  EXPECT_EQ(page_->Position(), 1);
  EXPECT_EQ(moved_.back(), 1);
  EXPECT_EQ(Index("cboRecID"), 1);
}

TEST_F(RecipesPageTest, EnteringTheTabTakesItsWaits) {
  Enter();
  const Milliseconds before = pump_.Now();
  page_->TabChanged(kTab, 0);
  page_->Prepare();
  EXPECT_EQ(pump_.Now() - before, Milliseconds{200});
  EXPECT_FALSE(op_.busy);
}

TEST_F(RecipesPageTest, InputsAndGridAreHiddenWhileTheTabIsEntered) {
  Enter();
  std::vector<bool> seen;
  pump_.After(Milliseconds{40}, [&] {
    seen = {Visible("grdREC"), Visible("txtRecRationTarget"), Visible("lstAdjustBatchTotal")};
  });
  page_->TabChanged(kTab, 0);
  page_->Prepare();
  EXPECT_THAT(seen, ElementsAre(false, false, false));
  EXPECT_TRUE(Visible("grdREC"));
}

TEST_F(RecipesPageTest, ATabLeftDuringItsWaitIsNotPreparedToTheEnd) {
  Enter();
  Show(7);
  pump_.After(Milliseconds{100}, [&] { page_->TabChanged(3, kTab); });
  page_->TabChanged(kTab, 0);
  page_->Prepare();
  EXPECT_EQ(page_->Position(), 7);
  EXPECT_FALSE(op_.busy);
}

TEST_F(RecipesPageTest, AClosingProgramEndsTheWaitOfTheTab) {
  Enter();
  Show(7);
  pump_.After(Milliseconds{10}, [&] { pump_.closing = true; });
  page_->TabChanged(kTab, 0);
  page_->Prepare();
  EXPECT_EQ(page_->Position(), 7);
}

TEST_F(RecipesPageTest, AnUntypedRecipeSaysWhatToDo) {
  Enter();
  Show(kUntyped);
  EXPECT_FALSE(Visible("grdREC"));
  EXPECT_TRUE(Visible("lblChooseBatchType"));
  EXPECT_EQ(Label("lblChooseBatchType"),
            "Choose a batch type in \"Batch By\" to enter the ingredients.");
  EXPECT_FALSE(Visible("lblTargetTotal"));
  EXPECT_FALSE(Visible("lblTarTot"));
  EXPECT_TRUE(Enabled("lstRecBatchType"));
}

struct TypeLook {
  int recipe;
  bool head_count;
  bool ration_target;
  bool adjust;
};

class RecipesPageTypes : public RecipesPageTest, public ::testing::WithParamInterface<TypeLook> {};

TEST_P(RecipesPageTypes, ShowsTheInputsOfTheType) {
  Enter();
  Show(GetParam().recipe);
  for (const char* part : {"lblRecHeadCount", "txtRecHeadCount", "lblEnter100"}) {
    EXPECT_EQ(Visible(part), GetParam().head_count) << part;
  }
  for (const char* part : {"lblRecRationTarget", "txtRecRationTarget"}) {
    EXPECT_EQ(Visible(part), GetParam().ration_target) << part;
  }
  for (const char* part : {"lblAdjustBatchTotal", "lstAdjustBatchTotal"}) {
    EXPECT_EQ(Visible(part), GetParam().adjust) << part;
  }
  EXPECT_EQ(Index("lstRecBatchType"), GetParam().recipe % 5);
}

INSTANTIATE_TEST_SUITE_P(
    All, RecipesPageTypes,
    ::testing::Values(TypeLook{1, false, true, true}, TypeLook{2, true, false, true},
                      TypeLook{3, false, true, true}, TypeLook{4, false, true, true},
                      TypeLook{5, false, false, false}),
    [](const auto& test) { return "Recipe" + std::to_string(test.param.recipe); });

TEST_F(RecipesPageTest, HeadCountAndRationTargetShareOneSpot) {
  Enter();
  Show(kByWeight);
  const QPoint target = Find<QWidget>("txtRecRationTarget").pos();
  Show(kByHeadCount);
  EXPECT_EQ(Find<QWidget>("txtRecHeadCount").pos(), target);
}

TEST_F(RecipesPageTest, InputsOfARecipeWithoutLinesAreClosed) {
  Enter();
  EXPECT_FALSE(Enabled("txtRecRationTarget"));
  EXPECT_FALSE(Enabled("lstAdjustBatchTotal"));
  Show(kByHeadCount);
  EXPECT_FALSE(Enabled("txtRecHeadCount"));
}

// The file.

TEST_F(RecipesPageTest, AFieldThatWasLeftIsInTheFile) {
  Enter();
  TypeInto("txtRecName", "STEERS");
  LeaveTo("txtRecDesc");
  SQLite::Database other(bound_.path.string(), SQLite::OPEN_READONLY);
  EXPECT_EQ(ReadRecipe(other, 1).name, "STEERS");
}

TEST_F(RecipesPageTest, AChangeSetsModifiedAndNotifies) {
  Enter();
  const int before = changes_;
  LeaveTo("txtRecName");
  LeaveTo("txtRecDesc");
  EXPECT_EQ(changes_, before);
  TypeInto("txtRecName", "STEERS");
  LeaveTo("txtRecDesc");
  EXPECT_EQ(changes_, before + 1);
  EXPECT_EQ(Modified(), "2026-01-05");
}

TEST_F(RecipesPageTest, AFailedWriteIsAskedAboutAndTheEditStaysInTheBox) {
  settings_.SetEnableBeeperOn(false);
  Enter();
  Database().exec(
      "CREATE TRIGGER Fail BEFORE UPDATE ON Recipe BEGIN SELECT RAISE(FAIL, 'full'); END");
  TypeInto("txtRecName", "STEERS");
  op_.answers.push_back(Answer::kStay);
  LeaveTo("txtRecDesc");
  RunEvents();
  ASSERT_EQ(op_.boxes.size(), 1U);
  EXPECT_EQ(op_.boxes[0].buttons, Buttons::kTryDiscardStay);
  EXPECT_EQ(Focused(), "txtRecName");
  EXPECT_EQ(Box("txtRecName"), "STEERS");
  EXPECT_EQ(Stored(1).name, "REC001");
  Database().exec("DROP TRIGGER Fail");
  LeaveTo("txtRecDesc");
  EXPECT_EQ(Stored(1).name, "STEERS");
}

// The action bar and the navigator.

TEST_F(RecipesPageTest, TheNavigatorWrapsAroundAtBothEnds) {
  Enter();
  moved_.clear();
  page_->Navigate(kNavigatePrevious);
  page_->Navigate(kNavigateNext);
  page_->Navigate(kNavigateNext);
  page_->Navigate(kNavigateLast);
  page_->Navigate(kNavigatePrevious);
  page_->Navigate(kNavigateFirst);
  EXPECT_THAT(moved_, ElementsAre(100, 1, 2, 100, 99, 1));
  EXPECT_EQ(Index("cboRecID"), 1);
}

TEST_F(RecipesPageTest, UpdateReadsTheLinesAnewAndBringsTheTotalsUpToDate) {
  AddCornHaySupplement(kByWeight);
  Enter();
  Database().exec("UPDATE RecipeRation SET Target = '100' WHERE Ingredient = '1'");
  page_->UpdateRecord();
  EXPECT_EQ(Cell(0, kColumnTarget), "100");
  EXPECT_EQ(Label("lblTargetTotal"), "1000");
}

TEST_F(RecipesPageTest, CancelDiscardsTheTextOfABoxButNotTheGridsRow) {
  Enter();
  Grid().setFocus();
  Type("CORN");
  Press(Qt::Key_Return);
  Type("1200");
  Press(Qt::Key_Tab);
  auto& box = Find<FilteredEdit>("txtRecName");
  box.selectAll();
  box.insert(u"OTHER"_qs);
  page_->CancelRecord();
  EXPECT_EQ(Box("txtRecName"), "REC001");
  EXPECT_EQ(Cell(0, kColumnTarget), "1200");
  EXPECT_THAT(ReadRecipeLines(Database(), kByWeight), SizeIs(1));
}

TEST_F(RecipesPageTest, CancelIsOffWhileTheGridHasTheFocus) {
  Enter();
  LeaveTo("txtRecName");
  cancel_allowed_.clear();
  Grid().setFocus();
  Type("CORN");
  EXPECT_THAT(cancel_allowed_, ElementsAre(false));
  LeaveTo("txtRecName");
  EXPECT_THAT(cancel_allowed_, ElementsAre(false, true));
}

TEST_F(RecipesPageTest, DefaultAsksAndLeavesTheRecipeOnANo) {
  AddCornHaySupplement(kByWeight);
  Enter();
  op_.answers.push_back(Answer::kNo);
  page_->DefaultRecord();
  EXPECT_THAT(
      LastBox(op_.boxes),
      IsBox(Icon::kQuestion, "Set Recipe Defaults",
            "Reset recipe #1 (REC001) to its default values and clear all ingredients in this "
            "recipe?",
            Buttons::kYesNo));
  EXPECT_EQ(Stored(1).batch_type, "W");
  EXPECT_EQ(Rows(), 4);
}

TEST_F(RecipesPageTest, DefaultClearsTheRecipeAndKeepsItsInputs) {
  AddCornHaySupplement(kByHeadCount);
  SetHeadCount(kByHeadCount, 250);
  SetRecipe(kByHeadCount, &RecipeRecord::name, "STEERS");
  SetRecipe(kByHeadCount, &RecipeRecord::description, "Steers");
  Enter();
  Show(kByHeadCount);
  op_.answers.push_back(Answer::kYes);
  page_->DefaultRecord();
  EXPECT_EQ(Box("txtRecName"), "REC002");
  EXPECT_EQ(Box("txtRecDesc"), "");
  EXPECT_EQ(Item(2), "  2: ");
  EXPECT_EQ(Index("cboRecID"), 2);
  EXPECT_FALSE(Visible("grdREC"));
  EXPECT_FALSE(Visible("txtRecHeadCount"));
  EXPECT_EQ(Index("lstRecBatchType"), 0);
  EXPECT_TRUE(Enabled("lstRecBatchType"));
  EXPECT_THAT(ReadRecipeLines(Database(), kByHeadCount), IsEmpty());
  EXPECT_EQ(Stored(kByHeadCount).head_count, 250);
}

// The events of the window.

TEST_F(RecipesPageTest, TheStripsFocusGoesToTheGridAndRecomputesEverything) {
  AddCornHaySupplement(kByWeight);
  Enter();
  Database().exec("UPDATE Ingredient SET [DryMatter%] = 50 WHERE ID = 1");
  settings_.SetSystemUnits("KG");
  form_->setFocus();  // the strip is outside the page
  page_->StripFocused();
  EXPECT_EQ(Focused(), "grdREC");
  EXPECT_EQ(Cell(0, kColumnDryMatter), "1364");
  EXPECT_EQ(Grid().model()->headerData(kColumnTarget, Qt::Horizontal).toString(),
            u"Dry Matter (kg)"_qs);
  EXPECT_EQ(Grid().model()->headerData(kColumnDryMatter, Qt::Horizontal).toString(),
            u"Target (kg)"_qs);
  ExpectStored();
}

TEST_F(RecipesPageTest, TheStripsFocusStaysWhereNoGridIsShown) {
  Enter();
  Show(kUntyped);
  LeaveTo("txtRecName");
  page_->StripFocused();
  EXPECT_EQ(Focused(), "txtRecName");
}

TEST_F(RecipesPageTest, TheStripsFocusStaysInAFieldOfThePage) {
  Enter();
  Show(kByWeight);
  LeaveTo("txtRecName");
  page_->StripFocused();
  EXPECT_EQ(Focused(), "txtRecName");
}

TEST_F(RecipesPageTest, EnteringTheTabOpensTheListOfBatchTypesAgain) {
  SetRecipe(1, &RecipeRecord::batch_type, "W");
  Enter();
  Show(kUntyped);
  Choose("lstRecBatchType", 1);
  ASSERT_FALSE(Enabled("lstRecBatchType"));
  Enter();
  EXPECT_EQ(page_->Position(), 1);
  EXPECT_TRUE(Enabled("lstRecBatchType"));
}

TEST_F(RecipesPageTest, AScanLeavesAHiddenGridHidden) {
  Enter();
  auto& lines = *form_->findChild<RecipeLines*>();
  for (const int recipe : {kUntyped, kByWeight}) {
    Show(recipe);
    lines.BeginScan();
    EXPECT_FALSE(Visible("grdREC"));
    EXPECT_FALSE(Visible("lblChooseBatchType"));
    lines.EndScan();
    EXPECT_EQ(Visible("grdREC"), recipe == kByWeight);
    EXPECT_EQ(Visible("lblChooseBatchType"), recipe == kUntyped);
  }
}

TEST_F(RecipesPageTest, AnotherWindowGoneTheLinesAreReadAnew) {
  AddCornHaySupplement(kByWeight);
  Enter();
  Grid().setFocus();
  Database().exec("UPDATE RecipeRation SET Target = '100' WHERE Ingredient = '1'");
  const Milliseconds before = pump_.Now();
  page_->Activated();
  EXPECT_EQ(pump_.Now() - before, Milliseconds{50});
  EXPECT_EQ(Cell(0, kColumnTarget), "100");
  EXPECT_TRUE(Grid().updatesEnabled());
  EXPECT_EQ(Focused(), "grdREC");
}

TEST_F(RecipesPageTest, AChangedIngredientIsSeenWhenTheTabIsEntered) {
  AddCornHaySupplement(kByWeight);
  Enter();
  WriteIngredient(Database(), {kCorn, "MAIZE", "Maize", 50, true});
  Database().exec("UPDATE RecipeRation SET [DryMatter%] = '50' WHERE Ingredient = '1'");
  page_->TabChanged(kTab, 0);
  page_->Prepare();
  EXPECT_EQ(Cell(0, kColumnIngredient), "MAIZE");
  EXPECT_EQ(Cell(0, kColumnDryMatterPercent), "50");
}

TEST_F(RecipesPageTest, AnIngredientOutOfUseShowsNoName) {
  AddCornHaySupplement(kByWeight);
  WriteIngredient(Database(), {kCorn, "CORN", "", 88, false});
  Enter();
  EXPECT_EQ(Cell(0, kColumnIngredient), "");
  EXPECT_EQ(Cell(1, kColumnIngredient), "HAY");
}

TEST_F(RecipesPageTest, AClosedDatabaseHasNoPosition) {
  EXPECT_EQ(page_->Position(), 0);
  Enter();
  EXPECT_EQ(page_->Position(), 1);
  BoundDatabase blank = BindBlankInMemory(DatabaseKind::kRecipe);
  page_->Rebind(DatabaseKind::kRecipe, blank);
  EXPECT_EQ(page_->Position(), 0);
  EXPECT_EQ(Box("txtRecName"), "REC001");
  page_->ReleaseViews();
}

TEST_F(RecipesPageTest, WhatWasTypedDoesNotGoOverToAnotherDatabase) {
  Enter();
  TypeInto("txtRecName", "STEERS");
  BoundDatabase blank = BindBlankInMemory(DatabaseKind::kRecipe);
  page_->Rebind(DatabaseKind::kRecipe, blank);
  EXPECT_EQ(Box("txtRecName"), "REC001");
  page_->ReleaseViews();
}

TEST_F(RecipesPageTest, AnOpenCellDoesNotGoOverToAnotherDatabase) {
  AddCornHaySupplement(kByWeight);
  Enter();
  Grid().setFocus();
  Press(Qt::Key_Tab);
  Type("77");
  ASSERT_TRUE(Grid().IsEditing());
  page_->Rebind(DatabaseKind::kRecipe, bound_);
  EXPECT_FALSE(Grid().IsEditing());
  EXPECT_EQ(Cell(0, kColumnTarget), "1200");
  EXPECT_EQ(ReadRecipeLines(Database(), kByWeight).front().target, "1200");
}

// The pen capacity.

TEST_F(RecipesPageTest, TheHighestPenInUseIsWarnedOf) {
  Enter();
  EXPECT_FALSE(Visible("lblRequiresIndicatorPenCapacityX"));
  page_->SetPenRows([] {
    std::vector<PenRecord> rows(400);
    rows[149].feed_amount = "10";
    rows[349].feed_amount = "20";
    return rows;
  });
  page_->CheckPenCapacity();
  EXPECT_TRUE(Visible("lblRequiresIndicatorPenCapacityX"));
  EXPECT_EQ(Label("lblRequiresIndicatorPenCapacityX"),
            " This recipe requires a 400-pen capacity option in the K2260 indicator.");
  page_->HidePenCapacityWarning();
  EXPECT_FALSE(Visible("lblRequiresIndicatorPenCapacityX"));
}

}  // namespace
}  // namespace vrx::testing
