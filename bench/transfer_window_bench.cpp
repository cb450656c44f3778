// The operator's waits on the transfer tabs: for the records of a full transaction file, and for
// the response to a click while a full module is transferred.

#include <QApplication>
#include <QEvent>
#include <QMouseEvent>
#include <QPushButton>
#include <QTimer>
#include <algorithm>
#include <chrono>
#include <string>
#include <string_view>
#include <vector>

#include <benchmark/benchmark.h>

#include "adapters/qt_event_pump.h"
#include "adapters/qt_serial_control.h"
#include "desktop/transfer/import_page.h"
#include "link/krmcomm.h"
#include "settings/settings.h"
#include "simulated_module.h"
#include "support/temp_folder.h"
#include "support/test_services.h"

namespace {

using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

constexpr double kLongestShow = 0.2;   // seconds
constexpr double kLongestClick = 0.1;  // seconds
constexpr std::size_t kFullFile = 65'535;

Seconds Since(Clock::time_point start) { return Clock::now() - start; }

// As many batches of 32 ingredients, each fed to three pens, as a transaction file may hold.
std::string FullFile() {
  std::string batches;
  std::string feeds;
  const auto list = [](const char* entry) {
    std::string text;
    for (int i = 0; i < 32; ++i) {
      text.append(entry).append(",");
    }
    return text + "0,0";
  };
  for (int number = 1;; ++number) {
    std::string ids;
    for (int id = 1; id <= 32; ++id) {
      ids += std::to_string(id) + ',';
    }
    const std::string batch = "B," + std::to_string(number) + ",3,01152009,2," + ids + "0,0;" +
                              list("0830") + ';' + list("100") + ';' + list("101") + "\r\n";
    std::string fed;
    for (const char* const pen : {"12", "13", "14"}) {
      fed += "B," + std::to_string(number) + ',' + pen + ",2,0915,01152009,750,748\r\n";
    }
    if (batches.size() + batch.size() + feeds.size() + fed.size() + 40 > kFullFile) {
      break;
    }
    batches += batch;
    feeds += fed;
  }
  return "{BAT/FED},L\r\n[BAT]," + batches + "\r\n[FED]," + feeds + "\r\n";
}

std::string Repeated(std::string_view piece, std::size_t times) {
  std::string text;
  for (std::size_t i = 0; i < times; ++i) {
    text += piece;
  }
  return text;
}

// A damaged file with the largest accepted number of rows: each "B," is counted as a batch of the
// whole list of times.
std::string CrowdedFile() {
  return "{BAT/FED},L\r\n[BAT],B,1,3,01152009,2,4,0," + Repeated("B,", 999) + "0;" +
         Repeated("0830,", 100) + "0,0;1,0,0;1,0,0\r\n\r\n[FED],\r\n\r\n";
}

// A file whose rows share a field of half the file's length.
std::string WideFile() {
  return "{BAT/FED},L\r\n[BAT],B,1," + std::string(32'000, '3') +
         ",01152009,2,4,0,0;0830,0,0;1,0,0;1,0,0\r\n\r\n[FED]," + Repeated("B,1,,,,,,\r\n", 3000) +
         "\r\n";
}

// The import and its grid without the rest of the window.
class ImportScreen : public vrx::ImportView, public vrx::ProgressDisplay {
 public:
  ImportScreen() {
    grid_.resize(1000, 480);
    grid_.show();
    QApplication::processEvents();
  }

  bool Import(const std::filesystem::path& file) {
    const bool imported = session_.ImportFile({file.string(), file.filename().string()});
    grid_.grab();
    return imported;
  }
  int Rows() const { return session_.File().FileRecordCount(); }

  vrx::OpenDatabases Databases() const override { return {}; }
  std::vector<vrx::IngredientRecord> GridIngredients() override {
    std::vector<vrx::IngredientRecord> records;
    for (int id = 1; id <= vrx::kIngredientCount; ++id) {
      records.push_back({.id = id, .name = "ING" + std::to_string(id)});
    }
    return records;
  }
  void SelectImportTab() override { session_.EnterImportTab(); }
  void FocusControl(std::string_view /*name*/) override {}
  void SaveTransactionDatabase() override {}
  void ImportChanged() override { grid_.ShowImport(); }
  void SetProgressMessage(std::string_view /*text*/) override {}
  void SetProgressRange(int /*maximum*/) override {}
  void SetProgressValue(int /*value*/) override {}

 private:
  vrx::testing::TestServices test_;
  vrx::ImportPresenter session_{test_.services, *this, *this};
  vrx::ImportGrid grid_{session_};
};

void ImportOnTheScreen(benchmark::State& state, const std::string& text) {
  const vrx::testing::TempFolder folder;
  const std::filesystem::path file = folder.Write("file.qxt", text);
  ImportScreen screen;
  double longest = 0;
  for ([[maybe_unused]] auto iteration : state) {
    const auto start = Clock::now();
    if (!screen.Import(file)) {
      state.SkipWithError("the file is not imported");
      break;
    }
    longest = std::max(longest, Since(start).count());
  }
  state.counters["rows"] = screen.Rows();
  state.counters["longest_s"] = longest;
  if (longest > kLongestShow) {
    state.SkipWithError("longer than the operator is to wait");
  }
}
BENCHMARK_CAPTURE(ImportOnTheScreen, Full, FullFile())->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ImportOnTheScreen, Crowded, CrowdedFile())->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ImportOnTheScreen, Wide, WideFile())->Unit(benchmark::kMillisecond);

// Clicks a button at regular intervals and records the response times.
class Clicker {
 public:
  Clicker() {
    button_.show();
    QObject::connect(&button_, &QPushButton::clicked,
                     [this] { answers_.push_back(Since(posted_).count()); });
    QObject::connect(&rhythm_, &QTimer::timeout, [this] { Post(); });
    rhythm_.start(std::chrono::milliseconds{37});
  }

  const std::vector<double>& Answers() const { return answers_; }

 private:
  void Post() {
    posted_ = Clock::now();
    const QPointF middle = button_.rect().center();
    for (const QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
      const Qt::MouseButtons held =
          type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton;
      QApplication::postEvent(&button_, new QMouseEvent(type, middle, button_.mapToGlobal(middle),
                                                        Qt::LeftButton, held, Qt::NoModifier));
    }
  }

  QPushButton button_;
  QTimer rhythm_;
  Clock::time_point posted_;
  std::vector<double> answers_;
};

void ClickDuringAnUpload(benchmark::State& state) {
  const vrx::testing::TempFolder folder;
  const vrx::bench::SimulatedModule module(folder, kFullFile);
  vrx::QtEventPump pump;
  vrx::QtSerialControl serial([&](int) { return module.Device(); });
  vrx::testing::RecordingOperator op;
  const vrx::PrivateINI settings;
  vrx::KRMCOMM krm(serial, pump, op, settings);
  const Clicker clicker;
  for ([[maybe_unused]] auto iteration : state) {
    if (!krm.KRM_OnlineCheck() || !krm.KRM_Dump()) {
      state.SkipWithError("the upload failed");
    }
  }
  const std::vector<double>& answers = clicker.Answers();
  if (answers.empty()) {
    state.SkipWithError("no click was answered");
    return;
  }
  const double longest = *std::max_element(answers.begin(), answers.end());
  state.counters["clicks"] = static_cast<double>(answers.size());
  state.counters["longest_ms"] = longest * 1000;
  if (longest > kLongestClick) {
    state.SkipWithError("a click waited longer than the operator is to wait");
  }
}
BENCHMARK(ClickDuringAnUpload)->Unit(benchmark::kSecond)->Iterations(1);

}  // namespace

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QApplication application(argc, argv);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
