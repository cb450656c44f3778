#include "database/connection.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <system_error>

#include <SQLiteCpp/Exception.h>
#include <SQLiteCpp/Statement.h>
#include <SQLiteCpp/Transaction.h>
#include <sqlite3.h>

#include "base/translation.h"
#include "database/schema.h"

namespace vrx {
namespace {

using namespace std::string_view_literals;
namespace fs = std::filesystem;

struct ErrorText {
  int number;
  std::string_view text;
};

constexpr std::array<ErrorText, 4> kErrorTexts{{
    {kInvalidTableError, "There is an invalid table in the specified database."},
    {kNoRecordError, "There is no record available in the specified database."},
    {kTableLockedError, "A table in the specified database is locked."},
    {kInvalidFieldError, "There is an invalid field in the specified database."},
}};

constexpr int kPrimaryCodeMask = 0xff;

bool Contains(std::string_view text, std::string_view part) {
  return text.find(part) != std::string_view::npos;
}

// SQLite reports unknown names with a general code; only its message distinguishes them.
int NumberOf(int code, std::string_view words) {
  const int primary = code & kPrimaryCodeMask;
  if (primary == SQLITE_BUSY || primary == SQLITE_LOCKED) {
    return kTableLockedError;
  }
  if (primary == SQLITE_ERROR && Contains(words, "no such table")) {
    return kInvalidTableError;
  }
  if (primary == SQLITE_ERROR &&
      (Contains(words, "no such column") || Contains(words, "has no column named"))) {
    return kInvalidFieldError;
  }
  return code;
}

// SQLite's message, or a better one where it does not describe what happened to the file `name`.
std::string WordsFor(int code, const std::string& name, std::string_view message) {
  if (code == kTableLockedError) {
    return Tr("%1 is locked by another program", {name});
  }
  if (code == SQLITE_READONLY_DBMOVED) {
    return Tr("%1 was moved or deleted while it was open", {name});
  }
  switch (code & kPrimaryCodeMask) {
    case SQLITE_FULL:
      return Tr("%1 could not be written: the disk is full", {name});
    case SQLITE_READONLY:
      return Tr("%1 may not be written: it is write-protected", {name});
    default:
      return name + ": " + std::string(message);
  }
}

// SQLite's file header; numbers are big-endian.
constexpr std::string_view kMagic = "SQLite format 3\0"sv;
constexpr std::size_t kHeaderSize = 100;
constexpr std::size_t kPageSizeOffset = 16;  // 2 bytes; 1 stands for 65536
constexpr std::size_t kChangeCounterOffset = 24;
constexpr std::size_t kPageCountOffset = 28;
constexpr std::size_t kUserVersionOffset = 60;
constexpr std::size_t kApplicationIdOffset = 68;
constexpr std::size_t kPageCountValidForOffset = 92;

constexpr std::string_view kJetMagic = "\0\1\0\0Standard Jet DB"sv;
constexpr std::size_t kHeadSize = 512;  // bytes that are read to identify a file

// That a file is no database of this system.
DatabaseError NotOurs(int number, const std::string& what) {
  return {number, what + "; " + Tr("expected a recipe or transaction database of this system")};
}

struct FileHead {
  std::string bytes;      // at most kHeadSize
  std::int64_t size = 0;  // of the whole file
};

// Reads through SQLite's own file handle: on POSIX, closing a second handle of the same file drops
// the locks that other connections of this process hold.
FileHead ReadHead(SQLite::Database& database) {
  sqlite3_file* file = nullptr;
  sqlite3_file_control(database.getHandle(), "main", SQLITE_FCNTL_FILE_POINTER, &file);
  FileHead head;
  sqlite3_int64 size = 0;
  int result = file->pMethods->xFileSize(file, &size);
  head.size = size;
  head.bytes.resize(static_cast<std::size_t>(std::min<sqlite3_int64>(size, kHeadSize)));
  if (result == SQLITE_OK && !head.bytes.empty()) {
    result = file->pMethods->xRead(file, head.bytes.data(), static_cast<int>(head.bytes.size()), 0);
  }
  if (result != SQLITE_OK) {
    throw SQLite::Exception(Tr("the file cannot be read"), result);
  }
  return head;
}

std::uint32_t BigEndian(const FileHead& head, std::size_t offset, std::size_t width = 4) {
  std::uint32_t value = 0;
  for (const char byte : head.bytes.substr(offset, width)) {
    value = value << 8U | static_cast<unsigned char>(byte);
  }
  return value;
}

bool LooksLikeText(std::string_view bytes) {
  return std::all_of(bytes.begin(), bytes.end(), [](char byte) {
    const auto code = static_cast<unsigned char>(byte);
    return (code >= ' ' && code != 0x7f) || byte == '\t' || byte == '\r' || byte == '\n';
  });
}

void RefuseMissing(const fs::path& path, const std::string& name) {
  if (path.empty()) {
    throw NotOurs(SQLITE_CANTOPEN, Tr("no file was named"));
  }
  std::error_code error;
  const fs::file_status status = fs::status(path, error);
  if (status.type() == fs::file_type::not_found) {
    throw NotOurs(SQLITE_CANTOPEN, Tr("%1 does not exist", {name}));
  }
  if (status.type() == fs::file_type::none) {
    throw DatabaseError(SQLITE_CANTOPEN, Tr("%1 cannot be reached: %2", {name, error.message()}));
  }
  if (status.type() == fs::file_type::directory) {
    throw NotOurs(SQLITE_CANTOPEN, Tr("%1 is a folder", {name}));
  }
  if (status.type() != fs::file_type::regular) {
    throw NotOurs(SQLITE_CANTOPEN, Tr("%1 is a device", {name}));
  }
}

// Describes a file that is not an SQLite database.
std::string OtherContent(const FileHead& head, const std::string& name) {
  if (head.bytes.empty()) {
    return Tr("%1 is empty", {name});
  }
  if (head.bytes.starts_with(kJetMagic)) {
    return Tr("%1 is a Jet database of an earlier generation, which has to be converted first",
              {name});
  }
  if (LooksLikeText(head.bytes)) {
    return Tr("%1 is a text file", {name});
  }
  return Tr("%1 is no database", {name});
}

void RefuseOthers(const FileHead& head, const std::string& name) {
  const std::string_view start = std::string_view(head.bytes).substr(0, kMagic.size());
  if (start.empty() || !kMagic.starts_with(start)) {
    throw NotOurs(SQLITE_NOTADB, OtherContent(head, name));
  }
  if (head.bytes.size() < kHeaderSize) {
    throw DatabaseError(SQLITE_CORRUPT,
                        Tr("%1 is cut off: %2 bytes, less than a database's header of %3",
                           {name, std::to_string(head.size), std::to_string(kHeaderSize)}));
  }
  if (BigEndian(head, kApplicationIdOffset) != kApplicationId) {
    throw NotOurs(kInvalidTableError, Tr("%1 is a database of another program", {name}));
  }
  const auto version = static_cast<std::int32_t>(BigEndian(head, kUserVersionOffset));
  if (version != kSchemaVersion) {
    throw DatabaseError(
        SQLITE_SCHEMA,
        version > kSchemaVersion
            ? Tr("%1 was made by a newer version of the program: schema %2; expected %3",
                 {name, std::to_string(version), std::to_string(kSchemaVersion)})
            : Tr("%1 has an unknown schema: schema %2; expected %3",
                 {name, std::to_string(version), std::to_string(kSchemaVersion)}));
  }
}

std::int64_t ExpectedSize(const FileHead& head) {
  const std::uint32_t stored = BigEndian(head, kPageSizeOffset, 2);
  const std::int64_t page_size = stored == 1 ? 65536 : stored;
  const bool count_valid =
      BigEndian(head, kChangeCounterOffset) == BigEndian(head, kPageCountValidForOffset);
  const std::int64_t pages = count_valid ? BigEndian(head, kPageCountOffset) : 0;
  return page_size * std::max<std::int64_t>(pages, 1);
}

void RefuseCutOff(SQLite::Database& database, const std::string& name) {
  const FileHead head = ReadHead(database);
  const std::int64_t expected = ExpectedSize(head);
  if (head.size < expected) {
    throw DatabaseError(SQLITE_CORRUPT,
                        Tr("%1 is cut off: %2 bytes instead of %3",
                           {name, std::to_string(head.size), std::to_string(expected)}));
  }
}

// The first read takes a lock, which rolls back a hot journal and blocks other writers during the
// check of the size. SQLite's own check counts whole pages only and reports a cut-off file as
// malformed.
void CheckWhole(SQLite::Database& database, const std::string& name) {
  try {
    // Another tool may have switched to a write-ahead log, which a copy of the file would lack.
    database.exec("PRAGMA journal_mode=DELETE");
    const SQLite::Transaction lock(database);
    SQLite::Statement query(database, "SELECT count(*) FROM sqlite_schema");
    query.executeStep();
    RefuseCutOff(database, name);
  } catch (const SQLite::Exception& error) {
    if (error.getErrorCode() == SQLITE_CORRUPT || error.getErrorCode() == SQLITE_NOTADB) {
      RefuseCutOff(database, name);
    }
    throw;
  }
}

}  // namespace

DatabaseError TranslateSqliteError(const SQLite::Exception& error, const fs::path& path) {
  const int extended = error.getExtendedErrorCode();
  const int number = NumberOf(extended > 0 ? extended : error.getErrorCode(), error.what());
  const std::string name = path.filename().string();
  return {number, WordsFor(number, name, error.what())};
}

int FailureNumber(const std::exception& failure) {
  if (const auto* error = dynamic_cast<const DatabaseError*>(&failure)) {
    return error->Number();
  }
  if (const auto* error = dynamic_cast<const std::system_error*>(&failure)) {
    return error->code().value();
  }
  return SQLITE_ERROR;
}

std::string DatabaseErrorText(int number) {
  const auto* const found =
      std::find_if(kErrorTexts.begin(), kErrorTexts.end(),
                   [number](const ErrorText& row) { return row.number == number; });
  return found == kErrorTexts.end() ? "Error: " + std::to_string(number) : std::string(found->text);
}

SQLite::Database OpenDatabase(const fs::path& path, Access access, LockWait wait) {
  const std::string name = path.filename().string();
  RefuseMissing(path, name);
  return WithDatabaseErrors(path, [&] {
    // SQLite itself falls back to reading a write-protected file. An absolute path prevents special
    // meanings of names like ":memory:".
    SQLite::Database database(fs::absolute(path), SQLite::OPEN_READWRITE);
    wait.ApplyTo(database.getHandle());
    RefuseOthers(ReadHead(database), name);
    if (access == Access::kWrite && IsWriteProtected(database)) {
      throw DatabaseError(SQLITE_READONLY,
                          Tr("%1 may not be written: it is write-protected", {name}));
    }
    CheckWhole(database, name);
    database.exec("PRAGMA synchronous=FULL");
    if (access == Access::kRead) {
      database.exec("PRAGMA query_only=ON");
    }
    return database;
  });
}

bool IsWriteProtected(const SQLite::Database& database) {
  return sqlite3_db_readonly(database.getHandle(), "main") == 1;
}

}  // namespace vrx
