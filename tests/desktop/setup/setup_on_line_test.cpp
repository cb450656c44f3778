#include <QComboBox>
#include <QTreeWidget>

#include <gmock/gmock.h>

#include "desktop/setup/setup_form.h"
#include "desktop/transfer/line_fixture.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::EndsWith;
using ::testing::SizeIs;

constexpr const char* kCheckLine =
    "Please check KRM module connection, cable and serial port selection.";

// The tab "KRM Setup" of `SETUP` with the simulator on a port.
class SetupOnLine : public LineFixture {
 protected:
  // Opens it, lets `act` use it once its line is reset, and closes it.
  void Setup(const std::function<void()>& act) {
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, &poll, [&] {
      auto* const form = qobject_cast<SetupForm*>(QApplication::activeModalWidget());
      if (form != nullptr && !events_.Pumping()) {
        poll.stop();
        form_ = form;
        Of<QTabWidget>(u"tabSetupFolder"_qs).setCurrentIndex(6);
        act();
        form->close();
      }
    });
    poll.start(Ms{700});
    Choose(u"mnuToolsSetup"_qs);
    EXPECT_NE(form_, nullptr);
  }
  template <typename Control>
  Control& Of(const QString& name) {
    auto* const control = form_->findChild<Control*>(name);
    if (control == nullptr) {
      throw std::logic_error("no control " + name.toStdString());
    }
    return *control;
  }
  void Press(const QString& button) {
    QTest::mouseClick(&Of<QAbstractButton>(button), Qt::LeftButton);
    EXPECT_FALSE(Of<QLabel>(u"lblStandby"_qs).isVisible());
    EXPECT_FALSE(Busy());
  }
  // Until the next command has ended.
  std::unique_ptr<QTimer> SeeStandby(bool& seen) {
    return Once(
        [this] {
          const auto& standby = Of<QLabel>(u"lblStandby"_qs);
          return standby.isVisible() && Busy() &&
                 standby.text() == u"Standby... Attempting to connect to KRM"_qs;
        },
        [&seen] { seen = true; });
  }
  std::string DeviceOf(int port) {
    return Of<QTreeWidget>(u"lstSerialPort"_qs).topLevelItem(port - 1)->text(1).toStdString();
  }

  SetupForm* form_ = nullptr;
};

TEST_F(SetupOnLine, TestsClearsAndSetsTheBaudRate) {
  const auto module = KeptModule("old");
  Setup([this] {
    bool stood_by = false;
    const auto standby = SeeStandby(stood_by);
    Press(u"cmdTestKRM"_qs);
    EXPECT_TRUE(stood_by);
    EXPECT_THAT(boxes_.Last(), IsBox(Icon::kInformation, "KRM Test", "KRM Successfully Detected."));

    auto& bauds = Of<QComboBox>(u"lstBaudRate"_qs);
    for (int baud = 0; baud < bauds.count(); ++baud) {
      bauds.setCurrentIndex(baud);
      Press(u"cmdSetBaud"_qs);
      EXPECT_THAT(
          boxes_.Last(),
          IsBox(Icon::kInformation, "KRM Baud Setting",
                "Successfully set the KRM baudrate.\n\nThis new baudrate setting will only be in "
                "effect when the KRM module is connected to an K-2260 or some other indicator."));
      EXPECT_EQ(settings_.KRMBaudRate(), bauds.currentText().toStdString());
    }

    boxes_.answers = {QMessageBox::No};
    Press(u"cmdClearKRM"_qs);
    EXPECT_THAT(boxes_.Last(),
                IsBox(Icon::kQuestion, "Clear KRM",
                      "Are you sure you want to clear all data in the KRM?", Buttons::kYesNo));
    boxes_.answers = {QMessageBox::Yes};
    Press(u"cmdClearKRM"_qs);
    EXPECT_THAT(boxes_.Last(),
                IsBox(Icon::kInformation, "Clear KRM", "The 'Clear' operation was successful."));
  });
  EXPECT_EQ(MemoryOf(*module), "");
}

TEST_F(SetupOnLine, ARefusedClearLeavesTheModule) {
  const auto module = KeptModule("old");
  Setup([this] {
    boxes_.answers = {QMessageBox::No};
    Press(u"cmdClearKRM"_qs);
    EXPECT_THAT(boxes_.boxes, SizeIs(1));
  });
  EXPECT_EQ(MemoryOf(*module), "old");
}

TEST_F(SetupOnLine, ASilentModuleIsReportedByEachCommand) {
  auto module = FaultyModule("", "silent");
  Setup([this] {
    Press(u"cmdTestKRM"_qs);
    EXPECT_THAT(boxes_.Last(),
                IsBox(Icon::kWarning, "KRM Test",
                      std::string("KRM Not Detected.  (Communication Error)\n") + kCheckLine));
    EXPECT_EQ(boxes_.Last().cause, "no reply");
    boxes_.answers = {QMessageBox::Yes};
    Press(u"cmdClearKRM"_qs);
    EXPECT_THAT(boxes_.Last(),
                IsBox(Icon::kWarning, "Clear KRM",
                      "The 'Clear' operation failed. (Could not connect to the KRM)"));
    Press(u"cmdSetBaud"_qs);
    EXPECT_THAT(boxes_.Last(),
                IsBox(Icon::kWarning, "KRM Baud Setting",
                      std::string("Failed to set the KRM baudrate.\n\n") + kCheckLine));
  });
  module.reset();
  TheNextUploadWorks();
}

TEST_F(SetupOnLine, ALineLostInTheClearIsReported) {
  const auto module = FaultyModule("", "hang-up=3");
  Setup([this] {
    boxes_.answers = {QMessageBox::Yes};
    Press(u"cmdClearKRM"_qs);
    EXPECT_THAT(boxes_.Last(), IsBox(Icon::kWarning, "Clear KRM", "The 'Clear' operation failed."));
  });
}

TEST_F(SetupOnLine, ALinePulledInATestIsReportedAndTheNextOneWorks) {
  auto module = Module("");
  Setup([&] {
    Later(Ms{500}, [&] { module.reset(); });
    Press(u"cmdTestKRM"_qs);
    EXPECT_EQ(boxes_.Last().icon, Icon::kWarning);
    const auto sound = Module("");
    Press(u"cmdTestKRM"_qs);
    EXPECT_EQ(boxes_.Last().text, "KRM Successfully Detected.");
  });
}

// A setting holds only the number; its device is selected and shown here.
TEST_F(SetupOnLine, ADeviceIsAssignedToANumberAndFoundThere) {
  const auto module = Module("");
  const std::string device = fs::canonical(link_).string();
  Setup([&] {
    EXPECT_EQ(DeviceOf(2), device + ", pseudo-terminal");
    auto& ports = Of<QTreeWidget>(u"lstSerialPort"_qs);
    ports.setCurrentItem(ports.topLevelItem(6));
    EXPECT_EQ(DeviceOf(7), "/dev/ttyS6, " + DeviceOf(7).substr(DeviceOf(7).find(',') + 2));
    Of<QComboBox>(u"cboDevice"_qs).setEditText(QString::fromStdString(device));
    Press(u"cmdPutDevice"_qs);
    EXPECT_EQ(DeviceOf(7), device + ", pseudo-terminal");
    EXPECT_EQ(settings_.SerialPort(), "2");
    Press(u"cmdTestKRM"_qs);
    EXPECT_EQ(boxes_.Last().text, "KRM Successfully Detected.");
    EXPECT_EQ(settings_.SerialPort(), "7");
  });
}

TEST_F(SetupOnLine, ADeviceThatGoesIsSeenWhenTheTabIsShownAgain) {
  auto module = Module("");
  Setup([&] {
    const std::string device = fs::canonical(link_).string();
    module->Signal(SIGKILL);
    module->Wait();
    fs::remove(link_);
    fs::create_symlink(device, link_);
    Of<QTabWidget>(u"tabSetupFolder"_qs).setCurrentIndex(0);
    Of<QTabWidget>(u"tabSetupFolder"_qs).setCurrentIndex(6);
    EXPECT_THAT(DeviceOf(2), EndsWith(", no such device"));
    Press(u"cmdTestKRM"_qs);
    EXPECT_EQ(boxes_.Last().text,
              std::string("KRM Not Detected.  (Communication Error)\n") + kCheckLine);
    EXPECT_EQ(boxes_.Last().cause, device + ": no such device");
  });
}

}  // namespace
}  // namespace vrx::testing
