#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include <SQLiteCpp/Database.h>

#include "database/schema.h"
#include "support/temp_folder.h"

namespace vrx::testing {

// The templates that the build made, as they lie beside the programs.
std::filesystem::path TemplatePath(DatabaseKind kind);

// A writable copy of a template under that name.
std::filesystem::path CopyOfTemplate(const TempFolder& folder, std::string_view name,
                                     DatabaseKind kind = DatabaseKind::kRecipe);

// Runs statements on a file past the checks of OpenDatabase, as another tool would.
void Alter(const std::filesystem::path& path, const std::string& statements);

// The first column of a query's rows as text, "NULL" for NULL.
std::vector<std::string> Ask(const std::filesystem::path& path, const std::string& query);

// Holds a file as a program does that is in the middle of a write.
class ExclusiveHolder {
 public:
  explicit ExclusiveHolder(const std::filesystem::path& path);

 private:
  SQLite::Database database_;
};

// Keeps the process, also one of the superuser, from writing what belongs to others, for as long as
// it lives. The folder and its files can be read meanwhile.
class WithoutWritePermission {
 public:
  explicit WithoutWritePermission(std::filesystem::path folder);
  ~WithoutWritePermission();
  WithoutWritePermission(const WithoutWritePermission&) = delete;
  WithoutWritePermission& operator=(const WithoutWritePermission&) = delete;

 private:
  std::filesystem::path folder_;
};

// The names of all files of a folder, sorted: shows journals and leftovers.
std::vector<std::string> FileNames(const std::filesystem::path& folder);

}  // namespace vrx::testing
