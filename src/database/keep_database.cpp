#include "database/keep_database.h"

#include <array>
#include <string>
#include <string_view>
#include <system_error>

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Exception.h>
#include <sqlite3.h>

#include "base/text.h"
#include "base/translation.h"

namespace vrx {
namespace {

using namespace std::string_view_literals;
namespace fs = std::filesystem;

// First bytes of a database, a database of an earlier generation, a rollback journal and the two
// forms of a write-ahead log.
constexpr std::array kContents{"SQLite format 3\0"sv, "\0\1\0\0Standard Jet DB"sv,
                               "\xD9\xD5\x05\xF9\x20\xA1\x63\xD7"sv, "\x37\x7F\x06\x82"sv,
                               "\x37\x7F\x06\x83"sv};
constexpr std::array kExtensions{".RDB"sv, ".TDB"sv};

// First bytes of a file; empty if it cannot be read. Reads through SQLite's own file handle: on
// POSIX, closing a second handle drops the locks that connections of this process hold.
std::string ReadHead(const fs::path& path) {
  constexpr int kHeaderBytes = 32;
  try {
    SQLite::Database database(fs::absolute(path), SQLite::OPEN_READONLY);
    sqlite3_file* file = nullptr;
    sqlite3_file_control(database.getHandle(), "main", SQLITE_FCNTL_FILE_POINTER, &file);
    std::string head(kHeaderBytes, '\0');
    // SQLite fills the rest of a shorter file with zeros.
    const int result = file->pMethods->xRead(file, head.data(), kHeaderBytes, 0);
    return result == SQLITE_OK || result == SQLITE_IOERR_SHORT_READ ? head : std::string();
  } catch (const SQLite::Exception&) {
    return {};
  }
}

bool HasContent(std::string_view head) {
  for (const std::string_view content : kContents) {
    if (head.starts_with(content)) {
      return true;
    }
  }
  return false;
}

bool HasName(const fs::path& path) {
  for (const std::string_view extension : kExtensions) {
    if (EqualsIgnoringCase(path.extension().string(), extension)) {
      return true;
    }
  }
  return false;
}

}  // namespace

void KeepDatabase(const fs::path& path) {
  std::error_code error;
  if (!fs::is_regular_file(path, error)) {
    return;  // Missing, or a folder or device, which cannot be overwritten anyway.
  }
  fs::path target = fs::canonical(path, error);
  if (error) {
    target = path;
  }
  const bool is_database = HasContent(ReadHead(target));
  if (is_database || HasName(path) || HasName(target)) {
    throw DatabaseInTheWay(
        is_database
            ? Tr("%1 is a database and is not replaced. Choose another name.", {path.string()})
            : Tr("%1 has the name of a database and is not replaced. Choose another name.",
                 {path.string()}));
  }
}

}  // namespace vrx
