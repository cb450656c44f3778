#include <filesystem>

#include <gmock/gmock.h>

#include "ctl/ctl_fixture.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

const std::string kOnline = "\x19\x1F";
const std::string kCleared = "\x14\x1F";
const std::string kTransactions = "{BAT/FED},L\r\n[BAT],\r\n\r\n";
const std::string kBackup = "{DATA_IN}backup";

std::string DumpReply(const std::string& data) { return "\x15\x1F" + data + "\x1F"; }

class ModuleCommands : public CtlTest {
 protected:
  int Upload() {
    return Run({"module", "upload", "--out", (folder / "out").string(), "--port", "/dev/module"});
  }
  void Holds(const std::string& data) {
    serial.WillAnswer(kOnline);
    serial.WillAnswer(DumpReply(data));
  }
};

TEST_F(ModuleCommands, TestReportsThatTheModuleAnswers) {
  serial.WillAnswer(kOnline);
  EXPECT_EQ(Run({"module", "test", "--port", "3"}), 0);
  EXPECT_EQ(err, "KRM Test: KRM Successfully Detected.\n");
  EXPECT_THAT(out, IsEmpty());
  EXPECT_EQ(serial.comm_port, 3);
  EXPECT_EQ(device, "");
  EXPECT_FALSE(serial.PortOpen());
}

TEST_F(ModuleCommands, ADevicePathIsUsedAsItIs) {
  serial.WillAnswer(kOnline);
  EXPECT_EQ(Run({"module", "test", "--port", "/dev/module"}), 0);
  EXPECT_EQ(device, "/dev/module");
}

TEST_F(ModuleCommands, TestReportsASilentModuleAndTheReason) {
  EXPECT_EQ(Run({"module", "test", "--port", "3"}), 1);
  EXPECT_THAT(err, StartsWith("KRM Test: KRM Not Detected.  (Communication Error)\nPlease check "
                              "KRM module connection, cable and serial port selection.\ncause: "));
}

TEST_F(ModuleCommands, TestReportsAPortThatCannotBeOpened) {
  serial.failing_property = "PortOpen";
  EXPECT_EQ(Run({"module", "test", "--port", "3"}), 1);
  EXPECT_THAT(err, EndsWith("cause: fake: PortOpen refused\n"));
}

TEST_F(ModuleCommands, ThePortOfARunIsNotKept) {
  serial.WillAnswer(kOnline);
  ASSERT_EQ(Run({"module", "test", "--port", "7"}), 0);
  Run({"settings", "SerialPort"});
  EXPECT_EQ(out, "2\n");
}

TEST_F(ModuleCommands, ClearAsksFirst) {
  EXPECT_EQ(Run({"module", "clear", "--port", "3"}), 1);
  EXPECT_THAT(err, StartsWith("Clear KRM: Are you sure you want to clear all data in the KRM?\n"));
  EXPECT_THAT(serial.sent, IsEmpty());
}

TEST_F(ModuleCommands, ClearGoesOnWithYes) {
  serial.WillAnswer(kOnline);
  serial.WillAnswer(kCleared);
  EXPECT_EQ(Run({"--yes", "module", "clear", "--port", "3"}), 0);
  EXPECT_THAT(err, EndsWith("Clear KRM: The 'Clear' operation was successful.\n"));
  EXPECT_EQ(serial.sent, "\x19\x14");
}

TEST_F(ModuleCommands, ClearIsAnsweredFromTheTerminal) {
  in_is_terminal = true;
  typed = "yes\n";
  serial.WillAnswer(kOnline);
  serial.WillAnswer(kCleared);
  EXPECT_EQ(Run({"module", "clear", "--port", "3"}), 0);
}

TEST_F(ModuleCommands, ClearReportsWhichStepFailed) {
  EXPECT_EQ(Run({"--yes", "module", "clear", "--port", "3"}), 1);
  EXPECT_THAT(err, HasSubstr("Clear KRM: The 'Clear' operation failed. (Could not connect to the "
                             "KRM)\ncause: "));
  serial.WillAnswer(kOnline);
  serial.WillAnswer("x\x1F");
  EXPECT_EQ(Run({"--yes", "module", "clear", "--port", "3"}), 1);
  EXPECT_THAT(err, HasSubstr("Clear KRM: The 'Clear' operation failed.\n"));
}

TEST_F(ModuleCommands, BaudSetsTheModuleAndSavesTheRate) {
  serial.WillAnswer("\x17\x1F");
  EXPECT_EQ(Run({"module", "baud", "2400", "--port", "3"}), 0);
  EXPECT_EQ(err,
            "KRM Baud Setting: Successfully set the KRM baudrate.\n\nThis new baudrate setting "
            "will only be in effect when the KRM module is connected to an K-2260 or some other "
            "indicator.\n");
  EXPECT_EQ(serial.sent, "\x17");
  Run({"settings", "KRMBaudRate"});
  EXPECT_EQ(out, "2400\n");
  Run({"settings", "SerialPort"});
  EXPECT_EQ(out, "2\n");
}

TEST_F(ModuleCommands, AFailedBaudKeepsTheOldRate) {
  EXPECT_EQ(Run({"module", "baud", "2400", "--port", "3"}), 1);
  EXPECT_THAT(err, StartsWith("KRM Baud Setting: Failed to set the KRM baudrate.\n\nPlease check "
                              "KRM module connection, cable and serial port selection.\ncause: "));
  Run({"settings", "KRMBaudRate"});
  EXPECT_EQ(out, "19200\n");
}

TEST_F(ModuleCommands, UploadWritesEachFileByItsNumberAndKind) {
  Holds(kTransactions + kBackup + "{REPORT}page one\fpage two");
  EXPECT_EQ(Upload(), 0) << err;
  const std::string base = (folder / "out").string();
  EXPECT_EQ(out, base + "/01.QXT\n" + base + "/02.RBU\n" + base + "/03.TXT\n" + base + "/04.TXT\n");
  EXPECT_EQ(ReadAll(base + "/01.QXT"), kTransactions);
  EXPECT_EQ(ReadAll(base + "/02.RBU"), kBackup);
  EXPECT_EQ(ReadAll(base + "/03.TXT"), "{REPORT}page one");
  EXPECT_EQ(ReadAll(base + "/04.TXT"), "\fpage two");
  EXPECT_EQ(err, "Upload complete!  (66 bytes, 4 files)\n");
}

TEST_F(ModuleCommands, UploadOfOneFileSaysSo) {
  Holds(kBackup);
  EXPECT_EQ(Upload(), 0);
  EXPECT_EQ(err, "Upload complete!  (18 bytes, 1 file)\n");
}

TEST_F(ModuleCommands, UploadKeepsEveryByteValue) {
  std::string report = "{REPORT}";
  for (int code = 0; code < 256; ++code) {
    if (code != 0x1F && code != 0x0C) {
      report.push_back(static_cast<char>(code));
    }
  }
  Holds(report);
  ASSERT_EQ(Upload(), 0) << err;
  EXPECT_EQ(ReadAll(folder / "out/01.TXT"), report);
}

TEST_F(ModuleCommands, UploadWritesNothingWhereAnyNameExists) {
  fs::create_directory(folder / "out");
  folder.Write("out/02.RBU", "mine");
  Holds(kTransactions + kBackup);
  EXPECT_EQ(Upload(), 1);
  EXPECT_THAT(err, EndsWith("Save File Error: " + (folder / "out/02.RBU").string() +
                            " exists already. No file was written.\n"));
  EXPECT_THAT(out, IsEmpty());
  EXPECT_FALSE(fs::exists(folder / "out/01.QXT"));
  EXPECT_EQ(ReadAll(folder / "out/02.RBU"), "mine");
}

// On a terminal both streams share the screen.
TEST_F(ModuleCommands, UploadPutsEachPathOnALineOfItsOwn) {
  err_is_terminal = true;
  Holds(kTransactions + kBackup);
  ASSERT_EQ(Upload(), 0);
  const std::string base = (folder / "out").string();
  EXPECT_THAT(Screen(), HasSubstr("\n" + base + "/01.QXT\n" + base + "/02.RBU\n"));
}

TEST_F(ModuleCommands, AHeldLineIsReported) {
  serial.hold_after_output = 0;
  for (const std::vector<std::string>& command :
       {std::vector<std::string>{"module", "test", "--port", "3"},
        {"--yes", "module", "clear", "--port", "3"},
        {"module", "baud", "2400", "--port", "3"}}) {
    EXPECT_EQ(Run(command), 1);
    EXPECT_THAT(err, HasSubstr("\ncause: Serial line held"));
  }
  EXPECT_EQ(Upload(), 1);
  EXPECT_THAT(err, HasSubstr("Error: Serial line held\n"));
}

TEST_F(ModuleCommands, UploadOfAnEmptyMemoryFails) {
  Holds("");
  EXPECT_EQ(Upload(), 1);
  EXPECT_THAT(err, StartsWith("The KRM buffer is empty\n"));
  EXPECT_FALSE(fs::exists(folder / "out"));
}

TEST_F(ModuleCommands, UploadFromNoModuleFailsWithTheCause) {
  EXPECT_EQ(Upload(), 1);
  EXPECT_THAT(err, StartsWith("KRM Error: The KRM was not detected. Please verify that the module "
                              "is connected. Check cable and connector and then try again.\n"
                              "cause: "));
  EXPECT_THAT(err, HasSubstr("Error: KRM not detected\n"));
}

TEST_F(ModuleCommands, UploadReportsALostLine) {
  serial.WillAnswer(kOnline);
  serial.lose_after_output = 2;
  EXPECT_EQ(Upload(), 1);
  EXPECT_THAT(err, HasSubstr("Error: "));
  EXPECT_THAT(err, HasSubstr("\ncause: "));
  EXPECT_FALSE(fs::exists(folder / "out"));
}

TEST_F(ModuleCommands, UploadIntoAFolderThatCannotBeCreatedFails) {
  folder.Write("out", "a file");
  Holds(kBackup);
  EXPECT_EQ(Upload(), 1);
  EXPECT_THAT(err, HasSubstr("Save File Error: The folder " + (folder / "out").string() +
                             " cannot be made.\ncause: "));
}

}  // namespace
}  // namespace vrx::testing
