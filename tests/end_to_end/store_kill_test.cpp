#include <chrono>
#include <csignal>
#include <sstream>
#include <thread>

#include <gtest/gtest.h>

#include "end_to_end/programs_fixture.h"

namespace vrx::testing {
namespace {

// As many one-pen batches as a transaction file holds.
std::string FullFile() {
  std::ostringstream batches;
  std::ostringstream feeds;
  for (int number = 1; number <= 620; ++number) {
    batches << "B," << number << ",3,01052026,1,4,7,0,0;0830,0835,0,0;1,5,0,0;998,503,0,0\r\n";
    feeds << "B," << number << ",12,1,0915,01052026,750,748\r\n";
  }
  return "{BAT/FED},L\r\n[BAT]," + batches.str() + "\r\n[FED]," + feeds.str() + "\r\n";
}

using StoreKilled = ProgramsTest;

// A store that is killed at any moment has stored its whole file or nothing, and the database still
// works.
TEST_F(StoreKilled, LeavesAllOrNothing) {
  const std::string file = folder.Write("FULL.QXT", FullFile()).string();
  const std::string into = NewTransactionDatabase();
  // Every batch again, so that each round stores the whole file also after a round that ended.
  const std::vector<std::string> args = {
      "store", file, "--into", into, "--recipes", SitePath("SITE.RDB"), "--repeated", "all"};
  const int whole = Json::parse(Ctl({"import", file, "--json"}).out)["rows"].get<int>();
  ASSERT_EQ(whole, 3 * 620);
  int killed = 0;
  int stored = 0;
  for (int round = 0; round < 40; ++round) {
    Program store(Bin("vrx2260ctl"), WithDataDir(args), folder.Path().string());
    std::this_thread::sleep_for(std::chrono::milliseconds{3 * round});
    store.Signal(SIGKILL);
    if (store.Wait() == -SIGKILL) {
      ++killed;
    }
    const int rows = Info(into)["rows"].get<int>();
    ASSERT_TRUE(rows == stored || rows == stored + whole) << rows << " after " << stored;
    stored = rows;
  }
  EXPECT_GT(killed, 0);
  const Result after = Ctl(args);
  EXPECT_EQ(after.code, 0) << after.err;
  EXPECT_EQ(Info(into)["rows"], stored + whole);
}

}  // namespace
}  // namespace vrx::testing
