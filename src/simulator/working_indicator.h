#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

#include "simulator/feeding_work.h"

namespace vrx::simulator {

struct WorkOptions {
  Day first_day;
  int days = 1;                                 // fed by each download
  std::optional<std::filesystem::path> ledger;  // what was weighed is written behind its end
};

// The indicator to which the module is carried: it takes the recipes of a download, feeds the next
// days by them and leaves their records in the module.
class WorkingIndicator {
 public:
  using Tell = std::function<void(const std::string& message)>;

  WorkingIndicator(WorkOptions options, Tell tell)
      : options_(std::move(options)), tell_(std::move(tell)), day_(options_.first_day) {}

  // The module's memory as it comes back; nothing where it holds no download, or one that cannot be
  // fed by, which is told. Throws std::system_error when the ledger cannot be written.
  std::optional<std::string> Visit(const std::string& memory);

 private:
  void Enter(const FeedingWork& work) const;

  WorkOptions options_;
  Tell tell_;
  Day day_;
};

// Of the form 2026-01-05. Throws std::invalid_argument.
Day ReadDay(const std::string& text);

}  // namespace vrx::simulator
