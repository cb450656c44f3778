#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "link/krmcomm.h"
#include "presenter/create_database.h"
#include "presenter/data_files.h"
#include "presenter/direct_connection.h"
#include "presenter/services.h"
#include "presenter/transfer_state.h"

namespace vrx {

// Sends a recipe file to the module. References must outlive the object.
class Download {
 public:
  Download(KRMCOMM& krm, EventPump& pump, Operator& op, const PrivateINI& settings);

  // Checks that the module answers, clears it and sends the bytes, which takes at least 4600 ms.
  // Shows the progress in the status line and can be canceled. If a step fails, shows it in red,
  // sets KRM_FailureCause and returns false; the module is then cleared or partly filled, unless
  // the check failed. The caller holds the line.
  bool DownloadToModule(std::string_view text);

  LineGuard& Guard() { return krm_.Guard(); }

 private:
  bool ReportCanceled(bool detected, std::size_t bytes);
  bool Fail(std::string_view words);

  KRMCOMM& krm_;
  EventPump& pump_;
  Operator& op_;
  const PrivateINI& settings_;
};

// The Data Transfer tab, as its presenter uses it.
class TransferView {
 public:
  virtual ~TransferView() = default;

  // The open recipe database; an empty path if there is none.
  [[nodiscard]] virtual CurrentDatabase RecipeDatabase() const = 0;

  // The open command of the File menu, with its dialog and messages.
  virtual void OpenRecipeDatabase() = 0;

  // A download has stored recomputed lines and head counts, so the views must reload them. The
  // recipe editor then shows the highest recipe in use; if that is 0, its recipe does not change.
  virtual void RecipesStored(int highest_in_use) = 0;

  // Gives the control of that name the focus if it is visible and enabled.
  virtual void FocusControl(std::string_view name) = 0;

  // The state of the tab has changed and must be shown.
  virtual void TransferChanged() = 0;

  // A file of rescued data was selected. Ignored without a list of data files.
  virtual void OpenRescueFile(const std::filesystem::path& /*path*/) {}
};

// The download side of the Data Transfer tab: sends a recipe database or a backup to the module, or
// puts it into the memory that a directly connected indicator reads.
class DownloadPresenter {
 public:
  DownloadPresenter(Services& services, TransferState& transfer, ReportFile& files,
                    Download& download, DirectConnection& direct, TransferView& host)
      : services_(services),
        transfer_(transfer),
        files_(files),
        download_(download),
        direct_(direct),
        view_(host) {}

  // The clicks of the buttons with those names. They report failures. While the line is in use, the
  // buttons that need it do nothing.
  void DownloadRecipeToKRM();

  // Returns whether the text was sent or is in memory.
  bool DownloadRecipeDB();
  bool DownloadRecipeBU();

  // Returns whether a file is open and, in the direct connection, in memory.
  bool OpenRecipeDB();
  bool OpenRecipeBU();

  // The same for a given backup, from any state of the tab. Refused while data is transferred.
  bool OpenRecipeBackup(const std::string& path);

  // The backup that is ready to be sent; empty if there is none.
  [[nodiscard]] const std::string& OpenedBackup() const { return files_.RecipeBackupFile().path; }

 private:
  void Refuse(std::string_view title, std::string_view text, std::string_view focus);
  bool ConfirmOverwrite(const std::string& source, const std::vector<std::string>& oddities);
  [[nodiscard]] std::string LastUpload() const;
  void ShowInWindow(std::string text);
  void AppendToWindow(std::string_view line);
  bool BuildFromDatabase(const CurrentDatabase& database);
  bool OpenChosenBackup();
  bool LoadBackup(const std::string& path);
  LineGuard::Claim TakeLine();
  bool Send();

  Services& services_;
  TransferState& transfer_;
  ReportFile& files_;
  Download& download_;
  DirectConnection& direct_;
  TransferView& view_;
};

}  // namespace vrx
