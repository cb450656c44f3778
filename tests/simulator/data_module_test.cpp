#include "simulator/data_module.h"

#include <chrono>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "simulator/device.h"

namespace vrx::simulator {
namespace {

constexpr std::string_view kCommands = "\x14\x15\x16\x17\x18\x19\x1C";

class Module : public ::testing::Test {
 protected:
  // The module under test; it logs to messages_.
  DataModule Make(const Faults& faults = {}) {
    return {faults, [this](const std::string& message) { messages_.push_back(message); }};
  }

  // Everything that it sends in response to the bytes, without pauses.
  static std::string Say(DataModule& module, std::string_view bytes) {
    std::string said;
    for (const char byte : bytes) {
      if (const auto transmission = module.Receive(byte)) {
        for (const Segment& segment : transmission->segments) {
          said += segment.bytes;
        }
      }
    }
    return said;
  }

  std::vector<std::string> messages_;
};

TEST_F(Module, AnswersEachCommandOfTheProtocol) {
  DataModule module = Make();
  EXPECT_EQ(Say(module, "\x14"), "\x14\x1F");
  EXPECT_EQ(Say(module, "\x16"), "\x16\x1F");
  EXPECT_EQ(Say(module, "\x17"), "\x17\x1F");
  EXPECT_EQ(Say(module, "\x18"), "\x18\x1F");
  EXPECT_EQ(Say(module, "\x19"), "\x19\x1F");
  module.Load("{BAT/FED}");
  EXPECT_EQ(Say(module, "\x15"), "\x15\x1F{BAT/FED}\x1F");
  EXPECT_EQ(Say(module, "\x1C"), "\x1C\x1F{BAT/FED}\x1F");
}

TEST_F(Module, AnswersADumpOfEmptyMemoryWithTwoTerminators) {
  DataModule module = Make();
  EXPECT_EQ(Say(module, "\x15"), "\x15\x1F\x1F");
  EXPECT_EQ(Say(module, "\x1C"), "\x1C\x1F\x1F");
}

TEST_F(Module, IsTakenToTheIndicatorBeforeADump) {
  DataModule module = Make();
  module.CarryBy([](const std::string& memory) -> std::optional<std::string> {
    if (memory == "{DATA_IN}") {
      return "{BAT/FED}";
    }
    return std::nullopt;
  });
  EXPECT_EQ(Say(module, "{DATA_IN}\x18"), "\x18\x1F");
  EXPECT_EQ(module.Memory(), "{DATA_IN}");
  EXPECT_EQ(Say(module, "\x15"), "\x15\x1F{BAT/FED}\x1F");
  EXPECT_EQ(Say(module, "\x15"), "\x15\x1F{BAT/FED}\x1F");
}

TEST_F(Module, KeepsADownloadWithoutAReplyAndDumpsItBack) {
  DataModule module = Make();
  EXPECT_EQ(Say(module, "{DATA_IN}\r\n[PEN]\r\n"), "");
  EXPECT_EQ(Say(module, "\x15"), "\x15\x1F{DATA_IN}\r\n[PEN]\r\n\x1F");
}

TEST_F(Module, KeepsItsMemoryOverDumpsAndBaudCommands) {
  DataModule module = Make();
  Say(module, "abc\x15\x16\x17\x18\x19\x1C");
  EXPECT_EQ(module.Memory(), "abc");
}

TEST_F(Module, ClearsItsMemory) {
  DataModule module = Make();
  EXPECT_EQ(Say(module, "abc\x14"), "\x14\x1F");
  EXPECT_EQ(Say(module, "\x15"), "\x15\x1F\x1F");
}

TEST_F(Module, HeedsACommandAtItsPlaceInABurst) {
  DataModule module = Make();
  EXPECT_EQ(Say(module,
                "abc\x15"
                "def"),
            "\x15\x1F"
            "abc\x1F");
  EXPECT_EQ(module.Memory(), "abcdef");
}

TEST_F(Module, KeepsEveryByteThatIsNoCommand) {
  DataModule module = Make();
  std::string data;
  for (int value = 0; value < 256; ++value) {
    const char byte = static_cast<char>(value);
    if (kCommands.find(byte) == std::string_view::npos) {
      data += byte;
    }
  }
  EXPECT_EQ(data.size(), 249U);
  EXPECT_EQ(Say(module, data), "");
  EXPECT_EQ(Say(module, "\x15"), "\x15\x1F" + data + "\x1F");
}

TEST_F(Module, GivesBackAnyDataThatHoldsNoCommand) {
  std::mt19937 random(2260);
  for (int round = 0; round < 200; ++round) {
    DataModule module = Make();
    std::string data;
    for (auto left = random() % 500; left > 0; --left) {
      const char byte = static_cast<char>(random());
      if (kCommands.find(byte) == std::string_view::npos) {
        data += byte;
      }
    }
    EXPECT_EQ(Say(module, data + "\x1C"), "\x1C\x1F" + data + "\x1F");
  }
}

TEST_F(Module, LoadsFilesInSequenceWithTheirCommandBytes) {
  DataModule module = Make();
  module.Load("{BAT/FED}\x14");
  module.Load("\x0CPage");
  EXPECT_EQ(module.Memory(), "{BAT/FED}\x14\x0CPage");
}

TEST_F(Module, DropsAndReportsBytesBeyondItsMemory) {
  DataModule module = Make();
  module.Load(std::string(DataModule::kMemorySize - 1, 'x'));
  Say(module, "yz");
  EXPECT_EQ(module.Memory().size(), 65536U);
  EXPECT_EQ(module.Memory().back(), 'y');
  ASSERT_EQ(messages_.size(), 1U);
  EXPECT_NE(messages_[0].find("65536"), std::string::npos);
  Say(module, "123");
  EXPECT_EQ(messages_.size(), 1U) << "reported once, not for each byte";
  Say(module, "\x14");
  ASSERT_EQ(messages_.size(), 2U);
  EXPECT_EQ(messages_[1], "bytes dropped: 4");
  Say(module, "new");
  EXPECT_EQ(module.Memory(), "new");
}

TEST_F(Module, ReportsAtEachCommandWhatItDropped) {
  for (const char command : kCommands) {
    DataModule module = Make();
    module.Load(std::string(DataModule::kMemorySize, 'x'));
    Say(module, std::string("yz") + command);
    ASSERT_EQ(messages_.size(), 2U);
    EXPECT_EQ(messages_[1], "bytes dropped: 2");
    messages_.clear();
  }
}

TEST_F(Module, ReportsAtOnceWhatAFileIsTooLongFor) {
  DataModule module = Make();
  module.Load(std::string(DataModule::kMemorySize + 3, 'x'));
  ASSERT_EQ(messages_.size(), 2U);
  EXPECT_EQ(messages_[1], "bytes dropped: 3");
}

TEST_F(Module, ReportsNothingWhenItsMemoryIsJustFull) {
  DataModule module = Make();
  module.Load(std::string(DataModule::kMemorySize, 'x'));
  Say(module, "\x15");
  EXPECT_TRUE(messages_.empty());
}

TEST_F(Module, OnlyADumpGivesWayToTheNextCommand) {
  DataModule module = Make();
  EXPECT_FALSE(module.Receive(kDc4)->gives_way);
  EXPECT_FALSE(module.Receive(kEm)->gives_way);
  EXPECT_TRUE(module.Receive(kNak)->gives_way);
  EXPECT_TRUE(module.Receive(kFs)->gives_way);
}

TEST_F(Module, SilentObeysButAnswersNothing) {
  DataModule module = Make({.silent = true});
  const std::optional<Transmission> answer = module.Receive(kNak);
  ASSERT_TRUE(answer);
  EXPECT_TRUE(answer->segments.empty());
  EXPECT_EQ(Say(module, "abc\x14\x16xyz"), "");
  EXPECT_EQ(module.Memory(), "xyz");
}

TEST_F(Module, GarbageReplacesTheFirstByteByOneWithoutMeaning) {
  DataModule module = Make({.garbage = true});
  for (const char command : kCommands) {
    const std::string reply = Say(module, {&command, 1});
    EXPECT_EQ(reply, command == kNak || command == kFs ? "?\x1F\x1F" : "?\x1F");
  }
}

TEST_F(Module, CutAfterSendsSoManyBytesOfEachReply) {
  DataModule module = Make({.cut_after = 4});
  module.Load("abcdef");
  EXPECT_EQ(Say(module, "\x15"),
            "\x15\x1F"
            "ab");
  EXPECT_EQ(Say(module, "\x1C"),
            "\x1C\x1F"
            "ab");
  EXPECT_EQ(Say(module, "\x16"), "\x16\x1F") << "shorter than the cut";
  DataModule mute = Make({.cut_after = 0});
  EXPECT_EQ(Say(mute, "\x15\x16"), "");
}

TEST_F(Module, ExtraUsIsOnlyInsideTheDataOfADump) {
  DataModule module = Make({.extra_us = true});
  module.Load("abcd");
  EXPECT_EQ(Say(module, "\x15"),
            "\x15\x1F"
            "ab\x1F"
            "cd\x1F");
  EXPECT_EQ(Say(module, "\x16"), "\x16\x1F");
  EXPECT_EQ(Say(module, "\x14\x15"), "\x14\x1F\x15\x1F\x1F\x1F");
}

TEST_F(Module, StallPausesHalfwayThroughEachReplyAndGivesWay) {
  DataModule module = Make({.stall = std::chrono::milliseconds(700)});
  module.Load("abcde");
  struct Case {
    char command;
    std::string_view first;
    std::string_view second;
  };
  for (const Case& each : {Case{kNak,
                                "\x15\x1F"
                                "ab",
                                "cde\x1F"},
                           {kSyn, "\x16", "\x1F"}}) {
    const auto reply = module.Receive(each.command);
    ASSERT_EQ(reply->segments.size(), 2U);
    EXPECT_EQ(reply->segments[0].bytes, each.first);
    EXPECT_EQ(reply->segments[0].pause_before, Duration{0});
    EXPECT_EQ(reply->segments[1].bytes, each.second);
    EXPECT_EQ(reply->segments[1].pause_before, std::chrono::milliseconds(700));
    EXPECT_TRUE(reply->gives_way);
  }
}

TEST_F(Module, StraysFollowADumpOnly) {
  DataModule module = Make({.strays = 3});
  module.Load("ab");
  EXPECT_EQ(Say(module, "\x15"),
            "\x15\x1F"
            "ab\x1F~~~");
  EXPECT_EQ(Say(module, "\x16"), "\x16\x1F");
}

TEST_F(Module, FaultsCombine) {
  DataModule module = Make({.garbage = true, .extra_us = true, .cut_after = 5});
  module.Load("abcd");
  EXPECT_EQ(Say(module, "\x15"),
            "?\x1F"
            "ab\x1F");
}

}  // namespace
}  // namespace vrx::simulator
