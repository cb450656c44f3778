#include "adapters/program_runner.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <functional>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <thread>
#include <tuple>
#include <utility>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "base/error.h"
#include "support/environment.h"
#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using ::testing::HasSubstr;
using ::testing::Not;

struct Ended {
  ProgramOutcome outcome;
  std::string output;
};

// Runs a script of the shell until it ends; `take` may end it earlier.
Ended RunScript(const std::string& script, const ProgramLimits& limits,
                const std::function<bool(const std::string& output)>& take = {}) {
  TempFolder folder;
  const fs::path program = folder.Write("program", "#!/bin/sh\n" + script + "\n");
  fs::permissions(program, fs::perms::owner_all);
  Ended ended;
  ended.outcome = ChildProcessRunner().Run(
      {.path = program, .arguments = {"one", "two words"}, .limits = limits},
      [&](std::string_view bytes) {
        ended.output += bytes;
        return !take || take(ended.output);
      });
  return ended;
}

// Also one that sends no SIGCHLD at its end, as those of QProcess.
void ExpectNoChildLeft() {
  EXPECT_EQ(waitpid(-1, nullptr, WNOHANG | __WALL), -1);
  EXPECT_EQ(errno, ECHILD);
}

// A zombie has ended too.
bool Runs(pid_t process) {
  const fs::path stat = fs::path("/proc") / std::to_string(process) / "stat";
  return fs::exists(stat) && ReadAll(stat).find(") Z ") == std::string::npos;
}

TEST(ProgramRunner, HandsOutputOverAndReportsTheExitCode) {
  const Ended ended = RunScript("echo \"$2\"; echo aside >&2; cat; exit 7", {});
  EXPECT_EQ(ended.output, "two words\n");
  EXPECT_EQ(ended.outcome.end, ProgramEnd::kExited);
  EXPECT_EQ(ended.outcome.code, 7);
}

TEST(ProgramRunner, ReportsTheSignalThatEndedAProgram) {
  const Ended ended = RunScript("echo start; kill -SEGV $$", {});
  EXPECT_EQ(ended.output, "start\n");
  EXPECT_EQ(ended.outcome.end, ProgramEnd::kCrashed);
  EXPECT_EQ(ended.outcome.code, SIGSEGV);
}

TEST(ProgramRunner, ReportsWhyAProgramCannotBeStarted) {
  const auto run = [](const fs::path& path) {
    return ChildProcessRunner().Run({.path = path, .arguments = {}, .limits = {}},
                                    [](std::string_view) { return true; });
  };
  TempFolder folder;
  const ProgramOutcome missing = run(folder / "missing");
  EXPECT_EQ(missing.end, ProgramEnd::kNotStarted);
  EXPECT_EQ(missing.code, ENOENT);
  const ProgramOutcome no_program = run(folder.Path());
  EXPECT_EQ(no_program.end, ProgramEnd::kNotStarted);
  EXPECT_EQ(no_program.code, EACCES);
  ExpectNoChildLeft();
}

TEST(ProgramRunner, TakesAllThatAProgramWritesBeforeItEnds) {
  const Ended ended = RunScript("head -c 1000000 /dev/zero; printf end", {});
  EXPECT_EQ(ended.output.size(), 1000003U);
  EXPECT_EQ(ended.outcome.end, ProgramEnd::kExited);
}

TEST(ProgramRunner, EndsAProgramThatWritesWithoutEnd) {
  const Ended ended = RunScript("exec cat /dev/zero", {},
                                [](const std::string& output) { return output.size() < 1000000; });
  EXPECT_EQ(ended.outcome.end, ProgramEnd::kStopped);
  EXPECT_LT(ended.output.size(), 1200000U);
  ExpectNoChildLeft();
}

TEST(ProgramRunner, EndsAProgramThatUsesUpItsProcessorTime) {
  const Ended ended = RunScript("while :; do :; done", {.processor = 1s});
  EXPECT_EQ(ended.outcome.end, ProgramEnd::kOutOfTime);
}

TEST(ProgramRunner, EndsAProgramThatIgnoresTheSignalOfItsProcessorTime) {
  const Ended ended = RunScript("trap '' XCPU; while :; do :; done", {.processor = 1s});
  EXPECT_EQ(ended.outcome.end, ProgramEnd::kOutOfTime);
}

TEST(ProgramRunner, EndsAProgramThatKeepsQuiet) {
  const Ended ended = RunScript("echo start; exec sleep 600", {.quiet = 200ms});
  EXPECT_EQ(ended.output, "start\n");
  EXPECT_EQ(ended.outcome.end, ProgramEnd::kOutOfTime);
}

TEST(ProgramRunner, CountsNoTimeThatItsOwnerTakesAsQuiet) {
  int pieces = 0;
  const Ended ended = RunScript("echo start; sleep 1.5; echo end", {.quiet = 1s},
                                [&pieces](const std::string& output) {
                                  pieces += output.empty() ? 0 : 1;
                                  if (pieces == 2) {
                                    std::this_thread::sleep_for(1200ms);
                                  }
                                  return true;
                                });
  EXPECT_EQ(ended.output, "start\nend\n");
  EXPECT_EQ(ended.outcome.end, ProgramEnd::kExited);
}

// What ends a program whose output is open ends one that has closed it.

constexpr const char* kClosesItsOutput = "echo start; exec >&-; ";

TEST(ProgramRunnerAfterTheOutputIsClosed, ReportsTheExitCode) {
  const Ended ended = RunScript(std::string(kClosesItsOutput) + "sleep 0.2; exit 7", {});
  EXPECT_EQ(ended.output, "start\n");
  EXPECT_EQ(ended.outcome.end, ProgramEnd::kExited);
  EXPECT_EQ(ended.outcome.code, 7);
}

TEST(ProgramRunnerAfterTheOutputIsClosed, EndsAProgramThatKeepsQuiet) {
  const Ended ended = RunScript(std::string(kClosesItsOutput) + "exec sleep 600", {.quiet = 200ms});
  EXPECT_EQ(ended.output, "start\n");
  EXPECT_EQ(ended.outcome.end, ProgramEnd::kOutOfTime);
  ExpectNoChildLeft();
}

TEST(ProgramRunnerAfterTheOutputIsClosed, EndsAProgramThatStopsItself) {
  const Ended ended =
      RunScript(std::string(kClosesItsOutput) + "kill -STOP $$; sleep 600", {.quiet = 200ms});
  EXPECT_EQ(ended.outcome.end, ProgramEnd::kOutOfTime);
  ExpectNoChildLeft();
}

TEST(ProgramRunnerAfterTheOutputIsClosed, EndsAProgramThatIsNotWanted) {
  int asked_after_start = 0;
  const Ended ended = RunScript(std::string(kClosesItsOutput) + "exec sleep 600", {},
                                [&asked_after_start](const std::string& output) {
                                  asked_after_start += output.empty() ? 0 : 1;
                                  return asked_after_start < 10;
                                });
  EXPECT_EQ(ended.outcome.end, ProgramEnd::kStopped);
  ExpectNoChildLeft();
}

TEST(ProgramRunnerAfterTheOutputIsClosed, EndsAProgramThatUsesUpItsProcessorTime) {
  const Ended ended =
      RunScript(std::string(kClosesItsOutput) + "while :; do :; done", {.processor = 1s});
  EXPECT_EQ(ended.outcome.end, ProgramEnd::kOutOfTime);
}

TEST(ProgramRunnerAfterTheOutputIsClosed, LeavesNoChildWhenItsOwnerThrows) {
  EXPECT_THROW(RunScript(std::string(kClosesItsOutput) + "exec sleep 600", {},
                         [](const std::string& output) {
                           if (!output.empty()) {
                             throw Error("enough");
                           }
                           return true;
                         }),
               Error);
  ExpectNoChildLeft();
}

// The output stays open with what the program started, and is written to.
TEST(ProgramRunner, EndsWithTheProgramAndEndsWhatItLeaves) {
  const Ended ended = RunScript("sleep 600 & echo $!; cat /dev/zero & exit 7", {});
  EXPECT_EQ(ended.outcome.end, ProgramEnd::kExited);
  EXPECT_EQ(ended.outcome.code, 7);
  const pid_t left = std::stoi(ended.output);
  ASSERT_GT(left, 0);
  // Killed, and gone as soon as the system comes to it.
  for (int i = 0; i < 500 && Runs(left); ++i) {
    std::this_thread::sleep_for(10ms);
  }
  EXPECT_FALSE(Runs(left));
}

TEST(ProgramRunner, EndsAProgramWhenItsOutputIsNotWanted) {
  const ProgramOutcome outcome =
      ChildProcessRunner().Run({.path = "/bin/sleep", .arguments = {"600"}, .limits = {}},
                               [](std::string_view /*bytes*/) { return false; });
  EXPECT_EQ(outcome.end, ProgramEnd::kStopped);
}

TEST(ProgramRunner, LeavesNoChildBehindWhenItsOutputCannotBeTaken) {
  EXPECT_THROW(std::ignore = ChildProcessRunner().Run(
                   {.path = "/bin/sleep", .arguments = {"600"}, .limits = {}},
                   [](std::string_view) -> bool { throw Error("enough"); }),
               Error);
  ExpectNoChildLeft();
}

// Handles the events of this thread, as a callback that shows progress does.
void HandleEvents(std::chrono::milliseconds time) {
  QElapsedTimer timer;
  timer.start();
  while (timer.elapsed() < time.count()) {
    QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    std::this_thread::sleep_for(1ms);
  }
}

TEST(ProgramRunner, NoticesAnEndDuringTheEventsOfItsOwner) {
  bool handled = false;
  const Ended ended = RunScript("sleep 600 & echo $!; exit 7", {}, [&](const std::string& output) {
    if (!output.empty() && !std::exchange(handled, true)) {
      HandleEvents(300ms);
      EXPECT_FALSE(Runs(std::stoi(output)));
    }
    return true;
  });
  EXPECT_TRUE(handled);
  EXPECT_EQ(ended.outcome.end, ProgramEnd::kExited);
  EXPECT_EQ(ended.outcome.code, 7);
  ExpectNoChildLeft();
}

TEST(ProgramRunner, HoldsAProgramThatWritesFasterThanItsOutputIsTaken) {
  TempFolder folder;
  const fs::path written = folder / "written";
  bool handled = false;
  // An empty file is one that a program may make.
  const Ended ended = RunScript("head -c 1000000 /dev/zero; : > '" + written.string() + "'", {},
                                [&](const std::string& output) {
                                  if (!output.empty() && !std::exchange(handled, true)) {
                                    HandleEvents(300ms);
                                    EXPECT_FALSE(fs::exists(written));
                                  }
                                  return true;
                                });
  EXPECT_TRUE(handled);
  EXPECT_TRUE(fs::exists(written));
  EXPECT_EQ(ended.output.size(), 1000000U);
}

TEST(ProgramRunner, GivesAProgramNothingOfItsOwn) {
  const Environment variable("VRX_TEST", "kept");
  sigset_t stop{};
  sigset_t before{};
  sigemptyset(&stop);
  sigaddset(&stop, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &stop, &before);
  const Ended ended = RunScript("/usr/bin/env; grep Sig[BI] /proc/self/status", {});
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
  EXPECT_THAT(ended.output, HasSubstr("LC_ALL=C\n"));
  EXPECT_THAT(ended.output, Not(HasSubstr("VRX_TEST")));
  EXPECT_THAT(ended.output, HasSubstr("SigBlk:\t0000000000000000\nSigIgn:\t0000000000000000\n"));
}

std::set<std::string> OpenFiles() {
  std::set<std::string> numbers;
  for (const auto& file : fs::directory_iterator("/proc/self/fd")) {
    numbers.insert(file.path().filename().string());
  }
  return numbers;
}

TEST(ProgramRunner, OpensNoFilesForAProgramButTheStandardOnes) {
  const std::set<std::string> before = OpenFiles();
  std::string output;
  const ProgramOutcome outcome =
      ChildProcessRunner().Run({.path = "/bin/ls", .arguments = {"/proc/self/fd"}, .limits = {}},
                               [&](std::string_view bytes) {
                                 output += bytes;
                                 return true;
                               });
  EXPECT_EQ(outcome.end, ProgramEnd::kExited);
  int opened = 0;
  std::istringstream numbers(output);
  for (std::string number; numbers >> number;) {
    opened += before.contains(number) ? 0 : 1;
  }
  EXPECT_LE(opened, 1) << output;  // the folder
  EXPECT_EQ(OpenFiles(), before);
}

TEST(ProgramRunner, LeavesTheSignalsOfItsOwnerAsTheyWere) {
  struct sigaction before {};
  struct sigaction after {};
  sigaction(SIGPIPE, nullptr, &before);
  RunScript("echo x", {});
  sigaction(SIGPIPE, nullptr, &after);
  EXPECT_EQ(before.sa_handler, after.sa_handler);
}

TEST(ProgramRunner, SetsTheLimits) {
  const Ended ended = RunScript("ulimit -St; ulimit -Ht; ulimit -c; ulimit -f", {.processor = 17s});
  EXPECT_EQ(ended.output, "17\n18\n0\n0\n");
}

#ifndef __SANITIZE_ADDRESS__
TEST(ProgramRunner, SetsTheLimitOfMemory) {
  EXPECT_EQ(RunScript("ulimit -v", {.memory_bytes = std::size_t{64} << 20U}).output, "65536\n");
}

TEST(ProgramRunner, LimitsMemory) {
  const Ended ended = RunScript("head -c 300000000 /dev/zero | tail -n 1 >/dev/null; echo $?",
                                {.memory_bytes = std::size_t{64} << 20U});
  EXPECT_THAT(ended.output, HasSubstr("1"));
}
#endif

TEST(ProgramRunner, LetsAProgramWriteNoFile) {
  TempFolder folder;
  const fs::path path = folder.Write("written", "");
  RunScript("echo x > '" + path.string() + "'; echo done", {});
  EXPECT_EQ(ReadAll(path), "");
}

}  // namespace
}  // namespace vrx::testing
