// The reports of the program's own data.

#include "report/reports.h"

#include <optional>

#include <gmock/gmock.h>

#include "base/date.h"
#include "feed/recipe_columns.h"
#include "report/print_target.h"
#include "support/printed_pages.h"
#include "support/small_history.h"
#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;

std::vector<std::string> Captions(const Report& report) {
  std::vector<std::string> captions;
  for (const ReportColumn& column : report.design.columns) {
    captions.push_back(column.caption);
  }
  return captions;
}

std::vector<std::string> RightAligned(const Report& report) {
  std::vector<std::string> captions;
  for (const ReportColumn& column : report.design.columns) {
    if (column.right_aligned) {
      captions.push_back(column.caption);
    }
  }
  return captions;
}

ReportFacts Facts() { return {.weight_unit = "LB", .caption_unit = "KG"}; }

CurrentRecipe Recipe(const std::string& type) {
  CurrentRecipe recipe;
  recipe.ration.recipe.batch_type = type;
  recipe.ration.lines = {{.ingredient = "1", .target = "120", .hand_add = true},
                         {.ingredient = "9", .target = "80"}};
  return recipe;
}

TEST(Reports, IngredientsHaveTheColumnsOfTheirGrid) {
  const Report report =
      IngredientReport({{.id = 3, .name = "bARLEY", .description = "Barley", .hand_add = true},
                        {.id = 4, .name = "HAY", .dry_matter_percent = 85}},
                       true, Facts());
  EXPECT_THAT(Captions(report),
              ElementsAre("ID", "Name", "Description", "Dry Matter (%)", "Hand-Add"));
  EXPECT_THAT(report.rows->Row(1).cells, ElementsAre("3", "bARLEY", "Barley", "100", "Yes"));
  EXPECT_THAT(report.rows->Row(2).cells, ElementsAre("4", "HAY", "", "85", "No"));
  EXPECT_EQ(report.rows->Count(), 2);
  EXPECT_THAT(RightAligned(report), ElementsAre("ID", "Dry Matter (%)"));
  EXPECT_TRUE(report.design.fit_columns);
  EXPECT_FALSE(report.design.fixed_pitch);
}

TEST(Reports, PensHaveTheUnitInTheCaption) {
  const Report report = PenReport({{.id = 7, .name = "A07", .feed_amount = "830"}}, false, Facts());
  EXPECT_THAT(Captions(report), ElementsAre("ID", "Name", "Description", "Feed Amount (kg)"));
  EXPECT_THAT(report.rows->Row(1).cells, ElementsAre("7", "A07", "", "830"));
  EXPECT_THAT(RightAligned(report), ElementsAre("ID", "Feed Amount (kg)"));
}

TEST(Reports, ARecipeShowsTheColumnsOfItsType) {
  const std::vector<IngredientRecord> ingredients{{.id = 1, .name = "CORN"}};
  const Report weight = RecipeReport(Recipe("W"), ingredients, Facts());
  EXPECT_THAT(Captions(weight),
              ElementsAre("Ingredient", "Dry Matter (kg)", "Ration (%) DM", "Dry Matter (%)",
                          "Target (kg)", "Batch Target", "Hand-Add"));
  EXPECT_THAT(weight.rows->Row(1).cells, ElementsAre("CORN", "120", "0", "0", "0", "", "Yes"));
  EXPECT_THAT(Captions(RecipeReport(Recipe("P"), ingredients, Facts())),
              ElementsAre("Ingredient", "Ingredient (%)", "Dry Matter (%)", "Target (kg)",
                          "Batch Target", "Hand-Add"));
}

TEST(Reports, ARecipeShowsItsColumnsInTheOrderAsked) {
  const Report report =
      RecipeReport(Recipe("W"), {kColumnHandAdd, kColumnIngredient, kColumnTarget},
                   {{.id = 1, .name = "CORN"}}, Facts());
  EXPECT_THAT(Captions(report), ElementsAre("Hand-Add", "Ingredient", "Dry Matter (kg)"));
  EXPECT_THAT(report.rows->Row(1).cells, ElementsAre("Yes", "CORN", "120"));
}

// The grid aligns all columns except the names to the right.
TEST(Reports, ARecipeAlignsItsColumnsAsItsGrid) {
  for (const ReportColumn& column : RecipeReport(Recipe("W"), {}, Facts()).design.columns) {
    EXPECT_EQ(column.right_aligned, column.caption != "Ingredient") << column.caption;
  }
}

TEST(Reports, ALineOfAnIngredientThatIsNotListedHasNoName) {
  const Report report = RecipeReport(Recipe("W"), {}, Facts());
  EXPECT_EQ(report.rows->Row(2).cells.at(0), "");
  EXPECT_EQ(report.rows->Row(2).cells.at(1), "80");
}

TEST(Reports, HaveGridLinesByTheirSettingUnderBlackCaptions) {
  for (const bool lines : {true, false}) {
    const ReportFacts facts{.grid_lines = lines};
    for (const Report& report : {IngredientReport({}, true, facts), PenReport({}, true, facts),
                                 RecipeReport(Recipe("W"), {}, facts)}) {
      EXPECT_EQ(report.design.grid_lines, lines);
      EXPECT_TRUE(report.design.captions);
      EXPECT_EQ(report.design.caption_color, 0U);
    }
  }
}

TEST(Reports, ARecipeToPrintComesWithItsLinesAndTotals) {
  const TempFolder folder;
  SQLite::Database recipes = SmallRecipes(folder);
  WriteRecipe(recipes, {.id = 4, .name = "STEERS", .description = "Steers", .batch_type = "W"});
  RecipeLineRecord line{.recipe_id = "4", .ingredient = "1", .target = "120", .hand_add = true};
  WriteRecipeLine(recipes, line);
  const CurrentRecipe recipe = ReadRecipeToPrint(recipes, 4);
  EXPECT_EQ(recipe.ration.recipe.name, "STEERS");
  EXPECT_EQ(recipe.ration.lines.size(), 1U);
  EXPECT_EQ(recipe.totals.hand_add, "1");
}

class HistoryReports : public ::testing::Test {
 protected:
  void SetUp(int group, bool open) {
    grid_.SetUp(*FindDataGroup(group), "");
    grid_.ApplyExpandState(open);
  }
  std::vector<std::string> Lines() {
    const auto pdf = folder_ / "history.pdf";
    const Report report = HistoryReport(grid_, true, Facts());
    const auto paper = MakePdfFile(pdf, "test");
    PrintOn(*paper, [&](ReportJob& job) { return job.Print(report); });
    auto pages = LinesOf(pdf);
    std::vector<std::string> lines = pages.at(0);
    lines.erase(lines.begin(), lines.begin() + 3);  // the header
    lines.pop_back();
    return lines;
  }

  TempFolder folder_;
  SQLite::Database database_ = SmallHistory(folder_);
  HistoryGrid grid_{database_};
};

TEST_F(HistoryReports, PrintGroupsAsTheyAreOpenWithTheirTotals) {
  SetUp(8, true);
  EXPECT_THAT(Lines(), ElementsAre("Transaction Recipe Feed Wt Target Wt User ID Time Date",
                                   "Pen:A01", "1 STEERS 810.5 800 2 02:05 PM 15-Mar-11",
                                   "2 HEIFER 495.25 500 09:30 AM 15-Mar-11", "Total: 1305.75 1300",
                                   "Pen:A02", "1 STEERS 780 800 2 02:20 PM 15-Mar-11",
                                   "3 STEERS 0 300 10 10:00 AM 15-Mar-11", "Total: 780 1100"));
}

TEST_F(HistoryReports, PrintAClosedGroupAsOneRowAndNoCaptionsWithoutARecord) {
  SetUp(8, false);
  EXPECT_THAT(Lines(), ElementsAre("Pen:A01", "Pen:A02"));
  grid_.OpenGroup(2);
  EXPECT_THAT(Lines(), ElementsAre("Transaction Recipe Feed Wt Target Wt User ID Time Date",
                                   "Pen:A01", "Pen:A02", "1 STEERS 780 800 2 02:20 PM 15-Mar-11",
                                   "3 STEERS 0 300 10 10:00 AM 15-Mar-11", "Total: 780 1100"));
}

TEST_F(HistoryReports, HaveRowsOfFixedPitchInTheColorsOfTheGrid) {
  SetUp(3, true);
  const Report report = HistoryReport(grid_, true, {.grid_lines = false});
  EXPECT_TRUE(report.design.fixed_pitch);
  EXPECT_EQ(report.design.caption_color, 0x0000C0U);
  EXPECT_EQ(report.design.group_color, 0x0000C0U);
  EXPECT_TRUE(report.design.fit_columns);
  EXPECT_FALSE(report.design.grid_lines);
  EXPECT_TRUE(HistoryReport(grid_, true, {.grid_lines = true}).design.grid_lines);
  EXPECT_THAT(RightAligned(report), ElementsAre("Batch Wt", "Feed Wt", "Target Wt"));
  EXPECT_EQ(report.design.texts.header_center,
            "Report: Recipes (all)\r\nTransaction File: \r\nRecipe File: ");
}

TEST_F(HistoryReports, NameTheirPeriodAndPrintItsRecords) {
  const std::optional<Date> day = ParseStoredDate("2011-03-14");
  grid_.ShowPeriod({.from = day, .to = day});
  SetUp(6, false);
  EXPECT_EQ(HistoryReport(grid_, true, Facts()).rows->Count(), 2);
  const auto pages = [&] {
    const auto pdf = folder_ / "period.pdf";
    const Report report = HistoryReport(grid_, true, Facts());
    const auto paper = MakePdfFile(pdf, "test");
    PrintOn(*paper, [&](ReportJob& job) { return job.Print(report); });
    return LinesOf(pdf);
  }();
  EXPECT_THAT(pages.at(0), Contains("Period: 14-Mar-11"));
}

TEST_F(HistoryReports, PrintDifferencesBoldBeyondTheToleranceOnly) {
  SetUp(8, true);
  grid_.ShowDifferences(true);
  EXPECT_THAT(Lines(), Contains("3 STEERS 0 -300 -100.0 300 10 10:00 AM 15-Mar-11"));
  EXPECT_THAT(Lines(), Contains("Total: 1305.75 +5.75 +0.4 1300"));
  const Report report = HistoryReport(grid_, true, Facts());
  const auto bold = [&](std::int64_t row, std::size_t column) {
    return report.rows->Row(row).bold.at(column);
  };
  constexpr std::size_t kFeed = 2;
  EXPECT_EQ(bold(2, kFeed), std::nullopt);
  EXPECT_EQ(bold(2, kFeed + 1), false);
  EXPECT_EQ(bold(4, kFeed + 2), false) << "a total";
  EXPECT_EQ(bold(7, kFeed + 1), true);
  EXPECT_EQ(bold(7, kFeed + 2), true);
  EXPECT_EQ(bold(8, kFeed + 2), true) << "a total";
}

TEST_F(HistoryReports, GiveEachRowItsKindAndLevel) {
  SetUp(3, false);
  grid_.OpenGroup(3);  // STEERS
  grid_.OpenGroup(5);  // its FEED
  const Report report = HistoryReport(grid_, true, Facts());
  std::vector<std::string> rows;
  for (std::int64_t row = 1; row <= report.rows->Count(); ++row) {
    const ReportRow printed = report.rows->Row(row);
    const std::string kind = printed.kind == ReportRowKind::kGroup   ? "group "
                             : printed.kind == ReportRowKind::kTotal ? "total "
                                                                     : "record ";
    rows.push_back(kind + std::to_string(printed.level) + " " + printed.caption +
                   (report.rows->IsHead(row) ? ", head" : ""));
  }
  EXPECT_THAT(rows,
              ElementsAre("group 1 Recipe:", "group 1 Recipe:HEIFER", "group 1 Recipe:STEERS, head",
                          "group 2 BATCH", "group 2 FEED, head", "record 3 ", "record 3 ",
                          "record 3 ", "total 2 ", "total 1 "));
}

TEST_F(HistoryReports, DistinguishTotalsByTheirColors) {
  SetUp(1, true);
  const Report report = HistoryReport(grid_, false, Facts());
  std::map<std::string, std::uint32_t> colors;
  for (const ReportColumn& column : report.design.columns) {
    if (column.total_color) {
      colors[column.caption] = *column.total_color;
    }
  }
  EXPECT_THAT(colors, ElementsAre(std::pair("Batch Wt", 0x0000FF), std::pair("Feed Wt", 0xFF0000),
                                  std::pair("Target Wt", 0x008000)));
  EXPECT_FALSE(report.design.fit_columns);
}

}  // namespace
}  // namespace vrx::testing
