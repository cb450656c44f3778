#include <random>
#include <string>
#include <system_error>

#include "base/files.h"
#include "base/sync.h"
#include "database/connection.h"
#include "database/identity.h"
#include "legacy/convert.h"

namespace vrx {

namespace fs = std::filesystem;

namespace {

// In kilobytes: the indexes of a table of transactions take no order that a small cache would hold.
constexpr const char* kLargeCache = "PRAGMA cache_size=-65536";

[[noreturn]] void RefuseExisting(const fs::path& path) {
  throw FileError(path.string() + " already exists; choose another name");
}

[[noreturn]] void Fail(const fs::path& path, const std::error_code& why) {
  throw FileError("cannot write " + path.string() + ": " + why.message());
}

void CopyTemplate(const fs::path& blank, const fs::path& side, const fs::path& path) {
  if (!FileExists(blank)) {
    throw FileError(blank.string() + " does not exist; install the program again");
  }
  std::error_code error;
  if (!fs::copy_file(blank, side, error)) {
    Fail(path, error);
  }
  // A template may be write-protected, and its copy with it.
  fs::permissions(side, fs::perms::owner_read | fs::perms::owner_write, fs::perm_options::add,
                  error);
}

}  // namespace

NewDatabaseFile::NewDatabaseFile(const fs::path& path, const fs::path& program_directory,
                                 DatabaseKind kind)
    : path_(path), side_(path.string() + "." + std::to_string(std::random_device{}()) + ".tmp") {
  if (FileExists(path_)) {
    RefuseExisting(path_);
  }
  try {
    CopyTemplate(program_directory / TextsOf(kind).template_name, side_, path_);
    connection_ = std::make_unique<SQLite::Database>(OpenDatabase(side_, Access::kWrite));
    WithDatabaseErrors(*connection_, [this] {
      connection_->exec(kLargeCache);
      transaction_ = std::make_unique<SQLite::Transaction>(*connection_);
    });
  } catch (...) {
    RemoveSide();
    throw;
  }
}

NewDatabaseFile::~NewDatabaseFile() { RemoveSide(); }

void NewDatabaseFile::Commit() {
  WithDatabaseErrors(*connection_, [this] { transaction_->commit(); });
  transaction_.reset();
  connection_.reset();
  if (const std::error_code unsynced = SyncToDisk(side_)) {
    Fail(path_, unsynced);
  }
  // A second name fails where the first one exists already. Not every disk has second names.
  std::error_code error;
  fs::create_hard_link(side_, path_, error);
  if (!error) {
    return;
  }
  if (FileExists(path_)) {
    RefuseExisting(path_);
  }
  fs::rename(side_, path_, error);
  if (error) {
    Fail(path_, error);
  }
}

void NewDatabaseFile::RemoveSide() {
  transaction_.reset();
  connection_.reset();
  std::error_code ignored;
  fs::remove(side_, ignored);
}

}  // namespace vrx
