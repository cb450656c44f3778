#include <chrono>
#include <csignal>
#include <filesystem>
#include <thread>

#include <gmock/gmock.h>

#include "end_to_end/programs_fixture.h"

namespace vrx::testing {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

// An indicator that plays a script, and the tool that answers it as the module would. The scripts
// wait between what they send: an answer takes 1600 ms, and what arrives meanwhile is discarded.
class DirectOverALine : public ProgramsTest {
 protected:
  std::string LinePath() const { return (folder / "line").string(); }
  std::string OutPath() const { return (folder / "out").string(); }

  // The end of a script closes the line and the connection, so a long wait keeps both open.
  std::unique_ptr<Program> StartIndicator(const std::vector<std::string>& steps) const {
    std::string script;
    for (const std::string& step : steps) {
      script += step;
      script += '\n';
    }
    const std::string path = folder.Write("script", script).string();
    auto indicator = std::make_unique<Program>(
        Bin("vrx2260sim"),
        std::vector<std::string>{"indicator", "--link", LinePath(), "--script", path},
        folder.Path().string());
    EXPECT_TRUE(indicator->WaitForOutput("ready " + LinePath())) << indicator->Err();
    return indicator;
  }

  std::unique_ptr<Program> StartDirect(const std::vector<std::string>& more,
                                       std::vector<std::string> args = {}) const {
    args.insert(args.end(), {"direct", "--port", LinePath(), "--out", OutPath()});
    args.insert(args.end(), more.begin(), more.end());
    return std::make_unique<Program>(Bin("vrx2260ctl"), WithDataDir(args), folder.Path().string());
  }

  static bool Appears(const std::string& path) {
    for (int tries = 0; tries < 2000 && !std::filesystem::exists(path); ++tries) {
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return std::filesystem::exists(path);
  }

  static constexpr std::string_view kFile = "{BAT/FED},L\r\n[BAT],B,1,3,\xE9\r\n\r\n";
};

TEST_F(DirectOverALine, IndicatorStoresAFileReadsItBackAndClears) {
  const std::string file = folder.Write("file", kFile).string();
  const std::string saved = (folder / "saved").string();
  const std::string last = (folder / "last").string();
  const auto indicator = StartIndicator({"send-file " + file,
                                         "wait 500",
                                         "send 15  # NAK",
                                         "expect 15 1F",
                                         "expect-file " + file,
                                         "expect 1F",
                                         "wait 1000",
                                         "send 1C  # FS",
                                         "save " + saved,
                                         "wait 1000",
                                         "send 14  # DC4",
                                         "expect 14 1F",
                                         "wait 1000",
                                         "send 15",
                                         "expect 15 1F 1F",
                                         "wait 1000",
                                         "send 7B 52 45 50 4F 52 54 7D 78 15",
                                         "save " + last,
                                         "send 79  # waits for the save",
                                         "wait 60000"});
  const auto direct = StartDirect({});
  ASSERT_TRUE(Appears(last)) << indicator->Err() << direct->Err();
  direct->Signal(SIGTERM);
  EXPECT_EQ(direct->Wait(), 0) << direct->Err();
  indicator->Signal(SIGTERM);
  EXPECT_EQ(indicator->Wait(), 0);
  EXPECT_EQ(indicator->Err(), "vrx2260sim: stopped before the end of the script\n");
  EXPECT_EQ(ReadAll(saved), kFile);
  EXPECT_EQ(ReadAll(last), "{REPORT}x");
  EXPECT_EQ(direct->Out(), OutPath() + "/01.TXT\n");
  EXPECT_THAT(ReadAll(folder / "out/01.TXT"), StartsWith("{REPORT}x"));
}

TEST_F(DirectOverALine, SigtermAndSigintEndItWithTheFilesWritten) {
  for (const int signal : {SIGTERM, SIGINT}) {
    std::filesystem::remove_all(OutPath());
    const std::string file = folder.Write("file", kFile).string();
    const std::string marker = (folder / ("met" + std::to_string(signal))).string();
    const auto indicator =
        StartIndicator({"send-file " + file, "wait 400", "send 15", "save " + marker,
                        "send 0D  # waits for the save", "wait 60000"});
    const auto direct = StartDirect({});
    ASSERT_TRUE(Appears(marker)) << direct->Err() << indicator->Err();
    direct->Signal(signal);
    EXPECT_EQ(direct->Wait(), 0) << direct->Err();
    EXPECT_THAT(ReadAll(folder / "out/01.QXT"), StartsWith(kFile));
    indicator->Signal(SIGTERM);
    EXPECT_EQ(indicator->Wait(), 0);
  }
}

TEST_F(DirectOverALine, WhatCannotBeWrittenIsRescuedAndCutLater) {
  folder.Write("out", "no folder");
  const std::string file = folder.Write("file", kFile).string();
  const std::string marker = (folder / "met").string();
  const auto indicator =
      StartIndicator({"send-file " + file, "wait 400", "send 15", "save " + marker,
                      "send 0D  # waits for the save", "wait 60000"});
  const auto direct = StartDirect({});
  ASSERT_TRUE(Appears(marker)) << direct->Err() << indicator->Err();
  direct->Signal(SIGTERM);
  EXPECT_EQ(direct->Wait(), 1);
  std::filesystem::path rescued;
  for (const auto& entry : std::filesystem::directory_iterator(folder / "data")) {
    rescued = entry.path().extension() == ".KRM" ? entry.path() : rescued;
  }
  ASSERT_THAT(rescued.string(), HasSubstr("/RESCUE-"));
  EXPECT_THAT(direct->Err(), HasSubstr(rescued.string()));
  const Result cut =
      Ctl({"module", "upload", "--from", rescued.string(), "--out", (folder / "cut").string()});
  EXPECT_EQ(cut.code, 0) << cut.err;
  EXPECT_THAT(ReadAll(folder / "cut/01.QXT"), StartsWith(kFile));
}

TEST_F(DirectOverALine, LoadedBackupReachesTheIndicator) {
  const std::string backup = "{DATA_IN},L\r\n\r\n[ING]\r\n\r\n1,CORN,0\r\n\r\n";
  const std::string file = folder.Write("b.rbu", backup).string();
  const auto indicator = StartIndicator(
      {"expect 14 1F", "wait 1000", "send 15", "expect 15 1F", "expect-file " + file, "expect 1F"});
  const auto direct = StartDirect({"--load", file});
  EXPECT_EQ(indicator->Wait(), 0) << indicator->Err();
  // Its end closed the line.
  EXPECT_EQ(direct->Wait(), 1);
  EXPECT_THAT(direct->Err(), HasSubstr("The direct-connection has ended: Serial line lost."));
  EXPECT_EQ(ReadAll(folder / "out/01.RBU"), backup);
}

// The image is the recipe file with both of the indicator's commands, and is unchanged at the end.
TEST_F(DirectOverALine, LoadedDatabaseReachesTheIndicator) {
  const std::string database = (folder / "SITE.RDB").string();
  std::filesystem::copy_file(SitePath("SITE.RDB"), database);
  const Result text = Ctl({"download-text", database});
  ASSERT_EQ(text.code, 0) << text.err;
  const std::string file = folder.Write("text", text.out).string();
  const auto indicator = StartIndicator({"expect 14 1F", "wait 1000", "send 15", "expect 15 1F",
                                         "expect-file " + file, "expect 1F", "wait 1000", "send 1C",
                                         "expect 1C 1F", "expect-file " + file, "expect 1F"});
  const auto direct = StartDirect({"--load", database}, {"--yes"});
  EXPECT_EQ(indicator->Wait(), 0) << indicator->Err();
  EXPECT_EQ(direct->Wait(), 1);  // the indicator's end took the line away
  EXPECT_THAT(direct->Err(), HasSubstr("The direct-connection has ended: Serial line lost."));
  EXPECT_EQ(ReadAll(folder / "out/01.RBU"), text.out);
}

TEST_F(DirectOverALine, CommandTakesEffectAtItsPlaceInABurst) {
  const auto indicator =
      StartIndicator({"send 61 62 63 15 64 65 66", "expect 15 1F 61 62 63 1F", "wait 1000",
                      "send 15", "expect 15 1F 61 62 63 64 65 66 1F"});
  const auto direct = StartDirect({});
  EXPECT_EQ(indicator->Wait(), 0) << indicator->Err();
  EXPECT_EQ(direct->Wait(), 1);
}

TEST_F(DirectOverALine, MismatchIsReportedByTheIndicator) {
  const auto indicator = StartIndicator({"send 61 15", "expect 15 1F 62 1F"});
  const auto direct = StartDirect({});
  EXPECT_EQ(indicator->Wait(), 1);
  EXPECT_THAT(indicator->Err(), HasSubstr("line 2: expected 15 1F 62 1F, got 15 1F 61"));
  EXPECT_EQ(direct->Wait(), 1);
  EXPECT_THAT(direct->Out(), IsEmpty());
}

}  // namespace
}  // namespace vrx::testing
