#include "database/database_error.h"

#include <string_view>
#include <system_error>

#include <sqlite3.h>

namespace vrx {

namespace {

struct ErrorText {
  int number;
  std::string_view text;
};

constexpr std::array<ErrorText, 4> kErrorText{{
    {kInvalidTableError, "There is an invalid table in the specified database."},
    {kNoRecordError, "There is no record available in the specified database."},
    {kTableLockedError, "A table in the specified database is locked."},
    {kInvalidFieldError, "There is an invalid field in the specified database."},
}};

constexpr int kPrimaryCodeMask = 0xff;

bool Contains(std::string_view text, std::string_view part) {
  return text.find(part) != std::string_view::npos;
}

// The engine reports unknown names by a general code; only its words tell them apart.
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

// The engine's own words say little of what happened to a file that was open; empty for the rest.
std::string WordsFor(int code) {
  if (code == SQLITE_READONLY_DBMOVED) {
    return " was moved or deleted while it was open";
  }
  switch (code & kPrimaryCodeMask) {
    case SQLITE_FULL:
      return " could not be written: the disk is full";
    case SQLITE_READONLY:
      return " may not be written: it is write-protected";
    default:
      return {};
  }
}

}  // namespace

DatabaseError TranslateSqliteError(const SQLite::Exception& error,
                                   const std::filesystem::path& path) {
  const int extended = error.getExtendedErrorCode();
  const int number = NumberOf(extended > 0 ? extended : error.getErrorCode(), error.what());
  const std::string name = path.filename().string();
  if (number == kTableLockedError) {
    return {number, name + " is locked by another program"};
  }
  const std::string words = WordsFor(number);
  return {number, words.empty() ? name + ": " + error.what() : name + words};
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

}  // namespace vrx
