#include <cerrno>
#include <chrono>
#include <csignal>
#include <random>
#include <string>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "legacy/conversion_fixture.h"
#include "legacy/convert.h"
#include "legacy/jet_file.h"
#include "legacy/row_stream.h"
#include "support/private_mounts.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

// A program's directory with a shell script instead of the reader.
class OtherReader {
 public:
  OtherReader(ConversionFixture& site, const std::string& script) {
    site.program_directory = directory_.Path();
    for (const char* const blank : {"QXNULRDB.MDB", "QXNULXDB.MDB"}) {
      fs::copy_file(fs::path(VRX_BIN_DIR) / blank, directory_ / blank);
    }
    WriteBytes(directory_ / "vrx2260jet", "#!/bin/sh\n" + script + "\n");
    fs::permissions(directory_ / "vrx2260jet", fs::perms::owner_all);
  }

 private:
  TempFolder directory_;
};

void ExpectRefusal(const std::string& script, const std::string& refusal) {
  ConversionFixture site;
  const OtherReader reader(site, script);
  EXPECT_THAT(site.Refusal(site.Data("LEGACYR.RDB")), HasSubstr(refusal)) << script;
  EXPECT_THAT(site.Files(), IsEmpty());
}

TEST(Reader, ThatIsKilledIsReported) {
  ExpectRefusal("kill -9 $$",
                "LEGACYR.RDB is damaged: its reader was ended by signal 9. Copy it again");
  ExpectRefusal("kill -SEGV $$", "its reader was ended by signal 11");
}

TEST(Reader, ThatIsKilledInTheMiddleLeavesNothing) {
  const std::string real = fs::path(VRX_BIN_DIR) / "vrx2260jet";
  ExpectRefusal("file=$1; shift; " + real + R"( "$file" "$@" | head -c 9000; kill -9 $$)",
                "its reader was ended by signal 9");
  ExpectRefusal("file=$1; shift; " + real + R"( "$file" "$@" | head -c 9000)",
                "its rows have no end");
}

TEST(Reader, OfAnotherKindIsReported) {
  ExpectRefusal("echo hello", "is not the right one: the bytes are no rows of this version");
  ExpectRefusal("exit 0", "its rows have no end");
  ExpectRefusal("exit 99", "is not the right one (it ended with code 99)");
  ExpectRefusal("cat /dev/zero", "the bytes are no rows of this version");
}

TEST(Reader, ThatFindsAnotherFileThanTheParentReportsItsKind) {
  ExpectRefusal("exit 22", "LEGACYR.RDB is protected by a database password");
  ExpectRefusal("exit 3", "is damaged: its list of tables cannot be read");
}

// Ends as requested, without a byte of output.
class EndingRunner : public ProgramRunner {
 public:
  explicit EndingRunner(ProgramOutcome outcome) : outcome_(outcome) {}
  ProgramOutcome Run(const LimitedProgram& /*program*/,
                     const std::function<bool(std::string_view)>& /*take*/) override {
    return outcome_;
  }

 private:
  ProgramOutcome outcome_;
};

std::string RefusalOf(ProgramOutcome outcome) {
  EndingRunner runner(outcome);
  RowStreamWriter nowhere([](std::string_view /*bytes*/) {});
  try {
    ReadLegacyRows(runner, {.path = "/yard/OLD.RDB", .reader = "/bin/jet", .limits = {}}, {},
                   nowhere, [] { return true; });
  } catch (const Error& refusal) {
    return refusal.what();
  }
  return {};
}

TEST(Reader, IsToldByHowItEnded) {
  const std::string damaged = "OLD.RDB is damaged: ";
  const std::string remedy = ". Copy it again from where it was made, or take an older backup.";
  const std::string program = "The program /bin/jet, which reads such files, ";
  EXPECT_EQ(RefusalOf({ProgramEnd::kOutOfTime, 0}),
            damaged + "reading it does not come to an end" + remedy);
  EXPECT_EQ(RefusalOf({ProgramEnd::kCrashed, 11}),
            damaged + "its reader was ended by signal 11" + remedy);
  EXPECT_EQ(RefusalOf({ProgramEnd::kStopped, 0}), "the conversion was stopped");
  EXPECT_EQ(RefusalOf({ProgramEnd::kNotStarted, ENOENT}),
            program + "cannot be started: No such file or directory. Install the program again.");
  EXPECT_EQ(RefusalOf({ProgramEnd::kExited, 0}),
            program + "is not the right one: its rows have no end. Install the program again.");
  EXPECT_EQ(RefusalOf({ProgramEnd::kExited, 1}), "OLD.RDB cannot be read.");
  EXPECT_EQ(RefusalOf({ProgramEnd::kExited, 3}),
            damaged + "its list of tables cannot be read" + remedy);
  for (const int code : {2, 4, 15, 16, 16 + kJetFileKinds}) {
    EXPECT_EQ(RefusalOf({ProgramEnd::kExited, code}),
              program + "is not the right one (it ended with code " + std::to_string(code) +
                  "). Install the program again.");
  }
  for (int kind = 1; kind < kJetFileKinds; ++kind) {
    EXPECT_EQ(RefusalOf({ProgramEnd::kExited, 16 + kind}),
              JetFileRefusal(static_cast<JetFileKind>(kind), "OLD.RDB"));
  }
}

TEST(Reader, WantsAFileAndATable) {
  ChildProcessRunner runner;
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{}, {LEGACY_DATA "/LEGACYR.RDB"}}) {
    const ProgramOutcome outcome = runner.Run(
        {.path = fs::path(VRX_BIN_DIR) / "vrx2260jet", .arguments = arguments, .limits = {}},
        [](std::string_view bytes) {
          EXPECT_EQ(bytes, "");
          return true;
        });
    EXPECT_EQ(outcome.end, ProgramEnd::kExited);
    EXPECT_EQ(outcome.code, 2);
  }
}

// The rows of a file one of whose tables cannot be read.
std::string RowsWithDamagedTable(const std::string& name) {
  std::string bytes;
  RowStreamWriter rows([&bytes](std::string_view piece) { bytes += piece; });
  rows.Directory({"Pen", name});
  rows.DamagedTable(name);
  rows.End();
  return bytes;
}

TEST(Reader, ThatCannotReadATableOfRecordsIsReported) {
  ConversionFixture site;
  const OtherReader reader(site, "exec cat '" + site.folder.Path().string() + "/rows'");
  WriteBytes(site.folder / "rows", RowsWithDamagedTable("Recipe"));
  EXPECT_THAT(site.Refusal(site.Data("LEGACYR.RDB")),
              HasSubstr("LEGACYR.RDB is damaged: its table Recipe cannot be read. Copy it again"));
  EXPECT_FALSE(fs::exists(site.copy));
  WriteBytes(site.folder / "rows", RowsWithDamagedTable("History"));
  EXPECT_THAT(NoticeLines(site.Convert(site.Data("LEGACYR.RDB"))),
              ::testing::Contains("History: the table cannot be read and was left out"));
}

TEST(Reader, HasTenSecondsAndOneForEachMegabyteUpToAnHour) {
  constexpr std::uintmax_t kMegabyte = 1'048'576;
  for (const auto& [size, seconds] : {std::pair<std::uintmax_t, int>{0, 10},
                                      {kMegabyte - 1, 10},
                                      {kMegabyte, 11},
                                      {3589 * kMegabyte, 3599},
                                      {3590 * kMegabyte, 3600},
                                      {3591 * kMegabyte, 3600}}) {
    EXPECT_EQ(LimitsForFile(size).processor, std::chrono::seconds(seconds)) << size;
  }
}

TEST(Reader, ThatIsMissingIsReported) {
  ConversionFixture site;
  const OtherReader reader(site, "exit 0");
  fs::remove(site.program_directory / "vrx2260jet");
  EXPECT_THAT(
      site.Refusal(site.Data("LEGACYR.RDB")),
      AllOf(HasSubstr("vrx2260jet, which reads such files, cannot be started: No such file"),
            EndsWith("Install the program again.")));
  EXPECT_THAT(site.Files(), IsEmpty());
}

TEST(Conversion, StopsWhenAskedTo) {
  ConversionFixture site;
  int asked = 0;
  site.go_on = [&asked] { return ++asked < 3; };
  EXPECT_EQ(site.Refusal(site.Data("LEGACYX.TDB")), "the conversion was stopped");
  EXPECT_THAT(site.Files(), IsEmpty());
}

TEST(Conversion, StopsWhenAskedToAlsoOnceItsReaderHasClosedTheOutput) {
  ConversionFixture site;
  const OtherReader reader(site, "exec >&-; exec sleep 600");
  int asked = 0;
  site.go_on = [&asked] { return ++asked < 10; };
  EXPECT_EQ(site.Refusal(site.Data("LEGACYX.TDB")), "the conversion was stopped");
  EXPECT_THAT(site.Files(), IsEmpty());
}

TEST(Conversion, NeverReplacesAFile) {
  ConversionFixture site;
  WriteBytes(site.copy, "mine");
  EXPECT_EQ(site.Refusal(site.Data("LEGACYR.RDB")),
            site.copy.string() + " already exists; choose another name");
  EXPECT_EQ(BytesOf(site.copy), "mine");
  EXPECT_THAT(site.Files(), ElementsAre("NEW.RDB"));
}

TEST(Conversion, NeverReplacesAFileThatCameMeanwhile) {
  ConversionFixture site;
  site.go_on = [&site] {
    WriteBytes(site.copy, "mine");
    return true;
  };
  EXPECT_EQ(site.Refusal(site.Data("LEGACYR.RDB")),
            site.copy.string() + " already exists; choose another name");
  EXPECT_EQ(BytesOf(site.copy), "mine");
  EXPECT_THAT(site.Files(), ElementsAre("NEW.RDB"));
}

TEST(Conversion, OfAFileIntoItselfIsRefused) {
  ConversionFixture site;
  fs::copy_file(site.Data("LEGACYR.RDB"), site.copy);
  const std::string before = BytesOf(site.copy);
  EXPECT_THAT(site.Refusal(site.copy), HasSubstr("already exists"));
  EXPECT_EQ(BytesOf(site.copy), before);
}

TEST(Conversion, OfAFileThatChangesMeanwhileIsRefused) {
  ConversionFixture site;
  fs::copy_file(site.Data("LEGACYR.RDB"), site.old_path);
  site.go_on = [&site] {
    std::string bytes = BytesOf(site.old_path);
    bytes.back() = static_cast<char>(bytes.back() + 1);
    WriteBytes(site.old_path, bytes);
    return true;
  };
  EXPECT_THAT(site.Refusal(site.old_path), HasSubstr("OLD.RDB changed while it was read"));
  EXPECT_THAT(site.Files(), ElementsAre("OLD.RDB"));
}

TEST(Conversion, OfWhatIsNoFileIsRefused) {
  ConversionFixture site;
  EXPECT_THAT(site.Refusal(site.folder / "NONE.RDB"), EndsWith("NONE.RDB does not exist."));
  EXPECT_THAT(site.Refusal(site.folder.Path()), EndsWith("is a folder or a device, not a file."));
  EXPECT_THAT(site.Refusal("/dev/null"), EndsWith("is a folder or a device, not a file."));
}

TEST(Conversion, RefusesEveryOtherKindOfFileInItsOwnWords) {
  ConversionFixture site;
  WriteBytes(site.old_path, "ID,Name\n");
  EXPECT_EQ(site.Refusal(site.old_path), JetFileRefusal(JetFileKind::kText, "OLD.RDB"));
  std::string bytes = BytesOf(site.Data("LEGACYR.RDB"));
  bytes[0x14] = 0;
  WriteBytes(site.old_path, bytes);
  EXPECT_EQ(site.Refusal(site.old_path), JetFileRefusal(JetFileKind::kJet3, "OLD.RDB"));
  bytes[0x14] = 2;
  WriteBytes(site.old_path, bytes);
  EXPECT_EQ(site.Refusal(site.old_path), JetFileRefusal(JetFileKind::kAccess2007, "OLD.RDB"));
  bytes[0x14] = 1;
  bytes[0x42] = static_cast<char>(bytes[0x42] ^ 's');
  WriteBytes(site.old_path, bytes);
  EXPECT_EQ(site.Refusal(site.old_path), JetFileRefusal(JetFileKind::kPassword, "OLD.RDB"));
  EXPECT_THAT(site.Files(), ElementsAre("OLD.RDB"));
}

TEST(Conversion, IntoAFolderThatIsMissingIsReported) {
  ConversionFixture site;
  site.copy = site.folder / "none" / "NEW.RDB";
  EXPECT_THAT(site.Refusal(site.Data("LEGACYR.RDB")),
              AllOf(HasSubstr("cannot write"), HasSubstr("No such file or directory")));
}

// Checks the permission itself, because a superuser could write without it.
TEST(Conversion, FromAWriteProtectedTemplateMakesAFileThatCanBeWritten) {
  ConversionFixture site;
  const OtherReader reader(site,
                           "exec " + (fs::path(VRX_BIN_DIR) / "vrx2260jet").string() + " \"$@\"");
  fs::permissions(site.program_directory / "QXNULRDB.MDB", fs::perms::owner_read);
  site.Convert(site.Data("LEGACYR.RDB"));
  EXPECT_EQ(fs::status(site.copy).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST(Conversion, WithoutATemplateIsReported) {
  ConversionFixture site;
  const OtherReader reader(site,
                           "exec " + (fs::path(VRX_BIN_DIR) / "vrx2260jet").string() + " \"$@\"");
  fs::remove(site.program_directory / "QXNULRDB.MDB");
  EXPECT_THAT(site.Refusal(site.Data("LEGACYR.RDB")),
              HasSubstr("QXNULRDB.MDB does not exist; install the program again"));
}

TEST(ConversionThatIsKilled, LeavesAWholeFileOrNone) {
  constexpr int kRounds = 30;
  std::mt19937 random(11);
  std::uniform_int_distribution<int> microseconds(0, 60000);
  int interrupted = 0;
  for (int round = 0; round < kRounds; ++round) {
    SCOPED_TRACE(round);
    ConversionFixture site;
    const std::string old_file = site.Data("LEGACYX.TDB").string();
    const pid_t process = fork();
    if (process == 0) {
      execl(CONVERT_PROCESS, CONVERT_PROCESS, old_file.c_str(), site.copy.c_str(), VRX_BIN_DIR,
            nullptr);
      _exit(127);
    }
    std::this_thread::sleep_for(std::chrono::microseconds(microseconds(random)));
    kill(process, SIGKILL);
    int status = 0;
    waitpid(process, &status, 0);
    interrupted += WIFSIGNALED(status) ? 1 : 0;
    if (fs::exists(site.copy)) {
      EXPECT_EQ(site.Rows("PRAGMA integrity_check")[0][0], "ok");
      EXPECT_EQ(site.Rows("SELECT count(*) FROM Transactions")[0][0], "302");
    }
  }
  EXPECT_GT(interrupted, 0);
}

TEST(ConversionOnAFullDisk, FailsClearlyAndLeavesNothing) {
  ConversionFixture site;
  const std::string output =
      RunWithMounts(R"(
      mkdir "$1/disk"
      mount -t tmpfs -o size=150k tmpfs "$1/disk"
      "$2" "$3/LEGACYX.TDB" "$1/disk/NEW.TDB" "$4" || echo "exit $?"
      ls -A "$1/disk" | sed 's/^/left: /'
      umount "$1/disk")",
                    {site.folder.Path().string(), CONVERT_PROCESS, LEGACY_DATA, VRX_BIN_DIR});
  EXPECT_THAT(output, HasSubstr("refused: "));
  EXPECT_THAT(output, HasSubstr("full"));
  EXPECT_THAT(output, HasSubstr("exit 1\n"));
  EXPECT_THAT(output, ::testing::Not(HasSubstr("left: ")));
}

TEST(ConversionOnAReadOnlyDisk, FailsClearly) {
  ConversionFixture site;
  const std::string output =
      RunWithMounts(R"(
      mkdir "$1/disk"
      mount -t tmpfs -o size=2m,ro tmpfs "$1/disk"
      "$2" "$3/LEGACYX.TDB" "$1/disk/NEW.TDB" "$4" || echo "exit $?"
      umount "$1/disk")",
                    {site.folder.Path().string(), CONVERT_PROCESS, LEGACY_DATA, VRX_BIN_DIR});
  EXPECT_THAT(output, HasSubstr("refused: cannot write"));
  EXPECT_THAT(output, HasSubstr("Read-only file system"));
  EXPECT_THAT(output, HasSubstr("exit 1\n"));
}

}  // namespace
}  // namespace vrx::testing
