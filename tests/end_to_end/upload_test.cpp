#include <chrono>
#include <csignal>
#include <filesystem>
#include <string>
#include <system_error>
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

  std::string file = folder.Write("small.qxt", kSmallFile).string();
};

// The daily flow: from the module's memory to stored rows, all at the line's own pace.
TEST_F(UploadOverALine, ADayGoesFromTheModuleIntoTheDatabase) {
  const std::string day = SitePath("day05.qxt");
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

// A module that goes away in the middle ends the command at once, not after a time-out.
TEST_F(UploadOverALine, AModuleThatDiesEndsTheUpload) {
  auto module = StartModule({"--load", SitePath("day05.qxt")});
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

// Each fault has a module on a line of its own, and all of them wait side by side: nearly all the
// time goes into the time-outs of the protocol.
class UploadFaults : public ProgramsTest {
 protected:
  std::unique_ptr<Program> StartLoadedModule(const std::vector<std::string>& options,
                                             std::size_t line) const {
    std::vector<std::string> all = {"--load", file};
    all.insert(all.end(), options.begin(), options.end());
    return StartModule(all, line);
  }
  // Uploads from the first so many lines at once.
  std::vector<Result> Upload(std::size_t lines, const std::string& out) const {
    std::vector<std::unique_ptr<Program>> uploads;
    for (std::size_t line = 0; line < lines; ++line) {
      uploads.push_back(StartCtl(
          {"module", "upload", "--out", OutPath(out, line).string(), "--port", ModulePath(line)}));
    }
    std::vector<Result> results;
    results.reserve(lines);
    for (const auto& upload : uploads) {
      results.push_back(ResultOf(*upload));
    }
    return results;
  }
  std::filesystem::path OutPath(const std::string& out, std::size_t line) const {
    return folder / (out + std::to_string(line));
  }
  void ExpectWhole(const Result& upload, const std::string& out, std::size_t line) const {
    EXPECT_EQ(upload.code, 0) << upload.err;
    EXPECT_EQ(ReadAll(OutPath(out, line) / "01.QXT"), kSmallFile);
  }

  std::string file = folder.Write("small.qxt", kSmallFile).string();
};

TEST_F(UploadFaults, AreReportedAndTheNextUploadIsWhole) {
  struct Fault {
    std::string option;
    std::string words;
    bool module_stays = false;  // for the next upload; otherwise that has a sound module
  };
  const std::vector<Fault> faults = {
      {"silent", "\ncause: no reply\nError: KRM not detected\n"},
      {"garbage", "\ncause: unexpected reply\nError: KRM not detected\n"},
      {"stall=7000", "the reply broke off after 1 bytes\nError: KRM not detected\n"},
      {"cut-after=40", "Error: Command response failed\ncause: "},
      {"hang-up=40", "KRM Error: The connection to the serial port was lost.\ncause: "},
      {"xoff=1", "Error: Serial line held\ncause: ", true},
      {"extra-us", "Invalid terminators\n"},
      {"strays=17", "Invalid terminators\n"}};
  std::vector<std::unique_ptr<Program>> modules;
  for (const Fault& fault : faults) {
    modules.push_back(StartLoadedModule({"--fault", fault.option}, modules.size()));
  }
  const std::vector<Result> failed = Upload(faults.size(), "bad");
  for (std::size_t line = 0; line < faults.size(); ++line) {
    SCOPED_TRACE(faults[line].option);
    EXPECT_EQ(failed[line].code, 1);
    EXPECT_THAT(failed[line].err, HasSubstr(faults[line].words));
    EXPECT_THAT(failed[line].out, IsEmpty());
    EXPECT_FALSE(std::filesystem::exists(OutPath("bad", line)));
    if (!faults[line].module_stays) {
      modules[line].reset();
      modules[line] = StartLoadedModule({}, line);
    }
  }
  const std::vector<Result> worked = Upload(faults.size(), "good");
  for (std::size_t line = 0; line < faults.size(); ++line) {
    SCOPED_TRACE(faults[line].option);
    ExpectWhole(worked[line], "good", line);
  }
}

TEST_F(UploadFaults, AShortStallAndAFewBytesAfterTheDumpAreHarmless) {
  const auto stalling = StartLoadedModule({"--fault", "stall=2000"}, 0);
  const auto straying = StartLoadedModule({"--fault", "strays=16"}, 1);
  const std::vector<Result> uploads = Upload(2, "out");
  ExpectWhole(uploads[0], "out", 0);
  ExpectWhole(uploads[1], "out", 1);
}

// The signal comes while the program has the line open, before the module could answer.
TEST_F(UploadOverALine, AnInterruptedUploadEndsInOrderAndTheNextOneWorks) {
  const auto module = StartModule({"--load", file, "--fault", "stall=60000"});
  const auto upload =
      StartCtl({"module", "upload", "--out", (folder / "out").string(), "--port", ModulePath()});
  const std::string line = std::filesystem::canonical(ModulePath()).string();
  const auto has_line = [&] {
    std::error_code gone;
    for (std::filesystem::directory_iterator
             fd("/proc/" + std::to_string(upload->Id()) + "/fd", gone),
         end;
         fd != end; fd.increment(gone)) {
      if (std::filesystem::read_symlink(fd->path(), gone) == line) {
        return true;
      }
    }
    return false;
  };
  while (!has_line() && !upload->Ended()) {
    std::this_thread::sleep_for(std::chrono::milliseconds{5});
  }
  upload->Signal(SIGINT);
  const Result canceled = ResultOf(*upload);
  EXPECT_EQ(canceled.code, 1);
  EXPECT_THAT(canceled.err, HasSubstr("Upload canceled after "));
  const auto sound = StartModule({"--load", file});
  EXPECT_EQ(Upload("out").code, 0);
  EXPECT_EQ(ReadAll(folder / "out/01.QXT"), kSmallFile);
}

}  // namespace
}  // namespace vrx::testing
