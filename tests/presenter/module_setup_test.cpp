#include <gmock/gmock.h>

#include "presenter/setup.h"
#include "support/boxes.h"
#include "support/fake_serial_control.h"
#include "support/manual_pump.h"
#include "support/recording_operator.h"

namespace vrx::testing {
namespace {

using Ms = Milliseconds;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class ModuleSetupTest : public ::testing::Test {
 protected:
  void Test() { setup.TestKRM("3", "9600"); }
  void Clear() { setup.ClearKRM("3", "9600"); }

  ManualPump pump;
  FakeSerialControl serial{pump};
  RecordingOperator op;
  PrivateINI settings;
  KRMCOMM krm{serial, pump, op, settings};
  std::vector<bool> standby;
  ModuleSetup setup{krm, settings, op, [this](bool shown) {
                      standby.push_back(shown);
                      EXPECT_TRUE(op.busy);
                    }};
};

TEST_F(ModuleSetupTest, TestFindsTheModule) {
  serial.WillAnswer("\x18\x1f");
  Test();
  EXPECT_EQ(LastBox(op.boxes).title, "KRM Test");
  EXPECT_EQ(LastBox(op.boxes).text, "KRM Successfully Detected.");
  EXPECT_EQ(LastBox(op.boxes).icon, Icon::kInformation);
  EXPECT_THAT(standby, ElementsAre(true, false));
  EXPECT_FALSE(op.busy);
}

TEST_F(ModuleSetupTest, TestTakesPortAndBaudFromTheLists) {
  Test();
  EXPECT_EQ(settings.SerialPort(), "3");
  EXPECT_EQ(settings.KRMBaudRate(), "9600");
  EXPECT_EQ(serial.comm_port, 3);
  EXPECT_EQ(serial.sent, "\x18");
}

TEST_F(ModuleSetupTest, TestWithoutAModuleReportsTheReason) {
  Test();
  EXPECT_EQ(LastBox(op.boxes).text,
            "KRM Not Detected.  (Communication Error)\r\n"
            "Please check KRM module connection, cable and serial port selection.");
  EXPECT_EQ(LastBox(op.boxes).icon, Icon::kWarning);
  EXPECT_EQ(LastBox(op.boxes).cause, "no reply");
}

TEST_F(ModuleSetupTest, TestWithNothingChosenFails) {
  setup.TestKRM("", "");
  EXPECT_EQ(LastBox(op.boxes).icon, Icon::kWarning);
  EXPECT_EQ(serial.sent, "");
}

TEST_F(ModuleSetupTest, ClearAsksFirst) {
  op.answers = {Answer::kNo};
  Clear();
  EXPECT_EQ(LastBox(op.boxes).title, "Clear KRM");
  EXPECT_EQ(LastBox(op.boxes).text, "Are you sure you want to clear all data in the KRM?");
  EXPECT_EQ(serial.sent, "");
  EXPECT_EQ(settings.SerialPort(), "3");
  EXPECT_THAT(standby, IsEmpty());
}

TEST_F(ModuleSetupTest, ClearClears) {
  op.answers = {Answer::kYes};
  serial.WillAnswer("\x18\x1f");
  serial.WillAnswer("\x14\x1f");
  Clear();
  EXPECT_EQ(serial.sent, "\x18\x14");
  EXPECT_EQ(LastBox(op.boxes).text, "The 'Clear' operation was successful.");
  EXPECT_EQ(LastBox(op.boxes).icon, Icon::kInformation);
  EXPECT_THAT(standby, ElementsAre(true, false));
}

TEST_F(ModuleSetupTest, ClearWithoutAModuleIsReported) {
  op.answers = {Answer::kYes};
  Clear();
  EXPECT_EQ(serial.sent, "\x18");
  EXPECT_EQ(LastBox(op.boxes).text, "The 'Clear' operation failed. (Could not connect to the KRM)");
  EXPECT_EQ(LastBox(op.boxes).icon, Icon::kWarning);
}

TEST_F(ModuleSetupTest, ClearThatIsNotEchoedIsReported) {
  op.answers = {Answer::kYes};
  serial.WillAnswer("\x18\x1f");
  serial.WillAnswer("x\x14\x1f");
  Clear();
  EXPECT_EQ(LastBox(op.boxes).text, "The 'Clear' operation failed.");
}

TEST_F(ModuleSetupTest, SetBaudNeedsAChoice) {
  setup.SetBaud("");
  EXPECT_EQ(LastBox(op.boxes).title, "KRM Baud Setting");
  EXPECT_EQ(LastBox(op.boxes).text, "Please select a baudrate setting.");
  EXPECT_EQ(serial.sent, "");
  EXPECT_EQ(settings.KRMBaudRate(), "");
}

TEST_F(ModuleSetupTest, SetBaudResetsTheLinkAndSetsTheModule) {
  serial.WillAnswer("\x18\x1f");
  krm.KRM_SetBaud(9600);
  serial.WillAnswer("\x16\x1f");
  setup.SetBaud("1200");
  EXPECT_EQ(serial.TimesOf("close").size(), 1U);
  EXPECT_EQ(serial.TimesOf("open").size(), 2U);
  EXPECT_EQ(serial.sent.back(), '\x16');
  EXPECT_EQ(settings.KRMBaudRate(), "1200");
  EXPECT_EQ(LastBox(op.boxes).text,
            "Successfully set the KRM baudrate.\r\n\r\n"
            "This new baudrate setting will only be in effect when the KRM module is connected to "
            "an K-2260 or some other indicator.");
}

TEST_F(ModuleSetupTest, SetBaudThatFailsIsReported) {
  setup.SetBaud("2400");
  EXPECT_EQ(LastBox(op.boxes).text,
            "Failed to set the KRM baudrate.\r\n\r\n"
            "Please check KRM module connection, cable and serial port selection.");
  EXPECT_EQ(LastBox(op.boxes).icon, Icon::kWarning);
}

TEST_F(ModuleSetupTest, ChosenBaudIsASettingAtOnce) {
  setup.ChooseBaud("2400");
  EXPECT_EQ(settings.KRMBaudRate(), "2400");
}

// Whenever the form is closed, a running command ends soon and without a message.
TEST_F(ModuleSetupTest, AbandonedItEndsWithinASecond) {
  for (const Ms when : {Ms{0}, Ms{500}, Ms{999}, Ms{1200}, Ms{1900}}) {
    ManualPump clock;
    FakeSerialControl line(clock);
    KRMCOMM module(line, clock, op, settings);
    ModuleSetup form(module, settings, op, [](bool) {});
    clock.After(when, [&] { form.Abandon(); });
    form.TestKRM("3", "9600");
    EXPECT_LE(clock.Now(), when + Ms{1000});
    EXPECT_FALSE(line.PortOpen());
  }
  EXPECT_THAT(op.boxes, IsEmpty());
}

TEST_F(ModuleSetupTest, AbandonedAfterTheCheckItDoesNotClear) {
  op.answers = {Answer::kYes};
  serial.WillAnswer("\x18\x1f");
  pump.After(Ms{1300}, [this] { setup.Abandon(); });
  Clear();
  EXPECT_EQ(serial.sent, "\x18");
  EXPECT_EQ(op.boxes.size(), 1U);
  EXPECT_FALSE(serial.PortOpen());
}

TEST_F(ModuleSetupTest, AbandonedWhileTheLinkIsResetItSendsNothing) {
  pump.After(Ms{100}, [this] { setup.Abandon(); });
  setup.SetBaud("1200");
  EXPECT_EQ(serial.sent, "");
  EXPECT_THAT(op.boxes, IsEmpty());
}

}  // namespace
}  // namespace vrx::testing
