#pragma once

#include <string>

namespace vrx {

// Bit flags of a file dialog.
enum FileDialogFlags : unsigned {
  kOverwritePrompt = 0x2,
  kHideReadOnly = 0x4,
  kFileMustExist = 0x1000,
  kShortNames = 0x40000,
};

struct FileDialog {
  std::string title;
  std::string filter;             // "Transactions (*.QXT)|*.QXT|All Files (*.*)|*.*"
  std::string default_extension;  // without the dot; added to a name typed without one
  std::string start_folder = {};  // empty: the platform's last folder
  unsigned flags = 0;
};

// Result of a file dialog. Both texts are empty after a cancel.
struct FileChoice {
  std::string path;   // full path
  std::string title;  // file name

  [[nodiscard]] bool Cancelled() const { return path.empty(); }
};

class FileChooser {
 public:
  virtual ~FileChooser() = default;
  [[nodiscard]] virtual FileChoice ShowOpen(const FileDialog& dialog) = 0;
  [[nodiscard]] virtual FileChoice ShowSave(const FileDialog& dialog) = 0;
  // Returns the full path of the chosen folder; empty after a cancel.
  [[nodiscard]] virtual std::string ShowFolder(const std::string& title) = 0;
};

}  // namespace vrx
