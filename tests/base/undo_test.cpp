#include "base/undo.h"

#include <stdexcept>

#include <gtest/gtest.h>

namespace vrx::testing {
namespace {

TEST(Undo, RunsOnlyAfterAFailureWhichGoesOn) {
  int undone = 0;
  EXPECT_EQ(RunOrUndo([] { return 7; }, [&] { ++undone; }), 7);
  EXPECT_EQ(undone, 0);
  EXPECT_THROW(RunOrUndo([] { throw std::runtime_error("full"); }, [&] { ++undone; }),
               std::runtime_error);
  EXPECT_EQ(undone, 1);
}

}  // namespace
}  // namespace vrx::testing
