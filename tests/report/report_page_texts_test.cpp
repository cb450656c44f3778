#include <gtest/gtest.h>

#include "report/report_page.h"

namespace vrx::testing {
namespace {

ReportFacts SiteFacts() {
  using namespace std::chrono;
  return {.recipe_file = "/feed/YARD.RDB",
          .transaction_file = "/feed/YARD.TDB",
          .weight_unit = "LB",
          .caption_unit = "LB",
          .today = year{2026} / January / 5,
          .grid_lines = true};
}

CurrentRecipe TitledRecipe(const std::string& batch_type) {
  CurrentRecipe recipe;
  recipe.ration.recipe = {
      .id = 3, .name = "STEERS  ", .description = "Steers Finisher", .batch_type = batch_type};
  recipe.totals = {.target = "2000",
                   .ration_percent = "100.000",
                   .dry_matter_percent = "88.8",
                   .dry_matter = "2253",
                   .batch_target = "5250",
                   .hand_add = "1",
                   .ingredient_percent = "100.00"};
  return recipe;
}

constexpr const char* kHead =
    "Report: Recipe (STEERS)\r\nDescription: Steers Finisher\r\nRecipe File: /feed/YARD.RDB\r\n"
    "\r\nTotals:";

TEST(PageTexts, IngredientsSayActiveByTheBoxAlone) {
  const PageTexts active = SetPageHeadersIngredients(true, SiteFacts());
  EXPECT_EQ(active.header_center, "Report: Ingredients (active)\r\nRecipe File: /feed/YARD.RDB");
  EXPECT_EQ(active.header_right, "");
  EXPECT_EQ(active.footer_center, "1/5/2026");
  EXPECT_EQ(SetPageHeadersIngredients(false, SiteFacts()).header_center,
            "Report: Ingredients (all)\r\nRecipe File: /feed/YARD.RDB");
}

TEST(PageTexts, PensShowTheWeightUnits) {
  const PageTexts pens = SetPageHeadersPens(true, SiteFacts());
  EXPECT_EQ(pens.header_center, "Report: Pens (active)\r\nRecipe File: /feed/YARD.RDB");
  EXPECT_EQ(pens.header_right, "Weight Units: LB");
  EXPECT_EQ(SetPageHeadersPens(false, SiteFacts()).header_center,
            "Report: Pens (all)\r\nRecipe File: /feed/YARD.RDB");
}

TEST(PageTexts, TransactionsShowTheGroupAndBothFiles) {
  const PageTexts texts = SetPageHeadersTransactions("Recipes (all)", SiteFacts());
  EXPECT_EQ(texts.header_center,
            "Report: Recipes (all)\r\nTransaction File: /feed/YARD.TDB\r\n"
            "Recipe File: /feed/YARD.RDB");
  EXPECT_EQ(texts.header_right, "Weight Units: LB");
}

TEST(PageTexts, AnImportShowsItsOwnFileAndUnit) {
  const PageTexts texts = SetPageHeadersImport("/in/day1.QXT", "KG", SiteFacts());
  EXPECT_EQ(texts.header_center, "Report: Imported Transactions\r\nFile: /in/day1.QXT");
  EXPECT_EQ(texts.header_right, "Weight Units: KG");
}

TEST(PageTexts, ARecipeByWeightShowsItsTotalsUnderTheCaptionsOfTheGrid) {
  for (const std::string type : {"W", "H", "%"}) {
    EXPECT_EQ(SetPageHeadersRecipe(TitledRecipe(type), SiteFacts()).header_center,
              std::string(kHead) +
                  "\r\nDry Matter (lb) = 2000\r\nRation (%) DM = 100.000\r\n"
                  "Dry Matter (%) = 88.8\r\nTarget (lb) = 2253\r\nBatch Target = 5250\r\n"
                  "Hand-Add = 1");
  }
}

TEST(PageTexts, ARecipeByPercentShowsItsSharesFirst) {
  EXPECT_EQ(SetPageHeadersRecipe(TitledRecipe("P"), SiteFacts()).header_center,
            std::string(kHead) +
                "\r\nIngredient (%) = 100.00\r\nDry Matter (%) = 88.8\r\nTarget (lb) = 2253\r\n"
                "Batch Target = 5250\r\nHand-Add = 1");
}

TEST(PageTexts, ARecipeOfNoTypeEndsWithTotalsAndNothingBelow) {
  EXPECT_EQ(SetPageHeadersRecipe(TitledRecipe("!"), SiteFacts()).header_center, kHead);
}

TEST(PageTexts, ARecipeShowsUnitsAndBatchTypeWithALineEndAfterThem) {
  EXPECT_EQ(SetPageHeadersRecipe(TitledRecipe("%"), SiteFacts()).header_right,
            "Weight Units: LB\r\nBatch By: WEIGHT, Self-Adj\r\n");
}

}  // namespace
}  // namespace vrx::testing
