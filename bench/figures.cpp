#include "figures.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <exception>
#include <iterator>
#include <stdexcept>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "measure.h"

namespace vrx::bench {

namespace fs = std::filesystem;

std::vector<double> InterleavedMedians(int rounds,
                                       const std::vector<std::function<void()>>& works) {
  std::vector<std::vector<double>> times(works.size());
  for (int round = -1; round < rounds; ++round) {
    for (std::size_t work = 0; work < works.size(); ++work) {
      const double time = Milliseconds(works[work]);
      if (round >= 0) {
        times[work].push_back(time);
      }
    }
  }
  std::vector<double> medians;
  std::transform(times.begin(), times.end(), std::back_inserter(medians), Median);
  return medians;
}

void RunShell(const fs::path& database, const fs::path& script) {
  RunProgram({"sqlite3", "-bail", "-batch", database.string(), ".read '" + script.string() + "'"},
             "/dev/null");
}

double PeakMegabytes(const std::function<void()>& work) {
  std::fflush(nullptr);
  const pid_t process = fork();
  if (process == 0) {
    try {
      work();
      _exit(0);
    } catch (const std::exception& error) {
      std::fprintf(stderr, "%s\n", error.what());
    }
    _exit(1);
  }
  int status = 0;
  rusage usage{};
  if (process < 0 || wait4(process, &status, 0, &usage) != process || status != 0) {
    throw std::runtime_error("the work failed in a process of its own");
  }
  return static_cast<double>(usage.ru_maxrss) / 1024;  // from kilobytes
}

void Figures::Limited(const std::string& name, double figure, double limit,
                      const std::string& parts) {
  const bool over = figure > limit;
  over_ += over ? 1 : 0;
  std::printf("%-60s %9.2f  %7.2f  %-4s  %s\n", name.c_str(), figure, limit, over ? "OVER" : "ok",
              parts.c_str());
  std::fflush(stdout);
}

void Figures::Specified(const std::string& name, double figure, const std::string& parts) {
  std::printf("%-60s %9.2f  %7s  %-4s  %s\n", name.c_str(), figure, "-", "", parts.c_str());
  std::fflush(stdout);
}

std::string Times(double ours, double other) {
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%.1f ms / %.1f ms", ours, other);
  return text.data();
}

}  // namespace vrx::bench
