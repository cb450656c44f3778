#include "presenter/recent_files.h"

#include <algorithm>
#include <sstream>
#include <string>
#include <system_error>

#include "base/error.h"
#include "base/files.h"
#include "base/text.h"
#include "base/translation.h"
#include "database/connection.h"
#include "database/identity.h"
#include "link/krmcomm.h"

namespace vrx {

namespace fs = std::filesystem;

namespace {

struct KindOfRecent {
  std::string_view extension;  // in upper case
  std::string_view noun;
  std::string_view key;  // of the per-user settings
};

constexpr std::array<KindOfRecent, kFileKinds.size()> kKindsOfRecent{{
    {".RDB", TrMark("recipe database"), "RecentRecipeDatabases"},
    {".TDB", TrMark("transaction database"), "RecentTransactionDatabases"},
    {".RBU", TrMark("recipe backup"), "RecentRecipeBackups"},
    {".QXT", TrMark("transaction file"), "RecentTransactionFiles"},
}};

const KindOfRecent& RowOf(FileKind kind) {
  return kKindsOfRecent.at(static_cast<std::size_t>(kind));
}

// A database of either kind begins with SQLite's words, and has the application id at this place.
constexpr std::string_view kDatabaseMark = "SQLite format 3";
constexpr std::string_view kApplicationId = "VRX2";
constexpr std::size_t kApplicationIdPlace = 68;
constexpr std::size_t kHeadBytes = 100;

constexpr char kBetween = '\n';  // two paths in a value

std::optional<FileKind> KindOfDatabase(const fs::path& path) {
  const LockWait no_wait{std::chrono::milliseconds{0}};
  SQLite::Database database = OpenDatabase(path, Access::kRead, no_wait);
  const std::optional<std::string> type = ReadField(database, kTypeField);
  if (type == kUserRecipeDb) {
    return FileKind::kRecipeDatabase;
  }
  return type == kUserTransDb ? std::optional(FileKind::kTransactionDatabase) : std::nullopt;
}

std::optional<FileKind> KindOfContents(const fs::path& path) {
  const std::string head = ReadFileBytes(path, kHeadBytes);
  if (head.starts_with(kTransactionMark)) {
    return FileKind::kTransactionFile;
  }
  if (head.starts_with(kRecipeMark)) {
    return FileKind::kRecipeBackup;
  }
  const bool is_ours = head.size() > kHeadBytes && head.starts_with(kDatabaseMark) &&
                       head.substr(kApplicationIdPlace).starts_with(kApplicationId);
  return is_ours ? KindOfDatabase(path) : std::nullopt;
}

}  // namespace

std::optional<FileKind> FindFileKind(const fs::path& path) {
  const std::string extension = UpperCase(path.extension().string());
  for (const FileKind kind : kFileKinds) {
    if (extension == RowOf(kind).extension) {
      return kind;
    }
  }
  std::error_code unreadable;
  if (!fs::is_regular_file(path, unreadable)) {
    return std::nullopt;
  }
  try {
    return KindOfContents(path);
  } catch (const Error&) {
    return std::nullopt;
  }
}

std::string_view NounOf(FileKind kind) { return RowOf(kind).noun; }

RecentFiles::RecentFiles(UserSettings& store) : store_(store) {
  for (const FileKind kind : kFileKinds) {
    Paths& list = lists_.at(static_cast<std::size_t>(kind));
    std::istringstream lines(store_.GetSetting(RowOf(kind).key));
    for (std::string line; list.size() < kMost && std::getline(lines, line, kBetween);) {
      if (fs::path(line).is_absolute() && std::find(list.begin(), list.end(), line) == list.end()) {
        list.emplace_back(line);
      }
    }
  }
}

void RecentFiles::Add(FileKind kind, const fs::path& path) {
  if (!path.is_absolute() || path.native().find(kBetween) != fs::path::string_type::npos) {
    return;
  }
  Paths& list = lists_.at(static_cast<std::size_t>(kind));
  if (!list.empty() && list.front() == path) {
    return;
  }
  std::erase(list, path);
  list.insert(list.begin(), path);
  list.resize(std::min(list.size(), kMost));
  Save(kind);
}

void RecentFiles::Remove(FileKind kind, const fs::path& path) {
  if (std::erase(lists_.at(static_cast<std::size_t>(kind)), path) > 0) {
    Save(kind);
  }
}

// The exit reports settings that cannot be written.
void RecentFiles::Save(FileKind kind) {
  std::string value;
  for (const fs::path& path : Of(kind)) {
    value += (value.empty() ? "" : std::string(1, kBetween)) + path.string();
  }
  try {
    store_.SaveSetting(RowOf(kind).key, value);
  } catch (const Error&) {
    return;
  }
}

}  // namespace vrx
