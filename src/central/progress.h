#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "base/error.h"

namespace vrx {

// Work with the central database that the caller has stopped. What is there whole stays there.
class CentralStopped : public Error {
 public:
  using Error::Error;
};

// How long work reports itself and is stopped. Called between blocks of rows.
struct CentralProgress {
  // `done` of `total` rows; `total` is 0 where it is not known.
  std::function<void(const std::string& doing, std::int64_t done, std::int64_t total)> show =
      [](const std::string&, std::int64_t, std::int64_t) {};
  std::function<bool()> go_on = [] { return true; };

  // Throws CentralStopped if the caller wants no more.
  void Check() const;
  void Report(const std::string& doing, std::int64_t done, std::int64_t total) const;
};

}  // namespace vrx
