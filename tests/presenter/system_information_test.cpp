#include <filesystem>
#include <ostream>

#include <gtest/gtest.h>

#include "presenter/help.h"
#include "support/fake_operating_system.h"
#include "support/fixed_system_info.h"
#include "support/recording_operator.h"
#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;

struct VersionCase {
  OsVersion version;
  const char* name;
};

std::ostream& operator<<(std::ostream& out, const VersionCase& row) {
  return out << row.version.platform << ' ' << row.version.major << '.' << row.version.minor;
}

class GetOSVersionTable : public ::testing::TestWithParam<VersionCase> {};

TEST_P(GetOSVersionTable, NamesTheSystem) {
  FakeOperatingSystem os;
  RecordingOperator op;
  os.version = GetParam().version;
  EXPECT_EQ(GetOSVersion(os, op), GetParam().name);
  EXPECT_TRUE(op.boxes.empty());
}

INSTANTIATE_TEST_SUITE_P(
    Versions, GetOSVersionTable,
    ::testing::Values(VersionCase{{0, 3, 10}, "Win 3.1"}, VersionCase{{1, 4, 0}, "Win95"},
                      VersionCase{{1, 4, 10}, "Win98"}, VersionCase{{1, 4, 90}, "WinME"},
                      VersionCase{{1, 4, 11}, "Unknown Win32"}, VersionCase{{2, 3, 51}, "NT 3.51"},
                      VersionCase{{2, 4, 0}, "NT 4.0"}, VersionCase{{2, 5, 0}, "Win2000"},
                      VersionCase{{2, 5, 1}, "WinXP"}, VersionCase{{2, 5, 2}, "Win2003"},
                      VersionCase{{2, 5, 3}, "Unknown Win32NT"},
                      VersionCase{{2, 6, 1}, "Unknown Win32NT6"},
                      VersionCase{{2, 10, 0}, "Unknown Win32NT"}, VersionCase{{3, 5, 0}, "Win CE"},
                      VersionCase{{4, 6, 1}, "Unix"}, VersionCase{{5, 0, 0}, "Unknown"},
                      VersionCase{{-1, 0, 0}, "Unknown"}));

class Windows6 : public ::testing::Test {
 protected:
  Windows6() { os.version = {2, 6, 1}; }

  std::string Named(const std::string& product) {
    os.value = RegistryValue{.binary = false, .bytes = product};
    return GetOSVersion(os, op);
  }

  FakeOperatingSystem os;
  RecordingOperator op;
};

TEST_F(Windows6, IsNamedByItsProductName) {
  EXPECT_EQ(Named("Windows Vista (TM) Business"), "Vista");
  EXPECT_EQ(Named("Windows Server (R) 2008 Standard"), "Win2008");
  EXPECT_EQ(Named("Windows 7 Professional"), "Windows 7");
  EXPECT_EQ(Named("Windows 8.1"), "Unknown Win32NT6");
  EXPECT_EQ(os.opened_root, RegistryRoot::kLocalMachine);
  EXPECT_EQ(os.opened_path, R"(SOFTWARE\Microsoft\Windows NT\CurrentVersion)");
  EXPECT_EQ(os.open_keys, 0);
}

TEST_F(Windows6, ProductNameMindsNoCase) {
  EXPECT_EQ(Named("WINDOWS VISTA"), "Vista");
  EXPECT_EQ(Named("windows sErVeR"), "Win2008");
  EXPECT_EQ(Named("WINDOWS 7"), "Windows 7");
}

TEST_F(Windows6, VistaComesBeforeServerAndServerBeforeWindows7) {
  EXPECT_EQ(Named("Vista Server Windows 7"), "Vista");
  EXPECT_EQ(Named("Windows 7 Server"), "Win2008");
}

TEST_F(Windows6, KeyThatCannotBeClosedIsReportedAndTheNameIsStillReturned) {
  os.closes = false;
  EXPECT_EQ(Named("Windows 7 Home"), "Windows 7");
  ASSERT_EQ(op.boxes.size(), 1U);
  EXPECT_EQ(op.boxes[0].title, "wmFunctions.GetOSVersion");
  EXPECT_EQ(op.boxes[0].text, "Error closing key.");
}

TEST(GetKeyValue, TextIsCutAtItsFirstNul) {
  FakeOperatingSystem os;
  os.value = RegistryValue{.binary = false, .bytes = std::string("abc\0def\0", 8)};
  std::string text;
  const KeyValueResult result =
      GetKeyValue(os, RegistryRoot::kCurrentUser, "Software", "ProductName", text);
  EXPECT_TRUE(result.read);
  EXPECT_TRUE(result.closed);
  EXPECT_EQ(text, "abc");
}

TEST(GetKeyValue, BinaryComesOutInHexadecimal) {
  FakeOperatingSystem os;
  os.value = RegistryValue{.binary = true, .bytes = std::string("\x1f\x02\0\xa0", 4)};
  std::string text;
  EXPECT_TRUE(GetKeyValue(os, RegistryRoot::kLocalMachine, "Software", "ProductName", text).read);
  EXPECT_EQ(text, "&hA000021F");
}

TEST(GetKeyValue, MissingKeyOrValueLeavesTheText) {
  FakeOperatingSystem os;
  std::string text = "before";
  EXPECT_FALSE(GetKeyValue(os, RegistryRoot::kLocalMachine, "None", "ProductName", text).read);
  os.value = RegistryValue{};
  EXPECT_FALSE(GetKeyValue(os, RegistryRoot::kLocalMachine, "Key", "Other", text).read);
  EXPECT_EQ(text, "before");
  EXPECT_EQ(os.open_keys, 0);
}

TEST(GetTheWindowsDirectory, GivesWhatFitsItsBuffer) {
  FixedSystemInfo system;
  system.windows_directory = std::string(249, 'w');
  EXPECT_EQ(GetTheWindowsDirectory(system), system.windows_directory);
  system.windows_directory += 'w';
  EXPECT_EQ(GetTheWindowsDirectory(system), "");
}

class StartSysInfoTest : public ::testing::Test {
 protected:
  StartSysInfoTest() {
    system.program_directory = "/program";
    system.windows_directory = folder.Path().string();
  }

  void RunOnWindows7() {
    os.version = {2, 6, 1};
    os.value = RegistryValue{.binary = false, .bytes = "Windows 7"};
    StartSysInfo(system, os, op);
  }

  void ExpectUnavailable() const {
    ASSERT_EQ(op.boxes.size(), 1U);
    EXPECT_EQ(op.boxes[0].icon, Icon::kNone);
    EXPECT_EQ(op.boxes[0].title, "");
    EXPECT_EQ(op.boxes[0].text, "System Information Is Unavailable At This Time");
  }

  TempFolder folder;
  FixedSystemInfo system;
  FakeOperatingSystem os;
  RecordingOperator op;
};

TEST_F(StartSysInfoTest, StartsTheToolBesideTheProgramOnOtherSystems) {
  StartSysInfo(system, os, op);
  EXPECT_EQ(os.started, std::vector<fs::path>{"/program/MSINFO32.exe"});
  EXPECT_TRUE(op.boxes.empty());
}

TEST_F(StartSysInfoTest, StartsTheToolOfTheSystemOnWindows7) {
  fs::create_directory(folder / "System32");
  folder.Write("System32/MSINFO32.exe", "tool");
  RunOnWindows7();
  EXPECT_EQ(os.started, std::vector<fs::path>{folder / "System32/MSINFO32.exe"});
  EXPECT_TRUE(op.boxes.empty());
}

TEST_F(StartSysInfoTest, StartsTheToolOfTheSystemOnVista) {
  fs::create_directory(folder / "System32");
  folder.Write("System32/MSINFO32.exe", "tool");
  os.version = {2, 6, 0};
  os.value = RegistryValue{.binary = false, .bytes = "Windows Vista"};
  StartSysInfo(system, os, op);
  EXPECT_EQ(os.started, std::vector<fs::path>{folder / "System32/MSINFO32.exe"});
}

TEST_F(StartSysInfoTest, ReportsOfAMissingFolder) {
  RunOnWindows7();
  EXPECT_TRUE(os.started.empty());
  ExpectUnavailable();
}

TEST_F(StartSysInfoTest, ReportsOfAMissingTool) {
  fs::create_directory(folder / "System32");
  RunOnWindows7();
  EXPECT_TRUE(os.started.empty());
  ExpectUnavailable();
}

TEST_F(StartSysInfoTest, ReportsOfAToolThatDoesNotStart) {
  os.starts = false;
  StartSysInfo(system, os, op);
  EXPECT_EQ(os.started.size(), 1U);
  ExpectUnavailable();
}

}  // namespace
}  // namespace vrx::testing
