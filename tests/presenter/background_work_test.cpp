#include "presenter/background_work.h"

#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <stdexcept>
#include <thread>

#include <gtest/gtest.h>

namespace vrx::testing {
namespace {

void WaitForEnd(const BackgroundWork& work) {
  while (!work.Ended()) {
    std::this_thread::yield();
  }
}

TEST(BackgroundWorkTest, RunsInAThreadOfItsOwn) {
  const auto thread = std::make_shared<std::thread::id>();
  const BackgroundWork work(
      [thread](BackgroundWork::Control&) { *thread = std::this_thread::get_id(); });
  WaitForEnd(work);
  EXPECT_NE(*thread, std::this_thread::get_id());
  work.Rethrow();
}

TEST(BackgroundWorkTest, ThrowsAfterTheEndWhatTheWorkThrew) {
  const BackgroundWork work(
      [](BackgroundWork::Control&) { throw std::runtime_error("the disk is full"); });
  WaitForEnd(work);
  EXPECT_THROW(work.Rethrow(), std::runtime_error);
}

TEST(BackgroundWorkTest, ShowsItsProgress) {
  const BackgroundWork work(
      [](BackgroundWork::Control& control) { control.Show("Pushing rows", 3, 8); });
  WaitForEnd(work);
  EXPECT_EQ(work.Shown().doing, "Pushing rows");
  EXPECT_EQ(work.Shown().done, 3);
  EXPECT_EQ(work.Shown().total, 8);
}

TEST(BackgroundWorkTest, TheEndCancelsAndWaitsForAWorkThatIsInside) {
  const auto ended = std::make_shared<std::atomic<bool>>(false);
  std::promise<void> inside;
  {
    const BackgroundWork work([ended, &inside](BackgroundWork::Control& control) {
      EXPECT_TRUE(control.Enter());
      inside.set_value();
      while (!control.Cancelled()) {
        std::this_thread::yield();
      }
      // Longer than the patience for a work that is outside.
      std::this_thread::sleep_for(std::chrono::milliseconds{700});
      *ended = true;
    });
    inside.get_future().wait();
  }
  EXPECT_TRUE(*ended);
}

// As a look-up of a host's name that takes half a minute.
TEST(BackgroundWorkTest, TheEndDoesNotWaitForAWorkThatIsOutsideAndItCannotEnterAnyMore) {
  std::promise<void> look_up;
  std::promise<bool> entered;
  std::shared_future<void> found = look_up.get_future().share();
  {
    const BackgroundWork work([found, &entered](BackgroundWork::Control& control) {
      found.wait();
      entered.set_value(control.Enter());
    });
  }
  look_up.set_value();  // never reached if the end has waited
  EXPECT_FALSE(entered.get_future().get());
}

TEST(BackgroundWorkTest, TheEndWaitsForAWorkThatNoticesTheCancel) {
  const auto ended = std::make_shared<std::atomic<bool>>(false);
  {
    const BackgroundWork work([ended](BackgroundWork::Control& control) {
      while (!control.Cancelled()) {
        std::this_thread::yield();
      }
      *ended = true;
    });
  }
  EXPECT_TRUE(*ended);
}

}  // namespace
}  // namespace vrx::testing
