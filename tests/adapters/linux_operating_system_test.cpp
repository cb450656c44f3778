#include "adapters/linux_operating_system.h"

#include <chrono>
#include <csignal>
#include <thread>

#include <gtest/gtest.h>

#include "adapters/viewer_site.h"

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
  ViewerSite site;
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
  const fs::path document = site.folder.Write("Read me.TXT", "text");
  site.MakeProgram("reader");
  site.MakeEntry("reader.desktop", "Exec=reader --new-window %f\n");
  site.Cache("text/plain=reader.desktop;\n");
  EXPECT_GT(os.OpenDocument(document), 32);
  EXPECT_EQ(KeptBy(site.folder / "reader"),
            "/\n<--new-window>\n<" + document.string() + ">\n" + kNoSignalBlocked);
}

TEST_F(LinuxSystem, DocumentWithoutAProgram) {
  EXPECT_EQ(os.OpenDocument(site.folder.Write("Readme.TXT", "text")), 31);
}

TEST_F(LinuxSystem, ProgramThatCannotBeStarted) {
  const fs::path program = site.folder.Write("bin/reader", "#!/no/such/interpreter\n");
  fs::permissions(program, fs::perms::owner_all);
  site.MakeEntry("reader.desktop", "Exec=reader %f\n");
  site.Cache("text/plain=reader.desktop;\n");
  EXPECT_EQ(os.OpenDocument(site.folder.Write("Readme.TXT", "text")), 11);
}

TEST_F(LinuxSystem, HoldsNoSignalBackFromWhatItStarts) {
  sigset_t stop{};
  sigset_t before{};
  sigemptyset(&stop);
  sigaddset(&stop, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &stop, &before);
  const bool started = os.StartProgram(site.MakeProgram("tool"));
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
  ASSERT_TRUE(started);
  EXPECT_EQ(KeptBy(site.folder / "tool"), std::string("/\n") + kNoSignalBlocked);
}

TEST_F(LinuxSystem, StartsTheDistributionsToolForTheClassicOne) {
  const Environment path("PATH", (site.folder / "bin").string());
  EXPECT_FALSE(os.StartProgram("/program/MSINFO32.exe"));
  site.MakeProgram("gnome-system-monitor");
  EXPECT_TRUE(os.StartProgram("/program/MSINFO32.exe"));
  EXPECT_NE(KeptBy(site.folder / "gnome-system-monitor"), "");
}

TEST_F(LinuxSystem, ProgramThatIsNotThereDoesNotStart) {
  EXPECT_FALSE(os.StartProgram(site.folder / "bin/none"));
}

}  // namespace
}  // namespace vrx::testing
