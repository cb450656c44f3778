#include "base/uuid.h"

#include <set>
#include <string>

#include <gtest/gtest.h>

namespace vrx::testing {
namespace {

TEST(Uuid, HasItsFiveGroupsItsVersionAndItsVariant) {
  for (int count = 0; count < 100; ++count) {
    const std::string uuid = NewUuid();
    EXPECT_TRUE(IsUuid(uuid)) << uuid;
    EXPECT_EQ(uuid[14], '4') << uuid;
    EXPECT_NE(std::string("89ab").find(uuid[19]), std::string::npos) << uuid;
  }
}

TEST(Uuid, IsAnotherOneEachTime) {
  std::set<std::string> all;
  for (int count = 0; count < 1000; ++count) {
    all.insert(NewUuid());
  }
  EXPECT_EQ(all.size(), 1000U);
}

TEST(Uuid, IsKnownByItsForm) {
  EXPECT_TRUE(IsUuid("00000000-0000-0000-0000-000000000000"));
  EXPECT_TRUE(IsUuid("9E107D9D-372B-4B6A-8F3E-0123456789ab"));
  EXPECT_FALSE(IsUuid(""));
  EXPECT_FALSE(IsUuid("9e107d9d372b4b6a8f3e0123456789ab"));
  EXPECT_FALSE(IsUuid("9e107d9d-372b-4b6a-8f3e-0123456789a"));
  EXPECT_FALSE(IsUuid("9e107d9d-372b-4b6a-8f3e-0123456789abc"));
  EXPECT_FALSE(IsUuid("9e107d9d-372b-4b6a-8f3e-0123456789ag"));
  EXPECT_FALSE(IsUuid("9e107d9d-372b-4b6a-8f3e_0123456789ab"));
}

}  // namespace
}  // namespace vrx::testing
