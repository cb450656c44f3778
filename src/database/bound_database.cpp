#include "database/bound_database.h"

#include <utility>

#include <sqlite3.h>

#include "database/connection.h"
#include "database/identity.h"
#include "database/templates.h"

namespace vrx {

namespace fs = std::filesystem;

namespace {

constexpr int kPrimaryCode = 0xff;

BoundDatabase Bound(SQLite::Database database, fs::path path) {
  BoundDatabase bound{.connection = std::make_unique<SQLite::Database>(std::move(database)),
                      .path = std::move(path),
                      .unit = {},
                      .read_only_note = {}};
  bound.unit = ReadField(*bound.connection, kUnitField).value_or("");
  return bound;
}

BoundDatabase Blank(BoundDatabase bound) {
  bound.blank = true;
  return bound;
}

}  // namespace

BoundDatabase BindUserDatabase(const fs::path& path, LockWait wait) {
  try {
    return Bound(OpenDatabase(path, Access::kWrite, wait), path);
  } catch (const DatabaseError& error) {
    if ((error.Number() & kPrimaryCode) != SQLITE_READONLY) {
      throw;
    }
    BoundDatabase bound = Bound(OpenDatabase(path, Access::kRead, wait), path);
    bound.read_only_note = error.what();
    return bound;
  }
}

BoundDatabase BindBlankTemplate(const fs::path& path, LockWait wait) {
  return Blank(Bound(OpenDatabase(path, Access::kRead, wait), path));
}

BoundDatabase BindBlankInMemory(DatabaseKind kind) { return Blank(Bound(BlankInMemory(kind), {})); }

}  // namespace vrx
