#include <functional>

#include <gmock/gmock.h>

#include "link/link_fixture.h"
#include "presenter/direct_connection.h"
#include "presenter/download.h"
#include "presenter/upload.h"

namespace vrx::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;

constexpr Milliseconds kWake{1000};
constexpr Milliseconds kLimit{10'000};

// A line that takes no more bytes because of an XOFF or because the device does not read.
class HeldLineTest : public LinkFixture {
 protected:
  void Release() { serial.hold_after_output = std::numeric_limits<std::size_t>::max(); }
  void IsHeld() {
    EXPECT_EQ(krm.GS_KRM_ErrMsg(), "Serial line held");
    EXPECT_THAT(krm.KRM_FailureCause(), HasSubstr("Serial line held"));
    EXPECT_TRUE(krm.KRM_LineHeld());
    EXPECT_FALSE(serial.PortOpen());
    EXPECT_FALSE(serial.dtr);
  }

  TransferState tab;
};

TEST_F(HeldLineTest, EachCommandFailsAfterTenSecondsAndClosesThePort) {
  const std::vector<std::function<bool()>> commands{
      [this] { return krm.KRM_OnlineCheck(); }, [this] { return krm.KRM_Clear(); },
      [this] { return krm.KRM_Dump(); }, [this] { return krm.KRM_DumpAll(); },
      [this] { return krm.KRM_Download("text"); }};
  for (const auto& command : commands) {
    serial.hold_after_output = serial.sent.size();
    const Ms took = TimeOf([&] { EXPECT_FALSE(command()); });
    EXPECT_GE(took, kWake + kLimit);
    EXPECT_LE(took, kWake + kLimit + Ms{10});
    IsHeld();
  }
}

TEST_F(HeldLineTest, TheNextCommandReopensThePort) {
  serial.hold_after_output = 0;
  EXPECT_FALSE(krm.KRM_Clear());
  Release();
  serial.WillAnswer(kEchoClear);
  EXPECT_TRUE(krm.KRM_Clear());
  EXPECT_FALSE(krm.KRM_LineHeld());
  EXPECT_THAT(serial.TimesOf("open"), SizeIs(2));
}

TEST_F(HeldLineTest, EachByteThatLeavesRestartsTheLimit) {
  serial.per_byte = Ms{9'000};
  EXPECT_TRUE(krm.KRM_Download("abc"));
  EXPECT_GE(pump.Now(), Ms{27'000});
}

TEST_F(HeldLineTest, ATransmissionThatIsHeldInItsMiddleFails) {
  serial.per_byte = Ms{1};
  serial.hold_after_output = 1500;
  EXPECT_LE(TimeOf([&] { EXPECT_FALSE(krm.KRM_Download(std::string(5000, 'x'))); }),
            kWake + Ms{1024} + Ms{1500 - 1024} + kLimit + Ms{20});
  IsHeld();
  EXPECT_EQ(serial.sent.size(), 2048U);
}

TEST_F(HeldLineTest, AnUploadReportsThatTheLineIsHeld) {
  serial.hold_after_output = 0;
  Upload upload(krm, tab, pump, op, settings);
  upload.UploadDataFromKRM();
  EXPECT_EQ(op.Status(), "Error: Serial line held");
  EXPECT_EQ(op.status_color, StatusColor::kRed);
  ASSERT_THAT(op.boxes, SizeIs(1));
  EXPECT_THAT(op.boxes[0].cause, HasSubstr("Serial line held"));
  EXPECT_FALSE(op.busy);
}

TEST_F(HeldLineTest, AnUploadHeldAtItsDumpReportsIt) {
  serial.hold_after_output = 1;
  serial.WillAnswer(kEcho19200);
  Upload upload(krm, tab, pump, op, settings);
  upload.UploadDataFromKRM();
  EXPECT_EQ(op.Status(), "Error: Serial line held");
  EXPECT_THAT(op.boxes, IsEmpty());
}

TEST_F(HeldLineTest, ADownloadReportsThatTheLineIsHeld) {
  for (const std::size_t taken : {0U, 1U, 2U}) {
    serial.hold_after_output = serial.sent.size() + taken;
    for (const std::string& echo : {kEcho19200, kEchoClear}) {
      serial.WillAnswer(echo);
    }
    Download download(krm, pump, op, settings);
    EXPECT_FALSE(download.DownloadToModule("{DATA_IN}"));
    EXPECT_EQ(op.Status(), "Error: Serial line held") << taken;
    EXPECT_EQ(op.status_color, StatusColor::kRed);
    serial.WillAnswerNothingMore();
  }
}

// Opening the direct connection takes 500 ms.
class HeldAnswerTest : public HeldLineTest {
 protected:
  void ArriveAfter(Ms delay, const std::string& bytes) {
    pump.After(Ms{500} + delay, [this, bytes] { serial.Arrives(bytes); });
  }
  void LeaveAfter(Ms delay) {
    pump.After(Ms{500} + delay, [this] { direct.ConnectModule(); });
  }

  DirectConnection direct{krm, tab, pump, op, settings};
};

TEST_F(HeldAnswerTest, IsReportedAndTheConnectionContinuesOnAReopenedPort) {
  ArriveAfter(Ms{100}, "abc\x15");
  serial.hold_after_output = 0;
  pump.After(Ms{15'000}, [this] { Release(); });
  ArriveAfter(Ms{20'000}, "def\x15");
  LeaveAfter(Ms{30'000});
  EXPECT_TRUE(direct.ConnectIndicator());
  ASSERT_THAT(op.boxes, SizeIs(1));
  EXPECT_EQ(op.boxes[0].text, "Transmission of response to <NAK> command failed!");
  EXPECT_THAT(op.boxes[0].cause, HasSubstr("Serial line held"));
  EXPECT_THAT(serial.blocks, ElementsAre("\x15\x1F"
                                         "abc\x1F",
                                         "\x15\x1F"
                                         "abcdef\x1F"));
  EXPECT_THAT(serial.TimesOf("open"), SizeIs(2));
  EXPECT_EQ(serial.handshaking, Handshaking::kNone);
  EXPECT_TRUE(direct.AnswerFailed());
}

TEST_F(HeldAnswerTest, OfALoadContinuesToo) {
  serial.hold_after_output = 0;
  pump.After(Ms{1000}, [this] { EXPECT_FALSE(direct.LoadMemory("{DATA_IN}")); });
  pump.After(Ms{15'000}, [this] { Release(); });
  ArriveAfter(Ms{20'000}, "\x15");
  LeaveAfter(Ms{30'000});
  EXPECT_TRUE(direct.ConnectIndicator());
  EXPECT_THAT(op.boxes, SizeIs(1));
  EXPECT_EQ(serial.blocks.back(), "\x15\x1F{DATA_IN}\x1F");
}

TEST_F(HeldAnswerTest, EndsTheConnectionWhenThePortCannotBeReopened) {
  ArriveAfter(Ms{100}, "\x15");
  serial.hold_after_output = 0;
  pump.After(Ms{5000}, [this] { serial.failing_property = "PortOpen"; });
  EXPECT_FALSE(direct.ConnectIndicator());
  EXPECT_EQ(op.boxes.back().text, "The direct-connection has ended: Serial port not available.");
  EXPECT_EQ(tab.connection, Connection::kModule);
}

TEST_F(HeldAnswerTest, EndsWithoutAnotherBoxWhenTheOperatorLeaves) {
  ArriveAfter(Ms{100}, "\x15");
  serial.hold_after_output = 0;
  LeaveAfter(Ms{5000});
  EXPECT_TRUE(direct.ConnectIndicator());
  EXPECT_THAT(op.boxes, SizeIs(1));
  EXPECT_EQ(op.Status(), "");
  EXPECT_FALSE(direct.AnswerFailed());
}

// For any cause of the failure.
TEST_F(HeldAnswerTest, AFailedAnswerIsNotReportedAsTransmitted) {
  for (const std::string command : {"\x15", "\x1C", "\x14"}) {
    op.status_lines.clear();
    ArriveAfter(Ms{100}, "abc" + command);
    pump.After(Ms{1000}, [this] { serial.failing_property = "Output"; });
    pump.After(Ms{4000}, [this] { serial.failing_property = ""; });
    LeaveAfter(Ms{6000});
    op.answers = {Answer::kYes};  // to the question whether to clear the memory
    direct.ConnectIndicator();
    EXPECT_THAT(op.status_lines, Contains(HasSubstr("the answer failed.")));
    EXPECT_THAT(op.status_lines, Not(Contains(HasSubstr("transmitted"))));
    EXPECT_THAT(op.status_lines, Not(Contains(HasSubstr("cleared memory"))));
    pump.Pump(Ms{10'000});
  }
}

}  // namespace
}  // namespace vrx::testing
