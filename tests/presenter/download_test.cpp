#include "presenter/download.h"

#include <gmock/gmock.h>

#include "link/link_fixture.h"

namespace vrx::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::IsEmpty;

const std::string kText = "{DATA_IN},L\r\n\r\n[ING]\r\n";

// A check and a clear take 1510 ms each on a module that answers at once, a download 1600 ms and
// the time of its bytes.
class DownloadTest : public LinkFixture {
 protected:
  void ModuleAnswers() {
    serial.WillAnswer(kEcho19200);
    serial.WillAnswer(kEchoClear);
  }

  void ExpectFailure(const std::string& words) {
    EXPECT_FALSE(download.DownloadToModule(kText));
    EXPECT_EQ(op.Status(), "Error: " + words);
    EXPECT_EQ(op.status_color, StatusColor::kRed);
    ExpectNoMoreTicks();
  }

  void ExpectNoBox() {
    EXPECT_EQ(op.beeps, 0);
    EXPECT_THAT(op.boxes, IsEmpty());
  }

  // A failure of the serial port itself.
  void ExpectPortBox(const std::string& text, const std::string& cause) {
    ASSERT_EQ(op.boxes.size(), 1U);
    EXPECT_EQ(op.boxes[0].title, "KRM Error");
    EXPECT_EQ(op.boxes[0].text, text);
    EXPECT_EQ(op.boxes[0].cause, cause);
    EXPECT_EQ(op.boxes[0].port_help, PortHelp::kCauseAndSetup);
    EXPECT_EQ(op.beeps, 1);
  }

  void ExpectNoMoreTicks() {
    const std::size_t lines = op.status_lines.size();
    pump.Pump(Ms{5000});
    EXPECT_EQ(op.status_lines.size(), lines);
  }

  Download download{krm, pump, op, settings};
};

TEST_F(DownloadTest, ChecksClearsAndSendsTheText) {
  ModuleAnswers();
  EXPECT_EQ(TimeOf([&] { EXPECT_TRUE(download.DownloadToModule(kText)); }), Ms{1510 + 1510 + 1600});
  EXPECT_EQ(serial.sent, "\x19\x14" + kText);
  EXPECT_FALSE(serial.dtr);
}

TEST_F(DownloadTest, EndsGreenWithTheCountOfBytesAndABeep) {
  ModuleAnswers();
  ASSERT_TRUE(download.DownloadToModule(kText));
  EXPECT_EQ(op.Status(), "Download complete!  (22 bytes, Recipe Data)");
  EXPECT_EQ(op.status_color, StatusColor::kGreen);
  EXPECT_EQ(op.beeps, 1);
  EXPECT_THAT(op.boxes, IsEmpty());
  ExpectNoMoreTicks();
}

TEST_F(DownloadTest, DoesNotBeepWithTheBeeperOff) {
  settings.SetEnableBeeperOn(false);
  ModuleAnswers();
  ASSERT_TRUE(download.DownloadToModule(kText));
  EXPECT_EQ(op.beeps, 0);
}

TEST_F(DownloadTest, ShowsStandbyInBlueWhileItLooksForTheModule) {
  op.status_color = StatusColor::kRed;
  std::string status;
  StatusColor color = StatusColor::kRed;
  pump.After(Ms{1500}, [&] {
    status = op.Status();
    color = op.status_color;
  });
  ModuleAnswers();
  download.DownloadToModule(kText);
  EXPECT_EQ(status, "Standby...");
  EXPECT_EQ(color, StatusColor::kBlue);
}

TEST_F(DownloadTest, CountsInTheStatusLineFourTimesASecondFromTheCheckOn) {
  krm.GL_KRM_TxDCount(77);
  serial.per_byte = Ms{1};
  ModuleAnswers();
  ASSERT_TRUE(download.DownloadToModule(std::string(1500, 'x')));
  // Ten ticks through the clear and the second wake, then those of the blocks and the release.
  const std::string nothing_yet = "Downloading to KRM....  0 bytes";
  EXPECT_THAT(
      op.status_lines,
      ElementsAre(
          "Standby...", nothing_yet, nothing_yet, nothing_yet, nothing_yet, nothing_yet,
          nothing_yet, nothing_yet, nothing_yet, nothing_yet, nothing_yet,
          "Downloading to KRM....  1024 bytes, 68%", "Downloading to KRM....  1024 bytes, 68%",
          "Downloading to KRM....  1024 bytes, 68%",
          "Downloading to KRM....  1024 bytes, 68%, 1 s left",
          "Downloading to KRM....  1500 bytes, 100%", "Downloading to KRM....  1500 bytes, 100%",
          "Downloading to KRM....  1500 bytes, 100%", "Downloading to KRM....  1500 bytes, 100%",
          "Download complete!  (1500 bytes, Recipe Data)"));
}

TEST_F(DownloadTest, ACanceledDownloadSaysWhatTheModuleHolds) {
  serial.per_byte = Ms{1};
  ModuleAnswers();
  pump.After(Ms{1510 + 1510 + 1000 + 1500}, [this] { krm.Guard().Cancel(); });
  EXPECT_FALSE(download.DownloadToModule(std::string(5000, 'x')));
  EXPECT_EQ(op.Status(),
            "Download canceled after 2048 of 5000 bytes. The data in the module are incomplete.");
  EXPECT_EQ(op.status_color, StatusColor::kRed);
  EXPECT_EQ(pump.Now(), Ms{1510 + 1510 + 1000 + 1500});
  EXPECT_FALSE(krm.Guard().Cancelable());
  pump.After(Ms{300}, [this] { krm.Guard().Cancel(); });
  EXPECT_FALSE(download.DownloadToModule(kText));
  EXPECT_EQ(op.Status(), "Download canceled. The module is unchanged.");
  EXPECT_TRUE(op.boxes.empty());
  ModuleAnswers();
  EXPECT_TRUE(download.DownloadToModule(kText));
}

TEST_F(DownloadTest, SilentModuleIsNotDetected) {
  ExpectFailure("KRM not detected");
  EXPECT_EQ(krm.KRM_FailureCause(), "no reply");
  ExpectNoBox();
  EXPECT_EQ(serial.sent, "\x19");
  EXPECT_THAT(op.status_lines, ElementsAre("Standby...", "Error: KRM not detected"));
}

TEST_F(DownloadTest, ALineThatIsHeldIsNamed) {
  serial.hold_after_output = 0;
  ExpectFailure("Serial line held");
}

TEST_F(DownloadTest, WrongEchoOfTheCheckIsNotDetected) {
  serial.WillAnswer("\x18\x1F");
  ExpectFailure("KRM not detected");
  EXPECT_FALSE(krm.KRM_FailureCause().empty());
}

TEST_F(DownloadTest, PortThatCannotBeOpenedIsTheCause) {
  serial.failing_property = "PortOpen";
  ExpectFailure("KRM not detected");
  EXPECT_EQ(krm.KRM_FailureCause(), "fake: PortOpen refused");
  ExpectPortBox("The serial port cannot be used.", "fake: PortOpen refused");
}

TEST_F(DownloadTest, ModuleThatDoesNotAnswerTheClearIsReported) {
  serial.WillAnswer(kEcho19200);
  ExpectFailure("Could not clear KRM");
  EXPECT_EQ(krm.KRM_FailureCause(), "no reply");
  ExpectNoBox();
  EXPECT_EQ(serial.sent, "\x19\x14");
}

TEST_F(DownloadTest, WrongEchoOfTheClearSendsNoText) {
  serial.WillAnswer(kEcho19200);
  serial.WillAnswer("x\x14\x1F");
  ExpectFailure("Could not clear KRM");
  EXPECT_EQ(serial.sent, "\x19\x14");
}

TEST_F(DownloadTest, LineCutInTheTextIsAFailedDownload) {
  ModuleAnswers();
  serial.lose_after_output = 10;
  ExpectFailure("Download failed");
  EXPECT_EQ(krm.KRM_FailureCause(), "fake: the line is gone");
  ExpectPortBox("The connection to the serial port was lost.", "fake: the line is gone");
}

TEST_F(DownloadTest, ClosingProgramEndsEveryStepAtOnce) {
  for (const Ms at : {Ms{300}, Ms{2000}, Ms{3500}, Ms{4100}}) {
    ManualPump its_pump;
    FakeSerialControl its_serial{its_pump};
    RecordingOperator its_op;
    KRMCOMM its_krm{its_serial, its_pump, its_op, settings};
    its_serial.per_byte = Ms{1};
    its_serial.WillAnswer(kEcho19200);
    its_serial.WillAnswer(kEchoClear);
    its_pump.After(at, [&] { its_pump.closing = true; });
    EXPECT_FALSE(
        Download(its_krm, its_pump, its_op, settings).DownloadToModule(std::string(3000, 'x')));
    EXPECT_EQ(its_pump.Now(), at);
    EXPECT_EQ(its_op.Status(), "Error: The program is closing");
    EXPECT_EQ(its_op.status_color, StatusColor::kRed);
    EXPECT_THAT(its_op.boxes, IsEmpty());
  }
}

TEST_F(DownloadTest, SendsTheTextItWasGivenThoughItsOwnerChangesIt) {
  std::string window = kText;
  pump.After(Ms{2000}, [&] { window = std::string(100, '?'); });
  ModuleAnswers();
  ASSERT_TRUE(download.DownloadToModule(window));
  EXPECT_THAT(serial.sent, EndsWith(kText));
}

TEST_F(DownloadTest, SendsEveryByteValueInBlocksOfTheTransmitBuffer) {
  std::string text;
  for (int byte = 0; byte < 2100; ++byte) {
    text.push_back(static_cast<char>(byte % 256));
  }
  ModuleAnswers();
  ASSERT_TRUE(download.DownloadToModule(text));
  EXPECT_EQ(serial.sent, "\x19\x14" + text);
  EXPECT_THAT(serial.blocks, Contains(text.substr(2048)));
}

}  // namespace
}  // namespace vrx::testing
