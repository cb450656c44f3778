#include <QAbstractButton>
#include <QEvent>
#include <QHeaderView>
#include <QLineEdit>
#include <QTableView>
#include <functional>
#include <utility>

#include <gmock/gmock.h>

#include "desktop/print/print_fixture.h"
#include "feed/recipe_columns.h"
#include "report/print_questions.h"

namespace vrx::testing {
namespace {

using ::testing::AllOf;
using ::testing::Contains;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;
using ::testing::StartsWith;

class PrintAllRecipes : public PrintFixture {
 protected:
  PrintAllRecipes() { settings_.SetPrintCurrentRecipeOnlyOn(false); }
};

TEST_F(PrintAllRecipes, WithoutAnyLineTheyAreRefused) {
  ShowTab();
  GoToTab(kTabRecipes);
  Choose(u"mnuFilePrint"_qs);
  ExpectRefused("There are no recipe entries to be printed.", Icon::kInformation);
}

TEST_F(PrintAllRecipes, EachWithLinesGetsASheetAfterTheQuestion) {
  AddRecipe(1, "W", 2);
  AddRecipe(4, "P", 1);
  ShowTab();
  operator_.answers = {Answer::kYes};
  const Pages pages = PrintTab(kTabRecipes);
  ASSERT_THAT(operator_.boxes, SizeIs(1));
  EXPECT_EQ(LastBox().title, "Print All Recipes");
  EXPECT_EQ(LastBox().icon, Icon::kQuestion);
  EXPECT_EQ(LastBox().buttons, Buttons::kYesNo);
  EXPECT_EQ(LastBox().text,
            "There are 2 recipes to be printed. \r\nEach recipe will be printed on a separate "
            "sheet of paper. Do you want to continue and print out all recipes?");
  ASSERT_THAT(pages, SizeIs(2));
  EXPECT_THAT(pages[0].front(), StartsWith("Report: Recipe (HEIFER)"));
  EXPECT_THAT(pages[1].front(), StartsWith("Report: Recipe (STEERS)"));
  EXPECT_EQ(pages[1].back(), "1/5/2026 Page 1 of 1");
  EXPECT_FALSE(Visible(u"prgScanPrint"_qs));
  EXPECT_TRUE(Visible(u"grdREC"_qs));
  EXPECT_TRUE(Visible(u"cmdDeleteIng"_qs));
}

TEST_F(PrintAllRecipes, AnAnswerOfNoPrintsNothing) {
  AddRecipe(1, "W", 2);
  AddRecipe(4, "P", 1);
  ShowTab();
  GoToTab(kTabRecipes);
  operator_.answers = {Answer::kNo};
  Choose(u"mnuFilePrint"_qs);
  EXPECT_THAT(chooser_.dialogs.back().title, Not("Print to PDF File"));
  EXPECT_FALSE(Visible(u"prgScanPrint"_qs));
  EXPECT_FALSE(operator_.busy);
}

TEST_F(PrintAllRecipes, MoreThanFiftySheetsAreRefusedByDefault) {
  for (int id = 1; id <= kMostSheetsUnasked + 1; ++id) {
    AddRecipe(id, "W", 1);
  }
  ShowTab();
  GoToTab(kTabRecipes);
  operator_.answers = {Answer::kNo};
  Choose(u"mnuFilePrint"_qs);
  EXPECT_THAT(LastBox().text, StartsWith("There are 51 recipes to be printed."));
  EXPECT_TRUE(LastBox().refuses_by_default);
}

TEST_F(PrintAllRecipes, ByPercentFollowMovedColumnsWhileOneByWeightIsShown) {
  AddRecipe(1, "W", 1);
  AddRecipe(2, "P", 1);
  ShowTab();
  GoToTab(kTabRecipes);
  QHeaderView& header = *Find<QTableView>(u"grdREC"_qs).horizontalHeader();
  header.moveSection(header.visualIndex(kColumnHandAdd), 1);
  operator_.answers = {Answer::kYes};
  const Pages pages = Print();
  ASSERT_THAT(pages, SizeIs(2));
  EXPECT_THAT(pages[0], Contains("CORN No 100 100.000 50 200 0"));
  EXPECT_THAT(pages[1], Contains("CORN 0.00 No 50 200 0"));
}

// If only one recipe is found, the scan prints the last recipe, where it ended.
TEST_F(PrintAllRecipes, ASingleRecipePrintsTheLastPosition) {
  AddRecipe(4, "W", 2);
  ShowTab();
  const Pages pages = PrintTab(kTabRecipes);
  ASSERT_THAT(pages, SizeIs(1));
  EXPECT_THAT(pages[0].front(), StartsWith("Report: Recipe (REC100)"));
  EXPECT_THAT(operator_.boxes, IsEmpty());
}

// Calls back whenever the progress bar is painted.
class WalkWatch : public QObject {
 public:
  explicit WalkWatch(std::function<void()> look) : look_(std::move(look)) {}

  bool eventFilter(QObject* /*watched*/, QEvent* event) override {
    if (event->type() == QEvent::Paint) {
      look_();
    }
    return false;
  }

 private:
  std::function<void()> look_;
};

TEST_F(PrintAllRecipes, TheGridGivesWayToTheWalkAndComesBackWithTheRecipeShown) {
  AddRecipe(1, "W", 2);
  AddRecipe(2, "H", 1);
  ShowTab();
  GoToTab(kTabRecipes);
  Find<QAbstractButton>(u"cmdNavigate(2)"_qs).click();
  const QString before = Find<QLineEdit>(u"txtRecName"_qs).text();
  std::vector<std::string> texts;
  WalkWatch watch([&] {
    EXPECT_FALSE(Visible(u"grdREC"_qs));
    EXPECT_FALSE(Visible(u"cmdDeleteIng"_qs));
    if (texts.empty() || texts.back() != LabelText(u"lblScanPrint"_qs)) {
      texts.push_back(LabelText(u"lblScanPrint"_qs));
    }
  });
  Find<QWidget>(u"prgScanPrint"_qs).installEventFilter(&watch);
  operator_.answers = {Answer::kYes};
  EXPECT_THAT(Print(), SizeIs(2));
  EXPECT_THAT(texts, AllOf(Contains("Scanning database..."), Contains("Printing recipes...")));
  EXPECT_EQ(Find<QLineEdit>(u"txtRecName"_qs).text(), before);
  EXPECT_TRUE(Visible(u"grdREC"_qs));
}

TEST_F(PrintAllRecipes, FiftySheetsAreNotRefusedByDefault) {
  for (int id = 1; id <= kMostSheetsUnasked; ++id) {
    AddRecipe(id, "W", 1);
  }
  ShowTab();
  GoToTab(kTabRecipes);
  operator_.answers = {Answer::kNo};
  Choose(u"mnuFilePrint"_qs);
  EXPECT_THAT(LastBox().text, StartsWith("There are 50 recipes to be printed."));
  EXPECT_FALSE(LastBox().refuses_by_default);
}

}  // namespace
}  // namespace vrx::testing
