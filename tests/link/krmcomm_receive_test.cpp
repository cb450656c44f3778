#include <random>

#include <gmock/gmock.h>

#include "link/link_fixture.h"

namespace vrx::testing {
namespace {

// Time of a failed command besides its reception: 1000 ms before it, 500 ms after it.
constexpr Milliseconds kAround{1500};

class KrmcommReceive : public LinkFixture {
 protected:
  Ms TimeOfDump() {
    return TimeOf([this] { krm.KRM_Dump(); });
  }
};

TEST_F(KrmcommReceive, FirstCommandWithoutAModuleFailsAfterOneSecond) {
  EXPECT_EQ(TimeOf([&] { EXPECT_FALSE(krm.KRM_Clear()); }), Ms{1000} + kAround);
  EXPECT_EQ(krm.GS_KRM_ErrMsg(), "Receiver timeout");
  EXPECT_EQ(krm.GS_KRM_RxDBuffer(), "");
  EXPECT_EQ(krm.KRM_FailureCause(), "no reply");
}

TEST_F(KrmcommReceive, SecondFailsAfterOneSecondWhileNothingHasEverArrived) {
  krm.KRM_Clear();
  EXPECT_EQ(TimeOf([&] { krm.KRM_Clear(); }), Ms{1000} + kAround);
}

TEST_F(KrmcommReceive, OnceAByteHasArrivedACommandFailsAfterFiveSeconds) {
  serial.WillAnswer("\x14");
  EXPECT_EQ(TimeOf([&] { krm.KRM_Clear(); }), Ms{10 + 5000} + kAround);
  EXPECT_EQ(TimeOf([&] { krm.KRM_Clear(); }), Ms{5000} + kAround);
}

TEST_F(KrmcommReceive, LimitIsNotRestoredByAClose) {
  serial.WillAnswer(kEchoClear);
  krm.KRM_Clear();
  krm.KRM_Close();
  EXPECT_EQ(TimeOf([&] { krm.KRM_Clear(); }), Ms{5000} + kAround);
}

TEST_F(KrmcommReceive, EachArrivalGrantsFiveSecondsMore) {
  FakeSerialControl::Answer slowly;
  for (int i = 0; i < 10; ++i) {
    slowly.push_back({Ms{900 + 4999 * i}, i == 0 ? "\x15\x1F" : "data"});
  }
  slowly.push_back({Ms{900 + 4999 * 10}, "\x1F"});
  serial.WillAnswer(slowly);
  EXPECT_TRUE(krm.KRM_Dump());
  EXPECT_EQ(krm.GS_KRM_RxDBuffer().size(), 2U + 36 + 1);
}

TEST_F(KrmcommReceive, PauseOfMoreThanFiveSecondsLosesTheReply) {
  serial.WillAnswer(
      FakeSerialControl::Answer{{Ms{10}, "\x15\x1F half"}, {Ms{10 + 5001}, " other half\x1F"}});
  EXPECT_EQ(TimeOfDump(), Ms{10 + 5000} + kAround);
  EXPECT_EQ(krm.GS_KRM_ErrMsg(), "Command response failed");
  EXPECT_EQ(krm.GS_KRM_RxDBuffer(), "");
  EXPECT_EQ(krm.KRM_FailureCause(), "the reply broke off after 7 bytes");
}

TEST_F(KrmcommReceive, FirstByteMayTakeUpToTheLimit) {
  serial.WillAnswer(FakeSerialControl::Answer{{Ms{1000}, kEchoClear}});
  EXPECT_TRUE(krm.KRM_Clear());
}

TEST_F(KrmcommReceive, FirstByteAfterTheLimitIsTooLate) {
  serial.WillAnswer(FakeSerialControl::Answer{{Ms{1001}, kEchoClear}});
  EXPECT_FALSE(krm.KRM_Clear());
  EXPECT_EQ(krm.GS_KRM_ErrMsg(), "Receiver timeout");
}

TEST_F(KrmcommReceive, LateReplyIsDiscardedByTheNextCommand) {
  serial.WillAnswer(FakeSerialControl::Answer{{Ms{1001}, kEchoClear}});
  serial.WillAnswer(kEcho19200);
  EXPECT_FALSE(krm.KRM_Clear());
  EXPECT_TRUE(krm.KRM_SetBaud(19200));
}

TEST_F(KrmcommReceive, BytesAfterTheLastTerminatorStayIfTheyCameInTheSameChunk) {
  serial.WillAnswer(
      "\x15\x1F"
      "data\x1F"
      "more");
  EXPECT_TRUE(krm.KRM_Dump());
  EXPECT_EQ(krm.GS_KRM_RxDBuffer(),
            "\x15\x1F"
            "data\x1F"
            "more");
}

TEST_F(KrmcommReceive, BytesThatFollowADumpWithin250MillisecondsAreAddedToIt) {
  serial.WillAnswer(FakeSerialControl::Answer{{Ms{10}, "\x15\x1F\x1F"}, {Ms{259}, "more"}});
  EXPECT_TRUE(krm.KRM_Dump());
  EXPECT_EQ(krm.GS_KRM_RxDBuffer(), "\x15\x1F\x1Fmore");
}

TEST_F(KrmcommReceive, BytesThatComeLaterStayInThePortAndAreDiscarded) {
  serial.WillAnswer(FakeSerialControl::Answer{{Ms{10},
                                               "\x15\x1F"
                                               "data\x1F"},
                                              {Ms{300}, "more"}});
  serial.WillAnswer(kEchoClear);
  EXPECT_TRUE(krm.KRM_Dump());
  EXPECT_EQ(krm.GS_KRM_RxDBuffer(),
            "\x15\x1F"
            "data\x1F");
  EXPECT_EQ(serial.InBufferCount(), 4);
  EXPECT_TRUE(krm.KRM_Clear());
}

TEST_F(KrmcommReceive, ReplyMayBeSplitAtEveryPosition) {
  const std::string reply = "\x15\x1F{BAT/FED},L\r\n\x1F";
  for (std::size_t cut = 0; cut <= reply.size(); ++cut) {
    serial.WillAnswer(
        FakeSerialControl::Answer{{Ms{10}, reply.substr(0, cut)}, {Ms{500}, reply.substr(cut)}});
    EXPECT_TRUE(krm.KRM_Dump()) << cut;
    EXPECT_EQ(krm.GS_KRM_RxDBuffer(), reply) << cut;
    EXPECT_EQ(krm.GS_KRM_ErrMsg(), "") << cut;
  }
}

TEST_F(KrmcommReceive, RandomRepliesInRandomChunksArriveWhole) {
  std::mt19937 random(20260105);
  for (int round = 0; round < 50; ++round) {
    std::string reply = "\x15\x1F";
    const std::size_t length = random() % 5000;
    while (reply.size() < length) {
      const auto byte = static_cast<char>(random());
      reply += byte == '\x1F' ? ' ' : byte;
    }
    reply += '\x1F';
    FakeSerialControl::Answer answer;
    Ms at{0};
    for (std::size_t start = 0; start < reply.size();) {
      const std::size_t size = 1 + random() % 700;
      at += Ms{random() % 900};
      answer.push_back({at, reply.substr(start, size)});
      start += size;
    }
    serial.WillAnswer(answer);
    ASSERT_TRUE(krm.KRM_Dump());
    ASSERT_EQ(krm.GS_KRM_RxDBuffer(), reply);
    ASSERT_EQ(krm.GL_KRM_RxDCount(), static_cast<int>(reply.size()));
  }
}

TEST_F(KrmcommReceive, CountsWhileItCollects) {
  serial.WillAnswer(FakeSerialControl::Answer{{Ms{10},
                                               "\x15\x1F"
                                               "1234"},
                                              {Ms{2000}, "5678\x1F"}});
  int halfway = 0;
  pump.After(Ms{2000}, [&] { halfway = krm.GL_KRM_RxDCount(); });
  EXPECT_TRUE(krm.KRM_Dump());
  EXPECT_EQ(halfway, 6);
  EXPECT_EQ(krm.GL_KRM_RxDCount(), 11);
}

TEST_F(KrmcommReceive, SettingTheWaitingFlagFalseEndsIt) {
  pump.After(Ms{1300}, [&] { krm.GB_KRM_RxDWaiting(false); });
  EXPECT_EQ(TimeOfDump(), Ms{1300 + 500});
  EXPECT_EQ(krm.GS_KRM_ErrMsg(), "Command response failed");
}

}  // namespace
}  // namespace vrx::testing
