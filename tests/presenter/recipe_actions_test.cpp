#include "presenter/recipe_actions.h"

#include <gmock/gmock.h>

#include "database/identity.h"
#include "feed/feed_database.h"
#include "support/boxes.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class RecipeActions : public FeedDatabaseTest {
 protected:
  RecipeActions() {
    WriteField(database, kUnitField, "LB");
    WriteIngredient(database, {1, "CORN", "Corn", 88, false});
    WriteIngredient(database, {2, "HAY", "Hay", 90, true});
    UseRecipe(3, "STEERS");
    AddLine(3, 1, {.target = "1200", .dry_matter_percent = "88"});
    AddLine(3, 2, {.target = "800", .dry_matter_percent = "90", .hand_add = true});
    op.boxes.clear();
  }
};

class OfferOfACopy : public RecipeActions {
 protected:
  std::optional<CopyOffer> Offer(int from) { return OfferCopy(database, from, services); }
};

TEST_F(OfferOfACopy, ProposesTheNextFreeRecipe) {
  UseRecipe(4, "HEIFRS");
  const std::optional<CopyOffer> offer = Offer(3);
  ASSERT_TRUE(offer.has_value());
  EXPECT_EQ(offer->question, "Copy recipe 3 (STEERS) with 2 lines to:");
  EXPECT_THAT(offer->free, SizeIs(98));
  EXPECT_EQ(offer->free.at(offer->proposed).text, "  5: REC005");
}

TEST_F(OfferOfACopy, ProposesTheFirstOneAfterTheLast) {
  UseRecipe(100, "LAST");
  const std::optional<CopyOffer> offer = Offer(100);
  ASSERT_TRUE(offer.has_value());
  EXPECT_EQ(offer->question, "Copy recipe 100 (LAST) with 0 lines to:");
  EXPECT_EQ(offer->free.at(offer->proposed).id, 1);
}

TEST_F(OfferOfACopy, IsRefusedForAnEmptyRecipe) {
  EXPECT_FALSE(Offer(7).has_value());
  EXPECT_EQ(LastBox(op.boxes).title, "Copy (Error)");
  EXPECT_EQ(LastBox(op.boxes).text,
            "Recipe 7 (REC007) cannot be copied: it has neither description nor lines.");
}

TEST_F(OfferOfACopy, IsRefusedWhenNoRecipeIsFree) {
  for (int id = 1; id <= kRecipeCount; ++id) {
    UseRecipe(id, "R");
  }
  EXPECT_FALSE(Offer(3).has_value());
  EXPECT_THAT(LastBox(op.boxes).text, HasSubstr("No recipe is free"));
}

TEST_F(OfferOfACopy, ReportsALockedFile) {
  const ExclusiveHolder holder(path);
  EXPECT_FALSE(Offer(3).has_value());
  EXPECT_THAT(LastBox(op.boxes).cause, HasSubstr("locked"));
}

TEST_F(RecipeActions, ACopyIsStored) {
  const std::optional<RecipeRecord> copy = StoreCopy(database, 3, 9, services);
  ASSERT_TRUE(copy.has_value());
  EXPECT_EQ(copy->id, 9);
  EXPECT_EQ(ReadRecipe(database, 9).name, "STEERS");
  EXPECT_THAT(ReadRecipeLines(database, 9), SizeIs(2));
}

TEST_F(RecipeActions, ACopyToARecipeThatIsTakenMeanwhileIsRefused) {
  UseRecipe(9, "HEIFRS");
  EXPECT_FALSE(StoreCopy(database, 3, 9, services).has_value());
  EXPECT_EQ(LastBox(op.boxes).text, "Recipe 9 (HEIFRS) is not free: it has a description.");
}

class ComparisonOfRecipes : public RecipeActions {
 protected:
  ComparedTexts TextsOf(int a, int b) {
    const std::optional<ComparedFile> file = OpenComparedFile(path, services);
    const std::optional<ComparedTexts> texts = Compare(file.value(), a, file.value(), b, services);
    return texts.value();
  }

  static std::vector<std::string> Row(const std::vector<ComparedText>& cells) {
    std::vector<std::string> texts;
    for (const ComparedText& cell : cells) {
      texts.push_back(cell.text);
      EXPECT_EQ(cell.marked, cell.text.starts_with("\u2260 ") || cell.text.starts_with("+ "))
          << cell.text;
    }
    return texts;
  }
};

TEST_F(ComparisonOfRecipes, MarksWhatDiffers) {
  StoreCopy(database, 3, 9, services);
  RecipeLineRecord line = ReadRecipeLines(database, 9).front();
  line.target = "1300";
  WriteRecipeLine(database, line);
  UseRecipe(9, "FINISH");
  const ComparedTexts texts = TextsOf(3, 9);
  EXPECT_EQ(texts.sides[0].head[0].text, "\u2260 STEERS");
  EXPECT_EQ(texts.sides[1].head[0].text, "\u2260 FINISH");
  EXPECT_EQ(texts.sides[1].head[2].text, "WEIGHT, Std");
  EXPECT_FALSE(texts.sides[1].head[2].marked);
  EXPECT_THAT(texts.sides[0].captions,
              ElementsAre("Ingredient", "Dry Matter (lb)", "Ration (%) DM", "Dry Matter (%)",
                          "Target (lb)", "Batch Target", "Hand-Add"));
  EXPECT_THAT(Row(texts.sides[0].rows.at(0)), ElementsAre("1. CORN", "\u2260 1200", "\u2260 60.000",
                                                          "88", "\u2260 1364", ::testing::_, "No"));
  EXPECT_THAT(Row(texts.sides[1].rows.at(0)), ElementsAre("1. CORN", "\u2260 1300", "\u2260 61.905",
                                                          "88", "\u2260 1477", ::testing::_, "No"));
  EXPECT_THAT(Row(texts.sides[1].rows.back()),
              ElementsAre("Totals:", "\u2260 2100", "100.000", ::testing::_, "\u2260 2366",
                          ::testing::_, "1"));
  EXPECT_THAT(texts.summary, ::testing::StartsWith("Different (\u2260): 2 fields, 2 lines, "));
}

TEST_F(ComparisonOfRecipes, ALineOfOneRecipeHasAGapInTheOther) {
  UseRecipe(9, "STEERS");
  AddLine(9, 2, {.target = "800", .dry_matter_percent = "90", .hand_add = true});
  const ComparedTexts texts = TextsOf(3, 9);
  EXPECT_EQ(texts.sides[0].rows.at(0).front().text, "+ 1. CORN");
  EXPECT_TRUE(texts.sides[0].rows.at(0).front().marked);
  EXPECT_THAT(Row(texts.sides[1].rows.at(0)), ElementsAre("\u2013", "", "", "", "", "", ""));
  EXPECT_EQ(texts.sides[0].rows.at(1).front().text, "\u2260 2. HAY");
  EXPECT_EQ(texts.sides[1].rows.at(1).front().text, "\u2260 1. HAY");
}

TEST_F(ComparisonOfRecipes, ShowsTheColumnsOfBothWaysOfEntry) {
  UseRecipe(9, "SHARES", "P");
  AddLine(9, 1, {.dry_matter_percent = "88", .ingredient_percent = "100"});
  EXPECT_THAT(TextsOf(3, 9).sides[1].captions,
              ElementsAre("Ingredient", "Dry Matter (lb)", "Ingredient (%)", "Ration (%) DM",
                          "Dry Matter (%)", "Target (lb)", "Batch Target", "Hand-Add"));
}

TEST_F(ComparisonOfRecipes, SaysThatTwoRecipesAreTheSame) {
  StoreCopy(database, 3, 9, services);
  EXPECT_EQ(TextsOf(3, 9).summary, "The recipes are the same.");
}

TEST_F(ComparisonOfRecipes, ReportsFiguresThatCannotBeComputed) {
  UseRecipe(9, "HUGE");
  AddLine(9, 1, {.target = "99999999", .dry_matter_percent = "1"});
  const std::optional<ComparedFile> file = OpenComparedFile(path, services);
  EXPECT_FALSE(Compare(file.value(), 3, file.value(), 9, services).has_value());
  EXPECT_THAT(LastBox(op.boxes).text, HasSubstr("Recipe 9 of YARD.RDB: Overflow"));
}

TEST_F(ComparisonOfRecipes, ADatabaseWithoutRecipesIsRefused) {
  EXPECT_FALSE(OpenComparedFile(CopyOfTemplate(folder, "EMPTY.RDB"), services).has_value());
  EXPECT_THAT(LastBox(op.boxes).text, HasSubstr("EMPTY.RDB has no recipe to compare"));
}

TEST_F(ComparisonOfRecipes, AnotherFileIsAskedForAndCompared) {
  const std::filesystem::path other = folder / "OTHER.RDB";
  std::filesystem::copy_file(path, other);
  Alter(other,
        "UPDATE Recipe SET HeadCount = 7; UPDATE UnitsOfMeasure SET UoM = 'KG'; "
        "UPDATE BrantockDatabase SET dBType = '" +
            std::string(kUserRecipeDb) + "'");
  files.Choose(other);
  const std::optional<ComparedFile> file = OpenComparedFile(path, services);
  const std::optional<ComparedFile> chosen = AskForComparedFile(services);
  ASSERT_TRUE(chosen.has_value());
  const std::optional<ComparedTexts> texts = Compare(file.value(), 3, chosen.value(), 3, services);
  ASSERT_TRUE(texts.has_value());
  EXPECT_EQ(texts->sides[1].head[3].text, "\u2260 7");
  EXPECT_THAT(texts->note, HasSubstr("those of OTHER.RDB in KG"));
  EXPECT_THAT(op.boxes, IsEmpty());
}

TEST_F(ComparisonOfRecipes, AnotherFileThatIsNoRecipeDatabaseIsRefused) {
  files.Choose(CopyOfTemplate(folder, "OTHER.TDB", DatabaseKind::kTransaction));
  EXPECT_FALSE(AskForComparedFile(services).has_value());
  EXPECT_EQ(LastBox(op.boxes).title, "Invalid Database");
  files.Cancel();
  EXPECT_FALSE(AskForComparedFile(services).has_value());
}

}  // namespace
}  // namespace vrx::testing
