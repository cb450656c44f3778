#pragma once

#include <array>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "base/date.h"
#include "link/krmcomm.h"
#include "platform/file_chooser.h"
#include "platform/operator.h"
#include "presenter/transfer_state.h"

namespace vrx {

class PrivateINI;

// The file last saved or opened: its path, and its name in upper case.
struct LastFile {
  std::string path;
  std::string title;
};

// Returns the attributes of a file of the transfer block, from 1 to kMaxDataFiles.
using FileAttributesTable = std::function<FileAttributes(int file)>;

// Saves the cut files of the Data Transfer tab and opens recipe backups. A file holds exactly the
// bytes of the data window.
class ReportFile {
 public:
  // All references must outlive the object.
  ReportFile(Operator& op, FileChooser& chooser, const PrivateINI& settings,
             TransferState& transfer, FileAttributesTable attributes);

  // Each asks for a name and writes the data window to that file. Returns false after Cancel and
  // after a failed write, which leaves an existing file unchanged and sets SaveFailure.
  bool SaveTransactionFile() { return Save(DataFileType::kTransaction); }
  bool SaveRecipeBackupFile() { return Save(DataFileType::kRecipeBackup); }
  bool SaveReportFile() { return Save(DataFileType::kReport); }

  // Shows a file of the transfer block in the data window; nothing for a number without a file.
  void ShowDataFile(int file);

  // Shows a file, checks its header and saves it under a name that it asks for; shows the outcome
  // in the status line and the list. Returns whether it is saved.
  bool SaveDataFile(int file);

  // `cmdSaveFile`: saves the file of the first checked row.
  void SaveCheckedFile();

  // `cmdSaveImport`: saves each checked file, or each transaction file that is not saved yet if
  // none is checked. A transaction file gets the first free name of the day of its first record,
  // "260111-01.QXT", in the folder; any other is asked for its name. Stops at a file that cannot be
  // written. Returns the saved transaction files. `today` is the day of a file without a date.
  std::vector<FileChoice> SaveForImport(const std::filesystem::path& folder, const Date& today);

  // Forgets the previous backup, even if the dialog is canceled. Also accepts a rescue file.
  void OpenRecipeBackupFile();
  // The same without the dialog.
  void ChooseRecipeBackupFile(const std::string& path);
  void ForgetRecipeBackupFile() { Kept(DataFileType::kRecipeBackup) = {}; }

  [[nodiscard]] const LastFile& TransactionFile() const { return Kept(DataFileType::kTransaction); }
  [[nodiscard]] const LastFile& RecipeBackupFile() const {
    return Kept(DataFileType::kRecipeBackup);
  }
  [[nodiscard]] const LastFile& TextReport() const { return Kept(DataFileType::kReport); }

  // Why the last save failed; empty after a successful save and after Cancel.
  [[nodiscard]] const std::string& SaveFailure() const { return save_failure_; }

 private:
  using AskForName = std::function<FileChoice()>;
  FileChoice AskForNameOf(DataFileType type);
  bool Save(DataFileType type) {
    return Save(type, [&] { return AskForNameOf(type); });
  }
  bool Save(DataFileType type, const AskForName& ask);
  bool SaveDataFile(int file, const AskForName& ask);
  [[nodiscard]] std::vector<int> FilesToImport() const;
  void RefuseWithoutCheck();
  [[nodiscard]] FileAttributes Attributes(int file) const;
  void MarkSaved(int file);
  LastFile& Kept(DataFileType type) { return kept_.at(static_cast<std::size_t>(type) - 1); }
  [[nodiscard]] const LastFile& Kept(DataFileType type) const {
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
