#include "adapters/local_machine.h"

#include <filesystem>

#include <gtest/gtest.h>

#include "support/environment.h"

namespace vrx::testing {
namespace {

TEST(LinuxSystemInfo, CommonFolderIsTheDataHome) {
  const Environment data_home("XDG_DATA_HOME", "/data");
  EXPECT_EQ(LinuxSystemInfo().CommonAppDataFolder(), "/data");
}

TEST(LinuxSystemInfo, RelativeDataHomeIsIgnored) {
  const Environment data_home("XDG_DATA_HOME", "data");
  const Environment home("HOME", "/home/miller");
  EXPECT_EQ(LinuxSystemInfo().CommonAppDataFolder(), "/home/miller/.local/share");
}

TEST(LinuxSystemInfo, NoHomeIsNoFolder) {
  const Environment data_home("XDG_DATA_HOME", "");
  const Environment home("HOME", "");
  EXPECT_EQ(LinuxSystemInfo().CommonAppDataFolder(), "");
}

TEST(LinuxSystemInfo, ProgramDirectoryHoldsTheRunningProgram) {
  EXPECT_TRUE(std::filesystem::exists(std::filesystem::path(LinuxSystemInfo().ProgramDirectory()) /
                                      "adapters_test"));
}

TEST(LocalCalendar, TodayIsADayThatExists) {
  const Date today = LocalCalendar().Today();
  EXPECT_TRUE(today.ok());
  EXPECT_GE(static_cast<int>(today.year()), 2026);
}

TEST(LocalNow, IsAMomentOfADay) {
  const LocalTime now = LocalNow();
  EXPECT_TRUE(now.date.ok());
  EXPECT_GE(now.time_of_day, std::chrono::hours{0});
  EXPECT_LT(now.time_of_day, std::chrono::hours{24});
}

}  // namespace
}  // namespace vrx::testing
