// The costs of the desktop program: the time from its start to its main window, the processor time
// while it is idle, and memory. Runs the real program on a display of its own.
//
// Its main window appears when it has loaded and has then shown the splash for 2000 ms.
// So the result is the time from the start of the process to the main window on the display, minus
// these 2000 ms: loading and showing.

#include <array>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "desktop/app/program.h"
#include "figures.h"
#include "measure.h"
#include "support/environment.h"
#include "support/temp_folder.h"
#include "support/virtual_display.h"

namespace vrx::bench {
namespace {

namespace fs = std::filesystem;
using std::chrono::steady_clock;
using MsDouble = std::chrono::duration<double, std::milli>;

constexpr int kRounds = 11;  // the first one does not count
constexpr std::chrono::seconds kSettling{2};
constexpr std::chrono::seconds kIdle{10};

constexpr double kStartLimit = 400;   // ms
constexpr double kIdleLimit = 1;      // ms of processor in 10 s: nil, but for what is no work
constexpr double kMemoryLimit = 120;  // MB

// A process of the program; the destructor exits it normally.
class RunningDesktop {
 public:
  RunningDesktop() : started_(steady_clock::now()) {
    std::string path = VRX_BIN_DIR "/vrx2260";
    std::array<char*, 2> arguments = {path.data(), nullptr};
    if (posix_spawn(&process_, path.c_str(), nullptr, nullptr, arguments.data(), environ) != 0) {
      throw std::runtime_error("cannot start " + path);
    }
  }
  ~RunningDesktop() {
    kill(process_, SIGTERM);
    waitpid(process_, nullptr, 0);
  }
  RunningDesktop(const RunningDesktop&) = delete;
  RunningDesktop& operator=(const RunningDesktop&) = delete;

  double MillisecondsSinceStart() const { return MsDouble(steady_clock::now() - started_).count(); }

  // Of all its threads, by the scheduler's own count.
  double ProcessorMilliseconds() const {
    double sum = 0;
    for (const fs::directory_entry& thread : fs::directory_iterator(Proc() / "task")) {
      double nanoseconds = 0;
      std::ifstream(thread.path() / "schedstat") >> nanoseconds;
      sum += nanoseconds / 1e6;
    }
    return sum;
  }

  // A line "KEY: n kB" of one of its files below /proc, in megabytes.
  double Megabytes(const std::string& file, const std::string& key) const {
    std::ifstream lines(Proc() / file);
    for (std::string line; std::getline(lines, line);) {
      if (line.starts_with(key + ":")) {
        double kilobytes = 0;
        std::istringstream(line.substr(key.size() + 1)) >> kilobytes;
        return kilobytes / 1024;
      }
    }
    throw std::runtime_error("no " + key + " in /proc/.../" + file);
  }

 private:
  fs::path Proc() const { return fs::path("/proc") / std::to_string(process_); }

  pid_t process_ = -1;
  steady_clock::time_point started_;
};

class DesktopBench {
 public:
  DesktopBench() {
    fs::create_directories(folder_ / "data/Brantock/VRX-2260");
    fs::create_directory(folder_ / "config");
    fs::create_directory(folder_ / "run");
    fs::permissions(folder_ / "run", fs::perms::owner_all);
    // The very first start stops at a message box about the file it has created.
    folder_.Write("data/Brantock/VRX-2260/VRX-2260.INI", "[Comments]\nTitle=x\n");
  }

  // The number of figures that exceed their limit.
  int Run() {
    std::printf("%-60s %9s  %7s\n", "", "figure", "limit");
    Start();
    Rest();
    return figures_.Over();
  }

 private:
  static constexpr const char* kSplashTitle = "VRX-2260";
  static constexpr const char* kMainTitle = "VRX-2260 Transfer Data Software";

  void Start() {
    std::vector<double> splash;
    std::vector<double> loaded;
    for (int round = 0; round < kRounds; ++round) {
      const RunningDesktop program;
      display_.WaitForWindow(kSplashTitle);
      const double splash_at = program.MillisecondsSinceStart();
      display_.WaitForWindow(kMainTitle);
      const double main_at = program.MillisecondsSinceStart();
      if (round > 0) {
        splash.push_back(splash_at);
        loaded.push_back(main_at - MsDouble(kSplashTime).count());
      }
    }
    const std::string runs = "median of " + std::to_string(kRounds - 1);
    figures_.Specified("start to splash on the display, ms", Median(splash), runs);
    figures_.Limited("start to main window on the display, less the splash, ms", Median(loaded),
                     kStartLimit, runs);
  }

  void Rest() {
    const RunningDesktop program;
    display_.WaitForWindow(kMainTitle);
    std::this_thread::sleep_for(kSettling);
    const double before = program.ProcessorMilliseconds();
    std::this_thread::sleep_for(kIdle);
    figures_.Limited("processor while it is idle, ms in 10 s",
                     program.ProcessorMilliseconds() - before, kIdleLimit);
    figures_.Limited("resident memory, MB", program.Megabytes("status", "VmRSS"), kMemoryLimit);
    figures_.Specified("its share of that (PSS), MB", program.Megabytes("smaps_rollup", "Pss"));
  }

  testing::TempFolder folder_;
  testing::Environment data_{"XDG_DATA_HOME", (folder_ / "data").string()};
  testing::Environment config_{"XDG_CONFIG_HOME", (folder_ / "config").string()};
  testing::Environment runtime_{"XDG_RUNTIME_DIR", (folder_ / "run").string()};
  testing::VirtualDisplay display_;
  testing::Environment screen_{"DISPLAY", display_.Name()};
  testing::Environment platform_{"QT_QPA_PLATFORM", "xcb"};
  Figures figures_;
};

}  // namespace
}  // namespace vrx::bench

int main() {
  try {
    return vrx::bench::DesktopBench().Run() == 0 ? 0 : 3;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "desktop_bench: %s\n", error.what());
    return 1;
  }
}
