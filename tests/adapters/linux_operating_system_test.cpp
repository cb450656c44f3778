#include "adapters/linux_operating_system.h"

#include <chrono>
#include <csignal>
#include <thread>

#include <gtest/gtest.h>

#include "adapters/viewer_site.h"
#include "desktop_folders.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;

// What the program wrote, once it has; "" when it never does.
std::string KeptBy(const fs::path& path) {
  constexpr std::chrono::milliseconds kPoll{10};
  for (int polls = 0; polls < 1000 && !fs::exists(path); ++polls) {
    std::this_thread::sleep_for(kPoll);
  }
  return fs::exists(path) ? ReadAll(path) : "";
}

constexpr const char* kNoSignalBlocked = "SigBlk:\t0000000000000000\n";

class LinuxSystem : public ::testing::Test {
 protected:
  DesktopFolders desktop;
  LinuxOperatingSystem os;
};

TEST_F(LinuxSystem, IsOfTheUnixKind) {
  EXPECT_EQ(os.Version().platform, 4);
  EXPECT_GT(os.Version().major, 0);
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
