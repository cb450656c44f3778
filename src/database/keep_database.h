#pragma once

#include <filesystem>

#include "base/error.h"

namespace vrx {

// A report or export would overwrite a database. what() asks for another file name.
class DatabaseInTheWay : public Error {
 public:
  using Error::Error;
};

// Throws DatabaseInTheWay if the path, or the target of a link, is a database or its journal by its
// content, or has the file name extension of a database; the latter protects unreadable, damaged
// and empty databases. Changes nothing and keeps the locks of this process on the file.
void KeepDatabase(const std::filesystem::path& path);

}  // namespace vrx
