#include "support/database_files.h"

#include <algorithm>
#include <cstdlib>
#include <stdexcept>
#include <utility>

#include <SQLiteCpp/Column.h>
#include <SQLiteCpp/Statement.h>
#include <unistd.h>

#include "base/application.h"

namespace vrx::testing {

namespace fs = std::filesystem;

namespace {

constexpr uid_t kNobody = 65534;

constexpr fs::perms kReadAll =
    fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read;
constexpr fs::perms kEnterAll =
    kReadAll | fs::perms::owner_exec | fs::perms::group_exec | fs::perms::others_exec;

}  // namespace

fs::path TemplatePath(DatabaseKind kind) {
  return fs::path(VRX_BIN_DIR) /
         (kind == DatabaseKind::kRecipe ? kRecipeTemplateName : kTransactionTemplateName);
}

fs::path CopyOfTemplate(const TempFolder& folder, std::string_view name, DatabaseKind kind) {
  fs::copy_file(TemplatePath(kind), folder / name);
  return folder / name;
}

void Alter(const fs::path& path, const std::string& statements) {
  SQLite::Database database(path, SQLite::OPEN_READWRITE);
  database.exec(statements);
}

std::vector<std::string> Ask(const fs::path& path, const std::string& query) {
  SQLite::Database database(path, SQLite::OPEN_READONLY);
  SQLite::Statement statement(database, query);
  std::vector<std::string> answers;
  while (statement.executeStep()) {
    const SQLite::Column value = statement.getColumn(0);
    answers.push_back(value.isNull() ? "NULL" : value.getString());
  }
  return answers;
}

ExclusiveHolder::ExclusiveHolder(const fs::path& path) : database_(path, SQLite::OPEN_READWRITE) {
  database_.exec("BEGIN EXCLUSIVE");
}

WithoutWritePermission::WithoutWritePermission(fs::path folder) : folder_(std::move(folder)) {
  for (const fs::directory_entry& entry : fs::directory_iterator(folder_)) {
    fs::permissions(entry.path(), kReadAll);
  }
  fs::permissions(folder_, kEnterAll);
  if (geteuid() == 0 && seteuid(kNobody) != 0) {
    throw std::runtime_error("cannot give up the superuser's rights");
  }
}

WithoutWritePermission::~WithoutWritePermission() {
  if (getuid() == 0 && seteuid(0) != 0) {
    std::abort();
  }
  fs::permissions(folder_, fs::perms::owner_all);
}

std::vector<std::string> FileNames(const fs::path& folder) {
  std::vector<std::string> names;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace vrx::testing
