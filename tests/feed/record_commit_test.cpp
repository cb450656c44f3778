#include "feed/record_commit.h"

#include <random>

#include <SQLiteCpp/Transaction.h>
#include <gmock/gmock.h>

#include "base/error.h"
#include "database/connection.h"
#include "database/identity.h"
#include "feed/feed_database.h"
#include "feed/ration.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

class RecordCommit : public FeedDatabaseTest {
 protected:
  RecipeLineRecord Line(int recipe, std::size_t line = 0) {
    return ReadRecipeLines(database, recipe).at(line);
  }

  // Commits as an action does and returns the error.
  std::string CommitInTransaction(IngredientRecord record) {
    try {
      SQLite::Transaction transaction(database, SQLite::TransactionBehavior::IMMEDIATE);
      CommitIngredientRecord(database, record);
      transaction.commit();
      return "";
    } catch (const Error& error) {
      return error.what();
    }
  }
};

TEST_F(RecordCommit, AnIngredientWithANameOfItsOwnTakesItAsDescription) {
  IngredientRecord record{.id = 5, .name = "bARLEY", .dry_matter_percent = 88, .hand_add = true};
  CommitIngredientRecord(database, record);
  EXPECT_EQ(record.description, "bARLEY");
  const IngredientRecord stored = ReadIngredient(database, 5);
  EXPECT_EQ(stored.name, "bARLEY");
  EXPECT_EQ(stored.description, "bARLEY");
  EXPECT_EQ(stored.dry_matter_percent, 88);
  EXPECT_TRUE(stored.hand_add);
}

TEST_F(RecordCommit, TheDefaultNameLeavesAnIngredientOutOfUse) {
  IngredientRecord record{.id = 5, .name = "ING005", .dry_matter_percent = 50};
  CommitIngredientRecord(database, record);
  EXPECT_EQ(ReadIngredient(database, 5).description, "");
  EXPECT_EQ(ReadIngredient(database, 5).dry_matter_percent, 50);
}

TEST_F(RecordCommit, TheDefaultNameOfAnotherRecordIsANameOfItsOwn) {
  IngredientRecord record{.id = 5, .name = "ING006"};
  CommitIngredientRecord(database, record);
  EXPECT_EQ(ReadIngredient(database, 5).description, "ING006");
}

TEST_F(RecordCommit, ADescriptionIsKept) {
  IngredientRecord record{.id = 5, .name = "CORN", .description = "Corn flaked"};
  CommitIngredientRecord(database, record);
  EXPECT_EQ(ReadIngredient(database, 5).description, "Corn flaked");
}

TEST_F(RecordCommit, APenWithANameOfItsOwnTakesItAsDescription) {
  PenRecord record{.id = 12, .name = "A12"};
  CommitPenRecord(database, record);
  EXPECT_EQ(record.description, "A12");
  EXPECT_EQ(ReadPen(database, 12).description, "A12");
}

TEST_F(RecordCommit, APenWithFeedAloneKeepsItsDefaultNameAndIsActive) {
  PenRecord record{.id = 12, .name = "PEN012", .feed_amount = "500"};
  CommitPenRecord(database, record);
  EXPECT_EQ(ReadPen(database, 12).description, "");
  EXPECT_EQ(ReadPen(database, 12).feed_amount, "500");
}

TEST_F(RecordCommit, ARecipeDoesNotTakeItsNameAsDescription) {
  RecipeRecord record{.id = 3, .name = "STEERS", .batch_type = "W", .adjust_batch_index = "20"};
  CommitRecipeRecord(database, record);
  EXPECT_EQ(ReadRecipe(database, 3).name, "STEERS");
  EXPECT_EQ(ReadRecipe(database, 3).description, "");
}

TEST_F(RecordCommit, TheBatchTargetsOfARecipeFollowItsInputs) {
  UseRecipe(3, "STEERS", "W");
  AddLine(3, 1, {.target = "1200", .dry_matter_percent = "88"});
  AddLine(3, 7, {.target = "800", .dry_matter_percent = "90"});
  AddLine(3, 12, {.target = "100", .dry_matter_percent = "0", .hand_add = true});
  RecipeRecord record = ReadRecipe(database, 3);
  record.ration_target = "5000";
  record.adjust_batch_index = "15";
  EXPECT_EQ(CommitRecipeRecord(database, record), "");
  EXPECT_EQ(Line(3, 0).batch_target, "3043");
  EXPECT_EQ(Line(3, 1).batch_target, "1984");
  EXPECT_EQ(Line(3, 2).batch_target, "223");
  EXPECT_EQ(Line(3, 0).ration_percent, "60.000");
}

TEST_F(RecordCommit, ARecipeThatNoLongerCanBeComputedIsRefused) {
  UseRecipe(3, "STEERS", "W");
  AddLine(3, 1, {.target = "1200", .dry_matter_percent = "88"});
  RecipeRecord record = ReadRecipe(database, 3);
  CommitRecipeRecord(database, record);
  const std::string before = ReadAll(path);
  record.adjust_batch_index = "41";
  EXPECT_THROW(CommitRecipeRecord(database, record), Error);
  EXPECT_TRUE(ReadAll(path) == before);
}

TEST_F(RecordCommit, ARecipeThatNeverCouldBeComputedKeepsItsLinesAndTakesTheRest) {
  UseRecipe(3, "STEERS", "W");
  AddLine(3, 1, {.target = "900000000", .dry_matter_percent = "1"});
  AddLine(3, 1, {.target = "1200", .dry_matter_percent = "88"});
  const auto lines = ReadRecipeLines(database, 3);
  RecipeRecord record = ReadRecipe(database, 3);
  record.name = "HEIFRS";
  EXPECT_THAT(CommitRecipeRecord(database, record), HasSubstr("Overflow: "));
  EXPECT_EQ(ReadRecipe(database, 3).name, "HEIFRS");
  EXPECT_EQ(ReadRecipeLines(database, 3), lines);
}

TEST_F(RecordCommit, ANewDryMatterGoesIntoEveryLineOfThreeRecipes) {
  for (const int recipe : {2, 7, 9}) {
    UseRecipe(recipe, "R");
    AddLine(recipe, 5, {.target = "1200", .dry_matter_percent = "88", .dry_matter = "1364"});
    AddLine(recipe, 6, {.target = "1200", .dry_matter_percent = "88", .dry_matter = "1364"});
  }
  IngredientRecord record{.id = 5, .name = "CORN", .dry_matter_percent = 80};
  CommitIngredientRecord(database, record);
  for (const int recipe : {2, 7, 9}) {
    EXPECT_EQ(Line(recipe, 0).dry_matter_percent, "80");
    EXPECT_EQ(Line(recipe, 0).dry_matter, "1500");
    EXPECT_EQ(Line(recipe, 1).dry_matter_percent, "88");
    EXPECT_EQ(Line(recipe, 1).dry_matter, "1364");
  }
}

TEST_F(RecordCommit, ANewHandAddGoesIntoEveryLine) {
  for (const int recipe : {2, 7}) {
    AddLine(recipe, 5, {.hand_add = false});
    AddLine(recipe, 6, {.hand_add = false});
  }
  SetRecipesHandAdd(database, 5, true);
  EXPECT_TRUE(Line(2, 0).hand_add && Line(7, 0).hand_add);
  EXPECT_FALSE(Line(2, 1).hand_add || Line(7, 1).hand_add);
  SetRecipesHandAdd(database, 5, false);
  EXPECT_FALSE(Line(2, 0).hand_add || Line(7, 0).hand_add);
}

TEST_F(RecordCommit, AnIngredientTwiceInARecipeIsChangedTwice) {
  AddLine(2, 5, {.dry_matter_percent = "88"});
  AddLine(2, 5, {.dry_matter_percent = "88"});
  SetRecipesDryMatterPct(database, 5, "90");
  EXPECT_EQ(Line(2, 0).dry_matter_percent, "90");
  EXPECT_EQ(Line(2, 1).dry_matter_percent, "90");
}

TEST_F(RecordCommit, EachLineFollowsItsOwnRecipesType) {
  UseRecipe(1, "STEERS", "W");
  UseRecipe(2, "HEIFRS", "P");
  for (const int recipe : {1, 2}) {
    AddLine(recipe, 5,
            {.target = "1200", .dry_matter_percent = "88", .ingredient_percent = "62.50"});
  }
  SetRecipesDryMatterPct(database, 5, "80");
  EXPECT_EQ(Line(1).dry_matter, "1500");
  EXPECT_EQ(Line(2).dry_matter, "7812");
}

TEST_F(RecordCommit, TheTypeShownOutranksALinesOwn) {
  UseRecipe(1, "STEERS", "W");
  UseRecipe(2, "HEIFRS", "P");
  for (const int recipe : {1, 2}) {
    AddLine(recipe, 5,
            {.target = "1200", .dry_matter_percent = "88", .ingredient_percent = "62.50"});
  }
  IngredientRecord record{.id = 5, .name = "CORN", .dry_matter_percent = 80};
  CommitIngredientRecord(database, record, "P");
  EXPECT_EQ(Line(1).dry_matter, "7812");
  EXPECT_EQ(Line(2).dry_matter, "7812");
  CommitIngredientRecord(database, record, "H");
  EXPECT_EQ(Line(2).dry_matter, "1500");
  record.dry_matter_percent = 50;
  CommitIngredientRecord(database, record, "!");
  EXPECT_EQ(Line(1).dry_matter_percent, "50");
  EXPECT_EQ(Line(1).dry_matter, "1500");
}

TEST_F(RecordCommit, WithoutAKnownTypeTheAsFedWeightStays) {
  UseRecipe(1, "UNTYPD", "!");
  UseRecipe(2, "ODD", "X");
  for (const int recipe : {1, 2, 300}) {
    AddLine(recipe, 5, {.target = "1200", .dry_matter_percent = "88", .dry_matter = "17"});
  }
  SetRecipesDryMatterPct(database, 5, "80");
  for (const int recipe : {1, 2, 300}) {
    EXPECT_EQ(Line(recipe).dry_matter_percent, "80");
    EXPECT_EQ(Line(recipe).dry_matter, "17");
  }
}

TEST_F(RecordCommit, AnEmptyDryMatterIsComputedAs100Percent) {
  UseRecipe(1, "STEERS", "W");
  AddLine(1, 5, {.target = "1200", .dry_matter_percent = "88"});
  SetRecipesDryMatterPct(database, 5, "0");
  EXPECT_EQ(Line(1).dry_matter_percent, "0");
  EXPECT_EQ(Line(1).dry_matter, "1200");
}

TEST_F(RecordCommit, AnOverflowLeavesEverythingAsItWas) {
  UseRecipe(1, "STEERS", "W");
  UseRecipe(2, "HEIFRS", "W");
  AddLine(1, 5, {.target = "1200", .dry_matter_percent = "100", .dry_matter = "1200"});
  AddLine(2, 5, {.target = "900000000", .dry_matter_percent = "100"});
  const std::string before = ReadAll(path);
  EXPECT_EQ(
      CommitInTransaction({.id = 5, .name = "CORN", .dry_matter_percent = 1, .hand_add = true}),
      "Recipe 2: Overflow: a line's as-fed weight is outside the range of 32-bit whole "
      "numbers.");
  EXPECT_TRUE(ReadAll(path) == before);
}

TEST_F(RecordCommit, AnOverflowHasWrittenNothingYet) {
  UseRecipe(2, "HEIFRS", "W");
  AddLine(2, 5, {.target = "900000000", .dry_matter_percent = "100"});
  IngredientRecord record{.id = 5, .name = "CORN", .dry_matter_percent = 1, .hand_add = true};
  EXPECT_THROW(CommitIngredientRecord(database, record), Error);
  EXPECT_EQ(record.description, "");
  EXPECT_EQ(ReadIngredient(database, 5).name, "ING005");
  EXPECT_EQ(Line(2).dry_matter_percent, "100");
  EXPECT_FALSE(Line(2).hand_add);
}

TEST_F(RecordCommit, APercentageThatIsNoNumberIsNamedWithItsRecipe) {
  UseRecipe(4, "HEIFRS", "P");
  AddLine(4, 5, {.ingredient_percent = "much"});
  EXPECT_THAT(CommitInTransaction({.id = 5, .name = "CORN"}), HasSubstr("Recipe 4: "));
  EXPECT_EQ(ReadIngredient(database, 5).name, "ING005");
}

TEST_F(RecordCommit, AMissingRecordIsReported) {
  EXPECT_THAT(CommitInTransaction({.id = 101, .name = "CORN"}), HasSubstr("has no row 101"));
}

TEST_F(RecordCommit, ALockedFileIsReportedAndUnchanged) {
  const std::string before = ReadAll(path);
  SQLite::Database other(path, SQLite::OPEN_READWRITE);
  const SQLite::Transaction lock(other, SQLite::TransactionBehavior::IMMEDIATE);
  IngredientRecord record{.id = 5, .name = "CORN"};
  EXPECT_THROW(CommitIngredientRecord(database, record), DatabaseError);
  EXPECT_EQ(record.description, "");
  EXPECT_TRUE(ReadAll(path) == before);
}

TEST_F(RecordCommit, AConnectionForReadingWritesNothing) {
  AddLine(2, 5);
  const std::string before = ReadAll(path);
  SQLite::Database reading = OpenDatabase(path, Access::kRead, kShortTimeout);
  PenRecord pen{.id = 5, .name = "A05"};
  RecipeRecord recipe{.id = 5, .name = "STEERS"};
  EXPECT_THROW(CommitPenRecord(reading, pen), DatabaseError);
  EXPECT_THROW(CommitRecipeRecord(reading, recipe), DatabaseError);
  EXPECT_THROW(SetRecipesHandAdd(reading, 5, true), DatabaseError);
  EXPECT_THROW(SetRecipesDryMatterPct(reading, 5, "7"), DatabaseError);
  EXPECT_TRUE(ReadAll(path) == before);
}

TEST_F(RecordCommit, TouchingSetsTheDateOfTheDay) {
  TouchDatabase(database, calendar);
  EXPECT_THAT(Ask("SELECT Modified FROM History"), ElementsAre("2026-01-05"));
}

// For any lines, a commit changes only HandAdd, DryMatter% and DryMatter of the lines of its
// ingredient, and DryMatter as computed by ration.h.
TEST_F(RecordCommit, ChangesThreeFieldsOfItsOwnLinesOnly) {
  std::mt19937 random(2260);
  const std::map<std::string, std::string> types = {{"1", "W"}, {"2", "H"}, {"3", "%"}, {"4", "P"},
                                                    {"5", "!"}, {"6", "X"}, {"50", "!"}};
  FillAtRandom(random);
  for (int round = 0; round < 25; ++round) {
    IngredientRecord record{.id = 1 + round % 4,
                            .name = "MIX",
                            .dry_matter_percent = round * 4,
                            .hand_add = round % 3 == 0};
    std::vector<RecipeLineRecord> expected = ReadAllRecipeLines(database);
    for (RecipeLineRecord& line : expected) {
      if (line.ingredient == std::to_string(record.id)) {
        line.hand_add = record.hand_add;
        line.dry_matter_percent = std::to_string(record.dry_matter_percent);
        const auto type = types.find(line.recipe_id);
        RecalcLineDryMatter(type == types.end() ? "" : type->second, line);
      }
    }
    ASSERT_EQ(CommitInTransaction(record), "");
    ASSERT_EQ(ReadAllRecipeLines(database), expected) << "round " << round;
  }
}

}  // namespace
}  // namespace vrx::testing
