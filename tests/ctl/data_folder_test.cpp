// Commands that only read, with an unusable data folder.

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "ctl/ctl_fixture.h"
#include "support/database_files.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

class DataFolder : public CtlTest {
 protected:
  // A user without rights can read it too.
  DataFolder() {
    using enum fs::perms;
    fs::permissions(folder.Path(), group_read | group_exec | others_read | others_exec,
                    fs::perm_options::add);
  }

  // Every command that only reads; what it prints does not depend on the data folder.
  std::vector<std::vector<std::string>> Readers() const {
    return {{"info", SitePath("SITE.RDB")},
            {"list", "pens", SitePath("SITE.RDB")},
            {"recipe", SitePath("SITE.RDB"), "1"},
            {"where-used", SitePath("SITE.RDB"), "1"},
            {"download-text", SitePath("SITE.RDB")},
            {"import", SitePath("day05.qxt"), "--json"},
            {"groups"},
            {"show", database, "--group", "3"},
            {"settings"}};
  }
  std::string OutputIn(const fs::path& data_folder, std::vector<std::string> command) {
    command.insert(command.begin(), {"--data-dir", data_folder.string()});
    EXPECT_EQ(RunBare(command), 0) << command[2] << ": " << err;
    return out;
  }

  std::string database = NewTransactionDatabase();
};

TEST_F(DataFolder, OneThatCannotBeCreatedStopsNoCommandThatOnlyReads) {
  const fs::path nowhere = folder.Write("file", "x") / "data";
  for (const std::vector<std::string>& command : Readers()) {
    const std::string usual = OutputIn(folder / "data", command);
    EXPECT_THAT(usual, Not(IsEmpty()));
    EXPECT_EQ(OutputIn(nowhere, command), usual) << command.front();
    EXPECT_THAT(err, IsEmpty()) << command.front();
  }
}

TEST_F(DataFolder, OneThatCannotBeWrittenStopsNoCommandThatOnlyReads) {
  const fs::path empty = folder / "empty";
  const fs::path half = folder / "half";
  fs::create_directory(empty);
  fs::create_directory(half);
  std::ofstream(half / "VRX-2260.INI") << "[Comments]\nTitle=x\n[Options]\nEnablePrintText=YES\n";
  for (const fs::path& data_folder : {empty, half}) {
    const WithoutWritePermission held(data_folder);
    for (const std::vector<std::string>& command : Readers()) {
      EXPECT_THAT(OutputIn(data_folder, command), Not(IsEmpty()));
      EXPECT_THAT(err, IsEmpty()) << command.front();
    }
  }
  const WithoutWritePermission held(half);
  EXPECT_EQ(OutputIn(half, {"settings", "EnablePrintText"}), "YES\n");
}

TEST_F(DataFolder, TheCommonOneIsDoneWithoutToo) {
  for (const std::string& common : {folder.Write("common", "x").string(), std::string()}) {
    system.common_app_data_folder = common;
    EXPECT_EQ(RunBare({"info", SitePath("SITE.RDB")}), 0) << err;
    EXPECT_THAT(err, IsEmpty());
    EXPECT_EQ(RunBare({"settings", "SerialPort", "3"}), 1);
  }
}

TEST_F(DataFolder, SettingsThatCannotBeReadAreReportedAndTheDefaultsHold) {
  const fs::path data_folder = folder / "large";
  fs::create_directory(data_folder);
  std::ofstream(data_folder / "VRX-2260.INI") << std::string(std::size_t{2} << 20U, ' ');
  EXPECT_EQ(OutputIn(data_folder, {"settings", "SystemUnits"}), "LB\n");
  EXPECT_THAT(err, HasSubstr("INI File Error: Unable to read some or all"));
  EXPECT_THAT(err, HasSubstr("too large for a settings file"));
}

TEST_F(DataFolder, ACommandThatWritesStillNeedsIt) {
  const std::string nowhere = (folder.Write("file", "x") / "data").string();
  const std::string made = (folder / "NEW.RDB").string();
  EXPECT_EQ(RunBare({"--data-dir", nowhere, "new", "recipe", made}), 1);
  EXPECT_THAT(err, HasSubstr("cannot make the folder"));
  EXPECT_FALSE(fs::exists(made));
}

}  // namespace
}  // namespace vrx::testing
