#include "desktop/print/print_commands.h"

#include <QHeaderView>
#include <QTableView>
#include <filesystem>

#include <gmock/gmock.h>

#include "desktop/print/print_fixture.h"
#include "feed/recipe_columns.h"
#include "history/data_group.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;

using ::testing::AllOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;
using ::testing::StartsWith;

// A batch of two ingredients that feeds pen 12: three rows.
constexpr const char* kFile =
    "{BAT/FED},L\r\n"
    "[BAT],B,1,3,01152009,2,4,7,0,0,0;0830,0835,0,0,0;1000.0,500.0,0,0,0;998.0,503.5,0,0,0\r\n"
    "\r\n"
    "[FED],B,1,12,2,0915,01152009,750.0,748.5\r\n"
    "\r\n";

class PrintOfATab : public PrintFixture {};

// The lists of records.

TEST_F(PrintOfATab, IngredientsPrintTheRowsOfTheirGridWithTheTitleOfTheBox) {
  ShowTab();
  GoToTab(kTabIngredients);
  auto& active_only = Find<QAbstractButton>(u"chkShowActiveIngsOnly"_qs);
  active_only.setChecked(true);
  EXPECT_THAT(Print(), ElementsAre(ElementsAre(
                           "Report: Ingredients (active)", "Recipe File: " + Recipes().string(),
                           "ID Name Description Dry Matter (%) Hand-Add", "1 CORN Corn 100 No",
                           "2 hAY Hay 100 No", "1/5/2026 Page 1 of 1")));
  active_only.setChecked(false);
  const Pages all = Print();
  EXPECT_THAT(all, SizeIs(::testing::Gt(1U)));
  EXPECT_EQ(all.front().front(), "Report: Ingredients (all)");
  EXPECT_THAT(all.back().at(all.back().size() - 2), StartsWith("100 ING100"));
  EXPECT_THAT(operator_.boxes, IsEmpty());
}

TEST_F(PrintOfATab, ALineNamesTheFileThatOpenShows) {
  ShowTab();
  Print();
  EXPECT_EQ(Find<QLabel>(u"lblResult"_qs).text(),
            u"Printed to %1"_qs.arg(QString::fromStdString(pdf_.filename().string())));
  QString opened;
  QObject::connect(&Window().Panels().PicResult(), &ResultPanel::OpenRequested,
                   [&](const QString& path) { opened = path; });
  QTest::mouseClick(&Find<QPushButton>(u"cmdResultOpen"_qs), Qt::LeftButton);
  EXPECT_EQ(opened.toStdString(), pdf_.string());
}

TEST_F(PrintOfATab, PensPrintTheRowsOfTheirGrid) {
  ShowTab();
  GoToTab(kTabPens);
  Find<QAbstractButton>(u"chkShowActivePensOnly"_qs).setChecked(true);
  EXPECT_THAT(Print(),
              ElementsAre(ElementsAre("Report: Pens (active) Weight Units: LB",
                                      "Recipe File: " + Recipes().string(),
                                      "ID Name Description Feed Amount (lb)", "1 A01 North 0",
                                      "2 A02 South 0", "3 PEN003 120", "1/5/2026 Page 1 of 1")));
}

TEST_F(PrintOfATab, TheCommandLineToolPrintsTheSamePages) {
  AddRecipe(1, "W", 2);
  AddRecipe(4, "P", 1);
  ShowTab();
  GoToTab(kTabIngredients);
  Find<QAbstractButton>(u"chkShowActiveIngsOnly"_qs).setChecked(true);
  EXPECT_EQ(WithoutDate(Print()), Specified({"ingredients", Recipes().string()}));
  GoToTab(kTabPens);
  Find<QAbstractButton>(u"chkShowActivePensOnly"_qs).setChecked(false);
  EXPECT_EQ(WithoutDate(Print()), Specified({"pens", Recipes().string(), "--all"}));
  settings_.SetPrintCurrentRecipeOnlyOn(false);
  operator_.answers = {Answer::kYes};
  EXPECT_EQ(WithoutDate(PrintTab(kTabRecipes)), Specified({"recipes", Recipes().string()}));
}

// Recipes.

TEST_F(PrintOfATab, TheRecipeShownPrintsWithItsTotals) {
  AddRecipe(1, "W", 2);
  settings_.SetPrintCurrentRecipeOnlyOn(true);
  ShowTab();
  const Pages pages = PrintTab(kTabRecipes);
  EXPECT_THAT(
      pages,
      ElementsAre(ElementsAre(
          "Report: Recipe (HEIFER) Weight Units: LB", "Description: Heifers Batch By: WEIGHT, Std",
          "Recipe File: " + Recipes().string(), "Totals:", "Dry Matter (lb) = 300",
          "Ration (%) DM = 100.000", "Dry Matter (%) = 50.0", "Target (lb) = 600",
          "Batch Target = 0", "Hand-Add = 0", "Dry Matter Ration (%) Dry Matter Target Batch",
          "Ingredient (lb) DM (%) (lb) Target Hand-Add", "CORN 100 33.333 50 200 0 No",
          "hAY 200 66.667 50 400 0 No", "1/5/2026 Page 1 of 1")));
}

TEST_F(PrintOfATab, ARecipePrintsItsColumnsAsTheyWereMoved) {
  AddRecipe(1, "W", 2);
  settings_.SetPrintCurrentRecipeOnlyOn(true);
  ShowTab();
  GoToTab(kTabRecipes);
  QHeaderView& header = *Find<QTableView>(u"grdREC"_qs).horizontalHeader();
  header.moveSection(header.visualIndex(kColumnHandAdd), 1);
  header.moveSection(header.visualIndex(kColumnBatchTarget), 0);
  const Pages pages = Print();
  ASSERT_THAT(pages, SizeIs(1));
  EXPECT_THAT(pages[0], Contains("0 CORN No 100 33.333 50 200"));
}

TEST_F(PrintOfATab, ARecipeWithoutTypePrintsTotalsAndNothingBelow) {
  AddRecipe(1, "!", 1);
  settings_.SetPrintCurrentRecipeOnlyOn(true);
  ShowTab();
  const Pages pages = PrintTab(kTabRecipes);
  ASSERT_THAT(pages, SizeIs(1));
  EXPECT_THAT(pages[0], Contains("Totals:"));
  EXPECT_THAT(pages[0], Not(Contains(HasSubstr(" = "))));
}

// The history.

class PrintOfGroup : public PrintFixture, public ::testing::WithParamInterface<int> {};

TEST_P(PrintOfGroup, IsThatOfTheCommandLineTool) {
  const DataGroup& group = *FindDataGroup(GetParam());
  ShowTab();
  std::vector<std::string> words{Transactions().string(), "--group", std::to_string(group.index),
                                 "--recipes", Recipes().string()};
  if (GetParam() != 0) {
    ChooseGroup(GetParam());
  }
  if (!group.named_column.empty()) {
    const std::string name = group.named_column == "Recipe"       ? "STEERS"
                             : group.named_column == "Ingredient" ? "CORN"
                                                                  : "A02";
    PickName(QString::fromStdString(name));
    words.insert(words.end(), {"--name", name});
  }
  const Pages open_pages = [&] {
    ExpandAll(true);
    return WithoutDate(Print());
  }();
  EXPECT_EQ(open_pages.at(0).at(0), "Report: " + std::string(group.item) + " Weight Units: LB");
  EXPECT_EQ(open_pages, Specified(words));
  ExpandAll(false);
  Click(u"chkBatFitPage"_qs);
  words.insert(words.end(), {"--collapsed", "--fit"});
  EXPECT_EQ(WithoutDate(Print()), Specified(words));
}

// The order of the columns of group 10 is the one that the group before has left.
INSTANTIATE_TEST_SUITE_P(OfEveryGroup, PrintOfGroup,
                         ::testing::Values(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 11, 12));

TEST_F(PrintOfATab, GroupTenPrintsItsColumnsInTheOrderShown) {
  ShowTab();
  ChooseGroup(9);
  ChooseGroup(10);
  ExpandAll(true);
  EXPECT_EQ(Print().at(0).at(3), "Pen Recipe Target Wt Feed Wt CORN HAY");
  ChooseGroup(3);
  ChooseGroup(10);
  EXPECT_EQ(Print().at(0).at(3), "Pen Recipe Feed Wt Target Wt CORN HAY");
}

TEST_F(PrintOfATab, AClosedGroupPrintsAsOneRow) {
  ShowTab();
  ChooseGroup(8);
  ClickMark(1);
  const Pages pages = Print();
  ASSERT_THAT(pages, SizeIs(1));
  EXPECT_THAT(pages[0], ElementsAre("Report: Pens Fed (all) Weight Units: LB",
                                    "Transaction File: " + Transactions().string(),
                                    "Recipe File: " + Recipes().string(),
                                    "Transaction Recipe Feed Wt Target Wt User ID Time Date",
                                    "Pen:A01", "Pen:A02", "1 STEERS 780 800 2 02:20 PM 15-Mar-11",
                                    "3 STEERS 0 300 10 10:00 AM 15-Mar-11", "Total: 780 1100",
                                    "1/5/2026 Page 1 of 1"));
}

TEST_F(PrintOfATab, WithoutFitAWideGroupGoesOverSeveralPages) {
  {
    SQLite::Database database = OpenDatabase(Recipes(), Access::kWrite);
    for (int id = 3; id <= 7; ++id) {
      WriteIngredient(database,
                      {.id = id, .name = "FEED" + std::to_string(id), .description = "x"});
    }
  }
  ShowTab();
  const Pages wide = Print();
  EXPECT_THAT(wide, SizeIs(::testing::Gt(1U)));
  EXPECT_THAT(wide.back().back(), HasSubstr(" of " + std::to_string(wide.size())));
  Click(u"chkBatFitPage"_qs);
  EXPECT_THAT(Print(), SizeIs(1));
}

TEST_F(PrintOfATab, AMovedColumnIsPrintedAtItsPosition) {
  ShowTab();
  ChooseGroup(8);
  ExpandAll(true);
  Header().moveSection(Header().visualIndex(HistoryColumnOfKey("Date") - 1), 0);
  EXPECT_EQ(Print().at(0).at(3), "Date Transaction Recipe Feed Wt Target Wt User ID Time");
}

// The import.

TEST_F(PrintOfATab, TheImportShowsItsFileAndUnit) {
  ShowTab();
  const fs::path file = folder_.Write("day.qxt", kFile);
  chooser_.Choose(file);
  Choose(u"mnuFileImportTransactionFile"_qs);
  operator_.boxes.clear();
  Find<QAbstractButton>(u"chkImpFitPage"_qs).setChecked(true);
  operator_.answers = {Answer::kOk};  // A column for each ingredient is too much for one page.
  const Pages pages = Print();
  ASSERT_THAT(pages, SizeIs(::testing::Gt(1U)));
  EXPECT_EQ(pages[0].at(0), "Report: Imported Transactions Weight Units: LB");
  EXPECT_EQ(pages[0].at(1), "File: " + file.string());
  EXPECT_THAT(pages[0].back(), HasSubstr("Page 1 of "));
  EXPECT_THAT(pages[0], Contains(AllOf(HasSubstr("748.5"), HasSubstr("750"))));
}

}  // namespace
}  // namespace vrx::testing
