#include <QAbstractButton>
#include <QImage>
#include <filesystem>

#include <gmock/gmock.h>

#include "desktop/print/print_fixture.h"
#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class PrintQuestionsOfTheWindow : public PrintFixture {};

// A file of that many pages on every sheet of the group.
TEST_F(PrintQuestionsOfTheWindow, AReportOfManySheetsIsPrintedAfterAQuestionOnly) {
  Alter(Transactions(),
        "WITH RECURSIVE Copy (n) AS (SELECT 1 UNION ALL SELECT n + 1 FROM Copy WHERE n < 3000) "
        "INSERT INTO Transactions ([Transaction], Recipe, Type, Target) "
        "SELECT n, 'STEERS', 'FEED', 100 FROM Copy");
  ShowTab();
  operator_.answers = {Answer::kNo};
  EXPECT_THAT(Print(), IsEmpty());
  ASSERT_THAT(operator_.boxes, SizeIs(1));
  const std::string asked = LastBox().text;
  EXPECT_FALSE(operator_.busy);
  operator_.answers = {Answer::kYes};
  EXPECT_EQ(asked, "The report takes " + std::to_string(Print().size()) +
                       " sheets.\r\nDo you want to print all of them?");
}

TEST_F(PrintQuestionsOfTheWindow, AnUnreadableFitIsOfferedOnPagesSideBySide) {
  {
    SQLite::Database database = OpenDatabase(Recipes(), Access::kWrite);
    for (int id = 3; id <= 90; ++id) {
      WriteIngredient(database,
                      {.id = id, .name = "FEED" + std::to_string(id), .description = "x"});
    }
  }
  ShowTab();
  const Pages wide = Print();
  ASSERT_THAT(operator_.boxes, IsEmpty());
  Click(u"chkBatFitPage"_qs);
  operator_.answers = {Answer::kCancel};
  EXPECT_THAT(Print(), IsEmpty());
  EXPECT_THAT(LastBox().text, HasSubstr("too small to read"));
  operator_.answers = {Answer::kOk};
  EXPECT_EQ(Print(), wide);
  EXPECT_TRUE(Find<QAbstractButton>(u"chkBatFitPage"_qs).isChecked());
}

TEST_F(PrintQuestionsOfTheWindow, ARecipeShownWithoutLinesIsRefused) {
  settings_.SetPrintCurrentRecipeOnlyOn(true);
  ShowTab();
  GoToTab(kTabRecipes);
  Choose(u"mnuFilePrint"_qs);
  ExpectRefused("There is no recipe data to be printed.");
}

TEST_F(PrintQuestionsOfTheWindow, AnEmptyGroupIsRefused) {
  ShowTab();
  ChooseGroup(9);
  Choose(u"mnuFilePrint"_qs);
  ExpectRefused("There is no transaction data to be printed.");
}

// Where it goes.

TEST_F(PrintQuestionsOfTheWindow, OnTheTransferTabNothingIsPrintedOrShown) {
  ShowTab();
  GoToTab(kTabDataTransfer);
  EXPECT_FALSE(On(u"mnuFilePrint"_qs));
  const QImage before = Grid().grab().toImage();
  Item(u"mnuFilePrint"_qs).setEnabled(true);  // by any means
  const auto dialogs = chooser_.dialogs.size();
  Choose(u"mnuFilePrint"_qs);
  EXPECT_THAT(operator_.boxes, IsEmpty());
  EXPECT_EQ(chooser_.dialogs.size(), dialogs);
  EXPECT_EQ(Grid().grab().toImage(), before);
}

TEST_F(PrintQuestionsOfTheWindow, TheColorsOfTheScreenAreTheSameAfterAPrintAndARefusedOne) {
  ShowTab();
  ChooseGroup(8);
  ExpandAll(true);
  const QImage before = Grid().grab().toImage();
  EXPECT_THAT(Print(), SizeIs(1));
  EXPECT_EQ(Grid().grab().toImage(), before);
  pdf_ = folder_ / "none" / "report.pdf";
  EXPECT_THAT(Print(), IsEmpty());
  EXPECT_EQ(Grid().grab().toImage(), before);
}

TEST_F(PrintQuestionsOfTheWindow, PaperIsWhiteAndHasLinesByTheSetting) {
  ShowTab();
  ChooseGroup(8);
  settings_.SetPrintGridLinesOn(false);
  Print();
  const int without = RuledLinesOf(pdf_);
  settings_.SetPrintGridLinesOn(true);
  Print();
  EXPECT_GT(RuledLinesOf(pdf_), without);
}

TEST_F(PrintQuestionsOfTheWindow, WithoutAPrinterTheOperatorIsShownWhatToDo) {
  ShowTab();
  Choose(u"mnuFilePrint"_qs);
  ExpectRefused("There is no printer. Choose a printer or a PDF file under File, Print Setup.");
}

TEST_F(PrintQuestionsOfTheWindow, ACancelOfTheFileOrOfPrintSetupPrintsNothing) {
  ShowTab();
  InPrintSetup([](QWidget& dialog) {
    EXPECT_EQ(dialog.windowTitle(), u"Print Setup"_qs);
    Press(dialog, QDialogButtonBox::Cancel);
  });
  Choose(u"mnuFilePrint"_qs);
  ExpectRefused("There is no printer. Choose a printer or a PDF file under File, Print Setup.");
  ChoosePdf();
  chooser_.Cancel();
  Choose(u"mnuFilePrint"_qs);
  EXPECT_THAT(operator_.boxes, IsEmpty());
  EXPECT_FALSE(operator_.busy);
}

TEST_F(PrintQuestionsOfTheWindow, ADatabaseIsNotReplacedOpenOrNot) {
  ShowTab();
  const fs::path other = folder_ / "report.pdf";
  fs::copy_file(Recipes(), other);
  ChoosePdf();
  for (const fs::path& database : {Transactions(), Recipes(), other}) {
    const std::string before = ReadAll(database);
    chooser_.Choose(database);
    Choose(u"mnuFilePrint"_qs);
    ExpectRefused(database.string() + " is a database and is not replaced. Choose another name.");
    EXPECT_EQ(ReadAll(database), before);
  }
}

TEST_F(PrintQuestionsOfTheWindow, AFileThatCannotBeCreatedIsReportedWithItsCause) {
  ShowTab();
  pdf_ = folder_ / "none" / "report.pdf";
  EXPECT_THAT(Print(), IsEmpty());
  ASSERT_THAT(operator_.boxes, SizeIs(1));
  EXPECT_THAT(LastBox().cause, HasSubstr(pdf_.string()));
  ExpectRefused("The report could not be printed.", Icon::kCritical);
}

}  // namespace
}  // namespace vrx::testing
