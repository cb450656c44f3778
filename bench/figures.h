#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace vrx::bench {

// The medians of works that run in turn, so that none of them finds a colder cache than another;
// one round ahead of them does not count.
std::vector<double> InterleavedMedians(int rounds, const std::vector<std::function<void()>>& works);

// Runs the sqlite3 shell on a database and waits for its end; throws when it fails.
void RunShell(const std::filesystem::path& database, const std::filesystem::path& script);

// The most memory that work took in a process of its own, in megabytes. Throws when it failed.
double PeakMegabytes(const std::function<void()>& work);

// Prints figures one below the other and keeps count of those beyond their limit.
class Figures {
 public:
  // What is printed with the figure: name, figure, limit, "ok" or "OVER", and what it is made of.
  void Limited(const std::string& name, double figure, double limit, const std::string& parts = "");
  void Specified(const std::string& name, double figure, const std::string& parts = "");

  int Over() const { return over_; }

 private:
  int over_ = 0;
};

// "12.3 ms / 45.6 ms"
std::string Times(double ours, double other);

}  // namespace vrx::bench
