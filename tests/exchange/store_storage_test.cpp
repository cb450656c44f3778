#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <stdexcept>
#include <string>
#include <thread>

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "database/connection.h"
#include "exchange/store_fixture.h"
#include "support/private_mounts.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

ImportedData FourRows() {
  return MakeImport({BatchCells(1, 3, 4, "1"), BatchCells(1, 3, 5, "2"), BatchCells(2, 3, 4, "3"),
                     FeedCells(2, 3, 12, "4")});
}

// Nothing of the import is stored, and a second press does not treat it as stored.
void ExpectNothingStored(StoreFixture& site, const StoreOutcome& outcome, const std::string& text) {
  EXPECT_FALSE(outcome.complete);
  EXPECT_EQ(outcome.stored, 0U);
  EXPECT_FALSE(site.stored_flag);
  EXPECT_EQ(site.saves, 0);
  EXPECT_EQ(site.progress.Message(), "");
  ASSERT_THAT(site.op.boxes, SizeIs(1));
  EXPECT_EQ(site.op.boxes[0].title, "Transaction Store Error");
  EXPECT_EQ(site.op.boxes[0].icon, Icon::kCritical);
  EXPECT_EQ(site.op.boxes[0].text, text);
  EXPECT_THAT(site.op.boxes[0].cause, HasSubstr("nothing of this import was stored"));
}

TEST(StoreStorageFailure, DuringTheCopyStoresNothing) {
  StoreFixture site;
  Execute(site.databases.trans_db_path,
          "CREATE TRIGGER Stop BEFORE INSERT ON Transactions WHEN NEW.ActualBatch = 3 "
          "BEGIN SELECT RAISE(ABORT, 'stopped'); END");
  ExpectNothingStored(site, site.Store(FourRows()), "Error: 1811");
  EXPECT_THAT(site.Stored(), IsEmpty());
  EXPECT_EQ(QueryText(site.databases.trans_db_path, "SELECT Modified FROM History"), "NULL");
}

TEST(StoreStorageFailure, AfterAnEarlierStoreKeepsThatOneAndItsFlag) {
  StoreFixture site;
  ASSERT_TRUE(site.Store(FourRows()).complete);
  fs::rename(site.databases.recipe_db_path, site.folder / "AWAY.RDB");
  site.op.answers = {Answer::kYes};
  EXPECT_FALSE(site.Store(FourRows()).complete);
  EXPECT_TRUE(site.stored_flag);
  EXPECT_THAT(site.Stored(), SizeIs(4));
}

TEST(StoreStorageFailure, AnotherWriterIsReported) {
  StoreFixture site;
  site.databases.lock_wait = std::chrono::milliseconds(0);
  SQLite::Database other = OpenDatabase(site.databases.trans_db_path, Access::kWrite);
  other.exec("BEGIN IMMEDIATE");
  ExpectNothingStored(site, site.Store(FourRows()), "A table in the specified database is locked.");
  other.exec("ROLLBACK");
  EXPECT_THAT(site.Stored(), IsEmpty());
}

TEST(StoreStorageFailure, ACommitBlockedByAReaderStoresNothing) {
  StoreFixture site;
  site.databases.lock_wait = std::chrono::milliseconds(0);
  Execute(site.databases.trans_db_path, "INSERT INTO Transactions ([Transaction]) VALUES (1), (2)");
  SQLite::Database other = OpenDatabase(site.databases.trans_db_path, Access::kRead);
  SQLite::Statement reader(other, "SELECT * FROM Transactions");
  ASSERT_TRUE(reader.executeStep());
  ExpectNothingStored(site, site.Store(FourRows()), "A table in the specified database is locked.");
  reader.reset();
  EXPECT_THAT(site.Stored(), SizeIs(2));
}

TEST(StoreStorageFailure, AMissingFileIsReported) {
  StoreFixture site;
  fs::remove(site.databases.trans_db_path);
  const StoreOutcome outcome = site.Store(FourRows());
  EXPECT_FALSE(outcome.complete);
  ASSERT_THAT(site.op.boxes, SizeIs(1));
  EXPECT_EQ(site.op.boxes[0].title, "Transaction Store Error");
  EXPECT_THAT(site.op.boxes[0].text, HasSubstr("Error: "));
  EXPECT_THAT(site.op.boxes[0].cause, HasSubstr("Y2026.TDB"));
  EXPECT_FALSE(fs::exists(site.databases.trans_db_path));
}

TEST(StoreStorageFailure, AFileThatVanishesDuringTheCopyIsNotTreatedAsStored) {
  StoreFixture site;
  site.progress.on_value = [&](int value) {
    if (value == 3) {
      fs::remove(site.databases.trans_db_path);
    }
  };
  ExpectNothingStored(site, site.Store(FourRows()), "Error: 1032");
  EXPECT_THAT(site.op.boxes[0].cause, HasSubstr("Y2026.TDB was deleted or moved away"));
}

TEST(StoreStorageFailure, AMissingRecipeDatabaseLeavesTheTransactionDatabaseUnchanged) {
  StoreFixture site;
  const std::string before = ReadAll(site.databases.trans_db_path);
  fs::remove(site.databases.recipe_db_path);
  EXPECT_FALSE(site.Store(FourRows()).complete);
  ASSERT_THAT(site.op.boxes, SizeIs(1));
  EXPECT_THAT(site.op.boxes[0].cause, HasSubstr("YARD.RDB"));
  EXPECT_EQ(ReadAll(site.databases.trans_db_path), before);
}

TEST(StoreStorageFailure, AMissingTableIsReported) {
  StoreFixture site;
  Execute(site.databases.trans_db_path, "DROP TABLE Transactions");
  ExpectNothingStored(site, site.Store(FourRows()),
                      "There is an invalid table in the specified database.");
}

TEST(StoreStorageFailure, AnyOtherFailureDuringTheCopyStoresNothing) {
  StoreFixture site;
  site.progress.on_value = [](int value) {
    if (value == 3) {
      throw std::runtime_error("the display is gone");
    }
  };
  EXPECT_FALSE(site.Store(FourRows()).complete);
  EXPECT_EQ(LastBox(site.op.boxes).text,
            "the display is gone\r\n\r\nNothing of this import was stored.");
  EXPECT_EQ(site.progress.Message(), "");
  EXPECT_THAT(site.Stored(), IsEmpty());
  EXPECT_FALSE(site.stored_flag);
}

TEST(StoreStorageFailure, ADateThatCannotBeWrittenStoresNothing) {
  StoreFixture site;
  Execute(site.databases.trans_db_path,
          "CREATE TRIGGER Stop BEFORE UPDATE ON History "
          "BEGIN SELECT RAISE(ABORT, 'stopped'); END");
  EXPECT_FALSE(site.Store(FourRows()).complete);
  EXPECT_EQ(LastBox(site.op.boxes).title, "Transaction Store Error");
  EXPECT_THAT(site.Stored(), IsEmpty());
  EXPECT_FALSE(site.stored_flag);
}

// A running store_process, killed by the destructor at the latest.
class StoreProcess {
 public:
  StoreProcess(const OpenDatabases& databases, int rows) {
    std::array<int, 2> pipe_ends{};
    if (pipe(pipe_ends.data()) != 0) {
      throw std::runtime_error("no pipe");
    }
    const std::string row_count = std::to_string(rows);
    process_ = fork();
    if (process_ == 0) {
      dup2(pipe_ends[1], STDOUT_FILENO);
      execl(STORE_PROCESS, STORE_PROCESS, databases.recipe_db_path.c_str(),
            databases.trans_db_path.c_str(), row_count.c_str(), nullptr);
      _exit(127);
    }
    close(pipe_ends[1]);
    output_ = pipe_ends[0];
    if (!Says("ready\n")) {
      Kill();
      throw std::runtime_error("store_process did not start");
    }
  }
  ~StoreProcess() {
    Kill();
    close(output_);
  }
  StoreProcess(const StoreProcess&) = delete;
  StoreProcess& operator=(const StoreProcess&) = delete;

  // Waits for the end of the first store. Returns false if the process ended before.
  bool FirstIsStored() { return Says("stored\n"); }

  // Returns true if it was still running.
  bool Kill() {
    if (process_ <= 0) {
      return false;
    }
    kill(process_, SIGKILL);
    int status = 0;
    waitpid(process_, &status, 0);
    process_ = 0;
    return WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
  }

 private:
  bool Says(const std::string& words) const {
    std::string said;
    for (char next = 0; said.size() < words.size() && read(output_, &next, 1) == 1;) {
      said += next;
    }
    return said == words;
  }

  pid_t process_ = 0;
  int output_ = -1;
};

// Checks the integrity of a database and returns its number of rows.
int RowsOfWholeDatabase(const fs::path& path) {
  SQLite::Database database = OpenDatabase(path, Access::kWrite);
  EXPECT_EQ(database.execAndGet("PRAGMA integrity_check").getString(), "ok");
  return database.execAndGet("SELECT COUNT(*) FROM Transactions").getInt();
}

TEST(StoreCrash, AKillAtAnyMomentLeavesWholeImportsOnly) {
  constexpr int kRounds = 20;
  constexpr int kRows = 400;
  StoreFixture site;
  const fs::path journal = site.databases.trans_db_path.string() + "-journal";
  std::mt19937 random(7);
  std::uniform_real_distribution<double> stores(0, 2);
  int rows = 0;
  int interrupted = 0;
  for (int round = 0; round < kRounds; ++round) {
    SCOPED_TRACE(round);
    StoreProcess process(site.databases, kRows);
    const auto begin = std::chrono::steady_clock::now();
    ASSERT_TRUE(process.FirstIsStored());
    const auto one_store = std::chrono::steady_clock::now() - begin;
    // A random time within two stores, for any speed of the disk.
    std::this_thread::sleep_for(one_store * stores(random));
    ASSERT_TRUE(process.Kill());
    interrupted += fs::exists(journal) ? 1 : 0;
    const int now = RowsOfWholeDatabase(site.databases.trans_db_path);
    EXPECT_EQ(now % kRows, 0);
    EXPECT_GE(now, rows + kRows);
    EXPECT_EQ(QueryText(site.databases.trans_db_path,
                        "SELECT COUNT(*) FROM (SELECT 1 FROM Transactions GROUP BY [Transaction] "
                        "HAVING COUNT(*) <> 4)"),
              "0");
    rows = now;
  }
  // Kills between two stores would prove nothing.
  EXPECT_GT(interrupted, 0);
}

TEST(StoreFullDisk, FailsClearlyAndLeavesWholeImportsOnly) {
  StoreFixture site;
  const std::string output = RunWithMounts(R"(
      mkdir "$1/disk" "$1/out"
      mount -t tmpfs -o size=2m tmpfs "$1/disk"
      cp "$1/YARD.RDB" "$1/Y2026.TDB" "$1/disk"
      "$2" "$1/disk/YARD.RDB" "$1/disk/Y2026.TDB" 200 || echo "exit $?"
      cp "$1"/disk/Y2026.TDB* "$1/out"
      umount "$1/disk")",
                                           {site.folder.Path().string(), STORE_PROCESS});
  EXPECT_THAT(output, HasSubstr("Transaction Store Error: Error: 13\n"));
  EXPECT_THAT(output, HasSubstr("disk is full; nothing of this import was stored"));
  EXPECT_THAT(output, HasSubstr("exit 1\n"));
  ASSERT_TRUE(fs::exists(site.folder / "out" / "Y2026.TDB")) << output;
  const int rows = RowsOfWholeDatabase(site.folder / "out" / "Y2026.TDB");
  EXPECT_GT(rows, 0);
  EXPECT_EQ(rows % 200, 0);
}

TEST(StoreReadOnlyDisk, FailsClearlyAndChangesNothing) {
  StoreFixture site;
  const std::string output = RunWithMounts(R"(
      mkdir "$1/disk"
      mount -t tmpfs -o size=2m tmpfs "$1/disk"
      cp "$1/YARD.RDB" "$1/Y2026.TDB" "$1/disk"
      mount -o remount,bind,ro "$1/disk"
      "$2" "$1/disk/YARD.RDB" "$1/disk/Y2026.TDB" 200 || echo "exit $?"
      cmp "$1/Y2026.TDB" "$1/disk/Y2026.TDB" && echo unchanged
      umount "$1/disk")",
                                           {site.folder.Path().string(), STORE_PROCESS});
  EXPECT_THAT(output, HasSubstr("Transaction Store Error: Error: "));
  EXPECT_THAT(output, HasSubstr("nothing of this import was stored"));
  EXPECT_THAT(output, HasSubstr("exit 1\nunchanged\n"));
}

}  // namespace
}  // namespace vrx::testing
