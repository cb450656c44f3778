// How long the window does not answer while the tab Insight reads, shows and is used with years of
// records: the longest event of each question about all records and of what is done with its
// answer. Real widgets and the real event loop, drawn without a display.
//
//   insight_page_bench YEARS.TDB    a database of make_years

#include <QApplication>
#include <QComboBox>
#include <QElapsedTimer>
#include <QListWidget>
#include <QMouseEvent>
#include <QScrollBar>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <exception>
#include <filesystem>
#include <functional>
#include <string>
#include <utility>

#include "adapters/qt_event_pump.h"
#include "database/bound_database.h"
#include "desktop/insight/insight_page.h"
#include "figures.h"
#include "presenter/command_states.h"
#include "presenter/services.h"
#include "support/test_services.h"

namespace vrx::bench {
namespace {

constexpr double kEventLimit = 50;      // ms
constexpr double kLongestAnswer = 300;  // s
constexpr std::chrono::milliseconds kBusyTimeout{1000};

// The processor time of the thread, independent of other load on the machine.
double ThreadMilliseconds() {
  timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

// Times each event, with those that it sends.
class TimedApplication : public QApplication {
 public:
  using QApplication::QApplication;

  bool notify(QObject* receiver, QEvent* event) override {
    if (running_) {
      return QApplication::notify(receiver, event);
    }
    running_ = true;
    const QEvent::Type type = event->type();
    const std::string name = receiver->metaObject()->className();
    const double before = ThreadMilliseconds();
    const bool taken = QApplication::notify(receiver, event);
    const double milliseconds = ThreadMilliseconds() - before;
    if (milliseconds > longest_) {
      longest_ = milliseconds;
      what_ = name + ", type " + std::to_string(type);
    }
    running_ = false;
    return taken;
  }

  // The longest event since the last call, and what it was.
  std::pair<double, std::string> TakeLongest() {
    return {std::exchange(longest_, 0), std::exchange(what_, {})};
  }

 private:
  bool running_ = false;
  double longest_ = 0;
  std::string what_;
};

class InsightPageBench {
 public:
  InsightPageBench(TimedApplication& application, const std::filesystem::path& transactions)
      : application_(application), transactions_(BindUserDatabase(transactions, kBusyTimeout)) {
    page_.resize(1024, 560);
    page_.Rebind(DatabaseKind::kTransaction, transactions_);
    page_.show();
    page_.Prepare();
  }
  ~InsightPageBench() { page_.ReleaseViews(); }
  InsightPageBench(const InsightPageBench&) = delete;
  InsightPageBench& operator=(const InsightPageBench&) = delete;

  int Run() {
    std::printf("%-60s %9s  %7s\n", "longest event of the window, ms", "figure", "limit");
    Answered("accuracy of loading");
    Use("accuracy of loading");
    for (int picture = 1; picture <= 3; ++picture) {
      Activate("cboInsightPicture", picture);
      Answered("accuracy of loading, picture " + std::to_string(picture + 1));
    }
    Ask(InsightTopic::kDelivery);
    Answered("accuracy of delivery");
    Ask(InsightTopic::kBalance);
    Answered("balance");
    Use("balance");
    Activate("cboInsightTable", 1);
    Answered("balance, all batches");
    Use("balance, all batches");
    Ask(InsightTopic::kDelivered);
    Answered("called and delivered");
    Use("called and delivered");
    Ask(InsightTopic::kTimes);
    Answered("times");
    return figures_.Over();
  }

 private:
  template <typename Control>
  Control& Find(const char* name) {
    return *page_.findChild<Control*>(QString::fromLatin1(name));
  }
  void Ask(InsightTopic topic) {
    Do([&] { Find<QListWidget>("lstInsight").setCurrentRow(static_cast<int>(topic)); });
  }
  void Activate(const char* list, int item) {
    Do([&] {
      auto& box = Find<QComboBox>(list);
      box.setCurrentIndex(item);
      Q_EMIT box.activated(item);
    });
  }
  // As an event of its own.
  void Do(const std::function<void()>& work) {
    QMetaObject::invokeMethod(&page_, work, Qt::QueuedConnection);
    QApplication::processEvents();
  }
  void Wait(double seconds) {
    QElapsedTimer time;
    time.start();
    while (static_cast<double>(time.elapsed()) < seconds * 1e3) {
      QApplication::processEvents(QEventLoop::WaitForMoreEvents, 10);
    }
  }
  void Print(const std::string& name) {
    const auto [longest, what] = application_.TakeLongest();
    figures_.Limited(name, longest, kEventLimit, what);
  }

  // From the question to the drawn answer.
  void Answered(const std::string& name) {
    QElapsedTimer time;
    time.start();
    while (!page_.Presenter().IsAnswered() &&
           static_cast<double>(time.elapsed()) < kLongestAnswer * 1e3) {
      QApplication::processEvents(QEventLoop::WaitForMoreEvents, 10);
    }
    constexpr double kToDraw = 0.5;
    Wait(kToDraw);
    Print(name + ", after " + std::to_string(time.elapsed() / 1000) + " s");
  }

  // Rows, the end of the table, the pointer on the picture, another size, another tab and back.
  void Use(const std::string& name) {
    auto& table = Find<InsightTable>("grdInsight");
    const auto rows = std::to_string(table.model()->rowCount());
    for (int row = 0; row < 40; ++row) {
      Do([&] { table.selectRow(std::min(row, table.model()->rowCount() - 1)); });
    }
    Print(name + ", rows of " + rows);
    Do([&] { table.scrollToBottom(); });
    Do([&] { table.selectRow(table.model()->rowCount() - 1); });
    Print(name + ", last row");
    auto& picture = Find<PictureView>("picInsight");
    for (int x = 60; x < 400; x += 20) {
      const QPointF at(x, 150);
      QMouseEvent move(QEvent::MouseMove, at, picture.viewport()->mapToGlobal(at), Qt::NoButton,
                       Qt::NoButton, Qt::NoModifier);
      QApplication::sendEvent(picture.viewport(), &move);
    }
    Print(name + ", pointer");
    Do([&] { page_.resize(1100, 600); });
    Wait(0.2);
    Do([&] { page_.resize(1024, 560); });
    Wait(0.2);
    Print(name + ", another size");
    Do([&] { page_.TabChanged(kTabPens, kTabInsight); });
    Do([&] { page_.Prepare(); });
    Wait(0.2);
    Print(name + ", another tab and back");
  }

  TimedApplication& application_;
  testing::TestServices test_;
  QtEventPump pump_;
  Services services_{.op = test_.op,
                     .files = test_.files,
                     .pump = pump_,
                     .programs = test_.programs,
                     .calendar = test_.calendar,
                     .system = test_.system,
                     .settings = test_.settings,
                     .folder = test_.folder,
                     .identity = test_.identity};
  BoundDatabase transactions_;
  InsightPage page_{services_};
  Figures figures_;
};

}  // namespace
}  // namespace vrx::bench

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: insight_page_bench YEARS.TDB\n");
    return 2;
  }
  try {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    vrx::bench::TimedApplication application(argc, argv);
    return vrx::bench::InsightPageBench(application, argv[1]).Run() == 0 ? 0 : 3;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "insight_page_bench: %s\n", error.what());
    return 1;
  }
}
