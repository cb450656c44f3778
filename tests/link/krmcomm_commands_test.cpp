#include <gmock/gmock.h>

#include "link/link_fixture.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;

class KrmcommCommands : public LinkFixture {};

TEST_F(KrmcommCommands, ClearIsEchoed) {
  serial.WillAnswer(kEchoClear);
  EXPECT_TRUE(krm.KRM_Clear());
  EXPECT_EQ(serial.sent, "\x14");
  EXPECT_EQ(krm.GS_KRM_RxDBuffer(), kEchoClear);
  EXPECT_EQ(krm.GS_KRM_ErrMsg(), "");
}

TEST_F(KrmcommCommands, ClearWithAStrayByteBeforeTheEchoFailsWithoutMessage) {
  serial.WillAnswer("x\x14\x1F");
  EXPECT_FALSE(krm.KRM_Clear());
  EXPECT_EQ(krm.GS_KRM_ErrMsg(), "");
  EXPECT_EQ(krm.GS_KRM_RxDBuffer(), "x\x14\x1F");
  EXPECT_EQ(krm.KRM_FailureCause(), "unexpected reply");
  EXPECT_FALSE(serial.dtr);
}

TEST_F(KrmcommCommands, ClearWithAByteAfterTheEchoFails) {
  serial.WillAnswer("\x14\x1Fx");
  EXPECT_FALSE(krm.KRM_Clear());
  EXPECT_EQ(krm.GS_KRM_ErrMsg(), "");
}

struct Baud {
  int baud;
  char code;
};

class KrmcommSetBaud : public LinkFixture, public ::testing::WithParamInterface<Baud> {};

TEST_P(KrmcommSetBaud, SendsItsCodeAndWantsItBack) {
  const auto [baud, code] = GetParam();
  serial.WillAnswer(std::string{code, '\x1F'});
  EXPECT_TRUE(krm.KRM_SetBaud(baud));
  EXPECT_EQ(serial.sent, std::string{code});
}

TEST_P(KrmcommSetBaud, IsWhatTheOnlineCheckDoes) {
  const auto [baud, code] = GetParam();
  settings.SetKRMBaudRate(std::to_string(baud));
  serial.WillAnswer(std::string{code, '\x1F'});
  EXPECT_TRUE(krm.KRM_OnlineCheck());
  EXPECT_EQ(serial.sent, std::string{code});
}

TEST_P(KrmcommSetBaud, RefusesTheEchoOfAnother) {
  serial.WillAnswer("\x14\x1F");
  EXPECT_FALSE(krm.KRM_SetBaud(GetParam().baud));
}

INSTANTIATE_TEST_SUITE_P(Each, KrmcommSetBaud,
                         ::testing::Values(Baud{1200, '\x16'}, Baud{2400, '\x17'},
                                           Baud{9600, '\x18'}, Baud{19200, '\x19'}),
                         [](const auto& test) { return std::to_string(test.param.baud); });

TEST_F(KrmcommCommands, UnknownBaudSendsNothingAndLeavesDtr) {
  EXPECT_EQ(TimeOf([&] { EXPECT_FALSE(krm.KRM_SetBaud(4800)); }), Ms{0});
  EXPECT_EQ(serial.sent, "");
  EXPECT_TRUE(serial.TimesOf("DTR on").empty());
  EXPECT_TRUE(krm.GB_KRM_CommPortOpen());
}

TEST_F(KrmcommCommands, SettingThatIsNoNumberFailsTheOnlineCheckWithoutAByte) {
  settings.SetKRMBaudRate("fast");
  EXPECT_FALSE(krm.KRM_OnlineCheck());
  EXPECT_EQ(serial.sent, "");
}

TEST_F(KrmcommCommands, DumpBringsTheFramedMemory) {
  serial.WillAnswer("\x15\x1F{REPORT}\x1F");
  EXPECT_TRUE(krm.KRM_Dump());
  EXPECT_EQ(serial.sent, "\x15");
  EXPECT_EQ(krm.GS_KRM_RxDBuffer(), "\x15\x1F{REPORT}\x1F");
  EXPECT_EQ(krm.GS_KRM_ErrMsg(), "");
}

TEST_F(KrmcommCommands, DumpOfAnEmptyModuleSucceeds) {
  serial.WillAnswer("\x15\x1F\x1F");
  EXPECT_TRUE(krm.KRM_Dump());
  EXPECT_EQ(krm.KRM_ExtractData(krm.GS_KRM_RxDBuffer()), "");
  EXPECT_EQ(krm.GS_KRM_ErrMsg(), "The KRM buffer is empty");
}

TEST_F(KrmcommCommands, DumpThatDoesNotBeginWithNakFailsWithoutMessage) {
  serial.WillAnswer("\x1C\x1F{REPORT}\x1F");
  EXPECT_FALSE(krm.KRM_Dump());
  EXPECT_EQ(krm.GS_KRM_ErrMsg(), "");
}

TEST_F(KrmcommCommands, DumpReportsItsFailuresInItsOwnWords) {
  serial.failing_property = "PortOpen";
  EXPECT_FALSE(krm.KRM_Dump());
  EXPECT_EQ(krm.GS_KRM_ErrMsg(), "Open failed");

  serial.failing_property = "Output";
  EXPECT_FALSE(krm.KRM_Dump());
  EXPECT_EQ(krm.GS_KRM_ErrMsg(), "<NAK> command failed");

  serial.failing_property.clear();
  EXPECT_FALSE(krm.KRM_Dump());
  EXPECT_EQ(krm.GS_KRM_ErrMsg(), "Command response failed");
}

TEST_F(KrmcommCommands, DumpAllBringsTheFramedMemory) {
  serial.WillAnswer("\x1C\x1F{REPORT}\x1F");
  EXPECT_TRUE(krm.KRM_DumpAll());
  EXPECT_EQ(serial.sent, "\x1C");
}

TEST_F(KrmcommCommands, DumpAllPassesOnWhatTheStagesLeft) {
  serial.failing_property = "PortOpen";
  EXPECT_FALSE(krm.KRM_DumpAll());
  EXPECT_EQ(krm.GS_KRM_ErrMsg(), "Serial port not available");

  serial.failing_property.clear();
  EXPECT_FALSE(krm.KRM_DumpAll());
  EXPECT_EQ(krm.GS_KRM_ErrMsg(), "Receiver timeout");

  serial.WillAnswer("\x15\x1F{REPORT}\x1F");
  EXPECT_FALSE(krm.KRM_DumpAll());
  EXPECT_EQ(krm.GS_KRM_ErrMsg(), "");
}

// DTR is released after the failed transmission and again at the end of the command.
TEST_F(KrmcommCommands, RefusedByteReleasesTwice) {
  serial.failing_property = "Output";
  EXPECT_EQ(TimeOf([&] { EXPECT_FALSE(krm.KRM_Clear()); }), Ms{1000 + 500 + 500});
  EXPECT_FALSE(serial.dtr);
}

TEST_F(KrmcommCommands, FailedOpeningStillReleases) {
  serial.failing_property = "PortOpen";
  EXPECT_EQ(TimeOf([&] { EXPECT_FALSE(krm.KRM_Clear()); }), Ms{500});
  EXPECT_EQ(TimeOf([&] { EXPECT_FALSE(krm.KRM_SetBaud(1200)); }), Ms{500});
  EXPECT_EQ(TimeOf([&] { EXPECT_FALSE(krm.KRM_Dump()); }), Ms{500});
  EXPECT_EQ(TimeOf([&] { EXPECT_FALSE(krm.KRM_DumpAll()); }), Ms{500});
  EXPECT_EQ(TimeOf([&] { EXPECT_FALSE(krm.KRM_Download("x")); }), Ms{0});
}

TEST_F(KrmcommCommands, FailedCommandLeavesThePortOpen) {
  EXPECT_FALSE(krm.KRM_Clear());
  EXPECT_TRUE(krm.GB_KRM_CommPortOpen());
  EXPECT_TRUE(serial.PortOpen());
}

TEST_F(KrmcommCommands, DownloadNoticesNoMissingModule) {
  EXPECT_TRUE(krm.KRM_Download("{DATA_IN}"));
  EXPECT_EQ(serial.sent, "{DATA_IN}");
}

TEST_F(KrmcommCommands, DownloadFailsInTheWordsOfTheOpening) {
  serial.failing_property = "PortOpen";
  EXPECT_FALSE(krm.KRM_Download("{DATA_IN}"));
  EXPECT_EQ(krm.GS_KRM_ErrMsg(), "Serial port not available");
}

TEST_F(KrmcommCommands, SequenceOfADownload) {
  serial.WillAnswer(kEcho19200);
  serial.WillAnswer(kEchoClear);
  EXPECT_TRUE(krm.KRM_OnlineCheck());
  EXPECT_TRUE(krm.KRM_Clear());
  EXPECT_TRUE(krm.KRM_Download("{DATA_IN},L"));
  EXPECT_THAT(serial.blocks, ElementsAre("\x19", "\x14", "{DATA_IN},L"));
  EXPECT_THAT(serial.TimesOf("DTR on"), ElementsAre(Ms{0}, Ms{1510}, Ms{3020}));
  EXPECT_THAT(serial.TimesOf("out"), ElementsAre(Ms{1000}, Ms{2510}, Ms{4020}));
  EXPECT_THAT(serial.TimesOf("DTR off"), ElementsAre(Ms{1010}, Ms{2520}, Ms{4120}));
  EXPECT_EQ(pump.Now(), Ms{4620});
}

TEST_F(KrmcommCommands, SequenceOfAnUpload) {
  serial.WillAnswer(kEcho19200);
  serial.WillAnswer("\x15\x1F{BAT/FED}\x1F");
  EXPECT_TRUE(krm.KRM_OnlineCheck());
  EXPECT_TRUE(krm.KRM_Dump());
  EXPECT_THAT(serial.blocks, ElementsAre("\x19", "\x15"));
  EXPECT_THAT(serial.TimesOf("DTR on"), ElementsAre(Ms{0}, Ms{1510}));
  EXPECT_THAT(serial.TimesOf("DTR off"), ElementsAre(Ms{1010}, Ms{2520 + 250}));
  EXPECT_EQ(krm.KRM_ExtractFiles(krm.KRM_ExtractData(krm.GS_KRM_RxDBuffer())), 1);
}

}  // namespace
}  // namespace vrx::testing
