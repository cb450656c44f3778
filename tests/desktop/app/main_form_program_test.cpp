#include <QApplication>
#include <QFileDialog>
#include <QLineEdit>
#include <QMetaObject>
#include <QTimer>
#include <chrono>
#include <filesystem>
#include <functional>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "base/application.h"
#include "database/identity.h"
#include "desktop/app/program.h"
#include "desktop/app/qt_services.h"
#include "desktop/main_window/main_window.h"
#include "desktop/next_modal.h"
#include "presenter/database_identity.h"
#include "support/environment.h"
#include "support/fixed_calendar.h"
#include "support/fixed_system_info.h"
#include "support/recording_operator.h"
#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using Ms = std::chrono::milliseconds;

// The whole program with its real window, waits and dialogs, for a user with folders of its own.
class MainWindowProgram : public ::testing::Test {
 protected:
  MainWindowProgram() {
    fs::create_directories(data_);
    fs::create_directory(folder_ / "config");
    fs::create_directory(folder_ / "run");
    fs::permissions(folder_ / "run", fs::perms::owner_all);
    system_.common_app_data_folder = (folder_ / "data").string();
    system_.program_directory = VRX_BIN_DIR;
  }

  void WriteIni(const std::string& options) const {
    folder_.Write("data/Brantock/VRX-2260/VRX-2260.INI",
                  "[Comments]\r\nTitle=x\r\n[Options]\r\nEnableBeeper=NO\r\n" + options);
  }

  // Calls `act` once, as soon as the window is there and `ready` holds. Gives the exit code.
  int Run(std::function<bool(MainWindow&)> ready, std::function<void(MainWindow&)> act) {
    vrx::Program program(system_);
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, [&] {
      if (MainWindow* const window = Window(); window != nullptr && ready(*window)) {
        poll.stop();
        act(*window);
      }
    });
    poll.start(Ms{10});
    return program.Run();
  }

  static MainWindow* Window() {
    for (QWidget* const widget : QApplication::topLevelWidgets()) {
      if (auto* const window = qobject_cast<MainWindow*>(widget);
          window != nullptr && window->isVisible()) {
        return window;
      }
    }
    return nullptr;
  }

  static std::string Opened(MainWindow& window) {
    return window.findChild<DatabaseStatusBar*>(u"sbRecipe"_qs)->Panel(kPanelName).toStdString();
  }
  static void Choose(MainWindow& window, const QString& name) {
    window.findChild<QAction*>(name)->trigger();
  }

  fs::path MakeRecipeFile(const std::string& name) {
    fs::path path = data_ / name;
    fs::copy_file(fs::path(VRX_BIN_DIR) / kRecipeTemplateName, path);
    fs::permissions(path, fs::perms::owner_write, fs::perm_options::add);
    RecordingOperator op;
    const FixedCalendar calendar;
    const PrivateINI settings;
    DatabaseIdentity identity(op, calendar, settings);
    EXPECT_TRUE(identity.SetDatabaseType(path, kUserRecipeDb));
    EXPECT_TRUE(identity.SetDatabaseUoM(path, "LB"));
    return path;
  }

  TempFolder folder_;
  fs::path data_ = folder_ / "data/Brantock/VRX-2260";
  Environment config_home_{"XDG_CONFIG_HOME", (folder_ / "config").string()};
  Environment runtime_{"XDG_RUNTIME_DIR", (folder_ / "run").string()};
  FixedSystemInfo system_;
};

TEST_F(MainWindowProgram, OpensTheDatabaseOfTheLastRunAndKeepsItForTheNext) {
  WriteIni("AutoloadRecipeDB=YES\r\n");
  const fs::path file = MakeRecipeFile("YARD.RDB");
  QtUserSettings().SaveSetting("MRU_RecipePathName", file.string());
  QtUserSettings().SaveSetting("MRU_RecipeFileName", "YARD.RDB");
  const int code = Run([](MainWindow& window) { return Opened(window) == "YARD.RDB"; },
                       [](MainWindow& window) { Choose(window, u"mnuFileExit"_qs); });
  EXPECT_EQ(code, 0);
  EXPECT_EQ(QtUserSettings().GetSetting("MRU_RecipePathName"), file.string());
  EXPECT_EQ(QtUserSettings().GetSetting("MRU_RecipeFileName"), "YARD.RDB");
}

TEST_F(MainWindowProgram, MakesADatabaseAndForgetsItWithTheOptionOff) {
  WriteIni("AutoloadRecipeDB=NO\r\n");
  const NextModal dialog([](QWidget& widget) {
    auto& files = dynamic_cast<QFileDialog&>(widget);
    files.findChild<QLineEdit*>(u"fileNameEdit"_qs)->setText(u"SITE"_qs);
    QMetaObject::invokeMethod(&files, "accept", Qt::QueuedConnection);
  });
  const int code = Run([](MainWindow& /*window*/) { return true; },
                       [](MainWindow& window) {
                         Choose(window, u"New Recipe"_qs);
                         EXPECT_EQ(Opened(window), "SITE.RDB");
                         window.close();
                       });
  EXPECT_EQ(code, 0);
  EXPECT_TRUE(fs::exists(data_ / "SITE.RDB"));
  EXPECT_EQ(QtUserSettings().GetSetting("MRU_RecipeFileName"), "");
}

// The wait of a new database is 1000 ms long.
TEST_F(MainWindowProgram, ClosingTheWindowEndsTheWaitOfACommand) {
  WriteIni("");
  const NextModal dialog([](QWidget& widget) {
    auto& files = dynamic_cast<QFileDialog&>(widget);
    files.findChild<QLineEdit*>(u"fileNameEdit"_qs)->setText(u"SITE"_qs);
    QMetaObject::invokeMethod(&files, "accept", Qt::QueuedConnection);
    QObject::connect(&files, &QDialog::finished, qApp,
                     [] { QTimer::singleShot(50, qApp, [] { Window()->close(); }); });
  });
  const int code = Run([](MainWindow& /*window*/) { return true; },
                       [](MainWindow& window) { Choose(window, u"New Recipe"_qs); });
  EXPECT_EQ(code, 0);
  EXPECT_TRUE(dialog.Seen());
  EXPECT_FALSE(fs::exists(data_ / "SITE.RDB"));
}

}  // namespace
}  // namespace vrx::testing
