#include "desktop/setup/setup_form.h"

#include <QFileInfo>
#include <filesystem>

#include <gmock/gmock.h>

#include "adapters/serial_ports.h"
#include "base/files.h"
#include "desktop/next_modal.h"
#include "desktop/transfer/transfer_fixture.h"

namespace vrx::testing {
namespace {

using Ms = Milliseconds;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::StartsWith;

// `SETUP` over the main window, driven from its own event loop.
class SetupFormTest : public TransferFixture {
 protected:
  // Opens it by its menu, lets `act` use it and closes it then, unless that was done.
  void Setup(const std::function<void(SetupForm&)>& act) {
    const NextModal next([&](QWidget& dialog) {
      form_ = &dynamic_cast<SetupForm&>(dialog);
      RunEvents();
      act(*form_);
      if (form_ != nullptr && form_->isVisible()) {
        form_->close();
      }
    });
    Main();
    Choose(u"mnuToolsSetup"_qs);
    form_ = nullptr;
    EXPECT_TRUE(next.Seen());
  }
  template <typename Control>
  Control& Of(const QString& name) {
    auto* const control = form_->findChild<Control*>(name);
    if (control == nullptr) {
      throw std::logic_error("no control " + name.toStdString());
    }
    return *control;
  }
  void ClickOn(const QString& button) {
    QTest::mouseClick(&Of<QAbstractButton>(button), Qt::LeftButton);
  }
  void ShowSetupTab(int tab) { Of<QTabWidget>(u"tabSetupFolder"_qs).setCurrentIndex(tab); }
  std::string Line(const QString& name) { return Of<QLineEdit>(name).text().toStdString(); }
  std::string View(const QString& name) {
    return Of<QPlainTextEdit>(name).toPlainText().toStdString();
  }
  QTreeWidget& Ports() { return Of<QTreeWidget>(u"lstSerialPort"_qs); }
  int Port() { return Ports().indexOfTopLevelItem(Ports().currentItem()); }

  SetupForm* form_ = nullptr;
};

TEST_F(SetupFormTest, ControlTabTurnsTheTabsFromEveryControl) {
  Setup([&](SetupForm& form) {
    const auto& tabs = Of<QTabWidget>(u"tabSetupFolder"_qs);
    Of<QPushButton>(u"cmdOK"_qs).setFocus();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab, Qt::ControlModifier);
    EXPECT_EQ(tabs.currentIndex(), 1);
    Of<QPushButton>(u"cmdOK"_qs).setFocus();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab,
                    Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(tabs.currentIndex(), 0);
    QTest::keyClick(&form, Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(tabs.currentIndex(), tabs.count() - 1);
  });
}

TEST_F(SetupFormTest, HasEightTabsAndBeginsWithTheFirst) {
  Setup([&](SetupForm& form) {
    EXPECT_EQ(form.windowTitle(), u"Setup and Test"_qs);
    EXPECT_TRUE(form.isModal());
    auto& tabs = Of<QTabWidget>(u"tabSetupFolder"_qs);
    std::vector<std::string> captions;
    for (int tab = 0; tab < tabs.count(); ++tab) {
      captions.push_back(tabs.tabText(tab).toStdString());
    }
    EXPECT_THAT(captions, ElementsAre("Database", "Application", "INI File", "Transaction File",
                                      "Options", "Data Connections", "KRM Setup", "Insight"));
    EXPECT_EQ(tabs.currentIndex(), 0);
  });
}

TEST_F(SetupFormTest, ShowsWhatIsOpen) {
  Open(DatabaseKind::kRecipe);
  Open(DatabaseKind::kTransaction);
  const std::string data = app_folder_->DefaultAppPath().string();
  Setup([&](SetupForm& /*form*/) {
    EXPECT_EQ(Line(u"txtRecipePath"_qs), data + "/YARD.RDB");
    EXPECT_EQ(Line(u"txtTransactionPath"_qs), data + "/Y2026.TDB");
    EXPECT_EQ(Of<QComboBox>(u"lstSystemUoM"_qs).currentText(), u"LB"_qs);
    ShowSetupTab(1);
    EXPECT_EQ(Line(u"txtAppPath"_qs), (program_ / "vrx2260").string());
    EXPECT_THAT(View(u"txtAssociations"_qs), StartsWith("DOC: "));
    ShowSetupTab(5);
    EXPECT_THAT(View(u"txtRecCtrl"_qs),
                HasSubstr("Data Source=" + data + "/YARD.RDB (Ingredient Grid)\n"));
    EXPECT_THAT(View(u"txtTransCtrl"_qs),
                HasSubstr("Data Source=" + data + "/Y2026.TDB (Transaction Grid)\n"));
  });
}

TEST_F(SetupFormTest, NothingOpenShowsNoPaths) {
  Setup([&](SetupForm& /*form*/) {
    EXPECT_EQ(Line(u"txtRecipePath"_qs), "");
    EXPECT_EQ(Line(u"txtTransactionPath"_qs), "");
  });
}

TEST_F(SetupFormTest, TheIniFileIsReadAnewAtEachChangeOfTheTab) {
  Setup([&](SetupForm& /*form*/) {
    ShowSetupTab(2);
    EXPECT_EQ(Line(u"txtIniPath"_qs), app_folder_->IniFilePath().string());
    EXPECT_THAT(View(u"txtIniFileData"_qs), HasSubstr("SystemUnits=LB\n"));
    EXPECT_EQ(Of<QLabel>(u"lblIniInfo"_qs).text(),
              u"May not reflect changes that have not been saved yet (by exiting the "
              u"application)."_qs);
    ShowSetupTab(0);
    static_cast<void>(ini_->WriteKey("Configuration", "SystemUnits", "KG"));
    ShowSetupTab(2);
    EXPECT_THAT(View(u"txtIniFileData"_qs), HasSubstr("SystemUnits=KG\n"));
    std::filesystem::remove(app_folder_->IniFilePath());
    ShowSetupTab(0);
    ShowSetupTab(2);
    EXPECT_THAT(View(u"txtIniFileData"_qs), HasSubstr("VRX-2260.INI"));
  });
}

TEST_F(SetupFormTest, TheTransactionFileIsEmptyBeforeAnyImport) {
  Setup([&](SetupForm& /*form*/) {
    ShowSetupTab(3);
    EXPECT_EQ(Line(u"txtQxtPath"_qs), "");
    EXPECT_EQ(View(u"txtQxtFileData"_qs), "");
  });
}

TEST_F(SetupFormTest, TheTransactionFileBreaksAfterEachComma) {
  Main();
  const std::filesystem::path file = folder_.Write("a.qxt", "{BAT/FED},\xE9,rest");
  chooser_.Choose(file);
  Choose(u"mnuFileImportTransactionFile"_qs);
  Setup([&](SetupForm& /*form*/) {
    ShowSetupTab(3);
    EXPECT_EQ(Line(u"txtQxtPath"_qs), file.string());
    EXPECT_EQ(View(u"txtQxtFileData"_qs), "{BAT/FED},\n\xC3\xA9,\n");
  });
}

TEST_F(SetupFormTest, AViewPassesItsFocusToOk) {
  Show();
  Setup([&](SetupForm& form) {
    form.activateWindow();
    ShowSetupTab(2);
    QTest::mouseClick(Of<QPlainTextEdit>(u"txtIniFileData"_qs).viewport(), Qt::LeftButton);
    EXPECT_TRUE(Of<QPushButton>(u"cmdOK"_qs).hasFocus());
    QTest::keyClicks(&Of<QPlainTextEdit>(u"txtIniFileData"_qs), "x");
    EXPECT_EQ(View(u"txtIniFileData"_qs).find('x'), View(u"txtIniFileData"_qs).find("x"));
  });
}

TEST_F(SetupFormTest, OkLetsTheSettings) {
  Setup([&](SetupForm& /*form*/) {
    Of<QComboBox>(u"lstSystemUoM"_qs).setCurrentIndex(1);
    Of<QCheckBox>(u"chkPrintGridLines"_qs).setChecked(false);
    ShowSetupTab(6);
    Ports().setCurrentItem(Ports().topLevelItem(6));
    Of<QComboBox>(u"lstBaudRate"_qs).setCurrentIndex(2);
    EXPECT_EQ(settings_.SerialPort(), "2");
    ClickOn(u"cmdOK"_qs);
  });
  EXPECT_EQ(settings_.SystemUnits(), "KG");
  EXPECT_EQ(settings_.SerialPort(), "7");
  EXPECT_EQ(settings_.KRMBaudRate(), "9600");
  EXPECT_FALSE(settings_.PrintGridLinesOn());
}

TEST_F(SetupFormTest, TheToleranceOfDifferencesIsSet) {
  Setup([&](SetupForm& /*form*/) {
    auto& tolerance = Of<QLineEdit>(u"txtDifferenceTolerance"_qs);
    EXPECT_EQ(tolerance.text(), u"2"_qs);
    EXPECT_EQ(Of<QLabel>(u"lblDifferenceTolerance"_qs).text(), u"Mark differences beyond"_qs);
    EXPECT_EQ(Of<QLabel>(u"lblDifferencePercent"_qs).text(), u"percent of the target."_qs);
    ShowSetupTab(4);
    tolerance.selectAll();
    QTest::keyClicks(&tolerance, u"3.5x"_qs);
    ClickOn(u"cmdOK"_qs);
  });
  EXPECT_TRUE(operator_.boxes.empty());
  EXPECT_EQ(settings_.DifferenceTolerance(), 3.5);
}

TEST_F(SetupFormTest, AWrongToleranceIsRefusedAndNothingIsChanged) {
  Setup([&](SetupForm& form) {
    form.activateWindow();
    Of<QCheckBox>(u"chkPrintGridLines"_qs).setChecked(false);
    auto& tolerance = Of<QLineEdit>(u"txtDifferenceTolerance"_qs);
    for (const QString& wrong : {u"101"_qs, QString(), u"."_qs}) {
      tolerance.setText(wrong);
      ShowSetupTab(0);
      ClickOn(u"cmdOK"_qs);
      EXPECT_TRUE(form.isVisible());
      EXPECT_EQ(LastBox().text,
                "The tolerance of the differences must be a number from 0 to 100 percent.");
      EXPECT_TRUE(tolerance.isVisible());
      EXPECT_EQ(settings_.DifferenceTolerance(), 2);
      EXPECT_TRUE(settings_.PrintGridLinesOn());
    }
    form.close();
  });
}

TEST_F(SetupFormTest, TheLimitsOfInsightAreSetAndCanBeTheUsualOnes) {
  using enum PrivateINI::InsightLimit;
  settings_.SetLimit(kBalanceWeight, "80");
  Setup([&](SetupForm& /*form*/) {
    ShowSetupTab(7);
    EXPECT_EQ(Of<QLineEdit>(u"txtLimitBalanceWeight"_qs).text(), u"80"_qs);
    ClickOn(u"cmdUsualLimits"_qs);
    EXPECT_EQ(Of<QLineEdit>(u"txtLimitBalanceWeight"_qs).text(), u"50"_qs);
    auto& beyond = Of<QLineEdit>(u"txtLimitBeyond"_qs);
    beyond.selectAll();
    QTest::keyClicks(&beyond, u"70.5"_qs);
    ClickOn(u"cmdOK"_qs);
  });
  EXPECT_TRUE(operator_.boxes.empty());
  EXPECT_EQ(settings_.Limit(kBeyond), 70.5);
  EXPECT_EQ(settings_.Limit(kBalanceWeight), 50);
}

TEST_F(SetupFormTest, AWrongLimitIsRefusedAndNothingIsChanged) {
  Setup([&](SetupForm& form) {
    form.activateWindow();
    auto& percent = Of<QLineEdit>(u"txtLimitPercent"_qs);
    percent.setText(u"101"_qs);
    ClickOn(u"cmdOK"_qs);
    EXPECT_TRUE(form.isVisible());
    EXPECT_EQ(LastBox().text, "This limit must be a number from 0 to 100 percent.");
    EXPECT_TRUE(percent.isVisible());
    percent.setText(u"3"_qs);
    Of<QLineEdit>(u"txtLimitDivision"_qs).setText(QString());
    ClickOn(u"cmdOK"_qs);
    EXPECT_EQ(LastBox().text, "This limit must be a weight from 0 to 99999.");
    EXPECT_EQ(settings_.Limit(PrivateINI::InsightLimit::kPercent), 2);
    form.close();
  });
}

TEST_F(SetupFormTest, TheCloseBoxTakesNothing) {
  Setup([&](SetupForm& form) {
    Of<QComboBox>(u"lstSystemUoM"_qs).setCurrentIndex(1);
    Of<QCheckBox>(u"chkPrintGridLines"_qs).setChecked(false);
    form.close();
  });
  EXPECT_EQ(settings_.SystemUnits(), "LB");
  EXPECT_TRUE(settings_.PrintGridLinesOn());
}

TEST_F(SetupFormTest, AnotherUnitThanAnOpenDatabaseIsWarnedOf) {
  Open(DatabaseKind::kRecipe);
  Setup([&](SetupForm& /*form*/) {
    Of<QComboBox>(u"lstSystemUoM"_qs).setCurrentIndex(1);
    ClickOn(u"cmdOK"_qs);
  });
  EXPECT_THAT(LastBox().text, HasSubstr("the current 'Recipe' database units."));
  EXPECT_EQ(settings_.SystemUnits(), "KG");
}

TEST_F(SetupFormTest, TheWarningNamesEachDatabaseThatDiffers) {
  const auto to_kilograms = [this] {
    settings_.SetSystemUnits("LB");
    Setup([&](SetupForm& /*form*/) {
      Of<QComboBox>(u"lstSystemUoM"_qs).setCurrentIndex(1);
      ClickOn(u"cmdOK"_qs);
    });
  };
  const auto warning = [](const std::string& word) {
    return "The new system units-of-measure will no longer be the same as " + word +
           " database units. This is not advised as it will likely result in invalid total "
           "calculations.";
  };
  to_kilograms();
  EXPECT_TRUE(operator_.boxes.empty());
  Open(DatabaseKind::kTransaction);
  to_kilograms();
  EXPECT_EQ(LastBox().text, warning("the current 'Transaction'"));
  EXPECT_EQ(LastBox().title, "Warning");
  EXPECT_EQ(LastBox().icon, Icon::kWarning);
  settings_.SetSystemUnits("LB");
  Open(DatabaseKind::kRecipe);
  to_kilograms();
  EXPECT_EQ(LastBox().text, warning("both the current 'Recipe' and 'Transaction'"));
}

TEST_F(SetupFormTest, SettingsOutsideTheListsAreStoredAsTheyShow) {
  settings_.SetSystemUnits("");
  settings_.SetKRMBaudRate("4800");
  Setup([&](SetupForm& /*form*/) {
    EXPECT_EQ(Of<QComboBox>(u"lstSystemUoM"_qs).currentText(), u"LB"_qs);
    EXPECT_EQ(Of<QComboBox>(u"lstBaudRate"_qs).currentText(), u"19200"_qs);
    ClickOn(u"cmdOK"_qs);
  });
  EXPECT_EQ(settings_.SystemUnits(), "LB");
  EXPECT_EQ(settings_.KRMBaudRate(), "19200");
}

TEST_F(SetupFormTest, BoxesAndListsBearTheirWords) {
  Setup([&](SetupForm& /*form*/) {
    const std::vector<std::pair<QString, QString>> boxes{
        {u"chkShowImportProgress"_qs, u"Show progress bar when importing transaction files."_qs},
        {u"chkEnableBeeper"_qs, u"Enable beeper."_qs},
        {u"chkPrtOneRcpOnly"_qs, u"Always print current recipe only."_qs},
        {u"chkEnablePrintText"_qs, u"Enable 'Print' (Data window) on 'Data Transfer' tab."_qs},
        {u"chkBatchTargetIsRecTarget"_qs,
         u"Transfer 'Batch Target' weight to Model 2260 instead of 'Dry Matter'"_qs},
        {u"chkAutoloadRecipeDB"_qs, u"Load most recent recipe database at startup."_qs},
        {u"chkAutoloadTransDB"_qs, u"Load most recent transaction database at startup."_qs},
        {u"chkPrintGridLines"_qs, u"Print grid lines on reports."_qs}};
    for (const auto& [name, caption] : boxes) {
      EXPECT_EQ(Of<QCheckBox>(name).text(), caption);
    }
    const auto items = [&](const QString& list) {
      std::vector<std::string> texts;
      for (int i = 0; i < Of<QComboBox>(list).count(); ++i) {
        texts.push_back(Of<QComboBox>(list).itemText(i).toStdString());
      }
      return texts;
    };
    EXPECT_THAT(items(u"lstSystemUoM"_qs), ElementsAre("LB", "KG"));
    EXPECT_THAT(items(u"lstBaudRate"_qs), ElementsAre("1200", "2400", "9600", "19200"));
    for (int port = 0; port < 9; ++port) {
      EXPECT_EQ(Ports().topLevelItem(port)->text(0), QString::number(port + 1));
    }
    const auto heading = [&](const QString& frame) {
      return Of<QWidget>(frame).findChild<QLabel*>(u"lblHeading"_qs)->text();
    };
    EXPECT_EQ(heading(u"frm1"_qs), u"Recipe Controls"_qs);
    EXPECT_EQ(heading(u"frm2"_qs), u"Transaction Controls"_qs);
  });
}

TEST_F(SetupFormTest, NoBaudRateChosenIsAskedFor) {
  Setup([&](SetupForm& /*form*/) {
    ShowSetupTab(6);
    Of<QComboBox>(u"lstBaudRate"_qs).setCurrentIndex(kNoSelection);
    ClickOn(u"cmdSetBaud"_qs);
    EXPECT_EQ(LastBox().title, "KRM Baud Setting");
    EXPECT_EQ(LastBox().text, "Please select a baudrate setting.");
    EXPECT_EQ(serial_.sent, "");
  });
}

TEST_F(SetupFormTest, APortBeyondTheListHasNoSelection) {
  settings_.SetSerialPort("12");
  Setup([&](SetupForm& /*form*/) {
    ShowSetupTab(6);
    EXPECT_EQ(Port(), kNoSelection);
    EXPECT_FALSE(Of<QPushButton>(u"cmdPutDevice"_qs).isEnabled());
    ClickOn(u"cmdOK"_qs);
  });
  EXPECT_EQ(settings_.SerialPort(), "");
}

TEST_F(SetupFormTest, OpeningItClosesThePort) {
  ShowTab();
  ModuleHolds("{BAT/FED}");
  Click(u"cmdUploadDataFromKRM"_qs);
  ASSERT_TRUE(serial_.PortOpen());
  Setup([&](SetupForm& /*form*/) { EXPECT_FALSE(serial_.PortOpen()); });
}

// The devices of the ports.

TEST_F(SetupFormTest, EachPortShowsItsDevice) {
  const std::filesystem::path nowhere = folder_ / "nowhere";
  std::filesystem::create_directories(app_folder_->DefaultAppPath() / "Ports");
  std::filesystem::create_symlink(nowhere, app_folder_->DefaultAppPath() / "Ports/COM3");
  Setup([&](SetupForm& /*form*/) {
    ShowSetupTab(6);
    EXPECT_EQ(Ports().topLevelItemCount(), 9);
    EXPECT_EQ(Ports().topLevelItem(2)->text(0), u"3"_qs);
    EXPECT_EQ(Ports().topLevelItem(2)->text(1).toStdString(),
              nowhere.string() + ", no such device");
    EXPECT_THAT(Ports().topLevelItem(8)->text(1).toStdString(), StartsWith("/dev/ttyS8, "));
    EXPECT_EQ(Port(), 1);
  });
}

TEST_F(SetupFormTest, ADeviceIsAssignedToTheChosenPort) {
  Setup([&](SetupForm& /*form*/) {
    ShowSetupTab(6);
    Ports().setCurrentItem(Ports().topLevelItem(4));
    Of<QComboBox>(u"cboDevice"_qs).setEditText(u"/dev/ttyUSB7"_qs);
    ClickOn(u"cmdPutDevice"_qs);
    EXPECT_EQ(LinuxPortDevice(app_folder_->DefaultAppPath(), 5), "/dev/ttyUSB7");
    EXPECT_EQ(Ports().topLevelItem(4)->text(1), u"/dev/ttyUSB7, no such device"_qs);
    EXPECT_EQ(Of<QComboBox>(u"cboDevice"_qs).currentText(), u"/dev/ttyUSB7"_qs);
    Of<QComboBox>(u"cboDevice"_qs).setCurrentIndex(0);
    ClickOn(u"cmdPutDevice"_qs);
    EXPECT_EQ(LinuxPortDevice(app_folder_->DefaultAppPath(), 5), "/dev/ttyS4");
  });
}

TEST_F(SetupFormTest, AnotherDeviceOfThePortClosesTheLine) {
  Setup([&](SetupForm& /*form*/) {
    ShowSetupTab(6);
    serial_.WillAnswer("\x19\x1f");
    ClickOn(u"cmdTestKRM"_qs);
    ASSERT_TRUE(serial_.PortOpen());
    Of<QComboBox>(u"cboDevice"_qs).setEditText(u"  /dev/ttyUSB7 "_qs);
    ClickOn(u"cmdPutDevice"_qs);
    EXPECT_FALSE(serial_.PortOpen());
    EXPECT_EQ(LinuxPortDevice(app_folder_->DefaultAppPath(), 2), "/dev/ttyUSB7");
  });
}

TEST_F(SetupFormTest, ADeviceThatCannotBeAssignedIsReported) {
  WriteFileBytes(app_folder_->DefaultAppPath() / "Ports", "a file");
  Setup([&](SetupForm& /*form*/) {
    ShowSetupTab(6);
    Of<QComboBox>(u"cboDevice"_qs).setEditText(u"/dev/ttyUSB7"_qs);
    ClickOn(u"cmdPutDevice"_qs);
    EXPECT_EQ(LastBox().title, "Serial Port");
    EXPECT_THAT(LastBox().cause, HasSubstr("Ports"));
  });
}

// The commands to the module.

TEST_F(SetupFormTest, TestsTheModuleOnTheChosenPort) {
  Setup([&](SetupForm& /*form*/) {
    ShowSetupTab(6);
    Ports().setCurrentItem(Ports().topLevelItem(2));
    bool standing_by = false;
    pump_.After(Ms{500}, [&] {
      standing_by = Of<QLabel>(u"lblStandby"_qs).isVisible() && operator_.busy;
      EXPECT_EQ(Of<QLabel>(u"lblStandby"_qs).text(), u"Standby... Attempting to connect to KRM"_qs);
    });
    serial_.WillAnswer("\x19\x1f");
    ClickOn(u"cmdTestKRM"_qs);
    EXPECT_TRUE(standing_by);
    EXPECT_FALSE(Of<QLabel>(u"lblStandby"_qs).isVisible());
    EXPECT_EQ(LastBox().text, "KRM Successfully Detected.");
    EXPECT_EQ(serial_.comm_port, 3);
    EXPECT_EQ(settings_.SerialPort(), "3");
  });
}

TEST_F(SetupFormTest, ClearsTheModule) {
  Setup([&](SetupForm& /*form*/) {
    ShowSetupTab(6);
    ModuleTakesDownload();
    operator_.answers = {Answer::kYes};
    ClickOn(u"cmdClearKRM"_qs);
    EXPECT_EQ(LastBox().text, "The 'Clear' operation was successful.");
  });
}

TEST_F(SetupFormTest, ReportsTheModuleTheChosenBaudRate) {
  Setup([&](SetupForm& /*form*/) {
    ShowSetupTab(6);
    auto& bauds = Of<QComboBox>(u"lstBaudRate"_qs);
    bauds.setCurrentIndex(0);
    serial_.WillAnswer("\x16\x1f");
    ClickOn(u"cmdSetBaud"_qs);
    EXPECT_THAT(LastBox().text, StartsWith("Successfully set the KRM baudrate."));
    EXPECT_EQ(settings_.KRMBaudRate(), "1200");
  });
}

TEST_F(SetupFormTest, ASecondClickWhileACommandRunsIsIgnored) {
  Setup([&](SetupForm& /*form*/) {
    ShowSetupTab(6);
    pump_.After(Ms{500}, [&] { ClickOn(u"cmdTestKRM"_qs); });
    serial_.WillAnswer("\x19\x1f");
    ClickOn(u"cmdTestKRM"_qs);
    EXPECT_EQ(serial_.sent, "\x19");
    EXPECT_EQ(operator_.boxes.size(), 1U);
  });
}

TEST_F(SetupFormTest, ClosedWhileACommandRunsItEndsThatWithoutAWord) {
  Setup([&](SetupForm& form) {
    ShowSetupTab(6);
    pump_.After(Ms{1200}, [&] { form.close(); });
    ClickOn(u"cmdTestKRM"_qs);
  });
  EXPECT_TRUE(operator_.boxes.empty());
  EXPECT_FALSE(serial_.PortOpen());
  ModuleHolds("{BAT/FED}");
  ShowTab();
  Click(u"cmdUploadDataFromKRM"_qs);
  EXPECT_EQ(operator_.status_color, StatusColor::kGreen);
}

TEST_F(SetupFormTest, ADirectConnectionContinuesAfterIt) {
  ShowTab();
  pump_.After(Ms{1000}, [&] {
    Setup([&](SetupForm& /*form*/) { EXPECT_FALSE(serial_.PortOpen()); });
    EXPECT_TRUE(serial_.PortOpen());
    EXPECT_EQ(serial_.handshaking, Handshaking::kNone);
    pump_.After(Ms{100}, [this] { serial_.Arrives("abc"); });
  });
  ClickAfter(Ms{5000}, u"optConnection(0)"_qs);
  pump_.After(Ms{4000}, [this] {
    EXPECT_EQ(Text(u"lblMemorySize"_qs), u"3"_qs);
    EXPECT_TRUE(Find<QRadioButton>(u"optConnection(1)"_qs).isChecked());
  });
  Click(u"optConnection(1)"_qs);
}

TEST_F(SetupFormTest, UnloadingItForTheEndClosesIt) {
  Setup([&](SetupForm& form) {
    Main().UnloadSetup();
    EXPECT_FALSE(form.isVisible());
  });
  Main().UnloadSetup();
}

}  // namespace
}  // namespace vrx::testing
