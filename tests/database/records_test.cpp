#include "database/records.h"

#include <functional>
#include <random>

#include <SQLiteCpp/Transaction.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "database/connection.h"
#include "support/database_files.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

auto Fields(const IngredientRecord& r) {
  return std::tie(r.id, r.name, r.description, r.dry_matter_percent, r.hand_add);
}
auto Fields(const RecipeRecord& r) {
  return std::tie(r.id, r.name, r.description, r.batch_type, r.head_count, r.ration_target,
                  r.adjust_batch_index);
}
auto Fields(const PenRecord& r) { return std::tie(r.id, r.name, r.description, r.feed_amount); }
auto Fields(const RecipeLineRecord& r) {
  return std::tie(r.row, r.recipe_id, r.ingredient, r.target, r.ration_percent,
                  r.dry_matter_percent, r.dry_matter, r.batch_target, r.sequence, r.hand_add,
                  r.ingredient_percent);
}

class Records : public ::testing::Test {
 protected:
  std::string Text() {
    static const std::vector<std::string> parts{"'",  "\"",           ";", "--", "%", "Ä",
                                                "é",  "\xe2\x82\xac", " ", "A",  "b", "7",
                                                "\\", "\r\n",         "[", "]",  "?"};
    std::string text;
    for (int length = Number(0, 20); length > 0; --length) {
      text += parts[static_cast<std::size_t>(Number(0, static_cast<int>(parts.size()) - 1))];
    }
    return text;
  }
  int Number(int low, int high) { return std::uniform_int_distribution<int>(low, high)(random_); }

  RecipeLineRecord Line(int recipe, int ingredient, int sequence) {
    return {.recipe_id = std::to_string(recipe),
            .ingredient = std::to_string(ingredient),
            .target = Text(),
            .ration_percent = Text(),
            .dry_matter_percent = Text(),
            .dry_matter = Text(),
            .batch_target = Text(),
            .sequence = sequence,
            .hand_add = Number(0, 1) == 1,
            .ingredient_percent = Text()};
  }

  std::mt19937 random_{7};
  TempFolder folder_;
  std::filesystem::path path_ = CopyOfTemplate(folder_, "YARD.RDB");
  SQLite::Database database_ = OpenDatabase(path_, Access::kWrite);
};

int NumberOf(const std::function<void()>& body) {
  try {
    body();
  } catch (const DatabaseError& error) {
    return error.Number();
  }
  return 0;
}

TEST_F(Records, WholeTablesComeInIdOrder) {
  const std::vector<IngredientRecord> ingredients = ReadIngredients(database_);
  const std::vector<RecipeRecord> recipes = ReadRecipes(database_);
  const std::vector<PenRecord> pens = ReadPens(database_);
  ASSERT_THAT(ingredients, SizeIs(kIngredientCount));
  ASSERT_THAT(recipes, SizeIs(kRecipeCount));
  ASSERT_THAT(pens, SizeIs(kPenCount));
  for (int id = 1; id <= kPenCount; ++id) {
    EXPECT_EQ(pens[static_cast<std::size_t>(id - 1)].id, id);
  }
  EXPECT_EQ(ingredients[99].name, "ING100");
  EXPECT_EQ(recipes[0].adjust_batch_index, "20");
  EXPECT_EQ(recipes[0].ration_target, "");
}

TEST_F(Records, IngredientsKeepEveryFieldOfRandomContent) {
  const SQLite::Transaction all_at_once(database_);
  for (int id = 1; id <= kIngredientCount; ++id) {
    const IngredientRecord written{.id = id,
                                   .name = Text(),
                                   .description = Text(),
                                   .dry_matter_percent = Number(-5, 1000),
                                   .hand_add = Number(0, 1) == 1};
    WriteIngredient(database_, written);
    EXPECT_EQ(Fields(ReadIngredient(database_, id)), Fields(written));
  }
}

TEST_F(Records, RecipesKeepEveryFieldOfRandomContent) {
  const SQLite::Transaction all_at_once(database_);
  for (int id = 1; id <= kRecipeCount; ++id) {
    const RecipeRecord written{.id = id,
                               .name = Text(),
                               .description = Text(),
                               .batch_type = "H",
                               .head_count = Number(0, 32767),
                               .ration_target = Text(),
                               .adjust_batch_index = std::to_string(Number(0, 40))};
    WriteRecipe(database_, written);
    EXPECT_EQ(Fields(ReadRecipe(database_, id)), Fields(written));
  }
}

TEST_F(Records, PensKeepEveryFieldOfRandomContent) {
  const SQLite::Transaction all_at_once(database_);
  for (int id = 1; id <= kPenCount; ++id) {
    const PenRecord written{.id = id, .name = Text(), .description = Text(), .feed_amount = Text()};
    WritePen(database_, written);
    EXPECT_EQ(Fields(ReadPen(database_, id)), Fields(written));
  }
}

TEST_F(Records, ANumberAsTextStaysAsItWasWritten) {
  PenRecord pen = ReadPen(database_, 3);
  pen.feed_amount = "0150";
  WritePen(database_, pen);
  EXPECT_EQ(ReadPen(database_, 3).feed_amount, "0150");
  EXPECT_THAT(Ask(path_,
                  "SELECT ID FROM Pen WHERE (Pen.FeedAmount <> '0' OR "
                  "Pen.Description <> '')"),
              ElementsAre("3"));
}

TEST_F(Records, WritingOneRecordLeavesTheOthers) {
  std::vector<PenRecord> expected = ReadPens(database_);
  expected[41].name = "O'NEIL";
  WritePen(database_, expected[41]);
  const std::vector<PenRecord> pens = ReadPens(database_);
  ASSERT_THAT(pens, SizeIs(expected.size()));
  for (std::size_t i = 0; i < pens.size(); ++i) {
    EXPECT_EQ(Fields(pens[i]), Fields(expected[i]));
  }
}

TEST_F(Records, AnIdWithoutARowIsNoRecord) {
  EXPECT_EQ(NumberOf([&] { ReadIngredient(database_, 101); }), kNoRecordError);
  EXPECT_EQ(NumberOf([&] { ReadRecipe(database_, 0); }), kNoRecordError);
  EXPECT_EQ(NumberOf([&] { ReadPen(database_, -1); }), kNoRecordError);
  EXPECT_EQ(NumberOf([&] { WriteIngredient(database_, {.id = 101}); }), kNoRecordError);
  EXPECT_EQ(NumberOf([&] { WriteRecipe(database_, {.id = 101}); }), kNoRecordError);
  EXPECT_EQ(NumberOf([&] { WritePen(database_, {.id = 401}); }), kNoRecordError);
}

TEST_F(Records, AMissingTableOrFieldHasItsErrorNumber) {
  database_.exec("ALTER TABLE Pen RENAME COLUMN FeedAmount TO Feed");
  database_.exec("DROP TABLE Ingredient");
  EXPECT_EQ(NumberOf([&] { ReadIngredients(database_); }), kInvalidTableError);
  EXPECT_EQ(NumberOf([&] { ReadPens(database_); }), kInvalidFieldError);
}

TEST_F(Records, NullReadsAsEmptyAndZero) {
  database_.exec("UPDATE Recipe SET Name = NULL, HeadCount = NULL, RationTarget = NULL");
  const RecipeRecord recipe = ReadRecipe(database_, 1);
  EXPECT_EQ(recipe.name, "");
  EXPECT_EQ(recipe.head_count, 0);
  EXPECT_EQ(recipe.ration_target, "");
}

TEST_F(Records, AWholeNumberOutside32BitsReadsAsZero) {
  database_.exec("UPDATE Recipe SET HeadCount = 2147483648 WHERE ID = 1");
  database_.exec("UPDATE Recipe SET HeadCount = 2147483647 WHERE ID = 2");
  EXPECT_EQ(ReadRecipe(database_, 1).head_count, 0);
  EXPECT_EQ(ReadRecipe(database_, 2).head_count, 2147483647);
}

TEST_F(Records, ARecipeWithoutLinesHasNone) {
  EXPECT_THAT(ReadRecipeLines(database_, 1), IsEmpty());
  EXPECT_THAT(ReadLinesWithIngredient(database_, 1), IsEmpty());
}

TEST_F(Records, LinesKeepEveryFieldOfRandomContent) {
  const SQLite::Transaction all_at_once(database_);
  for (int sequence = 1; sequence <= 200; ++sequence) {
    RecipeLineRecord line = Line(5, Number(1, 100), sequence);
    WriteRecipeLine(database_, line);
    EXPECT_NE(line.row, 0);
    const std::vector<RecipeLineRecord> lines = ReadRecipeLines(database_, 5);
    ASSERT_THAT(lines, SizeIs(sequence));
    EXPECT_EQ(Fields(lines.back()), Fields(line));
  }
}

TEST_F(Records, LinesComeBySequenceAndEqualOnesAsStored) {
  std::vector<RecipeLineRecord> written{Line(5, 1, 3), Line(5, 2, 1), Line(5, 3, 2), Line(5, 4, 1),
                                        Line(6, 5, 0)};
  for (RecipeLineRecord& line : written) {
    WriteRecipeLine(database_, line);
  }
  std::vector<std::string> order;
  for (const RecipeLineRecord& line : ReadRecipeLines(database_, 5)) {
    order.push_back(line.ingredient);
  }
  EXPECT_THAT(order, ElementsAre("2", "4", "3", "1"));
}

TEST_F(Records, LinesOfAnIngredientComeFromAllRecipesAsStored) {
  for (const auto& [recipe, ingredient] :
       std::vector<std::pair<int, int>>{{9, 7}, {2, 7}, {2, 8}, {2, 7}, {1, 70}}) {
    RecipeLineRecord line = Line(recipe, ingredient, 1);
    WriteRecipeLine(database_, line);
  }
  std::vector<std::string> recipes;
  for (const RecipeLineRecord& line : ReadLinesWithIngredient(database_, 7)) {
    recipes.push_back(line.recipe_id);
  }
  EXPECT_THAT(recipes, ElementsAre("9", "2", "2"));
}

TEST_F(Records, AllLinesComeByRecipeAndSequence) {
  for (const auto& [recipe, ingredient, sequence] :
       std::vector<std::array<int, 3>>{{100, 1, 1}, {9, 2, 2}, {9, 3, 1}, {20, 4, 1}, {9, 5, 2}}) {
    RecipeLineRecord line = Line(recipe, ingredient, sequence);
    WriteRecipeLine(database_, line);
  }
  std::vector<std::string> order;
  for (const RecipeLineRecord& line : ReadAllRecipeLines(database_)) {
    order.push_back(line.recipe_id + ":" + line.ingredient);
  }
  EXPECT_THAT(order, ElementsAre("9:3", "9:2", "9:5", "20:4", "100:1"));
}

TEST_F(Records, ManyStoredLinesAreRewrittenEachInItsPlace) {
  for (int ingredient = 1; ingredient <= 3; ++ingredient) {
    RecipeLineRecord line = Line(5, ingredient, ingredient);
    WriteRecipeLine(database_, line);
  }
  std::vector<RecipeLineRecord> lines = ReadRecipeLines(database_, 5);
  lines[0].target = "1";
  lines[2].dry_matter = "77";
  WriteStoredLines(database_, lines);
  EXPECT_EQ(ReadRecipeLines(database_, 5), lines);
  lines[1].row = 4711;
  EXPECT_THROW(WriteStoredLines(database_, lines), DatabaseError);
}

TEST_F(Records, AStoredLineIsRewrittenInItsPlace) {
  RecipeLineRecord line = Line(5, 1, 1);
  WriteRecipeLine(database_, line);
  line.target = "500";
  line.hand_add = !line.hand_add;
  WriteRecipeLine(database_, line);
  const std::vector<RecipeLineRecord> lines = ReadRecipeLines(database_, 5);
  ASSERT_THAT(lines, SizeIs(1));
  EXPECT_EQ(Fields(lines[0]), Fields(line));
}

TEST_F(Records, ADeletedLineIsGoneAndCannotBeWrittenAgain) {
  RecipeLineRecord line = Line(5, 1, 1);
  RecipeLineRecord other = Line(5, 2, 2);
  WriteRecipeLine(database_, line);
  WriteRecipeLine(database_, other);
  DeleteRecipeLine(database_, line.row);
  ASSERT_THAT(ReadRecipeLines(database_, 5), SizeIs(1));
  EXPECT_EQ(NumberOf([&] { DeleteRecipeLine(database_, line.row); }), kNoRecordError);
  EXPECT_EQ(NumberOf([&] { WriteRecipeLine(database_, line); }), kNoRecordError);
}

TEST_F(Records, AWriteOnAReadingConnectionFails) {
  SQLite::Database reading = OpenDatabase(path_, Access::kRead);
  RecipeLineRecord line = Line(5, 1, 1);
  EXPECT_THROW(WriteRecipeLine(reading, line), DatabaseError);
  EXPECT_EQ(line.row, 0);
  EXPECT_THAT(ReadRecipeLines(reading, 5), IsEmpty());
}

}  // namespace
}  // namespace vrx::testing
