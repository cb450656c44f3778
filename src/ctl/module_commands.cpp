#include "ctl/module_commands.h"

#include <array>
#include <cstddef>
#include <ostream>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "adapters/local_machine.h"
#include "base/files.h"
#include "base/number.h"
#include "ctl/command.h"
#include "ctl/scripted_file_choice.h"
#include "ctl/session.h"
#include "link/file_attributes.h"
#include "link/krmcomm.h"
#include "link/rescue_file.h"
#include "presenter/data_files.h"
#include "presenter/transfer_state.h"
#include "presenter/upload.h"

namespace vrx {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kSaveErrorTitle = "Save File Error";

fs::path NameOf(const fs::path& folder, int file, DataFileType type) {
  constexpr std::array<std::string_view, 4> kExtensions = {"", ".QXT", ".RBU", ".TXT"};
  return folder /
         (Format(file * 1.0, "00") + std::string(kExtensions.at(static_cast<std::size_t>(type))));
}

bool Refuse(Session& session, const std::string& text, const std::string& cause = {}) {
  session.Op().ShowMessage({.icon = Icon::kCritical,
                            .title = std::string(kSaveErrorTitle),
                            .text = text,
                            .cause = cause});
  return false;
}

// The cut files of a transfer on their way to disk.
class CutFiles {
 public:
  CutFiles(Session& session, const KRMCOMM& krm, DataTransfer& transfer, const PrivateINI& settings,
           const fs::path& folder)
      : session_(session),
        krm_(krm),
        transfer_(transfer),
        folder_(folder),
        files_(session.Op(), chooser_, settings, transfer,
               [&krm](int file) { return krm.GL_KRM_FileAttributes(file); }) {
    for (const DataFileRow& row : transfer.data_files) {
      names_.push_back(NameOf(folder, row.file, krm.GL_KRM_FileAttributes(row.file).type));
    }
  }

  bool Empty() const { return names_.empty(); }

  bool NamesAreFree() {
    for (const fs::path& name : names_) {
      if (FileExists(name)) {
        return Refuse(session_, name.string() + " exists already. No file was written.");
      }
    }
    return true;
  }

  bool MakeFolder() {
    std::error_code error;
    fs::create_directories(folder_, error);
    if (error && !fs::is_directory(folder_)) {
      return Refuse(session_, "The folder " + folder_.string() + " cannot be made.",
                    error.message());
    }
    return true;
  }

  // Writes each that can be written; never in the place of another file.
  void SaveEach() {
    for (std::size_t i = 0; i < names_.size(); ++i) {
      if (Save(static_cast<int>(i) + 1, names_[i])) {
        ++saved_;
      } else {
        const FileAttributes& part = krm_.GL_KRM_FileAttributes(static_cast<int>(i) + 1);
        unsaved_ += transfer_.transfer_block.substr(static_cast<std::size_t>(part.position) - 1,
                                                    static_cast<std::size_t>(part.length));
      }
    }
  }

  bool AllSaved() const { return saved_ == names_.size(); }

  // The bytes that are in no file.
  const std::string& Rest() const {
    return transfer_.block_is_cut && saved_ > 0 ? unsaved_ : transfer_.transfer_block;
  }

 private:
  bool Save(int file, const fs::path& name) {
    if (FileExists(name)) {
      return Refuse(session_, name.string() + " exists already and is not replaced.");
    }
    chooser_.Choose(name);
    files_.SaveDataFile(file);
    if (transfer_.file_path != name.string()) {
      return Refuse(session_, name.string() + " could not be written.", files_.SaveFailure());
    }
    session_.Progress().Clear();  // on a terminal both stand on one screen
    session_.Out() << name.string() << '\n';
    return true;
  }

  Session& session_;
  const KRMCOMM& krm_;
  DataTransfer& transfer_;
  fs::path folder_;
  ScriptedFileChoice chooser_;
  ReportFile files_;
  std::vector<fs::path> names_;
  std::size_t saved_ = 0;
  std::string unsaved_;
};

// Writes what an upload has brought, and says how it went.
int WriteUpload(Session& session, KRMCOMM& krm, DataTransfer& transfer, const PrivateINI& settings,
                const fs::path& folder) {
  const bool failed = session.Op().StatusIsError();
  if (failed) {
    session.Op().TellCause(krm.KRM_FailureCause());
  }
  const bool written = WriteDataFiles(session, krm, transfer, settings, folder);
  return failed || !written || transfer.data_files.empty() ? kFailed : kDone;
}

}  // namespace

bool WriteDataFiles(Session& session, const KRMCOMM& krm, DataTransfer& transfer,
                    const PrivateINI& settings, const fs::path& folder) {
  CutFiles files(session, krm, transfer, settings, folder);
  if (files.Empty()) {
    return true;
  }
  if (!files.NamesAreFree() || !files.MakeFolder()) {
    return false;
  }
  files.SaveEach();
  return files.AllSaved();
}

bool WriteReceivedFiles(Session& session, const KRMCOMM& krm, DataTransfer& transfer,
                        const PrivateINI& settings, const fs::path& folder) {
  CutFiles files(session, krm, transfer, settings, folder);
  if (!files.Empty() && files.MakeFolder()) {
    files.SaveEach();
  }
  if (files.AllSaved() && transfer.block_is_cut) {
    return true;
  }
  KeepReceived(session, files.Rest(), folder);
  return false;
}

void KeepReceived(Session& session, std::string_view bytes, const fs::path& folder) {
  fs::path data_folder;
  try {
    data_folder = session.DataFolder();
  } catch (const Error&) {
    // The temporary folder is left.
  }
  RescueReceived(bytes, {folder, data_folder}, LocalNow(), session.Op());
}

bool FolderTakesDataFiles(Session& session, const fs::path& folder) {
  for (int file = 1; file <= kMaxDataFiles; ++file) {
    for (const DataFileType type :
         {DataFileType::kTransaction, DataFileType::kRecipeBackup, DataFileType::kReport}) {
      const fs::path name = NameOf(folder, file, type);
      if (FileExists(name)) {
        return Refuse(session, name.string() + " exists already. Nothing was received.");
      }
    }
  }
  return true;
}

int UploadModule(Session& session, KRMCOMM& krm, EventPump& pump, const PrivateINI& settings,
                 const fs::path& folder) {
  DataTransfer transfer;
  Upload(krm, transfer, pump, session.Op(), settings).UploadDataFromKRM();
  return WriteUpload(session, krm, transfer, settings, folder);
}

int UploadRescued(Session& session, KRMCOMM& krm, EventPump& pump, const PrivateINI& settings,
                  const fs::path& file, const fs::path& folder) {
  DataTransfer transfer;
  Upload(krm, transfer, pump, session.Op(), settings).UploadFromFile(file);
  return WriteUpload(session, krm, transfer, settings, folder);
}

}  // namespace vrx
