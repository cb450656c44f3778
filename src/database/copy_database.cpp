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
#include "database/connection.h"

namespace vrx {

namespace fs = std::filesystem;

namespace {

// A database of this system, settled and held for reading for as long as it lives; nothing is held
// of any other file.
class LockedFile {
 public:
  LockedFile(const fs::path& path, LockWait wait) {
    try {
      database_.emplace(OpenDatabase(path, Access::kRead, wait));
    } catch (const DatabaseError& error) {
      if (error.Number() == kTableLockedError) {
        throw;
      }
      return;  // none of ours: there is nothing to settle
    }
    WithDatabaseErrors(*database_, [this] {
      reading_.emplace(*database_);
      SQLite::Statement(*database_, "SELECT count(*) FROM sqlite_schema").executeStep();
    });
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
    throw FileError("cannot read " + source.string() + ": " + why.message());
  }
}

}  // namespace

void CopyDatabaseFile(const fs::path& source, const fs::path& target, LockWait wait) {
  { const LockedFile settled(target, wait); }
  const LockedFile held(source, wait);
  AtomicFile copy(target);
  CopyBytes(source, copy);
  // A journal that another program left beside the old target would be played into the copy.
  fs::remove(target.string() + "-journal");
  copy.Commit();
}

}  // namespace vrx
