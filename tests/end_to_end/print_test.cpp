#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <SQLiteCpp/Database.h>
#include <gmock/gmock.h>

#include "end_to_end/programs_fixture.h"
#include "support/private_mounts.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::StartsWith;

class Prints : public ProgramsTest {
 protected:
  Result PrintTo(const fs::path& file, std::vector<std::string> what) const {
    what.insert(what.begin(), "print");
    what.insert(what.end(), {"--pdf", file.string()});
    return Ctl(what);
  }
  static std::string Bytes(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  fs::path pdf = folder / "report.pdf";
};

TEST_F(Prints, EveryReportAndSayNothing) {
  const std::string day = StoredDay();
  for (const std::vector<std::string>& what : std::vector<std::vector<std::string>>{
           {"ingredients", SitePath("SITE.RDB")},
           {"pens", SitePath("SITE.RDB"), "--all"},
           {"recipes", SitePath("SITE.RDB")},
           {day, "--group", "0", "--recipes", SitePath("SITE.RDB")},
           {day, "--group", "12", "--collapsed", "--fit"}}) {
    fs::remove(pdf);
    const Result result = PrintTo(pdf, what);
    EXPECT_EQ(result.code, 0) << what.front();
    EXPECT_EQ(result.out + result.err, "");
    EXPECT_THAT(Bytes(pdf), StartsWith("%PDF-"));
  }
}

TEST_F(Prints, NothingToPrintIsReported) {
  const Result group = PrintTo(pdf, {NewTransactionDatabase(), "--group", "3"});
  EXPECT_EQ(group.code, 1);
  EXPECT_EQ(group.err, "Print Error: There is no transaction data to be printed.\n");
  const std::string empty = (folder / "EMPTY.RDB").string();
  ASSERT_EQ(Ctl({"new", "recipe", empty}).code, 0);
  for (const auto& [records, message] :
       {std::pair{"ingredients", "There is no ingredient data to be printed."},
        {"pens", "There is no pen data to be printed."},
        {"recipes", "There are no recipe entries to be printed."}}) {
    const Result result = PrintTo(pdf, {records, empty});
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(result.err, "Print Error: " + std::string(message) + "\n");
  }
  EXPECT_FALSE(fs::exists(pdf));
}

TEST_F(Prints, ADatabaseIsNeverPrintedOver) {
  const std::string day = StoredDay();
  const std::string before = Bytes(day);
  fs::copy_file(day, folder / "other.pdf");
  fs::create_symlink(day, folder / "link.pdf");
  for (const std::string& name :
       {fs::path(day).filename().string(), std::string("other.pdf"), std::string("link.pdf")}) {
    const Result result = PrintTo(folder / name, {day, "--group", "0"});
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(result.err, "Print Error: " + (folder / name).string() +
                              " is a database and is not replaced. Choose another name.\n");
    EXPECT_EQ(Bytes(folder / name), before);
  }
}

TEST_F(Prints, MoreThanFiftySheetsNeedAYes) {
  const std::string day = StoredDay();
  {
    SQLite::Database database(day, SQLite::OPEN_READWRITE);
    database.exec(
        "WITH RECURSIVE Copy (n) AS (SELECT 1 UNION ALL SELECT n + 1 FROM Copy WHERE n < 4000) "
        "INSERT INTO Transactions ([Transaction], Recipe, Type) SELECT n, 'A', 'FEED' FROM Copy");
  }
  const std::vector<std::string> what{day, "--group", "0"};
  const Result asked = PrintTo(pdf, what);
  EXPECT_EQ(asked.code, 1);
  EXPECT_THAT(asked.err, ::testing::MatchesRegex(
                             "Print: The report takes [0-9]+ sheets.\nDo you want to print all of "
                             "them\\?\nanswered with No \\(--yes answers with Yes\\)\n"));
  EXPECT_FALSE(fs::exists(pdf));
  EXPECT_EQ(PrintTo(pdf, {day, "--group", "0", "--yes"}).code, 0);
  EXPECT_THAT(Bytes(pdf), StartsWith("%PDF-"));
}

TEST_F(Prints, WrongUsageIsRefused) {
  EXPECT_EQ(PrintTo(pdf, {StoredDay()}).code, 2);
  EXPECT_EQ(PrintTo(pdf, {"pens", SitePath("SITE.RDB"), "--group", "0"}).code, 2);
  EXPECT_EQ(Ctl({"print", "pens", SitePath("SITE.RDB")}).code, 2);
  EXPECT_FALSE(fs::exists(pdf));
}

TEST_F(Prints, AFolderThatIsMissingIsReported) {
  const fs::path nowhere = folder / "none" / "report.pdf";
  const Result result = PrintTo(nowhere, {"pens", SitePath("SITE.RDB")});
  EXPECT_EQ(result.code, 1);
  EXPECT_EQ(result.err, "Print Error: The report could not be printed.\ncause: cannot write " +
                            nowhere.string() + ": No such file or directory\n");
}

TEST_F(Prints, AFullOrReadOnlyDiskIsReportedAndKeepsTheOlderFile) {
  const std::string day = StoredDay();
  for (const auto& [options, cause] :
       {std::pair<std::string, std::string>{"remount,size=20k", "No space left on device"},
        {"remount,bind,ro", "Read-only file system"}}) {
    const std::string output = RunWithMounts(
        R"(
        mkdir -p "$1/disk"
        mount -t tmpfs -o size=1m tmpfs "$1/disk"
        echo older >"$1/disk/report.pdf"
        mount -o "$4" "$1/disk"
        "$2" --data-dir "$1/data" print "$3" --group 0 --pdf "$1/disk/report.pdf" || echo "exit $?"
        ls "$1/disk"
        cat "$1/disk/report.pdf"
        umount "$1/disk")",
        {folder.Path().string(), Bin("vrx2260ctl"), day, options});
    EXPECT_EQ(output, "Print Error: The report could not be printed.\ncause: cannot write " +
                          (folder / "disk").string() + "/report.pdf: " + cause +
                          "\nexit 1\nreport.pdf\nolder\n");
  }
}

}  // namespace
}  // namespace vrx::testing
