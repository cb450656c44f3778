#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "presenter/database_commands.h"
#include "presenter/recent_files.h"
#include "presenter/services.h"

namespace vrx {

// The window, as files are opened in it.
class OpenFilesView {
 public:
  virtual ~OpenFilesView() = default;

  // Stores pending edits, or asks about them. False if the operator stays in one.
  virtual bool LeaveEdits() = 0;

  // The flows of the Import and the Data Transfer tab, without their file dialogs. They report
  // failures.
  virtual void ImportTransactionFile(const std::filesystem::path& path) = 0;
  virtual void OpenRecipeBackup(const std::filesystem::path& path) = 0;
};

// Opens files that were chosen without a file dialog: from the list of recent files, on the command
// line, by a drop on the window, by another start of the program. Continues with the flow of the
// command that has such a dialog.
class OpenFiles {
 public:
  // Everything outlives it.
  OpenFiles(Services& services, DatabaseCommands& databases, RecentFiles& recent,
            OpenFilesView& view)
      : services_(services), databases_(databases), recent_(recent), view_(view) {}

  // Opens the first file of each kind; databases come first, because an import needs them. Shows
  // one message about all files that are not opened: missing, foreign, or one too many of a kind.
  // Does nothing while it is running. May run events.
  void Open(const std::vector<std::filesystem::path>& paths);

  // Asks for a file of any kind and opens it.
  void Browse();

  // The same for an entry of the list. A missing file is reported and removed from the list.
  void OpenRecent(FileKind kind, const std::filesystem::path& path);

  [[nodiscard]] bool Running() const { return lock_.Running(); }

 private:
  using Chosen = std::map<FileKind, std::filesystem::path>;

  // Sorts out what is to be opened, and returns a line about each other file.
  static std::vector<std::string> Sort(const std::vector<std::filesystem::path>& paths,
                                       Chosen& chosen);
  void OpenChosen(const Chosen& chosen);
  void Report(const std::vector<std::string>& lines);

  Services& services_;
  DatabaseCommands& databases_;
  RecentFiles& recent_;
  OpenFilesView& view_;
  OperationLock lock_;
};

}  // namespace vrx
