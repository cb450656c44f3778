#include <QApplication>
#include <QWidget>
#include <algorithm>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desktop/app/program.h"
#include "desktop/app/recorded_main_form.h"
#include "support/boxes.h"
#include "support/temp_folder.h"
#include "support/test_services.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::MatchesRegex;

// The whole start with a program's directory and a common folder of its own.
class StartUp : public ::testing::Test {
 protected:
  StartUp() {
    fs::create_directory(locks_);
    fs::create_directory(program_);
    folder_.Write("program/QXNULRDB.MDB", "template");
    folder_.Write("program/QXNULXDB.MDB", "template");
    system_.program_directory = program_.string();
    system_.common_app_data_folder = common_.string();
    app_folder_ = Folder(system_);
  }

  void WriteIni() {
    fs::create_directories(common_ / "Brantock/VRX-2260");
    folder_.Write("common/Brantock/VRX-2260/VRX-2260.INI",
                  "[Comments]\nTitle=x\n[Configuration]\nSystemUnits=KG\n");
  }

  std::unique_ptr<ProgramForm> Start(const fs::path& locks,
                                     const std::vector<fs::path>& files = {}) {
    LockFile lock(QString::fromStdString(locks.string()));
    return ClaimInstance(lock, services_, files) == StartOutcome::kStarted
               ? StartProgram(splash_, services_, app_folder_, ini_file_,
                              [this] { return LoadForm(); })
               : nullptr;
  }
  std::unique_ptr<ProgramForm> Start() {
    std::unique_ptr<ProgramForm> form = Start(locks_);
    if (form) {
      Note("ready");
    }
    return form;
  }

  // Another instance runs.
  void StartAnother() { ASSERT_TRUE(other_.Claim()); }

  TempFolder folder_;
  fs::path program_ = folder_ / "program";
  fs::path common_ = folder_ / "common";
  fs::path ini_ = common_ / "Brantock/VRX-2260/VRX-2260.INI";
  fs::path locks_ = folder_ / "run";
  LockFile other_{QString::fromStdString(locks_.string())};
  RecordingOperator op_;
  FixedSystemInfo system_;
  ManualPump pump_;
  Folder app_folder_{system_};
  std::optional<CPrivateINI> ini_file_;
  PrivateINI settings_;
  Splash splash_;
  TestServices rest_;
  Services services_{.op = op_,
                     .files = rest_.files,
                     .pump = pump_,
                     .programs = rest_.programs,
                     .calendar = rest_.calendar,
                     .system = system_,
                     .settings = settings_,
                     .folder = app_folder_,
                     .identity = rest_.identity};
  std::vector<std::string> steps_;
  std::string units_at_load_;

 private:
  static bool SplashIsShown() {
    const QWidgetList windows = QApplication::topLevelWidgets();
    return std::any_of(windows.begin(), windows.end(), [](const QWidget* window) {
      return window->objectName() == QStringLiteral("SPLASH") && window->isVisible();
    });
  }

  void Note(const std::string& step) {
    steps_.push_back(step + " at " + std::to_string(pump_.Now().count()) +
                     (SplashIsShown() ? " with splash" : ""));
  }

  std::unique_ptr<ProgramForm> LoadForm() {
    constexpr Milliseconds kLoadTime{300};
    units_at_load_ = settings_.SystemUnits();
    Note("loading");
    pump_.After(kLoadTime + Milliseconds{1999}, [this] { Note("waiting"); });
    pump_.Pump(kLoadTime);
    Note("loaded");
    return std::make_unique<RecordedMainForm>([this](const std::string& step) { Note(step); });
  }
};

TEST_F(StartUp, ShowsTheSplashLoadsTheMainFormAndIsReadyAfter2000Milliseconds) {
  WriteIni();
  EXPECT_NE(Start(), nullptr);
  EXPECT_THAT(steps_, ElementsAre("loading at 0 with splash", "loaded at 300 with splash",
                                  "waiting at 2299 with splash", "ready at 2300"));
  EXPECT_THAT(op_.boxes, IsEmpty());
  EXPECT_EQ(op_.beeps, 0);
}

TEST_F(StartUp, SettingsAreReadBeforeTheSplash) {
  WriteIni();
  EXPECT_NE(Start(), nullptr);
  EXPECT_EQ(units_at_load_, "KG");
  EXPECT_TRUE(settings_.SettingsReadOk());
}

TEST_F(StartUp, FirstStartMakesBothFoldersAndTheIniFile) {
  EXPECT_NE(Start(), nullptr);
  EXPECT_TRUE(fs::exists(ini_));
  EXPECT_EQ(app_folder_.DefaultAppPath(), common_ / "Brantock/VRX-2260");
  EXPECT_EQ(OnlyBox(op_.boxes).title, "No Configuration File");
  EXPECT_EQ(OnlyBox(op_.boxes).icon, Icon::kInformation);
}

TEST_F(StartUp, SecondStartSaysSoAndTouchesNothing) {
  StartAnother();
  EXPECT_EQ(Start(), nullptr);
  EXPECT_EQ(op_.beeps, 1);
  EXPECT_THAT(
      OnlyBox(op_.boxes),
      IsBox(Icon::kInformation, "",
            "The VRX(2260) application is already running.It might be minimized or hidden by "
            "another window."));
  EXPECT_FALSE(fs::exists(common_));
  EXPECT_THAT(steps_, IsEmpty());
}

TEST_F(StartUp, FilesThatARunningProgramDoesNotTakeAreNamed) {
  StartAnother();
  EXPECT_EQ(Start(locks_, {"/data/YARD.RDB", "/data/01.QXT"}), nullptr);
  EXPECT_THAT(OnlyBox(op_.boxes),
              IsBox(Icon::kWarning, "Open File Error",
                    "The program is already running and does not answer. This was not opened:"
                    "\r\n\r\n/data/YARD.RDB\r\n/data/01.QXT"));
  EXPECT_FALSE(fs::exists(common_));
}

TEST_F(StartUp, SecondStartIsReportedBeforeMissingTemplates) {
  StartAnother();
  fs::remove(program_ / "QXNULRDB.MDB");
  EXPECT_EQ(Start(), nullptr);
  EXPECT_THAT(OnlyBox(op_.boxes).text, HasSubstr("already running"));
}

TEST_F(StartUp, LockThatCannotBeTakenIsReported) {
  EXPECT_EQ(Start(folder_ / "none"), nullptr);
  EXPECT_EQ(OnlyBox(op_.boxes).icon, Icon::kCritical);
  EXPECT_THAT(OnlyBox(op_.boxes).text, MatchesRegex("Error: cannot lock .*/none/vrx2260.lock"));
  EXPECT_FALSE(fs::exists(common_));
}

TEST_F(StartUp, MissingTemplateEndsTheStartBeforeTheIniFile) {
  fs::remove(program_ / "QXNULXDB.MDB");
  EXPECT_EQ(Start(), nullptr);
  EXPECT_EQ(op_.beeps, 1);
  EXPECT_EQ(OnlyBox(op_.boxes).title, "Missing Files");
  EXPECT_EQ(OnlyBox(op_.boxes).icon, Icon::kCritical);
  EXPECT_THAT(OnlyBox(op_.boxes).text,
              HasSubstr("directory:\r\n\r\nQXNULXDB.MDB\r\n\r\nPlease run"));
  EXPECT_FALSE(fs::exists(ini_));
  EXPECT_THAT(steps_, IsEmpty());
}

TEST_F(StartUp, BothTemplatesMissingAreNamedOnALineEach) {
  fs::remove(program_ / "QXNULRDB.MDB");
  fs::remove(program_ / "QXNULXDB.MDB");
  EXPECT_EQ(Start(), nullptr);
  EXPECT_THAT(OnlyBox(op_.boxes).text, HasSubstr("\r\n\r\nQXNULRDB.MDB\r\nQXNULXDB.MDB\r\n\r\n"));
}

TEST_F(StartUp, IniFileThatCannotBeWrittenEndsTheStart) {
  fs::create_directories(ini_);  // a folder in its place
  EXPECT_EQ(Start(), nullptr);
  EXPECT_EQ(OnlyBox(op_.boxes).title, "Configuration File Error");
  EXPECT_EQ(OnlyBox(op_.boxes).icon, Icon::kCritical);
  EXPECT_THAT(steps_, IsEmpty());
}

TEST_F(StartUp, UnknownSystemDirectoryEndsTheStart) {
  system_.windows_directory.clear();
  EXPECT_EQ(Start(), nullptr);
  EXPECT_EQ(OnlyBox(op_.boxes).title, "Fatal Error");
  EXPECT_THAT(steps_, IsEmpty());
}

TEST_F(StartUp, FolderThatCannotBeCreatedIsReportedAndEndsTheStart) {
  folder_.Write("common", "a file in the folder's place");
  EXPECT_EQ(Start(), nullptr);
  EXPECT_EQ(OnlyBox(op_.boxes).icon, Icon::kCritical);
  EXPECT_THAT(OnlyBox(op_.boxes).text, HasSubstr("Error: cannot make the folder"));
  EXPECT_THAT(steps_, IsEmpty());
}

TEST_F(StartUp, UnknownCommonFolderIsReportedAndEndsTheStart) {
  system_.common_app_data_folder.clear();
  EXPECT_EQ(Start(), nullptr);
  EXPECT_THAT(OnlyBox(op_.boxes).text, HasSubstr("Error: "));
}

TEST_F(StartUp, SettingThatCannotBeHealedIsRememberedAndTheStartGoesOn) {
  WriteIni();
  // Readable, but its name is too long for the temporary file of an atomic write.
  const fs::path unwritable = folder_ / std::string(250, 'i');
  fs::rename(ini_, unwritable);
  fs::create_symlink(unwritable, ini_);
  EXPECT_NE(Start(), nullptr);
  EXPECT_FALSE(settings_.SettingsReadOk());
  EXPECT_EQ(settings_.SerialPort(), "2");
  EXPECT_THAT(op_.boxes, IsEmpty());  // the main form's Load reports it
  EXPECT_EQ(steps_.size(), 4U);
}

TEST_F(StartUp, ClosingDuringTheSplashEndsItsTime) {
  WriteIni();
  pump_.After(Milliseconds{1000}, [this] { pump_.closing = true; });
  EXPECT_NE(Start(), nullptr);
  EXPECT_THAT(steps_, ElementsAre("loading at 0 with splash", "loaded at 300 with splash",
                                  "ready at 1000"));
}

}  // namespace
}  // namespace vrx::testing
