#include <algorithm>

#include <gmock/gmock.h>

#include "link/krmcomm.h"
#include "link/link_fixture.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class KrmcommPort : public LinkFixture {};

TEST_F(KrmcommPort, OpensWithTheSpecifiedProperties) {
  serial.WillAnswer(kEchoClear);
  EXPECT_TRUE(krm.KRM_Clear());
  EXPECT_EQ(serial.in_buffer_size, 2048);
  EXPECT_EQ(serial.out_buffer_size, 1024);
  EXPECT_EQ(serial.handshaking, Handshaking::kXOnXOff);
  EXPECT_EQ(serial.comm_port, 2);
  EXPECT_EQ(serial.settings, "19200,n,8,1");
  EXPECT_TRUE(krm.GB_KRM_CommPortOpen());
}

TEST_F(KrmcommPort, SpeedOfTheLineIsNotTheSettingOfTheModule) {
  settings.SetKRMBaudRate("1200");
  serial.WillAnswer("\x16\x1F");
  EXPECT_TRUE(krm.KRM_OnlineCheck());
  EXPECT_EQ(serial.settings, "19200,n,8,1");
}

TEST_F(KrmcommPort, ExchangeWakesTheModuleForASecondAndReleasesItForHalfASecond) {
  serial.WillAnswer(kEchoClear);
  krm.KRM_Clear();
  using Event = FakeSerialControl::Event;
  EXPECT_THAT(serial.events, ElementsAre(Event{Ms{0}, "open"}, Event{Ms{0}, "DTR on"},
                                         Event{Ms{1000}, "out"}, Event{Ms{1010}, "DTR off"}));
  EXPECT_EQ(pump.Now(), Ms{1510});
}

TEST_F(KrmcommPort, StaysOpenBetweenCommands) {
  serial.WillAnswer(kEchoClear);
  serial.WillAnswer(kEchoClear);
  EXPECT_TRUE(krm.KRM_Clear());
  settings.SetSerialPort("5");
  EXPECT_TRUE(krm.KRM_Clear());
  EXPECT_EQ(serial.TimesOf("open").size(), 1U);
  EXPECT_EQ(serial.comm_port, 2);
}

TEST_F(KrmcommPort, ChangedNumberTakesEffectAfterAClose) {
  serial.WillAnswer(kEchoClear);
  serial.WillAnswer(kEchoClear);
  krm.KRM_Clear();
  settings.SetSerialPort("5");
  krm.KRM_Close();
  EXPECT_TRUE(krm.KRM_Clear());
  EXPECT_EQ(serial.comm_port, 5);
}

TEST_F(KrmcommPort, OpenPortLeavesItsWordsInTheErrorText) {
  krm.KRM_Download("");
  krm.KRM_Download("");
  EXPECT_EQ(krm.GS_KRM_ErrMsg(), "Serial port already open");
}

TEST_F(KrmcommPort, CloseShutsFirstAndWaitsHalfASecond) {
  krm.KRM_Download("");
  serial.events.clear();
  EXPECT_EQ(TimeOf([&] { krm.KRM_Close(); }), Ms{500});
  EXPECT_FALSE(krm.GB_KRM_CommPortOpen());
  ASSERT_FALSE(serial.events.empty());
  EXPECT_EQ(serial.events.front().what, "close");
}

// For example by a click during the wait of KRM_Close.
TEST_F(KrmcommPort, CommandDuringACloseReopensThePort) {
  krm.KRM_Download("");
  serial.WillAnswer(kEchoClear);
  bool cleared = false;
  pump.After(Ms{100}, [&] { cleared = krm.KRM_Clear(); });
  krm.KRM_Close();
  EXPECT_TRUE(cleared);
  serial.WillAnswer(kEchoClear);
  EXPECT_TRUE(krm.KRM_Clear());
}

TEST_F(KrmcommPort, ImmediateCloseDoesNotWait) {
  krm.KRM_Download("");
  EXPECT_EQ(TimeOf([&] { krm.KRM_ImmediateClose(); }), Ms{0});
  EXPECT_FALSE(serial.PortOpen());
  EXPECT_FALSE(serial.dtr);
  EXPECT_FALSE(krm.GB_KRM_CommPortOpen());
}

class KrmcommRefusedProperty : public LinkFixture,
                               public ::testing::WithParamInterface<const char*> {};

TEST_P(KrmcommRefusedProperty, IsAnOpenError) {
  serial.failing_property = GetParam();
  EXPECT_FALSE(krm.KRM_Clear());
  EXPECT_EQ(krm.GS_KRM_ErrMsg(), "Open error");
  EXPECT_FALSE(krm.GB_KRM_CommPortOpen());
  EXPECT_THAT(krm.KRM_FailureCause(), HasSubstr(GetParam()));
  EXPECT_THAT(serial.sent, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Each, KrmcommRefusedProperty,
                         ::testing::Values("DTREnable", "InBufferSize", "OutBufferSize",
                                           "Handshaking", "CommPort", "Settings"));

class KrmcommRefusedOpening : public LinkFixture,
                              public ::testing::WithParamInterface<const char*> {};

TEST_P(KrmcommRefusedOpening, IsAPortNotAvailable) {
  serial.failing_property = GetParam();
  EXPECT_FALSE(krm.KRM_Clear());
  EXPECT_EQ(krm.GS_KRM_ErrMsg(), "Serial port not available");
  EXPECT_FALSE(krm.GB_KRM_CommPortOpen());
  EXPECT_FALSE(serial.PortOpen());
  EXPECT_THAT(krm.KRM_FailureCause(), HasSubstr(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(Each, KrmcommRefusedOpening,
                         ::testing::Values("PortOpen", "OutBufferCount"));

TEST_F(KrmcommPort, SettingThatIsNoNumberIsAnOpenError) {
  settings.SetSerialPort("COM2");
  EXPECT_FALSE(krm.KRM_Clear());
  EXPECT_EQ(krm.GS_KRM_ErrMsg(), "Open error");
  EXPECT_THAT(krm.KRM_FailureCause(), HasSubstr("SerialPort"));
}

TEST_F(KrmcommPort, OpensAfterARefusal) {
  serial.failing_property = "PortOpen";
  EXPECT_FALSE(krm.KRM_Clear());
  serial.failing_property.clear();
  serial.WillAnswer(kEchoClear);
  EXPECT_TRUE(krm.KRM_Clear());
  EXPECT_EQ(krm.KRM_FailureCause(), "");
}

TEST_F(KrmcommPort, ReopensAPortThatOtherCodeOpened) {
  serial.SetPortOpen(true);
  serial.WillAnswer(kEchoClear);
  EXPECT_TRUE(krm.KRM_Clear());
  EXPECT_EQ(serial.TimesOf("close").size(), 1U);
  EXPECT_EQ(serial.TimesOf("open").size(), 2U);
}

class KrmcommSendString : public LinkFixture {};

TEST_F(KrmcommSendString, EmptyTextRaisesDtrSendsNothingAndSucceeds) {
  EXPECT_EQ(TimeOf([&] { EXPECT_TRUE(krm.KRM_Download("")); }), Ms{1600});
  EXPECT_THAT(serial.TimesOf("DTR on"), ElementsAre(Ms{0}));
  EXPECT_THAT(serial.TimesOf("DTR off"), ElementsAre(Ms{1100}));
  EXPECT_THAT(serial.blocks, IsEmpty());
  EXPECT_EQ(krm.GL_KRM_TxDCount(), 0);
}

TEST_F(KrmcommSendString, CutsBlocksOf1024) {
  const auto sizes = [this](std::size_t length) {
    serial.blocks.clear();
    EXPECT_TRUE(krm.KRM_Download(std::string(length, 'x')));
    EXPECT_EQ(krm.GL_KRM_TxDCount(), static_cast<int>(length));
    std::vector<std::size_t> result;
    for (const std::string& block : serial.blocks) {
      result.push_back(block.size());
    }
    return result;
  };
  EXPECT_THAT(sizes(1), ElementsAre(1U));
  EXPECT_THAT(sizes(1024), ElementsAre(1024U));
  EXPECT_THAT(sizes(1025), ElementsAre(1024U, 1U));
  EXPECT_THAT(sizes(2048), ElementsAre(1024U, 1024U));
  EXPECT_THAT(sizes(2500), ElementsAre(1024U, 1024U, 452U));
}

TEST_F(KrmcommSendString, SendsABlockOnlyAfterThePreviousOneHasDrained) {
  serial.per_byte = Ms{1};
  EXPECT_TRUE(krm.KRM_Download(std::string(1500, 'x')));
  const auto out = serial.TimesOf("out");
  ASSERT_EQ(out.size(), 2U);
  EXPECT_EQ(out[0], Ms{1000});
  EXPECT_GE(out[1], Ms{2024});
  EXPECT_LE(out[1], Ms{2029});  // at most one poll of the counter later
  const auto released = serial.TimesOf("DTR off");
  ASSERT_EQ(released.size(), 1U);
  EXPECT_GE(released[0], out[1] + Ms{476 + 100});
}

TEST_F(KrmcommSendString, CountsWhatHasBeenHandedOver) {
  serial.per_byte = Ms{1};
  int halfway = 0;
  pump.After(Ms{1500}, [&] { halfway = krm.GL_KRM_TxDCount(); });
  EXPECT_TRUE(krm.KRM_Download(std::string(1500, 'x')));
  EXPECT_EQ(halfway, 1024);
  EXPECT_EQ(krm.GL_KRM_TxDCount(), 1500);
}

TEST_F(KrmcommSendString, KeepsItsBytesWhenTheCallersTextChanges) {
  serial.per_byte = Ms{1};
  std::string text(1500, 'a');
  pump.After(Ms{1500}, [&] { std::fill(text.begin(), text.end(), 'b'); });
  EXPECT_TRUE(krm.KRM_Download(text));
  EXPECT_EQ(serial.sent, std::string(1500, 'a'));
}

TEST_F(KrmcommSendString, SendsEveryByteValue) {
  std::string all;
  for (int value = 0; value < 256; ++value) {
    all += static_cast<char>(value);
  }
  EXPECT_TRUE(krm.KRM_Download(all));
  EXPECT_EQ(serial.sent, all);
}

TEST_F(KrmcommSendString, RefusalLeavesTheErrorTextAndLowersDtr) {
  krm.KRM_Download("");
  krm.GS_KRM_ErrMsg("before");
  serial.failing_property = "Output";
  EXPECT_FALSE(krm.KRM_Download("text"));
  EXPECT_EQ(krm.GS_KRM_ErrMsg(), "Serial port already open");
  EXPECT_THAT(krm.KRM_FailureCause(), HasSubstr("Output"));
  EXPECT_FALSE(serial.dtr);
}

TEST_F(KrmcommSendString, PurgesBothBuffersFirst) {
  krm.KRM_Download("");
  serial.Arrives("stale");
  krm.KRM_Download("text");
  EXPECT_EQ(serial.InBufferCount(), 0);
}

}  // namespace
}  // namespace vrx::testing
