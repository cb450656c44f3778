#include "link/recipe_backup.h"

#include "frame/text.h"
#include "link/file_attributes.h"

namespace vrx {

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
