#include "feed/record_reset.h"

#include <map>
#include <random>
#include <utility>

#include <SQLiteCpp/Transaction.h>
#include <gmock/gmock.h>
#include <sqlite3.h>

#include "feed/feed_database.h"
#include "presenter/record_actions.h"

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
    return AskAndReset(database, kind, id, services) == ResetOutcome::kReset;
  }

  // The fields of all records in the order of their IDs, separated by bars.
  std::vector<std::string> Rows(const std::string& table) {
    const std::map<std::string, std::string> columns = {
        {"Ingredient", "Name || '|' || Description || '|' || [DryMatter%] || '|' || HandAdd"},
        {"Recipe",
         "Name || '|' || Description || '|' || BatchType || '|' || HeadCount || '|' || "
         "RationTarget || '|' || AdjBatTotIndex"},
        {"Pen", "Name || '|' || Description || '|' || FeedAmount"}};
    return Ask("SELECT " + columns.at(table) + " FROM " + table + " ORDER BY ID");
  }

  std::string Row(const std::string& table, int id) {
    return Rows(table).at(static_cast<std::size_t>(id) - 1);
  }

  std::string TemplateRow(const std::string& table, int id) {
    const TempFolder other;
    const std::filesystem::path current = std::exchange(path, CopyOfTemplate(other, "NEW.RDB"));
    std::string row = Row(table, id);
    path = current;
    return row;
  }
};

// A reset that began with a read lock could not continue after another program stores: neither
// would wait.
TEST_F(ResetRecord, WaitsForAnotherProgramThatIsStoring) {
  EnterCorn();
  SQLite::Database other = OpenDatabase(path, Access::kWrite);
  other.exec("BEGIN IMMEDIATE");
  WritePen(other, {.id = 120, .name = "A01"});
  const auto commit = [](void* connection, int /*asked before*/) {
    static_cast<SQLite::Database*>(connection)->exec("COMMIT");
    return 1;
  };
  sqlite3_busy_handler(database.getHandle(), commit, &other);
  EXPECT_TRUE(Reset(RecordKind::kIngredient, 5));
  EXPECT_EQ(ReadIngredient(database, 5).name, "ING005");
  EXPECT_EQ(ReadPen(database, 120).name, "A01");
}

TEST_F(ResetRecord, AnIngredientIsLikeTheTemplatesAgain) {
  EnterCorn();
  EXPECT_TRUE(Reset(RecordKind::kIngredient, 5));
  ASSERT_EQ(op.boxes.size(), 1U);
  EXPECT_EQ(op.boxes[0].title, "Set Ingredient Defaults");
  EXPECT_EQ(op.boxes[0].text, "Reset ingredient #5 (CORN) to its default values?");
  EXPECT_EQ(op.boxes[0].buttons, Buttons::kYesNo);
  EXPECT_EQ(op.boxes[0].icon, Icon::kQuestion);
  EXPECT_EQ(Row("Ingredient", 5), "ING005||100|0");
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
  EXPECT_EQ(Row("Pen", 120), "PEN120||0");
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
  EXPECT_EQ(Row("Recipe", 3), "REC003||!|250|5000|15");
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
  EXPECT_NE(AskAndReset(database, RecordKind::kIngredient, 5, services), ResetOutcome::kReset);
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

TEST_F(ResetRecord, TheOutcomeDistinguishesARefusalFromANo) {
  EnterCorn();
  EnterSteers();
  op.answers = {Answer::kYes, Answer::kOk, Answer::kNo, Answer::kYes};
  EXPECT_EQ(AskAndReset(database, RecordKind::kIngredient, 5, services), ResetOutcome::kInUse);
  EXPECT_EQ(AskAndReset(database, RecordKind::kIngredient, 6, services), ResetOutcome::kNotReset);
  EXPECT_EQ(AskAndReset(database, RecordKind::kIngredient, 7, services), ResetOutcome::kReset);
  EXPECT_EQ(AskAndReset(database, RecordKind::kIngredient, 101, services), ResetOutcome::kNotReset);
}

TEST_F(ResetRecord, AnIngredientUsedTwiceIsRefusedOnce) {
  EnterCorn();
  UseRecipe(3, "STEERS");
  AddLine(3, 5);
  AddLine(3, 5);
  op.answers = {Answer::kYes, Answer::kCancel};
  EXPECT_NE(AskAndReset(database, RecordKind::kIngredient, 5, services), ResetOutcome::kReset);
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

TEST_F(ResetRecord, ALockedFileIsReportedAndUnchanged) {
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
  EXPECT_NE(AskAndReset(reading, RecordKind::kRecipe, 3, services), ResetOutcome::kReset);
  ASSERT_EQ(op.boxes.size(), 2U);
  EXPECT_EQ(op.boxes[1].icon, Icon::kCritical);
  EXPECT_TRUE(ReadAll(path) == before);
}

// The record's row and its lines are one transaction: a failure in between keeps both.
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

TEST_F(ResetRecord, ARecordThatIsMissingIsReportedWithoutAQuestion) {
  EXPECT_NE(AskAndReset(database, RecordKind::kPen, 401, services), ResetOutcome::kReset);
  ASSERT_EQ(op.boxes.size(), 1U);
  EXPECT_EQ(op.boxes[0].cause, "YARD.RDB has no row 401 in Pen");
}

// Whatever other records contain, a reset changes only its own row and, for a recipe, its lines.
TEST_F(ResetRecord, TouchesNoOtherRecord) {
  std::mt19937 random(2260);
  FillAtRandom(random);
  SQLite::Transaction filling(database);
  for (int id = 1; id <= kPenCount; ++id) {
    WritePen(database, {.id = id,
                        .name = "P" + std::to_string(id),
                        .description = random() % 2 == 0 ? "North" : "",
                        .feed_amount = std::to_string(random() % 1000)});
  }
  filling.commit();
  for (int round = 0; round < 30; ++round) {
    const RecordKind kind = round % 2 == 0 ? RecordKind::kPen : RecordKind::kRecipe;
    const std::string table = kind == RecordKind::kPen ? "Pen" : "Recipe";
    const int id = static_cast<int>(random() % (kind == RecordKind::kPen ? 400 : 8)) + 1;
    std::vector<std::string> rows = Rows(table);
    std::vector<RecipeLineRecord> lines = ReadAllRecipeLines(database);
    ASSERT_TRUE(Reset(kind, id));
    rows.at(static_cast<std::size_t>(id) - 1) = TemplateRow(table, id);
    if (kind == RecordKind::kRecipe) {
      std::erase_if(lines, [&](const auto& line) { return line.recipe_id == std::to_string(id); });
    }
    ASSERT_EQ(Rows(table), rows) << table << " " << id;
    ASSERT_EQ(ReadAllRecipeLines(database), lines) << table << " " << id;
  }
}

TEST_F(ResetRecord, AFileWithoutARowForItsDatesKeepsTheRecord) {
  EnterPen();
  Alter(path, "DELETE FROM History");
  EXPECT_FALSE(Reset(RecordKind::kPen, 120));
  EXPECT_EQ(op.boxes.back().cause, "YARD.RDB has no row in History");
  EXPECT_EQ(ReadPen(database, 120).name, "A01");
}

}  // namespace
}  // namespace vrx::testing
