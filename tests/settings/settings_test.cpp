#include "settings/settings.h"

#include <array>
#include <csignal>

#include <gmock/gmock.h>
#include <sys/resource.h>

#include "base/error.h"
#include "base/text.h"
#include "support/fixed_system_info.h"
#include "support/recording_operator.h"
#include "support/temp_folder.h"

namespace vrx {
namespace {

using testing::FixedSystemInfo;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using testing::ReadAll;
using testing::RecordingOperator;
using testing::TempFolder;

constexpr std::string_view kDefaultFile =
    "[Comments]\r\n"
    "Title=VRX-2260 Initialization File\r\n"
    "[Communications]\r\n"
    "SerialPort=2\r\n"
    "KRMBaudRate=19200\r\n"
    "[Configuration]\r\n"
    "SystemUnits=LB\r\n"
    "AutoAbbreviate=YES\r\n"
    "[Options]\r\n"
    "ShowImportProgress=YES\r\n"
    "EnableBeeper=YES\r\n"
    "PrintCurrentRecipeOnly=YES\r\n"
    "EnablePrintText=NO\r\n"
    "BatchTargetWtIsRecTarget=YES\r\n"
    "AutoloadRecipeDB=NO\r\n"
    "AutoloadTransDB=NO\r\n"
    "PrintGridLines=YES\r\n"
    "DifferenceTolerance=2\r\n"
    "[Insight]\r\n"
    "WithinPercent=2\r\n"
    "WithinWeight=5\r\n"
    "BeyondWeight=62.5\r\n"
    "ScaleDivision=0\r\n"
    "BalancePercent=2\r\n"
    "BalanceWeight=50\r\n";

// The default file with one line replaced.
std::string DefaultFileWith(std::string_view line, std::string_view other) {
  std::string file(kDefaultFile);
  const std::size_t at = file.find(line);
  EXPECT_NE(at, std::string::npos) << line;
  return file.replace(at, line.size(), other);
}

class PrivateIniTest : public ::testing::Test {
 protected:
  std::filesystem::path Path() const { return folder / "VRX-2260.INI"; }
  CPrivateINI Ini() { return {Path(), system, op}; }
  // A file cannot contain a file, even for root.
  CPrivateINI BlockedIni() { return {folder.Write("file", "") / "VRX-2260.INI", system, op}; }

  PrivateINI ReadFrom(std::string_view file) {
    folder.Write("VRX-2260.INI", file);
    PrivateINI settings;
    EXPECT_TRUE(settings.ReadIniSettings(Ini()));
    return settings;
  }
  std::string File() const { return ReadAll(Path()); }

  TempFolder folder;
  FixedSystemInfo system;
  RecordingOperator op;
};

TEST_F(PrivateIniTest, AnUnknownSystemDirectoryIsFatal) {
  system.windows_directory.clear();
  EXPECT_THROW(Ini(), Error);
  ASSERT_EQ(op.boxes.size(), 1U);
  EXPECT_EQ(op.boxes[0].icon, Icon::kCritical);
  EXPECT_EQ(op.boxes[0].title, "Fatal Error");
  EXPECT_EQ(op.boxes[0].text,
            "Could not determine path to Windows directory.\r\n"
            "This program will now terminate.");
}

TEST_F(PrivateIniTest, IniPathIsTheSystemsDirectoryWithoutNulls) {
  system.windows_directory = std::string("/usr \0rest", 10);
  EXPECT_EQ(Ini().WinPath(), "/usr");
  EXPECT_EQ(Ini().IniPath(), "/usr");
}

TEST_F(PrivateIniTest, RemoveNullsCutsAtTheFirstNullThenTrims) {
  EXPECT_EQ(CPrivateINI::QX_RemoveNulls(std::string_view(" a \0b", 5)), "a");
}

TEST_F(PrivateIniTest, TheFileExistsIfItsTitleHasAValueWhateverTheArgument) {
  EXPECT_FALSE(Ini().IniFileExists("VRX-2260.INI"));
  folder.Write("VRX-2260.INI", "[COMMENTS]\r\ntitle=x\r\n");
  EXPECT_TRUE(Ini().IniFileExists("VRX-2260.INI"));
  EXPECT_TRUE(Ini().IniFileExists("another"));
  folder.Write("VRX-2260.INI", "[Comments]\r\nTitle=\r\n");
  EXPECT_FALSE(Ini().IniFileExists("VRX-2260.INI"));
}

TEST_F(PrivateIniTest, ReadKeyLeavesTheValueOfAMissingOrEmptyKeyAlone) {
  folder.Write("VRX-2260.INI", "[S]\r\nempty=\r\nfull= x \r\n");
  std::string value = "before";
  EXPECT_FALSE(Ini().ReadKey("S", "none", value));
  EXPECT_FALSE(Ini().ReadKey("S", "empty", value));
  EXPECT_EQ(value, "before");
  EXPECT_TRUE(Ini().ReadKey("S", "full", value));
  EXPECT_EQ(value, "x");
}

TEST_F(PrivateIniTest, WriteKeySaysWhyItFailed) {
  std::string cause;
  EXPECT_FALSE(BlockedIni().WriteKey("S", "key", "x", &cause));
  EXPECT_THAT(cause, HasSubstr("VRX-2260.INI"));
  EXPECT_FALSE(BlockedIni().WriteKey("S", "key", "x"));
  EXPECT_TRUE(Ini().WriteKey("S", "key", "x", &cause));
}

TEST_F(PrivateIniTest, AFirstStartWritesTheDefaultFileInTheTablesOrder) {
  EXPECT_TRUE(PrivateINI::EnsureIniFile(Ini(), op));
  EXPECT_EQ(File(), kDefaultFile);
  ASSERT_EQ(op.boxes.size(), 1U);
  EXPECT_EQ(op.boxes[0].icon, Icon::kInformation);
  EXPECT_EQ(op.boxes[0].title, "No Configuration File");
  EXPECT_EQ(op.boxes[0].text,
            "The applications configuration file could not be found. \r\n\r\n"
            "A default file called VRX-2260.INI has been created and placed in the system "
            "configuration directory.\r\n\r\n"
            "You may need to set serial communications and other configuration parameters in the "
            "setup menu for proper operation.");
}

TEST_F(PrivateIniTest, ASecondStartChangesNothing) {
  folder.Write("VRX-2260.INI", "[comments]\r\nTitle=mine\r\n");
  EXPECT_TRUE(PrivateINI::EnsureIniFile(Ini(), op));
  EXPECT_EQ(File(), "[comments]\r\nTitle=mine\r\n");
  EXPECT_THAT(op.boxes, IsEmpty());
}

TEST_F(PrivateIniTest, ADefaultFileThatCannotBeWrittenEndsTheProgram) {
  EXPECT_FALSE(PrivateINI::EnsureIniFile(BlockedIni(), op));
  ASSERT_EQ(op.boxes.size(), 1U);
  EXPECT_EQ(op.boxes[0].icon, Icon::kCritical);
  EXPECT_EQ(op.boxes[0].title, "Configuration File Error");
  EXPECT_EQ(op.boxes[0].text,
            "The applications configuration file could not be found and a default file could not "
            "be created.\r\nThis application will now terminate.");
  EXPECT_THAT(op.boxes[0].cause, HasSubstr("VRX-2260.INI"));
}

// Limits the size of files that this process writes, during the lifetime of the object.
class LargestFile {
 public:
  explicit LargestFile(rlim_t bytes) : former_handler_(std::signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &former_);
    const rlimit limit{.rlim_cur = bytes, .rlim_max = former_.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~LargestFile() {
    setrlimit(RLIMIT_FSIZE, &former_);
    std::signal(SIGXFSZ, former_handler_);
  }
  LargestFile(const LargestFile&) = delete;
  LargestFile& operator=(const LargestFile&) = delete;

 private:
  rlimit former_{};
  void (*former_handler_)(int);
};

TEST_F(PrivateIniTest, APartlyWrittenDefaultFileEndsTheProgram) {
  {
    const LargestFile limit(100);
    EXPECT_FALSE(PrivateINI::EnsureIniFile(Ini(), op));
  }
  ASSERT_EQ(op.boxes.size(), 1U);
  EXPECT_EQ(op.boxes[0].title, "Configuration File Error");
  EXPECT_THAT(op.boxes[0].cause, HasSubstr("File too large"));
  EXPECT_THAT(File(), HasSubstr("SerialPort=2\r\n"));
}

// Two keys are missing, and the space that is left takes only the second one.
TEST_F(PrivateIniTest, AnyKeyThatCannotBeWrittenCounts) {
  constexpr std::string_view kFirst = "BatchTargetWtIsRecTarget=YES\r\n";
  constexpr std::string_view kSecond = "BalanceWeight=50\r\n";
  std::string file = DefaultFileWith(kFirst, "");
  file.erase(file.find(kSecond), kSecond.size());
  folder.Write("VRX-2260.INI", file);
  {
    const LargestFile limit(file.size() + kSecond.size());
    EXPECT_FALSE(PrivateINI().ReadIniSettings(Ini()));
  }
  EXPECT_EQ(File(), file + std::string(kSecond));

  const std::size_t title = file.find("[Communications]");
  folder.Write("VRX-2260.INI", file.substr(title));
  {
    const LargestFile limit(file.size() + kSecond.size());
    EXPECT_FALSE(PrivateINI::EnsureIniFile(Ini(), op));
  }
  ASSERT_EQ(op.boxes.size(), 1U);
  EXPECT_EQ(op.boxes[0].title, "Configuration File Error");
  EXPECT_THAT(File(), HasSubstr(kSecond));
}

TEST_F(PrivateIniTest, TheCauseIsThatOfTheFirstKeyThatFails) {
  PrivateINI settings = ReadFrom(kDefaultFile);
  settings.SetSerialPort("1\n");
  settings.SetKRMBaudRate("2\n");
  EXPECT_FALSE(settings.WriteIniSettings(Ini()));
  EXPECT_THAT(settings.FailureCause(), HasSubstr("cannot write SerialPort to "));
}

TEST_F(PrivateIniTest, AFileWithoutCommentsSectionIsTreatedAsMissing) {
  folder.Write("VRX-2260.INI", "[Communications]\r\nSerialPort=7\r\nMine=1\r\n");
  EXPECT_TRUE(PrivateINI::EnsureIniFile(Ini(), op));
  ASSERT_EQ(op.boxes.size(), 1U);
  EXPECT_EQ(op.boxes[0].title, "No Configuration File");
  EXPECT_THAT(File(), HasSubstr("[Communications]\r\nSerialPort=2\r\nMine=1\r\nKRMBaudRate=19200"));
  EXPECT_TRUE(Ini().IniFileExists(""));
}

TEST_F(PrivateIniTest, SettingsBeginAtTheirDefaults) {
  const PrivateINI settings;
  EXPECT_EQ(settings.SerialPort(), "2");
  EXPECT_EQ(settings.SystemUnits(), "LB");
  EXPECT_TRUE(settings.EnableBeeperOn());
  EXPECT_FALSE(settings.EnablePrintTextOn());
}

TEST_F(PrivateIniTest, ReadsTheDefaultFile) {
  const PrivateINI settings = ReadFrom(kDefaultFile);
  EXPECT_TRUE(settings.SettingsReadOk());
  EXPECT_EQ(settings.SerialPort(), "2");
  EXPECT_EQ(settings.KRMBaudRate(), "19200");
  EXPECT_EQ(settings.SystemUnits(), "LB");
  EXPECT_TRUE(settings.AutoAbbreviateOn());
  EXPECT_TRUE(settings.ShowImportProgressOn());
  EXPECT_TRUE(settings.EnableBeeperOn());
  EXPECT_TRUE(settings.PrintCurrentRecipeOnlyOn());
  EXPECT_FALSE(settings.EnablePrintTextOn());
  EXPECT_TRUE(settings.BatchTargetWtIsRecTargetOn());
  EXPECT_FALSE(settings.AutoloadRecipeDBOn());
  EXPECT_FALSE(settings.AutoloadTransDBOn());
  EXPECT_TRUE(settings.PrintGridLinesOn());
  EXPECT_EQ(File(), kDefaultFile);
}

TEST_F(PrivateIniTest, ReadsUnitsInAnyCase) {
  EXPECT_EQ(ReadFrom(DefaultFileWith("SystemUnits=LB", "systemunits=kg")).SystemUnits(), "KG");
}

TEST_F(PrivateIniTest, AnUnknownUnitIsReadAsPoundsAndReported) {
  const std::string file = DefaultFileWith("SystemUnits=LB", "SystemUnits=Ton");
  PrivateINI settings = ReadFrom(file);
  EXPECT_EQ(settings.SystemUnits(), "LB");
  EXPECT_EQ(File(), file);
  settings.ReportRefusedUnit(op);
  ASSERT_EQ(op.boxes.size(), 1U);
  EXPECT_EQ(op.boxes[0].icon, Icon::kWarning);
  EXPECT_EQ(op.boxes[0].title, "INI File Error");
  EXPECT_EQ(op.boxes[0].text,
            "The setting SystemUnits of the applications INI file is Ton; expected LB or KG. The "
            "system works in LB. Choose the weight units in the setup menu.");
  EXPECT_TRUE(settings.WriteIniSettings(Ini()));
  EXPECT_EQ(File(), kDefaultFile);
}

TEST_F(PrivateIniTest, AKnownOrMissingUnitIsNotReported) {
  for (const char* const line : {"SystemUnits=kg", "SystemUnits="}) {
    ReadFrom(DefaultFileWith("SystemUnits=LB", line)).ReportRefusedUnit(op);
  }
  EXPECT_TRUE(op.boxes.empty());
}

TEST_F(PrivateIniTest, ARefusedUnitIsForgottenByTheNextReading) {
  PrivateINI settings = ReadFrom(DefaultFileWith("SystemUnits=LB", "SystemUnits=TON"));
  folder.Write("VRX-2260.INI", kDefaultFile);
  EXPECT_TRUE(settings.ReadIniSettings(Ini()));
  settings.ReportRefusedUnit(op);
  EXPECT_TRUE(op.boxes.empty());
}

TEST_F(PrivateIniTest, LowerCaseYesReadsAsOffAndIsRewrittenAsNoAtExit) {
  PrivateINI settings = ReadFrom(DefaultFileWith("EnableBeeper=YES", "EnableBeeper=yes"));
  EXPECT_FALSE(settings.EnableBeeperOn());
  EXPECT_EQ(settings.EnableBeeper(), "yes");
  EXPECT_TRUE(settings.WriteIniSettings(Ini()));
  EXPECT_EQ(File(), DefaultFileWith("EnableBeeper=YES", "EnableBeeper=NO"));
}

TEST_F(PrivateIniTest, TrimsAValueOnRead) {
  EXPECT_EQ(ReadFrom(DefaultFileWith("SerialPort=2", "SerialPort=  7  ")).SerialPort(), "7");
}

TEST_F(PrivateIniTest, AnEmptyOrMissingKeyTakesItsDefaultOnDiskAsWell) {
  EXPECT_EQ(ReadFrom(DefaultFileWith("SerialPort=2", "SerialPort=")).SerialPort(), "2");
  EXPECT_EQ(File(), kDefaultFile);
  const std::string without = DefaultFileWith("BalanceWeight=50\r\n", "");
  EXPECT_EQ(ReadFrom(without).LimitText(PrivateINI::InsightLimit::kBalanceWeight), "50");
  EXPECT_EQ(File(), without + "BalanceWeight=50\r\n");
}

TEST_F(PrivateIniTest, AMissingTitleIsNotWrittenBack) {
  const std::string file = DefaultFileWith("Title=VRX-2260 Initialization File\r\n", "");
  ReadFrom(file);
  EXPECT_EQ(File(), file);
}

TEST_F(PrivateIniTest, AKeyThatCannotBeWrittenBackKeepsItsDefaultAndIsReported) {
  PrivateINI settings;
  settings.SetSerialPort("9");
  EXPECT_FALSE(settings.ReadIniSettings(BlockedIni()));
  EXPECT_FALSE(settings.SettingsReadOk());
  EXPECT_EQ(settings.SerialPort(), "2");
  EXPECT_TRUE(settings.EnableBeeperOn());
  EXPECT_THAT(settings.FailureCause(), HasSubstr("VRX-2260.INI"));
  EXPECT_TRUE(settings.ReadIniSettings(Ini()));
  EXPECT_TRUE(settings.SettingsReadOk());
  EXPECT_EQ(settings.FailureCause(), "");
}

TEST_F(PrivateIniTest, WritingUsesTheBoolean) {
  PrivateINI settings = ReadFrom(kDefaultFile);
  settings.SetPrintGridLinesOn(false);
  settings.SetAutoloadTransDB("YES");  // sets the text only
  EXPECT_EQ(settings.PrintGridLines(), "YES");
  EXPECT_FALSE(settings.AutoloadTransDBOn());
  EXPECT_TRUE(settings.WriteIniSettings(Ini()));
  EXPECT_EQ(File(), DefaultFileWith("PrintGridLines=YES", "PrintGridLines=NO"));
  EXPECT_EQ(settings.PrintGridLines(), "NO");
  EXPECT_EQ(settings.AutoloadTransDB(), "NO");
}

TEST_F(PrivateIniTest, WritingKeepsTheTitleAndUnknownLines) {
  const std::string file = DefaultFileWith("Title=VRX-2260 Initialization File",
                                           "; by hand\r\nTitle=The north yard\r\nColor=blue");
  PrivateINI settings = ReadFrom(file);
  settings.SetSerialPort("4");
  EXPECT_TRUE(settings.WriteIniSettings(Ini()));
  std::string expected = file;
  expected.replace(expected.find("SerialPort=2"), 12, "SerialPort=4");
  EXPECT_EQ(File(), expected);
}

TEST_F(PrivateIniTest, AFailedKeyAtExitDoesNotKeepTheOthersFromBeingWritten) {
  PrivateINI settings = ReadFrom(kDefaultFile);
  settings.SetSerialPort("2\r\n[Options]");
  settings.SetKRMBaudRate("9600");
  EXPECT_FALSE(settings.WriteIniSettings(Ini()));
  EXPECT_THAT(settings.FailureCause(), HasSubstr("SerialPort"));
  EXPECT_EQ(File(), DefaultFileWith("KRMBaudRate=19200", "KRMBaudRate=9600"));
}

TEST_F(PrivateIniTest, AWriteThatFailsCompletelyIsReported) {
  PrivateINI settings;
  EXPECT_FALSE(settings.WriteIniSettings(BlockedIni()));
  EXPECT_THAT(settings.FailureCause(), HasSubstr("VRX-2260.INI"));
}

TEST_F(PrivateIniTest, SettingUnitsUpperCasesAndReadsAnythingButKilogramsAsPounds) {
  PrivateINI settings;
  settings.SetSystemUnits("kg");
  EXPECT_EQ(settings.SystemUnits(), "KG");
  settings.SetSystemUnits("kgs");
  EXPECT_EQ(settings.SystemUnits(), "LB");
  settings.SetSystemUnits("lb");
  EXPECT_EQ(settings.SystemUnits(), "LB");
}

TEST_F(PrivateIniTest, EveryPairReadsAndWritesTheKeyOfItsName) {
  struct Pair {
    std::string_view key;
    void (PrivateINI::*set)(bool);
    bool (PrivateINI::*get)() const;
  };
  using P = PrivateINI;
  const auto pairs = std::to_array<Pair>(
      {{"AutoAbbreviate", &P::SetAutoAbbreviateOn, &P::AutoAbbreviateOn},
       {"ShowImportProgress", &P::SetShowImportProgressOn, &P::ShowImportProgressOn},
       {"EnableBeeper", &P::SetEnableBeeperOn, &P::EnableBeeperOn},
       {"PrintCurrentRecipeOnly", &P::SetPrintCurrentRecipeOnlyOn, &P::PrintCurrentRecipeOnlyOn},
       {"EnablePrintText", &P::SetEnablePrintTextOn, &P::EnablePrintTextOn},
       {"BatchTargetWtIsRecTarget", &P::SetBatchTargetWtIsRecTargetOn,
        &P::BatchTargetWtIsRecTargetOn},
       {"AutoloadRecipeDB", &P::SetAutoloadRecipeDBOn, &P::AutoloadRecipeDBOn},
       {"AutoloadTransDB", &P::SetAutoloadTransDBOn, &P::AutoloadTransDBOn},
       {"PrintGridLines", &P::SetPrintGridLinesOn, &P::PrintGridLinesOn}});
  for (const Pair& pair : pairs) {
    PrivateINI settings = ReadFrom(kDefaultFile);
    const bool turned = !(settings.*pair.get)();
    (settings.*pair.set)(turned);
    EXPECT_TRUE(settings.WriteIniSettings(Ini()));
    const std::string key(pair.key);
    const std::string before = turned ? "=NO" : "=YES";
    const std::string after = turned ? "=YES" : "=NO";
    EXPECT_EQ(File(), DefaultFileWith(key + before, key + after));
    PrivateINI again;
    EXPECT_TRUE(again.ReadIniSettings(Ini()));
    EXPECT_EQ((again.*pair.get)(), turned) << key;
  }
}

TEST_F(PrivateIniTest, KeysAreThoseOfTheFileInItsOrder) {
  std::size_t at = 0;
  for (const std::string_view key : PrivateINI::Keys()) {
    const std::size_t found = kDefaultFile.find("\n" + std::string(key) + "=");
    EXPECT_NE(found, std::string_view::npos) << key;
    EXPECT_GT(found, at) << key;
    at = found;
  }
}

TEST_F(PrivateIniTest, SettingsAreReadByKeyInAnyCase) {
  const PrivateINI settings;
  EXPECT_EQ(settings.TextByKey("serialport"), "2");
  EXPECT_EQ(settings.TextByKey("EnablePrintText"), "NO");
  EXPECT_EQ(settings.TextByKey("Title"), std::nullopt);
  EXPECT_EQ(settings.TextByKey("none"), std::nullopt);
}

TEST_F(PrivateIniTest, SettingAYesNoKeyByNameSetsTextAndBoolean) {
  PrivateINI settings;
  EXPECT_TRUE(settings.LetByKey("enablebeeper", "NO"));
  EXPECT_FALSE(settings.EnableBeeperOn());
  EXPECT_EQ(settings.EnableBeeper(), "NO");
  EXPECT_TRUE(settings.LetByKey("EnableBeeper", "yes"));
  EXPECT_TRUE(settings.EnableBeeperOn());
  EXPECT_EQ(settings.EnableBeeper(), "YES");
}

TEST_F(PrivateIniTest, SettingByNameRefusesUnknownKeysAndInvalidValues) {
  PrivateINI settings;
  EXPECT_FALSE(settings.LetByKey("none", "1"));
  EXPECT_FALSE(settings.LetByKey("Title", "1"));
  EXPECT_FALSE(settings.LetByKey("EnableBeeper", "maybe"));
  EXPECT_TRUE(settings.EnableBeeperOn());
  EXPECT_FALSE(settings.LetByKey("SystemUnits", "TON"));
  EXPECT_EQ(settings.SystemUnits(), "LB");
  EXPECT_TRUE(settings.LetByKey("SystemUnits", "kg"));
  EXPECT_EQ(settings.SystemUnits(), "KG");
  EXPECT_TRUE(settings.LetByKey("SerialPort", "11"));
  EXPECT_EQ(settings.SerialPort(), "11");
}

TEST_F(PrivateIniTest, TheToleranceIsAPercentage) {
  const auto read = [&](const std::string& text) {
    return ReadFrom(DefaultFileWith("DifferenceTolerance=2", "DifferenceTolerance=" + text))
        .DifferenceTolerance();
  };
  EXPECT_EQ(read("0"), 0);
  EXPECT_EQ(read("0.5"), 0.5);
  EXPECT_EQ(read("100"), 100);
  for (const char* const wrong : {"100.01", "-1", "2,5", "two", "2 %", "1E99"}) {
    EXPECT_EQ(read(wrong), 2) << wrong;
  }
}

TEST_F(PrivateIniTest, AMissingToleranceIsAddedToTheFile) {
  const PrivateINI settings = ReadFrom(DefaultFileWith("DifferenceTolerance=2\r\n", ""));
  EXPECT_EQ(settings.DifferenceTolerance(), 2);
  EXPECT_TRUE(settings.SettingsReadOk());
  EXPECT_EQ(File(), kDefaultFile);
}

TEST_F(PrivateIniTest, AToleranceSetByNameIsKeptAndAWrongOneRefused) {
  PrivateINI settings;
  EXPECT_TRUE(settings.LetByKey("differencetolerance", "3.5"));
  EXPECT_EQ(settings.DifferenceTolerance(), 3.5);
  EXPECT_FALSE(settings.LetByKey("DifferenceTolerance", "101"));
  EXPECT_FALSE(settings.LetByKey("DifferenceTolerance", ""));
  EXPECT_EQ(settings.DifferenceToleranceText(), "3.5");
  EXPECT_TRUE(settings.WriteIniSettings(Ini()));
  EXPECT_THAT(File(), HasSubstr("DifferenceTolerance=3.5\r\n"));
}

TEST_F(PrivateIniTest, TheLimitsOfInsightAreNumbersInTheirRange) {
  using enum PrivateINI::InsightLimit;
  PrivateINI settings = ReadFrom(DefaultFileWith("BeyondWeight=62.5", "BeyondWeight=100000"));
  EXPECT_EQ(settings.Limit(kBeyond), 62.5);
  settings.SetLimit(kBeyond, " 70.25 ");
  EXPECT_EQ(settings.Limit(kBeyond), 70.25);
  EXPECT_EQ(settings.LimitText(kBeyond), "70.25");
  settings.SetLimit(kPercent, "100.5");
  EXPECT_EQ(settings.Limit(kPercent), 2);
  EXPECT_TRUE(settings.LetByKey("balanceweight", "99999"));
  EXPECT_EQ(settings.Limit(kBalanceWeight), 99999);
  EXPECT_FALSE(settings.LetByKey("BalancePercent", "-1"));
  EXPECT_FALSE(PrivateINI::IsInsightLimit(kDivision, ""));
  EXPECT_EQ(PrivateINI::UsualText(kWeight), "5");
  EXPECT_TRUE(settings.WriteIniSettings(Ini()));
  EXPECT_THAT(File(), HasSubstr("BeyondWeight=70.25\r\n"));
}

TEST_F(PrivateIniTest, ABinaryFileReadsAsDefaultsAndKeepsItsBytes) {
  std::string garbage;
  for (int byte = 0; byte < 256; ++byte) {
    garbage += static_cast<char>(byte);
  }
  const PrivateINI settings = ReadFrom(garbage);
  EXPECT_EQ(settings.SerialPort(), "2");
  EXPECT_EQ(File().substr(0, garbage.size()), garbage);
}

TEST(BeepIfEnabled, ObeysTheSetting) {
  testing::RecordingOperator op;
  PrivateINI settings;
  BeepIfEnabled(op, settings);
  EXPECT_EQ(op.beeps, 1);
  settings.SetEnableBeeperOn(false);
  BeepIfEnabled(op, settings);
  EXPECT_EQ(op.beeps, 1);
}

}  // namespace
}  // namespace vrx
