#include <chrono>
#include <csignal>
#include <filesystem>
#include <map>
#include <thread>

#include <SQLiteCpp/Database.h>
#include <gmock/gmock.h>

#include "end_to_end/programs_fixture.h"
#include "support/full_recipe_database.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::ContainsRegex;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::Pair;

constexpr std::string_view kBackup =
    "{DATA_IN},K\r\n\r\n[ING]\r\n\r\n1,CORN,0\r\n\r\n[REC]\r\n\r\n\r\n[PEN]\r\n\r\n\r\n";

class DownloadOverALine : public ProgramsTest {
 protected:
  DownloadOverALine() { fs::copy_file(SitePath("SITE.RDB"), database); }

  Result Download(const std::string& source) const {
    return Ctl({"--yes", "module", "download", source, "--port", ModulePath()});
  }

  std::string DownloadText(const std::string& path) const {
    const Result result = Ctl({"download-text", path});
    EXPECT_EQ(result.code, 0) << result.err;
    EXPECT_THAT(result.out, Not(IsEmpty()));
    return result.out;
  }

  // The final memory of the module.
  std::string Memory(Program& module) const {
    module.Signal(SIGTERM);
    EXPECT_EQ(module.Wait(), 0) << module.Err();
    return ReadAll(saved);
  }

  std::unique_ptr<Program> StartSavingModule(std::vector<std::string> options = {}) const {
    options.insert(options.end(), {"--save", saved});
    return StartModule(options);
  }

  // Waits until the module's memory is empty; 1500 ms later at the earliest it is sent a text.
  bool ClearedWithin(const Program& module, std::chrono::seconds limit) const {
    const auto end = std::chrono::steady_clock::now() + limit;
    while (std::chrono::steady_clock::now() < end) {
      module.Signal(SIGUSR1);
      std::this_thread::sleep_for(std::chrono::milliseconds{50});
      if (fs::exists(saved) && fs::file_size(saved) == 0) {
        return true;
      }
    }
    return false;
  }

  void WorksAgain() {
    const auto module = StartSavingModule();
    const Result worked = Download(backup);
    EXPECT_EQ(worked.code, 0) << worked.err;
    EXPECT_EQ(Memory(*module), kBackup);
  }

  std::string database = (folder / "SITE.RDB").string();
  std::string backup = folder.Write("BACKUP.RBU", kBackup).string();
  std::string saved = (folder / "saved").string();
};

// At the line's own pace, and back again.
TEST_F(DownloadOverALine, ARecipeDatabaseReachesTheModuleAndComesBackByteForByte) {
  const std::string text = DownloadText(database);
  {
    const auto module = StartSavingModule({"--load", SitePath("day05.qxt")});
    const Result download = Download(database);
    ASSERT_EQ(download.code, 0) << download.err;
    EXPECT_THAT(download.err, HasSubstr("Download complete!  (" + std::to_string(text.size()) +
                                        " bytes, Recipe Data)\n"));
    const Result upload =
        Ctl({"module", "upload", "--out", (folder / "out").string(), "--port", ModulePath()});
    EXPECT_EQ(upload.out, (folder / "out/01.RBU").string() + "\n") << upload.err;
    EXPECT_EQ(Memory(*module), text);
  }
  const std::string uploaded = (folder / "out/01.RBU").string();
  EXPECT_EQ(ReadAll(uploaded), text);

  const auto module = StartSavingModule({"--load", backup});
  const Result download = Download(uploaded);
  EXPECT_EQ(download.code, 0) << download.err;
  EXPECT_EQ(Memory(*module), text);
}

TEST_F(DownloadOverALine, AFullDatabaseIsWhole) {
  const std::string full = (folder / "FULL.RDB").string();
  MakeFullRecipeDatabase(full);
  const std::string text = DownloadText(full);
  EXPECT_GT(text.size(), 30'000U);
  const auto module = StartSavingModule({"--baud", "0"});
  const Result download = Download(full);
  EXPECT_EQ(download.code, 0) << download.err;
  EXPECT_EQ(Memory(*module), text);
}

// Head counts that the file lacks become 0 in the download; the text does not change.
// Recipes that are not written keep theirs.
TEST_F(DownloadOverALine, EmptiesTheHeadCountsThatTheTextLacks) {
  SQLite::Database(database, SQLite::OPEN_READWRITE).exec("UPDATE Recipe SET HeadCount = 70");
  const std::string text = DownloadText(database);
  const auto module = StartSavingModule({"--baud", "0"});
  ASSERT_EQ(Download(database).code, 0);
  std::map<std::string, int> emptied;
  for (const Json& recipe :
       Json::parse(Ctl({"list", "recipes", database, "--all", "--json"}).out)) {
    const std::string type = recipe["BatchType"];
    const bool written = recipe["Description"] != Json("") && type != "!";
    EXPECT_EQ(recipe["HeadCount"], written && type != "H" ? 0 : 70) << recipe;
    emptied[type] += recipe["HeadCount"] == 0 ? 1 : 0;
  }
  EXPECT_THAT(emptied,
              ElementsAre(Pair("!", 0), Pair("%", 2), Pair("H", 0), Pair("P", 3), Pair("W", 2)));
  EXPECT_EQ(Memory(*module), text);
  EXPECT_EQ(DownloadText(database), text);
}

TEST_F(DownloadOverALine, TheTextAloneChangesNothing) {
  const std::string before = ReadAll(database);
  DownloadText(database);
  EXPECT_EQ(ReadAll(database), before);
}

TEST_F(DownloadOverALine, WithoutAnAnswerNothingIsSentAndNothingChanges) {
  const std::string before = ReadAll(database);
  const auto module = StartSavingModule({"--load", backup});
  for (const std::string& source : {database, backup}) {
    const Result refused = Ctl({"module", "download", source, "--port", ModulePath()});
    EXPECT_EQ(refused.code, 1);
    EXPECT_THAT(refused.err,
                HasSubstr("Overwrite KRM: Are you sure you want to overwrite all data in the KRM "
                          "module with recipe "));
  }
  EXPECT_EQ(ReadAll(database), before);
  EXPECT_EQ(Memory(*module), kBackup);
}

TEST_F(DownloadOverALine, AFileThatIsNoBackupIsRefused) {
  const auto module = StartSavingModule({"--load", backup});
  const Result refused = Download(folder.Write("X.RBU", "x{DATA_IN},L\r\n").string());
  EXPECT_EQ(refused.code, 1);
  EXPECT_THAT(refused.err,
              HasSubstr("File-Header Error: The Recipe backup-file has an invalid file header and "
                        "cannot be downloaded.\n"));
  EXPECT_EQ(Memory(*module), kBackup);
}

// The module stops reading and is killed during a text far longer than the line's buffer.
TEST_F(DownloadOverALine, ModuleGoneInTheText) {
  const std::string full = (folder / "FULL.RDB").string();
  MakeFullRecipeDatabase(full);
  const auto module = StartSavingModule({"--load", backup});
  Program download(Bin("vrx2260ctl"),
                   WithDataDir({"--yes", "module", "download", full, "--port", ModulePath()}),
                   folder.Path().string());
  ASSERT_TRUE(ClearedWithin(*module, std::chrono::seconds{20})) << download.Err();
  module->Signal(SIGSTOP);
  std::this_thread::sleep_for(std::chrono::seconds{3});
  EXPECT_THAT(download.Err(), Not(HasSubstr("Download complete!")));
  module->Signal(SIGKILL);
  EXPECT_EQ(download.Wait(std::chrono::seconds{15}), 1);
  EXPECT_THAT(download.Err(), HasSubstr("Error: Download failed\n"));
  EXPECT_THAT(download.Err(), HasSubstr("\ncause: "));
  WorksAgain();
}

// Each fault has a module on a line of its own, and all of them wait side by side: nearly all the
// time goes into the time-outs of the protocol.
class DownloadFaults : public ProgramsTest {
 protected:
  std::string SavedPath(std::size_t line) const {
    return (folder / ("saved" + std::to_string(line))).string();
  }
  std::unique_ptr<Program> StartDownload(const std::string& source, std::size_t line) const {
    return StartCtl({"--yes", "module", "download", source, "--port", ModulePath(line)});
  }

  std::string backup = folder.Write("BACKUP.RBU", kBackup).string();
  // Longer than the system's buffer for a device that does not read.
  std::string long_backup =
      folder.Write("LONG.RBU", std::string(kBackup) + std::string(60'000, ' ')).string();
};

TEST_F(DownloadFaults, AreReportedAndTheNextDownloadIsWhole) {
  struct Fault {
    std::string option;
    std::string words;
    std::string cause;
    std::string source;
  };
  // Whether the line is gone during a command or at the next opening is a matter of moments.
  const std::string gone = "(no such device|the line is gone)";
  const std::vector<Fault> faults = {
      {"silent", "Error: KRM not detected\n", "no reply", backup},
      {"garbage", "Error: KRM not detected\n", "unexpected reply", backup},  // a wrong echo
      {"cut-after=1", "Error: KRM not detected\n", "the reply broke off after 1 bytes",
       backup},                                                     // in the echo
      {"hang-up=2", "Error: Could not clear KRM\n", gone, backup},  // after the check
      {"hang-up=3", "Error: Could not clear KRM\n", gone, backup},  // in the reply to the clear
      {"hang-up=4", "Error: Download failed\n", gone, backup},      // after the clear
      {"deaf=2", "Error: Serial line held\n", "Serial line held: it took no byte for 10 seconds",
       long_backup}};  // stops reading
  std::vector<std::unique_ptr<Program>> modules;
  std::vector<std::unique_ptr<Program>> downloads;
  for (std::size_t line = 0; line < faults.size(); ++line) {
    modules.push_back(StartModule({"--fault", faults[line].option}, line));
    downloads.push_back(StartDownload(faults[line].source, line));
  }
  for (std::size_t line = 0; line < faults.size(); ++line) {
    SCOPED_TRACE(faults[line].option);
    const Result failed = ResultOf(*downloads[line]);
    EXPECT_EQ(failed.code, 1);
    EXPECT_THAT(failed.err, HasSubstr(faults[line].words));
    EXPECT_THAT(failed.err, ContainsRegex("\ncause: [^\n]*" + faults[line].cause + "\n"));
    EXPECT_THAT(failed.out, IsEmpty());
  }

  modules.clear();
  downloads.clear();
  for (std::size_t line = 0; line < faults.size(); ++line) {
    modules.push_back(StartModule({"--save", SavedPath(line)}, line));
    downloads.push_back(StartDownload(backup, line));
  }
  for (std::size_t line = 0; line < faults.size(); ++line) {
    SCOPED_TRACE(faults[line].option);
    const Result worked = ResultOf(*downloads[line]);
    EXPECT_EQ(worked.code, 0) << worked.err;
    modules[line]->Signal(SIGTERM);
    EXPECT_EQ(modules[line]->Wait(), 0) << modules[line]->Err();
    EXPECT_EQ(ReadAll(SavedPath(line)), kBackup);
  }
}

}  // namespace
}  // namespace vrx::testing
