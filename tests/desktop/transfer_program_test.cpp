#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>
#include <QTimer>
#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "desktop/desktop_program.h"
#include "desktop/vrx_main.h"
#include "end_to_end/program.h"
#include "next_modal.h"
#include "support/environment.h"
#include "support/fixed_system_info.h"
#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using Ms = std::chrono::milliseconds;

// The whole program with the simulated module behind its serial port 2, closed in the middle of
// what it does on the line.
class TransferProgram : public ::testing::Test {
 protected:
  TransferProgram() {
    fs::create_directories(data_ / "Ports");
    fs::create_directory(folder_ / "config");
    fs::create_directory(folder_ / "run");
    fs::permissions(folder_ / "run", fs::perms::owner_all);
    folder_.Write("data/Brantock/VRX-2260/VRX-2260.INI",
                  "[Comments]\r\nTitle=x\r\n[Options]\r\nEnableBeeper=NO\r\n");
    system_.common_app_data_folder = (folder_ / "data").string();
    system_.program_directory = VRX_BIN_DIR;
  }

  std::unique_ptr<Program> Module(const std::vector<std::string>& more = {}) const {
    const std::string line = (data_ / "Ports/COM2").string();
    std::vector<std::string> args = {"module", "--link", line, "--load",
                                     folder_.Write("m", "{BAT/FED},L\r\n").string()};
    args.insert(args.end(), more.begin(), more.end());
    auto module =
        std::make_unique<Program>(VRX_BIN_DIR "/vrx2260sim", args, folder_.Path().string());
    EXPECT_TRUE(module->WaitForOutput("ready ")) << module->Err();
    return module;
  }

  // Runs the program and calls `act` once its window is there; gives the exit code.
  int Run(const std::function<void(MainWindow&)>& act) {
    DesktopProgram program(system_, MakeVrxMain);
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, [&] {
      for (QWidget* const widget : QApplication::topLevelWidgets()) {
        auto* const window = qobject_cast<MainWindow*>(widget);
        if (window != nullptr && window->isVisible()) {
          poll.stop();
          act(*window);
          return;
        }
      }
    });
    poll.start(Ms{10});
    return program.Run();
  }
  static void Later(Ms delay, std::function<void()> act) {
    QTimer::singleShot(delay, qApp, std::move(act));
  }
  template <typename Control>
  static Control& Find(const QWidget& form, const QString& name) {
    return *form.findChild<Control*>(name);
  }

  TempFolder folder_;
  fs::path data_ = folder_ / "data/Brantock/VRX-2260";
  Environment config_home_{"XDG_CONFIG_HOME", (folder_ / "config").string()};
  Environment runtime_{"XDG_RUNTIME_DIR", (folder_ / "run").string()};
  FixedSystemInfo system_;
};

TEST_F(TransferProgram, ClosedDuringAnUploadItEnds) {
  const auto module = Module({"--fault", "silent"});
  for (const Ms when : {Ms{200}, Ms{1500}}) {
    EXPECT_EQ(Run([when](MainWindow& window) {
                Later(when, [&window] { window.close(); });
                Find<QPushButton>(window, u"cmdUploadDataFromKRM"_qs).click();
              }),
              0);
  }
}

TEST_F(TransferProgram, ClosedInADirectConnectionItEnds) {
  const auto module = Module();
  for (const QString& road : {u"close box"_qs, u"mnuFileExit"_qs}) {
    bool stood = false;
    EXPECT_EQ(Run([&](MainWindow& window) {
                Later(Ms{1000}, [&window, &stood, road] {
                  stood = Find<QRadioButton>(window, u"optConnection(1)"_qs).isChecked();
                  if (auto* const exit = window.findChild<QAction*>(road); exit != nullptr) {
                    exit->trigger();
                  } else {
                    window.close();
                  }
                });
                Find<QRadioButton>(window, u"optConnection(1)"_qs).click();
              }),
              0);
    EXPECT_TRUE(stood);
  }
}

TEST_F(TransferProgram, ClosedWhileABoxTellsOfTheUploadItEnds) {
  const NextModal box([](QWidget& widget) {
    EXPECT_EQ(widget.windowTitle(), u"KRM Error"_qs);
    for (QWidget* const other : QApplication::topLevelWidgets()) {
      if (auto* const window = qobject_cast<MainWindow*>(other)) {
        window->close();
      }
    }
  });
  EXPECT_EQ(Run([](MainWindow& window) {
              Find<QPushButton>(window, u"cmdUploadDataFromKRM"_qs).click();
            }),
            0);
  EXPECT_TRUE(box.Seen());
}

TEST_F(TransferProgram, ClosedWhileSetupTestsTheModuleItEnds) {
  const auto module = Module({"--fault", "silent"});
  const NextModal setup([](QWidget& form) {
    Find<QTabWidget>(form, u"tabSetupFolder"_qs).setCurrentIndex(6);
    Later(Ms{1300}, [] {
      for (QWidget* const other : QApplication::topLevelWidgets()) {
        if (auto* const window = qobject_cast<MainWindow*>(other)) {
          window->close();
        }
      }
    });
    Find<QPushButton>(form, u"cmdTestKRM"_qs).click();
  });
  EXPECT_EQ(
      Run([](MainWindow& window) { window.findChild<QAction*>(u"mnuToolsSetup"_qs)->trigger(); }),
      0);
  EXPECT_TRUE(setup.Seen());
}

}  // namespace
}  // namespace vrx::testing
