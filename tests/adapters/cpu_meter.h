#pragma once

#include <chrono>

#include <sys/resource.h>

namespace vrx::testing {

// The share of one core that this thread takes from construction on.
class CpuMeter {
 public:
  double Share() const {
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start_;
    return (Used() - used_) / elapsed.count();
  }

 private:
  static double Used() {
    rusage usage{};
    getrusage(RUSAGE_THREAD, &usage);
    const auto seconds = [](const timeval& time) {
      return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
  }

  double used_ = Used();
  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

// What a wait may take at the most, also under a sanitizer on a busy machine. A wait that spins
// takes a whole core.
inline constexpr double kWaitingShare = 0.05;

}  // namespace vrx::testing
