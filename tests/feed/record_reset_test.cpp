#include "feed/record_reset.h"

#include <map>
#include <utility>

#include <SQLiteCpp/Transaction.h>
#include <gmock/gmock.h>

#include "feed_database.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class ResetRecord : public FeedDatabaseTest {
 protected:
  void EnterCorn() {
    WriteIngredient(database, {.id = 5,
                               .name = "CORN",
                               .description = "Corn flaked",
                               .dry_matter_percent = 88,
                               .hand_add = true});
  }

  void EnterSteers() {
    WriteRecipe(database, {.id = 3,
                           .name = "STEERS",
                           .description = "Steers Finisher",
                           .batch_type = "H",
                           .head_count = 250,
                           .ration_target = "5000",
                           .adjust_batch_index = "15"});
    AddLine(3, 5);
    AddLine(3, 6);
    AddLine(4, 5);
  }

  void EnterPen() {
    WritePen(database, {.id = 120, .name = "A01", .description = "North", .feed_amount = "500"});
  }

  bool Reset(RecordKind kind, int id, Answer answer = Answer::kYes) {
    op.answers.push_back(answer);
    return vrx::ResetRecord(database, kind, id, ports);
  }

  // The fields behind the ID, a bar between them.
  std::vector<std::string> Row(const std::string& table, int id) {
    const std::map<std::string, std::string> columns = {
        {"Ingredient", "Name || '|' || Description || '|' || [DryMatter%] || '|' || HandAdd"},
        {"Recipe",
         "Name || '|' || Description || '|' || BatchType || '|' || HeadCount || '|' || "
         "RationTarget || '|' || AdjBatTotIndex"},
        {"Pen", "Name || '|' || Description || '|' || FeedAmount"}};
    return Ask("SELECT " + columns.at(table) + " FROM " + table +
               " WHERE ID = " + std::to_string(id));
  }

  std::vector<std::string> TemplateRow(const std::string& table, int id) {
    const TempFolder other;
    const std::filesystem::path current = std::exchange(path, CopyOfTemplate(other, "NEW.RDB"));
    std::vector<std::string> row = Row(table, id);
    path = current;
    return row;
  }
};

TEST_F(ResetRecord, AnIngredientIsLikeTheTemplatesAgain) {
  EnterCorn();
  EXPECT_TRUE(Reset(RecordKind::kIngredient, 5));
  ASSERT_EQ(op.boxes.size(), 1U);
  EXPECT_EQ(op.boxes[0].title, "Set Ingredient Defaults");
  EXPECT_EQ(op.boxes[0].text, "Reset ingredient #5 (CORN) to its default values?");
  EXPECT_EQ(op.boxes[0].buttons, Buttons::kYesNo);
  EXPECT_EQ(op.boxes[0].icon, Icon::kQuestion);
  EXPECT_THAT(Row("Ingredient", 5), ElementsAre("ING005||100|0"));
  EXPECT_EQ(Row("Ingredient", 5), TemplateRow("Ingredient", 5));
  EXPECT_EQ(op.beeps, 1);
  EXPECT_FALSE(op.busy);
}

TEST_F(ResetRecord, APenIsLikeTheTemplatesAgain) {
  EnterPen();
  EXPECT_TRUE(Reset(RecordKind::kPen, 120));
  ASSERT_EQ(op.boxes.size(), 1U);
  EXPECT_EQ(op.boxes[0].title, "Set Pen Defaults");
  EXPECT_EQ(op.boxes[0].text, "Reset pen #120 (A01) to its default values?");
  EXPECT_EQ(op.boxes[0].buttons, Buttons::kYesNo);
  EXPECT_THAT(Row("Pen", 120), ElementsAre("PEN120||0"));
  EXPECT_EQ(Row("Pen", 120), TemplateRow("Pen", 120));
  EXPECT_EQ(op.beeps, 0);
}

TEST_F(ResetRecord, ARecipeLosesItsLinesAndTypeAndKeepsItsInputs) {
  EnterSteers();
  EXPECT_TRUE(Reset(RecordKind::kRecipe, 3));
  ASSERT_EQ(op.boxes.size(), 1U);
  EXPECT_EQ(op.boxes[0].title, "Set Recipe Defaults");
  EXPECT_EQ(op.boxes[0].text,
            "Reset recipe #3 (STEERS) to its default values and clear all ingredients in this "
            "recipe?");
  EXPECT_EQ(op.boxes[0].buttons, Buttons::kYesNo);
  EXPECT_THAT(Row("Recipe", 3), ElementsAre("REC003||!|250|5000|15"));
  EXPECT_THAT(ReadRecipeLines(database, 3), IsEmpty());
  EXPECT_EQ(ReadRecipeLines(database, 4).size(), 1U);
  EXPECT_EQ(op.beeps, 0);
}

TEST_F(ResetRecord, ARecipeWithoutInputsIsLikeTheTemplatesAgain) {
  UseRecipe(3, "STEERS", "P");
  EXPECT_TRUE(Reset(RecordKind::kRecipe, 3));
  EXPECT_EQ(Row("Recipe", 3), TemplateRow("Recipe", 3));
}

TEST_F(ResetRecord, NoLeavesEveryKindAsItIs) {
  EnterCorn();
  EnterSteers();
  EnterPen();
  const std::string before = ReadAll(path);
  EXPECT_FALSE(Reset(RecordKind::kIngredient, 5, Answer::kNo));
  EXPECT_FALSE(Reset(RecordKind::kRecipe, 3, Answer::kNo));
  EXPECT_FALSE(Reset(RecordKind::kPen, 120, Answer::kNo));
  EXPECT_EQ(op.boxes.size(), 3U);
  EXPECT_EQ(op.beeps, 0);
  EXPECT_TRUE(ReadAll(path) == before);
}

TEST_F(ResetRecord, AUsedIngredientIsRefused) {
  EnterCorn();
  EnterSteers();
  const std::string before = ReadAll(path);
  op.answers = {Answer::kYes, Answer::kOk};
  EXPECT_FALSE(vrx::ResetRecord(database, RecordKind::kIngredient, 5, ports));
  ASSERT_EQ(op.boxes.size(), 2U);
  EXPECT_EQ(op.boxes[1].title, "Set Ingredient Defaults");
  EXPECT_EQ(op.boxes[1].text,
            "Sorry, cannot reset ingredient #5 (CORN) to its default values because it is "
            "currently being used in recipe(s).");
  EXPECT_EQ(op.boxes[1].buttons, Buttons::kOkCancel);
  EXPECT_EQ(op.beeps, 0);
  EXPECT_FALSE(op.busy);
  EXPECT_TRUE(ReadAll(path) == before);
}

TEST_F(ResetRecord, AnIngredientUsedTwiceIsRefusedOnce) {
  EnterCorn();
  UseRecipe(3, "STEERS");
  AddLine(3, 5);
  AddLine(3, 5);
  op.answers = {Answer::kYes, Answer::kCancel};
  EXPECT_FALSE(vrx::ResetRecord(database, RecordKind::kIngredient, 5, ports));
  EXPECT_EQ(op.boxes.size(), 2U);
}

TEST_F(ResetRecord, AnIngredientOfARecipeOutOfUseIsResetAndItsLinesStay) {
  EnterCorn();
  AddLine(3, 5, {.dry_matter_percent = "88", .hand_add = true});
  const auto lines = ReadAllRecipeLines(database);
  EXPECT_TRUE(Reset(RecordKind::kIngredient, 5));
  EXPECT_EQ(ReadAllRecipeLines(database), lines);
}

TEST_F(ResetRecord, SetsTheDateOfTheChange) {
  EnterPen();
  EXPECT_TRUE(Reset(RecordKind::kPen, 120));
  EXPECT_THAT(Ask("SELECT Modified FROM History"), ElementsAre("2026-01-05"));
}

TEST_F(ResetRecord, ALockedFileIsToldAndUntouched) {
  EnterSteers();
  const std::string before = ReadAll(path);
  SQLite::Database other(path, SQLite::OPEN_READWRITE);
  const SQLite::Transaction lock(other, SQLite::TransactionBehavior::IMMEDIATE);
  EXPECT_FALSE(Reset(RecordKind::kRecipe, 3));
  ASSERT_EQ(op.boxes.size(), 2U);
  EXPECT_EQ(op.boxes[1].title, "Set Recipe Defaults");
  EXPECT_EQ(op.boxes[1].text, "A table in the specified database is locked.");
  EXPECT_EQ(op.boxes[1].cause, "YARD.RDB is locked by another program");
  EXPECT_FALSE(op.busy);
  EXPECT_TRUE(ReadAll(path) == before);
}

TEST_F(ResetRecord, AConnectionForReadingResetsNothing) {
  EnterSteers();
  const std::string before = ReadAll(path);
  SQLite::Database reading = OpenDatabase(path, Access::kRead, kShortTimeout);
  op.answers = {Answer::kYes};
  EXPECT_FALSE(vrx::ResetRecord(reading, RecordKind::kRecipe, 3, ports));
  ASSERT_EQ(op.boxes.size(), 2U);
  EXPECT_EQ(op.boxes[1].icon, Icon::kCritical);
  EXPECT_TRUE(ReadAll(path) == before);
}

// The record's row and the lines go together: a failure in between leaves both.
TEST_F(ResetRecord, AFailureHalfwayLeavesTheWholeRecipe) {
  EnterSteers();
  Alter(path,
        "CREATE TRIGGER Full BEFORE DELETE ON RecipeRation WHEN OLD.Ingredient = '6' "
        "BEGIN SELECT RAISE(FAIL, 'disk full'); END");
  const auto lines = ReadAllRecipeLines(database);
  EXPECT_FALSE(Reset(RecordKind::kRecipe, 3));
  EXPECT_EQ(op.boxes.back().cause, "YARD.RDB: disk full");
  EXPECT_EQ(ReadRecipe(database, 3).name, "STEERS");
  EXPECT_EQ(ReadAllRecipeLines(database), lines);
  EXPECT_THAT(Ask("SELECT Modified FROM History"), ElementsAre("NULL"));
}

TEST_F(ResetRecord, ARecordThatIsNotThereIsToldWithoutAQuestion) {
  EXPECT_FALSE(vrx::ResetRecord(database, RecordKind::kPen, 401, ports));
  ASSERT_EQ(op.boxes.size(), 1U);
  EXPECT_EQ(op.boxes[0].cause, "YARD.RDB has no row 401 in Pen");
}

}  // namespace
}  // namespace vrx::testing
