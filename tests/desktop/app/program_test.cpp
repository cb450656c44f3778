#include "desktop/app/program.h"

#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>
#include <QMetaObject>
#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <functional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desktop/app/recorded_main_form.h"
#include "desktop/next_modal.h"
#include "presenter/command_states.h"
#include "support/environment.h"
#include "support/fixed_system_info.h"
#include "support/program.h"
#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::Contains;
using ::testing::HasSubstr;
using Ms = std::chrono::milliseconds;

constexpr const char* kIni = "[Comments]\nTitle=x\n";

// From the event loop that runs next.
void Later(std::function<void()> call) {
  QMetaObject::invokeMethod(qApp, std::move(call), Qt::QueuedConnection);
}

// The program with a main form that the test makes.
class ProgramWithForm : public vrx::Program {
 public:
  using Make = std::function<std::unique_ptr<ProgramForm>(ProgramWithForm&)>;

  ProgramWithForm(const SystemInfo& system, Make make, std::vector<fs::path> files = {})
      : Program(system, std::move(files)), make_(std::move(make)) {}

  using vrx::Program::GetServices;

 protected:
  std::unique_ptr<ProgramForm> MakeMainForm() override { return make_(*this); }

 private:
  Make make_;
};

// A user of the program: folders of its own for data, settings and running programs.
class UserSite : public ::testing::Test {
 protected:
  UserSite() {
    fs::create_directories(data_ / "Brantock/VRX-2260");
    fs::create_directory(folder_ / "config");
    fs::create_directory(folder_ / "run");
    fs::permissions(folder_ / "run", fs::perms::owner_all);
    folder_.Write("data/Brantock/VRX-2260/VRX-2260.INI", kIni);
  }

  static bool Eventually(const std::function<bool()>& condition) {
    constexpr int kPolls = 3000;
    for (int polls = 0; polls < kPolls && !condition(); ++polls) {
      std::this_thread::sleep_for(Ms{10});
    }
    return condition();
  }

  // The built program in a process of its own, once it is past the question whether it is the only
  // one.
  std::unique_ptr<Program> StartProgram() {
    auto program = std::make_unique<Program>(VRX_BIN_DIR "/vrx2260", std::vector<std::string>{},
                                             folder_.Path().string());
    EXPECT_TRUE(Eventually([&] { return fs::exists(lock_) && !program->Err().empty(); }));
    return program;
  }

  // Every file below the data folder with its bytes and the time of its last change.
  std::vector<std::string> DataFiles() const {
    std::vector<std::string> files;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(data_)) {
      const auto changed = entry.last_write_time().time_since_epoch().count();
      files.push_back(entry.path().string() + ' ' + std::to_string(changed) + ' ' +
                      (entry.is_regular_file() ? ReadAll(entry.path()) : ""));
    }
    std::sort(files.begin(), files.end());
    return files;
  }

  TempFolder folder_;
  fs::path data_ = folder_ / "data";
  fs::path lock_ = folder_ / "run/vrx2260.lock";
  Environment data_home_{"XDG_DATA_HOME", data_.string()};
  Environment config_home_{"XDG_CONFIG_HOME", (folder_ / "config").string()};
  Environment runtime_{"XDG_RUNTIME_DIR", (folder_ / "run").string()};
};

class TwoProcesses : public UserSite {};

TEST_F(TwoProcesses, SecondStartTouchesNothingAndLeavesTheFirstRunning) {
  const auto first = StartProgram();
  // Its settings are repaired by now, and nothing else is written before the exit.
  ASSERT_TRUE(Eventually([&] {
    return ReadAll(data_ / "Brantock/VRX-2260/VRX-2260.INI").find("PrintGridLines") !=
           std::string::npos;
  }));
  const std::vector<std::string> before = DataFiles();
  const auto second = StartProgram();
  EXPECT_EQ(DataFiles(), before);
  EXPECT_FALSE(fs::exists(folder_ / "config/Brantock"));
  second->Signal(SIGTERM);
  second->Wait();
  EXPECT_EQ(DataFiles(), before);
  EXPECT_TRUE(fs::exists(lock_));
  first->Signal(SIGTERM);
  EXPECT_EQ(first->Wait(), 0);
}

TEST_F(TwoProcesses, SecondStartIsReportedWhileTheFirstRuns) {
  const auto first = StartProgram();
  QString text;
  QString title;
  const NextModal modal([&](QWidget& widget) {
    text = dynamic_cast<QMessageBox&>(widget).text();
    title = widget.windowTitle();
    widget.close();
  });
  const FixedSystemInfo system;
  ProgramWithForm program(system, [](ProgramWithForm& /*program*/) {
    ADD_FAILURE() << "the main window is made";
    return std::unique_ptr<ProgramForm>();
  });
  EXPECT_EQ(program.Run(), 1);
  EXPECT_EQ(text,
            u"The VRX(2260) application is already running.It might be minimized or hidden by "
            u"another window."_qs);
  EXPECT_EQ(title, u"VRX(2260)"_qs);
}

TEST_F(TwoProcesses, CrashDoesNotBlockTheNextStart) {
  const auto first = StartProgram();
  first->Signal(SIGKILL);
  first->Wait();
  EXPECT_TRUE(fs::exists(lock_));
  LockFile next;
  EXPECT_TRUE(next.Claim());
}

TEST_F(TwoProcesses, StopSignalSavesAndEndsTheProgram) {
  const auto program = StartProgram();
  program->Signal(SIGTERM);
  EXPECT_EQ(program->Wait(), 0);
  EXPECT_FALSE(fs::exists(lock_));
  EXPECT_THAT(ReadAll(folder_ / "config/Brantock/VRX(2260).conf"), HasSubstr("MainWidth="));
}

TEST_F(TwoProcesses, StopSignalEndsAFirstStartThatStillReportsItsSettings) {
  fs::remove(data_ / "Brantock/VRX-2260/VRX-2260.INI");
  const auto program = StartProgram();
  program->Signal(SIGTERM);
  EXPECT_EQ(program->Wait(), 0);
  EXPECT_FALSE(fs::exists(lock_));
}

// The whole program in this process, with a main form that is only recorded.
class RunningProgram : public UserSite {
 protected:
  RunningProgram() {
    system_.common_app_data_folder = data_.string();
    system_.program_directory = VRX_BIN_DIR;
  }

  // Runs the program; `once_shown` is called from its event loop.
  int Run(const std::function<void(ProgramWithForm&)>& once_shown,
          const std::string& fails_at = {}) {
    ProgramWithForm program(system_, [&](ProgramWithForm& made) {
      auto form = std::make_unique<RecordedMainForm>([&, once_shown](const std::string& step) {
        steps_.push_back(step);
        if (step == "Show") {
          Later([&, once_shown] { once_shown(made); });
        }
      });
      form->fails_at = fails_at;
      form_ = form.get();
      return form;
    });
    return program.Run();
  }

  std::ptrdiff_t PlaceOf(const std::string& step) const {
    EXPECT_THAT(steps_, Contains(step));
    return std::find(steps_.begin(), steps_.end(), step) - steps_.begin();
  }

  FixedSystemInfo system_;
  std::vector<std::string> steps_;
  RecordedMainForm* form_ = nullptr;
};

TEST_F(RunningProgram, ExitEndsAWaitAndGoesOnOnceThatHasUnwound) {
  const int code = Run([&](ProgramWithForm& program) {
    Later([&program] { program.Leave(ExitReason::kFileExit); });
    const bool complete = GeneralDelay(program.GetServices().pump).Wait(std::chrono::hours{1});
    steps_.emplace_back(complete ? "waited" : "unwound");
  });
  EXPECT_EQ(code, 0);
  EXPECT_LT(PlaceOf("unwound"), PlaceOf("CloseSerialPort"));
  EXPECT_EQ(steps_.back(), "Unload");
}

TEST_F(RunningProgram, SessionEndClosesADialogAndGoesOnOnceThatHasUnwound) {
  const int code = Run([&](ProgramWithForm& program) {
    Later([&program] { program.Leave(ExitReason::kSessionEnd); });
    const Answer answer = program.GetServices().op.ShowMessage(
        {.buttons = Buttons::kOkCancel, .title = "Standby", .text = "Go on?"});
    steps_.emplace_back(answer == Answer::kCancel ? "refused" : "gone on");
  });
  EXPECT_EQ(code, 0);
  EXPECT_LT(PlaceOf("refused"), PlaceOf("CloseRecipeDatabase"));
}

TEST_F(RunningProgram, CloseBoxThatFailsLeavesTheProgramUpAndItsWaitsAlive) {
  const int code = Run(
      [&](ProgramWithForm& program) {
        program.Leave(ExitReason::kCloseBox);
        Later([this, &program] {
          EXPECT_EQ(steps_.back(), "ReleaseDataControls");
          EXPECT_TRUE(GeneralDelay(program.GetServices().pump).Wait(Ms{1}));
          form_->fails_at.clear();
          program.Leave(ExitReason::kCloseBox);
        });
      },
      "ReleaseDataControls");
  EXPECT_EQ(code, 0);
  EXPECT_EQ(steps_.back(), "Unload");
}

TEST_F(RunningProgram, GivesItsFilesToTheFormOnceItIsShown) {
  ProgramWithForm program(system_,
                          [&](ProgramWithForm& made) {
                            return std::make_unique<RecordedMainForm>([&](const std::string& step) {
                              steps_.push_back(step);
                              if (step == "Show") {
                                Later([&made] { made.Leave(ExitReason::kFileExit); });
                              }
                            });
                          },
                          {"/a.rdb", "/b.qxt"});
  EXPECT_EQ(program.Run(), 0);
  EXPECT_EQ(PlaceOf("open /a.rdb"), PlaceOf("Show") + 1);
  EXPECT_EQ(PlaceOf("open /b.qxt"), PlaceOf("Show") + 2);
}

TEST_F(RunningProgram, EndOfTheSessionDuringTheSplashEndsTheFormUnshown) {
  ProgramWithForm program(system_, [&](ProgramWithForm& made) {
    Later([&made] { made.Leave(ExitReason::kSessionEnd); });
    return std::make_unique<RecordedMainForm>(
        [&](const std::string& step) { steps_.push_back(step); });
  });
  EXPECT_EQ(program.Run(), 0);
  EXPECT_EQ(steps_.front(), "CloseRecipeDatabase");
  EXPECT_EQ(steps_.back(), "Unload");
}

TEST_F(RunningProgram, EndOfTheSessionClosesEachDialogOfTheStart) {
  ProgramWithForm program(system_, [&](ProgramWithForm& made) {
    Later([&made] { made.Leave(ExitReason::kSessionEnd); });
    made.GetServices().op.ShowMessage({.title = "First", .text = "text"});
    made.GetServices().op.ShowMessage({.title = "Second", .text = "text"});
    return std::make_unique<RecordedMainForm>(
        [&](const std::string& step) { steps_.push_back(step); });
  });
  EXPECT_EQ(program.Run(), 0);
  EXPECT_EQ(steps_.back(), "Unload");
}

TEST_F(RunningProgram, RefusedStartEndsWithAFailure) {
  system_.program_directory = folder_.Path().string();
  QString title;
  const NextModal modal([&](QWidget& widget) {
    title = widget.windowTitle();
    widget.close();
  });
  EXPECT_EQ(Run([](ProgramWithForm& /*program*/) {}), 1);
  EXPECT_EQ(title, u"Missing Files"_qs);
}

}  // namespace
}  // namespace vrx::testing
