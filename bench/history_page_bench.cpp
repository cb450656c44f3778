// The costs of the Batched/Fed tab with a million records: a data group from its selection to the
// first screen, with all days, with a period of half of them and with differences, the totals of
// its closed groups, scrolling page by page and jumping to random positions without and with
// differences, everything expanded with a jump to the end, a search to its progress or its first
// row and to its end, typing the name of a group, and memory. Real widgets, drawn without a
// display.

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTimer>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <exception>
#include <functional>
#include <numeric>
#include <random>
#include <span>
#include <string>
#include <vector>

#include <SQLiteCpp/Statement.h>

#include "database/bound_database.h"
#include "desktop/history/history_page.h"
#include "figures.h"
#include "history/data_group.h"
#include "measure.h"
#include "presenter/command_states.h"
#include "presenter/services.h"
#include "settings/settings.h"
#include "support/manual_pump.h"
#include "support/test_services.h"
#include "widgets/qt_text.h"
#include "years.h"

namespace vrx::bench {
namespace {

constexpr double kScreenLimit = 300;  // ms
constexpr double kPageLimit = 16;     // ms: a frame of the display
constexpr double kMemoryLimit = 200;  // MB
constexpr double kSliceLimit = 50;    // ms: the delay of a key while totals are read
constexpr int kPages = 400;
constexpr int kJumps = 60;
constexpr std::chrono::milliseconds kBusyTimeout{1000};

std::string NameOf(const DataGroup& group) {
  return std::to_string(group.index) + " " + std::string(group.item);
}

// The processor time of the drawing thread, independent of other load on the machine.
double ProcessorMilliseconds(const std::function<void()>& work) {
  const auto now = [] {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
  };
  const double before = now();
  work();
  return now() - before;
}

double Slowest(const std::vector<double>& times) {
  return *std::max_element(times.begin(), times.end());
}

// Runs the next event at once, with the time of the machine.
class RealTimePump : public testing::ManualPump {
 public:
  vrx::Milliseconds Now() const override {
    return std::chrono::duration_cast<vrx::Milliseconds>(
        std::chrono::steady_clock::now().time_since_epoch());
  }
};

// The shown page of a yard.
class ShownPage {
 public:
  explicit ShownPage(const Years& years)
      : recipes_(BindUserDatabase(years.recipes, kBusyTimeout)),
        transactions_(BindUserDatabase(years.all, kBusyTimeout)) {
    page_.resize(1024, 560);
    page_.Rebind(DatabaseKind::kRecipe, recipes_);
    page_.Rebind(DatabaseKind::kTransaction, transactions_);
    page_.TabChanged(kTabBatchedFed, 0);
    page_.Prepare();
    page_.show();
    Settle();
  }
  ~ShownPage() { page_.ReleaseViews(); }
  ShownPage(const ShownPage&) = delete;
  ShownPage& operator=(const ShownPage&) = delete;

  void Choose(const DataGroup& group) {
    Activate("lstGroupBy", group.index);
    if (!group.named_column.empty()) {
      auto* const names = page_.findChild<QComboBox*>(QStringLiteral("cboColName"));
      Activate("cboColName", names->findText(ToQString(PickedName(group))));
    }
    Draw();
  }
  // Shows the later half of the days, up to the last one.
  void ShowHalfOfTheDays() {
    SQLite::Statement days(*transactions_.connection,
                           "SELECT date((julianday(min(Date)) + julianday(max(Date))) / 2), "
                           "max(Date) FROM Transactions");
    days.executeStep();
    page_.View()->TypeDays(days.getColumn(0).getString(), days.getColumn(1).getString());
    Draw();
  }
  void ShowDifferences(bool on) {
    page_.findChild<QCheckBox*>(QStringLiteral("chkDifferences"))->setChecked(on);
    Draw();
  }
  // Reads the sums that the screen waits for and returns the time of each step.
  std::vector<double> ReadSums() {
    std::vector<double> times;
    QTimer& timer = *Grid().findChild<QTimer*>(QStringLiteral("tmrReadSums"));
    while (timer.isActive()) {
      times.push_back(Milliseconds([] { QApplication::processEvents(); }));
    }
    return times;
  }
  void ExpandAll(bool on) {
    page_.findChild<QCheckBox*>(QStringLiteral("chkExpandAll"))->setChecked(on);
    Draw();
  }
  void Scroll(int to) {
    Bar().setValue(to);
    Draw();
  }
  // Types a text and goes to the first one at once.
  void StartFind(const QString& text) {
    page_.ShowFind();
    auto* const field = page_.findChild<QLineEdit*>(QStringLiteral("txtFind"));
    field->setText(text);
    Q_EMIT field->textEdited(text);
    page_.findChild<QPushButton*>(QStringLiteral("cmdFindNext"))->click();
    Draw();
  }
  // The first row is reached, or the progress is shown.
  bool FindHasAnswered() {
    return Grid().currentIndex().isValid() ||
           page_.findChild<QWidget*>(QStringLiteral("prgFind"))->isVisible();
  }
  bool FindRuns() { return page_.View()->Find().State().count.ends_with("..."); }
  // One slice of the search and what it shows.
  void RunFind() {
    pump_.Pump(vrx::Milliseconds{1});
    Settle();
  }
  void TypeGroup(const QString& beginning) {
    Grid().GoToRow(0);
    Grid().keyboardSearch(beginning);
    Draw();
  }
  // The pending events of the last action.
  static void Settle() { QApplication::processEvents(); }
  QScrollBar& Bar() { return *Grid().verticalScrollBar(); }
  int Rows() { return Grid().Model().rowCount(); }

 private:
  HistoryTableView& Grid() {
    return *page_.findChild<HistoryTableView*>(QStringLiteral("grdTRANS"));
  }
  void Activate(const char* list, int item) {
    auto* const box = page_.findChild<QComboBox*>(QString::fromLatin1(list));
    box->setCurrentIndex(item);
    Q_EMIT box->activated(item);
  }
  // Draws everything immediately, instead of when the display requests it.
  void Draw() { Grid().viewport()->repaint(); }

  testing::TestServices test_;
  RealTimePump pump_;
  Services services_{.op = test_.op,
                     .files = test_.files,
                     .pump = pump_,
                     .programs = test_.programs,
                     .calendar = test_.calendar,
                     .system = test_.system,
                     .settings = test_.settings,
                     .folder = test_.folder,
                     .identity = test_.identity};
  BoundDatabase recipes_;
  BoundDatabase transactions_;
  HistoryPage page_{services_, [] { return false; }};
};

class HistoryPageBench {
 public:
  explicit HistoryPageBench(const BenchOptions& options)
      : options_(options), years_(options.rows) {}

  int Run(int& argc, char** argv) {
    std::printf("%-60s %9s  %7s\n", "figure", "", "limit");
    for (const DataGroup& group : MeasuredGroups(options_)) {
      Memory(group, argc, argv);
    }
    const QApplication application(argc, argv);
    for (const DataGroup& group : MeasuredGroups(options_)) {
      FirstScreen(group, Days::kAll);
      FirstScreen(group, Days::kHalf);
      FirstScreen(group, Days::kAll, Differences::kShown);
      ClosedTotals(group);
      Scrolling(group, Differences::kHidden);
      Scrolling(group, Differences::kShown);
      Finding(group);
    }
    return figures_.Over();
  }

 private:
  enum class Days { kAll, kHalf };
  enum class Differences { kHidden, kShown };

  static std::string With(Differences differences) {
    return differences == Differences::kShown ? ", differences" : "";
  }

  void FirstScreen(const DataGroup& group, Days days,
                   Differences differences = Differences::kHidden) {
    ShownPage page(years_);
    page.ShowDifferences(differences == Differences::kShown);
    if (days == Days::kHalf) {
      page.ShowHalfOfTheDays();
    }
    std::vector<double> times;
    for (int round = 0; round <= options_.rounds; ++round) {
      page.Choose(*FindDataGroup(group.index == 0 ? 1 : 0));
      ShownPage::Settle();
      times.push_back(Milliseconds([&] { page.Choose(group); }));
    }
    times.erase(times.begin());
    figures_.Limited(NameOf(group) + ": chosen to first screen" +
                         (days == Days::kHalf ? ", half" : "") + With(differences) + ", ms",
                     Median(times), kScreenLimit);
  }

  // The totals of the groups on the first screen, from the first drawing to the last total.
  void ClosedTotals(const DataGroup& group) {
    ShownPage page(years_);
    page.ShowDifferences(true);
    page.Choose(group);
    const std::vector<double> steps = page.ReadSums();
    if (!steps.empty()) {
      figures_.Limited(
          NameOf(group) + ": totals of closed groups, slowest step ms", Slowest(steps), kSliceLimit,
          "all of them in " + std::to_string(std::accumulate(steps.begin(), steps.end(), 0.0)) +
              " ms");
    }
  }

  // Page by page, and to random positions.
  void Scrolling(const DataGroup& group, Differences differences) {
    ShownPage page(years_);
    page.ShowDifferences(differences == Differences::kShown);
    page.Choose(group);
    const std::string name = NameOf(group) + With(differences);
    const double expanded = Milliseconds([&] {
      page.ExpandAll(true);
      page.Scroll(page.Bar().maximum());
    });
    figures_.Specified(name + ": all expanded, to the end, ms", expanded,
                       std::to_string(page.Rows()) + " rows");
    const auto scroll = [&](int to) {
      ShownPage::Settle();
      return ProcessorMilliseconds([&] { page.Scroll(to); });
    };
    scroll(0);
    std::vector<double> pages;
    for (int at = 0; static_cast<int>(pages.size()) < kPages && at < page.Bar().maximum();) {
      at += page.Bar().pageStep();
      pages.push_back(scroll(at));
    }
    if (!pages.empty()) {
      figures_.Limited(name + ": a page scrolled, slowest ms", Slowest(pages), kPageLimit,
                       "half of them within " + std::to_string(Median(pages)) + " ms");
    }
    std::mt19937 random(1);
    std::uniform_int_distribution<int> anywhere(0, page.Bar().maximum());
    std::vector<double> jumps;
    jumps.reserve(kJumps);
    for (int i = 0; i < kJumps; ++i) {
      jumps.push_back(scroll(anywhere(random)));
    }
    figures_.Specified(name + ": a jump anywhere, slowest ms", Slowest(jumps),
                       "half of them within " + std::to_string(Median(jumps)) + " ms");
  }

  // A search of every record, for a text that none has and for ones that many and few have.
  void Finding(const DataGroup& group) {
    for (const char* const text : {"giraffe", "CORN", "5200"}) {
      ShownPage page(years_);
      page.Choose(group);
      ShownPage::Settle();
      double all = Milliseconds([&] { page.StartFind(QString::fromLatin1(text)); });
      double answered = page.FindHasAnswered() ? all : 0;
      double slowest = all;
      while (page.FindRuns()) {
        const double slice = Milliseconds([&] { page.RunFind(); });
        all += slice;
        slowest = std::max(slowest, slice);
        answered = answered == 0 && page.FindHasAnswered() ? all : answered;
      }
      const std::string name = NameOf(group) + ": " + text;
      figures_.Limited(name + " found, or progress shown, ms", answered == 0 ? all : answered,
                       kScreenLimit, "all within " + std::to_string(all) + " ms");
      figures_.Limited(name + " searched, longest without events, ms", slowest, kScreenLimit);
    }
    if (!group.levels.empty()) {
      ShownPage page(years_);
      page.Choose(group);
      figures_.Limited(NameOf(group) + ": the beginning of a group typed, ms",
                       Milliseconds([&] { page.TypeGroup(QStringLiteral("9")); }), kScreenLimit);
    }
  }

  void Memory(const DataGroup& group, int& argc, char** argv) {
    const double peak = PeakMegabytes([&] {
      const QApplication application(argc, argv);
      ShownPage page(years_);
      page.Choose(group);
      page.ExpandAll(true);
      const int step = std::max(1, page.Bar().maximum() / 200);
      for (int at = 0; at <= page.Bar().maximum() - step; at += step) {
        page.Scroll(at);
      }
    });
    figures_.Limited(NameOf(group) + ": memory, all expanded and looked at, MB", peak,
                     kMemoryLimit);
  }

  BenchOptions options_;
  Years years_;
  Figures figures_;
};

}  // namespace
}  // namespace vrx::bench

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  try {
    const std::span<const char* const> arguments(argv + 1, static_cast<std::size_t>(argc) - 1);
    vrx::bench::HistoryPageBench bench(vrx::bench::ReadBenchOptions(arguments));
    return bench.Run(argc, argv) == 0 ? 0 : 3;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "history_page_bench: %s\n", error.what());
    return 1;
  }
}
