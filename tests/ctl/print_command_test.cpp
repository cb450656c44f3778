#include <QGuiApplication>
#include <array>
#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

#include "ctl/ctl_fixture.h"
#include "support/printed_pages.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;
using ::testing::StartsWith;

// A stored day of the sample site, and the reports on it as the text of their pages.
class PrintCommandTest : public CtlTest {
 protected:
  static void SetUpTestSuite() {
    static int argument_count = 1;
    static std::string name = "ctl_test";
    static std::array<char*, 2> arguments{name.data(), nullptr};
    qputenv("QT_QPA_PLATFORM", "offscreen");
    application_ = std::make_unique<QGuiApplication>(argument_count, arguments.data());
  }
  static void TearDownTestSuite() { application_.reset(); }

  PrintCommandTest() {
    start_drawing = [this] { ++drawings_started; };
    fs::copy_file(SitePath("SITE.RDB"), recipes);
    EXPECT_EQ(Run({"store", SitePath("day05.qxt"), "--into", database, "--recipes", recipes}), 0)
        << err;
  }

  int Print(std::vector<std::string> what) {
    what.insert(what.begin(), "print");
    what.insert(what.end(), {"--pdf", pdf.string()});
    return Run(what);
  }
  std::vector<std::string> PrintedPage(const std::vector<std::string>& what, std::size_t page = 0) {
    EXPECT_EQ(Print(what), 0) << err;
    EXPECT_THAT(out + err, IsEmpty());
    return LinesOf(pdf).at(page);
  }
  std::string database = NewTransactionDatabase();
  std::string recipes = (folder / "SITE.RDB").string();
  fs::path pdf = folder / "report.pdf";
  int drawings_started = 0;

 private:
  static inline std::unique_ptr<QGuiApplication> application_;
};

TEST_F(PrintCommandTest, PrintsADataGroupWithItsFilesUnitAndDate) {
  const auto page = PrintedPage({database, "--group", "8", "--recipes", recipes});
  EXPECT_EQ(page[0], "Report: Pens Fed (all) Weight Units: LB");
  EXPECT_EQ(page[1], "Transaction File: " + database);
  EXPECT_EQ(page[2], "Recipe File: " + recipes);
  EXPECT_THAT(page, Contains("1 STARTR 625 610 1 06:00 AM 05-Jan-26"));
  EXPECT_THAT(page.back(), StartsWith("1/5/2026 Page 1 of "));
  EXPECT_EQ(drawings_started, 1);
}

TEST_F(PrintCommandTest, PrintsAGroupCollapsedAndWithoutRecipes) {
  const auto page = PrintedPage({database, "--group", "3", "--collapsed"});
  EXPECT_EQ(page[0], "Report: Recipes (all) Weight Units:");
  EXPECT_EQ(page[2], "Recipe File:");
  EXPECT_EQ(page[3], "Recipe:FINHOT");
  EXPECT_EQ(page[4], "Recipe:FINISH");
}

TEST_F(PrintCommandTest, FitsAllColumnsOnlyIfRequestedAndAsksIfTheyAreTooMany) {
  std::vector<std::string> wide{database, "--group", "0", "--recipes", recipes};
  PrintedPage(wide);
  wide.emplace_back("--fit");
  EXPECT_EQ(Print(wide), 1);
  EXPECT_THAT(err, StartsWith("Print: All columns fit on one page only in letters of 4.0 points"));
}

TEST_F(PrintCommandTest, PrintsTheRecordsInUseOrAll) {
  struct Case {
    const char* plural;
    std::string title;
    const char* in_use;
    const char* out_of_use;
  };
  for (const Case& each :
       {Case{"pens", "Pens", "40 H04 Dry cows 4 900", "41 PEN041 0"},
        {"ingredients", "Ingredients", "13 MINRAL Mineral premix 0 Yes", "15 ING015 100 No"}}) {
    const auto active = PrintedPage({each.plural, recipes});
    EXPECT_THAT(active[0], StartsWith("Report: " + each.title + " (active)"));
    EXPECT_EQ(active[1], "Recipe File: " + recipes);
    EXPECT_THAT(active, Contains(each.in_use));
    EXPECT_THAT(active, Not(Contains(each.out_of_use)));
    const auto all = PrintedPage({each.plural, recipes, "--all"});
    EXPECT_THAT(all[0], StartsWith("Report: " + each.title + " (all)"));
    EXPECT_THAT(all, Contains(each.out_of_use));
  }
}

TEST_F(PrintCommandTest, PrintsEachRecipeWithLinesOnASheet) {
  AddLine(recipes, {.recipe_id = "90", .ingredient = "1", .target = "100", .sequence = 1});
  const auto page = PrintedPage({"recipes", recipes});
  EXPECT_EQ(page[0], "Report: Recipe (STARTR) Weight Units: LB");
  EXPECT_THAT(page, Contains("CORN 35.00 82 4268 2825 No"));
  EXPECT_THAT(LinesOf(pdf), SizeIs(9));
  PrintedPage({"recipes", recipes, "--all"});
  EXPECT_THAT(LinesOf(pdf), SizeIs(10));
}

TEST_F(PrintCommandTest, ReportsThatThereIsNothingToPrint) {
  const std::string empty = NewRecipeDatabase("EMPTY.RDB");
  const std::string no_rows = NewTransactionDatabase("EMPTY.TDB");
  for (const auto& [what, text] : std::vector<std::pair<std::vector<std::string>, std::string>>{
           {{no_rows, "--group", "3"}, "There is no transaction data to be printed."},
           {{"ingredients", empty}, "There is no ingredient data to be printed."},
           {{"pens", empty}, "There is no pen data to be printed."},
           {{"recipes", empty}, "There are no recipe entries to be printed."}}) {
    EXPECT_EQ(Print(what), 1);
    EXPECT_EQ(err, "Print Error: " + text + "\n");
  }
  EXPECT_FALSE(fs::exists(pdf));
}

TEST_F(PrintCommandTest, NeverPrintsOverADatabase) {
  for (const std::string& kept : {recipes, database}) {
    pdf = kept;
    const std::string before = ReadAll(kept);
    for (const std::vector<std::string>& what :
         {std::vector<std::string>{database, "--group", "0", "--recipes", recipes},
          {"pens", recipes}}) {
      EXPECT_EQ(Print(what), 1);
      EXPECT_EQ(err, "Print Error: " + kept +
                         " is a database and is not replaced. Choose another name.\n");
      EXPECT_TRUE(ReadAll(kept) == before);
    }
  }
}

TEST_F(PrintCommandTest, ReportsAFolderThatIsMissing) {
  pdf = folder / "none/report.pdf";
  EXPECT_EQ(Print({"pens", recipes}), 1);
  EXPECT_EQ(err, "Print Error: The report could not be printed.\ncause: cannot write " +
                     pdf.string() + ": No such file or directory\n");
}

TEST_F(PrintCommandTest, PrintsMoreThanFiftySheetsOnlyWithAYes) {
  OpenDatabase(database, Access::kWrite)
      .exec(
          "WITH RECURSIVE Copy (n) AS (SELECT 1 UNION ALL SELECT n + 1 FROM Copy WHERE n < 3000) "
          "INSERT INTO Transactions ([Transaction], Recipe, Type) SELECT n, 'A', 'FEED' FROM Copy");
  EXPECT_EQ(Print({database, "--group", "0"}), 1);
  EXPECT_THAT(err, HasSubstr("Do you want to print all of them?\nanswered with No"));
  EXPECT_FALSE(fs::exists(pdf));
}

TEST_F(PrintCommandTest, ShowsItsProgressOnATerminalOnly) {
  err_is_terminal = true;
  EXPECT_EQ(Print({"recipes", recipes}), 0);
  EXPECT_THAT(err, HasSubstr("Printing  100%"));
  EXPECT_EQ(Screen(), "");
}

TEST_F(PrintCommandTest, RefusesAWrongUsage) {
  for (const std::vector<std::string>& what : {std::vector<std::string>{},
                                               {database},
                                               {"--group", "0"},
                                               {"cows", recipes},
                                               {"pens"},
                                               {database, "--group", "13"},
                                               {database, "--group", "0", "--name", "A"}}) {
    EXPECT_EQ(Print(what), 2);
  }
  for (const std::vector<std::string>& option : {std::vector<std::string>{"--group", "0"},
                                                 {"--name", "A"},
                                                 {"--recipes", recipes},
                                                 {"--collapsed"},
                                                 {"--fit"}}) {
    std::vector<std::string> what{"pens", recipes};
    what.insert(what.end(), option.begin(), option.end());
    EXPECT_EQ(Print(what), 2);
    EXPECT_THAT(err, StartsWith(option[0] + ": goes with a data group only\n"));
  }
  EXPECT_EQ(Run({"print", "pens", recipes}), 2);
  EXPECT_EQ(drawings_started, 0);
  EXPECT_FALSE(fs::exists(pdf));
}

}  // namespace
}  // namespace vrx::testing
