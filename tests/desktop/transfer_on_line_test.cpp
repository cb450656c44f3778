#include <QTest>
#include <QTimer>
#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

#include "adapters/qt_event_pump.h"
#include "adapters/qt_serial_control.h"
#include "desktop/transfer_site.h"
#include "end_to_end/program.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using Ms = std::chrono::milliseconds;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::StartsWith;

const std::string kTransactions = "{BAT/FED},L\r\n[BAT],B,1\r\n\r\n";
const std::string kReport = "{REPORT}\r\npage \xE9\r\n";
const std::string kBackup = "{DATA_IN},L\r\n\r\n[ING]\r\n\r\n1,CORN,0\r\n";

// The Data Transfer tab on a serial line with the simulator at its other end, in real time.
class TransferOnLine : public TransferSite {
 protected:
  TransferOnLine() {
    main_ = std::make_unique<VrxMain>(VrxMain::Ports{.op = operator_,
                                                     .files = chooser_,
                                                     .user_settings = user_settings_,
                                                     .calendar = calendar_,
                                                     .system = system_,
                                                     .pump = events_,
                                                     .serial = line_,
                                                     .app_folder = *app_folder_,
                                                     .ini = *ini_,
                                                     .settings = settings_,
                                                     .exit = exit_});
    ShowTab();
  }

  // Not paced like the real line.
  std::unique_ptr<Program> Simulate(std::vector<std::string> args) const {
    args.insert(args.begin() + 1, {"--link", link_.string()});
    auto simulator =
        std::make_unique<Program>(VRX_BIN_DIR "/vrx2260sim", args, folder_.Path().string());
    EXPECT_TRUE(simulator->WaitForOutput("ready ")) << simulator->Err();
    return simulator;
  }
  std::unique_ptr<Program> Module(const std::string& memory,
                                  const std::vector<std::string>& more = {}) const {
    std::vector<std::string> args = {"module", "--baud", "0", "--load",
                                     folder_.Write("memory", memory).string()};
    args.insert(args.end(), more.begin(), more.end());
    return Simulate(args);
  }

  static void Later(Ms delay, std::function<void()> act) {
    QTimer::singleShot(delay, qApp, std::move(act));
  }
  void Upload() { Click(u"cmdUploadDataFromKRM"_qs); }

  // A first upload fails by the fault, whatever it is; the next one, of a sound module, is whole.
  void FailsThenWorks(const std::string& fault) {
    {
      const auto module = Module(kTransactions, {"--fault", fault});
      Upload();
      EXPECT_THAT(operator_.Status(), StartsWith("Error: "));
      EXPECT_EQ(operator_.status_color, StatusColor::kRed);
      EXPECT_FALSE(operator_.busy);
      EXPECT_EQ(List().count(), 0);
    }
    fs::remove(link_);
    const auto module = Module(kTransactions);
    Upload();
    EXPECT_EQ(operator_.status_color, StatusColor::kGreen) << operator_.Status();
    EXPECT_THAT(Rows(), ElementsAre("Transaction File - 1"));
  }

  fs::path link_ = folder_ / "line";
  QtEventPump events_;
  QtSerialControl line_{[this](int) { return link_.string(); }};
};

TEST_F(TransferOnLine, FilesOfEveryKindAreUploadedAndSavedByteForByte) {
  const auto module = Module(kTransactions + kBackup + kReport);
  Upload();
  EXPECT_THAT(operator_.Status(), HasSubstr("3 files)"));
  const std::vector<std::pair<std::string, std::string>> files{
      {"A.QXT", kTransactions}, {"A.RBU", kBackup}, {"A.TXT", kReport}};
  for (int row = 0; row < 3; ++row) {
    const auto& [name, bytes] = files.at(static_cast<std::size_t>(row));
    ClickBox(row);
    chooser_.Choose(folder_ / name);
    Click(u"cmdSaveFile"_qs);
    EXPECT_EQ(ReadAll(folder_ / name), bytes);
  }
}

TEST_F(TransferOnLine, TheWindowAnswersDuringAnUpload) {
  const auto module = Module(kTransactions);
  int changes = 0;
  for (const Ms when : {Ms{300}, Ms{1200}, Ms{2100}, Ms{2900}}) {
    Later(when, [this, &changes] {
      const int other = Tabs().currentIndex() == kTabImport ? kTabDataTransfer : kTabImport;
      QTest::mouseClick(Tabs().tabBar(), Qt::LeftButton, {},
                        Tabs().tabBar()->tabRect(other).center());
      changes += Tabs().currentIndex() == other && operator_.busy ? 1 : 0;
    });
  }
  Upload();
  EXPECT_EQ(changes, 4);
  EXPECT_EQ(operator_.status_color, StatusColor::kGreen);
}

TEST_F(TransferOnLine, AModuleThatBreaksOffFailsAndTheNextTryWorks) {
  FailsThenWorks("cut-after=20");
}

TEST_F(TransferOnLine, ALineThatHangsUpFailsAndTheNextTryWorks) { FailsThenWorks("hang-up=20"); }

TEST_F(TransferOnLine, ASilentModuleFailsAndTheNextTryWorks) { FailsThenWorks("silent"); }

TEST_F(TransferOnLine, ALinePulledAtAnyMomentFailsAndTheNextTryWorks) {
  for (const Ms when : {Ms{200}, Ms{1100}, Ms{2300}}) {
    {
      auto module = Module(kTransactions);
      Later(when, [&] { module.reset(); });
      Upload();
      EXPECT_EQ(operator_.status_color, StatusColor::kRed) << when.count();
    }
    fs::remove(link_);
  }
  const auto module = Module(kTransactions);
  Upload();
  EXPECT_EQ(operator_.status_color, StatusColor::kGreen) << operator_.Status();
}

TEST_F(TransferOnLine, AnEditedBackupStandsInTheModuleAsItWasEdited) {
  const fs::path saved = folder_ / "saved";
  const auto module = Module("old", {"--save", saved.string()});
  Click(u"cmdDownloadRecipeToKRM"_qs);
  chooser_.Choose(folder_.Write("A.RBU", kBackup));
  Click(u"cmdOpenRecipeBU"_qs);
  auto& window = Find<QPlainTextEdit>(u"txtDataWindow"_qs);
  window.moveCursor(QTextCursor::End);
  QTest::keyClicks(&window, "2,HAY,0");
  operator_.answers = {Answer::kYes};
  Click(u"cmdDownloadRecipeBU"_qs);
  EXPECT_EQ(operator_.status_color, StatusColor::kGreen) << operator_.Status();
  module->Signal(SIGTERM);
  module->Wait();
  EXPECT_EQ(ReadAll(saved), kBackup + "2,HAY,0");
}

TEST_F(TransferOnLine, ADatabaseStandsInTheModuleAsItIsShown) {
  const fs::path saved = folder_ / "saved";
  const auto module = Module("old", {"--save", saved.string()});
  Open(DatabaseKind::kRecipe);
  Window().Tabs().SelectTab(kTabDataTransfer);
  Click(u"cmdDownloadRecipeToKRM"_qs);
  operator_.answers = {Answer::kYes};
  Click(u"cmdDownloadRecipeDB"_qs);
  EXPECT_EQ(operator_.status_color, StatusColor::kGreen) << operator_.Status();
  module->Signal(SIGTERM);
  module->Wait();
  EXPECT_THAT(ReadAll(saved), StartsWith("{DATA_IN},L\r\n"));
  EXPECT_EQ(ReadAll(saved), Find<DataWindow>(u"txtDataWindow"_qs).Bytes());
}

TEST_F(TransferOnLine, AnIndicatorSendsAndFetchesWhileAnotherTabIsUsed) {
  const fs::path data = folder_.Write("data", kTransactions);
  const fs::path reply = folder_.Write("reply", "\x15\x1f" + kTransactions + "\x1f");
  const fs::path script =
      folder_.Write("script", "wait 2000\nsend-file " + data.string() +
                                  "\nwait 1000\nsend 15\nexpect-file " + reply.string() +
                                  " within 10000\nsend 14\nexpect 14 1F within 10000\nwait 3000\n");
  const auto indicator = Simulate({"indicator", "--script", script.string()});
  constexpr const char* kCleared = "Received <DC4>, cleared memory.";
  Later(Ms{1500}, [&] { Window().Tabs().SelectTab(kTabImport); });
  QTimer poll;
  QObject::connect(&poll, &QTimer::timeout, [&] {
    const auto& told = operator_.status_lines;
    if (std::find(told.begin(), told.end(), kCleared) != told.end()) {
      poll.stop();
      EXPECT_EQ(Tabs().currentIndex(), kTabImport);
      Window().Tabs().SelectTab(kTabDataTransfer);
      Click(u"optConnection(0)"_qs);
    }
  });
  poll.start(Ms{50});
  Click(u"optConnection(1)"_qs);
  EXPECT_EQ(indicator->Wait(), 0) << indicator->Err();
  EXPECT_THAT(operator_.status_lines, Contains("Received <NAK>, transmitted memory."));
  EXPECT_THAT(operator_.status_lines, Contains(kCleared));
}

TEST_F(TransferOnLine, ADirectConnectionWhoseLineIsPulledEndsAndTheNextOneStands) {
  const fs::path script = folder_.Write("script", "wait 60000\n");
  {
    auto indicator = Simulate({"indicator", "--script", script.string()});
    Later(Ms{1500}, [&] { indicator.reset(); });
    Click(u"optConnection(1)"_qs);
    EXPECT_EQ(LastBox().text, "The direct-connection has ended: Serial line lost.");
    EXPECT_TRUE(Find<QRadioButton>(u"optConnection(0)"_qs).isChecked());
  }
  fs::remove(link_);
  const auto indicator = Simulate({"indicator", "--script", script.string()});
  bool stood = false;
  Later(Ms{1500}, [&] {
    stood = line_.PortOpen() && Find<QRadioButton>(u"optConnection(1)"_qs).isChecked();
    Click(u"optConnection(0)"_qs);
  });
  Click(u"optConnection(1)"_qs);
  EXPECT_TRUE(stood);
}

}  // namespace
}  // namespace vrx::testing
