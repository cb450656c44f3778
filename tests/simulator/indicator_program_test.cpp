#include <csignal>
#include <filesystem>
#include <string>

#include <gmock/gmock.h>

#include "simulator/simulator_program.h"
#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;

// A program that plays an indicator; the test is the PC.
class IndicatorProgram : public ::testing::Test {
 protected:
  std::vector<std::string> Arguments(const std::string& script) const {
    return {"indicator", "--link", link_.string(), "--script",
            folder_.Write("script", script).string()};
  }

  std::string Ready() const { return "ready " + link_.string(); }

  // How a script without a PC ends.
  void Fails(const std::string& script, int code, const std::string& words) const {
    SimulatorProgram program(Arguments(script));
    EXPECT_EQ(program.ExitCode(), code);
    EXPECT_THAT(program.Errors(), HasSubstr(words));
  }

  TempFolder folder_;
  fs::path link_ = folder_ / "line";
  fs::path saved_ = folder_ / "saved";
};

TEST_F(IndicatorProgram, EndOfTheScriptExits0AndTakesTheLinkAway) {
  SimulatorProgram program(Arguments("# nothing\nwait 10\n"));
  EXPECT_EQ(program.OutputLine(), Ready());
  EXPECT_EQ(program.ExitCode(), 0);
  EXPECT_EQ(program.Errors(), "");
  EXPECT_FALSE(fs::is_symlink(link_));
}

TEST_F(IndicatorProgram, SendsAndMeetsWhatItExpects) {
  const std::string file(3000, 'f');
  const std::string path = folder_.Write("file", file).string();
  SimulatorProgram program(Arguments("send 61 62 15\nexpect 15 1F 61\nexpect 62 1F\nsend-file " +
                                     path + "\nexpect-file " + path + " within 5000\n"));
  ASSERT_EQ(program.OutputLine(), Ready());
  const Client pc(link_);
  EXPECT_EQ(pc.Read(3), "ab\x15");
  pc.Write(
      "\x15\x1F"
      "ab\x1F");
  EXPECT_EQ(pc.Read(3000), file);
  pc.Write(file);
  EXPECT_EQ(program.ExitCode(), 0);
  EXPECT_EQ(program.Errors(), "");
}

TEST_F(IndicatorProgram, SendsFlowControlAsData) {
  SimulatorProgram program(Arguments("expect 13\nsend 11 13 00 FF\nexpect 61"));
  ASSERT_EQ(program.OutputLine(), Ready());
  const Client pc(link_);
  pc.Write("\x13");
  EXPECT_EQ(pc.Read(4), std::string("\x11\x13\0\xFF", 4));
  pc.Write("a");
  EXPECT_EQ(program.ExitCode(), 0);
}

TEST_F(IndicatorProgram, FirstMismatchIsReportedWithItsLine) {
  SimulatorProgram program(Arguments("send 15\n\nexpect 15 1F 61 1F\nsend 14\n"));
  ASSERT_EQ(program.OutputLine(), Ready());
  const Client pc(link_);
  pc.Write(
      "\x15\x1F"
      "b\x1F");
  EXPECT_EQ(program.ExitCode(), 1);
  EXPECT_THAT(program.Errors(), HasSubstr("line 3: expected 15 1F 61 1F, got 15 1F 62"));
}

TEST_F(IndicatorProgram, WhatDoesNotComeIsAMismatch) {
  Fails("expect 15 1F within 50", 1, "line 1: expected 15 1F, got nothing within 50 ms");
}

TEST_F(IndicatorProgram, ReplyThatBreaksOffIsAMismatch) {
  SimulatorProgram program(Arguments("expect 15 1F within 2000"));
  ASSERT_EQ(program.OutputLine(), Ready());
  const Client pc(link_);
  pc.Write("\x15");
  EXPECT_EQ(program.ExitCode(), 1);
  EXPECT_THAT(program.Errors(), HasSubstr("line 1: expected 15 1F, got 15 within 2000 ms"));
}

TEST_F(IndicatorProgram, MismatchFarInsideAFileIsReportedByItsPosition) {
  std::string file(1000, 'f');
  const std::string path = folder_.Write("file", file).string();
  SimulatorProgram program(Arguments("expect-file " + path));
  ASSERT_EQ(program.OutputLine(), Ready());
  const Client pc(link_);
  file[700] = 'x';
  pc.Write(file);
  EXPECT_EQ(program.ExitCode(), 1);
  const std::string errors = program.Errors();
  EXPECT_THAT(errors, HasSubstr("got 78"));
  EXPECT_THAT(errors, HasSubstr("(from byte 701 of 1000 on)"));
}

TEST_F(IndicatorProgram, MismatchWithin32BytesIsReportedFromTheFirstByte) {
  const std::string path = folder_.Write("file", std::string(40, 'f')).string();
  for (const auto& [alike, words] :
       {std::pair{31, "got 66 66 "}, {32, "got 78 (from byte 33 of "}}) {
    SimulatorProgram program(Arguments("expect-file " + path));
    ASSERT_EQ(program.OutputLine(), Ready());
    Client(link_).Write(std::string(static_cast<std::size_t>(alike), 'f') + "x");
    EXPECT_EQ(program.ExitCode(), 1);
    EXPECT_THAT(program.Errors(), HasSubstr(words));
  }
}

TEST_F(IndicatorProgram, SaveKeepsTheDataOfTheReplyAskedForBefore) {
  SimulatorProgram program(
      Arguments("send 15\nsave " + saved_.string() + "\nsend 14\nexpect 14 1F\n"));
  ASSERT_EQ(program.OutputLine(), Ready());
  const Client pc(link_);
  EXPECT_EQ(pc.Read(1), "\x15");
  pc.Write("\x15\x1F{REP");
  EXPECT_EQ(pc.ReadUntilSilent(200), "");
  pc.Write("ORT}\x1F");
  EXPECT_EQ(pc.Read(1), "\x14");
  pc.Write("\x14\x1F");
  EXPECT_EQ(program.ExitCode(), 0);
  EXPECT_EQ(ReadAll(saved_), "{REPORT}");
}

TEST_F(IndicatorProgram, SaveWaitsForNoReplyThatWasLookedAt) {
  const fs::path second = folder_ / "second";
  SimulatorProgram program(Arguments("send 14\nexpect 14 1F\nsave " + saved_.string() +
                                     "\nsend 15\nsave " + second.string() + "\nsend 1C\n"));
  ASSERT_EQ(program.OutputLine(), Ready());
  const Client pc(link_);
  EXPECT_EQ(pc.Read(1), "\x14");
  pc.Write("\x14\x1F");
  ASSERT_EQ(pc.Read(1), "\x15");
  pc.Write(
      "\x15\x1F"
      "a\x1F");
  ASSERT_EQ(pc.Read(1), "\x1C");
  pc.Write(
      "\x1C\x1F"
      "b\x1F");
  EXPECT_EQ(program.ExitCode(), 0);
  EXPECT_EQ(ReadAll(saved_), "a");
  EXPECT_EQ(ReadAll(second), "b");
}

TEST_F(IndicatorProgram, SaveListensToWhatIsExpected) {
  SimulatorProgram program(
      Arguments("save " + saved_.string() + "\nsend 1C\nexpect 1C 1F 61 62 1F\n"));
  ASSERT_EQ(program.OutputLine(), Ready());
  const Client pc(link_);
  EXPECT_EQ(pc.Read(1), "\x1C");
  pc.Write(
      "\x1C\x1F"
      "ab\x1F");
  EXPECT_EQ(program.ExitCode(), 0);
  EXPECT_EQ(ReadAll(saved_), "ab");
}

TEST_F(IndicatorProgram, SavedFileMayBeExpectedLater) {
  SimulatorProgram program(Arguments("send 15\nsave " + saved_.string() +
                                     "\nsend 1C\nexpect 1C 1F\nexpect-file " + saved_.string() +
                                     "\nexpect 1F\n"));
  ASSERT_EQ(program.OutputLine(), Ready());
  const Client pc(link_);
  pc.Write(
      "\x15\x1F"
      "ab\x1F");
  EXPECT_EQ(pc.Read(2), "\x15\x1C");
  pc.Write(
      "\x1C\x1F"
      "ab\x1F");
  EXPECT_EQ(program.ExitCode(), 0);
}

TEST_F(IndicatorProgram, WrongScriptExits2BeforeAnythingStarts) {
  Fails("send 15\nsend 1\n", 2, "line 2: ");
  EXPECT_FALSE(fs::is_symlink(link_));
  SimulatorProgram program({"indicator", "--link", link_.string(), "--script", "/no/such/script"});
  EXPECT_EQ(program.ExitCode(), 2);
}

TEST_F(IndicatorProgram, StopsOnASignalWhateverItWaitsFor) {
  const std::string file = folder_.Write("file", std::string(40'000, 'f')).string();
  for (const std::string& script :
       {std::string("wait 600000"), std::string("expect 15 within 600000"), "send-file " + file,
        "send 15\nsave " + saved_.string()}) {
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
      SimulatorProgram program(Arguments(script));
      ASSERT_EQ(program.OutputLine(), Ready());
      program.Signal(signal);
      EXPECT_EQ(program.ExitCode(), 0) << script;
      EXPECT_THAT(program.Errors(), HasSubstr("stopped before the end of the script")) << script;
      EXPECT_FALSE(fs::is_symlink(link_));
    }
  }
}

TEST_F(IndicatorProgram, ASaveSignalDoesNotStopIt) {
  SimulatorProgram program(Arguments("expect 61\n"));
  ASSERT_EQ(program.OutputLine(), Ready());
  const Client pc(link_);
  program.Signal(SIGUSR1);
  pc.Write("a");
  EXPECT_EQ(program.ExitCode(), 0);
  EXPECT_EQ(program.Errors(), "");
}

// The end of the script closes the line and discards its unread bytes.
TEST_F(IndicatorProgram, WaitsAtItsEndForAPcThatReadsLate) {
  SimulatorProgram program(Arguments("send 61 62 63\n"));
  ASSERT_EQ(program.OutputLine(), Ready());
  const Client pc(link_);
  ASSERT_TRUE(Eventually([&] { return pc.Untaken() == 3; }));
  EXPECT_FALSE(pc.IsHungUpWithin(50));
  EXPECT_EQ(pc.Read(3), "abc");
  EXPECT_EQ(program.ExitCode(), 0);
}

TEST_F(IndicatorProgram, EndsAlsoWhenThePcNeverReads) {
  SimulatorProgram program(Arguments("send 61 62 63\n"));
  ASSERT_EQ(program.OutputLine(), Ready());
  const Client pc(link_);
  EXPECT_EQ(program.ExitCode(), 0);
}

TEST_F(IndicatorProgram, AMismatchShowsAtMost32BytesOfEachSide) {
  std::string thirty_two = "61";
  for (int byte = 1; byte < 32; ++byte) {
    thirty_two += " 61";
  }
  for (const auto& [script, shown] : {std::pair{thirty_two, thirty_two + ", got"},
                                      {thirty_two + " 61", thirty_two + " ..., got"}}) {
    Fails("expect " + script + " within 1", 1, "line 1: expected " + shown + " nothing");
  }
}

}  // namespace
}  // namespace vrx::testing
