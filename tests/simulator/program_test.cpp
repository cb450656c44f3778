#include <csignal>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "simulator/simulator_program.h"
#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;

// A program that plays a module, with its link in a folder of the test's own.
class Program : public ::testing::Test {
 protected:
  // Paced only in tests of the pace.
  std::vector<std::string> Arguments(std::vector<std::string> more,
                                     const std::string& baud = "0") const {
    std::vector<std::string> arguments{"module", "--link", link_.string(), "--baud", baud};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
  }

  std::string Ready() const { return "ready " + link_.string(); }

  int Stop(SimulatorProgram& program) const {
    program.Signal(SIGTERM);
    return program.ExitCode();
  }

  TempFolder folder_;
  fs::path link_ = folder_ / "line";
  fs::path saved_ = folder_ / "saved";
};

// Every byte value but flow control and the commands, which mean something else on the line.
std::string AllData() {
  constexpr std::string_view kNoData = "\x11\x13\x14\x15\x16\x17\x18\x19\x1C";
  std::string data;
  for (int value = 0; value < 256; ++value) {
    const char byte = static_cast<char>(value);
    if (kNoData.find(byte) == std::string_view::npos) {
      data += byte;
    }
  }
  return data;
}

TEST_F(Program, SaysReadyWhenItsLinkExistsAndRemovesItAtTheEnd) {
  for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
    SimulatorProgram program(Arguments({}));
    EXPECT_EQ(program.OutputLine(), Ready());
    EXPECT_TRUE(fs::is_character_file(link_));
    program.Signal(signal);
    EXPECT_EQ(program.ExitCode(), 0);
    EXPECT_FALSE(fs::is_symlink(link_));
    EXPECT_EQ(program.Errors(), "");
  }
}

TEST_F(Program, GivesBackWhatWasDownloadedByteForByte) {
  for (const char* baud : {"0", "19200"}) {
    SimulatorProgram program(Arguments({}, baud));
    ASSERT_EQ(program.OutputLine(), Ready());
    const Client client(link_);
    const std::string data = AllData();
    ASSERT_EQ(data.size(), 247U);
    client.Write("\x14");
    EXPECT_EQ(client.Read(2), "\x14\x1F");
    client.Write(data);
    client.Write("\x15");
    EXPECT_EQ(client.Read(data.size() + 3), "\x15\x1F" + data + "\x1F");
    EXPECT_EQ(Stop(program), 0);
  }
}

TEST_F(Program, AnswersTwoCommandsOfOneBurst) {
  SimulatorProgram program(Arguments({}, "19200"));
  ASSERT_EQ(program.OutputLine(), Ready());
  const Client client(link_);
  client.Write("\x16\x14");
  EXPECT_EQ(client.Read(4), "\x16\x1F\x14\x1F");
}

TEST_F(Program, SendsAFullMemory) {
  const std::string memory(65536, 'm');
  SimulatorProgram program(Arguments({"--load", folder_.Write("full", memory).string()}));
  ASSERT_EQ(program.OutputLine(), Ready());
  const Client client(link_);
  client.Write("\x1C");
  EXPECT_EQ(client.Read(65539), "\x1C\x1F" + memory + "\x1F");
}

TEST_F(Program, LoadsFilesInSequence) {
  SimulatorProgram program(Arguments({"--load", folder_.Write("a", "{BAT/FED}").string(), "--load",
                                      folder_.Write("b", "{REPORT}").string()}));
  ASSERT_EQ(program.OutputLine(), Ready());
  const Client client(link_);
  client.Write("\x15");
  EXPECT_EQ(client.Read(20), "\x15\x1F{BAT/FED}{REPORT}\x1F");
}

TEST_F(Program, SavesOnSignalAndAtTheEndWhatWasSentBefore) {
  SimulatorProgram program(Arguments({"--save", saved_.string()}));
  ASSERT_EQ(program.OutputLine(), Ready());
  const Client client(link_);
  const std::string first(20'000, 'a');
  client.Write(first);
  program.Signal(SIGUSR1);
  ASSERT_TRUE(Eventually([&] { return fs::exists(saved_); }));
  EXPECT_EQ(ReadAll(saved_), first);
  client.Write("more");
  EXPECT_EQ(Stop(program), 0);
  EXPECT_EQ(ReadAll(saved_), first + "more");
}

TEST_F(Program, ASaveSignalIsHarmlessWithoutASaveFile) {
  SimulatorProgram program(Arguments({}));
  ASSERT_EQ(program.OutputLine(), Ready());
  const Client client(link_);
  program.Signal(SIGUSR1);
  client.Write("\x16");
  EXPECT_EQ(client.Read(2), "\x16\x1F");
  EXPECT_EQ(Stop(program), 0);
  EXPECT_EQ(program.Errors(), "");
}

TEST_F(Program, ReportsASaveThatFails) {
  SimulatorProgram program(Arguments({"--save", (folder_ / "missing/saved").string()}));
  ASSERT_EQ(program.OutputLine(), Ready());
  program.Signal(SIGUSR1);
  EXPECT_EQ(Stop(program), 1);
  EXPECT_NE(program.Errors().find("missing/saved"), std::string::npos);
  EXPECT_FALSE(fs::is_symlink(link_));
}

TEST_F(Program, ReportsWhatItsMemoryCannotHold) {
  const auto file = folder_.Write("long", std::string(65539, 'x'));
  SimulatorProgram program(Arguments({"--load", file.string(), "--save", saved_.string()}));
  ASSERT_EQ(program.OutputLine(), Ready());
  EXPECT_EQ(Stop(program), 0);
  EXPECT_EQ(fs::file_size(saved_), 65536U);
  EXPECT_NE(program.Errors().find("bytes dropped: 3"), std::string::npos);
}

TEST_F(Program, ReportsAtItsEndWhatADownloadLost) {
  const auto file = folder_.Write("full", std::string(65536, 'x'));
  SimulatorProgram program(Arguments({"--load", file.string()}));
  ASSERT_EQ(program.OutputLine(), Ready());
  const Client client(link_);
  client.Write("ab");
  EXPECT_EQ(Stop(program), 0);
  EXPECT_EQ(program.Errors(),
            "vrx2260sim: memory is full at 65536 bytes, what comes beyond is dropped\n"
            "vrx2260sim: bytes dropped: 2\n");
}

TEST_F(Program, WorksOnForTheNextClient) {
  SimulatorProgram program(Arguments({}));
  ASSERT_EQ(program.OutputLine(), Ready());
  Client(link_).Write("kept");
  for (int round = 0; round < 5; ++round) {
    const Client client(link_);
    client.Write("\x15");
    EXPECT_EQ(client.Read(7), "\x15\x1Fkept\x1F");
  }
}

class Abandoned : public Program, public ::testing::WithParamInterface<const char*> {};

// The line is full of a dump that is not read.
TEST_P(Abandoned, DumpHindersNeitherTheNextClientNorTheEnd) {
  const auto file = folder_.Write("full", std::string(65536, 'm'));
  SimulatorProgram program(Arguments({"--load", file.string()}, GetParam()));
  ASSERT_EQ(program.OutputLine(), Ready());
  {
    const Client client(link_);
    client.Write("\x15");
    ASSERT_EQ(client.Read(3000).size(), 3000U);
    EXPECT_TRUE(Eventually([&] { return client.Untaken() > 2048; }));
  }
  const Client next(link_);
  EXPECT_TRUE(Eventually([&] { return next.Untaken() == 0; }));
  next.Write("\x14");
  EXPECT_EQ(next.Read(2), "\x14\x1F");
  next.Write("\x15");
  EXPECT_EQ(next.Read(3), "\x15\x1F\x1F");
  EXPECT_EQ(Stop(program), 0);
}

INSTANTIATE_TEST_SUITE_P(Program, Abandoned, ::testing::Values("0", "115200"));

TEST_F(Program, EndsAlsoWhileAClientNeverReads) {
  const auto file = folder_.Write("full", std::string(65536, 'm'));
  SimulatorProgram program(Arguments({"--load", file.string()}));
  ASSERT_EQ(program.OutputLine(), Ready());
  const Client client(link_);
  client.Write("\x15");
  EXPECT_TRUE(Eventually([&] { return client.Untaken() > 2048; }));
  EXPECT_EQ(Stop(program), 0);
}

TEST_F(Program, ForgetsTheXoffOfAClientThatWent) {
  SimulatorProgram program(Arguments({}));
  ASSERT_EQ(program.OutputLine(), Ready());
  {
    const Client client(link_);
    client.Write("\x13\x16");
    EXPECT_EQ(client.ReadUntilSilent(100), "");
  }
  EXPECT_EQ(Client(link_).Read(2), "\x16\x1F");
}

TEST_F(Program, ANewCommandTakesThePlaceOfARunningDump) {
  const auto file = folder_.Write("full", std::string(65536, 'm'));
  SimulatorProgram program(Arguments({"--load", file.string()}, "19200"));
  ASSERT_EQ(program.OutputLine(), Ready());
  const Client client(link_);
  client.Write("\x15");
  EXPECT_EQ(client.Read(4), "\x15\x1Fmm");
  client.Write("\x16");
  std::string last;
  ASSERT_TRUE(Eventually([&] { return (last = client.Read(1)) != "m"; }));
  EXPECT_EQ(last + client.Read(1), "\x16\x1F");
  EXPECT_EQ(client.ReadUntilSilent(100), "");
}

// No PC keeps more than its receive buffer.
TEST_F(Program, ANewReplyTakesThePlaceOfOneThatNobodyRead) {
  const auto file = folder_.Write("large", std::string(3000, 'm'));
  SimulatorProgram program(Arguments({"--load", file.string()}));
  ASSERT_EQ(program.OutputLine(), Ready());
  const Client client(link_);
  client.Write("\x15");
  ASSERT_TRUE(Eventually([&] { return client.Untaken() == 3003; }));
  client.Write("\x16");
  EXPECT_TRUE(Eventually([&] { return client.Untaken() == 2; }));
  EXPECT_EQ(client.Read(2), "\x16\x1F");
}

TEST_F(Program, HoldsItsBytesBetweenXoffAndXon) {
  SimulatorProgram program(
      Arguments({"--load", folder_.Write("a", "data").string(), "--save", saved_.string()}));
  ASSERT_EQ(program.OutputLine(), Ready());
  const Client client(link_);
  client.Write("\x13\x15");
  EXPECT_EQ(client.ReadUntilSilent(100), "");
  client.Write("\x11");
  EXPECT_EQ(client.Read(7),
            "\x15\x1F"
            "data\x1F");
  EXPECT_EQ(Stop(program), 0);
  EXPECT_EQ(ReadAll(saved_), "data") << "flow control is no data";
}

TEST_F(Program, HangsUpAfterTheBytesOfAllReplies) {
  SimulatorProgram program(Arguments({"--load", folder_.Write("a", "data").string(), "--save",
                                      saved_.string(), "--fault", "hang-up=5"}));
  ASSERT_EQ(program.OutputLine(), Ready());
  const Client client(link_);
  client.Write("\x16");
  EXPECT_EQ(client.Read(2), "\x16\x1F");
  client.Write("\x15");
  EXPECT_EQ(client.Read(7),
            "\x15\x1F"
            "d");
  EXPECT_EQ(program.ExitCode(), 0);
  EXPECT_FALSE(fs::is_symlink(link_));
  EXPECT_EQ(ReadAll(saved_), "data");
}

TEST_F(Program, HangsUpAtTheFirstReplyAfterNoByte) {
  SimulatorProgram program(Arguments({"--fault", "hang-up=0"}));
  ASSERT_EQ(program.OutputLine(), Ready());
  const Client client(link_);
  client.Write("\x16");
  EXPECT_EQ(client.Read(2), "");
  EXPECT_EQ(program.ExitCode(), 0);
}

// Unread bytes on the line are lost with it.
TEST_F(Program, HangsUpOnceALateClientHasTakenTheLastByte) {
  SimulatorProgram program(Arguments({"--fault", "hang-up=2"}));
  ASSERT_EQ(program.OutputLine(), Ready());
  const Client client(link_);
  client.Write("\x16");
  ASSERT_TRUE(Eventually([&] { return client.Untaken() == 2; }));
  EXPECT_FALSE(client.IsHungUpWithin(50));
  EXPECT_EQ(client.Read(2), "\x16\x1F");
  EXPECT_EQ(program.ExitCode(), 0);
}

TEST_F(Program, HangsUpAlsoOnAClientThatNeverReads) {
  SimulatorProgram program(Arguments({"--fault", "hang-up=1"}));
  ASSERT_EQ(program.OutputLine(), Ready());
  const Client client(link_);
  client.Write("\x16");
  EXPECT_EQ(program.ExitCode(), 0);
}

TEST_F(Program, SendsOneXoffOnceSoManyBytesAreAnswered) {
  SimulatorProgram program(Arguments({"--fault", "xoff=2"}, "19200"));
  ASSERT_EQ(program.OutputLine(), Ready());
  const Client client(link_);
  client.Write("\x16");
  EXPECT_EQ(client.Read(2), "\x16\x1F");
  client.Write("\x17");
  EXPECT_EQ(client.Read(3), "\x17\x1F\x13");
  client.Write("\x18");
  EXPECT_EQ(client.Read(2), "\x18\x1F");
  EXPECT_EQ(client.ReadUntilSilent(50), "");
}

TEST_F(Program, DeafReadsNothingMoreAndStillEnds) {
  SimulatorProgram program(Arguments({"--fault", "deaf=2", "--save", saved_.string()}));
  ASSERT_EQ(program.OutputLine(), Ready());
  const Client client(link_);
  client.Write("a");
  client.Write("\x16");
  EXPECT_EQ(client.Read(2), "\x16\x1F");
  client.Write("\x17");
  EXPECT_EQ(client.ReadUntilSilent(50), "");
  EXPECT_EQ(Stop(program), 0);
  EXPECT_EQ(ReadAll(saved_), "a");
}

TEST_F(Program, AnIndicatorFeedsByADownloadForSoManyDays) {
  const fs::path ledger = folder_ / "ledger";
  SimulatorProgram program(
      Arguments({"--feeds", "2026-02-28", "--days", "2", "--ledger", ledger.string()}));
  ASSERT_EQ(program.OutputLine(), Ready());
  const Client client(link_);
  client.Write(
      "{DATA_IN},L\r\n[ING]\r\n1,CORN,0\r\n[REC]\r\n1,STEERS,0,900,0,CORN;900\r\n"
      "[PEN]\r\n1,A1,300\r\n\x15");
  EXPECT_EQ(client.Read(13), "\x15\x1F{BAT/FED},L");
  EXPECT_EQ(Stop(program), 0);
  EXPECT_EQ(program.Errors(),
            "vrx2260sim: the indicator fed by the download: days 2, weighings 4\n");
  const std::string weighed = ReadAll(ledger);
  EXPECT_EQ(weighed.find("2026-02-28,1,STEERS,BATCH,CORN,"), 0U);
  EXPECT_NE(weighed.find("\n2026-03-01,2,STEERS,FEED,A1,"), std::string::npos);
}

TEST_F(Program, PlaysItsFaults) {
  SimulatorProgram program(Arguments({"--load", folder_.Write("a", "data").string(), "--fault",
                                      "garbage", "--fault", "cut-after=4", "--fault", "stall=60"}));
  ASSERT_EQ(program.OutputLine(), Ready());
  const Client client(link_);
  client.Write("\x15");
  EXPECT_EQ(client.Read(4),
            "?\x1F"
            "da");
  EXPECT_EQ(client.ReadUntilSilent(150), "");
}

TEST_F(Program, SilentAnswersNothing) {
  SimulatorProgram program(Arguments({"--fault", "silent"}));
  ASSERT_EQ(program.OutputLine(), Ready());
  const Client client(link_);
  client.Write("\x14\x15\x16");
  EXPECT_EQ(client.ReadUntilSilent(150), "");
  EXPECT_EQ(Stop(program), 0);
}

class WrongUsage : public ::testing::TestWithParam<std::vector<std::string>> {};

TEST_P(WrongUsage, ExitsWithTwoAndAMessage) {
  SimulatorProgram program(GetParam());
  EXPECT_EQ(program.OutputLine(), "");
  EXPECT_EQ(program.ExitCode(), 2);
  EXPECT_NE(program.Errors(), "");
}

using Line = std::vector<std::string>;
INSTANTIATE_TEST_SUITE_P(
    Program, WrongUsage,
    ::testing::Values(Line{}, Line{"modul"}, Line{"module"}, Line{"module", "--link"},
                      Line{"module", "--link", "x", "--fault", "loud"},
                      Line{"module", "--link", "x", "--fault", "stall"},
                      Line{"module", "--link", "x", "--fault", "silent", "--fault", "silent"},
                      Line{"module", "--link", "x", "--baud", "-1"},
                      Line{"module", "--link", "x", "--baud", "fast"},
                      Line{"module", "--link", "x", "--baud", "4000001"},
                      Line{"module", "--link", "x", "--feeds", "2026-02-30"},
                      Line{"module", "--link", "x", "--days", "1"},
                      Line{"module", "--link", "x", "--ledger", "a"},
                      Line{"module", "--link", "x", "--feeds", "2026-01-05", "--days", "0"},
                      Line{"module", "--link", "x", "--feeds", "2026-01-05", "--days", "367"},
                      Line{"indicator", "--link", "x"},
                      Line{"module", "--link", "x", "--load", "a", "b"},
                      Line{"module", "--link", "x", "--unknown"}));

TEST(ProgramHelp, IsNoWrongUsage) {
  for (const Line& line : {Line{"--help"}, Line{"module", "--help"}, Line{"indicator", "--help"}}) {
    SimulatorProgram program(line);
    EXPECT_NE(program.OutputLine(), "");
    EXPECT_EQ(program.ExitCode(), 0);
    EXPECT_EQ(program.Errors(), "");
  }
}

TEST_F(Program, ReportsALoadThatCannotBeRead) {
  SimulatorProgram program(Arguments({"--load", (folder_ / "missing").string()}));
  EXPECT_EQ(program.OutputLine(), "");
  EXPECT_EQ(program.ExitCode(), 1);
  EXPECT_NE(program.Errors().find((folder_ / "missing").string()), std::string::npos);
  EXPECT_FALSE(fs::is_symlink(link_));
}

TEST_F(Program, ReportsAPathThatIsTaken) {
  folder_.Write("line", "precious");
  SimulatorProgram program(Arguments({}));
  EXPECT_EQ(program.OutputLine(), "");
  EXPECT_EQ(program.ExitCode(), 1);
  EXPECT_NE(program.Errors().find(link_.string()), std::string::npos);
  EXPECT_EQ(ReadAll(link_), "precious");
}

// The system may immediately reuse the number of the killed simulator's pseudo-terminal for another
// program. Then the link is correctly kept, and the test starts again.
TEST_F(Program, StartsAgainWhereItWasKilled) {
  constexpr int kTries = 20;
  for (int tries = 0; tries < kTries; ++tries) {
    {
      SimulatorProgram killed(Arguments({}));
      ASSERT_EQ(killed.OutputLine(), Ready());
    }
    EXPECT_TRUE(fs::is_symlink(link_));
    SimulatorProgram program(Arguments({}));
    if (program.OutputLine() == Ready()) {
      EXPECT_EQ(Stop(program), 0);
      return;
    }
    fs::remove(link_);
  }
  FAIL() << "it never started again";
}

}  // namespace
}  // namespace vrx::testing
