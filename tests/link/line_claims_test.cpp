#include <gtest/gtest.h>

#include "link/line_guard.h"

namespace vrx::testing {
namespace {

TEST(LineClaims, ALineInUseIsGivenToNobodyElse) {
  LineGuard guard;
  auto command = guard.TakeForCommand();
  EXPECT_FALSE(guard.TakeForCommand());
  EXPECT_FALSE(guard.TakeForDirectConnection());
  EXPECT_FALSE(guard.TakeForTransmission());
  command.reset();
  const auto direct = guard.TakeForDirectConnection();
  EXPECT_FALSE(guard.TakeForCommand());
  EXPECT_FALSE(guard.TakeForDirectConnection());
  const auto transmission = guard.TakeForTransmission();
  EXPECT_TRUE(transmission);
  EXPECT_FALSE(guard.TakeForTransmission());
}

}  // namespace
}  // namespace vrx::testing
