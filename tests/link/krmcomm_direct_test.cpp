#include <random>

#include <gmock/gmock.h>

#include "link/link_fixture.h"

namespace vrx::testing {
namespace {

// One reception on an open port. Times start with the reception.
class DirectReception : public LinkFixture {
 protected:
  void SetUp() override { ASSERT_TRUE(krm.KRM_DirectOpen()); }

  void ArriveAfter(Ms delay, const std::string& bytes) {
    pump.After(delay, [this, bytes] { serial.Arrives(bytes); });
  }
  Ms Receive() {
    return TimeOf([this] { EXPECT_TRUE(krm.KRM_DirectRxD()); });
  }
};

TEST_F(DirectReception, OpensWithoutFlowControl) {
  EXPECT_EQ(serial.handshaking, Handshaking::kNone);
  EXPECT_EQ(serial.settings, "19200,n,8,1");
  EXPECT_EQ(serial.in_buffer_size, 2048);
  EXPECT_EQ(serial.out_buffer_size, 1024);
  EXPECT_TRUE(krm.GB_KRM_CommPortOpen());
}

TEST_F(DirectReception, OpenPortIsLeftAsItIs) {
  EXPECT_TRUE(krm.KRM_DirectOpen());
  EXPECT_EQ(krm.GS_KRM_ErrMsg(), "Serial port already open");
  EXPECT_EQ(serial.TimesOf("open").size(), 1U);
}

TEST_F(DirectReception, RefusalsHaveTheWordsOfTheModulesOpening) {
  krm.KRM_ImmediateClose();
  serial.failing_property = "Handshaking";
  EXPECT_FALSE(krm.KRM_DirectOpen());
  EXPECT_EQ(krm.GS_KRM_ErrMsg(), "Open error");
  serial.failing_property = "PortOpen";
  EXPECT_FALSE(krm.KRM_DirectOpen());
  EXPECT_EQ(krm.GS_KRM_ErrMsg(), "Serial port not available");
  EXPECT_FALSE(krm.GB_KRM_CommPortOpen());
}

TEST_F(DirectReception, WaitsForTheFirstByteWithoutLimit) {
  constexpr Ms kThreeDays = std::chrono::hours{72};
  ArriveAfter(kThreeDays, "a");
  EXPECT_EQ(Receive(), kThreeDays + Ms{250});
  EXPECT_EQ(krm.GS_KRM_RxDBuffer(), "a");
  EXPECT_EQ(krm.GL_KRM_RxDCount(), 1);
  EXPECT_EQ(krm.GS_KRM_ErrMsg(), "");
}

TEST_F(DirectReception, BurstGoesOnUntilASilenceOf250Ms) {
  ArriveAfter(Ms{100}, "abc");
  ArriveAfter(Ms{349}, "def");
  ArriveAfter(Ms{599}, "ghi");
  ArriveAfter(Ms{850}, "next");
  EXPECT_EQ(Receive(), Ms{849});
  EXPECT_EQ(krm.GS_KRM_RxDBuffer(), "abcdefghi");
  EXPECT_EQ(krm.GL_KRM_RxDCount(), 9);
  EXPECT_EQ(Receive(), Ms{251});
  EXPECT_EQ(krm.GS_KRM_RxDBuffer(), "next");
}

TEST_F(DirectReception, EveryByteValueIsReceived) {
  std::string all;
  for (int value = 0; value < 256; ++value) {
    all += static_cast<char>(value);
  }
  ArriveAfter(Ms{5}, all);
  Receive();
  EXPECT_EQ(krm.GS_KRM_RxDBuffer(), all);
}

TEST_F(DirectReception, CountsWhileItCollects) {
  ArriveAfter(Ms{100}, "1234");
  ArriveAfter(Ms{300}, "5678");
  int halfway = 0;
  pump.After(Ms{200}, [&] { halfway = krm.GL_KRM_RxDCount(); });
  Receive();
  EXPECT_EQ(halfway, 4);
  EXPECT_EQ(krm.GL_KRM_RxDCount(), 8);
}

TEST_F(DirectReception, IntervalOf250MsStaysForTheModulesCommands) {
  ArriveAfter(Ms{100}, "a");
  Receive();
  EXPECT_EQ(TimeOf([&] { EXPECT_FALSE(krm.KRM_Clear()); }), Ms{1000 + 250 + 500});
}

TEST_F(DirectReception, IntervalStaysAsItWasWhenNothingEverArrived) {
  pump.After(Ms{100}, [&] { krm.GB_KRM_AbortDirectConnect(true); });
  Receive();
  EXPECT_EQ(TimeOf([&] { EXPECT_FALSE(krm.KRM_Clear()); }), Ms{1000 + 1000 + 500});
}

TEST_F(DirectReception, AbortEndsTheWaitForAFirstByte) {
  pump.After(Ms{700}, [&] { krm.GB_KRM_AbortDirectConnect(true); });
  EXPECT_EQ(Receive(), Ms{700});
  EXPECT_EQ(krm.GS_KRM_RxDBuffer(), "");
  EXPECT_EQ(krm.GL_KRM_RxDCount(), 0);
  EXPECT_EQ(krm.GS_KRM_ErrMsg(), "Receive aborted");
}

TEST_F(DirectReception, AbortDropsABurstThatHasBegun) {
  ArriveAfter(Ms{600}, "half");
  pump.After(Ms{700}, [&] { krm.GB_KRM_AbortDirectConnect(true); });
  EXPECT_EQ(Receive(), Ms{700});
  EXPECT_EQ(krm.GS_KRM_RxDBuffer(), "");
  EXPECT_EQ(krm.GL_KRM_RxDCount(), 0);
  EXPECT_EQ(krm.GS_KRM_ErrMsg(), "Receive aborted");
}

TEST_F(DirectReception, AbortOfAnEarlierReceptionIsForgotten) {
  krm.GB_KRM_AbortDirectConnect(true);
  ArriveAfter(Ms{10}, "a");
  Receive();
  EXPECT_EQ(krm.GS_KRM_RxDBuffer(), "a");
}

TEST_F(DirectReception, PortClosedUnderItWaitsForTheAbort) {
  pump.After(Ms{100}, [&] {
    krm.KRM_Close();
    pump.After(Ms{50}, [&] { krm.GB_KRM_AbortDirectConnect(true); });
  });
  EXPECT_EQ(Receive(), Ms{100 + 500 + 50});
  EXPECT_EQ(krm.GS_KRM_RxDBuffer(), "");
}

TEST_F(DirectReception, LostLineEndsItAtOnceAndLeavesWhatArrived) {
  ArriveAfter(Ms{100}, "abc");
  pump.After(Ms{200}, [&] { serial.LoseLine(); });
  EXPECT_EQ(TimeOf([&] { EXPECT_FALSE(krm.KRM_DirectRxD()); }), Ms{200});
  EXPECT_EQ(krm.GS_KRM_RxDBuffer(), "abc");
  EXPECT_EQ(krm.GS_KRM_ErrMsg(), "Serial line lost");
  EXPECT_EQ(krm.KRM_FailureCause(), "fake: the line is gone");
  EXPECT_FALSE(serial.PortOpen());
  EXPECT_EQ(TimeOf([&] { EXPECT_FALSE(krm.KRM_DirectRxD()); }), Ms{0});
}

TEST_F(DirectReception, ClosingProgramEndsItAtOnceAndLeavesWhatArrived) {
  ArriveAfter(Ms{100}, "abc");
  pump.After(Ms{200}, [&] { pump.closing = true; });
  EXPECT_EQ(TimeOf([&] { EXPECT_FALSE(krm.KRM_DirectRxD()); }), Ms{200});
  EXPECT_EQ(krm.GS_KRM_RxDBuffer(), "abc");
  EXPECT_EQ(krm.GS_KRM_ErrMsg(), "The program is closing");
}

TEST_F(DirectReception, RandomStreamsAreCutAtTheirSilences) {
  std::mt19937 random(20260106);
  for (int round = 0; round < 50; ++round) {
    std::vector<std::string> bursts;
    Ms at{0};
    for (int burst = 0; burst < 5; ++burst) {
      bursts.emplace_back();
      at += Ms{251};
      for (unsigned chunks = 1 + random() % 4; chunks > 0; --chunks) {
        const std::string chunk(1 + random() % 600, static_cast<char>(random()));
        bursts.back() += chunk;
        at += Ms{random() % 250};
        ArriveAfter(at, chunk);
      }
    }
    for (const std::string& burst : bursts) {
      Receive();
      ASSERT_EQ(krm.GS_KRM_RxDBuffer(), burst);
    }
  }
}

}  // namespace
}  // namespace vrx::testing
