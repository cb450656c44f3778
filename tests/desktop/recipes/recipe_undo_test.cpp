#include <QApplication>

#include "desktop/recipes/recipes_fixture.h"
#include "desktop/shown_refusal.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

// What the window's commands do, without the window.
class RecipeUndo : public RecipesFixture {
 protected:
  RecipeUndo() {
    AddCornHaySupplement(kByWeight);
    SetRecipe(kByWeight, &RecipeRecord::description, "Steers");
    Enter();
  }

  void Undo() { Restore(true); }
  void Redo() { Restore(false); }

  // The rows of the recipe as they are stored.
  std::string Rows() {
    std::string rows;
    SQLite::Statement read(
        Database(),
        "SELECT rowid || quote(RecipeID) || quote(Ingredient) || quote(Target) || "
        "quote([Ration%]) || quote([DryMatter%]) || quote(DryMatter) || quote(BatchTarget) || "
        "quote(Sequence) || quote(HandAdd) || quote([Ingredient%]) FROM RecipeRation "
        "UNION ALL SELECT ID || quote(Name) || quote(Description) || quote(BatchType) || "
        "quote(HeadCount) || quote(RationTarget) || quote(AdjBatTotIndex) FROM Recipe");
    while (read.executeStep()) {
      rows += read.getColumn(0).getString() + "\n";
    }
    return rows;
  }

  // Does something, and checks its name and that undo and redo restore every row.
  template <typename Edit>
  void Check(const Edit& edit, const std::string& name) {
    const std::string before = Rows();
    edit();
    const std::string after = Rows();
    ASSERT_NE(after, before) << name;
    EXPECT_EQ(undo_.UndoName(), name);
    EXPECT_EQ(undo_.RedoName(), "");
    Undo();
    EXPECT_EQ(Rows(), before) << name;
    ExpectStored();
    EXPECT_EQ(undo_.RedoName(), name);
    Redo();
    EXPECT_EQ(Rows(), after) << name;
    ExpectStored();
    EXPECT_THAT(op_.boxes, IsEmpty());
  }

  void EnterWeight(int row, std::string_view weight) {
    Click(row, kColumnTarget);
    Press(Qt::Key_A, Qt::ControlModifier);
    Type(weight);
    Press(Qt::Key_Return);
  }

 private:
  void Restore(bool undo) {
    const std::optional<EditPlace> place = undo_.Place(undo);
    ASSERT_TRUE(place.has_value());
    if (page_->Position() != place->id) {
      page_->GoTo(place->id);
    }
    ASSERT_TRUE(undo ? undo_.Undo() : undo_.Redo());
    page_->ShowRestored(*place);
    RunEvents();
  }
};

TEST_F(RecipeUndo, RestoresAWeightAndTheFiguresThatFollowFromIt) {
  Check([&] { EnterWeight(0, "777"); }, "weight of CORN 1200 to 777");
  Undo();
  EXPECT_EQ(Cell(0, kColumnTarget), "1200");
  EXPECT_EQ(Cell(0, kColumnBatchTarget), ReadRecipeLines(Database(), kByWeight)[0].batch_target);
  EXPECT_EQ(Focused(), "grdREC");
  EXPECT_EQ(CurrentRow(), 0);
  EXPECT_EQ(CurrentColumn(), kColumnTarget);
}

TEST_F(RecipeUndo, RestoresAShare) {
  AddStoredLine(kByPercent, kCorn, "0", "62.50");
  Show(kByPercent);
  Check(
      [&] {
        Click(0, kColumnIngredientPercent);
        Press(Qt::Key_A, Qt::ControlModifier);
        Type("4,5");
        Press(Qt::Key_Return);
      },
      "share of CORN 62.50 to 4.50");
}

TEST_F(RecipeUndo, RestoresTheIngredientOfALine) {
  Check(
      [&] {
        Click(1, kColumnIngredient);
        Press(Qt::Key_F4);
        Type("OATS");
        Press(Qt::Key_Return);
      },
      "ingredient HAY to OATS");
}

TEST_F(RecipeUndo, RemovesAnAddedLine) {
  Check(
      [&] {
        Click(3, kColumnIngredient);
        AddByKeys("OATS", "50");
      },
      "adding OATS");
  Undo();
  EXPECT_EQ(Rows(), Rows());
  EXPECT_THAT(ReadRecipeLines(Database(), kByWeight), SizeIs(3));
}

TEST_F(RecipeUndo, BringsADeletedLineBackToItsPlace) {
  Check(
      [&] {
        Click(1, kColumnTarget);
        Press(Qt::Key_Escape);
        op_.answers.push_back(Answer::kYes);
        Find<QPushButton>("cmdDeleteIng").click();
        op_.boxes.clear();
      },
      "deleting HAY");
  Undo();
  EXPECT_THAT(Column(kColumnIngredient),
              ElementsAre("CORN", "HAY", "SUPP", "click to add an ingredient"));
  EXPECT_EQ(CurrentRow(), 1);
}

TEST_F(RecipeUndo, MovesALineBack) {
  Check(
      [&] {
        Click(0, kColumnTarget);
        Press(Qt::Key_Escape);
        Find<QAbstractButton>("UpDown1.Down").click();
      },
      "moving CORN down");
  EXPECT_EQ(CurrentRow(), 1);
  Undo();
  EXPECT_EQ(CurrentRow(), 0);
}

TEST_F(RecipeUndo, RestoresTheFieldsOfTheHead) {
  const auto leave = [&](const char* box, const char* text) {
    TypeInto(box, text);
    LeaveTo("cboRecID");
  };
  Check([&] { leave("txtRecName", "CALVES"); }, "name of recipe 1 REC001 to CALVES");
  EXPECT_EQ(Focused(), "txtRecName");
  Check([&] { leave("txtRecRationTarget", "6000"); }, "ration target of CALVES 5000 to 6000");
  Check([&] { Choose("lstAdjustBatchTotal", 15); }, "batch total of CALVES 0%(no change) to + 5%");
  settings_.SetAutoAbbreviateOn(true);
  Check([&] { leave("txtRecDesc", "Heifers"); }, "description of CALVES Steers to Heifers");
  EXPECT_EQ(Stored(kByWeight).name, "HEIFER");
  Undo();
  EXPECT_EQ(Box("txtRecName"), "CALVES");
  EXPECT_EQ(Item(kByWeight), "  1: CALVES");
}

TEST_F(RecipeUndo, RestoresTheTypeOfARecipe) {
  Show(kUntyped);
  Check([&] { Choose("lstRecBatchType", 1); }, "batch type of REC005 (none) to WEIGHT, Std");
}

TEST_F(RecipeUndo, RestoresARecipeThatWasSetToItsDefaults) {
  Check(
      [&] {
        op_.answers.push_back(Answer::kYes);
        page_->DefaultRecord();
        op_.boxes.clear();
      },
      "defaults of recipe 1 REC001");
  Undo();
  EXPECT_THAT(ReadRecipeLines(Database(), kByWeight), SizeIs(3));
  EXPECT_EQ(Item(kByWeight), "  1: REC001");
}

TEST_F(RecipeUndo, AnEditAfterAnUndoDropsTheRedo) {
  EnterWeight(0, "777");
  Undo();
  EnterWeight(1, "900");
  EXPECT_EQ(undo_.RedoName(), "");
  EXPECT_EQ(undo_.UndoName(), "weight of HAY 800 to 900");
}

TEST_F(RecipeUndo, WhatChangesNothingIsNoEntry) {
  TypeInto("txtRecName", "REC001");
  LeaveTo("cboRecID");
  page_->UpdateRecord();
  page_->TabChosen();
  Show(kByHeadCount);
  EXPECT_EQ(undo_.UndoName(), "");
}

TEST_F(RecipeUndo, AnotherProgramsChangeIsReportedAndKept) {
  EnterWeight(0, "777");
  SQLite::Database(bound_.path.string(), SQLite::OPEN_READWRITE)
      .exec("UPDATE RecipeRation SET Target = '888' WHERE Ingredient = '1'");
  const std::string before = Rows();
  EXPECT_FALSE(undo_.Undo());
  EXPECT_EQ(Rows(), before);
  EXPECT_EQ(OnlyBox(op_.boxes).title, "Undo (Error)");
  EXPECT_THAT(
      OnlyBox(op_.boxes).text,
      ::testing::StartsWith("Undo weight of CORN 1200 to 777: its values have been changed"));
  EXPECT_EQ(undo_.UndoName(), "weight of CORN 1200 to 777");
}

TEST_F(RecipeUndo, TypingInAFieldIsUndoneFirst) {
  TypeInto("txtRecName", "CALVES");
  Press(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_NE(Box("txtRecName"), "CALVES");
  EXPECT_EQ(undo_.UndoName(), "");
  Press(Qt::Key_Y, Qt::ControlModifier);
  EXPECT_EQ(Box("txtRecName"), "CALVES");
}

TEST_F(RecipeUndo, TheEntriesEndWithTheDatabase) {
  EnterWeight(0, "777");
  page_->Rebind(DatabaseKind::kRecipe, bound_);
  EXPECT_EQ(undo_.UndoName(), "");
}

// A refused key, its reason and the decimal key.
class RefusedKeys : public RecipesFixture {
 protected:
  RefusedKeys() {
    AddStoredLine(kByPercent, kCorn, "0", "62.50");
    AddCornHaySupplement(kByWeight);
    Enter();
  }
};

TEST_F(RefusedKeys, ADecimalCommaTypesAPointIntoAShare) {
  Show(kByPercent);
  Click(0, kColumnIngredientPercent);
  Press(Qt::Key_A, Qt::ControlModifier);
  Type("4,5");
  EXPECT_EQ(ShownRefusal(), "");
  Press(Qt::Key_Return);
  EXPECT_EQ(Cell(0, kColumnIngredientPercent), "4.50");
}

TEST_F(RefusedKeys, ALeadingDecimalKeyTypesAZeroBeforeIt) {
  Show(kByPercent);
  Click(0, kColumnIngredientPercent);
  Press(Qt::Key_A, Qt::ControlModifier);
  Type(",5");
  Press(Qt::Key_Return);
  EXPECT_EQ(Cell(0, kColumnIngredientPercent), "0.50");
}

TEST_F(RefusedKeys, AShareExplainsWhatItRefuses) {
  Show(kByPercent);
  Click(0, kColumnIngredientPercent);
  const auto refused = [&](std::string_view before, std::string_view key) {
    Press(Qt::Key_A, Qt::ControlModifier);
    Type(before);
    Type(key);
    return ShownRefusal();
  };
  EXPECT_EQ(refused("1.5", "."), "Only one decimal point");
  EXPECT_EQ(refused("1.55", "5"), "At most two decimals");
  EXPECT_EQ(refused("10", "1"), "At most 100 %");
  EXPECT_EQ(refused("1", "x"), "Only digits and a decimal point");
}

TEST_F(RefusedKeys, AWeightOfFourAndAHalfDoesNotBecomeFortyFive) {
  Click(0, kColumnTarget);
  Press(Qt::Key_A, Qt::ControlModifier);
  Type("4,5");
  EXPECT_EQ(ShownRefusal(), "Only whole numbers, no decimals");
  Press(Qt::Key_Return);
  EXPECT_EQ(Cell(0, kColumnTarget), "4");
}

TEST_F(RefusedKeys, AFullWeightSaysSo) {
  Click(0, kColumnTarget);
  Press(Qt::Key_A, Qt::ControlModifier);
  Type("1234567");
  EXPECT_EQ(ShownRefusal(), "Full: at most 6 digits");
}

TEST_F(RefusedKeys, AComputedCellSaysSo) {
  Grid().setFocus();
  Grid().GoTo(0, kColumnRationPercent);
  Type("5");
  EXPECT_EQ(ShownRefusal(), "Computed from the other columns");
  Grid().GoTo(0, kColumnHandAdd);
  Type("5");
  EXPECT_EQ(ShownRefusal(), "Edited on the Ingredients tab");
}

TEST_F(RefusedKeys, AFieldOfTheHeadExplainsItsRule) {
  TypeInto("txtRecName", "A%");
  EXPECT_EQ(ShownRefusal(), "Only letters, digits, / + - and spaces");
  TypeInto("txtRecName", "ABCDEFG");
  EXPECT_EQ(ShownRefusal(), "Full: at most 6 characters");
  TypeInto("txtRecDesc", "A/");
  EXPECT_EQ(ShownRefusal(), "Only letters, digits, + - and spaces");
  TypeInto("txtRecRationTarget", "5x");
  EXPECT_EQ(ShownRefusal(), "Only digits");
}

TEST_F(RefusedKeys, AnIngredientThatIsNotInUseIsNamed) {
  Click(3, kColumnIngredient);
  Type("COX");
  EXPECT_EQ(ShownRefusal(), "No ingredient in use matches \"COX\"");
}

}  // namespace
}  // namespace vrx::testing
