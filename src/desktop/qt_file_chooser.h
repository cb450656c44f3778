#pragma once

#include <QString>
#include <string>

#include "platform/file_chooser.h"

namespace vrx {

// File dialogs over the active window. They are Qt's own rather than the platform's, so that a name
// gets its default extension ahead of the question whether to overwrite, everywhere.
class QtFileChooser : public FileChooser {
 public:
  FileChoice ShowOpen(const FileDialog& dialog) override;
  FileChoice ShowSave(const FileDialog& dialog) override;
  std::string ShowFolder(const std::string& title) override;

 private:
  QString last_folder_;  // where the last choice was made
};

}  // namespace vrx
