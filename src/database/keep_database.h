#pragma once

#include <filesystem>

#include "base/error.h"

namespace vrx {

// A report or an export was to be written over a database. what() tells the operator what to do.
class DatabaseInTheWay : public Error {
 public:
  using Error::Error;
};

// Throws DatabaseInTheWay where the path names a database, its journal, or a file with the name of
// one. The content decides, through links too, so a database under another name is kept as well.
// The name counts for files that cannot be read and for damaged or empty ones. Changes nothing, and
// the locks that this process holds on the file stay.
void KeepDatabase(const std::filesystem::path& path);

}  // namespace vrx
