#include <algorithm>

#include <gtest/gtest.h>

#include "presenter/help.h"

namespace vrx::testing {
namespace {

TEST(AboutForm, VersionIsMajorMinorAndRevision) {
  const std::string_view version = ProgramVersion();
  EXPECT_EQ(version, VRX_VERSION);
  EXPECT_EQ(std::count(version.begin(), version.end(), '.'), 2);
}

TEST(AboutForm, PartNumber) { EXPECT_EQ(kPartNumber, "70315-0042"); }

}  // namespace
}  // namespace vrx::testing
