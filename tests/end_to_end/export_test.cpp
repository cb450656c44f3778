#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include <SQLiteCpp/Database.h>
#include <gmock/gmock.h>

#include "end_to_end/programs_fixture.h"
#include "support/private_mounts.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::StartsWith;

constexpr const char* kDone = "Export: Data exported successfully.\n";

class Exports : public ProgramsTest {
 protected:
  std::vector<std::string> Args(const std::string& database, int group, const std::string& format,
                                const fs::path& file) const {
    return {
        "export",   database, "--group", std::to_string(group), "--recipes", SitePath("SITE.RDB"),
        "--format", format,   "--out",   file.string()};
  }

  // Rows of one batch each, in transactions of ten.
  std::string ManyRows(int count) const {
    std::string path = NewTransactionDatabase();
    SQLite::Database database(path, SQLite::OPEN_READWRITE);
    database.exec(
        "WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM n WHERE i + 1 < " +
        std::to_string(count) +
        ") INSERT INTO Transactions ([Transaction], Recipe, Type, Target, ActualBatch, ActualFeed, "
        "Ingredient, Date, Time) SELECT i / 10 + 1, 'STEERS', 'BATCH', 500, 500 + i % 7, 0, "
        "'CORN', '2026-01-05', '06:10:00' FROM n");
    return path;
  }

  // Ends an export by SIGKILL once `begun` says that it is in the middle.
  void KillInTheMiddle(const std::vector<std::string>& args,
                       const std::function<bool()>& begun) const {
    Program program(Bin("vrx2260ctl"), WithDataDir(args), folder.Path().string());
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds{60};
    while (!begun() && std::chrono::steady_clock::now() < end) {
      std::this_thread::sleep_for(std::chrono::milliseconds{1});
    }
    program.Signal(SIGKILL);
    EXPECT_EQ(program.Wait(), -SIGKILL);
  }

  static std::uintmax_t SizeOf(const fs::path& file) {
    std::error_code none;
    const std::uintmax_t size = fs::file_size(file, none);
    return none ? 0 : size;
  }
};

TEST_F(Exports, ADayInEachFormatWithTheStylesheetBesideTheXml) {
  const std::string database = StoredDay();
  const std::string before = ReadAll(database);
  const fs::path out = folder / "export";
  for (const std::string format : {"csv", "xml", "html"}) {
    const Result result = Ctl(Args(database, 8, format, out / ("PENS." + format)));
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(result.err, kDone);
    EXPECT_EQ(result.out, "");
  }
  EXPECT_THAT(ReadAll(out / "PENS.csv"),
              StartsWith("Pen,Transaction,Recipe,Feed Wt,Target Wt,User ID,Time,Date\r\nA01,"));
  EXPECT_THAT(ReadAll(out / "PENS.xml"), HasSubstr("href='PensFedAll.xsl'"));
  EXPECT_THAT(ReadAll(out / "PENS.html"), HasSubstr("<html"));
  EXPECT_EQ(ReadAll(out / "PensFedAll.xsl"), ReadAll(Bin("XSL/PensFedAll.xsl")));
  EXPECT_EQ(std::distance(fs::directory_iterator(out), fs::directory_iterator()), 4);
  EXPECT_TRUE(fs::is_directory(folder / "data/Export"));
  EXPECT_EQ(ReadAll(database), before);
}

TEST_F(Exports, AnUnwritablePlaceIsReportedWithItsCause) {
  const std::string database = StoredDay();
  for (const std::string format : {"csv", "xml", "html"}) {
    const Result below = Ctl(Args(database, 3, format, "/proc/nowhere/DAY." + format));
    EXPECT_EQ(below.code, 1);
    EXPECT_EQ(below.err,
              "Export: cannot make the folder /proc/nowhere: No such file or directory\n");
    const Result in = Ctl(Args(database, 3, format, "/proc/DAY." + format));
    EXPECT_EQ(in.code, 1);
    EXPECT_EQ(in.err, "Export: cannot write /proc/DAY." + format + ": No such file or directory\n");
  }
}

TEST_F(Exports, AReadOnlyDiskIsReported) {
  const std::string database = StoredDay();
  for (const std::string format : {"csv", "xml"}) {
    const std::string output = RunWithMounts(
        R"(
        mkdir -p "$1/disk"
        mount -t tmpfs -o size=1m tmpfs "$1/disk"
        echo older >"$1/disk/DAY.$4"
        mount -o remount,bind,ro "$1/disk"
        "$2" --data-dir "$1/data" export "$3" --group 1 --recipes "$5" --format "$4" \
          --out "$1/disk/DAY.$4" || echo "exit $?"
        cat "$1/disk/DAY.$4"
        umount "$1/disk")",
        {folder.Path().string(), Bin("vrx2260ctl"), database, format, SitePath("SITE.RDB")});
    EXPECT_EQ(output, "Export: cannot write " + (folder / "disk").string() + "/DAY." + format +
                          ": Read-only file system\nexit 1\nolder\n");
  }
}

TEST_F(Exports, AFullDiskIsReportedAndLeavesTheOlderXmlAndAPartOfTheCsv) {
  const std::string database = ManyRows(20000);
  for (const std::string format : {"csv", "xml"}) {
    const std::string output = RunWithMounts(
        R"(
        mkdir -p "$1/disk"
        mount -t tmpfs -o size=512k tmpfs "$1/disk"
        echo older >"$1/disk/DAY.$4"
        "$2" --data-dir "$1/data" export "$3" --group 1 --recipes "$5" --format "$4" \
          --out "$1/disk/DAY.$4" || echo "exit $?"
        ls "$1/disk"
        head -n 1 "$1/disk/DAY.$4" | cut -c 1-16
        umount "$1/disk")",
        {folder.Path().string(), Bin("vrx2260ctl"), database, format, SitePath("SITE.RDB")});
    std::string message = "Export: cannot write ";
    message.append(folder / "disk").append("/DAY.").append(format);
    message.append(": No space left on device\nexit 1\nDAY.").append(format).append("\n");
    message.append(format == "xml" ? "older\n" : "Transaction,Type\n");
    EXPECT_EQ(output, message);
  }
}

TEST_F(Exports, AKilledXmlExportLeavesTheOlderFileUntouched) {
  const std::string database = ManyRows(50000);
  const fs::path out = folder / "out";
  fs::create_directory(out);
  std::ofstream(out / "DAY.xml") << "older";
  KillInTheMiddle(Args(database, 1, "xml", out / "DAY.xml"), [&] {
    for (const auto& entry : fs::directory_iterator(out)) {
      if (entry.path() != out / "DAY.xml" && SizeOf(entry.path()) > 0) {
        return true;
      }
    }
    return false;
  });
  EXPECT_EQ(ReadAll(out / "DAY.xml"), "older");
  EXPECT_FALSE(fs::exists(out / "TranByBatchFed.xsl"));
}

TEST_F(Exports, AKilledCsvExportLeavesItsFirstLines) {
  const std::string database = ManyRows(50000);
  const fs::path part = folder / "PART.csv";
  const fs::path whole = folder / "WHOLE.csv";
  ASSERT_EQ(Ctl(Args(database, 1, "csv", whole)).code, 0);
  std::ofstream(part) << "older";
  KillInTheMiddle(Args(database, 1, "csv", part), [&] { return SizeOf(part) > 5; });
  const std::string lines = ReadAll(part);
  EXPECT_GT(lines.size(), 0U);
  EXPECT_LT(lines.size(), fs::file_size(whole));
  EXPECT_THAT(ReadAll(whole), StartsWith(lines));
  ASSERT_EQ(Ctl(Args(database, 1, "csv", part)).code, 0);
  EXPECT_EQ(ReadAll(part), ReadAll(whole));
}

}  // namespace
}  // namespace vrx::testing
