#pragma once

#include <QAction>
#include <QLabel>
#include <QToolButton>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "adapters/program_runner.h"
#include "desktop/app/main_form.h"
#include "support/boxes.h"
#include "support/fake_serial_control.h"
#include "support/fixed_calendar.h"
#include "support/fixed_system_info.h"
#include "support/manual_pump.h"
#include "support/recording_operator.h"
#include "support/scripted_file_chooser.h"
#include "support/stored_user_settings.h"
#include "support/temp_folder.h"

namespace vrx::testing {

// `VRXMAIN` with real widgets, a program's directory with both templates and an application data
// folder. Everything except the widgets is scripted.
class MainWindowFixture : public ::testing::Test {
 protected:
  MainWindowFixture();
  ~MainWindowFixture() override;

  // Makes VRXMAIN in its state after Load. Does nothing the second time.
  MainForm& Main();
  MainWindow& Window() { return Main().Window(); }

  // Shows and activates the window and runs events.
  void Show();
  static void RunEvents();

  // A user's database in the data folder.
  std::filesystem::path MakeUserFile(const std::string& name, DatabaseKind kind,
                                     const std::string& unit = "LB");
  // Opens a new one of that kind.
  void Open(DatabaseKind kind);

  // Finds a control by its name; fails the test if there is none.
  template <typename Control>
  Control& Find(const QString& name) {
    auto* const control = Window().findChild<Control*>(name);
    if (control == nullptr) {
      throw std::logic_error("no control " + name.toStdString());
    }
    return *control;
  }
  QString Text(const QString& label) { return Find<QLabel>(label).text(); }
  QAction& Item(const QString& name) { return Find<QAction>(name); }
  bool On(const QString& name) { return Item(name).isEnabled(); }
  void Choose(const QString& name) { Item(name).trigger(); }
  MainTabFolder& Tabs() { return Find<MainTabFolder>(u"tabMainFolder"_qs); }
  std::vector<int> TabsOn();
  const MessageBox& LastBox() const { return testing::LastBox(operator_.boxes); }

  // Keeps the old page, because objects of the main form refer to it.
  void ReplacePage(int tab, MainTabPage* page) { replaced_.push_back(Window().SetPage(tab, page)); }

  // For a main form whose exits are only recorded.
  std::function<void(ExitReason)> RecordExit() {
    return [this](ExitReason reason) { exits_.push_back(reason); };
  }

  std::vector<ExitReason> exits_;
  TempFolder folder_;
  std::filesystem::path program_ = folder_ / "program";
  std::filesystem::path common_ = folder_ / "common";
  ManualPump pump_;
  RecordingOperator operator_;
  ScriptedFileChooser chooser_;
  StoredUserSettings user_settings_;
  FixedCalendar calendar_;
  FixedSystemInfo system_;
  FakeSerialControl serial_{pump_};
  PrivateINI settings_;
  std::unique_ptr<Folder> app_folder_;
  std::unique_ptr<CPrivateINI> ini_;
  ChildProcessRunner programs_;
  WaitBudget lock_waits_{kLongestLockWait};
  DatabaseIdentity identity_{operator_, calendar_, settings_, lock_waits_};
  std::optional<Services> services_;
  std::unique_ptr<MainForm> main_;
  std::vector<std::unique_ptr<MainTabPage>> replaced_;
};

}  // namespace vrx::testing
