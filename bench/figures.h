#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace vrx::bench {

// The medians of tasks that run alternately, so that none of them has a colder cache than another.
// One warm-up round is not counted.
std::vector<double> InterleavedMedians(int rounds, const std::vector<std::function<void()>>& works);

// Runs the sqlite3 shell on a database and waits for its end; throws if it fails.
void RunShell(const std::filesystem::path& database, const std::filesystem::path& script);

// The peak memory of a task in a separate process, in megabytes. Throws if it fails.
double PeakMegabytes(const std::function<void()>& work);

// Prints figures, one per line, and counts those that exceed their limit.
class Figures {
 public:
  // The printed line: name, figure, limit, "ok" or "OVER", and the parts of the figure.
  void Limited(const std::string& name, double figure, double limit, const std::string& parts = "");
  void Specified(const std::string& name, double figure, const std::string& parts = "");

  int Over() const { return over_; }

 private:
  int over_ = 0;
};

// "12.3 ms / 45.6 ms"
std::string Times(double ours, double other);

}  // namespace vrx::bench
