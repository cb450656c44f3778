#pragma once

#include <array>
#include <cstddef>
#include <filesystem>
#include <optional>
#include <string_view>
#include <vector>

#include "database/schema.h"
#include "platform/user_settings.h"

namespace vrx {

// The kinds of files that the program opens, in the order in which several are opened.
enum class FileKind { kRecipeDatabase, kTransactionDatabase, kRecipeBackup, kTransactionFile };

inline constexpr std::array kFileKinds{FileKind::kRecipeDatabase, FileKind::kTransactionDatabase,
                                       FileKind::kRecipeBackup, FileKind::kTransactionFile};

constexpr FileKind FileKindOf(DatabaseKind kind) {
  return kind == DatabaseKind::kRecipe ? FileKind::kRecipeDatabase : FileKind::kTransactionDatabase;
}

// The kind of a file: by its extension in any case, else by its first bytes. Nothing for a foreign
// file, and for one that cannot be read and has no known extension. Reads regular files only.
[[nodiscard]] std::optional<FileKind> FindFileKind(const std::filesystem::path& path);

// "recipe database", used inside messages.
[[nodiscard]] std::string_view NounOf(FileKind kind);

// The files of each kind that were opened last, the newest first, kept in the per-user settings. A
// change that cannot be written is lost with the end of the program.
class RecentFiles {
 public:
  static constexpr std::size_t kMost = 5;  // of each kind

  // The settings outlive it.
  explicit RecentFiles(UserSettings& store);

  [[nodiscard]] const std::vector<std::filesystem::path>& Of(FileKind kind) const {
    return lists_.at(static_cast<std::size_t>(kind));
  }

  // Puts the file at the head of its list. A relative path is ignored.
  void Add(FileKind kind, const std::filesystem::path& path);
  void Remove(FileKind kind, const std::filesystem::path& path);

 private:
  using Paths = std::vector<std::filesystem::path>;

  void Save(FileKind kind);

  UserSettings& store_;
  std::array<Paths, kFileKinds.size()> lists_;
};

}  // namespace vrx
