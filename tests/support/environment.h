#pragma once

#include <cstdlib>
#include <optional>
#include <string>
#include <utility>

namespace vrx::testing {

// A variable of this process's environment, put back with the object's end.
class Environment {
 public:
  Environment(std::string name, const std::string& value) : name_(std::move(name)) {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): before any thread asks
    if (const char* const before = std::getenv(name_.c_str()); before != nullptr) {
      before_ = before;
    }
    setenv(name_.c_str(), value.c_str(), 1);
  }
  ~Environment() {
    if (before_) {
      setenv(name_.c_str(), before_->c_str(), 1);
    } else {
      unsetenv(name_.c_str());
    }
  }
  Environment(const Environment&) = delete;
  Environment& operator=(const Environment&) = delete;

 private:
  std::string name_;
  std::optional<std::string> before_;
};

}  // namespace vrx::testing
