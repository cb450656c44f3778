#pragma once

#include <filesystem>

#include "database/schema.h"

namespace vrx {

// What came of a file that is to be opened and may be of an earlier generation of the program.
struct EarlierDatabase {
  enum class Outcome {
    kGoOn,      // it is none, or is not to be converted: opened like any file
    kOpenCopy,  // `copy` was made of it, and is opened in its place
    kEnd,       // the operator was told why nothing is opened, or has turned back
  };
  Outcome outcome = Outcome::kGoOn;
  std::filesystem::path copy = {};
};

// Asks the operator about files of an earlier generation. Throws nothing of its own; runs events.
class EarlierDatabases {
 public:
  virtual ~EarlierDatabases() = default;
  virtual EarlierDatabase Offer(DatabaseKind kind, const std::filesystem::path& path) = 0;
};

}  // namespace vrx
