#include "adapters/linux_machine.h"

#include <chrono>
#include <csignal>
#include <ctime>
#include <filesystem>
#include <thread>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/utsname.h>
#include <unistd.h>

#include "adapters/desktop_folders.h"
#include "adapters/pseudo_terminal.h"
#include "support/environment.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::StartsWith;

// What the program wrote, once it has; "" when it never does.
std::string KeptBy(const fs::path& path) {
  constexpr std::chrono::milliseconds kPoll{10};
  for (int polls = 0; polls < 1000 && !fs::exists(path); ++polls) {
    std::this_thread::sleep_for(kPoll);
  }
  return fs::exists(path) ? ReadAll(path) : "";
}

constexpr const char* kNoSignalBlocked = "SigBlk:\t0000000000000000\n";

TEST(LinuxSystemInfo, CommonFolderIsTheDataHome) {
  const Environment data_home("XDG_DATA_HOME", "/data");
  EXPECT_EQ(LinuxSystemInfo().CommonAppDataFolder(), "/data");
}

TEST(LinuxSystemInfo, RelativeDataHomeIsIgnored) {
  const Environment data_home("XDG_DATA_HOME", "data");
  const Environment home("HOME", "/home/miller");
  EXPECT_EQ(LinuxSystemInfo().CommonAppDataFolder(), "/home/miller/.local/share");
}

TEST(LinuxSystemInfo, NoHomeIsNoFolder) {
  const Environment data_home("XDG_DATA_HOME", "");
  const Environment home("HOME", "");
  EXPECT_EQ(LinuxSystemInfo().CommonAppDataFolder(), "");
}

TEST(LinuxSystemInfo, ProgramDirectoryHoldsTheRunningProgram) {
  EXPECT_TRUE(std::filesystem::exists(std::filesystem::path(LinuxSystemInfo().ProgramDirectory()) /
                                      "adapters_test"));
}

TEST(LocalCalendar, TodayIsADayThatExists) {
  const Date today = LocalCalendar().Today();
  EXPECT_TRUE(today.ok());
  EXPECT_GE(static_cast<int>(today.year()), 2026);
}

TEST(LocalNow, IsTheTimeOfTheZone) {
  using std::chrono::floor;
  using std::chrono::sys_seconds;
  using std::chrono::system_clock;
  constexpr std::chrono::minutes kAhead{5 * 60 + 45};
  const auto in_zone = [&](system_clock::time_point now) {
    return floor<std::chrono::seconds>(now) + kAhead;
  };
  LocalTime now;
  system_clock::time_point before;
  {
    const Environment zone("TZ", "TEST-5:45");
    tzset();
    before = system_clock::now();
    now = LocalNow();
  }
  tzset();
  ASSERT_TRUE(now.date.ok());
  const sys_seconds moment = std::chrono::sys_days(now.date) + now.time_of_day;
  EXPECT_GE(moment, in_zone(before));
  EXPECT_LE(moment, in_zone(system_clock::now()));
  EXPECT_GE(now.time_of_day, std::chrono::hours{0});
  EXPECT_LT(now.time_of_day, std::chrono::hours{24});
}

// A standard stream of this process that is another file until the object ends.
class Redirected {
 public:
  Redirected(int stream, int file) : stream_(stream), before_(dup(stream)) { dup2(file, stream); }
  ~Redirected() {
    dup2(before_, stream_);
    close(before_);
  }
  Redirected(const Redirected&) = delete;
  Redirected& operator=(const Redirected&) = delete;

 private:
  int stream_;
  int before_;
};

TEST(Terminal, IsFoundOnItsOwnStream) {
  const PseudoTerminal terminal;
  const int nothing = open("/dev/null", O_RDWR | O_CLOEXEC);
  const Redirected no_input(STDIN_FILENO, nothing);
  const Redirected no_error(STDERR_FILENO, nothing);
  EXPECT_FALSE(InputIsTerminal());
  EXPECT_FALSE(ErrorIsTerminal());
  {
    const Redirected input(STDIN_FILENO, terminal.NearEnd());
    EXPECT_TRUE(InputIsTerminal());
    EXPECT_FALSE(ErrorIsTerminal());
  }
  const Redirected error(STDERR_FILENO, terminal.NearEnd());
  EXPECT_FALSE(InputIsTerminal());
  EXPECT_TRUE(ErrorIsTerminal());
  close(nothing);
}

class LinuxSystem : public ::testing::Test {
 protected:
  DesktopFolders desktop;
  LinuxOperatingSystem os;
};

TEST_F(LinuxSystem, IsOfTheUnixKind) {
  EXPECT_EQ(os.Version().platform, 4);
  utsname names{};
  ASSERT_EQ(uname(&names), 0);
  EXPECT_THAT(std::string(std::begin(names.release)),
              StartsWith(std::to_string(os.Version().major) + "." +
                         std::to_string(os.Version().minor) + "."));
}

TEST_F(LinuxSystem, HasNoRegistry) {
  EXPECT_FALSE(os.OpenKey(RegistryRoot::kLocalMachine, "SOFTWARE"));
}

TEST_F(LinuxSystem, OpensADocumentInItsProgramFromTheRootFolder) {
  const fs::path document = desktop.folder.Write("Read me.TXT", "text");
  desktop.MakeProgram("reader");
  desktop.MakeEntry("reader.desktop", "Exec=reader --new-window %f\n");
  desktop.Cache("text/plain=reader.desktop;\n");
  EXPECT_EQ(desktop.Ask("open", "Read me.TXT"), QStringList{"33"});
  EXPECT_EQ(KeptBy(desktop.folder / "reader"),
            "/\n<--new-window>\n<" + document.string() + ">\n" + kNoSignalBlocked);
}

TEST_F(LinuxSystem, DocumentWithoutAProgram) {
  desktop.folder.Write("Readme.TXT", "text");
  EXPECT_EQ(desktop.Ask("open"), QStringList{"31"});
}

TEST_F(LinuxSystem, ProgramThatCannotBeStarted) {
  const fs::path program = desktop.folder.Write("bin/reader", "#!/no/such/interpreter\n");
  fs::permissions(program, fs::perms::owner_all);
  desktop.MakeEntry("reader.desktop", "Exec=reader %f\n");
  desktop.Cache("text/plain=reader.desktop;\n");
  desktop.folder.Write("Readme.TXT", "text");
  EXPECT_EQ(desktop.Ask("open"), QStringList{"11"});
}

TEST_F(LinuxSystem, HoldsNoSignalBackFromWhatItStarts) {
  sigset_t stop{};
  sigset_t before{};
  sigemptyset(&stop);
  sigaddset(&stop, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &stop, &before);
  const bool started = os.StartProgram(desktop.MakeProgram("tool"));
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
  ASSERT_TRUE(started);
  EXPECT_EQ(KeptBy(desktop.folder / "tool"), std::string("/\n") + kNoSignalBlocked);
}

TEST_F(LinuxSystem, StartsTheDistributionsToolForTheClassicOne) {
  const Environment path("PATH", (desktop.folder / "bin").string());
  EXPECT_FALSE(os.StartProgram("/program/MSINFO32.exe"));
  desktop.MakeProgram("gnome-system-monitor");
  EXPECT_TRUE(os.StartProgram("/program/MSINFO32.exe"));
  EXPECT_NE(KeptBy(desktop.folder / "gnome-system-monitor"), "");
}

TEST_F(LinuxSystem, ProgramThatIsNotThereDoesNotStart) {
  EXPECT_FALSE(os.StartProgram(desktop.folder / "bin/none"));
}

}  // namespace
}  // namespace vrx::testing
