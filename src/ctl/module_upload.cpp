#include "ctl/module_upload.h"

#include <array>
#include <ostream>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "ctl/command.h"
#include "ctl/scripted_file_choice.h"
#include "ctl/session.h"
#include "exchange/data_files.h"
#include "frame/files.h"
#include "frame/number.h"
#include "link/data_transfer.h"
#include "link/file_attributes.h"
#include "link/krmcomm.h"
#include "link/upload.h"

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

bool NamesAreFree(Session& session, const fs::path& folder, const std::vector<fs::path>& names) {
  for (const fs::path& name : names) {
    if (FileExists(name)) {
      return Refuse(session, name.string() + " exists already. No file was written.");
    }
  }
  std::error_code error;
  fs::create_directories(folder, error);
  if (error && !fs::is_directory(folder)) {
    return Refuse(session, "The folder " + folder.string() + " cannot be made.", error.message());
  }
  return true;
}

bool SaveAll(Session& session, ReportFile& files, ScriptedFileChoice& chooser,
             const DataTransfer& transfer, const std::vector<fs::path>& names) {
  int file = 0;
  for (const fs::path& name : names) {
    chooser.Choose(name);
    files.SaveDataFile(++file);
    if (transfer.file_path != name.string()) {
      return Refuse(session, name.string() + " could not be written.", files.SaveFailure());
    }
    session.Out() << name.string() << '\n';
  }
  return true;
}

}  // namespace

bool WriteDataFiles(Session& session, const KRMCOMM& krm, DataTransfer& transfer,
                    const PrivateINI& settings, const fs::path& folder) {
  const auto attributes = [&krm](int file) { return krm.GL_KRM_FileAttributes(file); };
  std::vector<fs::path> names;
  for (const DataFileRow& row : transfer.data_files) {
    names.push_back(NameOf(folder, row.file, attributes(row.file).type));
  }
  ScriptedFileChoice chooser;
  ReportFile files(session.Op(), chooser, settings, transfer, attributes);
  return names.empty() || (NamesAreFree(session, folder, names) &&
                           SaveAll(session, files, chooser, transfer, names));
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
  Upload upload(krm, transfer, pump, session.Op(), settings);
  upload.UploadDataFromKRM();
  const bool failed = session.Op().StatusIsError();
  if (failed) {
    session.Op().TellCause(krm.KRM_FailureCause());
  }
  const bool written = WriteDataFiles(session, krm, transfer, settings, folder);
  return failed || !written || transfer.data_files.empty() ? kFailed : kDone;
}

}  // namespace vrx
