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

// Times count from the program's start; the connection exists after 500 ms.
class DirectCommand : public CtlTest {
 protected:
  int Direct(const std::vector<std::string>& more) {
    std::vector<std::string> args = {"direct", "--port", "/dev/indicator"};
    args.insert(args.end(), more.begin(), more.end());
    return Run(args);
  }
  void ArriveAfter(Milliseconds delay, const std::string& bytes) {
    pump.After(delay, [this, bytes] { serial.Arrives(bytes); });
  }
  std::string Out() const { return (folder / "out").string(); }

  // Empty where there is none.
  static fs::path RescueFileIn(const fs::path& where) {
    for (const fs::directory_entry& entry : fs::directory_iterator(where)) {
      if (entry.path().filename().string().starts_with("RESCUE-")) {
        return entry.path();
      }
    }
    return {};
  }
};

TEST_F(DirectCommand, EndsWhenTheTimeIsUp) {
  EXPECT_EQ(Direct({"--seconds", "3"}), 0);
  EXPECT_EQ(pump.Now(), Milliseconds{500 + 3000});
  EXPECT_EQ(device, "/dev/indicator");
  EXPECT_TRUE(heeds_signals);
  EXPECT_FALSE(serial.PortOpen());
  EXPECT_THAT(out, IsEmpty());
  EXPECT_THAT(err, IsEmpty());
}

TEST_F(DirectCommand, WritesTheFilesThatStandInMemoryAtTheEnd) {
  ArriveAfter(Milliseconds{1000}, "{BAT/FED},L\r\n{DATA_IN},L\r\n");
  EXPECT_EQ(Direct({"--seconds", "3", "--out", Out()}), 0);
  EXPECT_EQ(out, Out() + "/01.QXT\n" + Out() + "/02.RBU\n");
  EXPECT_EQ(ReadAll(folder / "out/01.QXT"), "{BAT/FED},L\r\n");
  EXPECT_EQ(ReadAll(folder / "out/02.RBU"), "{DATA_IN},L\r\n");
  EXPECT_EQ(err, "Memory read complete!  (26 bytes, 2 files)\n");
}

TEST_F(DirectCommand, BurstThatTheEndCutsIsWrittenAsFarAsItCame) {
  ArriveAfter(Milliseconds{3400}, "{REPORT}half");
  EXPECT_EQ(Direct({"--seconds", "3", "--out", Out()}), 0);
  EXPECT_EQ(ReadAll(folder / "out/01.TXT"), "{REPORT}half");
}

TEST_F(DirectCommand, AnswersFromMemory) {
  ArriveAfter(Milliseconds{1000}, "abc\x15");
  EXPECT_EQ(Direct({"--seconds", "10"}), 0);
  EXPECT_EQ(serial.sent,
            "\x15\x1F"
            "abc\x1F");
}

TEST_F(DirectCommand, LoadedBackupIsAnsweredAfterTheUnaskedClear) {
  const std::string backup = "{DATA_IN},L\r\n\r\n[ING]\r\n";
  ArriveAfter(Milliseconds{3000}, "\x15");
  EXPECT_EQ(Direct({"--seconds", "10", "--load", folder.Write("a.rbu", backup).string()}), 0);
  EXPECT_EQ(serial.sent, "\x14\x1F\x15\x1F" + backup + "\x1F");
  EXPECT_THAT(err, IsEmpty());
}

TEST_F(DirectCommand, FileWithoutTheHeaderOfABackupIsRefusedBeforeThePortIsOpened) {
  EXPECT_EQ(Direct({"--seconds", "3", "--load", folder.Write("a.rbu", "{REPORT}").string()}), 1);
  EXPECT_EQ(err,
            "File-Header Error: The Recipe backup-file has an invalid file header and cannot be "
            "downloaded.\n");
  EXPECT_THAT(serial.events, IsEmpty());
}

TEST_F(DirectCommand, MissingBackupIsReported) {
  EXPECT_EQ(Direct({"--seconds", "3", "--load", (folder / "none.rbu").string()}), 1);
  EXPECT_THAT(err, HasSubstr("none.rbu"));
}

TEST_F(DirectCommand, WrongUsageIsRefused) {
  EXPECT_EQ(Run({"direct"}), 2);
  EXPECT_EQ(Direct({"--seconds", "0"}), 2);
  EXPECT_EQ(Direct({"--seconds", "2000001"}), 2);
  EXPECT_EQ(Direct({"--seconds", "soon"}), 2);
  EXPECT_EQ(Run({"direct", "--port", "0", "--seconds", "1"}), 2);
}

TEST_F(DirectCommand, RefusedPortIsReported) {
  serial.failing_property = "PortOpen";
  EXPECT_EQ(Direct({"--seconds", "3"}), 1);
  EXPECT_EQ(err,
            "Error: Could not open serial port for direct-connection.\n"
            "cause: fake: PortOpen refused\n");
}

TEST_F(DirectCommand, LostLineFailsButWritesWhatCame) {
  ArriveAfter(Milliseconds{1000}, "{REPORT}x");
  pump.After(Milliseconds{2000}, [&] { serial.LoseLine(); });
  EXPECT_EQ(Direct({"--seconds", "30", "--out", Out()}), 1);
  EXPECT_EQ(pump.Now(), Milliseconds{2000});
  EXPECT_THAT(err, StartsWith("Error: The direct-connection has ended: Serial line lost.\n"
                              "cause: fake: the line is gone\n"));
  EXPECT_EQ(out, Out() + "/01.TXT\n");
}

TEST_F(DirectCommand, EmptyMemoryFailsAsAnUploadOfOneDoes) {
  EXPECT_EQ(Direct({"--seconds", "1", "--out", Out()}), 1);
  EXPECT_THAT(err, StartsWith("KRM Error: There is no file data in the KRM memory.\n"));
  EXPECT_FALSE(fs::exists(Out()));
}

TEST_F(DirectCommand, MemoryWithoutAFileIsRescued) {
  ArriveAfter(Milliseconds{1000}, "scribble");
  EXPECT_EQ(Direct({"--seconds", "3", "--out", Out()}), 1);
  EXPECT_THAT(err, HasSubstr("No recognized data file!"));
  const fs::path rescued = RescueFileIn(Out());
  EXPECT_EQ(ReadAll(rescued), "scribble");
  EXPECT_THAT(err, EndsWith("Rescue File: What the indicator sent is kept in the file " +
                            rescued.string() + ".\n"));
  EXPECT_THAT(out, IsEmpty());
}

TEST_F(DirectCommand, MoreFilesThanTheTableHoldsAreRescuedWhole) {
  const std::string memory(101, '\f');
  ArriveAfter(Milliseconds{1000}, memory);
  EXPECT_EQ(Direct({"--seconds", "3", "--out", Out()}), 1);
  EXPECT_EQ(ReadAll(RescueFileIn(Out())), memory);
  EXPECT_EQ(ReadAll(folder / "out/99.TXT"), "\f");
}

TEST_F(DirectCommand, FolderThatCannotBeCreatedSendsAllToTheDataFolder) {
  folder.Write("out", "a file");
  ArriveAfter(Milliseconds{1000}, "{BAT/FED},L\r\n{DATA_IN},L\r\n");
  EXPECT_EQ(Direct({"--seconds", "3", "--out", Out()}), 1);
  EXPECT_THAT(err, HasSubstr("Save File Error: The folder " + Out() + " cannot be made."));
  const fs::path rescued = RescueFileIn(folder / "data");
  EXPECT_THAT(err, HasSubstr(rescued.string()));
  EXPECT_EQ(ReadAll(rescued), "{BAT/FED},L\r\n{DATA_IN},L\r\n");
}

TEST_F(DirectCommand, AFileThatCannotBeWrittenIsRescuedAndTheOthersAreWritten) {
  ArriveAfter(Milliseconds{1000}, "{BAT/FED},L\r\n{DATA_IN},L\r\n{REPORT}x");
  // A name that is taken while the indicator sends.
  pump.After(Milliseconds{2000}, [this] {
    fs::create_directory(Out());
    folder.Write("out/02.RBU", "mine");
  });
  EXPECT_EQ(Direct({"--seconds", "3", "--out", Out()}), 1);
  EXPECT_EQ(ReadAll(folder / "out/01.QXT"), "{BAT/FED},L\r\n");
  EXPECT_EQ(ReadAll(folder / "out/02.RBU"), "mine");
  EXPECT_EQ(ReadAll(folder / "out/03.TXT"), "{REPORT}x");
  EXPECT_EQ(out, Out() + "/01.QXT\n" + Out() + "/03.TXT\n");
  EXPECT_EQ(ReadAll(RescueFileIn(Out())), "{DATA_IN},L\r\n");
  EXPECT_THAT(err, HasSubstr("02.RBU exists already and is not replaced."));
}

TEST_F(DirectCommand, WithoutAFolderWhatWasReceivedGoesToTheDataFolder) {
  ArriveAfter(Milliseconds{1000}, "{REPORT}x");
  EXPECT_EQ(Direct({"--seconds", "3"}), 0);
  EXPECT_EQ(ReadAll(RescueFileIn(folder / "data")), "{REPORT}x");
}

TEST_F(DirectCommand, LoadedRecipesAreNotRescued) {
  EXPECT_EQ(Direct({"--seconds", "9", "--load", folder.Write("a.rbu", "{DATA_IN}").string()}), 0);
  EXPECT_TRUE(RescueFileIn(folder / "data").empty());
}

TEST_F(DirectCommand, ARescueFileIsCutAsIfItHadJustBeenReceived) {
  const std::string file = folder.Write("a.KRM", "{BAT/FED},L\r\n{DATA_IN},L\r\n").string();
  EXPECT_EQ(Run({"module", "upload", "--from", file, "--out", Out()}), 0) << err;
  EXPECT_EQ(out, Out() + "/01.QXT\n" + Out() + "/02.RBU\n");
  EXPECT_EQ(ReadAll(folder / "out/02.RBU"), "{DATA_IN},L\r\n");
  EXPECT_EQ(err, "Memory read complete!  (26 bytes, 2 files)\n");
  EXPECT_THAT(serial.events, IsEmpty());
  EXPECT_EQ(Run({"module", "upload", "--from", file, "--out", Out()}), 1);
  EXPECT_THAT(err, HasSubstr("01.QXT exists already. No file was written."));
}

TEST_F(DirectCommand, ARescueFileWithoutFilesFails) {
  const std::string file = folder.Write("a.KRM", "scribble").string();
  EXPECT_EQ(Run({"module", "upload", "--from", file, "--out", Out()}), 1);
  EXPECT_THAT(err, StartsWith("No recognized data file!\n"));
  EXPECT_EQ(Run({"module", "upload", "--from", file + "x", "--out", Out()}), 1);
  EXPECT_THAT(err, HasSubstr("a.KRMx"));
}

TEST_F(DirectCommand, AnUploadIsFromAModuleOrFromAFile) {
  const std::string file = folder.Write("a.KRM", "{REPORT}").string();
  EXPECT_EQ(Run({"module", "upload", "--out", Out()}), 2);
  EXPECT_EQ(Run({"module", "upload", "--from", file, "--port", "/dev/indicator", "--out", Out()}),
            2);
  EXPECT_FALSE(fs::exists(Out()));
}

TEST_F(DirectCommand, AFailedAnswerFails) {
  ArriveAfter(Milliseconds{1000}, "\x15");
  pump.After(Milliseconds{2000}, [this] { serial.failing_property = "Output"; });
  EXPECT_EQ(Direct({"--seconds", "9"}), 1);
  EXPECT_THAT(err, StartsWith("Error: Transmission of response to <NAK> command failed!\n"));
}

TEST_F(DirectCommand, AHeldAnswerIsReportedWithItsCause) {
  ArriveAfter(Milliseconds{1000}, "\x15");
  serial.hold_after_output = 0;
  EXPECT_EQ(Direct({"--seconds", "20"}), 1);
  EXPECT_THAT(err, HasSubstr("\ncause: Serial line held"));
}

TEST_F(DirectCommand, TakenNameIsRefusedBeforeAnythingIsReceived) {
  fs::create_directory(Out());
  ArriveAfter(Milliseconds{1000}, "{BAT/FED},L\r\n{DATA_IN},L\r\n");
  for (const std::string name : {"01.QXT", "02.RBU", "99.TXT"}) {
    folder.Write("out/" + name, "mine");
    EXPECT_EQ(Direct({"--seconds", "3", "--out", Out()}), 1);
    EXPECT_THAT(err, EndsWith(name + " exists already. Nothing was received.\n"));
    EXPECT_EQ(pump.Now(), Milliseconds{0});
    EXPECT_EQ(ReadAll(folder / "out" / name), "mine");
    EXPECT_THAT(out, IsEmpty());
    fs::remove(folder / "out" / name);
  }
  EXPECT_TRUE(fs::is_empty(Out()));
}

}  // namespace
}  // namespace vrx::testing
