#include <filesystem>
#include <fstream>

#include <gmock/gmock.h>

#include "ctl/ctl_fixture.h"

namespace vrx::testing {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;

TEST_F(CtlTest, HelpGoesToTheOutput) {
  EXPECT_EQ(Run({"--help"}), 0);
  EXPECT_THAT(out, HasSubstr("Usage:"));
  for (const char* command :
       {"new", "info", "settings", "list", "set", "module", "import", "store"}) {
    EXPECT_THAT(out, HasSubstr(command));
  }
  EXPECT_THAT(err, IsEmpty());
  EXPECT_EQ(Run({"set", "recipe", "--help"}), 0);
  EXPECT_THAT(out, HasSubstr("--ration-target"));
}

TEST_F(CtlTest, VersionGoesToTheOutput) {
  EXPECT_EQ(Run({"--version"}), 0);
  EXPECT_THAT(out, StartsWith("vrx2260ctl "));
}

TEST_F(CtlTest, WrongUsageExitsWithTwoAndAHint) {
  const std::vector<std::vector<std::string>> usages = {
      {},
      {"fly"},
      {"new"},
      {"new", "recipe"},
      {"new", "sheep", "A.RDB"},
      {"new", "recipe", "A.RDB", "--units", "ST"},
      {"info"},
      {"list", "cows", "A.RDB"},
      {"list", "pens", "A.RDB", "--csv", "--json"},
      {"list", "pens", "A.RDB", "B.RDB"},
      {"set"},
      {"set", "pen", "A.RDB"},
      {"set", "pen", "A.RDB", "0", "--name", "A"},
      {"set", "pen", "A.RDB", "401", "--name", "A"},
      {"set", "pen", "A.RDB", "one", "--name", "A"},
      {"set", "pen", "A.RDB", "1"},
      {"set", "pen", "A.RDB", "1", "--dry-matter", "88"},
      {"set", "ingredient", "A.RDB", "1", "--hand-add", "maybe"},
      {"set", "recipe", "A.RDB", "1", "--type", "X"},
      {"set", "recipe", "A.RDB", "1", "--adjust", "21"},
      {"set", "recipe", "A.RDB", "1", "--adjust", "-21"},
      {"set", "recipe", "A.RDB", "1", "--adjust", "1.5"},
      {"settings", "NoSuchKey"},
      {"module"},
      {"module", "test"},
      {"module", "test", "--port", "0"},
      {"module", "baud", "4800", "--port", "1"},
      {"module", "upload", "--port", "1"},
      {"import"},
      {"store", "A.QXT", "--into", "A.TDB"},
      {"info", "A.RDB", "--csv"},
  };
  for (const auto& usage : usages) {
    std::string shown;
    for (const std::string& arg : usage) {
      shown += arg + " ";
    }
    EXPECT_EQ(Run(usage), 2) << shown;
    EXPECT_THAT(err, HasSubstr("--help")) << shown;
    EXPECT_THAT(out, IsEmpty()) << shown;
  }
}

TEST_F(CtlTest, AnUnknownCommandIsNamed) {
  EXPECT_EQ(Run({"fly"}), 2);
  EXPECT_THAT(err, StartsWith("fly is no command\n"));
}

TEST_F(CtlTest, AnOutputThatCannotBeWrittenFails) {
  out_file = "/dev/full";
  EXPECT_EQ(Run({"settings"}), 1);
  EXPECT_EQ(err, "Error: the standard output could not be written\n");
}

TEST_F(CtlTest, GlobalOptionsMayAlsoFollowACommand) {
  EXPECT_EQ(RunBare({"settings", "SystemUnits", "--data-dir", (folder / "data").string(), "--yes"}),
            0);
  EXPECT_EQ(out, "LB\n");
}

TEST_F(CtlTest, AMissingIniFileIsCreatedAndReported) {
  const std::string fresh = (folder / "a" / "b").string();
  EXPECT_EQ(RunBare({"--data-dir", fresh, "settings", "SerialPort"}), 0);
  EXPECT_EQ(out, "2\n");
  EXPECT_THAT(err, StartsWith("No Configuration File: The applications configuration file could "
                              "not be found."));
  EXPECT_TRUE(std::filesystem::exists(fresh + "/VRX-2260.INI"));
  EXPECT_EQ(RunBare({"--data-dir", fresh, "settings", "SerialPort"}), 0);
  EXPECT_THAT(err, IsEmpty());
}

TEST_F(CtlTest, WithoutADataDirTheCommonDataFolderHoldsTheIniFile) {
  EXPECT_EQ(RunBare({"settings", "SerialPort"}), 0);
  EXPECT_TRUE(std::filesystem::exists(folder / "share/Brantock/VRX-2260/VRX-2260.INI"));
}

TEST_F(CtlTest, WritingASettingNeedsADataDir) {
  const std::string file = folder.Write("file", "x").string();
  EXPECT_EQ(RunBare({"--data-dir", file + "/data", "settings", "SerialPort", "3"}), 1);
  EXPECT_THAT(err, HasSubstr("cannot make the folder " + file + "/data"));
  EXPECT_THAT(out, IsEmpty());
}

TEST_F(CtlTest, ARelativeDataDirIsNamedAsAWhole) {
  const std::string file = std::filesystem::relative(folder.Write("file", "x")).string();
  EXPECT_EQ(RunBare({"--data-dir", file + "/data", "settings", "SerialPort", "3"}), 1);
  EXPECT_THAT(err, HasSubstr("cannot make the folder " +
                             (std::filesystem::current_path() / file).string() + "/data"));
}

TEST_F(CtlTest, SettingsAreListedWithTheirKeys) {
  EXPECT_EQ(Run({"settings"}), 0);
  EXPECT_EQ(out,
            "Key\tValue\nSerialPort\t2\nKRMBaudRate\t19200\nSystemUnits\tLB\nAutoAbbreviate\tYES\n"
            "ShowImportProgress\tYES\nEnableBeeper\tYES\nPrintCurrentRecipeOnly\tYES\n"
            "EnablePrintText\tNO\nBatchTargetWtIsRecTarget\tYES\nAutoloadRecipeDB\tNO\n"
            "AutoloadTransDB\tNO\nPrintGridLines\tYES\nDifferenceTolerance\t2\n"
            "WithinPercent\t2\nWithinWeight\t5\nBeyondWeight\t62.5\nScaleDivision\t0\n"
            "BalancePercent\t2\nBalanceWeight\t50\nConnection\t\nYard\t\nAutomatic\tNO\n");
}

TEST_F(CtlTest, TheSettingsOfTheCentralDatabaseAreWrittenAndRead) {
  EXPECT_EQ(Run({"settings", "connection", "host=db.example.com dbname=central"}), 0) << err;
  EXPECT_EQ(Run({"settings", "Yard", "North 1"}), 0) << err;
  EXPECT_EQ(Run({"settings", "Automatic", "yes"}), 0) << err;
  EXPECT_THAT(ReadAll(folder / "data/VRX-2260.INI"),
              HasSubstr("[Central]\r\nConnection=host=db.example.com dbname=central\r\n"
                        "Yard=North 1\r\nAutomatic=YES"));
  EXPECT_EQ(Run({"settings", "Connection"}), 0);
  EXPECT_EQ(out, "host=db.example.com dbname=central\n");
  EXPECT_EQ(Run({"settings"}), 0);
  EXPECT_THAT(out, HasSubstr("\nYard\tNorth 1\nAutomatic\tYES\n"));
  EXPECT_EQ(Run({"settings", "SystemUnits"}), 0);
  EXPECT_EQ(out, "LB\n");
  EXPECT_EQ(Run({"settings", "Connection", ""}), 0);
  EXPECT_EQ(Run({"settings", "Connection"}), 0);
  EXPECT_EQ(out, "\n");
}

TEST_F(CtlTest, APasswordIsNoPartOfASetting) {
  const std::string before = ReadAll(folder / "data/VRX-2260.INI");
  EXPECT_EQ(Run({"settings", "Connection", "host=db password=hunter2"}), 1);
  EXPECT_THAT(err, HasSubstr("Settings Error: a password does not belong into the connection"));
  EXPECT_THAT(err, Not(HasSubstr("hunter2")));
  EXPECT_EQ(Run({"settings", "Connection", "nonsense"}), 1);
  EXPECT_EQ(Run({"settings", "Automatic", "maybe"}), 1);
  EXPECT_EQ(err, "Settings Error: Automatic cannot be 'maybe'.\n");
  EXPECT_EQ(ReadAll(folder / "data/VRX-2260.INI"), before);
}

TEST_F(CtlTest, ASettingIsWrittenAndRead) {
  EXPECT_EQ(Run({"settings", "systemunits", "kg"}), 0) << err;
  EXPECT_EQ(out, "");
  EXPECT_EQ(Run({"settings", "SystemUnits"}), 0);
  EXPECT_EQ(out, "KG\n");
  EXPECT_EQ(Run({"settings", "EnableBeeper", "no"}), 0);
  EXPECT_THAT(ReadAll(folder / "data/VRX-2260.INI"), HasSubstr("EnableBeeper=NO"));
}

TEST_F(CtlTest, EachBaudRateOfTheModuleIsASetting) {
  for (const char* const rate : {"1200", "2400", "9600", "19200"}) {
    EXPECT_EQ(Run({"settings", "KRMBaudRate", rate}), 0);
    EXPECT_EQ(Run({"settings", "KRMBaudRate"}), 0);
    EXPECT_EQ(out, rate + std::string("\n"));
  }
}

// The program treats any text except YES as off.
TEST_F(CtlTest, SettingsPrintTheValueInForce) {
  const std::filesystem::path ini = folder / "data/VRX-2260.INI";
  std::string text = ReadAll(ini);
  text.replace(text.find("EnableBeeper=YES"), 16, "EnableBeeper=yes");
  std::ofstream(ini, std::ios::binary) << text;
  EXPECT_EQ(Run({"settings", "EnableBeeper"}), 0);
  EXPECT_EQ(out, "NO\n");
  EXPECT_EQ(Run({"settings"}), 0);
  EXPECT_THAT(out, HasSubstr("\nEnableBeeper\tNO\n"));
}

TEST_F(CtlTest, AValueThatASettingDoesNotHaveIsRefused) {
  const std::string before = ReadAll(folder / "data/VRX-2260.INI");
  const std::vector<std::pair<std::string, std::string>> wrong = {
      {"SystemUnits", "TON"}, {"EnableBeeper", "maybe"}, {"KRMBaudRate", "4800"},
      {"SerialPort", "COM1"}, {"SerialPort", "0"},       {"SerialPort", ""}};
  for (const auto& [key, value] : wrong) {
    EXPECT_EQ(Run({"settings", key, value}), 1) << key << value;
    const std::string refusal = "Settings Error: " + key + " cannot be '";
    EXPECT_EQ(err, refusal + value + "'.\n");
  }
  EXPECT_EQ(ReadAll(folder / "data/VRX-2260.INI"), before);
}

}  // namespace
}  // namespace vrx::testing
