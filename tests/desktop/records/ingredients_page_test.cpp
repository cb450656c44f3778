#include "desktop/records/ingredients_page.h"

#include <QApplication>

#include <SQLiteCpp/Transaction.h>
#include <gmock/gmock.h>

#include "database/bound_database.h"
#include "database/connection.h"
#include "desktop/records/ingredients_fixture.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;

class IngredientsPageTest : public IngredientsFixture {};

TEST_F(IngredientsPageTest, EnteringShowsTheFirstRecordAndTheListOfAll) {
  ExpectOnRecord(1);
  EXPECT_EQ(Shown("txtIngName"), "ING001");
  EXPECT_EQ(Shown("txtIngDryMatter"), "100");
  EXPECT_TRUE(Check("chkViewAllIngs").isChecked());
  EXPECT_FALSE(Check("chkShowActiveIngsOnly").isChecked());
  EXPECT_TRUE(Grid("grdING").isVisible());
  EXPECT_EQ(Grid("grdING").Model().rowCount(), 100);
}

TEST_F(IngredientsPageTest, TheListNamesTheIngredientsInUse) {
  EXPECT_EQ(List("cboIngID").count(), 101);
  EXPECT_EQ(Item("cboIngID", 0), "");
  EXPECT_EQ(Item("cboIngID", 1), "  1: ");
  EXPECT_EQ(Item("cboIngID", kCorn), "  4: CORN");
  EXPECT_EQ(Item("cboIngID", 100), "100: ");
}

TEST_F(IngredientsPageTest, TheGridShowsTheSpecifiedColumns) {
  std::vector<std::string> captions;
  captions.reserve(5);
  for (int column = 0; column < 5; ++column) {
    captions.push_back(Grid("grdING")
                           .Model()
                           .headerData(column, Qt::Horizontal, Qt::DisplayRole)
                           .toString()
                           .toStdString());
  }
  EXPECT_THAT(captions, ElementsAre("ID", "Name", "Description", "Dry Matter (%)", "Hand-Add"));
  EXPECT_EQ(CellText("grdING", kCorn, "DryMatter%"), "88");
  EXPECT_EQ(CellText("grdING", kCorn, "HandAdd"), "No");
  EXPECT_TRUE((Cell("grdING", kCorn, "DryMatter%").data(Qt::TextAlignmentRole).toInt() &
               Qt::AlignRight) != 0);
}

TEST_F(IngredientsPageTest, ChoosingInTheListMovesGridFieldsAndRecordNumber) {
  Choose(kHay);
  ExpectOnRecord(kHay);
  EXPECT_EQ(Shown("txtIngDesc"), "Hay chopped");
  EXPECT_EQ(Shown("txtIngDryMatter"), "90");
}

TEST_F(IngredientsPageTest, ARowOfTheGridMovesListAndFields) {
  ClickCell("grdING", kCorn, "Name");
  ExpectOnRecord(kCorn);
  PressKey(Qt::Key_Down);
  ExpectOnRecord(kCorn + 1);
}

TEST_F(IngredientsPageTest, TheBlankItemChangesNothing) {
  Choose(kHay);
  Choose(0);
  ExpectOnRecord(kHay);
}

TEST_F(IngredientsPageTest, KeysInTheListGoToTheDescriptionAndChangeNothing) {
  Choose(kHay);
  List("cboIngID").setFocus();
  PressKey(Qt::Key_Down);
  EXPECT_TRUE(List("cboIngID").hasFocus());
  Type("4");
  EXPECT_TRUE(Box("txtIngDesc").hasFocus());
  EXPECT_EQ(Shown("txtIngDesc"), "Hay chopped");
  ExpectOnRecord(kHay);
}

TEST_F(IngredientsPageTest, TheTabKeyGoesThroughTheFormAndThenTheList) {
  List("cboIngID").setFocus();
  std::vector<std::string> order;
  for (int step = 0; step < 9; ++step) {
    PressKey(step % 2 == 0 ? Qt::Key_Tab : Qt::Key_Return);
    order.push_back(QApplication::focusWidget()->objectName().toStdString());
  }
  EXPECT_THAT(order, ElementsAre("txtIngDesc", "txtIngName", "txtIngDryMatter", "chkIngHandAdd",
                                 "cboWhereUsed", "cmdSearch", "chkViewAllIngs",
                                 "chkShowActiveIngsOnly", "grdING"));
}

// Names.

TEST_F(IngredientsPageTest, ANameTakesItsKeysAsTheIndicatorShowsThem) {
  TypeOver("txtIngName", "bd%a");
  EXPECT_EQ(Shown("txtIngName"), "bdA");
  EXPECT_EQ(operator_.beeps, 1);
  TypeOver("txtIngName", "steers7");
  EXPECT_EQ(Shown("txtIngName"), "STEERS");
  EXPECT_EQ(operator_.beeps, 2);
}

TEST_F(IngredientsPageTest, ARefusedKeyIsSilentWithoutTheBeeper) {
  settings_.SetEnableBeeperOn(false);
  TypeOver("txtIngName", "%");
  EXPECT_EQ(operator_.beeps, 0);
}

TEST_F(IngredientsPageTest, ALeftNameIsStoredWithoutTrailingBlanksAndRewritesItsItem) {
  Choose(kCorn);
  Fill("txtIngName", "mill  ");
  EXPECT_EQ(Stored(kCorn).name, "MILL");
  EXPECT_EQ(Item("cboIngID", kCorn), "  4: MILL");
  EXPECT_EQ(CellText("grdING", kCorn, "Name"), "MILL");
  EXPECT_EQ(Stored(kCorn).description, "Corn Rolled");
  EXPECT_EQ(Modified(), "2026-01-05");
}

TEST_F(IngredientsPageTest, AnEmptyNameIsReportedKeepsTheFocusAndIsStored) {
  Choose(kCorn);
  Fill("txtIngName", "");
  RunEvents();
  ASSERT_EQ(operator_.boxes.size(), 1U);
  EXPECT_EQ(operator_.boxes[0].title, "Field Error");
  EXPECT_EQ(operator_.boxes[0].text, "The 'Name' field is mandatory.");
  EXPECT_EQ(operator_.boxes[0].icon, Icon::kCritical);
  EXPECT_TRUE(Box("txtIngName").hasFocus());
  EXPECT_EQ(Stored(kCorn).name, "");
  EXPECT_EQ(Item("cboIngID", kCorn), "  4: ");
  Fill("txtIngName", "CORN");
  EXPECT_EQ(operator_.boxes.size(), 1U);
  EXPECT_TRUE(Box("txtIngDryMatter").hasFocus());
}

TEST_F(IngredientsPageTest, ANameOfItsOwnPutsAnIngredientInUse) {
  Choose(5);
  Fill("txtIngName", "barley");
  EXPECT_EQ(Shown("txtIngDesc"), "bARLEY");
  EXPECT_EQ(Stored(5).description, "bARLEY");
}

TEST_F(IngredientsPageTest, TheDefaultNameLeavesItInactive) {
  Choose(5);
  Fill("txtIngName", "ING005");
  EXPECT_EQ(Stored(5).description, "");
  EXPECT_EQ(Modified(), "");
}

TEST_F(IngredientsPageTest, LeavingAFieldAsItWasWritesNothing) {
  Choose(5);
  for (const char* box : {"txtIngName", "txtIngDesc", "txtIngDryMatter"}) {
    Box(box).setFocus();
    PressKey(Qt::Key_Tab);
  }
  EXPECT_EQ(Modified(), "");
}

// Descriptions.

TEST_F(IngredientsPageTest, ADescriptionKeepsItsCaseAndHoldsSixteenCharacters) {
  settings_.SetAutoAbbreviateOn(false);
  Choose(5);
  TypeOver("txtIngDesc", "Dried/Beet Pulp 12345");
  EXPECT_EQ(Shown("txtIngDesc"), "DriedBeet Pulp 1");
  EXPECT_EQ(operator_.beeps, 5);
  PressKey(Qt::Key_Tab);
  EXPECT_EQ(Stored(5).description, "DriedBeet Pulp 1");
  EXPECT_EQ(Stored(5).name, "ING005");
}

TEST_F(IngredientsPageTest, ADescriptionGivesTheNameAndTheItemKeepsTheOldOne) {
  Choose(5);
  Fill("txtIngDesc", "Dried Beet Pulp");
  EXPECT_EQ(Shown("txtIngName"), "dRIEd ");
  EXPECT_EQ(Stored(5).name, "dRIEd ");
  EXPECT_EQ(Item("cboIngID", 5), "  5: ING005");
  Box("txtIngName").setFocus();
  PressKey(Qt::Key_Tab);
  EXPECT_EQ(Stored(5).name, "dRIEd");
  EXPECT_EQ(Item("cboIngID", 5), "  5: dRIEd");
}

TEST_F(IngredientsPageTest, AShortDescriptionGivesAnEquallyShortName) {
  Choose(5);
  Fill("txtIngDesc", "Oat");
  EXPECT_EQ(Shown("txtIngName"), "OAT");
  EXPECT_EQ(Stored(5).name, "OAT");
}

TEST_F(IngredientsPageTest, ATypedNameSurvivesADescriptionThatIsOnlyVisited) {
  Choose(5);
  Fill("txtIngDesc", "Corn");
  EXPECT_EQ(Shown("txtIngName"), "CORN");
  Fill("txtIngName", "MINE");
  Box("txtIngDesc").setFocus();
  PressKey(Qt::Key_Tab);
  EXPECT_EQ(Stored(5).name, "MINE");
}

TEST_F(IngredientsPageTest, ABackspaceInTheDescriptionIsTreatedAsTyped) {
  Choose(kCorn);
  Box("txtIngDesc").setFocus();
  Box("txtIngDesc").end(false);
  PressKey(Qt::Key_Backspace);
  PressKey(Qt::Key_Tab);
  EXPECT_EQ(Stored(kCorn).description, "Corn Rolle");
  EXPECT_EQ(Stored(kCorn).name, "CORN R");
}

TEST_F(IngredientsPageTest, AKeyAtTheLimitEndsTheTypedText) {
  Choose(5);
  Fill("txtIngDesc", "Corn rolled in ma");
  EXPECT_EQ(Stored(5).description, "Corn rolled in m");
  EXPECT_EQ(Stored(5).name, "ING005");
}

TEST_F(IngredientsPageTest, AnEmptiedDescriptionTakesTheNameAgain) {
  settings_.SetAutoAbbreviateOn(false);
  Choose(kCorn);
  Fill("txtIngDesc", "");
  EXPECT_EQ(Stored(kCorn).description, "CORN");
}

// Dry matter and hand-add.

TEST_F(IngredientsPageTest, DryMatterIsBetween0And100) {
  Choose(kCorn);
  const std::vector<std::pair<std::string, std::string>> expected{
      {"150", "100"}, {"", "0"}, {"0", "0"}, {"007", "7"}, {"100", "100"}, {"1", "1"}};
  for (const auto& [typed, left] : expected) {
    Fill("txtIngDryMatter", typed);
    EXPECT_EQ(Shown("txtIngDryMatter"), left) << typed;
    EXPECT_EQ(std::to_string(Stored(kCorn).dry_matter_percent), left) << typed;
  }
}

TEST_F(IngredientsPageTest, DryMatterTakesThreeDigits) {
  TypeOver("txtIngDryMatter", "15x08");
  EXPECT_EQ(Shown("txtIngDryMatter"), "150");
  EXPECT_EQ(operator_.beeps, 2);
}

// The recipes show recipe 2, which is by percentage: the lines of all are worked out by that.
TEST_F(IngredientsPageTest, DryMatterGoesIntoTheLinesOfAllRecipesByTheTypeShown) {
  ChooseIn("cboRecID", 2);
  MakeStale();
  Choose(kCorn);
  Fill("txtIngDryMatter", "75");
  for (int recipe = 1; recipe <= 3; ++recipe) {
    const RecipeLineRecord line = Line(recipe);
    EXPECT_EQ(line.dry_matter_percent, "75");
    EXPECT_EQ(line.dry_matter, Line(2).dry_matter);
    EXPECT_NE(line.dry_matter, "4321");
    EXPECT_EQ(line.batch_target, "1234") << "until it is recomputed";
    EXPECT_EQ(line.ration_percent, "11.111");
    EXPECT_EQ(Line(recipe, 1).dry_matter, "4321") << "of another ingredient";
  }
}

TEST_F(IngredientsPageTest, ByWeightTheLinesAreWorkedOutFromTheirWeights) {
  Choose(kCorn);
  Fill("txtIngDryMatter", "75");
  for (int recipe = 1; recipe <= 3; ++recipe) {
    EXPECT_EQ(Line(recipe).dry_matter, "1600");
  }
}

TEST_F(IngredientsPageTest, HandAddIsWrittenWhenTheFocusLeavesIt) {
  Choose(kCorn);
  Tick("chkIngHandAdd");
  EXPECT_FALSE(Stored(kCorn).hand_add);
  PressKey(Qt::Key_Tab);
  EXPECT_TRUE(Stored(kCorn).hand_add);
  EXPECT_EQ(CellText("grdING", kCorn, "HandAdd"), "Yes");
  for (int recipe = 1; recipe <= 3; ++recipe) {
    EXPECT_TRUE(Line(recipe).hand_add);
    EXPECT_FALSE(Line(recipe, 1).hand_add);
  }
}

// Update, Cancel, Default.

TEST_F(IngredientsPageTest, AClickOnCancelKeepsTheFieldThatItLeft) {
  Choose(kCorn);
  TypeOver("txtIngDryMatter", "75");
  Press("cmdAction(1)");
  EXPECT_EQ(Shown("txtIngDryMatter"), "75");
  EXPECT_EQ(Stored(kCorn).dry_matter_percent, 75);
}

TEST_F(IngredientsPageTest, CancelReadsTheRecordAnew) {
  Choose(kCorn);
  Database().exec("UPDATE Ingredient SET Description = 'Of others', HandAdd = 1 WHERE ID = 4");
  Press("cmdAction(1)");
  ExpectOnRecord(kCorn);
  EXPECT_EQ(Shown("txtIngDesc"), "Of others");
  EXPECT_TRUE(Check("chkIngHandAdd").isChecked());
  EXPECT_EQ(CellText("grdING", kCorn, "HandAdd"), "Yes");
}

TEST_F(IngredientsPageTest, UpdateStoresTheFieldShown) {
  Choose(kCorn);
  TypeOver("txtIngName", "MILO");
  Press("cmdAction(0)");
  EXPECT_EQ(Stored(kCorn).name, "MILO");
}

TEST_F(IngredientsPageTest, DefaultAsksFirst) {
  Choose(kCorn);
  operator_.answers = {Answer::kNo};
  Press("cmdAction(2)");
  ASSERT_EQ(operator_.boxes.size(), 1U);
  EXPECT_EQ(operator_.boxes[0].title, "Set Ingredient Defaults");
  EXPECT_EQ(operator_.boxes[0].text, "Reset ingredient #4 (CORN) to its default values?");
  EXPECT_EQ(Stored(kCorn).name, "CORN");
  EXPECT_EQ(Item("cboIngID", kCorn), "  4: CORN");
  EXPECT_EQ(List("cboRecID").currentIndex(), 1);
}

TEST_F(IngredientsPageTest, DefaultOfAnUnusedIngredientWritesItsDefaults) {
  Database().exec("DELETE FROM RecipeRation");
  Choose(kCorn);
  operator_.answers = {Answer::kYes};
  Press("cmdAction(2)");
  ExpectOnRecord(kCorn);
  EXPECT_EQ(Stored(kCorn).name, "ING004");
  EXPECT_EQ(Shown("txtIngDesc"), "");
  EXPECT_EQ(Shown("txtIngDryMatter"), "100");
  EXPECT_EQ(Item("cboIngID", kCorn), "  4: ");
  EXPECT_EQ(CellText("grdING", kCorn, "Name"), "ING004");
  EXPECT_EQ(operator_.beeps, 1);
  EXPECT_EQ(List("cboRecID").currentIndex(), 100);
  EXPECT_EQ(Modified(), "2026-01-05");
}

TEST_F(IngredientsPageTest, DefaultOfAUsedIngredientIsRefusedAndItsItemLosesTheName) {
  Database().exec("DELETE FROM RecipeRation WHERE RecipeID = '1'");
  Choose(kCorn);
  Tick("chkShowActiveIngsOnly");
  operator_.answers = {Answer::kYes, Answer::kOk};
  Press("cmdAction(2)");
  ASSERT_EQ(operator_.boxes.size(), 2U);
  EXPECT_EQ(operator_.boxes[1].text,
            "Sorry, cannot reset ingredient #4 (CORN) to its default values because it is "
            "currently being used in recipe(s).");
  ExpectOnRecord(kCorn);
  EXPECT_EQ(Item("cboIngID", kCorn), "  4: ");
  EXPECT_FALSE(Check("chkShowActiveIngsOnly").isChecked());
  EXPECT_EQ(List("cboRecID").currentIndex(), 2);
  EXPECT_EQ(Stored(kCorn).dry_matter_percent, 88);
  Box("txtIngName").setFocus();
  PressKey(Qt::Key_Tab);
  EXPECT_EQ(Item("cboIngID", kCorn), "  4: CORN");
}

// Faults.

TEST_F(IngredientsPageTest, AFieldThatCannotBeStoredIsAskedAboutStaysAndIsStoredLater) {
  settings_.SetEnableBeeperOn(false);
  Choose(kCorn);
  Database().setBusyTimeout(1);
  {
    SQLite::Database other = OpenDatabase(path_, Access::kWrite, std::chrono::milliseconds{1});
    const SQLite::Transaction lock(other, SQLite::TransactionBehavior::IMMEDIATE);
    Fill("txtIngName", "MILO");
    operator_.answers = {Answer::kStay, Answer::kStay};
    RunEvents();
    EXPECT_EQ(Shown("txtIngName"), "MILO");
    EXPECT_TRUE(Box("txtIngName").hasFocus());
    Press("cmdNavigate(2)");
    EXPECT_EQ(List("cboIngID").currentIndex(), kCorn);
    EXPECT_EQ(operator_.boxes.size(), 2U);
  }
  Press("cmdAction(0)");
  EXPECT_EQ(Stored(kCorn).name, "MILO");
}

TEST_F(IngredientsPageTest, AWeightOutsideItsRangeIsAskedAboutAndStoresNothing) {
  Database().exec("UPDATE RecipeRation SET Target = '2000000000' WHERE Ingredient = '4'");
  Choose(kCorn);
  Fill("txtIngDryMatter", "1");
  operator_.answers = {Answer::kDiscard};
  RunEvents();
  ASSERT_EQ(operator_.boxes.size(), 1U);
  EXPECT_EQ(Shown("txtIngDryMatter"), "88");
  EXPECT_EQ(Stored(kCorn).dry_matter_percent, 88);
  EXPECT_EQ(Line(1).dry_matter_percent, "88");
}

TEST_F(IngredientsPageTest, AReadOnlyFileHasNoFieldThatCanBeChanged) {
  const BoundDatabase& writable = Main().Databases().Bound(DatabaseKind::kRecipe);
  BoundDatabase read_only = BindUserDatabase(path_, std::chrono::milliseconds{0});
  for (const char* const note : {"write-protected", ""}) {
    read_only.read_only_note = note;
    Window().Rebind(DatabaseKind::kRecipe, read_only);
    const bool open = read_only.read_only_note.empty();
    EXPECT_EQ(Check("chkIngHandAdd").isEnabled(), open);
    EXPECT_EQ(Box("txtIngName").isReadOnly(), !open);
    EXPECT_EQ(Box("txtIngName").toolTip().toStdString(), note);
    EXPECT_EQ(Cell("grdING", kCorn, "Name").flags().testFlag(Qt::ItemIsEditable), open);
  }
  Window().Rebind(DatabaseKind::kRecipe, writable);
}

}  // namespace
}  // namespace vrx::testing
