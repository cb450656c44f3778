#include "desktop/print/print_commands.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QEvent>
#include <QImage>
#include <QPushButton>
#include <QTableView>
#include <QTest>
#include <functional>

#include <gmock/gmock.h>

#include "database/records.h"
#include "desktop/history/history_fixture.h"
#include "desktop/next_modal.h"
#include "feed/recipe_columns.h"
#include "history/data_group.h"
#include "report/print_questions.h"
#include "support/printed_pages.h"
#include "support/program.h"

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

using Pages = std::vector<std::vector<std::string>>;

// A batch of two ingredients that feeds pen 12: three rows.
constexpr const char* kFile =
    "{BAT/FED},L\r\n"
    "[BAT],B,1,3,01152009,2,4,7,0,0,0;0830,0835,0,0,0;1000.0,500.0,0,0,0;998.0,503.5,0,0,0\r\n"
    "\r\n"
    "[FED],B,1,12,2,0915,01152009,750.0,748.5\r\n"
    "\r\n";

class PrintCommandsTest : public HistoryFixture {
 protected:
  // No printer of this machine is seen.
  PrintCommandsTest() { qputenv("CUPS_SERVER", "/nowhere"); }

  // A recipe of that type with so many lines.
  void AddRecipe(int id, const std::string& type, int lines) {
    SQLite::Database database = OpenDatabase(Recipes(), Access::kWrite);
    RecipeRecord recipe = ReadRecipe(database, id);
    recipe.batch_type = type;
    recipe.adjust_batch_index = "20";
    WriteRecipe(database, recipe);
    for (int line = 1; line <= lines; ++line) {
      RecipeLineRecord added{.recipe_id = std::to_string(id),
                             .ingredient = std::to_string(line),
                             .target = std::to_string(line * 100),
                             .ration_percent = "33.333",
                             .dry_matter_percent = "50",
                             .dry_matter = std::to_string(line * 200),
                             .batch_target = std::to_string(line * 210),
                             .sequence = line};
      WriteRecipeLine(database, added);
    }
  }

  void InPrintSetup(const std::function<void(QWidget&)>& act) {
    const NextModal next(act);
    Choose(u"mnuFilePrintSetup"_qs);
    EXPECT_TRUE(next.Seen());
  }
  static void Press(QWidget& dialog, QDialogButtonBox::StandardButton button) {
    QTest::mouseClick(dialog.findChild<QDialogButtonBox*>()->button(button), Qt::LeftButton);
  }
  void ChoosePdf() {
    InPrintSetup([](QWidget& dialog) {
      auto* const printers = dialog.findChild<QComboBox*>(u"lstPrinter"_qs);
      printers->setCurrentIndex(printers->findText(u"PDF file"_qs));
      Press(dialog, QDialogButtonBox::Ok);
    });
  }

  // The pages of the current tab, in a PDF file; none if nothing was printed.
  Pages Print() {
    fs::remove(pdf_);
    ChoosePdf();
    chooser_.Choose(pdf_);
    Choose(u"mnuFilePrint"_qs);
    return fs::exists(pdf_) ? LinesOf(pdf_) : Pages();
  }
  Pages PrintTab(int tab) {
    GoToTab(tab);
    return Print();
  }

  // What the command line tool prints of the same, but for today's date.
  Pages Specified(const std::vector<std::string>& words) {
    const fs::path pdf = folder_ / "told.pdf";
    std::vector<std::string> args{"--data-dir", (folder_ / "ctl").string(), "print"};
    args.insert(args.end(), words.begin(), words.end());
    args.insert(args.end(), {"--pdf", pdf.string()});
    Program program(std::string(VRX_BIN_DIR) + "/vrx2260ctl", args, folder_.Path().string());
    EXPECT_EQ(program.Wait(), 0) << program.Err();
    return WithoutDate(LinesOf(pdf));
  }
  static Pages WithoutDate(Pages pages) {
    for (auto& lines : pages) {
      lines.back() = lines.back().substr(lines.back().find(' '));
    }
    return pages;
  }

  void ExpectRefused(const std::string& text, Icon icon = Icon::kWarning) {
    ASSERT_THAT(operator_.boxes, SizeIs(1)) << text;
    EXPECT_EQ(LastBox().title, "Print Error");
    EXPECT_EQ(LastBox().text, text);
    EXPECT_EQ(LastBox().icon, icon);
    EXPECT_FALSE(operator_.busy);
    operator_.boxes.clear();
  }

  fs::path pdf_ = folder_ / "report.pdf";
};

// The lists of records.

TEST_F(PrintCommandsTest, IngredientsPrintTheRowsOfTheirGridWithTheTitleOfTheBox) {
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

TEST_F(PrintCommandsTest, PensPrintTheRowsOfTheirGrid) {
  ShowTab();
  GoToTab(kTabPens);
  Find<QAbstractButton>(u"chkShowActivePensOnly"_qs).setChecked(true);
  EXPECT_THAT(Print(),
              ElementsAre(ElementsAre("Report: Pens (active) Weight Units: LB",
                                      "Recipe File: " + Recipes().string(),
                                      "ID Name Description Feed Amount (lb)", "1 A01 North 0",
                                      "2 A02 South 0", "3 PEN003 120", "1/5/2026 Page 1 of 1")));
}

TEST_F(PrintCommandsTest, TheCommandLineToolPrintsTheSamePages) {
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

TEST_F(PrintCommandsTest, TheRecipeShownPrintsWithItsTotals) {
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

TEST_F(PrintCommandsTest, ARecipePrintsItsColumnsAsTheyWereMoved) {
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

TEST_F(PrintCommandsTest, ARecipeWithoutTypePrintsTotalsAndNothingBelow) {
  AddRecipe(1, "!", 1);
  settings_.SetPrintCurrentRecipeOnlyOn(true);
  ShowTab();
  const Pages pages = PrintTab(kTabRecipes);
  ASSERT_THAT(pages, SizeIs(1));
  EXPECT_THAT(pages[0], Contains("Totals:"));
  EXPECT_THAT(pages[0], Not(Contains(HasSubstr(" = "))));
}

TEST_F(PrintCommandsTest, ARecipeShownWithoutLinesIsRefused) {
  settings_.SetPrintCurrentRecipeOnlyOn(true);
  ShowTab();
  GoToTab(kTabRecipes);
  Choose(u"mnuFilePrint"_qs);
  ExpectRefused("There is no recipe data to be printed.");
}

class PrintAllRecipes : public PrintCommandsTest {
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

// Looks on whenever the bar of the walk is drawn.
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

// The history.

class PrintOfGroup : public PrintCommandsTest, public ::testing::WithParamInterface<int> {};

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

TEST_F(PrintCommandsTest, GroupTenPrintsItsColumnsInTheOrderShown) {
  ShowTab();
  ChooseGroup(9);
  ChooseGroup(10);
  ExpandAll(true);
  EXPECT_EQ(Print().at(0).at(3), "Pen Recipe Target Wt Feed Wt CORN HAY");
  ChooseGroup(3);
  ChooseGroup(10);
  EXPECT_EQ(Print().at(0).at(3), "Pen Recipe Feed Wt Target Wt CORN HAY");
}

TEST_F(PrintCommandsTest, AClosedGroupPrintsAsOneRow) {
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

TEST_F(PrintCommandsTest, WithoutFitAWideGroupGoesOverSeveralPages) {
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

// A file of that many pages on every sheet of the group.
TEST_F(PrintCommandsTest, AReportOfManySheetsIsPrintedAfterAQuestionOnly) {
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

TEST_F(PrintCommandsTest, AnUnreadableFitIsOfferedOnPagesSideBySide) {
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

TEST_F(PrintCommandsTest, AMovedColumnIsPrintedAtItsPosition) {
  ShowTab();
  ChooseGroup(8);
  ExpandAll(true);
  Header().moveSection(Header().visualIndex(HistoryColumnOfKey("Date") - 1), 0);
  EXPECT_EQ(Print().at(0).at(3), "Date Transaction Recipe Feed Wt Target Wt User ID Time");
}

TEST_F(PrintCommandsTest, AnEmptyGroupIsRefused) {
  ShowTab();
  ChooseGroup(9);
  Choose(u"mnuFilePrint"_qs);
  ExpectRefused("There is no transaction data to be printed.");
}

// The import.

TEST_F(PrintCommandsTest, TheImportShowsItsFileAndUnit) {
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

// Where it goes.

TEST_F(PrintCommandsTest, OnTheTransferTabNothingIsPrintedOrShown) {
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

TEST_F(PrintCommandsTest, TheColorsOfTheScreenAreTheSameAfterAPrintAndARefusedOne) {
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

TEST_F(PrintCommandsTest, PaperIsWhiteAndHasLinesByTheSetting) {
  ShowTab();
  ChooseGroup(8);
  settings_.SetPrintGridLinesOn(false);
  Print();
  const int without = RuledLinesOf(pdf_);
  settings_.SetPrintGridLinesOn(true);
  Print();
  EXPECT_GT(RuledLinesOf(pdf_), without);
}

TEST_F(PrintCommandsTest, WithoutAPrinterTheOperatorIsShownWhatToDo) {
  ShowTab();
  Choose(u"mnuFilePrint"_qs);
  ExpectRefused("There is no printer. Choose a printer or a PDF file under File, Print Setup.");
}

TEST_F(PrintCommandsTest, ACancelOfTheFileOrOfPrintSetupPrintsNothing) {
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

TEST_F(PrintCommandsTest, ADatabaseIsNotReplacedOpenOrNot) {
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

TEST_F(PrintCommandsTest, AFileThatCannotBeCreatedIsReportedWithItsCause) {
  ShowTab();
  pdf_ = folder_ / "none" / "report.pdf";
  EXPECT_THAT(Print(), IsEmpty());
  ASSERT_THAT(operator_.boxes, SizeIs(1));
  EXPECT_THAT(LastBox().cause, HasSubstr(pdf_.string()));
  ExpectRefused("The report could not be printed.", Icon::kCritical);
}

}  // namespace
}  // namespace vrx::testing
