#include <QGuiApplication>
#include <algorithm>
#include <array>
#include <filesystem>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "ctl/ctl_fixture.h"
#include "support/html_tables.h"
#include "support/printed_pages.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;
using ::testing::StartsWith;

// Three stored days of the sample site, with a forgotten load and a batch that was half fed.
class ReportCommandTest : public CtlTest {
 protected:
  static void SetUpTestSuite() {
    static int argument_count = 1;
    static std::string name = "ctl_test";
    static std::array<char*, 2> arguments{name.data(), nullptr};
    qputenv("QT_QPA_PLATFORM", "offscreen");
    application_ = std::make_unique<QGuiApplication>(argument_count, arguments.data());
  }
  static void TearDownTestSuite() { application_.reset(); }

  ReportCommandTest() {
    start_drawing = [this] { ++drawings_started; };
    fs::copy_file(SitePath("SITE.RDB"), recipes);
    for (const char* const day : {"day05.qxt", "day06.qxt", "day07.qxt"}) {
      EXPECT_EQ(Run({"store", SitePath(day), "--into", database, "--recipes", recipes}), 0) << err;
    }
    SQLite::Database records = OpenDatabase(database, Access::kWrite);
    records.exec(
        "UPDATE Transactions SET ActualBatch = 0 WHERE rowid = (SELECT min(rowid) FROM "
        "Transactions WHERE Type = 'BATCH' AND [Transaction] = 3);"
        "UPDATE Transactions SET ActualFeed = 500 WHERE Type = 'FEED' AND [Transaction] = 5");
  }

  int Report(std::vector<std::string> options) {
    options.insert(options.begin(), {"report", database});
    return Run(options);
  }

  // The columns of a command's CSV by their keys.
  using Columns = std::map<std::string, HtmlRow>;
  Columns Csv(std::vector<std::string> args) {
    args.insert(args.begin() + 1, database);
    args.insert(args.end(), {"--from", "2026-01-05", "--to", "2026-01-11", "--csv"});
    EXPECT_EQ(Run(args), 0) << err;
    std::istringstream lines(out);
    std::vector<HtmlRow> rows;
    for (std::string line; std::getline(lines, line);) {
      line.erase(line.find_last_not_of('\r') + 1);
      std::istringstream cells(line + ",");
      rows.emplace_back();
      for (std::string cell; std::getline(cells, cell, ',');) {
        rows.back().push_back(cell);
      }
    }
    Columns columns;
    for (std::size_t i = 0; i < rows.at(0).size(); ++i) {
      for (std::size_t row = 1; row < rows.size(); ++row) {
        columns[rows[0][i]].push_back(rows[row].at(i));
      }
    }
    return columns;
  }
  // The texts of a column of the page, without the line of the total.
  static HtmlRow Column(const HtmlTable& table, const std::string& caption) {
    HtmlRow texts = table.Column(caption);
    if (table.rows.back().at(0) == "Total") {
      texts.pop_back();
    }
    return texts;
  }

  std::string database = NewTransactionDatabase();
  std::string recipes = (folder / "SITE.RDB").string();
  fs::path html = folder / "page.html";
  fs::path pdf = folder / "page.pdf";
  int drawings_started = 0;

 private:
  static inline std::unique_ptr<QGuiApplication> application_;
};

TEST_F(ReportCommandTest, PrintsThePageOnTheTerminal) {
  ASSERT_EQ(Report({"--week", "2026-W02"}), 0) << err;
  EXPECT_THAT(out, StartsWith("Feeding report, week 2026-W02\n"
                              "=============================\n"
                              "YARD.TDB, 2026-01-05 to 2026-01-11, weights in LB, made on "
                              "2026-01-05\n\n"
                              "Loaded: "));
  EXPECT_THAT(out, HasSubstr("\nNot loaded: 1\n"));
  EXPECT_THAT(err, IsEmpty());
  EXPECT_EQ(drawings_started, 0);
}

TEST_F(ReportCommandTest, WritesBothFilesAndNothingElse) {
  ASSERT_EQ(Report({"--day", "2026-01-06", "--pdf", pdf.string(), "--html", html.string()}), 0)
      << err;
  EXPECT_THAT(out + err, IsEmpty());
  EXPECT_EQ(drawings_started, 1);
  EXPECT_EQ(LinesOf(pdf).at(0).at(0), "Feeding report, day 2026-01-06");
  EXPECT_THAT(ReadAll(html), HasSubstr("<h1>Feeding report, day 2026-01-06</h1>"));
}

TEST_F(ReportCommandTest, HasTheFiguresOfTheOtherCommands) {
  ASSERT_EQ(Report({"--week", "2026-W02", "--html", html.string()}), 0) << err;
  const std::string page = ReadAll(html);
  const auto expect = [&](const std::string& heading, const Columns& csv,
                          const std::vector<std::pair<std::string, std::string>>& columns) {
    const HtmlTable table = HtmlTableBelow(page, heading);
    for (const auto& [caption, key] : columns) {
      ASSERT_TRUE(csv.contains(key)) << heading << ": " << key;
      EXPECT_EQ(Column(table, caption), csv.at(key)) << heading << ": " << caption;
    }
  };
  const Columns accuracy = Csv({"accuracy"});
  expect("Loaded by ingredient", accuracy,
         {{"Ingredient", "key.ingredient"},
          {"Loads", "n"},
          {"Target", "target"},
          {"Actual", "actual"},
          {"Net", "net"},
          {"Net %", "netPercent"},
          {"Gross", "gross"}});
  expect("Accuracy of loading", accuracy,
         {{"Gross %", "grossPercent"},
          {"Within limit %", "within"},
          {"Weight within %", "weightWithin"},
          {"Far off %", "beyond"},
          {"Below target %", "below"},
          {"Median %", "median"},
          {"Lower quartile %", "q1"},
          {"Upper quartile %", "q3"}});
  expect("Operators", Csv({"accuracy", "--by", "operator"}),
         {{"Operator", "key.operator"},
          {"Loads", "n"},
          {"Standardized %", "standardized"},
          {"Median %", "median"},
          {"Stops short", "marked"}});
  expect("Batches out of balance", Csv({"balance"}),
         {{"Batch", "transaction"},
          {"Loaded", "loaded"},
          {"Fed", "fed"},
          {"Left", "left"},
          {"Left %", "leftPercent"},
          {"State", "state"}});
  EXPECT_THAT(HtmlTableBelow(page, "Batches out of balance").Column("Batch"), Contains("5"));
  expect("Times", Csv({"times"}),
         {{"Recipe", "key"},
          {"Batches", "batches"},
          {"Preparing", "preparing.median"},
          {"Waiting", "waiting.median"},
          {"Feeding", "feeding.median"}});
}

TEST_F(ReportCommandTest, HasThePensAndTheStatementOfTheOtherCommands) {
  ASSERT_EQ(Report({"--week", "2026-W02", "--html", html.string()}), 0) << err;
  const std::string page = ReadAll(html);
  std::map<std::string, double> delivered;
  const Columns days = Csv({"delivered"});
  for (std::size_t i = 0; i < days.at("pen").size(); ++i) {
    delivered[days.at("pen")[i]] += std::stod(days.at("delivered")[i]);  // halves: exact
  }
  const HtmlTable pens = HtmlTableBelow(page, "Called and delivered by pen");
  ASSERT_THAT(Column(pens, "Pen"), SizeIs(delivered.size()));
  for (std::size_t i = 0; i < delivered.size(); ++i) {
    EXPECT_NEAR(std::stod(Column(pens, "Delivered")[i]), delivered.at(Column(pens, "Pen")[i]), 0.06)
        << Column(pens, "Pen")[i];
  }
  const Columns statement = Csv({"completeness"});
  const HtmlTable lines = HtmlTableBelow(page, "Statement");
  std::map<std::string, std::string> values;
  for (const HtmlRow& row : lines.rows) {
    values[row.at(0)] = row.at(1);
  }
  for (const auto& [caption, key] : std::vector<std::pair<std::string, std::string>>{
           {"Imports", "imports"},
           {"Batches", "batches"},
           {"Loads", "loads"},
           {"Deliveries", "deliveries"},
           {"Weight loaded", "loaded"},
           {"Feed records not read", "notRead"},
           {"Batches out of balance", "out"},
           {"Rows without an import", "notRecorded"}}) {
    EXPECT_THAT(statement.at(key), ElementsAre(values.at(caption))) << caption;
  }
}

TEST_F(ReportCommandTest, FindsInTheSampleSiteWhatAManagerLooksFor) {
  fs::copy_file(SitePath("SITE.TDB"), folder / "MONTH.TDB");
  ASSERT_EQ(Run({"report", (folder / "MONTH.TDB").string(), "--month", "2026-01"}), 0) << err;
  for (const char* const line :
       {"\nNot loaded: 1\n", "\nOperators who stop short: 3 (-1.7 %)\n", "2026-01-22  ",
        "Days without a record   1\n", "These days              2026-01-08\n",
        "Batches continued       1\n"}) {
    EXPECT_THAT(out, HasSubstr(line));
  }
}

TEST_F(ReportCommandTest, SaysThatAPeriodIsEmptyOnTheErrorStreamToo) {
  ASSERT_EQ(Report({"--month", "2025-12", "--html", html.string()}), 0);
  EXPECT_EQ(err, "The database has no record of this period.\n");
  EXPECT_THAT(HtmlTables(ReadAll(html)), IsEmpty());
}

TEST_F(ReportCommandTest, TakesOnePeriodThatTheCalendarHas) {
  for (const std::vector<std::string>& wrong : {std::vector<std::string>{},
                                                {"--day", "2026-01-05", "--week", "2026-W02"},
                                                {"--day", "2026-01-05", "--day", "2026-01-06"},
                                                {"--day", "2026-02-30"},
                                                {"--week", "2025-W53"},
                                                {"--week", "2"},
                                                {"--month", "2026-13"},
                                                {"--from", "2026-01-05"}}) {
    EXPECT_EQ(Report(wrong), 2) << ::testing::PrintToString(wrong);
    EXPECT_THAT(out, IsEmpty());
  }
  EXPECT_EQ(Report({"--week", "2025-W53"}), 2);
  EXPECT_THAT(err, StartsWith("--week: the calendar has no '2025-W53' as YYYY-Www\n"));
  EXPECT_EQ(Report({}), 2);
  EXPECT_THAT(err, StartsWith("report: takes one of --day, --week and --month\n"));
}

TEST_F(ReportCommandTest, RefusesWhatIsNoTransactionDatabase) {
  const std::string damaged = (folder / "BROKEN.TDB").string();
  std::ofstream(damaged) << "no database";
  for (const std::string& file : {recipes, damaged, (folder / "NONE.TDB").string()}) {
    EXPECT_EQ(Run({"report", file, "--day", "2026-01-05", "--html", html.string()}), 1) << file;
    EXPECT_FALSE(err.empty()) << file;
  }
  EXPECT_FALSE(fs::exists(html));
}

TEST_F(ReportCommandTest, RefusesADatabaseThatIsLocked) {
  SQLite::Database other = OpenDatabase(database, Access::kWrite);
  other.exec("BEGIN EXCLUSIVE");
  busy_timeout = std::chrono::milliseconds(1);
  EXPECT_EQ(Report({"--day", "2026-01-05", "--html", html.string()}), 1);
  EXPECT_THAT(err, HasSubstr("locked"));
  EXPECT_FALSE(fs::exists(html));
}

TEST_F(ReportCommandTest, NeverWritesOverADatabaseOrIntoAMissingFolder) {
  const std::string before = ReadAll(database);
  for (const char* const form : {"--html", "--pdf"}) {
    EXPECT_EQ(Report({"--day", "2026-01-05", form, database}), 1);
    EXPECT_EQ(err, "Report Error: " + database +
                       " is a database and is not replaced. Choose another name.\n");
    EXPECT_EQ(Report({"--day", "2026-01-05", form, (folder / "none/page").string()}), 1);
    EXPECT_THAT(err, StartsWith("Report Error: The report could not be written."));
    EXPECT_THAT(err, HasSubstr("No such file or directory"));
  }
  EXPECT_TRUE(ReadAll(database) == before);
}

TEST_F(ReportCommandTest, ShowsItsProgressOnATerminalOnly) {
  err_is_terminal = true;
  ASSERT_EQ(Report({"--month", "2026-01", "--html", html.string()}), 0);
  EXPECT_THAT(err, HasSubstr("Reading the records"));
  EXPECT_THAT(Screen(), Not(HasSubstr("Reading")));
}

}  // namespace
}  // namespace vrx::testing
