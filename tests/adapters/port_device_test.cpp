#include "adapters/port_device.h"

#include <gtest/gtest.h>

#include "platform/serial_control.h"
#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;

class LinuxPortDeviceTest : public ::testing::Test {
 protected:
  void Link(const fs::path& target, const std::string& name) const {
    fs::create_directories(folder / "Ports");
    fs::create_symlink(target, folder / "Ports" / name);
  }

  TempFolder folder;
};

TEST_F(LinuxPortDeviceTest, WithoutALinkCountsTheBuiltInPorts) {
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
  EXPECT_THROW(LinuxPortDevice(folder.Path(), 0), SerialError);
  EXPECT_THROW(LinuxPortDevice(folder.Path(), -1), SerialError);
}

}  // namespace
}  // namespace vrx::testing
