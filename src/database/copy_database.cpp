#include "database/copy_database.h"

#include <array>
#include <cerrno>
#include <fstream>
#include <optional>
#include <string>
#include <system_error>

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>
#include <SQLiteCpp/Transaction.h>

#include "base/files.h"
#include "base/translation.h"
#include "database/central_source.h"
#include "database/connection.h"

namespace vrx {
namespace {

namespace fs = std::filesystem;

// Rolls back a hot journal of a database of this system and holds a read lock during its lifetime.
// Does nothing for any other file.
class LockedFile {
 public:
  LockedFile(const fs::path& path, LockWait wait) {
    try {
      database_.emplace(OpenDatabase(path, Access::kRead, wait));
    } catch (const DatabaseError& error) {
      if (error.Number() == kTableLockedError) {
        throw;
      }
      return;  // not a database of this system
    }
    WithDatabaseErrors(*database_, [this] {
      reading_.emplace(*database_);
      SQLite::Statement(*database_, "SELECT count(*) FROM sqlite_schema").executeStep();
    });
  }

  // True for a database that was pushed to the central database.
  [[nodiscard]] bool IsCentralSource() {
    return database_ && ReadCentralSource(*database_).has_value();
  }

 private:
  std::optional<SQLite::Database> database_;
  std::optional<SQLite::Transaction> reading_;
};

void CopyBytes(const fs::path& source, AtomicFile& copy) {
  errno = 0;
  std::ifstream in(source, std::ios::binary);
  std::array<char, 65536> block{};
  while (in) {
    in.read(block.data(), static_cast<std::streamsize>(block.size()));
    copy.Write({block.data(), static_cast<std::size_t>(in.gcount())});
  }
  if (!in.eof()) {
    const std::error_code why(errno != 0 ? errno : EIO, std::generic_category());
    throw FileError(Tr("cannot read %1: %2", {source.string(), why.message()}));
  }
}

}  // namespace

void CopyDatabaseFile(const fs::path& source, const fs::path& target, LockWait wait) {
  { const LockedFile settled(target, wait); }
  LockedFile held(source, wait);
  AtomicFile copy(target);
  CopyBytes(source, copy);
  if (held.IsCentralSource()) {
    SQLite::Database copied = OpenDatabase(copy.Close(), Access::kWrite, wait);
    RenewGeneration(copied);
  }
  // Otherwise SQLite would apply a journal of the old target to the copy.
  fs::remove(target.string() + "-journal");
  copy.Commit();
}

}  // namespace vrx
