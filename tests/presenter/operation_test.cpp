#include "presenter/operation.h"

#include <optional>
#include <utility>

#include <gtest/gtest.h>

#include "support/recording_operator.h"

namespace vrx::testing {
namespace {

TEST(BusyCursors, StayUntilTheLastOneEnds) {
  RecordingOperator op;
  {
    const BusyCursor outer(op);
    EXPECT_TRUE(op.busy);
    { const BusyCursor inner(op); }
    EXPECT_TRUE(op.busy);
  }
  EXPECT_FALSE(op.busy);
}

TEST(OneOperation, RefusesAnotherUntilItEnds) {
  OperationLock lock;
  EXPECT_FALSE(lock.Running());
  {
    const OperationLock::Scope first = lock.TryEnter();
    EXPECT_TRUE(first);
    EXPECT_FALSE(lock.TryEnter());
    EXPECT_TRUE(lock.Running());
  }
  EXPECT_FALSE(lock.Running());
  EXPECT_TRUE(lock.TryEnter());
}

TEST(OneOperation, PassesTheLockOnWithItsScope) {
  OperationLock lock;
  std::optional<OperationLock::Scope> first(lock.TryEnter());
  const OperationLock::Scope second = std::move(*first);
  first.reset();
  EXPECT_TRUE(second);
  EXPECT_TRUE(lock.Running());
}

}  // namespace
}  // namespace vrx::testing
