#include "presenter/download.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "base/files.h"
#include "base/text.h"
#include "base/translation.h"
#include "database/connection.h"
#include "exchange/recipe_text.h"
#include "link/rescue_file.h"
#include "presenter/operation.h"
#include "presenter/report_failure.h"
#include "presenter/transfer_progress.h"
#include "presenter/upload.h"
#include "settings/settings.h"

namespace vrx {

namespace {

constexpr Milliseconds kDownloadingInterval{250};
constexpr TransferTexts kDownloading{
    .begins = "Downloading to KRM....  ", .percent = "%1%", .time_left = TrMark("%1 left")};

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
  LineGuard::Claim cancelable = krm_.Guard().AllowCancel();
  std::string_view failure;
  const bool detected = krm_.KRM_OnlineCheck();
  if (!detected) {
    failure = "KRM not detected";
  } else {
    TransferProgress progress(kDownloading, static_cast<std::int64_t>(bytes.size()));
    const auto tim_downloading = pump_.StartTicker(kDownloadingInterval, [&] {
      op_.SetStatusLine(progress.Text(krm_.GL_KRM_TxDCount(), pump_.Now()));
    });
    failure = !krm_.KRM_Clear()           ? "Could not clear KRM"
              : !krm_.KRM_Download(bytes) ? "Download failed"
                                          : std::string_view();
  }
  // The result is reported when the command can no longer be canceled.
  cancelable.reset();
  if (krm_.KRM_Error() == LinkError::kCanceled) {
    return ReportCanceled(detected, bytes.size());
  }
  if (!failure.empty()) {
    return Fail(failure);
  }
  ReportComplete(op_, "Download complete!  (" + std::to_string(krm_.GL_KRM_TxDCount()) +
                          " bytes, Recipe Data)");
  BeepIfEnabled(op_, settings_);
  return true;
}

bool Download::ReportCanceled(bool detected, std::size_t bytes) {
  ReportFailed(op_, detected ? Tr("Download canceled after %1 of %2 bytes. The data in the module "
                                  "are incomplete.",
                                  {std::to_string(krm_.GL_KRM_TxDCount()), std::to_string(bytes)})
                             : Tr("Download canceled. The module is unchanged."));
  return false;
}

bool Download::Fail(std::string_view words) {
  ReportPortFailure(op_, krm_, settings_);
  const bool own_words = pump_.Closing() || krm_.KRM_LineHeld();
  ReportFailed(op_, "Error: " + (own_words ? krm_.GS_KRM_ErrMsg() : std::string(words)));
  return false;
}

void DownloadPresenter::DownloadRecipeToKRM() {
  transfer_.file_path.clear();
  services_.op.SetStatusLine("");
  transfer_.recipe_frames_visible = true;
  transfer_.data_files_frame_visible = false;
  ShowInWindow("");
}

bool DownloadPresenter::OpenRecipeDB() {
  view_.OpenRecipeDatabase();
  transfer_.file_path = view_.RecipeDatabase().path.string();
  view_.TransferChanged();
  if (transfer_.file_path.empty()) {
    return false;
  }
  if (transfer_.connection == Connection::kIndicator) {
    return DownloadRecipeDB();
  }
  ReportNeutral(services_.op, "Recipe database-file opened, ready to download.");
  return true;
}

bool DownloadPresenter::DownloadRecipeDB() {
  LineGuard::Claim line = TakeLine();
  if (!line) {
    return false;
  }
  const CurrentDatabase database = view_.RecipeDatabase();
  services_.op.SetStatusLine("");
  transfer_.file_path = database.path.string();
  view_.TransferChanged();
  if (database.path.empty()) {
    line.reset();  // the button that gets the focus must be enabled
    Refuse(kDatabaseFileError,
           "You must first 'Open' the Recipe database file that you want to be downloaded.",
           "cmdOpenRecipeDB");
    return false;
  }
  if (!database.read_only_note.empty()) {
    Refuse(kDatabaseFileError,
           Tr("The Recipe database is read-only, and a download stores the recomputed lines in it: "
              "%1. Save it under another name first.",
              {database.read_only_note}),
           "cmdOpenRecipeDB");
    return false;
  }
  std::vector<std::string> oddities;
  // The download itself reports a database that cannot be read.
  RunReported<Error>(services_.op, kNoReport,
                     [&] { oddities = FindOddities(database.path, services_.identity.Wait()); });
  if (!ConfirmOverwrite("recipe data from the " + database.name + " database?", oddities)) {
    return false;
  }
  const BusyCursor busy(services_.op);
  services_.op.SetStatusColor(StatusColor::kBlue);
  services_.op.SetStatusLine("");
  return BuildFromDatabase(database) && Send();
}

bool DownloadPresenter::OpenRecipeBU() {
  files_.OpenRecipeBackupFile();
  return OpenChosenBackup();
}

bool DownloadPresenter::OpenRecipeBackup(const std::string& path) {
  if (download_.Guard().AtWork()) {
    services_.op.ShowMessage({.icon = Icon::kWarning,
                              .title = std::string(kBackupFileError),
                              .text = Tr("Data is being transferred. Open the Recipe backup-file "
                                         "when that has ended.")});
    return false;
  }
  DownloadRecipeToKRM();
  files_.ChooseRecipeBackupFile(path);
  return OpenChosenBackup();
}

bool DownloadPresenter::OpenChosenBackup() {
  const std::string path = files_.RecipeBackupFile().path;
  if (IsRescueFile(path)) {
    files_.ForgetRecipeBackupFile();
    view_.OpenRescueFile(path);
    return false;
  }
  transfer_.file_path = path;
  if (path.empty() || !LoadBackup(path)) {
    view_.TransferChanged();
    return false;
  }
  if (transfer_.connection == Connection::kIndicator) {
    return DownloadRecipeBU();
  }
  ReportNeutral(services_.op, "Recipe backup-file opened, ready to download.");
  return true;
}

bool DownloadPresenter::DownloadRecipeBU() {
  LineGuard::Claim line = TakeLine();
  if (!line) {
    return false;
  }
  const LastFile backup = files_.RecipeBackupFile();
  services_.op.SetStatusLine("");
  transfer_.file_path = backup.path;
  view_.TransferChanged();
  if (backup.path.empty()) {
    line.reset();
    Refuse(kBackupFileError,
           "You must first 'Open' the Recipe backup-file that you want to be downloaded.",
           "cmdOpenRecipeBU");
    return false;
  }
  if (!ConfirmOverwrite("recipe backup data from the " + backup.title + " file?",
                        FindOdditiesOfBackup(transfer_.data_window)) ||
      !HasBackupHeader(transfer_.data_window, services_.op, services_.settings)) {
    return false;
  }
  const BusyCursor busy(services_.op);
  services_.op.SetStatusColor(StatusColor::kBlue);
  services_.op.SetStatusLine("");
  return Send();
}

void DownloadPresenter::Refuse(std::string_view title, std::string_view text,
                               std::string_view focus) {
  BeepIfEnabled(services_.op, services_.settings);
  services_.op.ShowMessage(
      {.icon = Icon::kWarning, .title = std::string(title), .text = std::string(text)});
  view_.FocusControl(focus);
}

// What a download overwrites cannot be had back.
std::string DownloadPresenter::LastUpload() const {
  if (transfer_.connection == Connection::kIndicator) {
    return transfer_.received.Unsaved() ? Tr("What the indicator sent has not been saved.") : "";
  }
  if (!transfer_.uploaded_at) {
    return Tr("The module has not been uploaded in this run of the program.");
  }
  const auto minutes =
      std::chrono::floor<std::chrono::minutes>(services_.pump.Now() - *transfer_.uploaded_at)
          .count();
  if (minutes < 1) {
    return Tr("The module was last uploaded less than a minute ago.");
  }
  return minutes == 1
             ? Tr("The module was last uploaded 1 minute ago.")
             : Tr("The module was last uploaded %1 minutes ago.", {std::to_string(minutes)});
}

bool DownloadPresenter::ConfirmOverwrite(const std::string& source,
                                         const std::vector<std::string>& oddities) {
  std::string notes;
  for (const std::string& oddity : oddities) {
    notes += oddity + ".\r\n";
  }
  notes += LastUpload();
  BeepIfEnabled(services_.op, services_.settings);
  return services_.op.ShowMessage(
             {.icon = Icon::kQuestion,
              .buttons = Buttons::kYesNo,
              .title = "Overwrite KRM",
              .text = "Are you sure you want to overwrite all data in the KRM module with " +
                      source + (notes.empty() ? "" : "\r\n\r\n" + notes),
              .refuses_by_default = true}) == Answer::kYes;
}

void DownloadPresenter::ShowInWindow(std::string text) {
  transfer_.data_window = std::move(text);
  view_.TransferChanged();
}

void DownloadPresenter::AppendToWindow(std::string_view line) {
  transfer_.data_window.append(line).append("\r\n");
  view_.TransferChanged();
}

bool DownloadPresenter::BuildFromDatabase(const CurrentDatabase& database) {
  transfer_.data_window.clear();
  AppendToWindow("Building recipe file to download:");
  const FailureReport database_failure{.title = kDatabaseFileError,
                                       .text = FailureText::kDatabaseWords,
                                       .beeps = services_.settings.EnableBeeperOn()};
  const std::string nothing = "\r\n" + Tr("Nothing was downloaded.");
  const FailureReport text_failure{.title = kDatabaseFileError,
                                   .text = FailureText::kMessage,
                                   .words = nothing,
                                   .beeps = services_.settings.EnableBeeperOn()};
  const auto build = [&] {
    RecipeDownload download = TakeRecipeDownload(
        database.path, services_.settings.BatchTargetWtIsRecTargetOn(), services_.calendar,
        [this](std::string_view line) { AppendToWindow(line); }, services_.identity.Wait());
    view_.RecipesStored(download.highest_in_use);
    ShowInWindow(std::move(download.text));
  };
  return RunReported<DatabaseError>(services_.op, database_failure, [&] {
    return RunReported<RecipeTextError>(services_.op, text_failure, build);
  });
}

bool DownloadPresenter::LoadBackup(const std::string& path) {
  // The text of an earlier file must not be mistaken for this one.
  transfer_.data_window.clear();
  return RunReported<FileError>(services_.op,
                                {.title = kBackupFileError,
                                 .text = FailureText::kWords,
                                 .words = "The Recipe backup-file cannot be read.",
                                 .icon = Icon::kWarning,
                                 .beeps = services_.settings.EnableBeeperOn()},
                                [&] { ShowInWindow(ReadRecipeBackup(path)); });
}

LineGuard::Claim DownloadPresenter::TakeLine() {
  return transfer_.connection == Connection::kModule ? download_.Guard().TakeForCommand()
                                                     : direct_.Guard().TakeForTransmission();
}

bool DownloadPresenter::Send() {
  if (transfer_.connection == Connection::kModule) {
    return download_.DownloadToModule(transfer_.data_window);
  }
  // A copy, because a handler that runs during a wait may change the window.
  const std::string text = transfer_.data_window;
  return direct_.LoadMemory(text);
}

}  // namespace vrx
