#include <filesystem>
#include <regex>
#include <string>
#include <vector>

#include <SQLiteCpp/Transaction.h>
#include <gmock/gmock.h>

#include "ctl/ctl_fixture.h"
#include "support/database_files.h"
#include "support/statement_counter.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

const std::string kBackup = "{DATA_IN},L\r\n\r\n[ING]\r\n\r\n";

// A yard of one ingredient, one recipe by weight with an old head count, and one pen.
class DownloadCommands : public CtlTest {
 protected:
  DownloadCommands() {
    Done({"settings", "BatchTargetWtIsRecTarget", "NO"});
    SQLite::Database database = OpenDatabase(yard, Access::kWrite);
    SQLite::Transaction transaction(database);
    WriteIngredient(database, {.id = 1, .name = "CORN", .description = "Corn"});
    WriteRecipe(database, {.id = 3,
                           .name = "STEERS",
                           .description = "Steers",
                           .batch_type = "W",
                           .head_count = 70,
                           .ration_target = "5000",
                           .adjust_batch_index = "20"});
    RecipeLineRecord line{.recipe_id = "3",
                          .ingredient = "1",
                          .target = "880",
                          .dry_matter_percent = "88",
                          .sequence = 1};
    WriteRecipeLine(database, line);
    WritePen(database, {.id = 7, .name = "PEN007", .feed_amount = "150"});
    transaction.commit();
  }

  void Done(const std::vector<std::string>& args) { ASSERT_EQ(Run(args), 0) << err; }

  int Download(const std::string& file, bool yes = true) {
    std::vector<std::string> args = {"module", "download", file, "--port", "/dev/module"};
    if (yes) {
      args.emplace_back("--yes");
    }
    return Run(args);
  }
  void ModuleAnswers() {
    serial.WillAnswer("\x19\x1F");
    serial.WillAnswer("\x14\x1F");
  }
  RecipeRecord Stored() const {
    SQLite::Database database = OpenDatabase(yard, Access::kRead);
    return ReadRecipe(database, 3);
  }
  RecipeLineRecord StoredLine() const {
    SQLite::Database database = OpenDatabase(yard, Access::kRead);
    return ReadRecipeLines(database, 3).at(0);
  }

  std::string yard = NewRecipeDatabase();
  const std::string text =
      "{DATA_IN},L\r\n\r\n[ING]\r\n\r\n1,CORN,0\r\n\r\n[REC]\r\n\r\n"
      "3,STEERS,0,880,0,CORN;880\r\n\r\n[PEN]\r\n\r\n7,PEN007,150\r\n\r\n";
};

TEST_F(DownloadCommands, DownloadTextPrintsTheFileByteForByte) {
  EXPECT_EQ(Run({"download-text", yard}), 0) << err;
  EXPECT_EQ(out, text);
  EXPECT_THAT(err, IsEmpty());
}

TEST_F(DownloadCommands, DownloadTextFollowsTheSetting) {
  Done({"settings", "BatchTargetWtIsRecTarget", "YES"});
  EXPECT_EQ(Run({"download-text", yard}), 0) << err;
  EXPECT_THAT(out, HasSubstr("\r\n3,STEERS,0,5000,0,CORN;5000\r\n"));
}

TEST_F(DownloadCommands, DownloadTextOnlyReads) {
  const std::string before = ReadAll(yard);
  EXPECT_EQ(Run({"download-text", yard}), 0);
  EXPECT_TRUE(ReadAll(yard) == before);
  EXPECT_FALSE(fs::exists(yard + "-journal"));
}

// Another program stores whenever it can between two statements of the command.
TEST_F(DownloadCommands, DownloadTextIsOfOneMoment) {
  SQLite::Database other = OpenDatabase(yard, Access::kWrite, std::chrono::milliseconds{0});
  int stored = 0;
  int refused = 0;
  const StatementCounter counter([&] {
    const std::string name = "'N" + std::to_string(stored + 1) + "'";
    try {
      SQLite::Transaction transaction(other);
      other.exec("UPDATE Ingredient SET Name = " + name +
                 " WHERE ID = 1; UPDATE Pen SET Name = " + name + " WHERE ID = 7");
      transaction.commit();
      ++stored;
    } catch (const SQLite::Exception&) {
      ++refused;
    }
  });
  EXPECT_EQ(Run({"download-text", yard}), 0) << err;
  EXPECT_GT(stored, 0);
  EXPECT_GT(refused, 0);
  std::smatch names;
  ASSERT_TRUE(std::regex_search(
      out, names, std::regex("\\[ING\\]\r\n\r\n1,(N\\d+),[^]*\\[PEN\\]\r\n\r\n7,(N\\d+),")))
      << out;
  EXPECT_EQ(names[1], names[2]);
}

TEST_F(DownloadCommands, DownloadTextNamesTheRecipeThatDoesNotCompute) {
  AddLine(yard, {.recipe_id = "3", .ingredient = "1", .target = "2147483647", .sequence = 2});
  EXPECT_EQ(Run({"download-text", yard}), 1);
  EXPECT_EQ(err,
            "Error: Recipe 3 (STEERS) cannot be computed. Overflow: the sum of 'Target' is outside "
            "the range of 32-bit whole numbers.\n");
  EXPECT_THAT(out, IsEmpty());
}

TEST_F(DownloadCommands, DownloadTextRefusesADatabaseOfTheOtherKind) {
  EXPECT_EQ(Run({"download-text", NewTransactionDatabase()}), 1);
  EXPECT_THAT(err, StartsWith("Invalid Database: The database file (YARD.TDB) that you specified"));
  EXPECT_THAT(out, IsEmpty());
  EXPECT_EQ(Run({"download-text"}), 2);
}

TEST_F(DownloadCommands, ModuleDownloadSendsTheTextOfADatabase) {
  ModuleAnswers();
  EXPECT_EQ(Download(yard), 0);
  EXPECT_EQ(device, "/dev/module");
  EXPECT_EQ(serial.sent, "\x19\x14" + text);
  EXPECT_EQ(err,
            "Overwrite KRM: Are you sure you want to overwrite all data in the KRM module with "
            "recipe data from the YARD.RDB database?\n\n"
            "The module has not been uploaded in this run of the program.\n"
            "Download complete!  (99 bytes, Recipe Data)\n");
  EXPECT_THAT(out, IsEmpty());
  EXPECT_FALSE(serial.PortOpen());
}

TEST_F(DownloadCommands, ModuleDownloadStoresWhatItRecomputed) {
  ModuleAnswers();
  calendar.today = Date{std::chrono::year{2026}, std::chrono::March, std::chrono::day{4}};
  EXPECT_EQ(Download(yard), 0);
  EXPECT_EQ(Stored().head_count, 0);
  EXPECT_EQ(StoredLine().dry_matter, "1000");
  EXPECT_EQ(StoredLine().batch_target, "5000");
  Run({"info", yard, "--json"});
  EXPECT_THAT(out, HasSubstr("\"modified\": \"2026-03-04\""));
}

TEST_F(DownloadCommands, ModuleDownloadAsksFirst) {
  const std::string before = ReadAll(yard);
  EXPECT_EQ(Download(yard, false), 1);
  EXPECT_THAT(err, StartsWith("Overwrite KRM: "));
  EXPECT_THAT(serial.events, IsEmpty());
  EXPECT_TRUE(ReadAll(yard) == before);
  EXPECT_EQ(Download(folder.Write("old.rbu", kBackup).string(), false), 1);
  EXPECT_THAT(err, StartsWith("Overwrite KRM: Are you sure you want to overwrite all data in the "
                              "KRM module with recipe backup data from the OLD.RBU file?\n"));
  EXPECT_THAT(serial.events, IsEmpty());
}

TEST_F(DownloadCommands, ModuleDownloadSendsABackupByteForByte) {
  const std::string bytes = kBackup + "1,M\xC9L,0\r\n";
  ModuleAnswers();
  EXPECT_EQ(Download(folder.Write("old.rbu", bytes).string()), 0);
  EXPECT_EQ(serial.sent, "\x19\x14" + bytes);
  EXPECT_THAT(err, EndsWith("\nDownload complete!  (33 bytes, Recipe Data)\n"));
}

TEST_F(DownloadCommands, ABackupIsKnownByItsHeaderWhateverItsName) {
  for (const char* name : {"backup", "backup.txt", "backup.rdb"}) {
    ModuleAnswers();
    EXPECT_EQ(Download(folder.Write(name, kBackup).string()), 0) << err;
  }
}

TEST_F(DownloadCommands, ABackupWithAnotherHeaderIsRefused) {
  EXPECT_EQ(Download(folder.Write("day.rbu", "{BAT/FED},L\r\n").string()), 1);
  EXPECT_THAT(err, EndsWith("File-Header Error: The Recipe backup-file has an invalid file header "
                            "and cannot be downloaded.\n"));
  EXPECT_THAT(serial.events, IsEmpty());
}

TEST_F(DownloadCommands, AMissingBackupIsReported) {
  EXPECT_EQ(Download((folder / "none.rbu").string()), 1);
  EXPECT_THAT(err, StartsWith("Recipe Backup-File Error: The Recipe backup-file cannot be read.\n"
                              "cause: "));
  EXPECT_THAT(err, HasSubstr("none.rbu"));
}

TEST_F(DownloadCommands, AForeignFileIsRefusedUntouched) {
  const std::string foreign = folder.Write("notes.txt", "hay\r\n").string();
  for (const std::string& file :
       {foreign, NewTransactionDatabase(), (folder / "none.rdb").string()}) {
    EXPECT_EQ(Download(file), 1);
    EXPECT_THAT(err, HasSubstr("Invalid Database: The database file ("));
  }
  EXPECT_THAT(serial.events, IsEmpty());
  EXPECT_EQ(ReadAll(foreign), "hay\r\n");
}

TEST_F(DownloadCommands, ALockedDatabaseIsReportedAndNothingIsSent) {
  SQLite::Database other = OpenDatabase(yard, Access::kWrite);
  other.exec("BEGIN IMMEDIATE");
  EXPECT_EQ(Download(yard), 1);
  EXPECT_THAT(err, HasSubstr("\nRecipe Database-File Error: A table in the specified database is "
                             "locked.\ncause: "));
  EXPECT_THAT(serial.events, IsEmpty());
}

// Runs as the user nobody, because a superuser may write everywhere. The settings are readable.
TEST_F(DownloadCommands, AWriteProtectedDatabaseIsReportedAndNothingIsSent) {
  const TempFolder archive;
  fs::copy_file(yard, archive / "YARD.RDB");
  yard = (archive / "YARD.RDB").string();
  fs::permissions(folder.Path(), fs::perms::all);
  const WithoutWritePermission protection(archive.Path());
  EXPECT_EQ(Download(yard), 1);
  EXPECT_THAT(err, EndsWith("\nRecipe Database-File Error: Error: 8\ncause: YARD.RDB may not be "
                            "written: it is write-protected\n"));
  EXPECT_THAT(serial.events, IsEmpty());
  EXPECT_EQ(Run({"download-text", yard}), 0) << err;
  EXPECT_EQ(out, text);
}

TEST_F(DownloadCommands, ARecipeThatDoesNotComputeIsReportedAndNothingIsSent) {
  AddLine(yard, {.recipe_id = "3", .ingredient = "1", .target = "2147483647", .sequence = 2});
  const std::string before = ReadAll(yard);
  EXPECT_EQ(Download(yard), 1);
  EXPECT_THAT(err, HasSubstr("\nRecipe Database-File Error: Recipe 3 (STEERS) cannot be computed. "
                             "Overflow: "));
  EXPECT_THAT(serial.events, IsEmpty());
  EXPECT_TRUE(ReadAll(yard) == before);
}

TEST_F(DownloadCommands, ASilentModuleIsReportedWithTheCause) {
  EXPECT_EQ(Download(yard), 1);
  EXPECT_THAT(err, EndsWith("\nError: KRM not detected\ncause: no reply\n"));
}

TEST_F(DownloadCommands, AFailedClearAndACutLineAreReported) {
  serial.WillAnswer("\x19\x1F");
  EXPECT_EQ(Download(yard), 1);
  EXPECT_THAT(err, EndsWith("\nError: Could not clear KRM\ncause: no reply\n"));
  ModuleAnswers();
  serial.lose_after_output = serial.sent.size() + 10;
  EXPECT_EQ(Download(yard), 1);
  EXPECT_THAT(
      err,
      EndsWith("\nKRM Error: The connection to the serial port was lost.\ncause: fake: the line is "
               "gone\nError: Download failed\n"));
}

TEST_F(DownloadCommands, WrongUsageIsRefused) {
  EXPECT_EQ(Run({"module", "download", "--port", "3"}), 2);
  EXPECT_EQ(Run({"module", "download", yard}), 2);
}

TEST_F(DownloadCommands, DirectLoadsADatabaseWithoutAQuestionAndStoresWhatItRecomputed) {
  pump.After(Milliseconds{3000}, [this] { serial.Arrives("\x15"); });
  EXPECT_EQ(Run({"direct", "--port", "3", "--seconds", "10", "--load", yard}), 0);
  EXPECT_EQ(serial.sent, "\x14\x1F\x15\x1F" + text + "\x1F");
  EXPECT_THAT(err, IsEmpty());
  EXPECT_EQ(Stored().head_count, 0);
  EXPECT_EQ(StoredLine().dry_matter, "1000");
}

TEST_F(DownloadCommands, DirectRefusesAForeignFileBeforeThePortIsOpened) {
  EXPECT_EQ(Run({"direct", "--port", "3", "--seconds", "1", "--load", NewTransactionDatabase()}),
            1);
  EXPECT_THAT(err, StartsWith("Invalid Database: The database file (YARD.TDB) that you specified"));
  EXPECT_THAT(serial.events, IsEmpty());
}

TEST_F(DownloadCommands, DirectNamesTheRecipeThatDoesNotCompute) {
  AddLine(yard, {.recipe_id = "3", .ingredient = "1", .target = "2147483647", .sequence = 2});
  EXPECT_EQ(Run({"direct", "--port", "3", "--seconds", "1", "--load", yard}), 1);
  EXPECT_THAT(err, StartsWith("Error: Recipe 3 (STEERS) cannot be computed. Overflow: "));
  EXPECT_THAT(serial.events, IsEmpty());
}

}  // namespace
}  // namespace vrx::testing
