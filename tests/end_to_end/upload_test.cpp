#include <chrono>
#include <csignal>
#include <thread>

#include <gmock/gmock.h>

#include "end_to_end/programs_fixture.h"

namespace vrx::testing {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr std::string_view kSmallFile =
    "{BAT/FED},L\r\n"
    "[BAT],B,1,3,01152009,2,4,7,0,0,0;0830,0835,0,0,0;1000.0,500.0,0,0,0;998.0,503.5,0,0,0\r\n"
    "\r\n"
    "[FED],B,1,12,2,0915,01152009,750.0,748.5\r\n"
    "\r\n";

class UploadOverALine : public ProgramsTest {
 protected:
  Result Upload(const std::string& out) const {
    return Ctl({"module", "upload", "--out", (folder / out).string(), "--port", ModulePath()});
  }

  // The upload fails with the words; the next one, on a sound module, is whole.
  void FailsThenWorks(const std::vector<std::string>& fault, const std::string& words,
                      bool with_cause = true) {
    {
      std::vector<std::string> options = {"--load", file, "--fault"};
      options.insert(options.end(), fault.begin(), fault.end());
      const auto module = StartModule(options);
      const Result failed = Upload("bad");
      EXPECT_EQ(failed.code, 1);
      EXPECT_THAT(failed.err, HasSubstr(words));
      if (with_cause) {
        EXPECT_THAT(failed.err, HasSubstr("\ncause: "));
      }
      EXPECT_THAT(failed.out, IsEmpty());
      EXPECT_FALSE(std::filesystem::exists(folder / "bad"));
    }
    std::filesystem::remove(ModulePath());
    const auto module = StartModule({"--load", file});
    const Result worked = Upload("good");
    EXPECT_EQ(worked.code, 0) << worked.err;
    EXPECT_EQ(ReadAll(folder / "good/01.QXT"), kSmallFile);
  }

  std::string file = folder.Write("small.qxt", kSmallFile).string();
};

// The daily flow: from the module's memory to stored rows, all at the line's own pace.
TEST_F(UploadOverALine, ADayGoesFromTheModuleIntoTheDatabase) {
  const std::string day = SitePath("day1.qxt");
  const auto module = StartModule({"--load", day});
  EXPECT_EQ(Ctl({"module", "test", "--port", ModulePath()}).code, 0);
  const Result upload = Upload("upload");
  ASSERT_EQ(upload.code, 0) << upload.err;
  EXPECT_EQ(upload.out, (folder / "upload/01.QXT").string() + "\n");
  EXPECT_THAT(upload.err, HasSubstr("Upload complete!  ("));
  ASSERT_EQ(ReadAll(folder / "upload/01.QXT"), ReadAll(day));
  const std::string into = NewTransactionDatabase();
  const Result store = Ctl({"store", (folder / "upload/01.QXT").string(), "--into", into,
                            "--recipes", SitePath("SITE.RDB")});
  EXPECT_EQ(store.code, 0) << store.err;
  const Json info = Info(into);
  EXPECT_EQ(info["firstDate"], "2026-01-05");
  EXPECT_EQ(info["lastDate"], "2026-01-05");
  const Json counts = Json::parse(Ctl({"import", day, "--json"}).out);
  EXPECT_EQ(info["rows"], counts["rows"]);
  EXPECT_EQ(info["transactions"], counts["batches"]);
}

TEST_F(UploadOverALine, FilesOfEveryKindComeBackByteForByte) {
  const std::string backup = "{DATA_IN},backup\r\n";
  const std::string report = "{REPORT}\r\npage \xE9\r\n";
  const auto module =
      StartModule({"--load", file, "--load", folder.Write("b.rbu", backup).string(), "--load",
                   folder.Write("r.txt", report).string(), "--baud", "0"});
  const Result upload = Upload("out");
  ASSERT_EQ(upload.code, 0) << upload.err;
  EXPECT_EQ(ReadAll(folder / "out/01.QXT"), kSmallFile);
  EXPECT_EQ(ReadAll(folder / "out/02.RBU"), backup);
  EXPECT_EQ(ReadAll(folder / "out/03.TXT"), report);
}

TEST_F(UploadOverALine, ClearEmptiesTheModule) {
  const auto module = StartModule({"--load", file});
  EXPECT_EQ(Ctl({"module", "clear", "--port", ModulePath()}).code, 1);
  EXPECT_EQ(Ctl({"--yes", "module", "clear", "--port", ModulePath()}).code, 0);
  const Result upload = Upload("out");
  EXPECT_EQ(upload.code, 1);
  EXPECT_THAT(upload.err, HasSubstr("The KRM buffer is empty\n"));
}

TEST_F(UploadOverALine, EveryBaudRateIsAnswered) {
  const auto module = StartModule({});
  for (const char* rate : {"1200", "2400", "9600", "19200"}) {
    EXPECT_EQ(Ctl({"module", "baud", rate, "--port", ModulePath()}).code, 0) << rate;
  }
}

TEST_F(UploadOverALine, APortNumberIsMappedByTheDataFolder) {
  const auto module = StartModule({});
  std::filesystem::create_directory(folder / "data/Ports");
  std::filesystem::create_symlink(ModulePath(), folder / "data/Ports/COM7");
  const Result test = Ctl({"module", "test", "--port", "7"});
  EXPECT_EQ(test.code, 0) << test.err;
}

TEST_F(UploadOverALine, AMissingPortIsReportedAsMissing) {
  const Result upload = Upload("out");
  EXPECT_EQ(upload.code, 1);
  EXPECT_THAT(upload.err, HasSubstr("Error: KRM not detected\n"));
  EXPECT_THAT(upload.err, HasSubstr("cause: " + ModulePath() + ": no such device\n"));
}

TEST_F(UploadOverALine, OneXoffEndsItAndTheNextOneWorks) {
  const auto module = StartModule({"--load", file, "--fault", "xoff=1"});
  const Result held = Upload("bad");
  EXPECT_EQ(held.code, 1);
  EXPECT_THAT(held.err, HasSubstr("Error: Serial line held\ncause: "));
  const Result worked = Upload("good");
  EXPECT_EQ(worked.code, 0) << worked.err;
  EXPECT_EQ(ReadAll(folder / "good/01.QXT"), kSmallFile);
}

TEST_F(UploadOverALine, AFewBytesAfterTheDumpAreIgnored) {
  const auto module = StartModule({"--load", file, "--fault", "strays=16"});
  EXPECT_EQ(Upload("out").code, 0);
  EXPECT_EQ(ReadAll(folder / "out/01.QXT"), kSmallFile);
}

TEST_F(UploadOverALine, ManyBytesAfterTheDump) {
  FailsThenWorks({"strays=17"}, "Invalid terminators\n", false);
}

TEST_F(UploadOverALine, SilentModule) { FailsThenWorks({"silent"}, "Error: KRM not detected\n"); }

TEST_F(UploadOverALine, GarbageFirstByte) {
  FailsThenWorks({"garbage"}, "Error: KRM not detected\n");
}

TEST_F(UploadOverALine, ReplyCutInTheData) {
  FailsThenWorks({"cut-after=40"}, "Error: Command response failed\n");
}

TEST_F(UploadOverALine, LineGoneInTheData) { FailsThenWorks({"hang-up=40"}, "Error: "); }

TEST_F(UploadOverALine, AnExtraTerminatorAtTheLinesOwnPace) {
  FailsThenWorks({"extra-us"}, "Invalid terminators\n", false);
}

TEST_F(UploadOverALine, ALongStallEndsTheReply) {
  FailsThenWorks({"stall=7000"}, "Error: KRM not detected\n");
}

TEST_F(UploadOverALine, AShortStallIsWaitedOut) {
  const auto module = StartModule({"--load", file, "--fault", "stall=2000"});
  const Result upload = Upload("out");
  EXPECT_EQ(upload.code, 0) << upload.err;
  EXPECT_EQ(ReadAll(folder / "out/01.QXT"), kSmallFile);
}

// A module that goes away in the middle ends the command at once, not after a time-out.
TEST_F(UploadOverALine, AModuleThatDiesEndsTheUpload) {
  auto module = StartModule({"--load", SitePath("day1.qxt")});
  Program upload(
      Bin("vrx2260ctl"),
      WithDataDir({"module", "upload", "--out", (folder / "out").string(), "--port", ModulePath()}),
      folder.Path().string());
  std::this_thread::sleep_for(std::chrono::seconds{4});
  module->Signal(SIGKILL);
  EXPECT_EQ(upload.Wait(std::chrono::seconds{20}), 1);
  EXPECT_THAT(upload.Err(), HasSubstr("\ncause: "));
  EXPECT_FALSE(std::filesystem::exists(folder / "out"));
}

}  // namespace
}  // namespace vrx::testing
