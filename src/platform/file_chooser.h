#pragma once

#include <string>

namespace vrx {

// Flags of a file dialog, to be combined.
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
  std::string start_folder = {};  // empty: wherever the platform last was
  unsigned flags = 0;
};

// The answer to a file dialog: full path and file name. Both empty after a cancel.
struct FileChoice {
  std::string path;
  std::string title;

  bool Cancelled() const { return path.empty(); }
};

class FileChooser {
 public:
  virtual ~FileChooser() = default;
  virtual FileChoice ShowOpen(const FileDialog& dialog) = 0;
  virtual FileChoice ShowSave(const FileDialog& dialog) = 0;
  // Asks for a folder of the file system: its full path, empty after a cancel.
  virtual std::string ShowFolder(const std::string& title) = 0;
};

}  // namespace vrx
