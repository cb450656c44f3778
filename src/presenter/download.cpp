#include "presenter/download.h"

#include <cstddef>
#include <string>
#include <utility>

#include "base/files.h"
#include "base/text.h"
#include "database/connection.h"
#include "exchange/recipe_text.h"
#include "link/rescue_file.h"
#include "presenter/upload.h"
#include "settings/settings.h"

namespace vrx {

namespace {

constexpr Milliseconds kDownloadingInterval{250};

constexpr std::string_view kDatabaseFileError = "Recipe Database-File Error";
constexpr std::string_view kBackupFileError = "Recipe Backup-File Error";

}  // namespace

Download::Download(KRMCOMM& krm, EventPump& pump, Operator& op, const PrivateINI& settings)
    : krm_(krm), pump_(pump), op_(op), settings_(settings) {}

bool Download::DownloadToModule(std::string_view text) {
  // A copy, because a handler that runs during a wait may change the caller's text.
  const std::string bytes(text);
  ReportStandby(op_);
  krm_.GL_KRM_TxDCount(0);
  if (!krm_.KRM_OnlineCheck()) {
    return Fail("KRM not detected");
  }
  const auto tim_downloading = pump_.StartTicker(kDownloadingInterval, [this] {
    op_.SetStatusLine("Downloading to KRM....  " + std::to_string(krm_.GL_KRM_TxDCount()) +
                      " bytes");
  });
  return ClearAndSend(bytes);
}

bool Download::ClearAndSend(std::string_view text) {
  if (!krm_.KRM_Clear()) {
    return Fail("Could not clear KRM");
  }
  if (!krm_.KRM_Download(text)) {
    return Fail("Download failed");
  }
  ReportComplete(op_, "Download complete!  (" + std::to_string(krm_.GL_KRM_TxDCount()) +
                          " bytes, Recipe Data)");
  BeepIfEnabled(op_, settings_);
  return true;
}

bool Download::Fail(std::string_view words) {
  const bool own_words = pump_.Closing() || krm_.KRM_LineHeld();
  ReportFailed(op_, "Error: " + (own_words ? krm_.GS_KRM_ErrMsg() : std::string(words)));
  return false;
}

void DownloadPresenter::DownloadRecipeToKRM() {
  ports_.transfer.file_path.clear();
  ports_.op.SetStatusLine("");
  ports_.transfer.recipe_frames_visible = true;
  ports_.transfer.data_files_frame_visible = false;
  ShowInWindow("");
}

bool DownloadPresenter::OpenRecipeDB() {
  ports_.host.OpenRecipeDatabase();
  ports_.transfer.file_path = ports_.host.RecipeDatabase().path.string();
  ports_.host.TransferChanged();
  if (ports_.transfer.file_path.empty()) {
    return false;
  }
  if (ports_.transfer.connection == Connection::kIndicator) {
    return DownloadRecipeDB();
  }
  ReportNeutral(ports_.op, "Recipe database-file opened, ready to download.");
  return true;
}

bool DownloadPresenter::DownloadRecipeDB() {
  LineGuard::Claim line = TakeLine();
  if (!line) {
    return false;
  }
  const CurrentDatabase database = ports_.host.RecipeDatabase();
  ports_.op.SetStatusLine("");
  ports_.transfer.file_path = database.path.string();
  ports_.host.TransferChanged();
  if (database.path.empty()) {
    line.reset();  // the button that gets the focus must be enabled
    Refuse(kDatabaseFileError,
           "You must first 'Open' the Recipe database file that you want to be downloaded.",
           "cmdOpenRecipeDB");
    return false;
  }
  if (!database.read_only_note.empty()) {
    Refuse(kDatabaseFileError,
           "The Recipe database is read-only, and a download stores the recomputed lines in it: " +
               database.read_only_note + ". Save it under another name first.",
           "cmdOpenRecipeDB");
    return false;
  }
  if (!ConfirmOverwrite("recipe data from the " + database.name + " database?")) {
    return false;
  }
  const Hourglass hourglass(ports_.op);
  ports_.op.SetStatusColor(StatusColor::kBlue);
  ports_.op.SetStatusLine("");
  return BuildFromDatabase(database) && Send();
}

bool DownloadPresenter::OpenRecipeBU() {
  ports_.files.OpenRecipeBackupFile();
  const std::string path = ports_.files.RecipeBackupFile().path;
  if (IsRescueFile(path)) {
    ports_.files.ForgetRecipeBackupFile();
    ports_.host.OpenRescueFile(path);
    return false;
  }
  ports_.transfer.file_path = path;
  if (path.empty() || !LoadBackup(path)) {
    ports_.host.TransferChanged();
    return false;
  }
  if (ports_.transfer.connection == Connection::kIndicator) {
    return DownloadRecipeBU();
  }
  ReportNeutral(ports_.op, "Recipe backup-file opened, ready to download.");
  return true;
}

bool DownloadPresenter::DownloadRecipeBU() {
  LineGuard::Claim line = TakeLine();
  if (!line) {
    return false;
  }
  const LastFile backup = ports_.files.RecipeBackupFile();
  ports_.op.SetStatusLine("");
  ports_.transfer.file_path = backup.path;
  ports_.host.TransferChanged();
  if (backup.path.empty()) {
    line.reset();
    Refuse(kBackupFileError,
           "You must first 'Open' the Recipe backup-file that you want to be downloaded.",
           "cmdOpenRecipeBU");
    return false;
  }
  if (!ConfirmOverwrite("recipe backup data from the " + backup.title + " file?") ||
      !HasBackupHeader(ports_.transfer.data_window, ports_.op, ports_.settings)) {
    return false;
  }
  const Hourglass hourglass(ports_.op);
  ports_.op.SetStatusColor(StatusColor::kBlue);
  ports_.op.SetStatusLine("");
  return Send();
}

void DownloadPresenter::Refuse(std::string_view title, std::string_view text,
                               std::string_view focus) {
  BeepIfEnabled(ports_.op, ports_.settings);
  ports_.op.ShowMessage(
      {.icon = Icon::kWarning, .title = std::string(title), .text = std::string(text)});
  ports_.host.FocusControl(focus);
}

bool DownloadPresenter::ConfirmOverwrite(const std::string& source) {
  BeepIfEnabled(ports_.op, ports_.settings);
  return ports_.op.ShowMessage(
             {.icon = Icon::kQuestion,
              .buttons = Buttons::kYesNo,
              .title = "Overwrite KRM",
              .text =
                  "Are you sure you want to overwrite all data in the KRM module with " + source,
              .refuses_by_default = true}) == Answer::kYes;
}

void DownloadPresenter::ShowInWindow(std::string text) {
  ports_.transfer.data_window = std::move(text);
  ports_.host.TransferChanged();
}

void DownloadPresenter::AppendToWindow(std::string_view line) {
  ports_.transfer.data_window.append(line).append("\r\n");
  ports_.host.TransferChanged();
}

bool DownloadPresenter::BuildFromDatabase(const CurrentDatabase& database) {
  ports_.transfer.data_window.clear();
  AppendToWindow("Building recipe file to download:");
  try {
    RecipeDownload download = TakeRecipeDownload(
        database.path, ports_.settings.BatchTargetWtIsRecTargetOn(), ports_.calendar,
        [this](std::string_view line) { AppendToWindow(line); }, ports_.identity.Wait());
    ports_.host.RecipesStored(download.highest_in_use);
    ShowInWindow(std::move(download.text));
    return true;
  } catch (const DatabaseError& error) {
    BeepIfEnabled(ports_.op, ports_.settings);
    ports_.identity.ShowDatabaseError(error.Number(), kDatabaseFileError, error.what());
  } catch (const RecipeTextError& error) {
    BeepIfEnabled(ports_.op, ports_.settings);
    ports_.op.ShowMessage({.icon = Icon::kCritical,
                           .title = std::string(kDatabaseFileError),
                           .text = std::string(error.what()) + "\r\nNothing was downloaded."});
  }
  return false;
}

bool DownloadPresenter::LoadBackup(const std::string& path) {
  try {
    ShowInWindow(ReadRecipeBackup(path));
    return true;
  } catch (const FileError& error) {
    // Otherwise the text of an earlier file would be mistaken for this one.
    ports_.transfer.data_window.clear();
    BeepIfEnabled(ports_.op, ports_.settings);
    ports_.op.ShowMessage({.icon = Icon::kWarning,
                           .title = std::string(kBackupFileError),
                           .text = "The Recipe backup-file cannot be read.",
                           .cause = error.what()});
    return false;
  }
}

LineGuard::Claim DownloadPresenter::TakeLine() {
  return ports_.transfer.connection == Connection::kModule
             ? ports_.download.Guard().TakeForCommand()
             : ports_.direct.Guard().TakeForTransmission();
}

bool DownloadPresenter::Send() {
  if (ports_.transfer.connection == Connection::kModule) {
    return ports_.download.DownloadToModule(ports_.transfer.data_window);
  }
  // A copy, because a handler that runs during a wait may change the window.
  const std::string text = ports_.transfer.data_window;
  return ports_.direct.LoadMemory(text);
}

}  // namespace vrx
