#include "exchange/recipe_backup.h"

#include <cstddef>

#include "base/files.h"
#include "base/text.h"
#include "link/file_attributes.h"

namespace vrx {

namespace {

constexpr std::size_t kMostBackup = std::size_t{16} * 1024 * 1024;  // far beyond what occurs

}  // namespace

std::string ReadRecipeBackup(const std::filesystem::path& path) {
  std::string text = ReadFileBytes(path, kMostBackup);
  if (text.size() > kMostBackup) {
    throw FileError(path.string() + " is longer than any recipe backup");
  }
  return text;
}

bool HasBackupHeader(std::string_view text, Operator& op, const PrivateINI& settings) {
  if (text.starts_with(kRecipeMark)) {
    return true;
  }
  BeepIfEnabled(op, settings);
  op.ShowMessage({.icon = Icon::kWarning,
                  .title = "File-Header Error",
                  .text = "The Recipe backup-file has an invalid file header and cannot be "
                          "downloaded."});
  return false;
}

}  // namespace vrx
