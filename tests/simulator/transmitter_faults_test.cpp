#include <initializer_list>
#include <stdexcept>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "simulator/transmitter.h"

namespace vrx::simulator {
namespace {

Faults Read(std::initializer_list<std::string_view> texts) {
  Faults faults;
  for (const std::string_view text : texts) {
    AddFault(faults, text);
  }
  return faults;
}

TEST(Faults, AreNoneUnlessAskedFor) {
  const Faults faults;
  EXPECT_FALSE(faults.silent || faults.garbage || faults.extra_us);
  EXPECT_FALSE(faults.cut_after || faults.stall || faults.hang_up);
  EXPECT_FALSE(faults.strays || faults.xoff || faults.deaf);
}

TEST(Faults, EachKindSetsItsOwn) {
  EXPECT_TRUE(Read({"silent"}).silent);
  EXPECT_TRUE(Read({"garbage"}).garbage);
  EXPECT_TRUE(Read({"extra-us"}).extra_us);
  EXPECT_EQ(Read({"cut-after=7"}).cut_after, 7U);
  EXPECT_EQ(Read({"stall=250"}).stall, std::chrono::milliseconds(250));
  EXPECT_EQ(Read({"hang-up=0"}).hang_up, 0U);
  EXPECT_EQ(Read({"strays=16"}).strays, 16U);
  EXPECT_EQ(Read({"xoff=1"}).xoff, 1U);
  EXPECT_EQ(Read({"deaf=2"}).deaf, 2U);
}

TEST(Faults, Combine) {
  const Faults faults = Read({"garbage", "cut-after=3", "stall=10"});
  EXPECT_TRUE(faults.garbage);
  EXPECT_EQ(faults.cut_after, 3U);
  EXPECT_EQ(faults.stall, std::chrono::milliseconds(10));
  EXPECT_FALSE(faults.silent);
}

class RefusedFault : public ::testing::TestWithParam<const char*> {};

TEST_P(RefusedFault, IsNamedInTheMessage) {
  try {
    Read({GetParam()});
    FAIL() << "accepted";
  } catch (const std::invalid_argument& error) {
    EXPECT_NE(std::string(error.what()).find('"' + std::string(GetParam()) + '"'),
              std::string::npos)
        << error.what();
  }
}

INSTANTIATE_TEST_SUITE_P(Faults, RefusedFault,
                         ::testing::Values("", "loud", "Silent", "silent=1",
                                           "garbage=", "cut-after", "cut-after=", "cut-after=-1",
                                           "cut-after=+1", "cut-after=1.5", "stall= 5", "stall=5ms",
                                           "hang-up=4294967296"));

TEST(Faults, RefuseTheSameKindTwice) {
  EXPECT_THROW(Read({"silent", "silent"}), std::invalid_argument);
  EXPECT_THROW(Read({"cut-after=1", "cut-after=1"}), std::invalid_argument);
}

}  // namespace
}  // namespace vrx::simulator
