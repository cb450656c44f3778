#include "presenter/undo_commands.h"

#include <gmock/gmock.h>

#include "feed/feed_database.h"
#include "feed/record_commit.h"
#include "support/boxes.h"

namespace vrx::testing {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

class UndoCommandsTest : public FeedDatabaseTest {
 protected:
  UndoCommandsTest() {
    WriteIngredient(database, {1, "CORN", "Corn", 88, false});
    WriteIngredient(database, {2, "HAY", "Hay", 90, false});
    UseRecipe(3, "STEERS");
    AddLine(3, 1, {.target = "5200"});
    undo.SetObserver([this] { ++changes; });
    undo.Watch(&database);
    changes = 0;
  }

  static EditStep Set(RecordKind kind, int id, const std::string& field, const std::string& subject,
                      int line = 0) {
    return {.act = EditAct::kSet,
            .place = {.kind = kind, .id = id, .field = field, .line = line},
            .subject = subject};
  }

  void ChangeLine(std::string RecipeLineRecord::*cell, const std::string& text) {
    RecipeLineRecord line = ReadRecipeLines(database, 3).front();
    line.*cell = text;
    line.ration_percent = "100.000";
    WriteRecipeLine(database, line);
  }

  UndoCommands undo{services};
  int changes = 0;
};

TEST_F(UndoCommandsTest, NamesACellOfALine) {
  ChangeLine(&RecipeLineRecord::target, "777");
  undo.Stored(Set(RecordKind::kRecipe, 3, "Target", "CORN", 1));
  EXPECT_EQ(undo.UndoName(), "weight of CORN 5200 to 777");
  EXPECT_EQ(undo.RedoName(), "");
  ChangeLine(&RecipeLineRecord::ingredient, "2");
  undo.Stored(Set(RecordKind::kRecipe, 3, "Ingredient", "CORN", 1));
  EXPECT_EQ(undo.UndoName(), "ingredient CORN to HAY");
  ChangeLine(&RecipeLineRecord::ingredient_percent, "4.5");
  undo.Stored(Set(RecordKind::kRecipe, 3, "Ingredient%", "HAY", 1));
  EXPECT_EQ(undo.UndoName(), "share of HAY 0.00 to 4.50");
  EXPECT_EQ(changes, 3);
}

TEST_F(UndoCommandsTest, NamesTheFieldThatAFormHasChangedBesidesTheOneThatIsLeft) {
  IngredientRecord corn = ReadIngredient(database, 1);
  corn.hand_add = true;
  StoreRecord(database, corn, std::nullopt, calendar);
  undo.Stored(Set(RecordKind::kIngredient, 1, "Name", "CORN"));
  EXPECT_EQ(undo.UndoName(), "hand-add of CORN No to Yes");
  EXPECT_EQ(undo.Place(true)->field, "HandAdd");
}

TEST_F(UndoCommandsTest, NamesAnEmptyText) {
  PenRecord pen = ReadPen(database, 5);
  pen.description = "North";
  StoreRecord(database, pen, calendar);
  undo.Stored(Set(RecordKind::kPen, 5, "Description", "PEN005"));
  EXPECT_EQ(undo.UndoName(), "description of PEN005 (empty) to North");
  ASSERT_TRUE(undo.Undo());
  EXPECT_EQ(undo.RedoName(), "description of PEN005 (empty) to North");
  ASSERT_TRUE(undo.Redo());
  EXPECT_EQ(ReadPen(database, 5).description, "North");
}

TEST_F(UndoCommandsTest, AMovedLineIsShownWhereItWasAndWhereItIs) {
  ChangeLine(&RecipeLineRecord::target, "1");
  EditStep step = Set(RecordKind::kRecipe, 3, "", "CORN", 2);
  step.act = EditAct::kMoveLineUp;
  step.place.line_after = 1;
  undo.Stored(step);
  EXPECT_EQ(undo.UndoName(), "moving CORN up");
  EXPECT_EQ(undo.Place(true)->line, 2);
  ASSERT_TRUE(undo.Undo());
  EXPECT_EQ(undo.Place(false)->line, 1);
}

TEST_F(UndoCommandsTest, ComputedFiguresAloneAreNoEntry) {
  ChangeLine(&RecipeLineRecord::dry_matter, "5");
  undo.Stored(Set(RecordKind::kRecipe, 3, "Target", "CORN", 1));
  EXPECT_EQ(undo.UndoName(), "");
  EXPECT_FALSE(undo.Place(true).has_value());
}

TEST_F(UndoCommandsTest, ReportsWhatAnotherProgramChanged) {
  ChangeLine(&RecipeLineRecord::target, "777");
  undo.Stored(Set(RecordKind::kRecipe, 3, "Target", "CORN", 1));
  Alter(path, "UPDATE RecipeRation SET Target = '9'");
  EXPECT_FALSE(undo.Undo());
  EXPECT_THAT(op.boxes, ::testing::ElementsAre(
                            IsBox(Icon::kWarning, "Undo (Error)",
                                  StartsWith("Undo weight of CORN 5200 to 777: its values"))));
  EXPECT_EQ(undo.UndoName(), "weight of CORN 5200 to 777");
}

TEST_F(UndoCommandsTest, ReportsALockedFileAndKeepsTheEntry) {
  ChangeLine(&RecipeLineRecord::target, "777");
  undo.Stored(Set(RecordKind::kRecipe, 3, "Target", "CORN", 1));
  {
    const ExclusiveHolder holder(path);
    EXPECT_FALSE(undo.Undo());
  }
  EXPECT_THAT(LastBox(op.boxes).cause, HasSubstr("locked"));
  EXPECT_TRUE(undo.Undo());
}

TEST_F(UndoCommandsTest, WithoutADatabaseThereIsNothing) {
  ChangeLine(&RecipeLineRecord::target, "777");
  undo.Watch(nullptr);
  undo.Stored(Set(RecordKind::kRecipe, 3, "Target", "CORN", 1));
  EXPECT_EQ(undo.UndoName(), "");
}

}  // namespace
}  // namespace vrx::testing
