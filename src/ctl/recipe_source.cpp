#include "ctl/recipe_source.h"

#include <string>

#include "base/files.h"
#include "base/text.h"
#include "link/file_attributes.h"

namespace vrx {
namespace {

std::string FirstBytes(const std::filesystem::path& path) {
  try {
    return ReadFileBytes(path, kRecipeMark.size());
  } catch (const FileError&) {
    // Whoever opens it next says why it cannot be read.
    return "";
  }
}

}  // namespace

bool IsRecipeBackup(const std::filesystem::path& path) {
  return FirstBytes(path).starts_with(kRecipeMark) ||
         EqualsIgnoringCase(path.extension().string(), ".RBU");
}

}  // namespace vrx
