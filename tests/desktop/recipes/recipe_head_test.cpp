#include "desktop/recipes/recipe_head.h"

#include <QApplication>
#include <QClipboard>
#include <QTest>

#include "desktop/recipes/recipes_fixture.h"
#include "feed/recipe_columns.h"

namespace vrx::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::SizeIs;

class RecipeHeadTest : public RecipesFixture {};

TEST_F(RecipeHeadTest, TheTabKeyGoesThroughTheFieldsInTheirOrder) {
  std::vector<std::string> order;
  const QWidget* field = &Find<QWidget>("cboRecID");
  for (int fields = 0; fields < 6; ++fields) {
    do {
      field = field->nextInFocusChain();
    } while ((field->focusPolicy() & Qt::TabFocus) == 0);
    order.push_back(field->objectName().toStdString());
  }
  EXPECT_THAT(order, ElementsAre("txtRecName", "txtRecDesc", "lstRecBatchType", "txtRecHeadCount",
                                 "txtRecRationTarget", "lstAdjustBatchTotal"));
}

// The lists.

TEST_F(RecipeHeadTest, TheListOfRecipesHasABlankItemAndOneForEachRecord) {
  SetRecipe(7, &RecipeRecord::name, "STEERS");
  SetRecipe(7, &RecipeRecord::description, "Steers");
  SetRecipe(8, &RecipeRecord::name, "IDLE");
  Enter();
  EXPECT_EQ(Find<RecordIdList>("cboRecID").count(), 101);
  EXPECT_EQ(Item(0), "");
  EXPECT_EQ(Item(7), "  7: STEERS");
  EXPECT_EQ(Item(8), "  8: ");
  EXPECT_EQ(Item(100), "100: ");
}

TEST_F(RecipeHeadTest, AClickInTheListShowsTheRecipe) {
  AddCornHaySupplement(kByHeadCount);
  SetHeadCount(kByHeadCount, 250);
  Enter();
  Choose("cboRecID", kByHeadCount);
  EXPECT_EQ(page_->Position(), kByHeadCount);
  EXPECT_THAT(moved_, Contains(kByHeadCount));
  EXPECT_EQ(Box("txtRecHeadCount"), "250");
  EXPECT_EQ(Cell(0, kColumnBatchTarget), "3410");
  EXPECT_EQ(CurrentRow(), 0);
  EXPECT_TRUE(Enabled("txtRecHeadCount"));
}

TEST_F(RecipeHeadTest, TheBlankItemGoesBackToTheRecipeShown) {
  Enter();
  Show(7);
  Choose("cboRecID", 0);
  EXPECT_EQ(page_->Position(), 7);
  EXPECT_EQ(Index("cboRecID"), 7);
}

TEST_F(RecipeHeadTest, TypingInTheListOfRecipesGoesToTheDescriptionAndChangesNothing) {
  Enter();
  Find<QWidget>("cboRecID").setFocus();
  Press(Qt::Key_Down);
  Press(Qt::Key_PageDown);
  EXPECT_EQ(page_->Position(), 1);
  EXPECT_EQ(Focused(), "cboRecID");
  Type("5");
  EXPECT_EQ(Focused(), "txtRecDesc");
  EXPECT_EQ(page_->Position(), 1);
  EXPECT_EQ(Box("txtRecDesc"), "");
}

TEST_F(RecipeHeadTest, ChoosingATypeClosesTheListAndOpensTheGrid) {
  Enter();
  Show(kUntyped);
  Choose("lstRecBatchType", 4);
  EXPECT_EQ(Stored(kUntyped).batch_type, "P");
  EXPECT_FALSE(Enabled("lstRecBatchType"));
  EXPECT_TRUE(Visible("grdREC"));
  EXPECT_FALSE(Visible("lblChooseBatchType"));
  EXPECT_FALSE(Grid().isColumnHidden(kColumnIngredientPercent));
  EXPECT_TRUE(Grid().isColumnHidden(kColumnTarget));
}

TEST_F(RecipeHeadTest, PleaseSelectOnATypedRecipeChangesNothing) {
  AddCornHaySupplement(kByWeight);
  Enter();
  const auto lines = ReadRecipeLines(Database(), kByWeight);
  Choose("lstRecBatchType", 0);
  EXPECT_EQ(Stored(kByWeight).batch_type, "W");
  EXPECT_EQ(Index("lstRecBatchType"), 1);
  EXPECT_TRUE(Enabled("lstRecBatchType"));
  EXPECT_EQ(ReadRecipeLines(Database(), kByWeight), lines);
}

TEST_F(RecipeHeadTest, TheTypeListStaysOpenFromAnUntypedRecipeToATypedOne) {
  Enter();
  Show(kUntyped);
  Show(kByWeight);
  EXPECT_TRUE(Enabled("lstRecBatchType"));
  Show(kUntyped);
  Choose("lstRecBatchType", 1);
  Show(kByWeight);
  EXPECT_FALSE(Enabled("lstRecBatchType"));
}

TEST_F(RecipeHeadTest, NoKeyInPassingChoosesAType) {
  Enter();
  Show(kUntyped);
  Find<QWidget>("lstRecBatchType").setFocus();
  Press(Qt::Key_Down);
  EXPECT_EQ(Stored(kUntyped).batch_type, "!");
  EXPECT_NE(QApplication::activePopupWidget(), nullptr);
  Press(Qt::Key_Escape);
  ComeBack();
  EXPECT_EQ(Index("lstRecBatchType"), 0);
}

TEST_F(RecipeHeadTest, TheAdjustListScalesTheBatchAtOnce) {
  AddCornHaySupplement(kByWeight);
  Enter();
  EXPECT_EQ(Index("lstAdjustBatchTotal"), 20);
  Choose("lstAdjustBatchTotal", 15);
  EXPECT_EQ(Find<QComboBox>("lstAdjustBatchTotal").currentText(), u"+ 5%"_qs);
  EXPECT_THAT(Column(kColumnBatchTarget), ElementsAre("3043", "1984", "223", ""));
  EXPECT_EQ(Label("lblBatchTargetTotal"), "5250");
  EXPECT_EQ(Stored(kByWeight).adjust_batch_index, "15");
  ExpectStored();
}

// The boxes.

TEST_F(RecipeHeadTest, ANameTakesSixCharactersInTheirDisplayForm) {
  Enter();
  TypeInto("txtRecName", "abd/4+x");
  EXPECT_EQ(Box("txtRecName"), "Abd/4+");
  EXPECT_EQ(op_.beeps, 1);
  Type(".");
  EXPECT_EQ(op_.beeps, 2);
  LeaveTo("txtRecDesc");
  EXPECT_EQ(Stored(1).name, "Abd/4+");
  EXPECT_EQ(Item(1), "  1: Abd/4+");
}

TEST_F(RecipeHeadTest, WithTheBeeperOffARefusedKeyIsSilent) {
  settings_.SetEnableBeeperOn(false);
  Enter();
  TypeInto("txtRecName", ".");
  EXPECT_EQ(op_.beeps, 0);
  EXPECT_EQ(Box("txtRecName"), "REC001");
}

TEST_F(RecipeHeadTest, APasteIsFilteredAsTypingIs) {
  Enter();
  auto& box = Find<FilteredEdit>("txtRecName");
  box.setFocus();
  box.selectAll();
  QApplication::clipboard()->setText(u"st.e,ersxyz"_qs);
  Press(Qt::Key_V, Qt::ControlModifier);
  EXPECT_EQ(Box("txtRecName"), "STEERS");
  EXPECT_EQ(op_.beeps, 1);
}

TEST_F(RecipeHeadTest, TrailingBlanksOfANameGo) {
  Enter();
  TypeInto("txtRecName", "ab  ");
  LeaveTo("txtRecDesc");
  EXPECT_EQ(Box("txtRecName"), "Ab");
  EXPECT_EQ(Stored(1).name, "Ab");
  EXPECT_EQ(Item(1), "  1: Ab");
}

TEST_F(RecipeHeadTest, AnEmptyNameIsReportedAndKeepsTheFocusAndIsFlushedAnyway) {
  Enter();
  Find<FilteredEdit>("txtRecName").setFocus();
  Press(Qt::Key_A, Qt::ControlModifier);
  Press(Qt::Key_Delete);
  Press(Qt::Key_Tab);
  RunEvents();
  EXPECT_THAT(LastBox(op_.boxes),
              IsBox(Icon::kCritical, "Field Error", "The 'Name' field is mandatory."));
  EXPECT_THAT(op_.boxes, SizeIs(1));
  EXPECT_EQ(Focused(), "txtRecName");
  EXPECT_EQ(Stored(1).name, "");
  EXPECT_EQ(Item(1), "  1: ");
}

TEST_F(RecipeHeadTest, ADescriptionTakesSixteenCharacters) {
  Enter();
  TypeInto("txtRecDesc", "Steers Finisher 2x/");
  EXPECT_EQ(Box("txtRecDesc"), "Steers Finisher ");
  EXPECT_EQ(op_.beeps, 3);
  LeaveTo("txtRecName");
  EXPECT_EQ(Stored(1).description, "Steers Finisher");
}

TEST_F(RecipeHeadTest, ADescriptionThatWasTypedGivesTheName) {
  settings_.SetAutoAbbreviateOn(true);
  Enter();
  TypeInto("txtRecDesc", "ABCDEFG");
  LeaveTo("lstRecBatchType");
  EXPECT_EQ(Box("txtRecName"), "AbCdEF");
  EXPECT_EQ(Stored(1).name, "AbCdEF");
  EXPECT_EQ(Item(1), "  1: REC001");
  LeaveTo("txtRecName");
  LeaveTo("lstRecBatchType");
  EXPECT_EQ(Item(1), "  1: AbCdEF");
}

TEST_F(RecipeHeadTest, WithAutoAbbreviateOffTheNameStays) {
  settings_.SetAutoAbbreviateOn(false);
  Enter();
  TypeInto("txtRecDesc", "Corn");
  LeaveTo("lstRecBatchType");
  EXPECT_EQ(Stored(1).name, "REC001");
  EXPECT_EQ(Stored(1).description, "Corn");
}

TEST_F(RecipeHeadTest, ANameTypedByHandSurvivesAnUntouchedDescription) {
  settings_.SetAutoAbbreviateOn(true);
  Enter();
  TypeInto("txtRecDesc", "Corn");
  LeaveTo("lstRecBatchType");
  TypeInto("txtRecName", "OWN");
  LeaveTo("txtRecDesc");
  LeaveTo("lstRecBatchType");
  EXPECT_EQ(Stored(1).name, "OWN");
}

struct Left {
  const char* typed;
  const char* kept;
};

class RecipeHeadCount : public RecipeHeadTest, public ::testing::WithParamInterface<Left> {};

TEST_P(RecipeHeadCount, IsPutInOrderWhenTheBoxIsLeft) {
  AddCornHaySupplement(kByHeadCount);
  Enter();
  Show(kByHeadCount);
  TypeInto("txtRecHeadCount", "7");
  Press(Qt::Key_Backspace);
  Type(GetParam().typed);
  LeaveTo("txtRecName");
  EXPECT_EQ(Box("txtRecHeadCount"), GetParam().kept);
  EXPECT_EQ(std::to_string(Stored(kByHeadCount).head_count), GetParam().kept);
}

INSTANTIATE_TEST_SUITE_P(All, RecipeHeadCount,
                         ::testing::Values(Left{"1001", "100"}, Left{"1000", "1000"},
                                           Left{"0", "0"}, Left{"", "0"}, Left{"0025", "25"}),
                         [](const auto& test) { return std::string("Typed") + test.param.typed; });

TEST_F(RecipeHeadTest, AHeadCountTakesFourDigitsAndScalesTheBatch) {
  AddCornHaySupplement(kByHeadCount);
  Enter();
  Show(kByHeadCount);
  TypeInto("txtRecHeadCount", "2x500");
  EXPECT_EQ(Box("txtRecHeadCount"), "2500");
  EXPECT_EQ(op_.beeps, 1);
  TypeInto("txtRecHeadCount", "250");
  Press(Qt::Key_Return);
  EXPECT_THAT(Column(kColumnBatchTarget), ElementsAre("3410", "2222", "250", ""));
  EXPECT_EQ(Label("lblBatchTargetTotal"), "5882");
  ExpectStored();
}

TEST_F(RecipeHeadTest, ARationTargetTakesSixDigitsAndScalesTheBatch) {
  AddCornHaySupplement(kByWeight);
  SetRecipe(kByWeight, &RecipeRecord::adjust_batch_index, "15");
  SetRecipe(kByWeight, &RecipeRecord::ration_target, "");
  Enter();
  EXPECT_EQ(Label("lblBatchTargetTotal"), "0");
  TypeInto("txtRecRationTarget", "1234567.");
  EXPECT_EQ(Box("txtRecRationTarget"), "123456");
  EXPECT_EQ(op_.beeps, 2);
  TypeInto("txtRecRationTarget", "05000");
  Press(Qt::Key_Return);
  EXPECT_EQ(Stored(kByWeight).ration_target, "05000");
  EXPECT_THAT(Column(kColumnBatchTarget), ElementsAre("3043", "1984", "223", ""));
  ExpectStored();
}

TEST_F(RecipeHeadTest, AnotherRecipeReplacesWhatWasBeingTyped) {
  RecipeHead head(abbreviation_, nullptr);
  CurrentRecipe recipe;
  recipe.ration.recipe = {.id = 1, .name = "STEER"};
  head.Show(recipe);
  head.show();
  head.OnRecName().setFocus();
  QTest::keyClicks(&head.OnRecName(), "7");
  head.Show(recipe);
  EXPECT_EQ(head.OnRecName().Text(), "STEER7");
  recipe.ration.recipe = {.id = 2, .name = "HEIFER"};
  head.Show(recipe);
  EXPECT_EQ(head.OnRecName().Text(), "HEIFER");
}

}  // namespace
}  // namespace vrx::testing
