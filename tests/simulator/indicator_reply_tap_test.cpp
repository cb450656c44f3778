#include <string>

#include <gtest/gtest.h>

#include "simulator/indicator.h"

namespace vrx::simulator {
namespace {

TEST(ReplyTap, PicksTheDataOfADump) {
  for (const char* reply : {"\x15\x1F{REPORT}x\x1F", "\x1C\x1F{REPORT}x\x1F"}) {
    ReplyTap tap;
    EXPECT_EQ(tap.Listen(reply), 12U);
    EXPECT_TRUE(tap.Complete());
    EXPECT_EQ(tap.Data(), "{REPORT}x");
  }
}

TEST(ReplyTap, EmptyMemoryIsAReplyToo) {
  ReplyTap tap;
  tap.Listen("\x15\x1F\x1F");
  EXPECT_TRUE(tap.Complete());
  EXPECT_EQ(tap.Data(), "");
}

TEST(ReplyTap, PassesOverTheReplyToAClear) {
  ReplyTap tap;
  tap.Listen(
      "\x14\x1F\x15\x15\x1F"
      "a\x1F");
  EXPECT_TRUE(tap.Complete());
  EXPECT_EQ(tap.Data(), "a");
}

TEST(ReplyTap, LeavesWhatFollowsTheReply) {
  ReplyTap tap;
  EXPECT_EQ(tap.Listen("\x15\x1F"
                       "a\x1F\x14\x1F"),
            4U);
  EXPECT_EQ(tap.Listen("more"), 0U);
  EXPECT_EQ(tap.Data(), "a");
}

TEST(ReplyTap, HearsByteByByte) {
  ReplyTap tap;
  for (const char byte : std::string("\x15\x1F{DATA_IN}\x1F")) {
    EXPECT_FALSE(tap.Complete());
    tap.Listen({&byte, 1});
  }
  EXPECT_TRUE(tap.Complete());
  EXPECT_EQ(tap.Data(), "{DATA_IN}");
}

}  // namespace
}  // namespace vrx::simulator
