#include <functional>

#include <gmock/gmock.h>

#include "link/link_fixture.h"

namespace vrx::testing {
namespace {

using ::testing::HasSubstr;

class KrmcommInterruption : public LinkFixture {
 protected:
  void ExpectLost(std::string_view words) {
    EXPECT_EQ(krm.GS_KRM_ErrMsg(), words);
    EXPECT_FALSE(serial.PortOpen());
    EXPECT_FALSE(serial.dtr);
    EXPECT_FALSE(krm.GB_KRM_CommPortOpen());
  }

  // Times within a command: while the module wakes, before the reply, in the middle of the reply.
  // The release of DTR is after the result.
  static constexpr std::array kMoments{Milliseconds{0}, Milliseconds{500}, Milliseconds{1100},
                                       Milliseconds{2500}};
  static FakeSerialControl::Answer HalfAReply() { return {{Ms{200}, "\x15\x1F half"}}; }
};

TEST_F(KrmcommInterruption, LostLineEndsADumpAtOnce) {
  for (const Ms moment : kMoments) {
    serial.WillAnswer(HalfAReply());
    pump.After(moment, [&] { serial.LoseLine(); });
    EXPECT_EQ(TimeOf([&] { EXPECT_FALSE(krm.KRM_Dump()); }), moment);
    ExpectLost("Serial line lost");
    EXPECT_EQ(krm.KRM_FailureCause(), "fake: the line is gone");
    EXPECT_EQ(krm.GS_KRM_RxDBuffer(), "");
    pump.Pump(Ms{10'000});
  }
}

TEST_F(KrmcommInterruption, ClosingProgramEndsADumpAtOnce) {
  for (const Ms moment : kMoments) {
    pump.closing = false;
    serial.WillAnswer(HalfAReply());
    pump.After(moment, [&] { pump.closing = true; });
    EXPECT_EQ(TimeOf([&] { EXPECT_FALSE(krm.KRM_Dump()); }), moment);
    ExpectLost("The program is closing");
    pump.Pump(Ms{10'000});
  }
}

TEST_F(KrmcommInterruption, ACancelEndsADumpAtOnceAndKeepsWhatHasArrived) {
  for (const Ms moment : kMoments) {
    serial.WillAnswer(HalfAReply());
    const LineGuard::Claim cancelable = krm.Guard().AllowCancel();
    pump.After(moment, [&] { krm.Guard().Cancel(); });
    EXPECT_EQ(TimeOf([&] { EXPECT_FALSE(krm.KRM_Dump()); }), moment);
    ExpectLost("Canceled");
    EXPECT_EQ(krm.KRM_Error(), LinkError::kCanceled);
    EXPECT_EQ(krm.KRM_BrokenOff(), moment == kMoments.back() ? "\x15\x1F half" : "");
    pump.Pump(Ms{10'000});
  }
}

TEST_F(KrmcommInterruption, ACancelOutsideACancelableCommandDoesNothing) {
  krm.Guard().Cancel();
  serial.WillAnswer(kEchoClear);
  EXPECT_TRUE(krm.KRM_Clear());
  const LineGuard::Claim cancelable = krm.Guard().AllowCancel();
  serial.WillAnswer(kEchoClear);
  EXPECT_TRUE(krm.KRM_Clear());
}

TEST_F(KrmcommInterruption, ACanceledTransmissionSendsNoFurtherBlock) {
  serial.per_byte = Ms{1};
  const LineGuard::Claim cancelable = krm.Guard().AllowCancel();
  pump.After(Ms{1500}, [&] { krm.Guard().Cancel(); });
  EXPECT_EQ(TimeOf([&] { EXPECT_FALSE(krm.KRM_Download(std::string(5000, 'x'))); }), Ms{1500});
  EXPECT_EQ(serial.sent.size(), 1024U);
  EXPECT_EQ(krm.KRM_Error(), LinkError::kCanceled);
  ExpectLost("Canceled");
}

// The module sends the rest of its reply for three seconds, although DTR is low.
TEST_F(KrmcommInterruption, TheNextCommandWaitsForTheEndOfACanceledReply) {
  FakeSerialControl::Answer reply{{Ms{10}, "\x15\x1F"}};
  for (int part = 1; part <= 30; ++part) {
    reply.push_back({Ms{part * 100}, std::string(90, 'x')});
  }
  serial.WillAnswer(reply);
  LineGuard::Claim cancelable = krm.Guard().AllowCancel();
  pump.After(Ms{1250}, [&] { krm.Guard().Cancel(); });
  EXPECT_FALSE(krm.KRM_Dump());
  EXPECT_EQ(krm.KRM_BrokenOff().size(), 2U + 180U);
  cancelable.reset();
  serial.WillAnswer(kEchoClear);
  // The rest ends 4000 ms after the dump began: 1250 ms have passed, 250 ms of silence follow, and
  // the echo and the release of DTR take 510 ms.
  EXPECT_EQ(TimeOf([&] { EXPECT_TRUE(krm.KRM_Clear()); }), Ms{4000 - 1250 + 250 + 10 + 500});
  serial.WillAnswer(kEchoClear);
  EXPECT_EQ(TimeOf([&] { EXPECT_TRUE(krm.KRM_Clear()); }), Ms{1000 + 10 + 500});
}

TEST_F(KrmcommInterruption, ADelayEndsWithAnInnerOneThatIsCutShort) {
  pump.After(Ms{10}, [&] {
    pump.After(Ms{10}, [&] { pump.closing = true; });
    krm.KRM_Close();
    pump.closing = false;
    EXPECT_TRUE(krm.KRM_DirectOpen());
  });
  EXPECT_EQ(TimeOf([&] { krm.KRM_Close(); }), Ms{20});
}

TEST_F(KrmcommInterruption, LostLineEndsATransmissionAtOnce) {
  serial.per_byte = Ms{1};
  for (const Ms moment : {Ms{500}, Ms{1200}, Ms{2300}, Ms{2560}}) {
    pump.After(moment, [&] { serial.LoseLine(); });
    const Ms took = TimeOf([&] { EXPECT_FALSE(krm.KRM_Download(std::string(1500, 'x'))); });
    EXPECT_GE(took, moment);
    EXPECT_LE(took, moment + Ms{5});
    ExpectLost("Serial line lost");
  }
}

TEST_F(KrmcommInterruption, ClosingProgramEndsATransmissionAtOnce) {
  serial.per_byte = Ms{1};
  pump.After(Ms{1200}, [&] { pump.closing = true; });
  EXPECT_LE(TimeOf([&] { EXPECT_FALSE(krm.KRM_Download(std::string(1500, 'x'))); }), Ms{1205});
  ExpectLost("The program is closing");
}

TEST_F(KrmcommInterruption, LossDuringTheReleaseLeavesTheResult) {
  serial.WillAnswer(kEchoClear);
  pump.After(Ms{1200}, [&] { serial.LoseLine(); });
  EXPECT_EQ(TimeOf([&] { EXPECT_TRUE(krm.KRM_Clear()); }), Ms{1200});
  EXPECT_FALSE(krm.GB_KRM_CommPortOpen());
}

TEST_F(KrmcommInterruption, ClosingEndsTheWaitOfAClose) {
  krm.KRM_Download("");
  pump.closing = true;
  EXPECT_EQ(TimeOf([&] { krm.KRM_Close(); }), Ms{0});
  EXPECT_FALSE(serial.PortOpen());
}

TEST_F(KrmcommInterruption, NextCommandReopensThePort) {
  pump.After(Ms{1100}, [&] { serial.LoseLine(); });
  EXPECT_FALSE(krm.KRM_Dump());
  serial.WillAnswer(kEchoClear);
  EXPECT_TRUE(krm.KRM_Clear());
  EXPECT_EQ(serial.TimesOf("open").size(), 2U);
}

TEST_F(KrmcommInterruption, LineLostBetweenCommandsIsReopened) {
  serial.WillAnswer(kEchoClear);
  EXPECT_TRUE(krm.KRM_Clear());
  serial.LoseLine();
  serial.WillAnswer(kEchoClear);
  EXPECT_TRUE(krm.KRM_Clear());
  EXPECT_EQ(serial.TimesOf("open").size(), 2U);
}

TEST_F(KrmcommInterruption, LineThatStaysAwayIsAPortNotAvailable) {
  serial.WillAnswer(kEchoClear);
  EXPECT_TRUE(krm.KRM_Clear());
  serial.LoseLine();
  serial.failing_property = "PortOpen";
  EXPECT_FALSE(krm.KRM_Clear());
  EXPECT_EQ(krm.GS_KRM_ErrMsg(), "Serial port not available");
}

TEST_F(KrmcommInterruption, LossAtEveryByteOfAReply) {
  const std::string reply = "\x15\x1F{BAT/FED},L\r\n\x1F";
  for (std::size_t byte = 0; byte <= reply.size(); ++byte) {
    ManualPump own_pump;
    FakeSerialControl own_serial(own_pump);
    KRMCOMM own_krm(own_serial, own_pump, op, settings);
    FakeSerialControl::Answer bytewise;
    for (std::size_t i = 0; i < reply.size(); ++i) {
      bytewise.push_back({Ms{10 * (i + 1)}, reply.substr(i, 1)});
    }
    own_serial.WillAnswer(bytewise);
    own_serial.lose_after_input = byte;
    const bool whole = byte == reply.size();
    EXPECT_EQ(own_krm.KRM_Dump(), whole) << byte;
    EXPECT_EQ(own_krm.GS_KRM_RxDBuffer(), whole ? reply : "") << byte;
    EXPECT_FALSE(own_krm.GB_KRM_CommPortOpen()) << byte;
    if (!whole) {
      EXPECT_EQ(own_krm.GS_KRM_ErrMsg(), "Serial line lost") << byte;
      EXPECT_EQ(own_pump.Now(), Ms{1000 + 10 * std::max<std::size_t>(byte, 1)}) << byte;
    }
  }
}

TEST_F(KrmcommInterruption, LossAfterEveryBlockOfATransmission) {
  for (std::size_t block = 1; block <= 3; ++block) {
    ManualPump own_pump;
    FakeSerialControl own_serial(own_pump);
    KRMCOMM own_krm(own_serial, own_pump, op, settings);
    own_serial.lose_after_output = block * 1024;
    EXPECT_FALSE(own_krm.KRM_Download(std::string(3072, 'x')));
    EXPECT_EQ(own_krm.GS_KRM_ErrMsg(), "Serial line lost");
    EXPECT_EQ(own_serial.sent.size(), block * 1024);
  }
}

// A handler inside a wait may use the link: the outer command then fails, and nothing hangs.
TEST_F(KrmcommInterruption, CloseInsideAReceptionEndsIt) {
  pump.After(Ms{1100}, [&] { krm.KRM_Close(); });
  EXPECT_FALSE(krm.KRM_Dump());
  EXPECT_EQ(krm.GS_KRM_ErrMsg(), "Serial line lost");
  EXPECT_THAT(krm.KRM_FailureCause(), HasSubstr("closed"));
  EXPECT_LE(pump.Now(), Ms{2100});
}

TEST_F(KrmcommInterruption, CloseInsideATransmissionFailsIt) {
  serial.per_byte = Ms{1};
  pump.After(Ms{1500}, [&] { krm.KRM_Close(); });
  EXPECT_FALSE(krm.KRM_Download(std::string(5000, 'x')));
  EXPECT_THAT(krm.KRM_FailureCause(), HasSubstr("closed"));
}

TEST_F(KrmcommInterruption, CommandInsideAnothersReceptionTakesTheLine) {
  serial.WillStaySilent();
  serial.WillAnswer(kEchoClear);
  bool inner = false;
  pump.After(Ms{1100}, [&] { inner = krm.KRM_Clear(); });
  EXPECT_FALSE(krm.KRM_Dump());
  EXPECT_TRUE(inner);
  EXPECT_LE(pump.Now(), Ms{3500});
}

TEST_F(KrmcommInterruption, CommandInsideAnothersWakeDoesNotHangIt) {
  serial.WillAnswer(kEchoClear);
  serial.WillAnswer("\x15\x1F{REPORT}\x1F");
  bool inner = false;
  pump.After(Ms{500}, [&] { inner = krm.KRM_Clear(); });
  EXPECT_TRUE(krm.KRM_Dump());
  EXPECT_TRUE(inner);
}

TEST_F(KrmcommInterruption, CommandInsideARefusedOneMeetsTheLostLineOnce) {
  bool inner = true;
  pump.After(Ms{500}, [&] {
    serial.LoseLine();
    serial.failing_property = "PortOpen";
    inner = krm.KRM_Clear();
  });
  EXPECT_FALSE(krm.KRM_Dump());
  EXPECT_FALSE(inner);
  EXPECT_FALSE(krm.GB_KRM_CommPortOpen());
}

}  // namespace
}  // namespace vrx::testing
