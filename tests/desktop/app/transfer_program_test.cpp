#include <QApplication>
#include <QFileDialog>
#include <QLabel>
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

#include "desktop/app/program.h"
#include "desktop/next_modal.h"
#include "support/environment.h"
#include "support/fixed_system_info.h"
#include "support/program.h"
#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using Ms = std::chrono::milliseconds;

// The whole program with the simulated module on its serial port 2, closed in the middle of
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
    vrx::Program program(system_);
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

// During its check, during its clear and before its text.
TEST_F(TransferProgram, ClosedDuringADownloadItEnds) {
  const auto module = Module();
  folder_.Write("data/Brantock/VRX-2260/A.RBU", "{DATA_IN},L\r\n");
  for (const Ms when : {Ms{200}, Ms{2000}, Ms{3500}}) {
    const NextModal chooser([&](QWidget& dialog) {
      auto& files = dynamic_cast<QFileDialog&>(dialog);
      files.selectFile(QString::fromStdString((data_ / "A.RBU").string()));
      QMetaObject::invokeMethod(&files, "accept");
    });
    EXPECT_EQ(Run([when](MainWindow& window) {
                Find<QPushButton>(window, u"cmdDownloadRecipeToKRM"_qs).click();
                Find<QPushButton>(window, u"cmdOpenRecipeBU"_qs).click();
                EXPECT_EQ(Find<QLabel>(window, u"lblStatusWindow"_qs).text(),
                          u"Recipe backup-file opened, ready to download."_qs);
                const NextModal question([&](QWidget& box) {
                  Later(when, [&window] { window.close(); });
                  dynamic_cast<QMessageBox&>(box).button(QMessageBox::Yes)->click();
                });
                Find<QPushButton>(window, u"cmdDownloadRecipeBU"_qs).click();
                EXPECT_TRUE(question.Seen());
              }),
              0);
    EXPECT_TRUE(chooser.Seen());
  }
}

// While the port is closed before its opening, and while it is closed for the module again.
TEST_F(TransferProgram, ClosedDuringAChangeOfConnectionItEnds) {
  const auto module = Module();
  EXPECT_EQ(Run([](MainWindow& window) {
              Later(Ms{200}, [&window] { window.close(); });
              Find<QRadioButton>(window, u"optConnection(1)"_qs).click();
            }),
            0);
  EXPECT_EQ(Run([](MainWindow& window) {
              Later(Ms{1000}, [&window] {
                Later(Ms{200}, [&window] { window.close(); });
                Find<QRadioButton>(window, u"optConnection(0)"_qs).click();
              });
              Find<QRadioButton>(window, u"optConnection(1)"_qs).click();
            }),
            0);
}

// An answer takes 1600 ms.
TEST_F(TransferProgram, ClosedWhileItAnswersTheIndicatorItEnds) {
  const std::string script = folder_.Write("script", "wait 1500\nsend 15\nwait 60000\n").string();
  for (const Ms behind : {Ms{300}, Ms{1200}}) {
    const Program indicator(
        VRX_BIN_DIR "/vrx2260sim",
        {"indicator", "--link", (data_ / "Ports/COM2").string(), "--script", script},
        folder_.Path().string());
    EXPECT_EQ(Run([behind](MainWindow& window) {
                Later(Ms{1700} + behind, [&window] { window.close(); });
                Find<QRadioButton>(window, u"optConnection(1)"_qs).click();
              }),
              0);
  }
}

TEST_F(TransferProgram, ClosedInADirectConnectionItEnds) {
  const auto module = Module();
  for (const QString& way : {u"close box"_qs, u"mnuFileExit"_qs}) {
    bool direct = false;
    EXPECT_EQ(Run([&](MainWindow& window) {
                Later(Ms{1000}, [&window, &direct, way] {
                  direct = Find<QRadioButton>(window, u"optConnection(1)"_qs).isChecked();
                  if (auto* const exit = window.findChild<QAction*>(way); exit != nullptr) {
                    exit->trigger();
                  } else {
                    window.close();
                  }
                });
                Find<QRadioButton>(window, u"optConnection(1)"_qs).click();
              }),
              0);
    EXPECT_TRUE(direct);
  }
}

TEST_F(TransferProgram, ClosedWhileABoxReportsTheUploadItEnds) {
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

// Each command while it waits for the module, and the preceding close of the line.
TEST_F(TransferProgram, ClosedWhileSetupWorksWithTheModuleItEnds) {
  const auto module = Module({"--fault", "silent"});
  struct Case {
    const char* button;
    Ms when;
  };
  for (const auto& [button, when] : {Case{"cmdTestKRM", Ms{1300}}, Case{"cmdClearKRM", Ms{1300}},
                                     Case{"cmdSetBaud", Ms{200}}, Case{"cmdSetBaud", Ms{1300}}}) {
    const NextModal setup([button = button, when = when](QWidget& form) {
      Find<QTabWidget>(form, u"tabSetupFolder"_qs).setCurrentIndex(6);
      const NextModal question([](QWidget& box) {
        if (auto* const clear = qobject_cast<QMessageBox*>(&box)) {
          clear->button(QMessageBox::Yes)->click();
        }
      });
      Later(when, [] {
        for (QWidget* const other : QApplication::topLevelWidgets()) {
          if (auto* const window = qobject_cast<MainWindow*>(other)) {
            window->close();
          }
        }
      });
      Find<QPushButton>(form, QString::fromLatin1(button)).click();
    });
    EXPECT_EQ(
        Run([](MainWindow& window) { window.findChild<QAction*>(u"mnuToolsSetup"_qs)->trigger(); }),
        0);
    EXPECT_TRUE(setup.Seen());
  }
}

}  // namespace
}  // namespace vrx::testing
