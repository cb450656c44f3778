#include <algorithm>
#include <csignal>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "support/desktop_user.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;

class SecondStart : public DesktopUser {
 protected:
  SecondStart() { MakeDatabases(); }

  // Everything that a start could touch with its bytes and the time of its last change: the user's
  // folders with all that is below them, the folder of the program and the blank databases in it.
  std::vector<std::string> Everything() const {
    std::vector<std::string> files;
    for (const fs::path& place : {folder / "home/data", folder / "home/config"}) {
      files.push_back(Described(fs::directory_entry(place)));
      for (const fs::directory_entry& entry : fs::recursive_directory_iterator(place)) {
        files.push_back(Described(entry));
      }
    }
    for (const char* const name : {"", "QXNULRDB.MDB", "QXNULXDB.MDB"}) {
      files.push_back(Described(fs::directory_entry(Bin(name))));
    }
    std::sort(files.begin(), files.end());
    return files;
  }

 private:
  static std::string Described(const fs::directory_entry& entry) {
    const auto changed = entry.last_write_time().time_since_epoch().count();
    return entry.path().string() + ' ' + std::to_string(changed) + ' ' +
           (entry.is_regular_file() ? ReadAll(entry.path()) : "");
  }
};

TEST_F(SecondStart, WaitsWithItsBoxAndTouchesNothing) {
  const auto first = Start();
  // The list of recent files is written last.
  ASSERT_TRUE(Eventually([&] {
    return HasOpened(*first) && !ValueIn(user_settings, "RecentTransactionDatabases").empty();
  })) << first->Err();
  const std::vector<std::string> before = Everything();
  const auto second = Start();
  // Longer than the splash of a first start is shown.
  std::this_thread::sleep_for(std::chrono::seconds{3});
  EXPECT_FALSE(second->Ended()) << second->Err();
  EXPECT_FALSE(HasOpened(*second));
  EXPECT_EQ(Everything(), before);
  second->Signal(SIGTERM);
  EXPECT_EQ(second->Wait(), 0) << second->Err();
  EXPECT_EQ(Everything(), before);
  EXPECT_TRUE(HasOpened(*first));
  first->Signal(SIGTERM);
  EXPECT_EQ(first->Wait(), 0) << first->Err();
}

TEST_F(SecondStart, HandsItsFilesToTheFirstAndEnds) {
  const auto first = Start();
  ASSERT_TRUE(Eventually([&] { return HasOpened(*first); })) << first->Err();
  const fs::path other = data / "OTHER.RDB";
  fs::copy_file(recipes, other);
  const auto second = Start({other.string()});
  EXPECT_EQ(second->Wait(), 0) << second->Err();
  EXPECT_TRUE(Eventually([&] {
    return ValueIn(user_settings, "RecentRecipeDatabases") ==
           other.string() + "\\n" + recipes.string();
  })) << ReadAll(user_settings);
  first->Signal(SIGTERM);
  EXPECT_EQ(first->Wait(), 0) << first->Err();
  EXPECT_FALSE(fs::exists(folder / "home/run/vrx2260.socket"));
}

// The second one may come before the first one listens.
TEST_F(SecondStart, HandsItsFilesToOneThatIsStarting) {
  const fs::path other = data / "OTHER.RDB";
  fs::copy_file(recipes, other);
  const auto first = Start();
  ASSERT_TRUE(Eventually([&] { return fs::exists(lock); }));
  const auto second = Start({other.string()});
  EXPECT_EQ(second->Wait(), 0) << second->Err();
  EXPECT_TRUE(Eventually(
      [&] { return ValueIn(user_settings, "RecentRecipeDatabases").starts_with(other.string()); }));
  first->Signal(SIGTERM);
  EXPECT_EQ(first->Wait(), 0) << first->Err();
}

TEST_F(SecondStart, AnOptionIsRefusedWithTheUsage) {
  const auto program = Start({"--bogus"});
  EXPECT_EQ(program->Wait(), 2);
  EXPECT_EQ(program->Err(), "usage: vrx2260 [FILE]...\n");
}

}  // namespace
}  // namespace vrx::testing
