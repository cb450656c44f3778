#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>
#include <thread>

#include <SQLiteCpp/Database.h>

#include "support/desktop_user.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using std::chrono::milliseconds;

// The desktop program, killed while it starts, loads, is idle or ends.
class DesktopKilled : public DesktopUser {
 protected:
  DesktopKilled() {
    MakeDatabases();
    recipe_rows_ = RowsOf(recipes);
    transaction_rows_ = RowsOf(transactions);
  }

  int Pick(int least, int most) { return std::uniform_int_distribution<int>(least, most)(random_); }

  // From the first instruction to the main window with its databases.
  void KillStart() {
    WriteShortIni();
    const auto program = Start();
    std::this_thread::sleep_for(milliseconds{Pick(0, 3000)});
    program->Signal(SIGKILL);
    EXPECT_EQ(program->Wait(), -SIGKILL) << program->Err();
  }

  // While the settings of an exit are written; it may be faster.
  void KillExit() {
    const auto program = Start();
    EXPECT_TRUE(Eventually([&] { return HasOpened(*program); })) << program->Err();
    program->Signal(SIGTERM);
    std::this_thread::sleep_for(std::chrono::microseconds{Pick(0, 60'000)});
    program->Signal(SIGKILL);
    const int code = program->Wait();
    EXPECT_TRUE(code == 0 || code == -SIGKILL) << code << program->Err();
  }

  // Nothing is half written, and the databases keep their contents.
  void ExpectReadableFiles() const {
    EXPECT_EQ(ValueIn(ini, "Title"), "x");
    EXPECT_EQ(ValueIn(ini, "SystemUnits"), "LB");
    EXPECT_EQ(ValueIn(ini, "AutoloadTransDB"), "YES");
    EXPECT_EQ(ValueIn(user_settings, "MRU_RecipePathName"), recipes.string());
    EXPECT_EQ(ValueIn(user_settings, "MRU_TransPathName"), transactions.string());
    EXPECT_EQ(RowsOf(recipes), recipe_rows_);
    EXPECT_EQ(RowsOf(transactions), transaction_rows_);
  }

  // The program opens both databases, repairs its INI file and exits normally.
  void ExpectNextStartWorks() const {
    const auto program = Start();
    EXPECT_TRUE(Eventually([&] { return HasOpened(*program); })) << program->Err();
    program->Signal(SIGTERM);
    EXPECT_EQ(program->Wait(), 0) << program->Err();
    EXPECT_FALSE(fs::exists(lock));
    for (const std::string& key : IniKeys()) {
      EXPECT_NE(ValueIn(ini, key), "") << key;
    }
    EXPECT_NE(ValueIn(user_settings, "MainWidth"), "");
    ExpectReadableFiles();
  }

 private:
  // The rows of its largest table, once the storage engine has found the file in order.
  static int RowsOf(const fs::path& path) {
    SQLite::Database file(path, SQLite::OPEN_READWRITE);
    EXPECT_EQ(file.execAndGet("PRAGMA integrity_check").getString(), "ok") << path;
    return file.execAndGet(path.extension() == ".RDB" ? "SELECT count(*) FROM RecipeRation"
                                                      : "SELECT count(*) FROM Transactions");
  }

  std::mt19937 random_{20260105};
  int recipe_rows_ = 0;
  int transaction_rows_ = 0;
};

// VRX_KILLS sets more than the usual rounds.
int Rounds() {
  const char* const asked = std::getenv("VRX_KILLS");  // NOLINT(concurrency-mt-unsafe): one thread
  return asked != nullptr ? std::stoi(asked) : 12;
}

TEST_F(DesktopKilled, LeavesReadableFilesAndTheNextStartWorks) {
  for (int round = 0; round < Rounds() && !HasFailure(); ++round) {
    SCOPED_TRACE(round);
    if (round % 4 == 3) {
      KillExit();
    } else {
      KillStart();
    }
    ExpectReadableFiles();
  }
  ExpectNextStartWorks();
}

}  // namespace
}  // namespace vrx::testing
