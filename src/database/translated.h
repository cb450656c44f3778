#pragma once

#include <utility>

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Exception.h>

#include "database/database_error.h"

namespace vrx {

// Runs `body`, with a failure of the storage engine turned into a DatabaseError that names the
// file.
template <typename Body>
decltype(auto) Translated(const SQLite::Database& database, Body&& body) {
  try {
    return std::forward<Body>(body)();
  } catch (const SQLite::Exception& error) {
    throw TranslateSqliteError(error, database.getFilename());
  }
}

}  // namespace vrx
