#include "adapters/serial_ports.h"

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <string>
#include <tuple>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "adapters/pseudo_terminal.h"
#include "platform/serial_control.h"
#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;

// A process that does nothing until the object is destroyed.
class OtherProcess {
 public:
  OtherProcess() : id_(fork()) {
    if (id_ == 0) {
      pause();
      _exit(0);
    }
  }
  ~OtherProcess() {
    kill(id_, SIGKILL);
    waitpid(id_, nullptr, 0);
  }
  OtherProcess(const OtherProcess&) = delete;
  OtherProcess& operator=(const OtherProcess&) = delete;

  pid_t Id() const { return id_; }

 private:
  pid_t id_;
};

// The lock of a device, as programs leave it.
class DeviceLock {
 public:
  DeviceLock(const std::string& device, pid_t holder) {
    std::string name = fs::path(device).lexically_relative("/dev").string();
    std::replace(name.begin(), name.end(), '/', '_');
    path_ = "/tmp/LCK.." + name;
    std::ofstream(path_) << holder << "\nother\n\n\n\n";
  }
  ~DeviceLock() { fs::remove(path_); }
  DeviceLock(const DeviceLock&) = delete;
  DeviceLock& operator=(const DeviceLock&) = delete;

 private:
  fs::path path_;
};

class LinuxPortDeviceTest : public ::testing::Test {
 protected:
  void Link(const fs::path& target, const std::string& name) const {
    fs::create_directories(folder / "Ports");
    fs::create_symlink(target, folder / "Ports" / name);
  }

  TempFolder folder;
};

TEST_F(LinuxPortDeviceTest, IsTheBuiltInPortWithoutALink) {
  EXPECT_EQ(LinuxPortDevice(folder.Path(), 1), "/dev/ttyS0");
  EXPECT_EQ(LinuxPortDevice(folder.Path(), 9), "/dev/ttyS8");
}

TEST_F(LinuxPortDeviceTest, FollowsTheLinkOfItsNumber) {
  Link("/dev/ttyUSB0", "COM3");
  EXPECT_EQ(LinuxPortDevice(folder.Path(), 3), "/dev/ttyUSB0");
  EXPECT_EQ(LinuxPortDevice(folder.Path(), 2), "/dev/ttyS1");
}

TEST_F(LinuxPortDeviceTest, RelativeLinkStartsFromItsFolder) {
  Link("../scale", "COM1");
  EXPECT_EQ(LinuxPortDevice(folder.Path(), 1), (folder / "scale").string());
}

TEST_F(LinuxPortDeviceTest, RefusesNumbersBelowOne) {
  EXPECT_THROW(std::ignore = LinuxPortDevice(folder.Path(), 0), SerialError);
  EXPECT_THROW(std::ignore = LinuxPortDevice(folder.Path(), -1), SerialError);
}

TEST(DescribeDevice, NamesTheKindOrWhyItCannotBeUsed) {
  const TempFolder folder;
  const PseudoTerminal line;
  EXPECT_EQ(DescribeDevice(line.Device()), "pseudo-terminal");
  EXPECT_EQ(DescribeDevice((folder / "none").string()), "no such device");
  EXPECT_EQ(DescribeDevice(folder.Write("file", "").string()), "no serial device");
}

TEST(DescribeDevice, FollowsALink) {
  const TempFolder folder;
  const PseudoTerminal line;
  fs::create_symlink(line.Device(), folder / "link");
  EXPECT_EQ(DescribeDevice((folder / "link").string()), "pseudo-terminal");
}

TEST(DescribeDevice, ADeviceOfAnotherProgramIsInUse) {
  const PseudoTerminal line;
  const OtherProcess other;
  {
    const DeviceLock lock(line.Device(), other.Id());
    EXPECT_EQ(DescribeDevice(line.Device()), "in use");
  }
  EXPECT_EQ(DescribeDevice(line.Device()), "pseudo-terminal");
}

TEST(DescribeDevice, IgnoresItsOwnLockAndThatOfAnEndedProgram) {
  const PseudoTerminal line;
  {
    const DeviceLock own(line.Device(), getpid());
    EXPECT_EQ(DescribeDevice(line.Device()), "pseudo-terminal");
  }
  pid_t ended = 0;
  {
    const OtherProcess other;
    ended = other.Id();
  }
  const DeviceLock left(line.Device(), ended);
  EXPECT_EQ(DescribeDevice(line.Device()), "pseudo-terminal");
}

// The rights of an ordinary user, also if the tests run as root.
class OrdinaryUser {
 public:
  OrdinaryUser() {
    if (is_root_) {
      EXPECT_EQ(setresuid(kNobody, kNobody, 0), 0);
    }
  }
  ~OrdinaryUser() {
    if (is_root_) {
      EXPECT_EQ(setresuid(0, 0, 0), 0);
    }
  }
  OrdinaryUser(const OrdinaryUser&) = delete;
  OrdinaryUser& operator=(const OrdinaryUser&) = delete;

 private:
  static constexpr uid_t kNobody = 65534;

  bool is_root_ = geteuid() == 0;
};

TEST(DescribeDevice, TheLockOfAnotherUsersProgramCounts) {
  const PseudoTerminal line;
  ASSERT_EQ(chmod(line.Device().c_str(), 0666), 0);
  const DeviceLock lock(line.Device(), 1);
  const OrdinaryUser user;
  EXPECT_EQ(DescribeDevice(line.Device()), "in use");
}

TEST(DescribeDevice, FindsADeviceThatTheUserMayNotUse) {
  const PseudoTerminal line;
  for (const mode_t mode : {0U, 0444U, 0222U}) {
    ASSERT_EQ(chmod(line.Device().c_str(), mode), 0);
    const OrdinaryUser user;
    EXPECT_EQ(DescribeDevice(line.Device()), "no access") << mode;
  }
}

TEST(DescribeDevice, ADeviceThatAnotherProcessHasOpenIsInUse) {
  const int device = open("/dev/full", O_RDWR | O_CLOEXEC);
  const OtherProcess other;
  close(device);
  EXPECT_EQ(DescribeDevice("/dev/full"), "in use");
}

TEST(SerialDevices, AreThereAndInOrder) {
  const std::vector<std::string> devices = SerialDevices();
  EXPECT_TRUE(std::is_sorted(devices.begin(), devices.end()));
  for (const std::string& device : devices) {
    EXPECT_TRUE(fs::exists(device)) << device;
  }
}

TEST(PutDeviceBehindPort, LinksTheNumberUntilTheLinkIsRemoved) {
  const TempFolder folder;
  PutDeviceBehindPort(folder.Path(), 3, "/dev/ttyUSB0");
  EXPECT_EQ(LinuxPortDevice(folder.Path(), 3), "/dev/ttyUSB0");
  PutDeviceBehindPort(folder.Path(), 3, "/dev/ttyACM1");
  EXPECT_EQ(LinuxPortDevice(folder.Path(), 3), "/dev/ttyACM1");
  PutDeviceBehindPort(folder.Path(), 3, "");
  EXPECT_EQ(LinuxPortDevice(folder.Path(), 3), "/dev/ttyS2");
  PutDeviceBehindPort(folder.Path(), 3, "");
  EXPECT_EQ(LinuxPortDevice(folder.Path(), 3), "/dev/ttyS2");
}

TEST(PutDeviceBehindPort, LeavesNothingElseInTheFolder) {
  const TempFolder folder;
  PutDeviceBehindPort(folder.Path(), 1, "/dev/ttyUSB0");
  PutDeviceBehindPort(folder.Path(), 1, "/dev/ttyUSB1");
  EXPECT_EQ(std::distance(fs::directory_iterator(folder / "Ports"), fs::directory_iterator()), 1);
}

TEST(PutDeviceBehindPort, ReplacesWhatAnInterruptedRunLeft) {
  const TempFolder folder;
  fs::create_directory(folder / "Ports");
  fs::create_symlink("/dev/ttyUSB0", folder / "Ports/COM1.new");
  PutDeviceBehindPort(folder.Path(), 1, "/dev/ttyUSB1");
  EXPECT_EQ(LinuxPortDevice(folder.Path(), 1), "/dev/ttyUSB1");
}

TEST(PutDeviceBehindPort, ReportsWhatKeepsItFromLinking) {
  const TempFolder folder;
  folder.Write("Ports", "a file");
  EXPECT_THROW(PutDeviceBehindPort(folder.Path(), 1, "/dev/ttyUSB0"), SerialError);
  EXPECT_THROW(PutDeviceBehindPort(folder.Path(), 0, "/dev/ttyUSB0"), SerialError);
}

}  // namespace
}  // namespace vrx::testing
