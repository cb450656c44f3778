#pragma once

#include <array>
#include <functional>
#include <string>

#include "link/krmcomm.h"
#include "platform/file_chooser.h"
#include "platform/operator.h"
#include "presenter/transfer_state.h"

namespace vrx {

class PrivateINI;

// A file last saved or opened: its path, and its name in upper case.
struct LastFile {
  std::string path;
  std::string title;
};

// The attributes of a file of the transfer block, counted from 1; asked for 1 to kMaxDataFiles
// only.
using FileAttributesTable = std::function<FileAttributes(int file)>;

// The cut files of the Data Transfer tab on their way to disk, and recipe backups on their way
// back. A file holds the bytes of the data window and nothing else.
class ReportFile {
 public:
  // What is named by reference must outlive the object.
  ReportFile(Operator& op, FileChooser& chooser, const PrivateINI& settings,
             TransferState& transfer, FileAttributesTable attributes);

  // Each asks for a name and writes the data window there. False after a cancel, and after a failed
  // write, which leaves the old file as it was and its reason in SaveFailure.
  bool SaveTransactionFile() { return Save(DataFileType::kTransaction); }
  bool SaveRecipeBackupFile() { return Save(DataFileType::kRecipeBackup); }
  bool SaveReportFile() { return Save(DataFileType::kReport); }

  // Shows a file of the transfer block in the data window; a number without a file shows nothing.
  void ShowDataFile(int file);

  // Shows a file, checks its header and saves it; the status line and the list tell how it went.
  void SaveDataFile(int file);

  // What `cmdSaveFile` does: saves the file of the first checked row.
  void SaveCheckedFile();

  // Forgets the backup of before; a cancel leaves none. A rescue file can be chosen too.
  void OpenRecipeBackupFile();
  void ForgetRecipeBackupFile() { Kept(DataFileType::kRecipeBackup) = {}; }

  const LastFile& TransactionFile() const { return Kept(DataFileType::kTransaction); }
  const LastFile& RecipeBackupFile() const { return Kept(DataFileType::kRecipeBackup); }
  const LastFile& TextReport() const { return Kept(DataFileType::kReport); }

  // Why the last save failed; empty after a save that did not, and after a cancel.
  const std::string& SaveFailure() const { return save_failure_; }

 private:
  bool Save(DataFileType type);
  FileAttributes Attributes(int file) const;
  void MarkSaved(int file, DataFileType type);
  LastFile& Kept(DataFileType type) { return kept_.at(static_cast<std::size_t>(type) - 1); }
  const LastFile& Kept(DataFileType type) const {
    return kept_.at(static_cast<std::size_t>(type) - 1);
  }

  Operator& op_;
  FileChooser& chooser_;
  const PrivateINI& settings_;
  TransferState& transfer_;
  FileAttributesTable attributes_;
  std::array<LastFile, 3> kept_;
  std::string save_failure_;
};

}  // namespace vrx
